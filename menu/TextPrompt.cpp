// The terminal's prompts: a line of input, a question, a message.
#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/Terminal.h"
#include "common/utils.h"
#include "menu/TextMenu.h"

#include <cerrno>
#include <cstdarg>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

enum { PROMPT_LINE = 4096, PROMPT_COPY = 1024, INPUT_END = -1, INPUT_END_MARK = 0xFF, TXT_CONTINUE = 1001 };
enum { LIST_PAGE = 20 }; // choices at a time

// Descriptor 0 itself and not the stream: a buffered stream would take lines that belong to the next child.
static int GetInputChar() {
    unsigned char ch;
    ssize_t got;
    do {
        got = read(STDIN_FILENO, &ch, 1);
    } while (got < 0 && errno == EINTR);
    return got == 1 ? int{ch} : int{INPUT_END};
}

char *Gets(char *buffer, int size) {
    if (size < 1) return nullptr;
    fflush(stdout);
    errno = 0;
    int length = 0;
    int ch = '\n';
    while (length < size - 1) {
        ch = GetInputChar();
        if (ch == '\n' || ch == INPUT_END || ch == INPUT_END_MARK) break;
        buffer[length++] = static_cast<char>(ch);
    }
    buffer[length] = '\0';
    ReadAsLatin(buffer);
    return length == 0 && ch != '\n' ? nullptr : buffer;
}

int PromptYN(const char *format, ...) {
    // Made once: the arguments may lie in LineBuf, which the answers overwrite.
    va_list args;
    va_start(args, format);
    std::string question = ShowPlain(FormatV(format, args)) + "? [y/n] ";
    va_end(args);
    do {
        fputs(question.c_str(), stdout);
        if (!Gets(LineBuf, LINEBUF_SIZE)) return 0;
    } while (LineBuf[0] != 'y' && LineBuf[0] != 'n');
    return LineBuf[0] == 'y';
}

// A buffer takes a whole line out of the input even where it keeps less, so that the rest is no answer to
// the next question.
char *PromptUser(const char *prompt, char *buffer, size_t capacity) {
    fputs(ShowPlain(prompt).c_str(), stdout);
    char line[PROMPT_LINE];
    if (!Gets(line, buffer ? PROMPT_LINE : PROMPT_COPY)) line[0] = '\0';
    if (!buffer) return SaveStr_(line);
    if (capacity > 0) snprintf(buffer, capacity, "%s", line);
    return buffer;
}

void PostMsg(const char *format, ...) {
    va_list args;
    va_start(args, format);
    fputs(ShowPlain(FormatV(format, args)).c_str(), stdout);
    va_end(args);
    Nlsfprintf(stdout, pDrvCoreDB, NLS_TTY_SET, TXT_CONTINUE);
    Gets(LineBuf, LINEBUF_SIZE);
}

void ShowChoices(const char *heading, const std::vector<std::string> &choices) {
    printf("\n%s\n", ShowPlain(heading).c_str());
    for (size_t i = 0; i < choices.size(); i++) {
        if (i > 0 && i % LIST_PAGE == 0) PostMsg("\n");
        if (!choices[i].empty()) printf("%4zu. %s\n", i + 1, choices[i].c_str());
    }
    PostMsg("\n");
}

// Error reports, the program's exit, and the formatting under all messages.
#include "common/Report.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>

const char *my_name = "prndeck";

std::string FormatV(const char *format, va_list args) {
    va_list again;
    va_copy(again, args);
    int length = vsnprintf(nullptr, 0, format, args);
    std::string text(length > 0 ? static_cast<size_t>(length) : 0, '\0');
    vsnprintf(text.data(), text.size() + 1, format, again);
    va_end(again);
    return text;
}

// Bytes behind the first one of a character in UTF-8, 0 if it begins none.
static size_t TailLength(std::string_view text) {
    auto lead = static_cast<unsigned char>(text[0]);
    size_t length = lead < 0xC2 || lead > 0xF4 ? 0 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    if (text.size() <= length) return 0;
    for (size_t i = 1; i <= length; i++)
        if ((text[i] & 0xC0) != 0x80) return 0;
    return length;
}

std::string ShowPlain(std::string_view text) {
    enum { DELETE = 127, C1_FIRST = 128, C1_LAST = 159, C1_LEAD = 0xC2 };
    std::string shown(text);
    for (size_t i = 0; i < shown.size(); i++) {
        auto byte = static_cast<unsigned char>(shown[i]);
        size_t tail = TailLength(text.substr(i));
        bool flC1 = tail > 0 && byte == C1_LEAD && static_cast<unsigned char>(shown[i + 1]) <= C1_LAST;
        bool flControl = (byte < ' ' && byte != '\n' && byte != '\t') || byte == DELETE ||
                         (byte >= C1_FIRST && byte <= C1_LAST);
        if (flC1) shown[i + 1] = '?';
        if (flC1 || flControl) shown[i] = '?';
        i += tail;
    }
    return shown;
}

int ParseInt(const char *text, const char **end, int base) {
    char *stop;
    long number = strtol(text, &stop, base);
    if (end) *end = stop;
    return static_cast<int>(std::clamp<long>(number, INT_MIN, INT_MAX));
}

void SysError(const char *format, ...) {
    int error = errno;
    va_list args;
    va_start(args, format);
    std::string text = FormatV(format, args);
    va_end(args);
    fflush(stdout);
    fprintf(stderr, "\n%s: %s : ", my_name, ShowPlain(text).c_str());
    errno = error;
    perror("");
    exit(1);
}

void ErrorMsg(int level, int status, const char *format, ...) {
    if (level != ERR_WARN && level != ERR_FATAL) return;
    va_list args;
    va_start(args, format);
    std::string text = FormatV(format, args);
    va_end(args);
    fflush(stdout);
    fprintf(stderr, "%s: %s\n", level == ERR_WARN ? "WARNING" : "ERROR", ShowPlain(text).c_str());
    if (level == ERR_FATAL) exit_app(status);
}

void errormsg(const char *format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = FormatV(format, args);
    va_end(args);
    fflush(stdout);
    fprintf(stderr, "%s: %s\n", my_name, ShowPlain(text).c_str());
}

void exit_app(int status) {
    exit(status);
}

// Between Latin-1 and the terminal's UTF-8.
#include "common/Terminal.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>
#include <unistd.h>

enum { ASCII_END = 0x80, LATIN_FIRST = 0xA0, LATIN_END = 0x100 };

static bool flUtf8Output;

bool TestUtf8Locale() {
    for (const char *variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char *value = getenv(variable);
        if (!value || !*value) continue;
        const char *codes = strchr(value, '.');
        std::string name = codes ? std::string(codes, strcspn(codes, "@")) : "";
        return strcasecmp(name.c_str(), ".UTF-8") == 0 || strcasecmp(name.c_str(), ".UTF8") == 0;
    }
    return false;
}

// ---- letters

static unsigned ByteAt(std::string_view text, size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

// By its first byte; 1 for one that begins no sequence.
static size_t SequenceLength(unsigned first) {
    if (first >= 0xC2 && first < 0xE0) return 2;
    if (first >= 0xE0 && first < 0xF0) return 3;
    return first >= 0xF0 && first < 0xF5 ? 4 : 1;
}

size_t GetLetterLength(std::string_view text) {
    if (text.empty()) return 0;
    size_t length = SequenceLength(ByteAt(text, 0));
    for (size_t i = 1; i < length; i++)
        if ((ByteAt(text, i) & 0xC0) != 0x80) return 1;
    return length;
}

std::string ToUtf8(std::string_view text) {
    std::string out;
    for (size_t length; (length = GetLetterLength(text)) > 0; text.remove_prefix(length)) {
        unsigned byte = ByteAt(text, 0);
        if (length > 1 || byte < ASCII_END) {
            out += text.substr(0, length);
            continue;
        }
        out += static_cast<char>(0xC0 | byte >> 6);
        out += static_cast<char>(0x80 | (byte & 0x3F));
    }
    return out;
}

std::string FromUtf8(std::string_view text) {
    std::string out;
    for (size_t length; (length = GetLetterLength(text)) > 0; text.remove_prefix(length)) {
        unsigned code = (ByteAt(text, 0) & 0x1F) << 6 | (ByteAt(text, 1) & 0x3F);
        if (length == 2 && code >= LATIN_FIRST && code < LATIN_END)
            out += static_cast<char>(code);
        else
            out += text.substr(0, length);
    }
    return out;
}

// ---- streams

// Takes all or nothing, as what was read of the text and what was written of it are of different lengths.
static ssize_t WriteConverted(void *cookie, const char *data, size_t size) {
    int file = static_cast<int>(reinterpret_cast<intptr_t>(cookie));
    std::string text = ToUtf8({data, size});
    for (std::string_view rest = text; !rest.empty();) {
        ssize_t count = write(file, rest.data(), rest.size());
        if (count < 0 && errno != EINTR) return 0;
        if (count > 0) rest.remove_prefix(static_cast<size_t>(count));
    }
    return static_cast<ssize_t>(size);
}

static bool Convert(FILE **stream, int file, int buffering) {
    static constexpr cookie_io_functions_t functions = {nullptr, WriteConverted, nullptr, nullptr};
    if (!isatty(file)) return false;
    FILE *converted = fopencookie(reinterpret_cast<void *>(static_cast<intptr_t>(file)), "w", functions);
    if (!converted) return false; // without memory: the bytes go out as they are
    setvbuf(converted, nullptr, buffering, BUFSIZ);
    *stream = converted;
    return true;
}

void InitTerminal() {
    if (!TestUtf8Locale()) return;
    flUtf8Output = Convert(&stdout, STDOUT_FILENO, _IOLBF);
    Convert(&stderr, STDERR_FILENO, _IONBF);
}

bool TestUtf8Output() {
    return flUtf8Output;
}

void ReadAsLatin(char *line) {
    int number = errno; // what the reader has to tell
    if (isatty(STDIN_FILENO) && TestUtf8Locale()) {
        std::string text = FromUtf8(line);
        memcpy(line, text.c_str(), text.size() + 1);
    }
    errno = number;
}

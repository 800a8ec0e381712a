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
    fprintf(stderr, "\n%s: %s : ", my_name, text.c_str());
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
    fprintf(stderr, "%s: %s\n", level == ERR_WARN ? "WARNING" : "ERROR", text.c_str());
    if (level == ERR_FATAL) exit_app(status);
}

void errormsg(const char *format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = FormatV(format, args);
    va_end(args);
    fflush(stdout);
    fprintf(stderr, "%s: %s\n", my_name, text.c_str());
}

void exit_app(int status) {
    exit(status);
}

// Duplicators of text into managed memory.
#include "common/MemMgr.h"

#include "common/Report.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

// A managed text of the length, not yet filled.
static char *GetMemStr(size_t length) {
    auto copy = static_cast<char *>(GetMem(length + 1));
    if (!copy) SysError("%s", OutOfMem);
    return copy;
}

char *SaveStr_(const char *text) {
    if (!text) text = "";
    size_t length = strlen(text);
    return static_cast<char *>(memcpy(GetMemStr(length), text, length));
}

// Most texts are short: they are formatted once, on the stack.
[[gnu::format(printf, 1, 0)]] static char *SaveStrV(const char *format, va_list args) {
    char scratch[1024];
    va_list again;
    va_copy(again, args);
    int length = vsnprintf(scratch, sizeof(scratch), format, args);
    if (length < 0) SysError("%s", OutOfMem);
    size_t size = static_cast<size_t>(length);
    char *copy = GetMemStr(size);
    if (size < sizeof(scratch))
        memcpy(copy, scratch, size);
    else
        vsnprintf(copy, size + 1, format, again);
    va_end(again);
    return copy;
}

char *SaveStr(const char *format, ...) {
    if (!format) return SaveStr_(nullptr);
    va_list args;
    va_start(args, format);
    char *copy = SaveStrV(format, args);
    va_end(args);
    return copy;
}

char *SaveStr__(const char *format, ...) {
    if (!format) return nullptr;
    va_list args;
    va_start(args, format);
    char *copy = SaveStrV(format, args);
    va_end(args);
    return copy;
}

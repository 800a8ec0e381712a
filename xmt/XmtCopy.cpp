// Managed copies of texts.
#include "xmt/XmtCopy.h"

#include "common/MemMgr.h"
#include "common/Report.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>

char *XmtSaveStr(const char *format, ...) {
    va_list args;
    va_start(args, format);
    int length = vsnprintf(nullptr, 0, format, args);
    va_end(args);
    if (length < 0) length = 0;
    auto text = static_cast<char *>(GetMem(static_cast<size_t>(length) + 1));
    if (!text) XmtSysError("%s", OutOfMem);
    va_start(args, format);
    vsnprintf(text, static_cast<size_t>(length) + 1, format, args);
    va_end(args);
    return text;
}

char *XmtSaveStr_(const char *text) {
    return XmtSaveStr("%s", text ? text : "");
}

void XmtFreeStr(char *text) {
    PutMem(text);
}

void XmtReplaceText(char **field, const char *text) {
    char *copy = XmtSaveStr_(text);
    XmtFreeStr(*field);
    *field = copy;
}

void XmtKeepText(intptr_t *field, const char *text) {
    char *copy = text ? XmtSaveStr_(text) : nullptr;
    XmtFreeStr(reinterpret_cast<char *>(*field));
    *field = reinterpret_cast<intptr_t>(copy);
}

void XmtSysError(const char *format, ...) {
    int error = errno;
    va_list args;
    va_start(args, format);
    std::string text = FormatV(format, args);
    va_end(args);
    fflush(stdout);
    fprintf(stderr, "%s : %s\n", text.c_str(), strerror(error));
    exit_app(1);
}

// Managed copies of texts, null as empty, and the end of the process where there is no memory for one.
#pragma once

#include <cstdint>

// XmtSaveStr takes a literal format. Ends: by XmtSysError when memory is exhausted.
[[nodiscard, gnu::format(printf, 1, 2)]] char *XmtSaveStr(const char *format, ...);
[[nodiscard]] char *XmtSaveStr_(const char *text);
void XmtFreeStr(char *text);
void XmtReplaceText(char **field, const char *text); // puts a managed copy in place of a managed text
// Replaces the managed text in a value field by a copy, or by null. text may be the old one.
void XmtKeepText(intptr_t *field, const char *text);
// Prints the text, " : " and the system's error. Ends: with status 1.
[[noreturn, gnu::format(printf, 1, 2)]] void XmtSysError(const char *format, ...);

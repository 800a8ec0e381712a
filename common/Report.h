// Error reports, the program's exit, and the formatting under all messages. Uses nothing of the system's own.
#pragma once

#include <cstdarg>
#include <string>
#include <string_view>

enum { ERR_SILENT, ERR_WARN, ERR_FATAL }; // levels of ErrorMsg and of all that opens files

extern const char *my_name; // the program's name in messages and of its log; writer: main

// All flush standard output first, so that the texts stand in their order.

// "\nNAME: MESSAGE : system error" on standard error. Ends: with status 1.
[[noreturn, gnu::format(printf, 1, 2)]] void SysError(const char *format, ...);
// ERR_WARN prints "WARNING: ...", ERR_FATAL "ERROR: ..." on standard error; other levels nothing.
// Ends: at ERR_FATAL, with the status.
[[gnu::format(printf, 3, 4)]] void ErrorMsg(int level, int status, const char *format, ...);
[[gnu::format(printf, 1, 2)]] void errormsg(const char *format, ...); // "NAME: ...\n" on standard error
[[noreturn]] void exit_app(int status);

// The formatted text, of any length.
[[gnu::format(printf, 1, 0)]] std::string FormatV(const char *format, va_list args);
// The text as a terminal or a log may have it, of the same length: "?" for each byte of a control character
// other than line feed and tab. What records, printers and files hold could else steer the terminal. Bytes
// from 128 to 159 stand where they belong to a character in UTF-8.
std::string ShowPlain(std::string_view text);
// The number at the start of the text, 0 without one; beyond an int its limit. *end (may be null) is what
// follows it.
int ParseInt(const char *text, const char **end = nullptr, int base = 10);

// Letters beyond ASCII at a terminal. Texts are in Latin-1; a terminal whose locale says UTF-8 gets and sends
// that. Pipes and files have the bytes as they are. The locale is known by its name alone: the process stays
// in the locale "C".
#pragma once

#include <string>
#include <string_view>

// Whether the environment names a locale of UTF-8: the first of LC_ALL, LC_CTYPE and LANG that isn't empty.
bool TestUtf8Locale();
// Standard output and standard error become streams that convert, each where it is a terminal and the locale
// is one of UTF-8. Called once, before anything is written. Neither stream has a descriptor (fileno) then.
void InitTerminal();
bool TestUtf8Output(); // InitTerminal made standard output such a stream

// Each byte beyond ASCII as its letter in UTF-8. What is UTF-8 already stays: texts of printers and hosts
// come as that, too.
std::string ToUtf8(std::string_view text);
// The letters that Latin-1 has as their bytes; others, and what is no UTF-8, stay as they are.
std::string FromUtf8(std::string_view text);
// The same in place for a line that was read from standard input, where that is a terminal of UTF-8. It never
// gets longer.
void ReadAsLatin(char *line);
// The length of the letter that begins the text, in bytes: over 1 for one of UTF-8, 0 at the end.
size_t GetLetterLength(std::string_view text);

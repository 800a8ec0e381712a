// Message catalogues: decides the language, opens the catalogues, fetches, formats and installs texts.
//
// Every text that the user reads is a record "SET_NUMBER" of a database pToolPath/db/LANGUAGE/NAME.xdb; the
// text with its NUL is the data. doc/xdb.md tells the files, and the source form from which mkcat makes them.
//
// The language is decided once for the process, by the first NlsOpenDB, from LANG and the table trans.conf.
// A fetch that finds nothing gives the key as the text: a missing message shows as 25_1017.
#pragma once

#include "common/DbmT.h"

#include <cstdio>
#include <string>
#include <type_traits>

enum { NLS_TTY_SET = 25, NLS_HELP_SET = 35 };
enum { NLS_MENU_TEXT = 128, NLS_GUI_TEXT = 1024, NLS_FETCH = 2048, NLS_TOPIC = 64 };
enum { NLS_FETCH_NUMBER = 0, NLS_FETCH_KEY = 1, NLS_FETCH_LONG = 3 }; // modes of NlsFetchString

extern DbTHandle *pDrvCoreDB; // messages and labels; writers: the start-up, and GetDesiredNLSLang for a while
extern DbTHandle *pPrtHelpDB; // help of printer settings; writer: the start-up
extern DbTHandle *pPrtCoreDB; // printer strings; writer: the start-up
extern char *pNLSLang;        // null until decided; writer: GetDesiredNLSLang
extern char *pNLSTable;       // language table in normal form, null until read; writer: GetDesiredNLSLang
extern char NlsBuf[4096];     // a message in the making; whoever fills it uses it at once

// Owns: DbTClose. The catalogue of the decided language; null, with "ERROR:  Could not open English database:
// PATH" on standard error, if it is an English one and missing. A missing one of another language gives an
// empty handle.
[[nodiscard]] DbTHandle *NlsOpenDB(const char *catalogue, int flags);
// The language, which stays with pNLSLang; never null. May leave a handle of "en_US/CoreString" in
// pDrvCoreDB, which NlsOpenDB closes again. Uses: pNLSLang, pNLSTable, pDrvCoreDB.
char *GetDesiredNLSLang();
// Owns: the table of the file in the tool directory in its normal form, single tokens with a blank behind
// each, "= ", and " \n" behind the last of a line; null if the file can't be read. A '#' opens a comment
// where a token might start; '=' stands for itself only there; a backslash is an ordinary character; all of
// the file is consumed.
[[nodiscard]] char *ParseTransFile(const char *name);
// The text of a number (mode 0), of any length (mode 3), or of a free key (modes 1, 2); the key itself if
// there is none, also for a null handle. Modes 0 to 2 cut at 2047 characters. Whose the result is:
//   with out and a capacity, modes 0 to 2   the caller's: it is out, which holds the text cut to the capacity
//   without, and always for mode 3          Owns: the result; mode 3 leaves out alone
//   nothing to ask for, without out         nobody's: the constant "Error", which PutMem leaves alone
// Nothing to ask for is: a null key, or a null handle and 0 for the set or the number; out then holds
// "Error".
char *NlsFetchString(DbTHandle *handle, char *out, size_t capacity, int mode, int set, int number);
char *NlsFetchString(DbTHandle *handle, char *out, size_t capacity, int mode, const char *key);

// The template with its first "%s" replaced by text set_1, its second by set_2, and so on; each text is cut
// at 1023 characters and is not looked at again. The result is out, cut at its size.
char *NlsGuiStrCvt(const char *text, int set, char *out, size_t size);
// Buffer: 16 hexadecimal digits of the text, valid until the next call.
char *NlsCalcStrVal(const char *text);
// The topic of a text that holds "$$topic.redirect", cut off in place; null without one.
char *FindRedirect(char *text);
// Replaces such a text by the topic's from pPrtHelpDB. Buffer: the topic, cut at 63 characters; null without
// one.
char *CheckForRedirect(char *text, size_t capacity);

// A catalogue text as a printf format. The conversions of the text must be those of the signature, in order,
// one letter each ("s", "ii", "c", "L" for %Lg, "f", "x"); fewer at the end are allowed, %n and * never. The
// integer letters i, d, u, x, X, o stand for each other, and so do the floating ones. A text that does not
// fit comes back unformatted. The arguments are const char* (null as ""), int (i and c), double and long
// double. For a catalogue text: NlsFmt(NlsText(handle, SET, TEXT).c_str(), "ii", min, max).
std::string NlsFmt(const char *text, const char *signature, ...);
// Fetches set_number as a plain C++ text, at most 2047 characters.
std::string NlsText(DbTHandle *handle, int set, int number);

// The text formatted by NlsFmt, "Error" if it is missing.
std::string NlsFmtText(DbTHandle *handle, int set, int number, const char *signature, ...);
void NlsCopy(char *buffer, size_t capacity, const std::string &text); // cut to the capacity

// The letter of NlsFmt for an argument; any other type is refused by the compiler.
template <typename T>
constexpr char NlsLetter() {
    using A = std::decay_t<T>;
    if constexpr (std::is_same_v<A, char>)
        return 'c';
    else if constexpr (std::is_integral_v<A> && sizeof(A) <= sizeof(int))
        return 'i';
    else if constexpr (std::is_same_v<A, double> || std::is_same_v<A, float>)
        return 'f';
    else if constexpr (std::is_same_v<A, long double>)
        return 'L';
    else {
        static_assert(std::is_convertible_v<A, const char *>, "an argument that no catalogue text can print");
        return 's';
    }
}

// Print set_number as a format with the arguments, whose types the compiler writes down as the signature: a
// damaged or foreign catalogue can't read more, or other, arguments than there are. "Error" if the text is
// missing. A character that stands for a %c is passed as char.
template <typename... A>
void Nlsfprintf(FILE *out, DbTHandle *handle, int set, int number, A... args) {
    static constexpr char signature[] = {NlsLetter<A>()..., '\0'};
    fputs(NlsFmtText(handle, set, number, signature, args...).c_str(), out);
}
template <typename... A>
void Nlssprintf(char *buffer, size_t capacity, DbTHandle *handle, int set, int number, A... args) {
    static constexpr char signature[] = {NlsLetter<A>()..., '\0'};
    NlsCopy(buffer, capacity, NlsFmtText(handle, set, number, signature, args...));
}

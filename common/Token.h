// String search and the token scanner with which every small language of the system is read.
//
// A text is handed over once (SetTokenBuf, or as the input of the first call), then each call with a null
// input yields the next token until it yields null. The delimiters are given with each call and may change
// from call to call. Runs of delimiters count as one and no token is empty. Nothing here may be called inside
// another's token loop unless one side works with GetTokenD or puts the place back: save GetTokenBufInput()
// (and chTokenDel, if it is still to be looked at), scan, SetTokenBuf.
#pragma once

#include <cstddef>

enum { TOKEN_SIZE = 128 }; // a token has at most 127 characters; the rest of a longer one is swallowed

// Handed to GetToken, GetTokenD and GetTokenParse as input: go on in line mode, where a token that a line
// feed ends is given up for a null result. Never dereferenced.
extern char *const pTokenLine;

extern char GetTokenBuf[TOKEN_SIZE]; // the token last returned by GetToken; written by it and GetTokenCount
extern char *szIn;      // read position of GetToken and GetTokenParse, which move it, and SetTokenBuf
extern char *szTokenIn; // copy of it, updated when a call ends normally
extern char chTokenDel; // the character that ended the last token, 0 for the end of the text

// ---- search and small changes. Null texts are accepted everywhere; results point into the argument.

// The first match, or null; an empty text or pattern never matches. StrCaseStr ignores case.
char *StrStr(const char *text, const char *pattern);
char *StrCaseStr(const char *text, const char *pattern);
// The first ch that is not escaped: a backslash hides itself and the next character, so it is never found
// itself.
char *StrChr(const char *text, char ch);
// The n-th occurrence from 1, or null, also for n below 1. Occurrences of a pattern may overlap.
char *StrNChr(const char *text, char ch, int n);
char *StrNStr(const char *text, const char *pattern, int n);
int StrLen(const char *text); // 0 for null
char *SkipSpace(const char *text);
// In place; the result is the text. StripNonPrint keeps letters, digits, punctuation and the blank.
char *StripNonPrint(char *text);
char *StripAllBackslashes(char *text);
// Copies count bytes, in reverse order when flReverse is set; the two must not overlap then.
void SetVarContent(void *target, const void *source, int count, int flReverse);
double MaxD(double a, double b); // b when they are equal
enum { UNIT_INCH, UNIT_CM, UNIT_POINT };
float CvtFloatFormat(float value, int from, int to); // an unknown unit leaves the value as it is

// ---- the scanner. What it reads: characters up to one of the delimiters. What a backslash does: the next
// character belongs to the token whatever it is, n, r and t as line feed, return and tab. Where it stops:
// behind the delimiter that ended the token, or at the end of the text. What it consumes: the token,
// delimiters before it and the one behind it.

struct TokenScan {
    const char *position; // next character; null yields SCAN_END
    char *token;          // where the token goes
    size_t capacity;      // with its NUL
    char del;             // the delimiter met last, 0 for none
    bool flLine;          // line mode
};
enum { SCAN_END, SCAN_TOKEN, SCAN_LINE }; // SCAN_LINE: a token ended by a line feed in line mode
// One step over a state of the caller's; GetToken, GetTokenD and their likes are built on it.
int ScanToken(TokenScan *scan, const char *delims);

void SetTokenBuf(const char *text);
char *GetTokenBufInput();
// The next token or null. in: a text to start with, null to go on, or pTokenLine.
// Buffer: GetTokenBuf, until the next call. Uses: the token state.
char *GetToken(const char *in, const char *delims);
// The same with the place in *position and the token in a buffer of TOKEN_SIZE bytes. Uses: chTokenDel.
char *GetTokenD(const char *in, const char *delims, char **position, char *token);
// The same in place: tokens of any length, backslashes stay, each delimiter passed becomes NUL. Uses: the
// token state except GetTokenBuf.
char *GetTokenParse(char *in, const char *delims);
// Splits in place, without backslashes: the number of slots filled; the others are null.
int ParseStr(char *text, const char *delims, char **slots, int capacity);
// The n-th token from 1 (n below 1: the first), or null. Buffer, Uses: as GetToken.
char *GetTokenN(const char *in, const char *delims, int n);
// Counts without a trace in the token state.
int GetTokenCount(const char *in, const char *delims);

// ---- lists of words. Positions count from 1; 0 for absent and for null arguments.

// The list starts with its own delimiter, as in ",update,-tty,"; a last entry needs none behind it.
int FindToken(const char *token, const char *list);
int FindTokenC(const char *token, const char *list); // regardless of case
// The first field stands at the start of the list.
int FindTokenWithDelim(const char *list, const char *token, char delim);
// Sorts in place, ascending; an escaped delimiter does not split a token. Each token takes a delimiter behind
// it except the last, which keeps what it had: "c,a" becomes "a,c,". The list must therefore have one spare
// byte behind its NUL (managed copies have). A token without a delimiter compares over its own length only,
// so it stays behind tokens that begin with it: ",abc,ab" stays as it is but for the order of the others.
// Ends: when memory is exhausted.
void SortTokens(char *list, char delim, int flNoCase);

// String search and the token scanner with which every small language of the system is read.
#pragma once

#include <cstddef>

enum { TOKEN_SIZE = 128 }; // a token has at most 127 characters; the rest of a longer one is swallowed

// Handed to GetToken, GetTokenD and GetTokenParse as input: go on in line mode. Never dereferenced.
extern char *const pTokenLine;

extern char GetTokenBuf[TOKEN_SIZE]; // the token last returned by GetToken
extern char *szIn;                   // read position of GetToken and GetTokenParse
extern char *szTokenIn;              // copy of it, updated when a call ends normally
extern char chTokenDel;              // the character that ended the last token, 0 for the end of the text

char *StrStr(const char *text, const char *pattern);
char *StrCaseStr(const char *text, const char *pattern);
char *StrChr(const char *text, char ch);
char *StrNChr(const char *text, char ch, int n);
char *StrNStr(const char *text, const char *pattern, int n);
int StrLen(const char *text);
char *SkipSpace(const char *text);
char *StripNonPrint(char *text);
char *StripAllBackslashes(char *text);
void SetVarContent(void *target, const void *source, int count, int flReverse);
double MaxD(double a, double b);
enum { UNIT_INCH, UNIT_CM, UNIT_POINT };
float CvtFloatFormat(float value, int from, int to);

void SetTokenBuf(const char *text);
char *GetTokenBufInput();
char *GetToken(const char *in, const char *delims);
char *GetTokenD(const char *in, const char *delims, char **position, char *token); // token: TOKEN_SIZE bytes
char *GetTokenParse(char *in, const char *delims);
int ParseStr(char *text, const char *delims, char **slots, int capacity);
char *GetTokenN(const char *in, const char *delims, int n);
int GetTokenCount(const char *in, const char *delims);
int FindToken(const char *token, const char *list);
int FindTokenC(const char *token, const char *list);
int FindTokenWithDelim(const char *list, const char *token, char delim);
// The list must have one spare byte behind its NUL (managed copies have): the sorted list may gain a delimiter.
void SortTokens(char *list, char delim, int flNoCase);

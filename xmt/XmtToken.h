// Tokens: the toolkit's twins of common/Token.h, with a state of their own.
#pragma once

#include <cstddef>

enum { XMT_TOKEN_SIZE = 512, XMT_STRTOK_SIZE = 4096 };
extern char XmtGetTokenBuf[XMT_TOKEN_SIZE];
extern char *szXmtTokenIn;
extern char chXmtTokenDel;
void XmtSetTokenBuf(const char *text);
char *XmtGetToken(const char *in, const char *delims);
int XmtFindToken(const char *token, const char *list);
// Words of a list with its delimiter at both ends, for the tables that run beside it.
template <size_t N>
consteval size_t XmtCountWords(const char (&list)[N]) {
    size_t count = 0;
    for (char ch : list) count += ch == list[0];
    return count - 1;
}

// A tokeniser whose state is the caller's. A text starts a scan, null goes on; null at the end. Runs of
// delimiters count as one; a backslash takes the next character into the token, n, r and t translated.
struct XmtTokenRecord {
    char buffer[XMT_STRTOK_SIZE];
    const char *position;
    char del; // that ended the last token, 0 for the end
};
char *XmtStrTok(XmtTokenRecord *record, const char *text, const char *delims);

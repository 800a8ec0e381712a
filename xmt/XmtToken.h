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
// The first row whose key is not the word at its place in the list, XMT_IN_PLACE without one: rows are found
// by the place of a word, so one that is put in, left out or swapped would serve another word. The first word
// has the row number that first tells.
enum { XMT_IN_PLACE = -1 };
consteval bool XmtIsWordAt(const char *at, const char *word, char del) {
    while (*word && *at == *word) at++, word++;
    return !*word && *at == del;
}
template <typename Row, size_t N, size_t M>
consteval int XmtMisplacedRow(const Row (&rows)[N], const char (&list)[M], size_t first = 1) {
    const char *at = list;
    for (size_t i = first; i < N; i++) {
        if (!XmtIsWordAt(++at, rows[i].key, list[0])) return static_cast<int>(i);
        while (*at != list[0]) at++;
    }
    return XMT_IN_PLACE;
}
// The same for a list of single letters, the first of them with row 0.
template <typename Row, size_t N, size_t M>
consteval int XmtMisplacedLetter(const Row (&rows)[N], const char (&letters)[M]) {
    for (size_t i = 0; i < N; i++)
        if (rows[i].key[0] != letters[i] || rows[i].key[1]) return static_cast<int>(i);
    return XMT_IN_PLACE;
}

// A tokeniser whose state is the caller's. A text starts a scan, null goes on; null at the end. Runs of
// delimiters count as one; a backslash takes the next character into the token, n, r and t translated.
struct XmtTokenRecord {
    char buffer[XMT_STRTOK_SIZE];
    const char *position;
    char del; // that ended the last token, 0 for the end
};
char *XmtStrTok(XmtTokenRecord *record, const char *text, const char *delims);

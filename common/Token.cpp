// String search, the token scanner and lists of words.
#include "common/Token.h"

#include "common/MemMgr.h"
#include "common/Report.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <strings.h>

char *const pTokenLine = reinterpret_cast<char *>(intptr_t{-1});

char GetTokenBuf[TOKEN_SIZE];
char *szIn = nullptr;
char *szTokenIn = nullptr;
char chTokenDel = '\0';

// ---- search and small changes

static int Upper(char ch) {
    return toupper(static_cast<unsigned char>(ch));
}

char *StrStr(const char *text, const char *pattern) {
    if (!text || !pattern || !*text || !*pattern) return nullptr;
    return const_cast<char *>(strstr(text, pattern));
}

char *StrCaseStr(const char *text, const char *pattern) {
    if (!text || !pattern || !*pattern) return nullptr;
    for (; *text; text++) {
        size_t i = 0;
        while (pattern[i] && Upper(text[i]) == Upper(pattern[i])) i++;
        if (!pattern[i]) return const_cast<char *>(text);
    }
    return nullptr;
}

char *StrChr(const char *text, char ch) {
    if (!text || !ch) return nullptr;
    for (; *text; text++) {
        if (*text == '\\') {
            if (!*++text) return nullptr;
        } else if (*text == ch) {
            return const_cast<char *>(text);
        }
    }
    return nullptr;
}

char *StrNChr(const char *text, char ch, int n) {
    if (!text || n < 1) return nullptr;
    for (; *text; text++)
        if (*text == ch && --n == 0) return const_cast<char *>(text);
    return nullptr;
}

char *StrNStr(const char *text, const char *pattern, int n) {
    if (n < 1) return nullptr;
    char *hit = StrStr(text, pattern);
    while (hit && --n > 0) hit = StrStr(hit + 1, pattern);
    return hit;
}

int StrLen(const char *text) {
    return text ? static_cast<int>(strlen(text)) : 0;
}

char *SkipSpace(const char *text) {
    while (text && isspace(static_cast<unsigned char>(*text))) text++;
    return const_cast<char *>(text);
}

char *StripNonPrint(char *text) {
    if (!text) return nullptr;
    char *to = text;
    for (const char *from = text; *from; from++) {
        int ch = static_cast<unsigned char>(*from);
        if (isalnum(ch) || ispunct(ch) || ch == ' ') *to++ = *from;
    }
    *to = '\0';
    return text;
}

char *StripAllBackslashes(char *text) {
    if (text) *std::remove(text, text + strlen(text), '\\') = '\0';
    return text;
}

void SetVarContent(void *target, const void *source, int count, int flReverse) {
    if (!target || !source || count <= 0) return;
    auto from = static_cast<const char *>(source);
    if (flReverse)
        std::reverse_copy(from, from + count, static_cast<char *>(target));
    else
        memmove(target, source, static_cast<size_t>(count));
}

double MaxD(double a, double b) {
    return a > b ? a : b;
}

static constexpr double CM_PER_INCH = 2.54;
static constexpr double POINTS_PER_INCH = 72.0;

float CvtFloatFormat(float value, int from, int to) {
    static constexpr double perInch[] = {1.0, CM_PER_INCH, POINTS_PER_INCH};
    if (from < UNIT_INCH || from > UNIT_POINT || to < UNIT_INCH || to > UNIT_POINT || from == to)
        return value;
    return static_cast<float>(value / perInch[from] * perInch[to]);
}

// ---- the scanner

static bool IsDelim(char ch, const char *delims) {
    while (*delims && *delims != ch) delims++;
    return *delims != '\0';
}

static char EscapedChar(char ch) {
    switch (ch) {
    case 'n': return '\n';
    case 'r': return '\r';
    case 't': return '\t';
    default: return ch; // every other character stands for itself
    }
}

int ScanToken(TokenScan *scan, const char *delims) {
    size_t length = 0;
    scan->del = '\0';
    if (!delims) delims = "";
    const char *in = scan->position ? scan->position : "";
    for (; *in; in++) {
        char ch = *in;
        if (ch == '\\') {
            if (!*++in) break;
            ch = EscapedChar(*in);
        } else if (IsDelim(ch, delims)) {
            scan->del = ch;
            if (length == 0) continue;
            scan->token[std::min(length, scan->capacity - 1)] = '\0';
            scan->position = in + 1;
            return scan->flLine && ch == '\n' ? SCAN_LINE : SCAN_TOKEN;
        }
        if (length < scan->capacity - 1) scan->token[length] = ch;
        length++;
    }
    scan->token[std::min(length, scan->capacity - 1)] = '\0';
    if (scan->position) scan->position = in;
    return length ? SCAN_TOKEN : SCAN_END;
}

void SetTokenBuf(const char *text) {
    szIn = szTokenIn = const_cast<char *>(text);
}

char *GetTokenBufInput() {
    return szIn;
}

char *GetToken(const char *in, const char *delims) {
    if (in && in != pTokenLine) szIn = const_cast<char *>(in);
    TokenScan scan = {szIn, GetTokenBuf, TOKEN_SIZE, '\0', in == pTokenLine};
    int result = ScanToken(&scan, delims);
    szIn = const_cast<char *>(scan.position);
    chTokenDel = scan.del;
    if (result != SCAN_LINE) szTokenIn = szIn;
    return result == SCAN_TOKEN ? GetTokenBuf : nullptr;
}

char *GetTokenD(const char *in, const char *delims, char **position, char *token) {
    const char *start = in && in != pTokenLine ? in : *position;
    TokenScan scan = {start, token, TOKEN_SIZE, '\0', in == pTokenLine};
    int result = ScanToken(&scan, delims);
    *position = const_cast<char *>(scan.position);
    chTokenDel = scan.del;
    return result == SCAN_TOKEN ? token : nullptr;
}

char *GetTokenParse(char *in, const char *delims) {
    if (in && in != pTokenLine) szIn = in;
    chTokenDel = '\0';
    if (!delims) delims = "";
    char *token = szIn;
    for (; szIn && *szIn; szIn++) {
        if (*szIn == '\\') {
            if (szIn[1]) szIn++;
        } else if (IsDelim(*szIn, delims)) {
            chTokenDel = *szIn;
            *szIn = '\0';
            if (szIn == token) {
                token++;
                continue;
            }
            szIn++;
            if (in == pTokenLine && chTokenDel == '\n') return nullptr;
            szTokenIn = szIn;
            return token;
        }
    }
    szTokenIn = szIn;
    return token == szIn ? nullptr : token;
}

int ParseStr(char *text, const char *delims, char **slots, int capacity) {
    int count = 0;
    if (!slots || capacity <= 0) return 0;
    std::fill(slots, slots + capacity, nullptr);
    if (!text) return 0;
    if (!delims) delims = "";
    while (count < capacity) {
        text += strspn(text, delims);
        if (!*text) break;
        slots[count++] = text;
        text += strcspn(text, delims);
        if (*text) *text++ = '\0';
    }
    return count;
}

char *GetTokenN(const char *in, const char *delims, int n) {
    char *token = GetToken(in, delims);
    while (token && --n > 0) token = GetToken(nullptr, delims);
    return token;
}

int GetTokenCount(const char *in, const char *delims) {
    int count = 0;
    char *savedIn = szIn, *savedTokenIn = szTokenIn, savedDel = chTokenDel, savedBuf[TOKEN_SIZE];
    memcpy(savedBuf, GetTokenBuf, TOKEN_SIZE);
    for (char *token = GetToken(in, delims); token; token = GetToken(nullptr, delims)) count++;
    memcpy(GetTokenBuf, savedBuf, TOKEN_SIZE);
    szIn = savedIn;
    szTokenIn = savedTokenIn;
    chTokenDel = savedDel;
    return count;
}

// ---- lists of words

// An entry with a delimiter behind it comes before the text behind the last delimiter: only a token that
// holds the delimiter itself can tell the difference.
int FindToken(const char *token, const char *list) {
    if (!token || !list || !*list) return 0;
    size_t length = strlen(token);
    const char *last = list;
    int count = 0;
    for (const char *in = list; in; in = strchr(in + 1, *list)) {
        count++;
        last = in;
        if (strncmp(in + 1, token, length) == 0 && in[1 + length] == *list) return count;
    }
    return strcmp(last + 1, token) == 0 ? count : 0;
}

int FindTokenC(const char *token, const char *list) {
    if (!token || !list || !*list) return 0;
    size_t length = strlen(token);
    int count = 0;
    for (const char *in = list; in; in = strchr(in + 1, *list)) {
        count++;
        if (strncasecmp(in + 1, token, length) == 0 && (in[1 + length] == *list || !in[1 + length]))
            return count;
    }
    return 0;
}

int FindTokenWithDelim(const char *list, const char *token, char delim) {
    if (!list || !token) return 0;
    size_t length = strlen(token);
    for (int count = 1; list; count++) {
        if (strncmp(list, token, length) == 0 && (list[length] == delim || !list[length])) return count;
        list = delim ? strchr(list, delim) : nullptr;
        if (list) list++;
    }
    return 0;
}

// Where the token ends: behind its delimiter, or at the end of the text.
static char *SortTokensEnd(char *token, char delim) {
    char *end = StrChr(token, delim);
    return end ? end + 1 : token + strlen(token);
}

// The smallest token of a text that is not empty, the first of equal ones.
static char *SortTokensMin(char *text, char delim, int flNoCase) {
    auto compare = flNoCase ? strncasecmp : strncmp;
    char *smallest = text, *end;
    for (char *token = text; *token; token = end) {
        end = SortTokensEnd(token, delim);
        if (compare(token, smallest, static_cast<size_t>(end - token)) < 0) smallest = token;
    }
    return smallest;
}

// Moves the smallest token of the copy to the list until the copy is empty.
static void SortTokensSelect(char *list, char *copy, char delim, int flNoCase) {
    while (*copy) {
        char *token = SortTokensMin(copy, delim, flNoCase);
        char *end = SortTokensEnd(token, delim);
        bool flDelim = StrChr(token, delim) != nullptr;
        list = std::copy(token, end, list);
        memmove(token, end, strlen(end) + 1);
        if (!flDelim && *copy) *list++ = delim;
    }
    *list = '\0';
}

struct SortToken {
    const char *text; // with its delimiter
    size_t length;
};

// The tokens that have a delimiter, up to the capacity; rest is set to the text behind the last of them.
static size_t SortTokensSplit(const char *copy, char delim, SortToken *tokens, size_t capacity,
                              const char **rest) {
    size_t count = 0;
    for (const char *end; (end = StrChr(copy, delim)); copy = end + 1, count++)
        if (count < capacity) tokens[count] = {copy, static_cast<size_t>(end + 1 - copy)};
    *rest = copy;
    return count;
}

// What the selection gives, without its quadratic time. Tokens with their delimiter are never the beginning
// of one another, so that they have one order, equal ones by their place. Only the last token can lack the
// delimiter; it comes when the smallest of the others is larger over its own length.
static void SortTokensArray(char *list, const char *copy, char delim, int flNoCase) {
    auto compare = flNoCase ? strncasecmp : strncmp;
    const char *rest;
    size_t count = SortTokensSplit(copy, delim, nullptr, 0, &rest), restLength = strlen(rest);
    auto tokens = static_cast<SortToken *>(GetMem((count + 1) * sizeof(SortToken)));
    if (!tokens) SysError("%s", OutOfMem);
    SortTokensSplit(copy, delim, tokens, count, &rest);
    std::sort(tokens, tokens + count, [=](const SortToken &a, const SortToken &b) {
        int order = compare(a.text, b.text, std::min(a.length, b.length));
        return order ? order < 0 : a.text < b.text;
    });
    for (size_t i = 0; i < count; i++) {
        if (restLength && compare(rest, tokens[i].text, restLength) < 0) {
            list = std::copy(rest, rest + restLength, list);
            *list++ = delim;
            restLength = 0;
        }
        list = std::copy(tokens[i].text, tokens[i].text + tokens[i].length, list);
    }
    *std::copy(rest, rest + restLength, list) = '\0';
    PutMem(tokens);
}

// A letter as the delimiter could equal a letter of a token when case is ignored.
void SortTokens(char *list, char delim, int flNoCase) {
    if (!list) return;
    while (delim && *list == delim) list++;
    char *copy = SaveStr_(list);
    if (flNoCase && isalpha(static_cast<unsigned char>(delim)))
        SortTokensSelect(list, copy, delim, flNoCase);
    else
        SortTokensArray(list, copy, delim, flNoCase);
    PutMem(copy);
}

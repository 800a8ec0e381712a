// Readers of values.
#include "xmt/XmtValue.h"

#include "common/MemMgr.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

const char *pNewDesc = "";
XmtHandler AppCB;
int AppCBValue = 1;
int SpecifiedAppCBValue;
int GetDescLen;

static bool IsWordChar(char ch) {
    return isalnum(static_cast<unsigned char>(ch)) || ch == '_';
}

const char *XmtSkipSpace(const char *position) {
    while (XmtIsSpace(*position)) position++;
    return position;
}

static const char *SkipOpen(const char *position) {
    return *position == '(' ? position + 1 : position;
}

// Up to one of the ends that is not escaped, or the end of the text; backslashes stay.
static const char *ReadUpTo(std::string *out, const char *position, const char *ends) {
    const char *start = position;
    for (; *position && !strchr(ends, *position); position++)
        if (*position == '\\' && position[1]) position++;
    out->assign(start, position);
    return position;
}

const char *GetArgValue(std::string *out, const char *position) {
    return ReadUpTo(out, SkipOpen(position), ",)");
}

void GetValue(std::string *out) {
    pNewDesc = GetArgValue(out, pNewDesc);
    if (*pNewDesc) pNewDesc++;
}

const char *GetArgValues(std::string *out, const char *position) {
    return ReadUpTo(out, SkipOpen(position), ")");
}

// A ')' behind a backslash that was itself escaped is text as well.
void GetValues(std::string *out) {
    out->clear();
    for (pNewDesc = SkipOpen(pNewDesc); *pNewDesc && *pNewDesc != ')'; pNewDesc++) {
        if (*pNewDesc == '\\' && !*++pNewDesc) return;
        *out += *pNewDesc;
        if (*pNewDesc == '\\' && pNewDesc[1] == ')') *out += *++pNewDesc;
    }
    if (*pNewDesc) pNewDesc++;
}

const char *GetSavedArgValues(char **text, const char *position) {
    std::string value;
    position = GetArgValues(&value, position);
    *text = SaveStr_(value.c_str());
    return position;
}

void GetSavedValues(char **text) {
    pNewDesc = GetSavedArgValues(text, pNewDesc);
    if (*pNewDesc) pNewDesc++;
}

int GetNumber() {
    pNewDesc = SkipOpen(pNewDesc);
    int number = atoi(pNewDesc);
    while (isdigit(static_cast<unsigned char>(*pNewDesc))) pNewDesc++;
    if (*pNewDesc && strchr(",()", *pNewDesc)) pNewDesc++;
    return number;
}

const char *GetWord(std::string *out, const char *position) {
    const char *start = position = XmtSkipSpace(position);
    while (IsWordChar(*position)) position++;
    out->assign(start, position);
    return position;
}

char *GetDesc(char end, int flKeep) {
    const char ends[] = {end, '\0'};
    std::string text;
    pNewDesc = ReadUpTo(&text, pNewDesc, ends);
    if (*pNewDesc && flKeep) text += end;
    if (*pNewDesc) pNewDesc++;
    GetDescLen = static_cast<int>(text.size());
    return SaveStr_(text.c_str());
}

char GetEscapedValue(char ch) {
    switch (ch) {
    case 'n': return '\n';
    case 'r': return '\r';
    case 't': return '\t';
    default: return ch; // every other character stands for itself
    }
}

int GetArgCount(const char *position) {
    std::string value;
    if (*position == '(' && position[1] == ')') return 0;
    int count = 1;
    for (position = GetArgValue(&value, position); *position == ','; count++)
        position = ReadUpTo(&value, position + 1, ",)");
    return count;
}

// The argument's place in the text: its start, and its length by *length; npos if there is none.
static size_t FindArg(const char *name, const char *text, size_t *length) {
    std::string word, value;
    for (const char *in = text; *(in = XmtSkipSpace(in));) {
        const char *start = in;
        in = GetWord(&word, in);
        if (in == start) {
            in++;
            continue;
        }
        if (*in == '(') in = ReadUpTo(&value, in, ")");
        if (*in == ')' && in != start + word.size()) in++;
        *length = static_cast<size_t>(in - start);
        if (word == name) return static_cast<size_t>(start - text);
    }
    return std::string::npos;
}

bool CopyArg(const char *name, const char *text, std::string *out) {
    size_t length, place = name && *name && text ? FindArg(name, text, &length) : std::string::npos;
    if (out) out->clear();
    if (place == std::string::npos) return false;
    if (out) out->assign(text + place, length);
    return true;
}

bool StripArg(const char *name, std::string *text, std::string *out) {
    size_t length, place = name && *name ? FindArg(name, text->c_str(), &length) : std::string::npos;
    if (out) out->clear();
    if (place == std::string::npos) return false;
    if (out) out->assign(*text, place, length);
    text->erase(place, length);
    return true;
}

bool XmtValues::Next() {
    if (!position) return false;
    position = GetArgValue(&value, position);
    position = *position == ',' ? position + 1 : nullptr;
    return true;
}

std::string XmtDropEscapes(const std::string &text, bool flControl) {
    std::string plain;
    for (size_t i = 0; i < text.size(); i++) {
        bool flEscaped = text[i] == '\\' && i + 1 < text.size();
        if (flEscaped) i++;
        plain += flEscaped && flControl ? GetEscapedValue(text[i]) : text[i];
    }
    return plain;
}

std::string XmtInsertEscape(const char *text) {
    std::string out;
    for (; *text != '\0'; text++) {
        if (strchr("(),;<>", *text) != nullptr) out += '\\';
        out += *text;
        if (*text == '\\' && text[1] != '\0') out += *++text;
    }
    return out;
}

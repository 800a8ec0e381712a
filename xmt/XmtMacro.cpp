// Macros of descriptions.
#include "xmt/XmtMacro.h"

#include "common/MemMgr.h"
#include "xmt/XmtValue.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

char *Macro[XMT_MACROS];

struct MacroCall {
    const char *back; // where the caller goes on
    char *text;       // what is read, managed
};
static MacroCall Mac[XMT_CALLS];
static int MacI;      // calls in progress
static int MacBase;   // those below it wait for an included text or a nested description to end
static int CallsLeft; // of the description in hand

XmtMacroLevel::XmtMacroLevel() : base(MacBase) {
    MacBase = MacI;
}

XmtMacroLevel::~XmtMacroLevel() {
    while (MacI > MacBase) PutMem(Mac[--MacI].text);
    MacBase = base;
}

void XmtRenewCalls() {
    if (MacI == 0) CallsLeft = XMT_CALLS_ALL;
}

bool XmtTakeCall() {
    if (CallsLeft <= 0) return false;
    CallsLeft--;
    return true;
}

// The rest of the line behind the number, its blank included, becomes the body.
void XmtDefineMacro() {
    int number = atoi(pNewDesc);
    for (int digits = number <= 9 ? 1 : 2; digits > 0 && *pNewDesc; digits--) pNewDesc++;
    char *body = GetDesc('\n', 0);
    if (number >= 0 && number < XMT_MACROS) std::swap(body, Macro[number]);
    PutMem(body);
}

// The body is copied even if it is read as it stands: it may define its own number anew.
void PushMacro() {
    int number = GetNumber();
    const char *body = number >= 0 && number < XMT_MACROS ? Macro[number] : nullptr;
    if (!body || MacI == XMT_CALLS || !XmtTakeCall()) return;
    std::string text, arguments;
    if (pNewDesc[-1] == '(') {
        GetValues(&arguments);
        ExpandMacro(&text, body, arguments.c_str());
        body = text.c_str();
    }
    Mac[MacI] = {pNewDesc, SaveStr_(body)};
    pNewDesc = Mac[MacI++].text;
}

void PopMacro() {
    while (!*pNewDesc && MacI > MacBase) {
        pNewDesc = Mac[--MacI].back;
        PutMem(Mac[MacI].text);
    }
}

struct Expansion {
    std::string *out;
    const char *arguments; // not yet taken
    int count;             // saved values
    char values[XMT_SAVED_VALUES][XMT_SAVED_VALUE_SIZE];
};

// Text up to the end character, which is consumed, with its escapes translated.
static std::string TakeText(const char **position, char end) {
    std::string text;
    const char *in = *position;
    for (; *in && *in != end; in++) {
        if (*in != '\\')
            text += *in;
        else if (in[1])
            text += GetEscapedValue(*++in);
    }
    *position = *in ? in + 1 : in;
    return text;
}

static void SaveValue(Expansion *expansion, const std::string &text) {
    if (expansion->count == XMT_SAVED_VALUES) return;
    snprintf(expansion->values[expansion->count++], XMT_SAVED_VALUE_SIZE, "%s", text.c_str());
}

// Behind an '&' that means something: where the body goes on, otherwise null.
static const char *ExpandValue(Expansion *expansion, const char *in) {
    if (*in == '*') {
        SaveValue(expansion, TakeText(&expansion->arguments, ','));
        return in + 1;
    }
    if (*in == '\'') {
        SaveValue(expansion, TakeText(&++in, '\''));
        return in;
    }
    if (*in < '0' || *in > '9' || expansion->count == 0) return nullptr;
    if (*in - '0' < expansion->count) *expansion->out += expansion->values[*in - '0'];
    return in + 1;
}

void ExpandMacro(std::string *out, const char *body, const char *arguments) {
    Expansion expansion = {};
    expansion.out = out;
    expansion.arguments = arguments;
    out->clear();
    while (*body) {
        const char *next = *body == '&' ? ExpandValue(&expansion, body + 1) : nullptr;
        if (next) {
            body = next;
        } else if (*body == '*') {
            *out += TakeText(&expansion.arguments, ',');
            body++;
        } else {
            if (*body == '\\' && body[1]) body++;
            *out += *body++;
        }
    }
}

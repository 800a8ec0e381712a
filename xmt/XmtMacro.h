// Macros of descriptions: their bodies, the calls in progress, their parameters.
//
// PushMacro lets the cursor go on in a body, PopMacro brings it back when that has been read.
#pragma once

#include <string>

enum { XMT_MACROS = 100, XMT_CALLS = 20, XMT_SAVED_VALUES = 10, XMT_SAVED_VALUE_SIZE = 40 };
enum { XMT_CALLS_ALL = 5000 }; // files and macro calls of one description that calls itself

// Managed bodies, null when undefined; they outlive the text that defined them. Writer: XmtDefineMacro.
extern char *Macro[XMT_MACROS];

// The calls of a text that is read on its own: those that it leaves open end with it.
struct XmtMacroLevel {
    XmtMacroLevel();
    ~XmtMacroLevel();
    XmtMacroLevel(const XmtMacroLevel &) = delete;
    XmtMacroLevel &operator=(const XmtMacroLevel &) = delete;
    int base;
};
// A description begins: it may take all calls, unless it stands within one.
void XmtRenewCalls();
// Takes one of the calls that the description in hand has left; false if it has none.
bool XmtTakeCall();
// Behind the '.': the number, and the rest of the line as the body. Uses: pNewDesc.
void XmtDefineMacro();
// Starts the call whose number stands at the cursor, behind the '*'; a missing macro, a call too many and one
// too deep are dropped, and their arguments then read as statements.
void PushMacro();
// Goes back to the callers whose macro has been read to its end. The end of a macro ends no block.
void PopMacro();
// The body with its parameters replaced by the arguments: '*' is the next argument, "&*" keeps it and
// "&'text'" the text, as a value that "&0" to "&9" give; a backslash takes the next character as it is.
void ExpandMacro(std::string *out, const char *body, const char *arguments);

// The format language: what happens to other objects when one is pressed or changes, "H1[a,b] C*[c]".
//
// A format is a run of clauses: an action letter with a condition, and targets up to a ']'. A target is a
// name, a list of names with commas, or "name.value". In a state format the condition is a list of states,
// and most actions do the opposite when it does not hold; in a button format it is a callback key, and a
// clause whose key is another one does nothing. Nothing is reported: unknown letters and names do nothing.
//
// Formats nest: setting another control runs its format. They stop at XMT_FORMAT_DEPTH levels, and at
// XMT_FORMAT_RUNS formats behind one event.
#pragma once

#include "xmt/Xmt.h"

enum { XMT_FORMAT_DEPTH = 32, XMT_FORMAT_RUNS = 1000 };

// How deep, and how many since the outermost began. Writers: XmtProcess..Format; XmtModalAppLoop, whose
// events begin anew, saves it.
struct XmtFormatRun {
    int depth;
    int runs;
};
extern XmtFormatRun XmtFormatState;

// Runs the dialect of the object's type; nothing for types without one.
void XmtProcessFormat(XmtObjectData *object, XmtCallData *data, intptr_t unused);
void XmtProcessStateFormat(XmtObjectData *object, XmtCallData *data);  // state: data->value
void XmtProcessButtonFormat(XmtObjectData *object, XmtCallData *data); // event: data->reason
// "1,3" matches 1 and 3, "*" all, "" nothing, "x" 0.
bool XmtTestFormatState(const char *list, int state);
// Runs the target's format as a state format. The state: behind a '.' a number, or with another text the
// target's own value; without a '.' the event's.
void ProcessFormat(const char *target, XmtCallData *data);
// Calls the target's handler with the event under the target's name and id; with a caller "." and the event's
// own name call that of the calling record.
void XmtCallApp(const char *target, XmtObjectData *caller, XmtCallData *data);

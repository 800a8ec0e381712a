// The format language: what happens to other objects when one is pressed or changes, "H1[a,b] C*[c]".
#pragma once

#include "xmt/Xmt.h"

enum { XMT_FORMAT_DEPTH = 32 }; // formats that set each other in a circle stop here

// Runs the dialect of the object's type; nothing for types without one.
void XmtProcessFormat(XmtObjectData *object, XmtCallData *data, intptr_t unused);
void XmtProcessStateFormat(XmtObjectData *object, XmtCallData *data);  // state: data->value
void XmtProcessButtonFormat(XmtObjectData *object, XmtCallData *data); // event: data->reason
// "1,3" matches 1 and 3, "*" all, "" nothing, "x" 0.
bool XmtTestFormatState(const char *list, int state);
void ProcessFormat(const char *target, XmtCallData *data);
// Calls the target's handler with the event under the target's name and id; "." and the event's own name call
// that of the calling record.
void XmtCallApp(const char *target, XmtObjectData *caller, XmtCallData *data);

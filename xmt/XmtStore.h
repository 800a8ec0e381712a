// The object store: records by name and by widget, and single resources of what is found there.
//
// An unknown name, an empty one or null does nothing and yields 0.
#pragma once

#include "common/Hash.h"
#include "xmt/Xmt.h"

extern HashTable *XmtTable;   // name: XmtObjectData
extern HashTable *XmtObjects; // widget: XmtObjectData *
extern HashTable *XmtPixmaps; // image name: ImageRecord
extern HashTable *XmtImages;  // nothing stores into it
extern HashTable *XmtFonts;   // font name: font and list (XmtColor)

void XmtInitStore();                            // makes the tables once
XmtObjectData *XmtFindObject(const char *name); // null if unknown
XmtObjectData *XmtFindWidget(Widget widget);    // the record of a widget, or null

// Where a widget or gadget draws, 0 for null and before it is realized.
Window XmtGetWindow(Widget widget);
// An event of the object: name, id, widget and application data, the rest 0.
XmtCallData XmtNewCallData(const XmtObjectData *object, intptr_t reason);
Widget XmtGetWidget(const char *name);
// Set one resource and update the display.
void XmtSetXmValue(const char *name, const char *resource, XtArgVal value);
void XmtSetXmValueW(Widget widget, const char *resource, XtArgVal value);
// One resource, widened from its own size with its own sign; what Motif copies (compound strings, the text of
// a field) is the caller's to release. A null widget yields 0.
XtArgVal XmtGetXmValue(const char *name, const char *resource);
XtArgVal XmtGetXmValueW(Widget widget, const char *resource);

// The object store, and the accessors by which the program works on objects by name.
//
// An unknown name, an empty one or null does nothing and yields 0: a description may leave objects out.
// "list" means one name or several; several are separated by commas (XmtSetItemState: or blanks).
//
// The value of an object: radio box, option list: item from 0; toggle 0/1; list: position from 1 by events,
// from 0 by XmtSetValuePF; multi-selection: mask; tab form: tab from 1; text: the widget's text at the last
// event. Printers' and users' texts go through the ...Raw setters or through text fields: in XmtSetLabel an
// '@' names a file, and '~' marks a mnemonic.
#pragma once

#include "common/Hash.h"
#include "xmt/Xmt.h"

#include <string>

extern HashTable *XmtTable;   // name: XmtObjectData
extern HashTable *XmtObjects; // widget: XmtObjectData *
extern HashTable *XmtPixmaps; // image name: ImageRecord
extern HashTable *XmtImages;  // nothing stores into it
extern HashTable *XmtFonts;   // font name: font and list (XmtColor)

void XmtInitStore();                            // makes the tables once
XmtObjectData *XmtFindObject(const char *name); // null if unknown
XmtObjectData *XmtFindWidget(Widget widget);    // the record of a widget, or null

Widget XmtGetWidget(const char *name);
void XmtSetXmValue(const char *name, const char *resource, XtArgVal value);
void XmtSetXmValueW(Widget widget, const char *resource, XtArgVal value);
// One resource, widened from its own size.
XtArgVal XmtGetXmValue(const char *name, const char *resource);
void XmtSetArgs(const char *description); // "name arguments"
void XmtSetArgsNoUpdate(const char *description);
void XmtUpdate(const char *name);
intptr_t XmtGetAppData(const char *name);
void XmtSetAppData(const char *name, intptr_t data);
bool XmtIsEnabled(const char *name);

enum XmtState { XMT_SHOW, XMT_HIDE, XMT_ENABLE, XMT_DISABLE, XMT_LOWER, XMT_RAISE };
void XmtSetItemState(const char *list, int state);
void XmtShow(const char *list);
void XmtHide(const char *list);
void XmtEnable(const char *list);
void XmtDisable(const char *list);
void XmtLowerItem(const char *list);
void XmtRaiseItem(const char *list);
void XmtSetCursor(const char *list, unsigned shape); // XC_watch, ...
void XmtClearCursor(const char *list);

void XmtSetFocus(const char *name);
void XmtSetFocus_(const char *name);
void XmtSetFocusToParent(const char *name);
void SetFocus(const char *name);
void XmtSetTextFocus(const char *name);

void XmtSetLabel(const char *name, const char *text);
void XmtSetLabelRaw(const char *name, const char *text); // plain text, nothing in it has a meaning
[[nodiscard]] char *XmtGetLabel(const char *name);       // Owns: the result
// Keeps the head of the label, up to its ':' or first blank, and replaces what stands behind it.
void XmtSetLabelText(const char *name, const char *text);
void XmtSetLabelTextSize(const char *name, const char *text, int width, int indent);
std::string BreakString(const char *text, int width, int indent);
void XmtSetFont(const char *name, const char *font);
void XmtSetTitle(const char *name, const char *text);
void XmtSetIconName(const char *name, const char *text);

// Positions count from 1; one outside the list does nothing.
void XmtSetListItem(const char *name, int position, int flNotify);
void XmtClearListItem(const char *name, int position);
void XmtClearAllListItems(const char *name);
void XmtAddListItem(const char *name, const char *text, int position); // 0: at the end
void XmtDeleteListItem(const char *name, int position);
void XmtDeleteAllListItems(const char *name);
void XmtReplaceAllListItems(const char *name, const char *list);
void XmtReplaceListItem(const char *name, const char *text, int position);
void XmtReplaceListItems(const char *name, const char *list);
void XmtReplaceListItems_(const char *name, const char *list, int position);
int XmtGetListCount(const char *name);
void XmtAddListButton(const char *name, const char *arguments);
void XmtAddRadioButton(const char *name, const char *arguments);
void XmtSetOptionMenu(const char *name, int n);
void XmtSetRadioBox(const char *name, int n);
void XmtSetCheckboxState(const char *name, int flSet);
// Replaces each NUL of a selection by a comma, up to the double NUL. Owns: the result, with a null out.
char *XmtSaveMultiSelectSelList(const char *selection, char *out);

[[nodiscard]] char *XmtGetText(const char *name); // Owns: XtFree; null for what has no text
void XmtSetText(const char *name, const char *text);
void XmtAddTextStr(const char *name, const char *text, int position);
// 0; 1 for what is no number (the result is minimum); 2 for one out of the bounds (likewise), if maximum is
// not 0.
int XmtGetTextInt(const char *name, int *result, int minimum, int maximum);
int XmtGetTextFloat(const char *name, float *result, float minimum, float maximum);
int XmtGetTextPos(const char *name);
void XmtSetTextPos(const char *name, int position);
void XmtSetTextPosTop(const char *name, int position);
[[nodiscard]] char *XmtGetTextSelection(const char *name); // Owns: XtFree
void XmtSetTextHighlight(const char *name, int left, int right);
void XmtClearTextHighlight(const char *name, int left, int right);

// Sets a control without its handler: value counts items from 1 (toggle: 2 on, 1 off) or is a text, by type.
// With flFormat the object's format runs.
void XmtSetValuePF(const char *name, intptr_t value, int flFormat);
void XmtSetValuePF(const char *name, const char *text, int flFormat);
intptr_t XmtGetValue(const char *name);
void XmtStoreValue(const char *list);
void XmtResetToStoredValue(const char *list);
intptr_t XmtGetStoredValue(const char *name);
void XmtSetFormat(const char *name, const char *format);
void XmtReplaceFormat(const char *name, const char *format);
void XmtDoFormat(const char *name);

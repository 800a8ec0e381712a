// The accessors by which the program works on objects by name.
//
// An unknown name, an empty one or null does nothing and yields 0: a description may leave objects out. So
// does an object of a kind that the operation does not fit, such as a position for a label. "list" means one
// name or several; several are separated by commas (XmtSetItemState, XmtStoreValue, XmtResetToStoredValue: or
// blanks).
//
// The value of an object: radio box, option list: item from 0; toggle 0/1; list: position from 1 by events,
// from 0 by XmtSetValuePF; multi-selection: mask; tab form: tab from 1; text: the widget's text at the last
// event. Printers' and users' texts go through the ...Raw setters or through text fields: in XmtSetLabel an
// '@' names a file, and '~' marks a mnemonic.
#pragma once

#include "common/Hash.h"
#include "xmt/Xmt.h"
#include "xmt/XmtStore.h"

#include <string>

// "name arguments". Labels are left alone; the list L(...) of a list box replaces its items, without
// ...NoUpdate. Uses: pNewDesc, and puts it back.
void XmtSetArgs(const char *description);
void XmtSetArgsNoUpdate(const char *description);
void XmtUpdate(const char *name);
intptr_t XmtGetAppData(const char *name);
void XmtSetAppData(const char *name, intptr_t data);
bool XmtIsEnabled(const char *name);

enum XmtState { XMT_SHOW, XMT_HIDE, XMT_ENABLE, XMT_DISABLE, XMT_LOWER, XMT_RAISE };
void XmtSetItemState(const char *list, int state); // unknown states do nothing
// One name without a comma is updated at once, but for the sensitivity.
void XmtShow(const char *list);
void XmtHide(const char *list);
void XmtEnable(const char *list);
void XmtDisable(const char *list);
void XmtLowerItem(const char *list);
void XmtRaiseItem(const char *list);
// Objects without a window are passed over.
void XmtSetCursor(const char *list, unsigned shape); // XC_watch, ...
void XmtClearCursor(const char *list);

void XmtSetFocus(const char *name);  // the input focus, if the object is on the screen, and Motif's
void XmtSetFocus_(const char *name); // without asking the server whether it is
void XmtSetFocusToParent(const char *name);
void SetFocus(const char *name);        // Motif's alone
void XmtSetTextFocus(const char *name); // likewise, with the text selected

void XmtSetLabel(const char *name, const char *text);    // "@file": a pixmap; "~" marks a mnemonic
void XmtSetLabelRaw(const char *name, const char *text); // plain text, nothing in it has a meaning
[[nodiscard]] char *XmtGetLabel(const char *name);       // Owns: the result
// Keeps the head of the label, up to its ':' or first blank, and replaces what stands behind it. Both are
// plain text. ...Size breaks the whole; with indent 0 lines go on below the value.
void XmtSetLabelText(const char *name, const char *text);
void XmtSetLabelTextSize(const char *name, const char *text, int width, int indent);
// Lines of at most width characters, broken at line feeds and at white space, or within a word with a '-'
// behind the width. All but the first begin with indent blanks, none if they would leave no room.
std::string BreakString(const char *text, int width, int indent);
void XmtSetFont(const char *name, const char *font);
void XmtSetTitle(const char *name, const char *text);
void XmtSetIconName(const char *name, const char *text);

// Positions count from 1; one outside the list does nothing. Texts are plain, but in comma lists a backslash
// takes the next character.
// Selects the item and shows it on top. Multi-selection: position is a mask, bit 0 for the first of four
// items.
void XmtSetListItem(const char *name, int position, int flNotify);
void XmtClearListItem(const char *name, int position);
void XmtClearAllListItems(const char *name);
void XmtAddListItem(const char *name, const char *text, int position); // 0: at the end
void XmtDeleteListItem(const char *name, int position);
void XmtDeleteAllListItems(const char *name);
void XmtReplaceAllListItems(const char *name, const char *list);
void XmtReplaceListItem(const char *name, const char *text, int position);
void XmtReplaceListItems(const char *name, const char *list);
void XmtReplaceListItems_(const char *name, const char *list, int position); // as many as there are
int XmtGetListCount(const char *name);
// One more item for an option list or a radio box, with the owner's id, handler and format. Uses:
// SpecifiedAppCBValue, pNewObjectData.
void XmtAddListButton(const char *name, const char *arguments);
void XmtAddRadioButton(const char *name, const char *arguments);
void XmtSetOptionMenu(const char *name, int n); // items from 1
void XmtSetRadioBox(const char *name, int n);   // with the items' events
void XmtSetCheckboxState(const char *name, int flSet);
// Replaces each NUL of a selection by a comma, up to the double NUL. out has as many bytes as the selection.
// Owns: the result, with a null out.
char *XmtSaveMultiSelectSelList(const char *selection, char *out);

[[nodiscard]] char *XmtGetText(const char *name); // Owns: XtFree; null for what has no text
void XmtSetText(const char *name, const char *text);
void XmtAddTextStr(const char *name, const char *text, int position); // 0: at the end
// 0; 1 for what is no number (the result is minimum); 2 for one out of the bounds (likewise), if maximum is
// not 0. An empty field is 0. Without a field the result is minimum.
int XmtGetTextInt(const char *name, int *result, int minimum, int maximum);
int XmtGetTextFloat(const char *name, float *result, float minimum, float maximum);
int XmtGetTextPos(const char *name);
void XmtSetTextPos(const char *name, int position);
void XmtSetTextPosTop(const char *name, int position);
[[nodiscard]] char *XmtGetTextSelection(const char *name); // Owns: XtFree
void XmtSetTextHighlight(const char *name, int left, int right);
void XmtClearTextHighlight(const char *name, int left, int right);

// Sets a control: value counts items from 1 (toggle: 2 on, 1 off) or is a text, by type. The object's handler
// does not hear of it, but for radio boxes and lists, which are set with their events. With flFormat the
// format runs, for a text also with a null text, which leaves it alone. A text given to a control that counts
// is read as a number; a number given to one that shows text leaves it alone.
void XmtSetValuePF(const char *name, intptr_t value, int flFormat);
void XmtSetValuePF(const char *name, const char *text, int flFormat);
intptr_t XmtGetValue(const char *name); // of a text: XmtTextOf, the object's own
void XmtStoreValue(const char *list);
void XmtResetToStoredValue(const char *list); // runs the formats
intptr_t XmtGetStoredValue(const char *name);
// Appends to, replaces the format of the object and of its items name_1, name_2, ... up to the first that is
// missing. XmtSetFormat gives the items what the object gets.
void XmtSetFormat(const char *name, const char *format);
void XmtReplaceFormat(const char *name, const char *format);
void XmtDoFormat(const char *name); // with the object's value

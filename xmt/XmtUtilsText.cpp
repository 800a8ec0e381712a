// Labels, titles and text fields of objects by their names.
#include "xmt/XmtUtils.h"

#include "common/utils.h"
#include "xmt/XmtColor.h"
#include "xmt/XmtCopy.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtNewArgs.h"
#include "xmt/XmtString.h"
#include "xmt/XmtValue.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>

enum { TEXT_FOCUS_SELECTION = 4096 }; // characters that XmtSetTextFocus selects at most

// ---- labels and titles

// Motif does not draw a label anew for another pixmap of the same size.
static void DrawLabel(Widget widget) {
    if (XtIsWidget(widget) && XtIsRealized(widget)) XClearArea(AppDisplay, XtWindow(widget), 0, 0, 0, 0, 1);
    XmUpdateDisplay(widget);
}

void XmtSetLabel(const char *name, const char *text) {
    XmtObjectData *object = XmtFindObject(name);
    if (!object || !object->widget || !text) return;
    std::string label = text[0] == '@' ? text : XmtInsertEscape(text);
    XmtInfo info;
    info.type = static_cast<int8_t>(object->type);
    XmtGetArgLabel("", &info, label.c_str());
    XtSetValues(object->widget, info.args, static_cast<Cardinal>(info.argCount));
    DrawLabel(object->widget);
    XmtClearInfo(&info);
}

static bool ShowsLabel(Widget widget, XmString string) {
    unsigned char type = XmPIXMAP;
    XmString shown = nullptr;
    XtVaGetValues(widget, XmNlabelType, &type, XmNlabelString, &shown, nullptr);
    bool flSame = type == XmSTRING && shown && XmStringCompare(shown, string);
    if (shown) XmStringFree(shown);
    return flSame;
}

// A label that shows the text already is let be: setting it lays out all around it anew.
void XmtSetLabelRaw(const char *name, const char *text) {
    Widget widget = XmtGetWidget(name);
    if (!widget || !text) return;
    XmString string = XmtMakeString(text);
    if (!ShowsLabel(widget, string)) {
        Arg args[] = {{const_cast<char *>(XmNlabelType), XmSTRING},
                      {const_cast<char *>(XmNlabelString), reinterpret_cast<XtArgVal>(string)}};
        XtSetValues(widget, args, XtNumber(args));
        XmUpdateDisplay(widget);
    }
    XmStringFree(string);
}

char *XmtGetLabel(const char *name) {
    auto string = reinterpret_cast<XmString>(XmtGetXmValue(name, XmNlabelString));
    if (!string) return nullptr;
    char *label = XmtDecodeString(string);
    XmStringFree(string);
    return label;
}

// The label with a new value behind its head; *head takes the length of what stands in front of the value, 0
// where no ':' marks it.
static std::string ReplaceLabelValue(const char *name, const char *text, size_t *head) {
    char *old = XmtGetLabel(name);
    std::string label = old ? old : "";
    XmtFreeStr(old);
    size_t colon = label.find(':'), blank = label.find(' ');
    *head = colon == std::string::npos ? 0 : colon + 2;
    if (colon != std::string::npos) return label.substr(0, colon) + ": " + text;
    return label.substr(0, blank) + " " + text;
}

void XmtSetLabelText(const char *name, const char *text) {
    size_t head;
    if (text && XmtGetWidget(name)) XmtSetLabelRaw(name, ReplaceLabelValue(name, text, &head).c_str());
}

void XmtSetLabelTextSize(const char *name, const char *text, int width, int indent) {
    if (!text || !XmtGetWidget(name)) return;
    size_t head;
    std::string label = ReplaceLabelValue(name, text, &head);
    if (indent == 0) indent = static_cast<int>(head);
    XmtSetLabelRaw(name, BreakString(label.c_str(), width, indent).c_str());
}

// The last white space at which a line of the width may end, the one right behind it counted; 0 for none. The
// first character does not count: every line takes one at least.
static size_t FindBreak(const std::string &text, size_t width) {
    size_t at = width;
    while (at > 0 && !isspace(static_cast<unsigned char>(text[at]))) at--;
    return at;
}

std::string BreakString(const char *text, int width, int indent) {
    std::string rest = text ? text : "", out;
    if (indent < 0 || width - indent < 1) indent = 0;
    size_t room = static_cast<size_t>(std::max(width, 1));
    for (size_t feed = rest.find('\n'); feed != rest.npos || rest.size() > room; feed = rest.find('\n')) {
        size_t at = feed <= room ? feed : FindBreak(rest, room);
        bool flWhole = at > 0 || feed == 0;
        out += flWhole ? rest.substr(0, at) + "\n" : rest.substr(0, room) + "-\n";
        rest.erase(0, flWhole ? at + 1 : room);
        out.append(static_cast<size_t>(indent), ' ');
        room = static_cast<size_t>(std::max(width - indent, 1));
    }
    return out + rest;
}

void XmtSetFont(const char *name, const char *font) {
    Widget widget = XmtGetWidget(name);
    XmFontList list = widget ? XmtGetFontList(font) : nullptr;
    if (list) XmtSetXmValueW(widget, XmNfontList, reinterpret_cast<XtArgVal>(list));
}

// What carries title and icon name: the shell of a main window, else the object itself.
static Widget GetTitleWidget(const XmtObjectData *object) {
    if (object->type != XmtMainWindow) return object->widget;
    return XmtGetWidget((std::string(object->name) + "_shell").c_str());
}

void XmtSetTitle(const char *name, const char *text) {
    XmtObjectData *object = XmtFindObject(name);
    if (!object || !object->widget || !text) return;
    Widget widget = GetTitleWidget(object);
    if (object->type == XmtMainWindow)
        return XmtSetXmValueW(widget, XmNtitle, reinterpret_cast<XtArgVal>(text));
    XmString string = XmtMakeString(text);
    XmtSetXmValueW(widget, XmNdialogTitle, reinterpret_cast<XtArgVal>(string));
    XmStringFree(string);
}

void XmtSetIconName(const char *name, const char *text) {
    XmtObjectData *object = XmtFindObject(name);
    if (!object || !text) return;
    XmtSetXmValueW(GetTitleWidget(object), XmNiconName, reinterpret_cast<XtArgVal>(text));
}

// ---- text fields

// The widget, if it is one that the functions for texts take.
static Widget FindText(const char *name) {
    Widget widget = XmtGetWidget(name);
    return widget && (XmIsText(widget) || XmIsTextField(widget)) ? widget : nullptr;
}

// Motif warns of a position behind the end.
static XmTextPosition BoundPosition(Widget text, int position) {
    return std::clamp<XmTextPosition>(position, 0, XmTextGetLastPosition(text));
}

void XmtSetTextFocus(const char *name) {
    SetFocus(name);
    Widget text = FindText(name);
    if (!text) return;
    XmTextSetSelection(text, 0, BoundPosition(text, TEXT_FOCUS_SELECTION),
                       XtLastTimestampProcessed(XtDisplay(text)));
}

char *XmtGetText(const char *name) {
    Widget text = FindText(name);
    return text ? XmTextGetString(text) : nullptr;
}

void XmtSetText(const char *name, const char *text) {
    Widget widget = FindText(name);
    if (!widget) return;
    if (!text) text = "";
    // The field shows a value set as a resource as it is, whatever its callback makes of it.
    if (XmtFindObject(name)->type == XmtPasswd)
        XmTextSetString(widget, const_cast<char *>(text));
    else
        XmtSetXmValueW(widget, XmNvalue, reinterpret_cast<XtArgVal>(text));
}

void XmtAddTextStr(const char *name, const char *text, int position) {
    Widget widget = FindText(name);
    if (!widget || !text) return;
    XmTextPosition end = XmTextGetLastPosition(widget);
    XmTextInsert(widget, position ? BoundPosition(widget, position) : end, const_cast<char *>(text));
}

// The text of an entry of the characters that a number may have; false, with an empty text, for another.
static bool GetNumberText(const char *name, const char *allowed, std::string *number) {
    char *text = XmtGetText(name);
    *number = text ? text : "";
    XtFree(text);
    if (number->find_first_not_of(allowed) == std::string::npos) return true;
    number->clear();
    return false;
}

int XmtGetTextInt(const char *name, int *result, int minimum, int maximum) {
    std::string number;
    *result = minimum;
    if (!FindText(name)) return 0;
    if (!GetNumberText(name, "0123456789", &number)) return 1;
    int value = ParseInt(number.c_str());
    if (maximum != 0 && (value < minimum || value > maximum)) return 2;
    *result = value;
    return 0;
}

int XmtGetTextFloat(const char *name, float *result, float minimum, float maximum) {
    std::string number;
    *result = minimum;
    if (!FindText(name)) return 0;
    if (!GetNumberText(name, "0123456789.", &number)) return 1;
    char *end = nullptr;
    float value = strtof(number.c_str(), &end);
    if (*end) return 1;
    if (maximum != 0 && (value < minimum || value > maximum)) return 2;
    *result = value;
    return 0;
}

int XmtGetTextPos(const char *name) {
    Widget text = FindText(name);
    return text ? static_cast<int>(XmTextGetInsertionPosition(text)) : 0;
}

void XmtSetTextPos(const char *name, int position) {
    Widget text = FindText(name);
    if (!text) return;
    XmTextShowPosition(text, BoundPosition(text, position));
    XmTextSetInsertionPosition(text, BoundPosition(text, position));
}

void XmtSetTextPosTop(const char *name, int position) {
    XmtSetTextPos(name, position);
    Widget text = FindText(name);
    if (text && XmIsText(text)) XmTextSetTopCharacter(text, BoundPosition(text, position));
}

char *XmtGetTextSelection(const char *name) {
    Widget text = FindText(name);
    return text ? XmTextGetSelection(text) : nullptr;
}

static void HighlightText(const char *name, int left, int right, XmHighlightMode mode) {
    Widget text = FindText(name);
    if (!text) return;
    XmTextSetHighlight(text, BoundPosition(text, left), BoundPosition(text, right), mode);
    XmUpdateDisplay(text);
}

void XmtSetTextHighlight(const char *name, int left, int right) {
    HighlightText(name, left, right, XmHIGHLIGHT_SECONDARY_SELECTED);
}

void XmtClearTextHighlight(const char *name, int left, int right) {
    HighlightText(name, left, right, XmHIGHLIGHT_NORMAL);
}

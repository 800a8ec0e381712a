// Arguments, states, cursors, focus and values of objects by their names.
#include "xmt/XmtUtils.h"

#include "common/utils.h"
#include "xmt/XmtCopy.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtFormat.h"
#include "xmt/XmtNewArgs.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewTab.h"
#include "xmt/XmtString.h"
#include "xmt/XmtToken.h"
#include "xmt/XmtValue.h"

#include <cstring>

enum { CURSOR_CNT = 80 };

static Cursor aCursor[CURSOR_CNT]; // by shape / 2, 0 until first used

// Calls the function with each name of the list.
static void ForNames(const char *list, const char *delims, void (*function)(const char *name, intptr_t word),
                     intptr_t word) {
    if (!list) return;
    XmtTokenRecord record;
    for (char *name = XmtStrTok(&record, list, delims); name; name = XmtStrTok(&record, nullptr, delims))
        function(name, word);
}

// ---- resources

// The object's record with the arguments read, or null.
static XmtObjectData *ReadArgs(const char *description, XmtInfo *info) {
    if (!description) return nullptr;
    std::string name;
    GetWord(&name, description);
    XmtObjectData *object = XmtFindObject(name.c_str());
    if (!object || !object->widget) return nullptr;
    XmtCursor cursor(description);
    info->type = static_cast<int8_t>(object->type);
    XmtFillInfo(info, XMT_FILL_RAW_LABEL);
    return object;
}

void XmtSetArgsNoUpdate(const char *description) {
    XmtInfo info;
    if (XmtObjectData *object = ReadArgs(description, &info))
        XtSetValues(object->widget, info.args, static_cast<Cardinal>(info.argCount));
    XmtClearInfo(&info);
}

void XmtSetArgs(const char *description) {
    XmtInfo info;
    if (XmtObjectData *object = ReadArgs(description, &info)) {
        XmtStringTable *table = object->type == XmtListBox ? XmtGenStringTable(info.list) : nullptr;
        if (table) {
            XmtAddArg(&info, XmNitems, reinterpret_cast<XtArgVal>(table->strings));
            XmtAddArg(&info, XmNitemCount, table->count);
        }
        XtSetValues(object->widget, info.args, static_cast<Cardinal>(info.argCount));
        XmUpdateDisplay(object->widget);
        if (table) XmtFreeStringTable(table);
    }
    XmtClearInfo(&info);
}

void XmtUpdate(const char *name) {
    if (Widget widget = XmtGetWidget(name)) XmUpdateDisplay(widget);
}

intptr_t XmtGetAppData(const char *name) {
    XmtObjectData *object = XmtFindObject(name);
    return object ? object->appData : 0;
}

void XmtSetAppData(const char *name, intptr_t data) {
    if (XmtObjectData *object = XmtFindObject(name)) object->appData = data;
}

bool XmtIsEnabled(const char *name) {
    return XmtGetXmValue(name, XmNsensitive) != 0;
}

// ---- states

static void StackItem(Widget widget, void (*stack)(Widget, Window)) {
    if (Window window = XmtGetWindow(widget)) stack(widget, window);
}

static void LowerWindow(Widget widget, Window window) {
    XLowerWindow(XtDisplayOfObject(widget), window);
}

static void RaiseWindow(Widget widget, Window window) {
    XRaiseWindow(XtDisplayOfObject(widget), window);
}

static void SetState(Widget widget, int state) {
    switch (static_cast<XmtState>(state)) {
    case XMT_SHOW: XtManageChild(widget); break;
    case XMT_HIDE: XtUnmanageChild(widget); break;
    case XMT_ENABLE: XtSetSensitive(widget, 1); break;
    case XMT_DISABLE: XtSetSensitive(widget, 0); break;
    case XMT_LOWER: StackItem(widget, LowerWindow); break;
    case XMT_RAISE: StackItem(widget, RaiseWindow); break;
    }
}

static void SetNameState(const char *name, intptr_t state) {
    if (Widget widget = XmtGetWidget(name)) SetState(widget, static_cast<int>(state));
}

void XmtSetItemState(const char *list, int state) {
    if (state >= XMT_SHOW && state <= XMT_RAISE) ForNames(list, " ,", SetNameState, state);
}

// What the six of them share: one name without a comma is shown at once.
static void SetListState(const char *list, int state) {
    if (list && strchr(list, ',')) return XmtSetItemState(list, state);
    SetNameState(list, state);
    if (state != XMT_ENABLE && state != XMT_DISABLE) XmtUpdate(list);
}

void XmtShow(const char *list) {
    SetListState(list, XMT_SHOW);
}

void XmtHide(const char *list) {
    SetListState(list, XMT_HIDE);
}

void XmtEnable(const char *list) {
    SetListState(list, XMT_ENABLE);
}

void XmtDisable(const char *list) {
    SetListState(list, XMT_DISABLE);
}

void XmtLowerItem(const char *list) {
    SetListState(list, XMT_LOWER);
}

void XmtRaiseItem(const char *list) {
    SetListState(list, XMT_RAISE);
}

// Shapes of the cursor font are even numbers, each followed by its mask.
static Cursor GetCursor(unsigned shape) {
    if (shape / 2 >= CURSOR_CNT || !AppDisplay) return 0;
    Cursor *cursor = &aCursor[shape / 2];
    if (!*cursor) *cursor = XCreateFontCursor(AppDisplay, shape);
    return *cursor;
}

// cursor 0: the parent's.
static void SetNameCursor(const char *name, intptr_t cursor) {
    Widget widget = XmtGetWidget(name);
    Window window = XmtGetWindow(widget);
    if (!window) return;
    if (cursor)
        XDefineCursor(XtDisplayOfObject(widget), window, static_cast<Cursor>(cursor));
    else
        XUndefineCursor(XtDisplayOfObject(widget), window);
    XmUpdateDisplay(widget);
}

void XmtSetCursor(const char *list, unsigned shape) {
    if (Cursor cursor = GetCursor(shape)) ForNames(list, ",", SetNameCursor, static_cast<intptr_t>(cursor));
}

void XmtClearCursor(const char *list) {
    ForNames(list, ",", SetNameCursor, 0);
}

// ---- focus

// The server refuses the focus to a window that is not viewable.
static bool TestViewable(Widget widget, Window window) {
    XWindowAttributes attributes;
    return XGetWindowAttributes(XtDisplayOfObject(widget), window, &attributes) &&
           attributes.map_state == IsViewable;
}

// The input focus goes to the widget's shell, which hands the keys to the widget that Motif chose: a window
// manager that gives the same shell the keys a moment sooner or later does not lose sight of them. One that
// has lost it gives them to no window when the dialog goes.
static Window GetShellWindow(Widget widget) {
    while (widget && !XtIsShell(widget)) widget = XtParent(widget);
    return widget ? XmtGetWindow(widget) : 0;
}

static void FocusWidget(Widget widget, bool flTest) {
    if (!widget) return;
    Window window = GetShellWindow(widget);
    if (window && (!flTest || TestViewable(widget, XmtGetWindow(widget))))
        XSetInputFocus(XtDisplayOfObject(widget), window, RevertToPointerRoot, CurrentTime);
    XmProcessTraversal(widget, XmTRAVERSE_CURRENT);
}

void XmtSetFocus(const char *name) {
    FocusWidget(XmtGetWidget(name), true);
}

void XmtSetFocus_(const char *name) {
    FocusWidget(XmtGetWidget(name), false);
}

void XmtSetFocusToParent(const char *name) {
    if (Widget widget = XmtGetWidget(name)) FocusWidget(XtParent(widget), true);
}

void SetFocus(const char *name) {
    if (Widget widget = XmtGetWidget(name)) XmProcessTraversal(widget, XmTRAVERSE_CURRENT);
}

// ---- values

// What a value is written in: a number for the controls that choose, a text for those that show one.
struct NewValue {
    intptr_t number;
    const char *text; // null for a number
};

static void SetStringValue(Widget widget, const char *resource, const char *text) {
    if (!widget || !text) return;
    XmString string = XmtMakeString(text);
    XmtSetXmValueW(widget, resource, reinterpret_cast<XtArgVal>(string));
    XmStringFree(string);
}

static void SetPictureValue(XmtObjectData *object, const char *text) {
    auto picture = static_cast<XmtPictureData *>(object->extension);
    if (!picture || !text) return;
    XmtSetPictureData(picture, text);
    Window window = XmtGetWindow(object->widget);
    if (flInEventLoop && window) XmtPictureDraw(object, window);
}

// The field is written behind the control's own event, whose count may start elsewhere.
static void KeepChoice(XmtObjectData *object, XmtCallData *data, intptr_t value) {
    data->value = value;
    object->value = value;
}

static void SelectStateIcon(XmtObjectData *object, intptr_t n) {
    if (object->icon) XmtSelectIcon(object, static_cast<int>(n));
}

static void SetTextValue(XmtObjectData *object, XmtCallData *data, const char *text) {
    if (!text) return;
    if (object->format) {
        data->text = text;
        data->length = static_cast<intptr_t>(strlen(text));
        data->reason = XmtCR_CHANGED;
    }
    XmtSetText(object->name, text);
    // The setting has made it the real text already: the format checks it as what takes the place of that.
    if (object->type == XmtPasswd && object->stored)
        data->end = static_cast<intptr_t>(strlen(XmtTextOf(object->stored)));
}

static void SetControl(XmtObjectData *object, XmtCallData *data, NewValue value) {
    int n = static_cast<int>(value.number);
    switch (object->type) {
    case XmtDataEntryDialog: return SetStringValue(object->widget, XmNtextString, value.text);
    case XmtWarnDialog:
    case XmtInfoDialog:
    case XmtmessageDialog: return SetStringValue(object->widget, XmNmessageString, value.text);
    case XmtPushBut:
    case XmtLabel:
        if (value.text) XmtSetLabel(object->name, value.text);
        return;
    case XmtRadioBox:
        XmtSetRadioBox(object->name, n);
        KeepChoice(object, data, value.number - 1);
        return SelectStateIcon(object, value.number);
    case XmtListBut:
        XmtSetOptionMenu(object->name, n);
        KeepChoice(object, data, value.number - 1);
        return SelectStateIcon(object, value.number);
    case XmtToggleBut:
        KeepChoice(object, data, value.number > 1);
        XmtSetCheckboxState(object->name, value.number > 1);
        return SelectStateIcon(object, object->value + 1);
    case XmtListBox:
    case XmtListBoxMS: XmtSetListItem(object->name, n, 1); return KeepChoice(object, data, value.number - 1);
    case XmtTabForm: return XmtSelectTab(object->name, n);
    case XmtText:
    case XmtPasswd: return SetTextValue(object, data, value.text);
    case XmtPicture: return SetPictureValue(object, value.text);
    default: return; // nothing to set
    }
}

static void SetValue(const char *name, NewValue value, int flFormat) {
    XmtObjectData *object = XmtFindObject(name);
    if (!object) return;
    XmtCallData data = XmtNewCallData(object, XmtCR_DEFAULT);
    SetControl(object, &data, value);
    if (flFormat && object->format) XmtProcessFormat(object, &data, 0);
}

void XmtSetValuePF(const char *name, intptr_t value, int flFormat) {
    SetValue(name, {value, nullptr}, flFormat);
}

// The copy stays when the text is the object's own and goes with the old value.
void XmtSetValuePF(const char *name, const char *text, int flFormat) {
    std::string copy = text ? text : "";
    SetValue(name, {text ? ParseInt(text) : 0, text ? copy.c_str() : nullptr}, flFormat);
}

// Objects whose value is a number that can be stored.
static bool TestNumberType(int type) {
    switch (type) {
    case XmtRadioBox:
    case XmtListBut:
    case XmtToggleBut:
    case XmtListBox:
    case XmtListBoxMS: return true;
    default: return false;
    }
}

intptr_t XmtGetValue(const char *name) {
    XmtObjectData *object = XmtFindObject(name);
    if (!object) return 0;
    if (object->type == XmtPasswd) return object->stored;
    bool flValue = TestNumberType(object->type) || object->type == XmtTabForm || object->type == XmtText;
    return flValue ? object->value : 0;
}

intptr_t XmtGetStoredValue(const char *name) {
    XmtObjectData *object = XmtFindObject(name);
    if (!object) return 0;
    bool flStored = TestNumberType(object->type) || object->type == XmtText || object->type == XmtPasswd;
    return flStored ? object->stored : 0;
}

static void StoreValue(const char *name, intptr_t) {
    XmtObjectData *object = XmtFindObject(name);
    if (object && TestNumberType(object->type)) object->stored = object->value;
    if (!object || object->type != XmtText) return;
    char *text = XmtGetText(name);
    XmtKeepText(&object->stored, text);
    XtFree(text);
}

void XmtStoreValue(const char *list) {
    ForNames(list, " ,", StoreValue, 0);
}

static void ResetValue(const char *name, intptr_t) {
    XmtObjectData *object = XmtFindObject(name);
    if (!object) return;
    if (TestNumberType(object->type)) XmtSetValuePF(name, object->stored + 1, 1);
    if (object->type == XmtText || object->type == XmtPasswd)
        XmtSetValuePF(name, XmtTextOf(object->stored), 1);
}

void XmtResetToStoredValue(const char *list) {
    ForNames(list, " ,", ResetValue, 0);
}

// ---- formats

static bool TestItemsWithFormat(int type) {
    switch (type) {
    case XmtRadioBox:
    case XmtListBut:
    case XmtListBox:
    case XmtListBoxMS:
    case XmtText: return true;
    default: return false;
    }
}

// Every record gets a copy of its own, so that each can be released.
static void KeepFormat(XmtObjectData *object, const char *format) {
    char *copy = XmtSaveStr_(format);
    XmtFreeStr(object->format);
    object->format = copy;
}

// The object, and its items up to the first missing number.
static void KeepFormats(const char *name, const char *format) {
    XmtObjectData *object = XmtFindObject(name);
    for (int n = 1; object; n++) {
        KeepFormat(object, format);
        if (!TestItemsWithFormat(object->type)) return;
        object = XmtFindObject((std::string(name) + "_" + std::to_string(n)).c_str());
    }
}

void XmtSetFormat(const char *name, const char *format) {
    XmtObjectData *object = XmtFindObject(name);
    if (!object || !format) return;
    std::string text = object->format ? std::string(object->format) + " " : "";
    KeepFormats(name, (text + format).c_str());
}

void XmtReplaceFormat(const char *name, const char *format) {
    std::string text = format ? format : "";
    KeepFormats(name, text.c_str());
}

void XmtDoFormat(const char *name) {
    XmtObjectData *object = XmtFindObject(name);
    if (!object || !object->format) return;
    XmtCallData data = XmtNewCallData(object, XmtCR_DEFAULT);
    data.value = object->value;
    XmtProcessFormat(object, &data, 0);
}

// The main loop, and the way of an event from Motif to a format or a handler.
#include "xmt/XmtEvent.h"

#include "common/MemMgr.h"
#include "common/utils.h"
#include "xmt/XmtCopy.h"
#include "xmt/XmtFormat.h"
#include "xmt/XmtGrow.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtString.h"
#include "xmt/XmtUtils.h"

#include <climits>
#include <cstring>
#include <string>
#include <vector>

enum { MENU_ITEMS = 20, MASK_POSITIONS = 4 };

int flInEventLoop;
int flExitMainLoop;
void (*EventLoopCBF)();

// ---- the loops

void XmtShowWaitingMsg() {
    if (pXmtMsgList && pXmtMsgList->count > 0 && flPostMsgIsHidden) XmtDisplayMsg();
}

static void FinishEvent() {
    if (void (*hook)() = EventLoopCBF) {
        EventLoopCBF = nullptr;
        hook();
    }
    if (XmtET) XmtResetTimer(XmtET);
    XmtShowWaitingMsg();
}

void XmtMainEventLoop() {
    XtRealizeWidget(AppShell);
    XmtSetLeastSize();
    flExitMainLoop = 0;
    flInEventLoop = 1;
    while (!flExitMainLoop) {
        XEvent event;
        XtAppNextEvent(AppContext, &event);
        XtDispatchEvent(&event);
        FinishEvent();
    }
    if (XmtET) XmtStopTimer(XmtET);
    XmtET = 0;
}

// The loop waits for an event even when a timer has ended it: an event of no meaning lets it look.
void XmtWakeMainLoop() {
    if (!AppShell || !XtIsRealized(AppShell)) return;
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = XtWindow(AppShell);
    event.xclient.message_type = XInternAtom(AppDisplay, "XMT_WAKE", 0);
    event.xclient.format = 32;
    XSendEvent(AppDisplay, XtWindow(AppShell), 0, NoEventMask, &event);
    XFlush(AppDisplay);
}

void XmtModalAppLoop(const char *flDone) {
    XmtFormatRun saved = XmtFormatState;
    XmtFormatState = {};
    while (!*flDone) XtAppProcessEvent(AppContext, XtIMAll);
    XmtFormatState = saved;
}

// ---- dispatch

// One event on its way; texts that were made for it go with it. The object's own may be replaced while its
// handler runs, by what the handler sets.
struct Dispatch {
    XmtObjectData *object;
    Widget widget;
    XmAnyCallbackStruct *call;
    XmtCallData data;
    std::string name;           // the owner's, for an item
    std::string typed;          // in a text field
    std::string whole;          // what a text field holds
    std::string selection;      // as in XmtCallData
    std::vector<int> positions; // likewise, of a default action
    char *decoded;              // of a list's item or a dialog, managed
};

struct ReasonRow {
    int motif;
    int reason;
};
static constexpr ReasonRow Reasons[] = {
    {XmCR_CREATE, XmtCR_CREATE},
    {XmCR_ACTIVATE, XmtCR_DEFAULT},
    {XmCR_SINGLE_SELECT, XmtCR_DEFAULT},
    {XmCR_VALUE_CHANGED, XmtCR_CHANGED},
    {XmCR_MODIFYING_TEXT_VALUE, XmtCR_CHANGED},
    {XmCR_MOVING_INSERT_CURSOR, XmtCR_MOTION},
    {XmCR_OK, XmtCR_OK},
    {XmCR_CANCEL, XmtCR_CANCEL},
    {XmCR_APPLY, XmtCR_APPLY},
    {XmCR_HELP, XmtCR_HELP},
    {XmCR_RESIZE, XmtCR_RESIZE},
    {XmCR_INPUT, XmtCR_INPUT},
    {XmCR_FOCUS, XmtCR_FOCUS},
    {XmCR_LOSING_FOCUS, XmtCR_LOSING_FOCUS},
    {XmCR_MAP, XmtCR_MAP},
    {XmCR_EXPOSE, XmtCR_EXPOSE},
    {XmCR_UNMAP, XmtCR_UNMAP},
    {XmCR_ARM, XmtCR_ARM},
    {XmCR_DISARM, XmtCR_DISARM},
    {XmCR_OBSCURED_TRAVERSAL, XmtCR_OBSCURED_TRAVERSAL},
};

static int GetReason(int motif) {
    for (const ReasonRow &row : Reasons)
        if (row.motif == motif) return row.reason;
    return XmtCR_UNKNOWN;
}

static void KeepValue(XmtObjectData *object, intptr_t value) {
    object->previous = object->value;
    object->value = value;
}

static void SelectStateIcon(XmtObjectData *object, intptr_t value) {
    if (object->icon) XmtSelectIcon(object, static_cast<int>(value + 1));
}

// The number behind the last '_', less 1, and what stands in front of it; false for a name without.
static bool SplitItemName(const char *name, std::string *owner, intptr_t *value) {
    const char *mark = strrchr(name, '_');
    if (!mark) return false;
    owner->assign(name, mark);
    *value = ParseInt(mark + 1) - 1;
    return true;
}

// A cleared field comes without a block of text, or with an empty one: nothing was typed then.
static void TakeTyped(Dispatch *event, const XmTextVerifyCallbackStruct *verify) {
    if (!verify->text || !verify->text->ptr || verify->text->length <= 0) return;
    event->typed.assign(verify->text->ptr, static_cast<size_t>(verify->text->length));
    event->data.text = event->typed.c_str();
    event->data.length = verify->text->length;
}

static void DispatchVerify(Dispatch *event) {
    auto verify = reinterpret_cast<XmTextVerifyCallbackStruct *>(event->call);
    bool flMotion = verify->reason == XmCR_MOVING_INSERT_CURSOR;
    if (!flMotion && verify->reason != XmCR_MODIFYING_TEXT_VALUE) return;
    event->data.doit = &verify->doit;
    event->data.currInsert = verify->currInsert;
    event->data.newInsert = verify->newInsert;
    event->data.start = verify->startPos;
    event->data.end = verify->endPos;
    if (!flMotion) TakeTyped(event, verify);
}

// A name that was used twice has the type of its second widget, and hears of the first one too.
static bool TestTextWidget(Widget widget) {
    return XmIsText(widget) || XmIsTextField(widget);
}

static void DispatchText(Dispatch *event) {
    if (!TestTextWidget(event->widget)) return;
    char *text = XmTextGetString(event->widget);
    event->whole = text;
    XtFree(text);
    XmtKeepText(&event->object->value, event->whole.c_str());
    event->data.value = reinterpret_cast<intptr_t>(event->whole.c_str());
    if (event->data.reason == XmtCR_DEFAULT)
        event->data.text = event->whole.c_str();
    else
        DispatchVerify(event);
}

static void DispatchMasked(Dispatch *event) {
    if (!TestTextWidget(event->widget)) return;
    if (event->data.reason != XmtCR_DEFAULT) return DispatchVerify(event);
    if (!event->object->stored) return;
    event->whole = XmtTextOf(event->object->stored);
    event->data.text = event->whole.c_str();
}

// Prompt and file dialogs share the head of their records, the value with it.
static void DispatchDialog(Dispatch *event) {
    bool flAnswer = event->data.reason == XmtCR_OK || event->data.reason == XmtCR_APPLY;
    if (!flAnswer || !XmIsSelectionBox(event->widget)) return;
    auto call = reinterpret_cast<XmSelectionBoxCallbackStruct *>(event->call);
    event->decoded = XmtDecodeString(call->value);
    XmtKeepText(&event->object->value, event->decoded);
    event->data.text = event->decoded;
}

// The pulldown and the further menus up to that of the item.
static void HideItemMenus(const std::string &owner, intptr_t value) {
    XmtHide((owner + "_pd").c_str());
    for (intptr_t i = 1; i <= value / MENU_ITEMS; i++) XmtHide((owner + "_sm" + std::to_string(i)).c_str());
}

// The state of a toggle; only its own events tell it.
static bool TestToggleSet(const Dispatch *event) {
    if (event->call->reason != XmCR_VALUE_CHANGED) return XmToggleButtonGetState(event->widget);
    return reinterpret_cast<XmToggleButtonCallbackStruct *>(event->call)->set != XmUNSET;
}

// Help for an item, say, does not choose it: the event comes with the value that stands.
static bool TestItemChosen(const Dispatch *event) {
    return XmIsToggleButton(event->widget) ? TestToggleSet(event) : event->call->reason == XmCR_ACTIVATE;
}

// An item of an option list or a radio box; false if the event ends here.
static bool DispatchItem(Dispatch *event) {
    bool flToggle = XmIsToggleButton(event->widget);
    if (!flToggle && !XmIsPushButton(event->widget)) return true;
    bool flChosen = TestItemChosen(event);
    if (flToggle && !flChosen && event->call->reason != XmCR_HELP) return false;
    if (!SplitItemName(event->object->name, &event->name, &event->data.value)) return true;
    event->data.name = event->name.c_str();
    XmtObjectData *owner = XmtFindObject(event->data.name);
    if (!flChosen) event->data.value = owner ? owner->value : 0;
    if (!flChosen) return true;
    HideItemMenus(event->name, event->data.value);
    KeepValue(event->object, event->data.value);
    if (!owner) return true;
    owner->previous = owner->value = event->data.value;
    SelectStateIcon(owner, event->data.value);
    if (event->object->type != XmtRadioBox) XmtSetFocus(event->data.name);
    return true;
}

static void DispatchToggle(Dispatch *event) {
    if (!XmIsToggleButton(event->widget)) return;
    event->data.value = TestToggleSet(event);
    KeepValue(event->object, event->data.value);
    SelectStateIcon(event->object, event->data.value);
}

static void DispatchNumbered(Dispatch *event) {
    std::string owner;
    if (SplitItemName(event->object->name, &owner, &event->data.value))
        KeepValue(event->object, event->data.value);
}

// The list's record of a selection, or null for an event of another kind.
static const XmListCallbackStruct *GetListCall(const Dispatch *event) {
    switch (event->call->reason) {
    case XmCR_SINGLE_SELECT:
    case XmCR_MULTIPLE_SELECT:
    case XmCR_EXTENDED_SELECT:
    case XmCR_BROWSE_SELECT:
    case XmCR_DEFAULT_ACTION: return reinterpret_cast<XmListCallbackStruct *>(event->call);
    default: return nullptr;
    }
}

static bool TestSelection(Widget list) {
    int *positions = nullptr, count = 0;
    bool flSelected = XmListGetSelectedPos(list, &positions, &count);
    XtFree(reinterpret_cast<char *>(positions));
    return flSelected && count > 0;
}

static void DispatchList(Dispatch *event) {
    const XmListCallbackStruct *call = GetListCall(event);
    if (!call) return;
    event->data.value = TestSelection(event->widget) ? call->item_position : 0;
    event->data.text = event->decoded = XmtDecodeString(call->item);
    XmtFreeStr(event->object->selection);
    event->object->selection = nullptr;
    KeepValue(event->object, event->data.value);
}

// The texts, each with a NUL behind it.
static std::string GatherSelection(const XmListCallbackStruct *call) {
    std::string texts;
    for (int i = 0; i < call->selected_item_count; i++) {
        char *text = XmtDecodeString(call->selected_items[i]);
        texts.append(text, strlen(text) + 1);
        XmtFreeStr(text);
    }
    return texts;
}

static void KeepSelection(XmtObjectData *object, const std::string &texts) {
    XmtFreeStr(object->selection);
    object->selection = static_cast<char *>(GetMem(texts.size() + 1));
    if (object->selection) memcpy(object->selection, texts.data(), texts.size());
}

static intptr_t GetSelectionMask(const XmListCallbackStruct *call) {
    uintptr_t mask = 0;
    for (int i = 0; i < call->selected_item_count && i < MASK_POSITIONS; i++) {
        int bit = call->selected_item_positions[i] - 1;
        if (bit < static_cast<int>(sizeof(mask) * CHAR_BIT)) mask |= uintptr_t{1} << bit;
    }
    return static_cast<intptr_t>(mask);
}

// The record of a default action tells the row, but not what is selected with it.
static const XmListCallbackStruct *FillSelection(Dispatch *event, XmListCallbackStruct *call) {
    int *positions = nullptr, count = 0;
    XmListGetSelectedPos(event->widget, &positions, &count);
    event->positions.assign(positions, positions + count);
    XtFree(reinterpret_cast<char *>(positions));
    call->selected_item_positions = event->positions.data();
    call->selected_item_count = count;
    XtVaGetValues(event->widget, XmNselectedItems, &call->selected_items, nullptr);
    return call;
}

static void DispatchMultiList(Dispatch *event) {
    const XmListCallbackStruct *call = GetListCall(event);
    if (!call) return;
    XmListCallbackStruct whole = *call;
    if (call->reason == XmCR_DEFAULT_ACTION) call = FillSelection(event, &whole);
    event->data.text = event->decoded = XmtDecodeString(call->item);
    event->data.positions = call->selected_item_positions;
    event->data.count = call->selected_item_count;
    event->data.value = GetSelectionMask(call);
    event->selection = GatherSelection(call);
    event->data.selection = event->selection.c_str();
    KeepSelection(event->object, event->selection);
    KeepValue(event->object, event->data.value);
}

// Brings the object's value up to date and completes the event; false if nobody is to hear of it.
static bool DispatchType(Dispatch *event) {
    switch (event->object->type) {
    case XmtText: DispatchText(event); return true;
    case XmtPasswd: DispatchMasked(event); return true;
    case XmtDataEntryDialog:
    case XmtFileDialog: DispatchDialog(event); return true;
    case XmtRadioBox:
    case XmtListBut:
    case XmtCreatedListBut: return DispatchItem(event);
    case XmtToggleBut: DispatchToggle(event); return true;
    case XmtCascadeBut:
    case XmtButtonBox: DispatchNumbered(event); return true;
    case XmtListBox: DispatchList(event); return true;
    case XmtListBoxMS: DispatchMultiList(event); return true;
    default: return true; // no value
    }
}

// The format has the event if there is one, else the handler. A masked field masks without a format too.
static void Deliver(XmtObjectData *object, XmtCallData *data, bool flFormat) {
    if (flFormat && object->format) return XmtProcessFormat(object, data, 0);
    if (object->handler) object->handler(data);
    bool flChange = data->reason == XmtCR_CHANGED && data->doit && *data->doit;
    if (flChange && object->type == XmtPasswd) XmtProcessFormat(object, data, 0);
}

// What a shell hands over when it comes and goes is no record of Motif, and the same both times: the reason,
// or 0 for an event of another kind.
static int GetShellReason(Widget shell, XmtObjectData *object) {
    if (!XtIsShell(shell)) return 0;
    bool flComes = XtHasCallbacks(shell, XmNpopupCallback) == XtCallbackHasSome;
    bool flGoes = XtHasCallbacks(shell, XmNpopdownCallback) == XtCallbackHasSome;
    if (!flComes && !flGoes) return 0;
    if (flComes && flGoes) object->value = !object->value;
    return flComes && (!flGoes || object->value) ? XmCR_MAP : XmCR_UNMAP;
}

static bool TestValueReason(int motif) {
    return motif != XmCR_FOCUS && motif != XmCR_LOSING_FOCUS && motif != XmCR_CREATE;
}

void XmtEventHandler(Widget widget, XtPointer object, XtPointer callData) {
    Dispatch event = {};
    event.object = static_cast<XmtObjectData *>(object);
    event.widget = widget;
    event.call = static_cast<XmAnyCallbackStruct *>(callData);
    XmAnyCallbackStruct shellCall = {GetShellReason(widget, event.object), nullptr};
    if (shellCall.reason) event.call = &shellCall;
    int motif = event.call->reason;
    event.data = XmtNewCallData(event.object, GetReason(motif));
    event.data.widget = widget;
    event.data.callData = callData;
    if (!TestValueReason(motif) || DispatchType(&event))
        Deliver(event.object, &event.data, motif != XmCR_CREATE);
    XmtFreeStr(event.decoded);
}

static void DispatchCrossing(Widget widget, XtPointer client, int reason, Boolean *flContinue) {
    auto object = static_cast<XmtObjectData *>(client);
    *flContinue = 1;
    XmtCallData data = XmtNewCallData(object, reason);
    data.widget = widget;
    Deliver(object, &data, true);
}

void XmtEnter(Widget widget, XtPointer object, XEvent *, Boolean *flContinue) {
    DispatchCrossing(widget, object, XmtCR_ENTER, flContinue);
}

void XmtLeave(Widget widget, XtPointer object, XEvent *, Boolean *flContinue) {
    DispatchCrossing(widget, object, XmtCR_LEAVE, flContinue);
}

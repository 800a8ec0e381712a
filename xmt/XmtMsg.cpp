// Messages, timers and the file selection dialog.
#include "xmt/XmtMsg.h"

#include "common/MemMgr.h"
#include "common/utils.h"
#include "xmt/XmtCopy.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtFormat.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtString.h"
#include "xmt/XmtUtils.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

enum { TICK_MS = 1000, TIMER_IDS = 100 };
enum { MSG_COLUMNS = 100 }; // of a message, that it fits a screen of 1024 pixels
enum { FILE_COLUMNS = 50 }; // of a path in the file dialog; the lists get their width with it
static const char MsgDialog[] = "XmtPostMsg";
static const char FileDialog[] = "XmtFS";

ListHead *pXmtMsgList;
int flPostMsgIsHidden = 1;
intptr_t PostMsgId;
XmtHandler pPostMsgCBF;
const char *pPostMsgHelpWidget;
int XmtET;
int flXmtTimedOut, flXmtETDestroyApp;

const XmtDialogWords *pXmtDialogWords;

static Widget MsgHelpButton, MsgOkayButton, MsgCancelButton;

// ---- words

struct DialogWord {
    const char *resource;
    const char *XmtDialogWords::*word;
};
static const DialogWord BoxWords[] = {
    {XmNokLabelString, &XmtDialogWords::ok},
    {XmNcancelLabelString, &XmtDialogWords::cancel},
    {XmNhelpLabelString, &XmtDialogWords::help},
};
static const DialogWord FileWords[] = {
    {XmNfilterLabelString, &XmtDialogWords::filter},
    {XmNapplyLabelString, &XmtDialogWords::filterButton},
    {XmNdirListLabelString, &XmtDialogWords::directories},
    {XmNfileListLabelString, &XmtDialogWords::files},
    {XmNselectionLabelString, &XmtDialogWords::selection},
};

static void SetWord(const char *dialog, const DialogWord &row) {
    const char *word = pXmtDialogWords ? pXmtDialogWords->*row.word : nullptr;
    if (!word) return;
    XmString text = XmtMakeString(word);
    XmtSetXmValue(dialog, row.resource, reinterpret_cast<XtArgVal>(text));
    XmStringFree(text);
}

// ---- messages

static std::string UndoublePercents(const std::string &text) {
    std::string out;
    for (size_t i = 0; i < text.size(); i++) {
        out += text[i];
        if (text[i] == '%' && i + 1 < text.size() && text[i + 1] == '%') i++;
    }
    return out;
}

// Closed by the window manager, no button was pressed: the message is answered all the same, or no other one
// would ever be shown.
static void CloseMsg(Widget, XtPointer, XtPointer call) {
    XmtObjectData *object = XmtFindObject(MsgDialog);
    if (!object || flPostMsgIsHidden) return;
    XmtCallData data = XmtNewCallData(object, XmtCR_CANCEL);
    data.callData = call;
    XmtMsgEventHandler(&data);
}

static bool MakeMsgDialog() {
    if (pXmtMsgList) return true;
    XmtNewObject(pAppWinName, XmtMsgEventHandler, 0, "DI XmtPostMsg c(bg white, fg black) M(f) CB(h) St(T);");
    Widget dialog = XmtGetWidget(MsgDialog);
    if (!dialog) return false;
    for (const DialogWord &row : BoxWords) SetWord(MsgDialog, row);
    MsgHelpButton = XmMessageBoxGetChild(dialog, XmDIALOG_HELP_BUTTON);
    MsgOkayButton = XmMessageBoxGetChild(dialog, XmDIALOG_OK_BUTTON);
    MsgCancelButton = XmMessageBoxGetChild(dialog, XmDIALOG_CANCEL_BUTTON);
    XmAddWMProtocolCallback(XtParent(dialog), XInternAtom(XtDisplay(dialog), "WM_DELETE_WINDOW", 0), CloseMsg,
                            nullptr);
    pXmtMsgList = ListCreate();
    return pXmtMsgList != nullptr;
}

void XmtPostMsg_(const char *title, const char *text) {
    XmtMsgEntry entry = {PostMsgId, pPostMsgCBF, nullptr, nullptr};
    if (!text) text = "";
    PostMsgId = 0;
    pPostMsgCBF = nullptr;
    if (!AppWin || !MakeMsgDialog()) return errormsg("%s", text);
    entry.text = XmtSaveStr_(text);
    entry.title = title ? XmtSaveStr_(title) : nullptr;
    ListPushItem(pXmtMsgList, &entry, sizeof(entry));
}

void XmtPostMsg(const char *title, const char *format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = UndoublePercents(FormatV(format, args));
    va_end(args);
    std::string heading = UndoublePercents(title ? title : "");
    XmtPostMsg_(title ? heading.c_str() : nullptr, text.c_str());
}

void XmtSetPostMsgWidget(XmtHandler callback, intptr_t id) {
    pPostMsgCBF = callback;
    PostMsgId = id;
}

void XmtSetPostMsgHelpWidget(const char *name) {
    pPostMsgHelpWidget = name;
}

void XmtHideMsgCancelWidget() {
    if (MsgCancelButton) XtUnmanageChild(MsgCancelButton);
}

void XmtDisplayMsg() {
    auto entry = static_cast<XmtMsgEntry *>(ListFindItemN(pXmtMsgList, 1));
    if (!entry) return;
    XmtSetTitle(MsgDialog, entry->title ? entry->title : "     ");
    XmString text = XmtMakeString(BreakString(entry->text, MSG_COLUMNS, 0).c_str());
    XmtSetXmValue(MsgDialog, XmNmessageString, reinterpret_cast<XtArgVal>(text));
    XmStringFree(text);
    flPostMsgIsHidden = 0;
    if (pPostMsgHelpWidget)
        XtManageChild(MsgHelpButton);
    else
        XtUnmanageChild(MsgHelpButton);
    XmtShow(MsgDialog);
}

// The entry is out of the list before its callback runs, which may post.
static void AnswerMsg(XmtCallData *data) {
    auto entry = static_cast<XmtMsgEntry *>(ListPopFirstItem(pXmtMsgList, 0));
    if (!entry) return;
    data->id = entry->id;
    if (entry->id && entry->callback) entry->callback(data);
    XmtFreeStr(entry->text);
    XmtFreeStr(entry->title);
    PutMem(entry);
}

void XmtMsgEventHandler(XmtCallData *data) {
    if (data->reason == XmtCR_HELP && pPostMsgHelpWidget) XmtCallApp(pPostMsgHelpWidget, nullptr, data);
    bool flAnswer = data->reason == XmtCR_OK || data->reason == XmtCR_CANCEL || data->reason == XmtCR_APPLY;
    if (flAnswer) AnswerMsg(data);
    flPostMsgIsHidden = 1;
}

// ---- timers

enum { TIMER_RUNNING = 1, TIMER_SUSPENDED = 2 };

struct TimerRecord {
    int id;
    int state;
    int count; // seconds left
    int flRepeat;
    int period; // seconds
    XmtTimerCallback callback;
    intptr_t argument;
    unsigned serial; // ids come again, serials do not
};

static ListHead *TimerList;
static int TimerId;          // creations
static unsigned TimerSerial; // the last one given
static XtIntervalId TickId;  // of the tick under way, 0 for none

// A tick that is under way stays: timers that are reset all the time would never come otherwise.
static void RunTimer() {
    if (AppContext && !TickId) TickId = XtAppAddTimeOut(AppContext, TICK_MS, XmtTimerEventHandler, nullptr);
}

static TimerRecord *FindTimer(int id) {
    for (ListLink *link = TimerList ? TimerList->head : nullptr; link; link = link->next)
        if (auto timer = static_cast<TimerRecord *>(link->item); timer->id == id) return timer;
    return nullptr;
}

static TimerRecord *FindTimerSerial(unsigned serial) {
    for (ListLink *link = TimerList ? TimerList->head : nullptr; link; link = link->next)
        if (auto timer = static_cast<TimerRecord *>(link->item); timer->serial == serial) return timer;
    return nullptr;
}

// 2 to 100, then 1, without those in use; 0 if all are.
static int NewTimerId() {
    for (int i = 0; i < TIMER_IDS; i++) {
        int id = ++TimerId % TIMER_IDS + 1;
        if (!FindTimer(id)) return id;
    }
    return 0;
}

int XmtStartTimer(int mode, int seconds, XmtTimerCallback callback, intptr_t argument) {
    if (seconds <= 0 || !callback) return 0;
    if (!TimerList) TimerList = ListCreate();
    int id = NewTimerId();
    if (!id) return 0;
    int state = mode == XMT_TIMER_SUSPENDED ? TIMER_SUSPENDED : TIMER_RUNNING;
    TimerRecord timer = {id,      state,    seconds,  mode != XMT_TIMER_ONCE,
                         seconds, callback, argument, ++TimerSerial};
    ListPushItem(TimerList, &timer, sizeof(timer));
    RunTimer();
    return id;
}

void XmtStopTimer(int id) {
    if (TimerRecord *timer = FindTimer(id)) ListPopItem(TimerList, timer, 1);
}

void XmtResetTimer(int id) {
    TimerRecord *timer = FindTimer(id);
    if (!timer) return;
    timer->count = timer->period;
    timer->state = TIMER_RUNNING;
    RunTimer();
}

void XmtSuspendTimer(int id) {
    if (TimerRecord *timer = FindTimer(id)) timer->state = TIMER_SUSPENDED;
}

void XmtResumeTimer(int id, int seconds) {
    TimerRecord *timer = FindTimer(id);
    if (!timer || seconds <= 0) return;
    timer->period = timer->count = seconds;
    timer->state = TIMER_RUNNING;
    RunTimer();
}

// One second less; true if the timer was running. Its callback may stop it.
static bool TickTimer(unsigned serial) {
    TimerRecord *timer = FindTimerSerial(serial);
    if (!timer || timer->state != TIMER_RUNNING || timer->count < 1) return false;
    if (--timer->count > 0) return true;
    timer->callback(timer->argument);
    timer = FindTimerSerial(serial);
    if (!timer) return true;
    if (timer->flRepeat)
        timer->count = timer->period;
    else
        ListPopItem(TimerList, timer, 1);
    return true;
}

// Timers that a callback starts wait for the next tick.
void XmtTimerEventHandler(XtPointer, XtIntervalId *) {
    std::vector<unsigned> serials;
    TickId = 0;
    for (ListLink *link = TimerList ? TimerList->head : nullptr; link; link = link->next)
        serials.push_back(static_cast<TimerRecord *>(link->item)->serial);
    bool flAlive = false;
    for (unsigned serial : serials) flAlive |= TickTimer(serial);
    if (flAlive) RunTimer();
    XmtShowWaitingMsg();
    if (flExitMainLoop) XmtWakeMainLoop();
}

// ---- the inactivity timer

static XmtHandler pETCBF;
static intptr_t XmtETId;

static void XmtETHandler(intptr_t) {
    XmtCallData data{};
    data.name = "XmtET";
    data.id = XmtETId;
    data.reason = XmtCR_DEFAULT;
    flXmtTimedOut = 1;
    if (pETCBF) pETCBF(&data);
    if (!flXmtETDestroyApp) return;
    flExitMainLoop = 1;
    XmtStopTimer(XmtET);
    XmtET = 0;
}

void XmtStartEventTimer(XmtHandler callback, intptr_t id, int seconds) {
    if (XmtET) XmtStopTimer(XmtET);
    pETCBF = callback;
    XmtETId = id;
    XmtET = XmtStartTimer(XMT_TIMER_REPEAT, seconds, XmtETHandler, 0);
}

// ---- file selection

static XmtHandler FSCBF;
static intptr_t FSId;

static bool MakeFileDialog() {
    if (XmtGetWidget(FileDialog)) return true;
    if (!AppWin) return false;
    XmtNewObject(pAppWinName, XmtFSEventHandler, 0, "Df XmtFS c(bg white, fg black) M(f) St(T);");
    Widget dialog = XmtGetWidget(FileDialog);
    if (!dialog) return false;
    for (const DialogWord &row : BoxWords) SetWord(FileDialog, row);
    for (const DialogWord &row : FileWords) SetWord(FileDialog, row);
    XtUnmanageChild(XmFileSelectionBoxGetChild(dialog, XmDIALOG_HELP_BUTTON));
    XtVaSetValues(dialog, XmNtextColumns, FILE_COLUMNS, nullptr);
    XtRemoveAllCallbacks(dialog, XmNhelpCallback); // the help key is for the main window
    return true;
}

static void SetFileTitle(const char *title) {
    if (!title && AppShell) XtVaGetValues(AppShell, XmNtitle, &title, nullptr);
    if (title) XmtSetTitle(FileDialog, title);
}

// Files may have come since the last time. The name that was chosen stays.
static void ListFilesAnew() {
    Widget dialog = XmtGetWidget(FileDialog);
    Widget chosen = XmFileSelectionBoxGetChild(dialog, XmDIALOG_TEXT);
    char *text = XmTextGetString(chosen);
    XmFileSelectionDoSearch(dialog, nullptr);
    XmTextSetString(chosen, text);
    XtFree(text);
}

void XmtSelectFile(XmtHandler callback, intptr_t id, const char *title) {
    if (!MakeFileDialog()) return;
    ListFilesAnew();
    FSCBF = callback;
    FSId = id;
    SetFileTitle(title);
    XmtShow(FileDialog);
}

// The button of the filter, Return in its field and a directory that is opened look for files: that is no
// answer. Hidden before the callback, which may ask for another file.
void XmtFSEventHandler(XmtCallData *data) {
    if (data->reason == XmtCR_APPLY) return;
    XmtHide(FileDialog);
    if (data->reason != XmtCR_OK) return;
    data->id = FSId;
    if (FSCBF) FSCBF(data);
}

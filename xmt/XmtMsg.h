// Messages shown one at a time, timers of one second's grain, the file selection dialog.
#pragma once

#include "common/List.h"
#include "xmt/Xmt.h"

struct XmtMsgEntry {
    intptr_t id;
    XmtHandler callback;
    char *text;  // managed
    char *title; // managed, or null
};
extern ListHead *pXmtMsgList;
extern int flPostMsgIsHidden;          // no message is on the screen
extern intptr_t PostMsgId;             // of the next message; consumed by it
extern XmtHandler pPostMsgCBF;         // likewise
extern const char *pPostMsgHelpWidget; // target of the help button, null for no help

// Queues a message; the main loop shows it. Formatted once; then "%%" becomes "%" and every other % stays.
[[gnu::format(printf, 2, 3)]] void XmtPostMsg(const char *title, const char *format, ...);
void XmtPostMsg_(const char *title, const char *text); // the same for a finished text
void XmtDisplayMsg();
void XmtMsgEventHandler(XmtCallData *data);
void XmtSetPostMsgWidget(XmtHandler callback, intptr_t id);
void XmtSetPostMsgHelpWidget(const char *name);
void XmtHideMsgCancelWidget();
// Prints the text, " : " and the system's error. Ends: with status 1.
[[noreturn, gnu::format(printf, 1, 2)]] void XmtSysError(const char *format, ...);

enum { XMT_TIMER_ONCE, XMT_TIMER_REPEAT, XMT_TIMER_SUSPENDED }; // modes
using XmtTimerCallback = void (*)(intptr_t argument);
// The id; 0 for a time of 0 or a null callback. Callbacks run between events.
int XmtStartTimer(int mode, int seconds, XmtTimerCallback callback, intptr_t argument);
void XmtStopTimer(int id);
void XmtResetTimer(int id);
void XmtSuspendTimer(int id);
void XmtResumeTimer(int id, int seconds);
void XmtTimerEventHandler(XtPointer unused, XtIntervalId *id); // one tick

extern int XmtET; // the inactivity timer, 0 for none
extern int flXmtTimedOut, flXmtETDestroyApp;
void XmtStartEventTimer(XmtHandler callback, intptr_t id, int seconds);

// One dialog for all: the callback gets the chosen name as text, with reason XmtCR_OK or XmtCR_APPLY.
void XmtSelectFile(XmtHandler callback, intptr_t id, const char *title);
void XmtFSEventHandler(XmtCallData *data);

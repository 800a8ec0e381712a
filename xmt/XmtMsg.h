// Messages shown one at a time, timers of one second's grain, the file selection dialog.
#pragma once

#include "common/List.h"
#include "xmt/Xmt.h"

// ---- messages. They queue up; the main loop shows the first behind an event or a tick, and the next when
// the user has answered it. Without a main window they go to standard error.

struct XmtMsgEntry {
    intptr_t id;
    XmtHandler callback;
    char *text;  // managed
    char *title; // managed, or null
};
extern ListHead *pXmtMsgList;          // null until the first message; its head is the one shown
extern int flPostMsgIsHidden;          // no message is on the screen
extern intptr_t PostMsgId;             // of the next message; consumed by it
extern XmtHandler pPostMsgCBF;         // likewise
extern const char *pPostMsgHelpWidget; // target of the help button, null for no help

// Formatted once; then "%%" becomes "%" and every other % stays, in the title too, which may be null.
[[gnu::format(printf, 2, 3)]] void XmtPostMsg(const char *title, const char *format, ...);
void XmtPostMsg_(const char *title, const char *text); // texts that are taken as they are
void XmtDisplayMsg();                                  // shows the first message, if there is one
// The dialog's handler. OK, cancel and apply answer the message: with an id other than 0 its callback hears
// of it under that id. Help calls the help target, and the message comes back.
void XmtMsgEventHandler(XmtCallData *data);
void XmtSetPostMsgWidget(XmtHandler callback, intptr_t id); // for the next message alone
void XmtSetPostMsgHelpWidget(const char *name);             // the name is kept, not copied
void XmtHideMsgCancelWidget();                              // for good
// ---- timers. A tick a second counts them down while one of them runs; their callbacks come between events,
// in any loop, and may stop and start timers, their own too. Calls with an id that is not there do nothing.

enum { XMT_TIMER_ONCE, XMT_TIMER_REPEAT, XMT_TIMER_SUSPENDED }; // modes; the last repeats once it is resumed
using XmtTimerCallback = void (*)(intptr_t argument);
// The id, from 1 to 100; 0 for no time, a null callback, or when 100 timers are there.
int XmtStartTimer(int mode, int seconds, XmtTimerCallback callback, intptr_t argument);
void XmtStopTimer(int id);
void XmtResetTimer(int id);               // counts from its period again, and runs
void XmtSuspendTimer(int id);             // the count stays
void XmtResumeTimer(int id, int seconds); // runs with a new period; seconds 0 does nothing
void XmtTimerEventHandler(XtPointer unused, XtIntervalId *id); // one tick

// The inactivity timer: its callback comes after so many seconds without an event in the main loop. With
// flXmtETDestroyApp it also ends the main loop.
extern int XmtET; // its timer, 0 for none
extern int flXmtTimedOut, flXmtETDestroyApp;
void XmtStartEventTimer(XmtHandler callback, intptr_t id, int seconds);

// ---- the words of both dialogs in the user's language; without them they are Motif's. Set before the first
// message, kept and not copied; null for none.
struct XmtDialogWords {
    const char *ok, *cancel, *help;
    const char *filter; // above the pattern, and on the button that lists what fits it
    const char *filterButton;
    const char *directories, *files, *selection; // above the lists and the chosen name
};
extern const XmtDialogWords *pXmtDialogWords; // writer: the application

// ---- file selection. One dialog for all: the callback gets the chosen name as text, under the id, with
// reason XmtCR_OK; none when the user cancels. Looking for files, by the filter or in another directory, is
// no answer. Without a title it has the main window's. A second call before the answer replaces the callback.
// Nothing without a main window.
void XmtSelectFile(XmtHandler callback, intptr_t id, const char *title);
void XmtFSEventHandler(XmtCallData *data);

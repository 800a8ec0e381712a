// The main loop, and the one function at which every Motif callback arrives.
//
// A handler is given one XmtCallData and switches on its id. It may call anything of the toolkit. An object
// with a format has its events run there; its handler then hears only what the format passes on.
#pragma once

#include "xmt/Xmt.h"
#include "xmt/XmtDisplay.h"

extern int flInEventLoop;      // set for good when the main loop starts
extern int flExitMainLoop;     // leaves the main loop after the event in hand
extern void (*EventLoopCBF)(); // runs once when the event in hand is dispatched, and is cleared

// Realizes AppShell and runs until flExitMainLoop. Ends: with status 1 when the display goes away.
void XmtMainEventLoop();
// Lets the main loop look at flExitMainLoop though no event comes; for callbacks of timers.
void XmtWakeMainLoop();
// Dispatches until *flDone is not 0. Ends: as XmtMainEventLoop.
void XmtModalAppLoop(const char *flDone);
// The Motif callback of all objects; client data is the XmtObjectData.
void XmtEventHandler(Widget widget, XtPointer object, XtPointer callData);
// The pointer comes and goes.
void XmtEnter(Widget widget, XtPointer object, XEvent *event, Boolean *flContinue);
void XmtLeave(Widget widget, XtPointer object, XEvent *event, Boolean *flContinue);
// Shows a waiting message if none is on the screen; the main loop does it behind every event and tick.
void XmtShowWaitingMsg();

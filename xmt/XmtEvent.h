// The display, the main loop, and the one function at which every Motif callback arrives.
#pragma once

#include "xmt/Xmt.h"

extern XtAppContext AppContext;
extern Display *AppDisplay; // null without a display
extern Screen *AppScreen;
extern int AppScreenNum;
extern Colormap AppColormap;
extern int flInitAppTimedOut;  // no display, or none within the limit
extern int flInEventLoop;      // set for good when the main loop starts
extern int flExitMainLoop;     // leaves the main loop after the event in hand
extern void (*EventLoopCBF)(); // runs once when the event in hand is dispatched, and is cleared

enum { XMT_OPEN_SECONDS = 35 }; // a display that does not answer within it is none

// Opens the display; false after a warning on standard error. argc may be null.
bool XmtInitApp(const char *name, const char *appClass, int *argc, char **argv);
// Realizes AppShell and runs until flExitMainLoop.
void XmtMainEventLoop();
// Dispatches until *flDone is not 0.
void XmtModalAppLoop(const char *flDone);
// The Motif callback of all objects; client data is the XmtObjectData.
void XmtEventHandler(Widget widget, XtPointer object, XtPointer callData);
// The pointer comes and goes.
void XmtEnter(Widget widget, XtPointer object, XEvent *event, Boolean *flContinue);
void XmtLeave(Widget widget, XtPointer object, XEvent *event, Boolean *flContinue);
// Step 4 of the loop, also run after timers: shows a waiting message.
void XmtShowWaitingMsg();

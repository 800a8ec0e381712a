// The display: opened once, for good.
#pragma once

#include "xmt/x11.h"

extern XtAppContext AppContext; // writer of these five: XmtInitApp
extern Display *AppDisplay;     // null without a display
extern Screen *AppScreen;
extern int AppScreenNum;
extern Colormap AppColormap;
extern int flInitAppTimedOut; // no display, or none within the limit

enum { XMT_OPEN_SECONDS = 35 }; // a display that does not answer within it is none
extern int XmtOpenSeconds;      // the limit; tests lower it

// Opens the display; false after a warning on standard error. argc may be null. From then on an X error goes
// to the log, and a display that goes away ends the process with status 1. Uses: SIGALRM, and puts it back.
bool XmtInitApp(const char *name, const char *appClass, int *argc, char **argv);

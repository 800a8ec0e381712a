// The manual in a window: the text image of a page (help/html.h) in a read-only text, and three buttons.
//
// A click on a link follows it. By keys: Tab and Shift+Tab go from link to link, Return and space follow the
// one under the cursor, Backspace goes back, Escape closes; the letters of the buttons work as in any menu.
#pragma once

#include "xmt/Xmt.h"

extern const char XmtHtmlHelpDesc[]; // a dialog of the main window
extern const char XmtHelpMWDesc[];   // a window of its own
extern int flHelpOnly;               // the manual is the whole application; writer: the start-up

// Makes the window once, with the title of that first call, loads the file (or the buffer under its name) and
// shows the first page. 1 if it is shown; 0, with the reason on standard output, if it can't be read. With
// flHelpOnly it returns when the window is closed. Nothing without a name and a title.
int XmtHtmlHelp(const char *name, const char *buffer, const char *title);
// The window's handler.
void XmtHtmlEventHandler(XmtCallData *data);
// Scrolls to TargetPos; what the main loop calls behind the event that followed a link.
void SetGuiPos();

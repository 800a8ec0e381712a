// What the windows of the front end share.
#pragma once

#include "xmt/Xmt.h"

#include <string>

// The display, the texts and the macros. False, behind a warning on standard error, without a display.
bool OpenWindows();

struct FrontWindow {
    const char *name;
    const char *text;   // WindowDesc.h
    int set;            // of the texts in its holes
    const char *cancel; // the button that Escape presses, and the window manager that closes the window
    const char *help;   // the button that F1 presses, and the help of a message box
};
enum { FRONT_FEATURES_WINDOW, FRONT_QUEUES_WINDOW, FRONT_WINDOWS };
extern const FrontWindow FrontWindows[FRONT_WINDOWS];

// Makes the program's main window.
void MakeWindow(const FrontWindow &window, XmtHandler handler);
// Leaves the main loop when nobody reads standard output any more: the program that waits for the answer is
// gone.
void WatchCaller();
// Sets keys and buttons, when the window holds all it should. Return presses the button that has the focus
// alone.
void FinishWindow(const FrontWindow &window);
// The manual, at what it says of features.
void ShowFeatureHelp();
// A message box; nothing for an empty text.
void PostNote(const std::string &text);
// One of the texts of WINDOW_ with a name in it.
std::string FillText(int number, const std::string &name);

// A user in front of the rig's display: real keys and a real pointer, and the main loop while they take
// effect.
#pragma once

#include "xmt/Xmt.h"

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <string>

// False, with the reason, if there is nothing here that presses keys.
bool FindWindowUser(std::string *reason);

// Tests of one window, skipped where there is no display or nothing that presses keys.
class WindowTest : public testing::Test {
protected:
    // Opens the display and makes the window, which the loop realizes; false, with the skip prepared.
    static bool SetUpWindow(XmtHandler handler, int firstId, const char *description);
    void SetUp() override;
};

// Notes an event as "name id/reason=value text+selection+selection;", and what was noted so far.
void RecordEvent(XmtCallData *data);
extern std::string Events;
std::string TakeEvents(); // and begins anew

void PressKeys(const std::string &keys); // names with blanks between them: "Tab ctrl+a Return"
void PressSlowly(const char *keys);      // the loop runs behind each: menus grab the keyboard when they open
void TypeText(const char *text);
void PointAt(const char *name); // the middle of the object
void ClickAt(const char *name);
void ClickPoint(int x, int y); // of the screen
// The focus, or the pointer, goes there, then what came of it is dispatched.
void PressAt(const char *name, const char *keys);
void ClickAndDispatch(const char *name);
// What a window manager sends for the close button of the object's shell.
void CloseByManager(const char *name);
// Runs the main loop until the condition holds; false if it did not within ten seconds.
bool RunLoopUntil(const std::function<bool()> &done);
// Lets so much time go by in the main loop.
void RunLoopFor(int milliseconds);
// Bytes that the process holds, managed memory among them; the loss of X's own objects shows here alone.
size_t HeldBytes();

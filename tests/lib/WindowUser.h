// A user in front of the rig's display: real keys and a real pointer, and the main loop while they take
// effect.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

// False, with the reason, if there is nothing here that presses keys.
bool FindWindowUser(std::string *reason);
void PressKeys(const std::string &keys); // names with blanks between them: "Tab ctrl+a Return"
void TypeText(const std::string &text);
void PointAt(const char *name); // the middle of the object
void ClickAt(const char *name);
void ClickPoint(int x, int y); // of the screen
// What a window manager sends for the close button of the object's shell.
void CloseByManager(const char *name);
// Runs the main loop until the condition holds; false if it did not within ten seconds.
bool RunLoopUntil(const std::function<bool()> &done);
// Lets so much time go by in the main loop.
void RunLoopFor(int milliseconds);
// Bytes that the process holds, managed memory among them; the loss of X's own objects shows here alone.
size_t HeldBytes();

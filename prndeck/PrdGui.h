// The window face: how it is started, and what the program does where it can't be.
#pragma once

// The one door to the windows: connects to the display. 1 if windows can be made; 0 after the warning on
// standard error. A build without the window face answers as on a host without a display.
int OpenWindowFace();

// 0 if the display can't be opened; 1 when the main loop was left.
int RunGui();

// The word -help: the manual in a window of its own. Ends: with 0 when it is closed, with 1 without a
// display.
[[noreturn]] void RunHelpOnly();

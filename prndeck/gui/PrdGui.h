// The window face: its start.
//
// Windows are texts (PrdGuiDesc.h) that the toolkit makes once, at the start; afterwards they are shown and
// hidden by name. Events arrive at WizEventHandler by the ids of those texts. The selected printer
// (PrdDisc.h) decides which entries can be used.
#pragma once

#include <cstdint>

// Connects to the display. 1 if windows can be made; 0 after the warning on standard error.
int OpenWindowFace();
// 0 if the display can't be opened; 1 when the main loop was left. Ends: with 0 by the entry Exit, and when
// the main window is closed.
int RunGui();
// Makes all windows, and sets what can be used before a printer is selected. The display must be open.
void GenGui();
// The word -help: the manual in a window of its own. Ends: with 0 when it is closed or can't be read, with 1
// if there is no display.
[[noreturn]] void RunHelpOnly();
// Timer: the first discovery.
void InitGui(intptr_t unused);

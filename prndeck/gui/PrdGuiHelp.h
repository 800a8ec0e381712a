// The manual in its window, for the entry and the button of the main window, the buttons Help of the dialogs
// and F1.
#pragma once

// Shows the contents of the manual in the language of the run. One that can't be read is told on standard
// output and, where there are other windows, in a message.
void ShowManual();

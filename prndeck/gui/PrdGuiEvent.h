// The handler of the main window's events.
#pragma once

#include "xmt/Xmt.h"

// Handler of the main window, the display window and the window About; reason XmtCR_CREATE is ignored.
void WizEventHandler(XmtCallData *data);
// Looks for printers and shows them; none is selected afterwards.
void DoRefresh();

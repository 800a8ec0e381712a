// The display window: which columns the list of printers has.
#pragma once

extern int DisStyle; // of the window while it is open, as in PrdGuiList.h

void PrepareDisplaySetup(); // the step behind its text
void OpenDisplaySetup();    // shows the style of the list
// Adds or takes away bits of the style.
void SetDisStyle(int bits, int flOn);
// The column that is always there: item 0 for the name, 1 for the host name.
void SetDisName(int item);
// The list takes the style over, if there are printers.
void ApplyDisplaySetup();
void CloseDisplaySetup(); // behind an apply

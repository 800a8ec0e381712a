// The window face: its start, the main window with the list of printers, and what its entries do.
//
// Windows are texts (PrdGuiDesc.h) that the toolkit makes once, at the start; afterwards they are shown and
// hidden by name. Events arrive at WizEventHandler by the ids of those texts. The selected printer
// (PrdDisc.h) decides which entries can be used.
#pragma once

#include "xmt/Xmt.h"

#include <string>

// ---- The run

// Connects to the display. 1 if windows can be made; 0 after the warning on standard error.
int OpenWindowFace();
// 0 if the display can't be opened; 1 when the main loop was left. Ends: with 0 by the entry Exit, and when
// the main window is closed.
int RunGui();
// Reads the macros that every window uses, with the fonts and the names of channel states of the catalogues.
// The display must be open.
void GenMacros();
// Makes all windows, and sets what can be used before a printer is selected. The display must be open.
void GenGui();
// The word -help: the manual in a window of its own. Ends: with 0 when it is closed, with 1 if there is no
// display or no window for it.
[[noreturn]] void RunHelpOnly();
// Timer: the first discovery.
void InitGui(intptr_t unused);

// ---- Events

// Handler of the main window, the display window and the window About; reason XmtCR_CREATE is ignored.
void WizEventHandler(XmtCallData *data);
// Looks for printers and shows them; none is selected afterwards.
void DoRefresh();

// ---- The printer list. ORDER aFieldSize

enum { FIELD_HOST, FIELD_NAME, FIELD_ADDRESS, FIELD_HWADR, FIELD_DESCRIPTION, FIELD_COUNT };
extern const int aFieldSize[FIELD_COUNT]; // width of a column in characters

// Columns of the list. The name wins over the host name; a style without columns is replaced by the default.
enum {
    DISPLAY_NAME = 1,
    DISPLAY_ADDRESS = 2,
    DISPLAY_HWADR = 4,
    DISPLAY_DESCRIPTION = 8,
    DISPLAY_HOST = 16,
    DISPLAY_DEFAULT = DISPLAY_NAME | DISPLAY_ADDRESS | DISPLAY_DESCRIPTION,
    DISPLAY_ALL = DISPLAY_NAME | DISPLAY_ADDRESS | DISPLAY_HWADR | DISPLAY_DESCRIPTION,
};
extern int DisplayStyle; // of the list
extern int DisStyle;     // of the display window while it is open

// Titles of the shown columns as one line.
std::string GenListTitle();
// A printer's row, in line with the title; empty for one that isn't there. Asks the printer for a name or a
// hardware address that is shown and not known yet.
std::string GenListEntry(int index);
// Adds a column of the width and three blanks; a longer text is cut and ends in "...".
void AppendToListEntry(std::string *out, int width, const char *text);
void SetupPrnListDisplay(); // title and rows anew
void UpdatePrListDisplay(); // the same rows with other columns

// ---- The selected printer

// Makes a printer the selected one, or none with -1. Uses: Cur_Product_Index, pCurPrnData.
void SetPrinterSelectionData(int index);
enum { SNMP_NO_PRINTER, SNMP_NO_WEB, SNMP_WEB, SNMP_OFF };
// Enables what the state allows: no printer selected, one without or with a web port. A selected printer of a
// model without SNMP services has a state of its own, whatever is asked.
void GreyoutSNMP(int state);
// Disables the reset for a selected printer whose model has none.
void GreyoutReset();
// Reads status and location from a printer and shows them with its picture. Blocks; a failure is posted.
void DiscProcessPrinterSelection(int index);
// The panel without a printer.
void ClearPrinterPanel();

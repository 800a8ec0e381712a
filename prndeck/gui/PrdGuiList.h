// The list of printers in the main window.
#pragma once

#include <string>

// ORDER FIELD_
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
extern int DisplayStyle; // of the list; writers: the list and the display window

// Titles of the shown columns as one line.
std::string GenListTitle();
// A printer's row, in line with the title; empty for one that isn't there. Asks the printer for a name or a
// hardware address that is shown and not known yet.
std::string GenListEntry(int index);
bool TestControl(char ch); // a control character of ASCII or Latin-1, which fonts show as a gap or a box
// Adds a column of the width and three blanks; a longer text is cut and ends in "...".
void AppendToListEntry(std::string *out, int width, const char *text);
void AlignListTitle(const char *label); // of columns with the rows below it
void PrepareMainWindow();   // the step behind its text: keys of the menu, place of the titles, empty list
void SetupPrnListDisplay(); // title and rows anew
void UpdatePrListDisplay(); // the same rows with other columns

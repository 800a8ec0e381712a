// The windows as texts, in the language of xmt/XmtNew.h, and the table of all of them.
#pragma once

#include <string>

// A window's text. Each "%s" in it stands for a text of the catalogue, from number 1 on in its set.
struct GuiDesc {
    const char *name;
    const char *text;
    int set;
};

extern const char MainWinDesc[];      // prndeck: menu, printer list, panel, tool buttons
extern const char AboutDesc[];        // aw; the catalogue leaves one hole for the version
extern const char DisplaySetupDesc[]; // dsw: columns of the printer list

// Sets of the catalogue.
enum { GUI_SET_MAIN = 1, GUI_SET_ABOUT = 2, GUI_SET_DISPLAY = 3 };

extern const GuiDesc GuiDescs[]; // ends with a null name; read by the run and by the checker of windows

// The text with the catalogue's texts in its holes; a missing one shows its key.
std::string GenGuiDesc(const char *text, int set);
// The text with the first "%s" replaced by the first value, the second by the second, and so on. Values and
// everything else in the text are taken as they are; holes beyond the values stay.
std::string FillGuiDesc(const std::string &text, const char *const *values, int count);

// The windows as texts, in the language of xmt/XmtNew.h.
#pragma once

#include <string>

// Each "%s" stands for a text of the catalogue, from number 1 on in the window's set.
extern const char MainWinDesc[];      // prndeck: menu, printer list, panel, tool buttons
extern const char AboutDesc[];        // aw; the catalogue leaves one hole for the version
extern const char DisplaySetupDesc[]; // dsw: columns of the printer list

// The text with the catalogue's texts in its holes; a missing one shows its key.
std::string GenGuiDesc(const char *text, int set);
// The text with the first "%s" replaced by the first value, the second by the second, and so on. Values and
// everything else in the text are taken as they are; holes beyond the values stay.
std::string FillGuiDesc(const std::string &text, const char *const *values, int count);

// The table of all windows, in the order in which they are made.
#pragma once

#include "xmt/Xmt.h"

#include <string>

struct GuiDesc {
    const char *name;                // of the text, for checkwin and winview
    const char *text;                // PrdGuiDesc.h
    int set;                         // SET_ of the texts in its holes
    XmtHandler handler;              // of its objects
    std::string (*fill)() = nullptr; // the value of a hole that the catalogue's texts leave
    void (*step)() = nullptr;        // runs when the window is made
};
extern const GuiDesc GuiDescs[]; // ends with a null name

// A window's text with all its holes filled.
std::string GenGuiText(const GuiDesc *desc);

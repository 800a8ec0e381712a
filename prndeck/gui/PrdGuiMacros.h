// The macros of all windows, one definition a line, in the language of xmt/XmtNew.h. It is read before the
// first window, with no parent: it makes no object.
//
//  0-15, 30, 33, 34       colours, as arguments ".N"
//  20-23, 32              fonts, likewise; 22 is the one of lists, whose columns want a fixed pitch
//  31, 79                 the hint at the head of a page
//  49-62                  rows of the property pages
//  68-71, 74, 82-88       single controls: buttons, labels, fields, choices
//  75, 76, 78, 96         a dotted address in four fields
//  77                     a list of ten rows
//  80, 81, 91, 95         open a dialog; 90, 94 its work area; 72, 73 its row of buttons; 93 closes the frame
//
// doc/windows.md tells how they are used. Eight "%s" are to be filled: 20 PrdGuiFontDef1, 21 PrdGuiFontDef2,
// 22 PrdGuiFontDef3, 23 PrdGuiFontDef4 and PrdGuiFontDef5, 32 PrndeckMainFontDef, 56 and 59 the texts 22/1
// and 22/2 of the catalogue.
#pragma once

extern const char MainMacroDesc[];
// Reads the macros that every window uses, with the fonts and the names of channel states of the catalogues.
// The display must be open.
void GenMacros();
// Words of the dialogs that are Motif's, in the run's language.
void SetDialogWords();

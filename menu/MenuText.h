// Texts of the catalogue put into the tables of menus.
#pragma once

#include "menu/TextMenu.h"

// Owns: a new copy of text 25_number of pDrvCoreDB, at most 127 characters, is stored in the field. What
// stood there is left alone. The item functions fill the labels, choices or prompts of consecutive items from
// consecutive numbers.
void NlsTtyMenuCvt(char **field, int number);
void NlsTtyMenuItemCvt(TextMenuItem *items, int number, int count);
void NlsTtyMenuItemStateCvt(TextMenuItem *items, int number, int count);
void NlsTtyMenuItemPromptCvt(TextMenuItem *items, int number, int count);

// Fills the title of a menu and the label, prompt and choices of its rows, each that has a number, and gives
// back what an earlier call put there. Owns: the texts stay until the next call for the menu.
void FillMenuTexts(TextMenu *menu);

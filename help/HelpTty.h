// The manual at the terminal: the page is the text of a menu, its links are the numbered items.
#pragma once

#include "menu/TextMenu.h"

extern TextMenu HelpMenu;
extern TextMenuItem *HelpMenuItems;
extern int HelpMenuItemCnt; // capacity of the table
extern TextMenuItem HelpCommonItems[];

// Loads the file and runs the menu until the user leaves it. Nothing without a name and a title.
void TtyHtmlHelp(const char *name, const char *data, const char *title);
// Makes the menu of the current page. The table may move.
void TtyHelpBuildMenuItems();
int TtyHelpGotoLink(TextMenu *menu, TextMenuItem *item);
int TtyHelpContents(TextMenu *menu, TextMenuItem *item);
int TtyHelpBack(TextMenu *menu, TextMenuItem *item);

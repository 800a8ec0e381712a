// Main windows with their shells, Motif's dialogs, menu bars with the language of their bodies.
#pragma once

#include "xmt/XmtNewArgs.h"

// Set by the first main window.
extern Widget AppShell;
extern char *pAppShellName; // managed
extern Widget AppWin;
extern char *pAppWinName; // managed
extern const char AppClass[];
extern int BarItemCnt;           // top-level entries of the bar in the making
extern int flNoBarMenuTraversal; // writer: the application

Widget XmtNewMainWindow(intptr_t kind); // 'M' 'P' 'B' 'R' 'F', 0: the shell alone
Widget XmtNewPromptDialog(Widget parent,
                          intptr_t type); // XmtDataEntryDialog to XmtmessageDialog; not managed
Widget XmtNewMenuBar(Widget parent);      // reads through the closing brace
// One level of the menu language at the cursor.
void BuildMenuBar(Widget parent, XmtInfo *bar, const char *prefix);
Widget XmtNewMenuBarButton(Widget parent);
Widget XmtNewMenuBarMenu(Widget parent);

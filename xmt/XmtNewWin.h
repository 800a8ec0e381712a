// Main windows with their shells, Motif's own dialogs, menu bars with the language of their bodies.
#pragma once

#include "xmt/XmtNewArgs.h"

enum { XMT_MENU_FILES = 10 }; // depth to which a file of menu text may read others

// Set by the first main window, for good.
extern Widget AppShell;
extern char *pAppShellName; // managed
extern Widget AppWin;
extern char *pAppWinName; // managed
extern const char AppClass[];
extern int BarItemCnt;           // top-level entries of the bar in the making
extern int flNoBarMenuTraversal; // the keyboard does not reach into menus; writer: the application

// The window, read at the cursor, managed, in a shell "name_shell" of its own whose title is t(...): 'M' main
// window, 'P' panes, 'B' bulletin board, 'R' row column, 'F' form; with 0 the shell is the window. CB(...),
// f(...) and L(...) have no effect; id(N) numbers the shell. Null without a display. Uses: pNewDesc.
Widget XmtNewMainWindow(intptr_t kind);
// A dialog of Motif's, read at the cursor, not managed: XmtDataEntryDialog (prompt), XmtWarnDialog,
// XmtInfoDialog, XmtFileDialog, XmtmessageDialog (a message without a picture). L(ok,cancel,apply) labels its
// buttons, an empty value leaves Motif's; a third one makes a prompt show its apply button. l(...) is the
// label above what is typed, t(...) the text, T(...) the title. Every button calls the handler. Null without
// a parent. Uses: pNewDesc.
Widget XmtNewPromptDialog(Widget parent, intptr_t type);

// The bar, with all that its body says, read through the closing brace. Uses: pNewDesc, BarItemCnt,
// BarPullDownMenu, flUseDefaultColor (clear meanwhile, set afterwards), flNoTraversal,
// flConvertLabelToAppData.
Widget XmtNewMenuBar(Widget parent);
// One level of the menu language at the cursor, through the '}' or ';' that ends it:
//
//   b(label)  bf(format,label)  an item; a comma in a format takes a backslash
//   m(label) { ... }            a menu
//   s                           a separator
//   id(n)                       the id of the next item
//   i(file)                     the file's text stands here
//   a                           from here on labels become application data, or no longer
//   #                           comment to the end of the line
//
// prefix is empty at the top, and one letter longer in every menu: 'b' in the first of its level, 'c' in the
// second. The n-th entry of bar x at the top is x_n; in the menus of that entry the k-th item is
// x_n_prefix_k, the k-th menu x_n_prefix_k_pd ('a' for the prefix at the top) with the cascade
// x_n_prefix_k_pd_cb. The program knows items by these names. Uses: as XmtNewMenuBar.
void BuildMenuBar(Widget parent, XmtInfo *bar, const char *prefix);
// One entry of a bar that is made piece by piece: a push button, or a pulldown (the result) with the cascade
// name_cb, for which the arguments are read a second time.
Widget XmtNewMenuBarButton(Widget parent);
Widget XmtNewMenuBarMenu(Widget parent);
// In a dialog of our own Return presses the button that has the focus, else ok, which gets a thicker frame,
// and Escape presses cancel. Both may be null; without ok Return in a field is the field's alone. The buttons
// beside cancel become as wide as the widest.
void XmtSetDialogButtons(const char *dialog, const char *ok, const char *cancel);
void XmtAlignButtons(const char *button); // the same for those beside that one
// Gives the entries of a bar and of its menus the keys back that flNoBarMenuTraversal took: arrows move,
// Return and space choose, Escape closes. The bar's text says St(T), or its pulldowns stay without.
void XmtAddMenuKeys(const char *bar);

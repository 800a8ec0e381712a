// Reads the descriptions of windows and makes what they say while it reads.
//
// A description is a text of statements: objects (keyword, name, arguments up to ';' or '{'), blocks, macro
// definitions ".N text" and calls "*N(arguments)", comments, inclusion, "id(N)", "P(name)", "O name", "OS
// name arguments;". Nothing is reported: an unknown keyword makes no object, an unknown argument is skipped.
// tools/checkwin finds such mistakes. doc/windows.md tells the language.
//
// There is one reader in the process (XmtValue.h). XmtNewObject may be called from an event handler, never
// from within a creator.
#pragma once

#include "xmt/Xmt.h"
#include "xmt/XmtMacro.h"
#include "xmt/XmtToken.h"
#include "xmt/XmtValue.h"

#include <string>

enum { XMT_BLOCKS = 200 }; // blocks within blocks, files that include themselves counted

// Makes the objects of a description under the named parent; a null or unknown name means the main window. A
// null name before there is one is no parent, an unknown name then does nothing. handler becomes theirs;
// firstId 0 lets the ids run on. Uses: the reader's state, of which the cursor and the calls in progress come
// back; the store is made at the first call.
void XmtNewObject(const char *parent, XmtHandler handler, int firstId, const char *text);
// The statement loop: up to the matching '}' or the end of the text. A keyword takes effect at the white
// space or the '(' behind it, so that the last word of a text needs one. Uses: pNewDesc.
void XmtNewObjectWP(Widget parent);
// Carries a keyword out; the widget it made or found, null for none. May replace the level's parent.
Widget XmtProcessKey(Widget *parent, const char *key);
// The kinds of creators, and the row of one keyword. ORDER ObjKeys.
enum XmtKind {
    XMT_KIND_A,
    XMT_KIND_P,
    XMT_KIND_PA,
    XMT_KIND_APT,
    XMT_KIND_PAT,
    XMT_KIND_PARENT = -1,
    XMT_KIND_ID = -2,
    XMT_KIND_SELECT = -3,
    XMT_KIND_CHANGE = -4
};
union XmtCreator {
    Widget (*a)(intptr_t first); // 'M' ... or 0; of images a file name, 0 for none
    Widget (*p)(Widget parent);
    Widget (*pa)(Widget parent, intptr_t first);
    Widget (*apt)(int type, Widget parent, const char *callback);
    Widget (*pat)(Widget parent, int type, const char *letters);
};
struct XmtKeyRow {
    const char *key; // the word of ObjKeys
    XmtCreator create;
    intptr_t first;
    int kind; // XmtKind
    const char *text;
    bool flParent; // the result takes the place of a missing parent
};
enum { XMT_KEYS = 46 };
extern const char ObjKeys[];      // ",WM,WP,..."
extern const XmtKeyRow Objs[];    // XMT_KEYS of them; row 0 is never used
extern const XmtKeyRow *pXmtObjs; // the table in use; tests put a recording one here

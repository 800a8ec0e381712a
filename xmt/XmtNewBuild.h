// Makes widgets and the records by which the program knows them.
//
// Three layers. XmtNewData registers a widget under a name. XmtNewSimpleObject makes one widget from one
// argument text. XmtBuildObject makes a compound: one keyword that stands for a small tree of widgets, for
// each of which it writes a text that XmtNewWidget hands to the layer below. A compound x consists of
//
//   x_B1     box                           if it has a label (toggles: never for that) or an icon
//   x_L      label                         if it has a label; a toggle shows its own
//   x        the control
//   x_i      icon, a label or a picture
//   x_pd     pulldown of an option list, x_sm1 ... its overflow, reached by the cascades x_cb1 ...
//   x_1 ...  items
//   x_cb     cascade of a created option list
//
// and all but the overflow menus and the cascades bear the control's id. Nothing is destroyed: objects last
// as long as the process.
//
// Nothing is reported. Without a parent, or under one that holds no children, no widget is made, and its
// arguments are read all the same.
#pragma once

#include "xmt/XmtNewArgs.h"

enum { XMT_MENU_ITEMS = 20 }; // of an option list in one pulldown; the others follow in overflow menus
// Types of the objects that take no number.
enum {
    AUX_SHELL = int{XMT_AUX} + int{XmtShell},
    AUX_CASCADE = int{XMT_AUX} + int{XmtCascadeBut},
    AUX_PUSH = int{XMT_AUX} + int{XmtPushBut},
    AUX_TOGGLE = int{XMT_AUX} + int{XmtToggleBut},
    AUX_BOX = int{XMT_AUX} + int{XmtBox},
    AUX_FORM = int{XMT_AUX} + int{XmtForm},
    AUX_BAR = int{XMT_AUX} + int{XmtMenuBar},
    AUX_MENU = int{XMT_AUX} + int{XmtMenu},
    AUX_SEPARATOR = int{XMT_AUX} + int{XmtSeperator},
    AUX_LABEL = int{XMT_AUX} + int{XmtLabel}
};

extern const char *const XmtObjectNames[XMT_TYPE_COUNT]; // ORDER XmtType
extern XmtObjectData *pNewObjectData;                    // made last; read right after a creation
extern Widget WB1;                                       // box of the compound in the making, or null
extern Widget BarPullDownMenu;      // pulldown that the next cascade button carries, or null
extern int ListCnt;                 // items that the last list made
extern Widget ScrollW;              // clip window of the next scrolled area, or null
extern int flConvertLabelToAppData; // the label becomes the object's application data
extern intptr_t pAppData;           // application data of new objects, 0 for none
extern int flCreateCallback;        // creations call the handler

// Registers a widget under a name. type may carry XMT_AUX: the object bears the counter's number and leaves
// it there. A name that is taken keeps its record, and in it what is not written here: value, format, icon,
// extension; the widget that had the name is known to XmtObjects alone from then on. Uses:
// SpecifiedAppCBValue, AppCBValue, AppCB, pAppData, flCreateCallback, pNewObjectData. Ends: when memory is
// exhausted.
XmtObjectData *XmtNewData(const char *name, int type, Widget widget);
// One widget, its arguments read at the cursor. callback: a resource to connect to the dispatcher, or null.
// P(...) replaces the parent. Null, with SpecifiedAppCBValue cleared, without one. Uses: pNewDesc,
// pNewObjectData, BarPullDownMenu, ScrollW.
Widget XmtNewSimpleObject(int type, Widget parent, const char *callback);
// The same with the arguments from a text, which is read to its end. The cursor stays.
Widget XmtNewWidget(const char *text, int type, Widget parent, const char *callback);
// A compound, read at the cursor: the control. letters: m a pulldown, L items and their kind (t toggles, p
// pushes). Uses: pNewDesc, WB1, ListCnt, BarPullDownMenu.
Widget XmtBuildObject(Widget parent, int type, const char *letters);
// One item for each value of a comma list: the first, or null for an empty or null list. Each has the number
// before the counter's, that of its owner. Uses: ListCnt.
Widget XmtNewListObjects(int itemType, int ownerType, Widget parent, const char *name, const char *common,
                         const char *list);
// Box and label of a compound with a label, and the control if the record has a type. The widget under which
// further children go: box or parent. extra goes before the control's other arguments, or is null. Uses: WB1.
Widget XmtNewLabeledObject(Widget parent, XmtInfo *info, const char *extra);

struct XmtStringTable {
    int count;
    XmString strings[1]; // count of them
};
// Null for a null list; an empty text gives one empty string. A comma behind a backslash is no separator, and
// the backslash goes. Owns: XmtFreeStringTable.
[[nodiscard]] XmtStringTable *XmtGenStringTable(const char *list);
void XmtFreeStringTable(XmtStringTable *table); // null is ignored
// Shows the n-th icon, from 1, of an object's icon list: "@file" as pixmap of x_i, "&name.value" as value of
// that object. Without such an icon x_i shows a blank. Nothing for an object without icons.
void XmtSelectIcon(XmtObjectData *object, int n);

// ---- what the creators of compounds share

// Takes an argument out of the general text: its value, without the parenthesis, goes to value. False if it
// is not there.
bool XmtTakeArg(XmtInfo *info, const char *name, std::string *value);
// The same, looked up in the general text first and then in a slot, and left there.
bool XmtPeekArg(const XmtInfo *info, const char *name, int slot, std::string *value);
// Keys and buttons as the text says, behind or before what the widget does by itself. An empty text is
// ignored.
void XmtAddTranslations(Widget widget, const char *text, bool flOverride);

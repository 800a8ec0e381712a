// Makes widgets and the records by which the program knows them: one widget from an argument text, or a
// compound (box, label, control, items) from one keyword.
#pragma once

#include "xmt/XmtNewArgs.h"

extern const char *const XmtObjectNames[XMT_TYPE_COUNT]; // ORDER XmtType
extern XmtObjectData *pNewObjectData;                    // made last; read right after a creation
extern Widget WB1;                                       // box of the compound in the making, or null
extern Widget BarPullDownMenu;      // pulldown that the next cascade button carries, or null
extern int ListCnt;                 // items that the last list made
extern Widget ScrollW;              // clip window of the next scrolled area, or null
extern int flConvertLabelToAppData; // the label becomes the object's application data
extern intptr_t pAppData;           // application data of new objects, 0 for none
extern int flCreateCallback;        // creations call the handler

// Registers a widget. type may carry XMT_AUX: the object bears the counter's number and leaves it there.
XmtObjectData *XmtNewData(const char *name, int type, Widget widget);
// One widget, its arguments read at the cursor. callback: a resource to connect to the dispatcher, or null.
Widget XmtNewSimpleObject(int type, Widget parent, const char *callback);
// The same with the arguments from a text. The cursor stays.
Widget XmtNewWidget(const char *text, int type, Widget parent, const char *callback);
// A compound, read at the cursor: the control. letters: m a pulldown, L items and their kind (t toggles, p
// pushes).
Widget XmtBuildObject(Widget parent, int type, const char *letters);
// One item for each value of a comma list: the first, or null. Uses: ListCnt.
Widget XmtNewListObjects(int itemType, int ownerType, Widget parent, const char *name, const char *common,
                         const char *list);
// Box and label of a compound with a label, and the control if the record has a type. The widget under which
// further children go. Uses: WB1.
Widget XmtNewLabeledObject(Widget parent, XmtInfo *info, const char *extra);

struct XmtStringTable {
    int count;
    XmString strings[1];
};
// Null for a null list; an empty text gives one empty string. Owns: XmtFreeStringTable.
[[nodiscard]] XmtStringTable *XmtGenStringTable(const char *list);
void XmtFreeStringTable(XmtStringTable *table);
// Shows the n-th icon, from 1, of an object's icon list.
void XmtSelectIcon(XmtObjectData *object, int n);

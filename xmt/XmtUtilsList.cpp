// Lists, option lists, radio boxes and toggles of objects by their names.
#include "xmt/XmtUtils.h"

#include "xmt/XmtCopy.h"
#include "xmt/XmtNewArgs.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtString.h"
#include "xmt/XmtToken.h"
#include "xmt/XmtValue.h"

#include <algorithm>
#include <cstring>
#include <vector>

enum { MASK_ITEMS = 4 }; // items that a mask can select

// The widget, if it is a list: its functions look into the record without asking.
static Widget FindList(const char *name) {
    Widget widget = XmtGetWidget(name);
    return widget && XmIsList(widget) ? widget : nullptr;
}

static int GetItemCount(Widget list) {
    return static_cast<int>(XmtGetXmValueW(list, XmNitemCount));
}

// The list, if it has the position. Motif takes 0 for the last item.
static Widget FindListItem(const char *name, int position) {
    Widget list = FindList(name);
    return list && position >= 1 && position <= GetItemCount(list) ? list : nullptr;
}

// ---- lists

static void SelectMask(const char *name, Widget list, int mask, int flNotify) {
    bool flFirst = true;
    XmListDeselectAllItems(list);
    for (int n = 1; n <= MASK_ITEMS; n++) {
        if (!(mask >> (n - 1) & 1) || !FindListItem(name, n)) continue;
        XmListSelectPos(list, n, static_cast<Boolean>(flNotify != 0));
        if (flFirst) XmListSetPos(list, n);
        flFirst = false;
    }
}

void XmtSetListItem(const char *name, int position, int flNotify) {
    XmtObjectData *object = XmtFindObject(name);
    Widget list = FindList(name);
    if (list && object->type == XmtListBoxMS) return SelectMask(name, list, position, flNotify);
    if (!FindListItem(name, position)) return;
    XmListSelectPos(list, position, static_cast<Boolean>(flNotify != 0));
    XmListSetPos(list, position);
}

void XmtClearListItem(const char *name, int position) {
    if (Widget list = FindListItem(name, position)) XmListDeselectPos(list, position);
}

void XmtClearAllListItems(const char *name) {
    if (Widget list = FindList(name)) XmListDeselectAllItems(list);
}

// Around an empty list that has the focus Motif draws a frame, and leaves it there when rows come.
static void WipeEmptyFrame(Widget list) {
    if (XtIsRealized(list) && GetItemCount(list) == 0)
        XClearArea(XtDisplay(list), XtWindow(list), 0, 0, 0, 0, 1 /* expose */);
}

void XmtAddListItem(const char *name, const char *text, int position) {
    Widget list = FindList(name);
    if (!list || !text || position < 0 || position > GetItemCount(list) + 1) return;
    WipeEmptyFrame(list);
    XmString item = XmtMakeString(text);
    XmListAddItemUnselected(list, item, position);
    XmStringFree(item);
}

void XmtDeleteListItem(const char *name, int position) {
    Widget list = FindListItem(name, position);
    if (!list) return;
    XmListDeletePos(list, position);
    XmUpdateDisplay(list);
}

void XmtDeleteAllListItems(const char *name) {
    Widget list = FindList(name);
    if (!list) return;
    XmListDeleteAllItems(list);
    XmUpdateDisplay(list);
}

void XmtReplaceAllListItems(const char *name, const char *list) {
    XmtDeleteAllListItems(name);
    Widget widget = FindList(name);
    if (!widget || !list) return;
    WipeEmptyFrame(widget);
    XmtTokenRecord record;
    std::vector<XmString> items; // one by one a list takes the square of their number
    for (char *item = XmtStrTok(&record, list, ","); item; item = XmtStrTok(&record, nullptr, ","))
        items.push_back(XmtMakeString(item));
    if (!items.empty()) XmListAddItemsUnselected(widget, items.data(), static_cast<int>(items.size()), 1);
    for (XmString item : items) XmStringFree(item);
}

void XmtReplaceListItem(const char *name, const char *text, int position) {
    Widget list = FindListItem(name, position);
    if (!list || !text) return;
    XmString item = XmtMakeString(text);
    XmListReplaceItemsPos(list, &item, 1, position);
    XmStringFree(item);
}

void XmtReplaceListItems(const char *name, const char *list) {
    Widget widget = FindList(name);
    XmtStringTable *table = widget ? XmtGenStringTable(list) : nullptr;
    if (!table) return;
    Arg args[] = {{const_cast<char *>(XmNitems), reinterpret_cast<XtArgVal>(table->strings)},
                  {const_cast<char *>(XmNitemCount), table->count}};
    XtSetValues(widget, args, XtNumber(args));
    XmtFreeStringTable(table);
}

void XmtReplaceListItems_(const char *name, const char *list, int position) {
    Widget widget = FindListItem(name, position);
    XmtStringTable *table = widget ? XmtGenStringTable(list) : nullptr;
    if (!table) return;
    int count = std::min(table->count, GetItemCount(widget) - position + 1);
    XmListReplaceItemsPos(widget, table->strings, count, position);
    XmtFreeStringTable(table);
}

int XmtGetListCount(const char *name) {
    Widget list = FindList(name);
    return list ? GetItemCount(list) : 0;
}

// ---- items of option lists and radio boxes

static std::string ItemName(const char *name, int n) {
    return std::string(name) + "_" + std::to_string(n);
}

// The items are counted by their names: among the children of a long list are its further menus as well.
static int CountItems(const char *name) {
    int n = 0;
    while (XmtFindObject(ItemName(name, n + 1).c_str())) n++;
    return n;
}

// One more item for an owner, with all that its first items have from it.
static void AddItemObject(XmtObjectData *owner, Widget parent, int type, const char *callback,
                          const char *arguments) {
    std::string text = ItemName(owner->name, CountItems(owner->name) + 1) + " " + arguments;
    int flSaved = flDefaultTabGroup;
    flDefaultTabGroup = 1;
    SpecifiedAppCBValue = owner->id;
    Widget widget = XmtNewWidget(text.c_str(), type | XMT_AUX, parent, callback);
    flDefaultTabGroup = flSaved;
    if (!widget) return;
    XmtObjectData *item = pNewObjectData;
    item->id = owner->id;
    item->type = owner->type;
    item->handler = owner->handler;
    if (!item->format && owner->format) item->format = XmtSaveStr_(owner->format);
}

void XmtAddListButton(const char *name, const char *arguments) {
    XmtObjectData *owner = XmtFindObject(name);
    Widget menu = owner ? XmtGetWidget((std::string(name) + "_pd").c_str()) : nullptr;
    if (menu && arguments) AddItemObject(owner, menu, XmtPushBut, XmNactivateCallback, arguments);
}

void XmtAddRadioButton(const char *name, const char *arguments) {
    XmtObjectData *owner = XmtFindObject(name);
    if (!owner || !owner->widget || !arguments) return;
    AddItemObject(owner, owner->widget, XmtToggleBut, XmNvalueChangedCallback, arguments);
}

void XmtSetOptionMenu(const char *name, int n) {
    Widget item = name ? XmtGetWidget(ItemName(name, n).c_str()) : nullptr;
    if (item) XmtSetXmValue(name, XmNmenuHistory, reinterpret_cast<XtArgVal>(item));
}

void XmtSetRadioBox(const char *name, int n) {
    Widget item = name ? XmtGetWidget(ItemName(name, n).c_str()) : nullptr;
    if (item && XmIsToggleButton(item)) XmToggleButtonSetState(item, 1, 1);
}

void XmtSetCheckboxState(const char *name, int flSet) {
    XmtSetXmValue(name, XmNset, flSet ? XmSET : XmUNSET);
}

char *XmtSaveMultiSelectSelList(const char *selection, char *out) {
    std::string list;
    for (const char *item = selection; item && *item; item += strlen(item) + 1)
        list += (list.empty() ? "" : ",") + std::string(item);
    if (!out) return XmtSaveStr_(list.c_str());
    return strcpy(out, list.c_str());
}

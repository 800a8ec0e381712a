// Turns the arguments read into Motif widgets and object records.
#include "xmt/XmtNewBuild.h"

#include "common/MemMgr.h"
#include "xmt/XmtCallback.h"
#include "xmt/XmtCopy.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNewTab.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtString.h"
#include "xmt/XmtUtils.h"
#include "xmt/XmtValue.h"

#include <cstdlib>
#include <cstring>

// ORDER XmtType
const char *const XmtObjectNames[XMT_TYPE_COUNT] = {
    "XmtNoType",      "XmtShell",          "XmtMainWindow",   "XmtChildWindow",   "XmtDataEntryDialog",
    "XmtWarnDialog",  "XmtInfoDialog",     "XmtFileDialog",   "XmtmessageDialog", "XmtBBDialog",
    "XmtDialogShell", "XmtFormDialog",     "XmtDraw",         "XmtPushBut",       "XmtRadioBox",
    "XmtListBut",     "XmtCreatedListBut", "XmtToggleBut",    "XmtCascadeBut",    "XmtButtonBox",
    "XmtListBox",     "XmtListBoxMS",      "XmtBox",          "XmtForm",          "XmtTabForm",
    "XmtBoard",       "XmtPanedBox",       "XmtScrolledArea", "XmtMenuBar",       "XmtMenu",
    "XmtSeperator",   "XmtText",           "XmtPasswd",       "XmtLabel",         "XmtImage",
    "XmtPicture"};

XmtObjectData *pNewObjectData;
Widget WB1;
Widget BarPullDownMenu;
int ListCnt;
Widget ScrollW;
int flConvertLabelToAppData;
intptr_t pAppData;
int flCreateCallback;

// ---- texts

// What stands between the first '(' and the last ')' of an argument.
static std::string ArgText(const std::string &argument) {
    size_t from = argument.find('('), to = argument.rfind(')');
    if (from == argument.npos || to == argument.npos || to < from) return "";
    return argument.substr(from + 1, to - from - 1);
}

bool XmtTakeArg(XmtInfo *info, const char *name, std::string *value) {
    if (!info->slots[0]) return false;
    std::string text = info->slots[0], argument;
    if (!StripArg(name, &text, &argument)) return false;
    XmtReplaceText(&info->slots[0], text.c_str());
    *value = ArgText(argument);
    return true;
}

bool XmtPeekArg(const XmtInfo *info, const char *name, int slot, std::string *value) {
    std::string argument;
    bool flFound = info->slots[0] && CopyArg(name, info->slots[0], &argument);
    if (!flFound) flFound = info->slots[slot] && CopyArg(name, info->slots[slot], &argument);
    if (flFound) *value = ArgText(argument);
    return flFound;
}

static std::string Numbered(const char *name, const char *tail, int n) {
    return std::string(name) + tail + std::to_string(n);
}

// ---- records

// The record stays where it is: callbacks and XmtObjects hold its address. One that finds no room in the
// table has no name.
static XmtObjectData *FindRecord(const char *name) {
    void *record = FindHashNode(XmtTable, HashText(name));
    if (!record) record = PushHashNode(XmtTable, HashText(name), nullptr, sizeof(XmtObjectData));
    if (!record) record = GetMem(sizeof(XmtObjectData));
    if (!record) XmtSysError("%s", OutOfMem);
    return static_cast<XmtObjectData *>(record);
}

static int TakeId(int flAux) {
    int id = SpecifiedAppCBValue;
    SpecifiedAppCBValue = 0;
    if (id) return id;
    id = AppCBValue;
    if (!flAux) AppCBValue++;
    return id;
}

XmtObjectData *XmtNewData(const char *name, int type, Widget widget) {
    XmtObjectData *object = FindRecord(name);
    XmtReplaceText(&object->name, name);
    object->type = type & XMT_TYPE_MASK;
    object->widget = widget;
    object->id = TakeId(type & XMT_AUX);
    object->handler = AppCB;
    if (pAppData) object->appData = pAppData;
    PushHashNode(XmtObjects, reinterpret_cast<uintptr_t>(widget), &object, sizeof object);
    pNewObjectData = object;
    if (flCreateCallback) {
        XmAnyCallbackStruct created = {XmCR_CREATE, nullptr};
        XmtEventHandler(widget, object, &created);
    }
    return object;
}

// ---- one widget

using XmtMaker = Widget (*)(Widget parent, char *name, ArgList args, Cardinal count);
struct MakerRow {
    XmtMaker make;
    bool flManaged; // at its creation
};
// ORDER XmtType. Types without a maker come to be elsewhere or not at all.
static const MakerRow Makers[XMT_TYPE_COUNT] = {
    {nullptr, false},                     // XmtNoType
    {nullptr, false},                     // XmtShell
    {nullptr, false},                     // XmtMainWindow
    {nullptr, false},                     // XmtChildWindow
    {nullptr, false},                     // XmtDataEntryDialog
    {nullptr, false},                     // XmtWarnDialog
    {nullptr, false},                     // XmtInfoDialog
    {nullptr, false},                     // XmtFileDialog
    {nullptr, false},                     // XmtmessageDialog
    {XmCreateBulletinBoardDialog, false}, // XmtBBDialog
    {XmCreateDialogShell, false},         // XmtDialogShell
    {XmCreateFormDialog, false},          // XmtFormDialog
    {XmCreateDrawingArea, true},          // XmtDraw
    {XmCreatePushButton, true},           // XmtPushBut
    {XmCreateRadioBox, true},             // XmtRadioBox
    {XmCreateOptionMenu, false},          // XmtListBut: at the end of the compound
    {XmCreateRowColumn, true},            // XmtCreatedListBut
    {XmCreateToggleButton, true},         // XmtToggleBut
    {XmCreateCascadeButton, true},        // XmtCascadeBut
    {XmCreateRowColumn, true},            // XmtButtonBox
    {XmCreateScrolledList, true},         // XmtListBox
    {XmCreateScrolledList, true},         // XmtListBoxMS
    {XmCreateRowColumn, true},            // XmtBox
    {XmCreateForm, true},                 // XmtForm
    {XmCreateForm, true},                 // XmtTabForm
    {XmCreateBulletinBoard, true},        // XmtBoard
    {XmCreatePanedWindow, true},          // XmtPanedBox
    {XmCreateScrolledWindow, true},       // XmtScrolledArea
    {XmCreateMenuBar, true},              // XmtMenuBar
    {XmCreatePulldownMenu, false},        // XmtMenu
    {XmCreateSeparator, true},            // XmtSeperator
    {XmCreateTextField, true},            // XmtText of one line
    {XmCreateTextField, true},            // XmtPasswd
    {XmCreateLabel, true},                // XmtLabel
    {nullptr, false},                     // XmtImage
    {XmCreateDrawingArea, true},          // XmtPicture
};

// What only the creation call needs.
struct Extras {
    XmString title;
    XmtStringTable *items;
};

static void AddTitle(XmtInfo *info, Extras *extras) {
    extras->title = XmtMakeString(info->text.c_str());
    XmtAddArg(info, XmNdialogTitle, reinterpret_cast<XtArgVal>(extras->title));
    if (info->type == XmtDialogShell)
        XmtAddArg(info, XmNtitle, reinterpret_cast<XtArgVal>(info->text.c_str()));
}

static void AddItems(XmtInfo *info, Extras *extras, const char *items, const char *count) {
    extras->items = XmtGenStringTable(info->list);
    if (!extras->items) return;
    XmtAddArg(info, items, reinterpret_cast<XtArgVal>(extras->items->strings));
    XmtAddArg(info, count, static_cast<XtArgVal>(extras->items->count));
}

static void AddWidget(XmtInfo *info, const char *resource, Widget widget) {
    if (widget) XmtAddArg(info, resource, reinterpret_cast<XtArgVal>(widget));
}

static void AddTypeArgs(XmtInfo *info, Extras *extras) {
    switch (info->type) {
    case XmtBBDialog:
    case XmtDialogShell:
    case XmtFormDialog: AddTitle(info, extras); break;
    case XmtCreatedListBut: XmtAddArg(info, XmNrowColumnType, XmMENU_OPTION); break;
    case XmtCascadeBut: AddWidget(info, XmNsubMenuId, BarPullDownMenu); break;
    case XmtScrolledArea:
        AddWidget(info, XmNclipWindow, ScrollW);
        ScrollW = nullptr;
        break;
    case XmtListBox:
    case XmtListBoxMS:
        AddItems(info, extras, XmNitems, XmNitemCount);
        // Longer rows get a scroll bar: a list that follows its rows takes the window's edge along.
        XmtAddArg(info, XmNlistSizePolicy, XmCONSTANT);
        break;
    case XmtMenu: AddItems(info, extras, XmNbuttons, XmNbuttonCount); break;
    default: break; // the others take what was read
    }
}

static bool IsMenu(Widget widget) {
    unsigned char kind = XmWORK_AREA;
    if (XmIsRowColumn(widget)) XtVaGetValues(widget, XmNrowColumnType, &kind, nullptr);
    return kind == XmMENU_BAR || kind == XmMENU_PULLDOWN || kind == XmMENU_POPUP;
}

// Motif 2.3 dies of an arrow key in a menu whose entries are tab groups of their own. Of the menus in a menu
// that is wanted: without it they come up with no entry for the keys to start from.
static Widget MakeWidget(XmtInfo *info, Widget parent) {
    XmtMaker make = Makers[info->type].make;
    if (!make) return nullptr;
    if (info->type == XmtText && info->height > 1) make = XmCreateScrolledText;
    if (IsMenu(parent) && info->type != XmtMenu) XmtAddArg(info, XmNnavigationType, XmNONE);
    Extras extras = {};
    AddTypeArgs(info, &extras);
    Widget widget = make(parent, info->name.data(), info->args, static_cast<Cardinal>(info->argCount));
    if (extras.title) XmStringFree(extras.title);
    XmtFreeStringTable(extras.items);
    return widget;
}

static XmtObjectData *Register(XmtInfo *info, int type, Widget widget) {
    intptr_t saved = pAppData;
    if (flConvertLabelToAppData) pAppData = reinterpret_cast<intptr_t>(XmtSaveStr_(info->label.c_str()));
    XmtObjectData *object = XmtNewData(info->name.c_str(), type, widget);
    pAppData = saved;
    if (info->format) XmtReplaceText(&object->format, info->format);
    if (info->icon) XmtReplaceText(&object->icon, info->icon);
    return object;
}

static void Connect(XmtObjectData *object, const XmtInfo *info, const char *callback) {
    if (callback) XmtConnect(object, callback);
    if (object->type == XmtPasswd) SetCallBack(object, "c");
    if (!info->callbacks.empty()) SetCallBack(object, info->callbacks.c_str());
}

static void Finish(XmtInfo *info, int type, Widget widget, const char *callback) {
    Connect(Register(info, type, widget), info, callback);
    if (Makers[info->type].flManaged) XtManageChild(widget);
    if (flNoTraversal && XmtDummyKeyXlations) XtOverrideTranslations(widget, XmtDummyKeyXlations);
}

static bool IsDialog(int type) {
    return type == XmtBBDialog || type == XmtDialogShell || type == XmtFormDialog;
}

// A label or a button has no room for children; Xt would end the program.
static bool CanHold(Widget parent, int type) {
    return parent && (XtIsComposite(parent) || IsDialog(type));
}

Widget XmtNewSimpleObject(int type, Widget parent, const char *callback) {
    XmtInfo info;
    info.type = static_cast<int8_t>(type & XMT_TYPE_MASK);
    XmtFillInfo(&info, IsDialog(info.type) ? XMT_FILL_NO_TRAVERSAL : 0);
    if (info.parent) parent = info.parent;
    Widget widget = CanHold(parent, info.type) ? MakeWidget(&info, parent) : nullptr;
    if (widget) Finish(&info, type, widget, callback);
    SpecifiedAppCBValue = 0;
    XmtClearInfo(&info);
    return widget;
}

Widget XmtNewWidget(const char *text, int type, Widget parent, const char *callback) {
    XmtCursor cursor(text);
    return XmtNewSimpleObject(type, parent, callback);
}

void XmtAddTranslations(Widget widget, const char *text, bool flOverride) {
    if (!widget || !*text) return;
    XtTranslations translations = XtParseTranslationTable(text);
    if (flOverride)
        XtOverrideTranslations(widget, translations);
    else
        XtAugmentTranslations(widget, translations);
}

// ---- string tables

static std::string NextItem(const char **position) {
    std::string item;
    const char *at = *position;
    for (; *at && *at != ','; at++) {
        if (*at == '\\' && at[1]) at++;
        item += *at;
    }
    *position = *at ? at + 1 : at;
    return item;
}

static int CountItems(const char *list) {
    int count = 1;
    for (; *list; list++) {
        if (*list == '\\' && list[1])
            list++;
        else if (*list == ',')
            count++;
    }
    return count;
}

XmtStringTable *XmtGenStringTable(const char *list) {
    if (!list) return nullptr;
    int count = CountItems(list);
    void *memory = GetMem(sizeof(XmtStringTable) + sizeof(XmString) * static_cast<size_t>(count));
    if (!memory) XmtSysError("%s", OutOfMem);
    XmtStringTable *table = static_cast<XmtStringTable *>(memory);
    table->count = count;
    for (int i = 0; i < count; i++) table->strings[i] = XmtMakeString(NextItem(&list).c_str());
    return table;
}

void XmtFreeStringTable(XmtStringTable *table) {
    if (!table) return;
    for (int i = 0; i < table->count; i++) XmStringFree(table->strings[i]);
    PutMem(table);
}

// ---- lists of items

// Beyond every 20 items of an option list a further menu: its cascade is the last entry of the one before.
static Widget NewOverflowMenu(Widget parent, const char *name, const char *common) {
    int n = ListCnt / XMT_MENU_ITEMS;
    std::string rest = std::string(" l(==>) ") + common + ";";
    Widget saved = BarPullDownMenu;
    Widget menu = XmtNewWidget((Numbered(name, "_sm", n) + rest).c_str(), AUX_MENU, parent, nullptr);
    BarPullDownMenu = menu;
    XmtNewWidget((Numbered(name, "_cb", n) + rest).c_str(), AUX_CASCADE, parent, nullptr);
    BarPullDownMenu = saved;
    return menu;
}

static Widget NewItem(int type, int ownerType, Widget parent, const std::string &text) {
    bool flToggle = (type & XMT_TYPE_MASK) == XmtToggleBut;
    SpecifiedAppCBValue = AppCBValue - 1;
    Widget item =
        XmtNewWidget(text.c_str(), type, parent, flToggle ? XmNvalueChangedCallback : XmNactivateCallback);
    if (item) pNewObjectData->type = ownerType;
    return item;
}

Widget XmtNewListObjects(int itemType, int ownerType, Widget parent, const char *name, const char *common,
                         const char *list) {
    Widget first = nullptr;
    ListCnt = 0;
    flDefaultTabGroup = 1;
    for (XmtValues item(list); item.Next();) {
        if (ownerType == XmtListBut && ListCnt && ListCnt % XMT_MENU_ITEMS == 0)
            parent = NewOverflowMenu(parent, name, common);
        ListCnt++;
        std::string text = Numbered(name, "_", ListCnt) + " l(" + item.value + ") " + common;
        Widget widget = NewItem(itemType, ownerType, parent, text);
        if (!first) first = widget;
    }
    flDefaultTabGroup = 0;
    return first;
}

// ---- compounds

static Widget NewBox(XmtInfo *info, Widget parent, const char *prefix) {
    WB1 = XmtNewWidget(GenDesc(info, GEN_NAME | 1, prefix).c_str(), AUX_BOX, parent, nullptr);
    return WB1;
}

static void NewLabel(XmtInfo *info, Widget box) {
    std::string text = GenDesc(info, GEN_NAME | GEN_LABEL | 2, "_L bo(0)");
    XmtNewWidget(text.c_str(), AUX_LABEL, box, nullptr);
}

Widget XmtNewLabeledObject(Widget parent, XmtInfo *info, const char *extra) {
    int flags = GEN_NAME | GEN_FORMAT;
    WB1 = nullptr;
    if (!info->label.empty()) {
        parent = NewBox(info, parent, "_B1 bo(0)");
        NewLabel(info, parent);
        flags |= 3;
    }
    pNewObjectData = nullptr;
    if (info->type) XmtNewWidget(GenDesc(info, flags, extra).c_str(), info->type, parent, nullptr);
    return parent;
}

// One compound in the making, on the stack of XmtBuildObject.
struct Compound {
    XmtInfo info;
    int type = 0;
    Widget parent = nullptr; // of the control: the box once there is one
    Widget box = nullptr;
    int slot = 1; // of the next part
    XmtObjectData *object = nullptr;
    Widget menu = nullptr;  // pulldown
    Widget first = nullptr; // item
    std::string icon;       // the i(...) argument, whole
};

static bool IconHas(const Compound *c, const char *head) {
    return c->icon.compare(0, strlen(head), head) == 0;
}

// The argument keeps its head "i(": what follows it tells the three kinds of icons apart.
static void TakeIcon(Compound *c) {
    if (!c->info.slots[0]) return;
    std::string text = c->info.slots[0];
    if (!StripArg("i", &text, &c->icon)) return;
    XmtReplaceText(&c->info.slots[0], text.c_str());
    if (!IconHas(c, "i(")) c->icon.clear();
}

// The label of a toggle is the toggle's own.
static void MakeBox(Compound *c) {
    bool flToggle = c->type == XmtToggleBut, flLabel = !c->info.label.empty() && !flToggle;
    if (!flLabel && (c->icon.empty() || IconHas(c, "i(@&"))) return;
    c->parent = c->box = NewBox(&c->info, c->parent, flToggle ? "_B1 bo(0) h" : "_B1 bo(0)");
    c->slot = 2;
    if (!flLabel) return;
    NewLabel(&c->info, c->parent);
    c->slot = 3;
}

static Widget MakeControl(Compound *c) {
    int flags = GEN_NAME | GEN_FORMAT | c->slot;
    if (c->type == XmtToggleBut) flags |= GEN_LABEL;
    Widget control = XmtNewWidget(GenDesc(&c->info, flags, nullptr).c_str(), c->type, c->parent, nullptr);
    if (control) c->object = pNewObjectData;
    c->slot++;
    return control;
}

static void MakeMenu(Compound *c) {
    SpecifiedAppCBValue = AppCBValue - 1;
    std::string text = GenDesc(&c->info, GEN_NAME | c->slot, "_pd");
    c->menu = XmtNewWidget(text.c_str(), AUX_MENU, c->object->widget, nullptr);
}

static void MakeItems(Compound *c, char kind) {
    int type = kind == 't' ? AUX_TOGGLE : AUX_PUSH;
    Widget parent = c->menu ? c->menu : c->object->widget;
    std::string common = GenDesc(&c->info, GEN_FORMAT | c->slot, nullptr);
    c->first = XmtNewListObjects(type, c->type, parent, c->info.name.c_str(), common.c_str(), c->info.list);
}

static void MakeLetters(Compound *c, const char *letters) {
    for (; *letters; letters++) {
        if (*letters == 'm') MakeMenu(c);
        if (*letters == 'L') MakeItems(c, *++letters);
    }
}

static void FinishRadioBox(Compound *c) {
    XtVaSetValues(c->object->widget, XmNbuttonSet, static_cast<XtArgVal>(0), XmNbuttonCount,
                  static_cast<XtArgVal>(ListCnt), XmNmenuHistory, c->first, nullptr);
    if (c->first) XtVaSetValues(c->first, XmNset, static_cast<XtArgVal>(XmSET), nullptr);
}

static void FinishOptionMenu(Compound *c) {
    XtVaSetValues(c->object->widget, XmNsubMenuId, c->menu, XmNmenuHistory, c->first, nullptr);
}

// A row column of that type is drawn by a cascade beside it.
static void FinishCreatedList(Compound *c) {
    Widget saved = BarPullDownMenu;
    BarPullDownMenu = c->menu;
    std::string text = c->info.name + "_cb bo(1)";
    Widget cascade = XmtNewWidget(text.c_str(), AUX_CASCADE, c->parent, nullptr);
    BarPullDownMenu = saved;
    FinishOptionMenu(c);
    XtVaSetValues(c->object->widget, XmNpostFromButton, cascade, nullptr);
}

static void FinishText(Compound *c) {
    std::string keys;
    if (XmtPeekArg(&c->info, "k", c->slot - 1, &keys))
        XmtAddTranslations(c->object->widget, XmtDropEscapes(keys, true).c_str(), false);
}

static void FinishType(Compound *c) {
    Widget control = c->object->widget;
    switch (c->type) {
    case XmtDraw:
        SetCallBack(c->object, "i,e,s");
        XmtAddDrawTranslations(control);
        break;
    case XmtRadioBox: FinishRadioBox(c); break;
    case XmtListBut: FinishOptionMenu(c); break;
    case XmtCreatedListBut: FinishCreatedList(c); break;
    case XmtToggleBut: XmtConnect(c->object, XmNvalueChangedCallback); break;
    case XmtText:
    case XmtPasswd: FinishText(c); break;
    default: break; // nothing more to do
    }
}

// ---- icons

// "i(@&picture arguments@& icons": a picture takes the place of the icon label.
static void MakeIconPicture(Compound *c) {
    size_t end = c->icon.find("@&", 4);
    if (end == c->icon.npos) end = c->icon.size();
    std::string text = c->info.name + "_i " + c->icon.substr(4, end - 4) + ";";
    c->icon.erase(0, end + 3);
    SpecifiedAppCBValue = AppCBValue - 1;
    XmtCursor cursor(text.c_str());
    XmtNewPicture(c->parent);
}

static void MakeIconLabel(Compound *c) {
    SpecifiedAppCBValue = AppCBValue - 1;
    XmtNewWidget((c->info.name + "_i").c_str(), AUX_LABEL, c->box, nullptr);
}

static void MakeIcon(Compound *c) {
    if (c->icon.empty()) return;
    c->icon = XmtDropEscapes(c->icon, false);
    bool flOthers = IconHas(c, "i(&"); // other objects show the state, from the first change on
    if (IconHas(c, "i(@&"))
        MakeIconPicture(c);
    else if (!flOthers)
        MakeIconLabel(c);
    XmtReplaceText(&c->object->icon, c->icon.c_str());
    if (!flOthers) XmtSelectIcon(c->object, 1);
}

static const char IconEnds[] = " \t\n)";

static std::string NthIcon(const char *icons, int n) {
    std::string icon;
    if (strncmp(icons, "i(", 2) == 0) icons += 2;
    for (; n > 0; n--) {
        icons += strspn(icons, IconEnds);
        size_t length = strcspn(icons, IconEnds);
        icon.assign(icons, length);
        icons += length;
    }
    return icon;
}

// The type of the object named tells whether it takes a number or a text.
static void SetIconValue(const std::string &icon) {
    size_t dot = icon.find('.');
    std::string name = icon.substr(1, dot == icon.npos ? dot : dot - 1);
    std::string value = dot == icon.npos ? "" : icon.substr(dot + 1);
    const XmtObjectData *object = XmtFindObject(name.c_str());
    if (!object) return;
    switch (object->type) {
    case XmtRadioBox:
    case XmtListBut:
    case XmtToggleBut:
    case XmtListBox:
    case XmtListBoxMS:
    case XmtTabForm: XmtSetValuePF(name.c_str(), static_cast<intptr_t>(atoi(value.c_str())), 0); break;
    default: XmtSetValuePF(name.c_str(), value.c_str(), 0); break; // the others take texts
    }
}

void XmtSelectIcon(XmtObjectData *object, int n) {
    if (!object || !object->icon) return;
    std::string icon = NthIcon(object->icon, n);
    std::string label = std::string(object->name) + "_i";
    if (icon[0] == '&')
        SetIconValue(icon);
    else
        XmtSetLabel(label.c_str(), icon[0] == '@' ? icon.c_str() : " ");
}

// ---- the whole

static void BuildCompound(Compound *c, const char *letters) {
    MakeBox(c);
    if (!MakeControl(c)) return;
    MakeLetters(c, letters);
    FinishType(c);
    MakeIcon(c);
    XtManageChild(c->object->widget);
}

Widget XmtBuildObject(Widget parent, int type, const char *letters) {
    Compound c;
    std::string none;
    c.type = type & XMT_TYPE_MASK;
    c.parent = parent;
    c.info.type = static_cast<int8_t>(c.type);
    WB1 = nullptr;
    XmtFillInfoDesc(&c.info);
    bool flHide = XmtTakeArg(&c.info, "H", &none);
    TakeIcon(&c);
    BuildCompound(&c, letters);
    Widget control = c.object ? c.object->widget : nullptr;
    if (flHide && control) XtUnmanageChild(c.box ? c.box : control);
    XmtClearInfo(&c.info);
    return control;
}

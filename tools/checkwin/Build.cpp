#include "tools/checkwin/Build.h"

#include "tools/checkwin/Args.h"
#include "tools/checkwin/Format.h"
#include "tools/checkwin/Menu.h"
#include "tools/checkwin/Objects.h"
#include "tools/checkwin/Report.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewTab.h"
#include "xmt/XmtNewWin.h"

#include <cstring>

static int MainWindow = -1;

int FindMainWindow() {
    return MainWindow;
}

// ---- attachments

// Other boxes pay no heed to attachments: those of a compound's general text reach all of its parts.
static bool IsForm(int number) {
    if (number < 0) return false;
    int type = ObjectOf(number)->type;
    return type == XmtForm || type == XmtFormDialog || type == XmtTabForm;
}

// side, attachment, name of a neighbour
static void CheckAttachment(const Text &item, int parent) {
    Scan cursor{item};
    cursor.skipSpace();
    if (cursor.end()) return; // left empty by a macro's parameter
    char side = cursor.next();
    if (!strchr("tblr", side)) return Report(item.place(0), "\"%s\": no side", item.chars.c_str());
    cursor.skipSpace();
    char letter = cursor.next();
    if (!letter || !strchr("fnpsw", letter))
        return Report(item.place(0), "\"%s\": nothing to attach to", item.chars.c_str());
    if (letter != 'w') return;
    cursor.skip('o');
    Text name = TakeWord(&cursor);
    int neighbour = FindObject(name.chars);
    if (neighbour < 0) return Report(item.place(0), "\"%s\" is no object so far", name.chars.c_str());
    if (IsForm(parent) && ObjectOf(neighbour)->parent != parent)
        Report(item.place(0), "\"%s\" is not in the same box", name.chars.c_str());
}

static int ParentOf(const Args &args, int parent) {
    int named = args.flParent ? FindObject(args.parent.chars) : -1;
    return named < 0 ? parent : named;
}

// One widget of the arguments: its number.
static int AddWidget(const std::string &name, const Place &place, int type, const Args &args, int parent) {
    parent = ParentOf(args, parent);
    for (const Text &item : args.attachments) CheckAttachment(item, parent);
    return AddObject(name, place, type, parent);
}

// ---- objects of one widget

static int BuildSimple(Scan *cursor, int type, int parent) {
    Args args;
    ReadArguments(cursor, 0, &args);
    if (!args.format.empty()) CheckFormat(type, args.format, args.callbacks.chars);
    int widget = AddWidget(args.name.chars, args.name.place(0), type, args, parent);
    ObjectOf(widget)->flHeard = IsHeard(type, args.format, args.callbacks.chars);
    return widget;
}

static int BuildWindow(Scan *cursor) {
    Args args;
    ReadArguments(cursor, ARGS_RAW_LABEL, &args);
    int shell = AddObject(args.name.chars + "_shell", args.name.place(0), AUX_SHELL, -1);
    int window = AddWidget(args.name.chars, args.name.place(0), XmtMainWindow, args, shell);
    if (MainWindow < 0) MainWindow = window;
    return window;
}

static int BuildDialog(Scan *cursor, int type, int parent) {
    Args args;
    ReadArguments(cursor, ARGS_RAW_LABEL, &args);
    if (!args.format.empty() || !args.callbacks.empty())
        Report(args.name.place(0), "\"%s\": a dialog of Motif takes no f(...) and CB(...)",
               args.name.chars.c_str());
    if (SplitList(args.list).size() > 3)
        Report(args.list.place(0), "\"%s\": more than three buttons", args.name.chars.c_str());
    return AddWidget(args.name.chars, args.name.place(0), type, args, parent);
}

static int BuildPulldown(Scan *cursor, int parent) {
    int menu = BuildSimple(cursor, AUX_MENU, parent);
    AddObject(ObjectOf(menu)->name + "_cb", {}, AUX_CASCADE, parent);
    return menu;
}

// name and file, or data behind a '!'
static void BuildImage(Scan *cursor) {
    Text name = TakeWord(cursor);
    cursor->skipSpace();
    if (cursor->peek() == '!') return Report(name.place(0), "image data in a description is not checked");
    Scan label{TakeUpTo(cursor, ";")};
    label.text.chars = "x l(@" + label.text.chars + ")"; // looked for as a label's picture
    label.text.places.assign(label.text.chars.size(), name.place(0));
    Args args;
    ReadArguments(&label, 0, &args);
    cursor->next();
}

// ---- compounds

struct Compound {
    Parts parts;
    int type;
    int parent;
    int used = 0; // groups read so far, as bits
    bool flBox = false;
    std::string name;
    Place place;
};

// A widget of the general text and a group, named with the suffix.
static int AddPart(Compound *c, const char *suffix, int type, int slot, int parent, Args *args) {
    c->used |= 1 << slot;
    ReadPart(c->parts, slot, args);
    return AddWidget(c->name + suffix, c->place, type, *args, parent);
}

static int AddPlain(Compound *c, const char *suffix, int type, int slot, int parent) {
    Args args;
    return AddPart(c, suffix, type, slot, parent, &args);
}

static void ReadCompound(Scan *cursor, Compound *c) {
    CollectParts(cursor, &c->parts);
    c->name = c->parts.name.chars;
    c->place = c->parts.name.place(0);
}

// A list box gets its rows from the program, and so does a list with a hole.
static int CountItems(const Compound &c) {
    if (c.type == XmtToggleBut) return 2;
    bool flKnown = c.type == XmtListBut || c.type == XmtRadioBox || c.type == XmtButtonBox;
    const std::string &list = c.parts.list.chars;
    if (!flKnown || list.empty() || list == AnyText || list.find('%') != list.npos) return 0;
    return static_cast<int>(SplitList(c.parts.list).size());
}

static void CheckControlFormat(const Compound &c, const Args &args, int control) {
    const std::string &callbacks = args.callbacks.chars;
    int items = CountItems(c);
    if (!c.parts.format.empty()) CheckFormat(c.type, c.parts.format, callbacks, items);
    if (!args.format.empty()) CheckFormat(c.type, args.format, callbacks, items);
    ObjectOf(control)->items = items;
    bool flPlainBox = c.type == XmtButtonBox && !c.parts.flList;
    ObjectOf(control)->flHeard =
        !flPlainBox && IsHeard(c.type, c.parts.format.empty() ? args.format : c.parts.format, callbacks);
}

static void CheckGroups(const Compound &c) {
    for (int slot = 1; slot < 10; slot++)
        if (c.parts.flSlot[slot] && !(c.used & 1 << slot))
            Report(c.parts.places[slot], "group %d of \"%s\" is read by no part of it", slot, c.name.c_str());
}

// A label by itself is looked at as one.
static void CheckLabel(const Compound &c) {
    if (!c.parts.flLabel) return;
    Scan label;
    label.text.add('l', c.place);
    label.text.add('(', c.place);
    label.text.add(c.parts.label);
    label.text.add(')', c.place);
    Args args;
    ReadArguments(&label, ARGS_NO_NAME, &args);
}

// Box and label, if there is one: the parent of the control. *slot becomes the control's.
static int AddBox(Compound *c, int *slot) {
    CheckLabel(*c);
    *slot = 1;
    if (!c->parts.flLabel) return c->parent;
    int box = AddPlain(c, "_B1", AUX_BOX, 1, c->parent);
    AddPlain(c, "_L", AUX_LABEL, 2, box);
    *slot = 3;
    return box;
}

static void AddItems(Compound *c, int type, int slot, int parent) {
    size_t count = c->parts.flList && !c->parts.list.empty() ? SplitList(c->parts.list).size() : 0;
    c->used |= 1 << slot;
    for (size_t i = 1; i <= count; i++) {
        GivenId = NextId - 1; // items bear the number of their control
        AddPlain(c, ("_" + std::to_string(i)).c_str(), type | XMT_AUX, slot, parent);
    }
}

static int AddPulldown(Compound *c, int slot, int control) {
    GivenId = NextId - 1;
    return AddPlain(c, "_pd", AUX_MENU, slot, control);
}

static void AddIcon(const Compound &c, int box) {
    GivenId = NextId - 1;
    AddObject(c.name + "_i", c.place, AUX_LABEL, box);
}

static bool HasIcon(const Compound &c) {
    std::string icon, rest = c.parts.slots[0].chars;
    return StripArg("i", &rest, &icon);
}

static int BuildCompound(Scan *cursor, int type, const char *letters, int parent) {
    Compound c;
    Args args;
    int slot;
    c.type = type, c.parent = parent;
    ReadCompound(cursor, &c);
    if (type == XmtToggleBut) c.parts.flLabel = false; // it shows its own
    bool flIcon = HasIcon(c);
    int box = AddBox(&c, &slot);
    if (slot == 1 && flIcon) box = AddPlain(&c, "_B1", AUX_BOX, 1, parent), slot = 2;
    int control = AddPart(&c, "", type, slot++, box, &args);
    CheckControlFormat(c, args, control);
    int owner = control;
    if (strchr(letters, 'm')) owner = AddPulldown(&c, slot, control);
    if (strchr(letters, 'L')) AddItems(&c, type, slot, owner);
    if (c.parts.flList && !strchr(letters, 'L'))
        Report(c.parts.list.place(0), "\"%s\" takes no list", c.name.c_str());
    if (type == XmtCreatedListBut) AddObject(c.name + "_cb", c.place, AUX_CASCADE, box);
    if (flIcon) AddIcon(c, box);
    CheckGroups(c);
    return control;
}

static int BuildListBox(Scan *cursor, int type, int parent) {
    Compound c;
    Args form, args;
    int slot;
    c.type = type, c.parent = parent;
    ReadCompound(cursor, &c);
    int box = AddBox(&c, &slot);
    int around = AddPart(&c, "_Form", AUX_FORM, 0, box, &form);
    c.used |= 1 << 3;
    ReadPart(c.parts, 3, &args);
    args.attachments.clear(); // the list fills the form; those of the general text are the form's
    CheckControlFormat(c, args, AddWidget(c.name, c.place, type, args, around));
    CheckGroups(c);
    return around;
}

static int BuildPicture(Scan *cursor, int parent) {
    Compound c;
    Args args;
    int slot;
    c.type = XmtPicture, c.parent = parent;
    ReadCompound(cursor, &c);
    int box = AddBox(&c, &slot);
    c.used |= 1 << 1; // read for the background
    int picture = AddPart(&c, "", XmtPicture, slot == 3 ? 3 : 0, box, &args);
    CheckControlFormat(c, args, picture);
    CheckGroups(c);
    return picture;
}

// ---- tabs

static int AddTab(Compound *c, int form, int pageType) {
    std::string k = std::to_string(++ObjectOf(form)->tabs);
    std::string own = c->name;
    c->name = ObjectOf(form)->name;
    int box = AddPlain(c, ("_BB" + k).c_str(), XmtBox, 1, form);
    AddPlain(c, ("_S" + k).c_str(), XmtBox, 1, form);
    AddPlain(c, ("_B" + k).c_str(), XmtPushBut, 2, box);
    int page = AddPlain(c, ("_" + k).c_str(), pageType, 3, form);
    c->name = own;
    return page;
}

static int AddTabs(Compound *c, int form, int pageType) {
    int page = form;
    if (c->parts.flList)
        for (size_t i = SplitList(c->parts.list).size(); i > 0; i--) AddTab(c, form, pageType);
    else if (c->parts.flLabel)
        page = AddTab(c, form, pageType);
    return page;
}

// The number of a tab form is taken out of the text that its parts read: they count from one below it. The
// counter to go back to, 0 without a number.
static int TakeTabId(Compound *c) {
    Text *general = &c->parts.slots[0];
    std::string rest = general->chars, value;
    if (!StripArg("id", &rest, &value)) return 0;
    size_t at = 0, count = general->chars.size() - rest.size();
    while (at < rest.size() && general->chars[at] == rest[at]) at++;
    Text kept = general->part(0, at);
    kept.add(general->part(at + count, general->chars.size()));
    *general = kept;
    int saved = NextId;
    NextId = atoi(value.c_str() + value.find('(') + 1) - 1;
    return saved;
}

static int BuildTab(Scan *cursor, int pageType, int parent) {
    Compound c;
    Args args;
    c.type = XmtTabForm, c.parent = parent;
    ReadCompound(cursor, &c);
    CheckLabel(c);
    int saved = TakeTabId(&c);
    ReadPart(c.parts, 0, &args);
    parent = ParentOf(args, parent);
    int form = parent;
    if (!ObjectOf(parent) || ObjectOf(parent)->type != XmtTabForm || c.parts.flList) {
        form = AddWidget(c.name, c.place, XmtTabForm, args, parent);
        ObjectOf(form)->flList = c.parts.flList;
    } else if (!c.parts.flLabel) {
        Report(c.place, "\"%s\": a tab wants a label", c.name.c_str());
    }
    int page = AddTabs(&c, form, pageType);
    if (saved) NextId = saved;
    CheckGroups(c);
    return page;
}

// The word names an object that stands at the end of the tabs.
static void BuildTabIcon(Scan *cursor) {
    Text name = TakeWord(cursor);
    if (FindObject(name.chars) < 0) Report(name.place(0), "\"%s\" is no object so far", name.chars.c_str());
    TakeUpTo(cursor, ";");
    cursor->next();
}

// ---- by creator

static int BuildByParent(Scan *cursor, Widget (*create)(Widget), int parent) {
    if (create == XmtNewMenuBar) return BuildMenu(cursor, parent);
    if (create == XmtNewMenuBarButton) return BuildSimple(cursor, XmtPushBut, parent);
    if (create == XmtNewMenuBarMenu) return BuildPulldown(cursor, parent);
    if (create == XmtNewTabIcon) return BuildSimple(cursor, XmtLabel, parent);
    if (create == XmtNewPicture) return BuildPicture(cursor, parent);
    BuildTabIcon(cursor);
    return -1;
}

static int BuildByFirst(Scan *cursor, const XmtKeyRow &row, int parent) {
    int first = static_cast<int>(row.first);
    if (row.create.pa == XmtNewTabForm) return BuildTab(cursor, first, parent);
    if (row.create.pa == XmtNewListBox)
        return BuildListBox(cursor, first ? XmtListBoxMS : XmtListBox, parent);
    return BuildDialog(cursor, first, parent);
}

int BuildObject(Scan *cursor, const XmtKeyRow &row, int parent) {
    switch (row.kind) {
    case XMT_KIND_A:
        if (row.create.a == XmtNewMainWindow) return BuildWindow(cursor);
        BuildImage(cursor);
        return -1;
    case XMT_KIND_P: return BuildByParent(cursor, row.create.p, parent);
    case XMT_KIND_PA: return BuildByFirst(cursor, row, parent);
    case XMT_KIND_APT: return BuildSimple(cursor, static_cast<int>(row.first), parent);
    case XMT_KIND_PAT: return BuildCompound(cursor, static_cast<int>(row.first), row.text, parent);
    default: return -1; // a statement: the caller's
    }
}

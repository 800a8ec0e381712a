// Makes main windows, dialogs and menu bars.
#include "xmt/XmtNewWin.h"

#include "common/MemMgr.h"
#include "common/utils.h"
#include "xmt/XmtCallback.h"
#include "xmt/XmtColor.h"
#include "xmt/XmtCopy.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtScale.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtString.h"
#include "xmt/XmtToken.h"
#include "xmt/XmtValue.h"

#include <algorithm>
#include <cctype>
#include <cstring>

Widget AppShell;
char *pAppShellName;
Widget AppWin;
char *pAppWinName;
const char AppClass[] = "prndeck";
int BarItemCnt;
int flNoBarMenuTraversal;

// ---- main windows

static XtErrorMsgHandler WarnAsBefore;

// A menu that comes or goes while the pointer or the keys belong to another does without, and says so.
static void WarnOfMotif(String name, String type, String kind, String text, String *words, Cardinal *count) {
    if (strncmp(text, "XtGrab", 6) == 0) return PutLogMsg("%s: %s\n", name, text);
    WarnAsBefore(name, type, kind, text, words, count);
}

// Motif sets a handler of its own with the first shell.
static void SetMainShell(Widget shell) {
    AppShell = shell;
    WarnAsBefore = XtAppSetWarningMsgHandler(AppContext, WarnOfMotif);
}

static Widget NewShell(const std::string &name) {
    Arg args[1];
    XtSetArg(args[0], XmNcolormap, AppColormap);
    Widget shell = XtAppCreateShell(name.c_str(), AppClass, applicationShellWidgetClass, AppDisplay, args, 1);
    if (!AppShell) SetMainShell(shell);
    return shell;
}

static Widget NewWindow(intptr_t kind, Widget shell, XmtInfo *info) {
    Cardinal count = static_cast<Cardinal>(info->argCount);
    char *name = info->name.data();
    switch (kind) {
    case 'M': return XmCreateMainWindow(shell, name, info->args, count);
    case 'P': return XmCreatePanedWindow(shell, name, info->args, count);
    case 'B': return XmCreateBulletinBoard(shell, name, info->args, count);
    case 'R': return XmCreateRowColumn(shell, name, info->args, count);
    case 'F': return XmCreateForm(shell, name, info->args, count);
    default: XtSetValues(shell, info->args, count); return shell; // the shell alone
    }
}

static void KeepName(char **kept, const char *name) {
    if (!*kept) *kept = XmtSaveStr_(name);
}

// The shell comes first: it bears the number of the window and leaves it there.
static Widget FillShell(intptr_t kind, Widget shell, const std::string &name) {
    XmtInfo info;
    info.type = XmtMainWindow;
    XmtFillInfo(&info, XMT_FILL_RAW_LABEL | XMT_FILL_NO_TRAVERSAL);
    XmtAddArg(&info, XmNshadowThickness, 0);
    XtVaSetValues(shell, XmNtitle, info.text.c_str(), nullptr);
    XmtNewData(name.c_str(), AUX_SHELL, shell);
    KeepName(&pAppShellName, name.c_str());
    Widget window = NewWindow(kind, shell, &info);
    XmtNewData(info.name.c_str(), XmtMainWindow, window);
    if (window != shell) XtManageChild(window);
    if (!AppWin) AppWin = window;
    KeepName(&pAppWinName, info.name.c_str());
    XmtClearInfo(&info);
    return window;
}

Widget XmtNewMainWindow(intptr_t kind) {
    if (!AppDisplay) return nullptr;
    std::string name;
    GetWord(&name, pNewDesc);
    name += "_shell";
    return FillShell(kind, NewShell(name), name);
}

// ---- dialogs

static const char *const ButtonLabelType[] = {XmNokLabelString, XmNcancelLabelString, XmNapplyLabelString};
// From XmtDataEntryDialog on. ORDER XmtType
static const char *const DialogTextType[] = {XmNtextString, XmNmessageString, XmNmessageString, nullptr,
                                             XmNmessageString};

// The compound strings of one dialog, until it is made. Buttons, label, text and title: six at most.
struct DialogStrings {
    XmString made[6];
    int count;
};

static void AddString(XmtInfo *info, DialogStrings *strings, const char *resource, const std::string &text) {
    XmString made = XmtMakeString(text.c_str());
    strings->made[strings->count++] = made;
    XmtAddArg(info, resource, reinterpret_cast<XtArgVal>(made));
}

// The number of button labels; empty ones count and are left to Motif.
static int AddButtonLabels(XmtInfo *info, DialogStrings *strings) {
    int count = 0;
    for (XmtValues label(info->list); count < int{std::size(ButtonLabelType)} && label.Next(); count++)
        if (!label.value.empty())
            AddString(info, strings, ButtonLabelType[count], XmtDropEscapes(label.value, false));
    return count;
}

static int AddDialogArgs(XmtInfo *info, DialogStrings *strings) {
    const char *textType = DialogTextType[info->type - XmtDataEntryDialog];
    int buttons = AddButtonLabels(info, strings);
    if (!info->label.empty())
        AddString(info, strings, XmNselectionLabelString, XmtDropEscapes(info->label, false));
    if (textType && !info->text.empty()) AddString(info, strings, textType, info->text);
    AddString(info, strings, XmNdialogTitle, info->title);
    return buttons;
}

static Widget NewDialog(XmtInfo *info, Widget parent) {
    Cardinal count = static_cast<Cardinal>(info->argCount);
    char *name = info->name.data();
    switch (info->type) {
    case XmtDataEntryDialog: return XmCreatePromptDialog(parent, name, info->args, count);
    case XmtWarnDialog: return XmCreateWarningDialog(parent, name, info->args, count);
    case XmtInfoDialog: return XmCreateInformationDialog(parent, name, info->args, count);
    case XmtFileDialog: return XmCreateFileSelectionDialog(parent, name, info->args, count);
    case XmtmessageDialog: return XmCreateMessageDialog(parent, name, info->args, count);
    default: return nullptr; // no dialog of Motif's
    }
}

static bool IsMessageBox(int type) {
    return type == XmtWarnDialog || type == XmtInfoDialog || type == XmtmessageDialog;
}

static void ConnectDialog(XmtObjectData *object, int buttons) {
    Widget widget = object->widget;
    XmtConnect(object, XmNokCallback);
    XmtConnect(object, XmNcancelCallback);
    XmtConnect(object, XmNhelpCallback);
    if (buttons < 3 || IsMessageBox(object->type)) return; // a message box has no apply button
    XmtConnect(object, XmNapplyCallback);
    XtManageChild(XmSelectionBoxGetChild(widget, XmDIALOG_APPLY_BUTTON));
}

static Widget DialogButton(const XmtObjectData *dialog, unsigned char button) {
    if (dialog->type == XmtDataEntryDialog) return XmSelectionBoxGetChild(dialog->widget, button);
    return XmMessageBoxGetChild(dialog->widget, button);
}

static const char RemovableButtons[] = ",cancel,help,ok,";
static const unsigned char RemovableButton[] = {0, XmDIALOG_CANCEL_BUTTON, XmDIALOG_HELP_BUTTON,
                                                XmDIALOG_OK_BUTTON};

static void RemoveButtons(const XmtObjectData *dialog, const XmtInfo *info) {
    if (dialog->type == XmtFileDialog || dialog->type == XmtmessageDialog) return;
    for (XmtValues word(info->no.c_str()); word.Next();) {
        int button = word.value.empty() ? 0 : XmtFindToken(word.value.c_str(), RemovableButtons);
        if (button <= 0) continue;
        XtUnmanageChild(DialogButton(dialog, RemovableButton[button]));
        // The help key then is for the window that the dialog belongs to.
        if (RemovableButton[button] == XmDIALOG_HELP_BUTTON)
            XtRemoveAllCallbacks(dialog->widget, XmNhelpCallback);
    }
}

// Motif takes it for message boxes only.
static void SetDialogType(const XmtObjectData *dialog, const XmtInfo *info) {
    if (!IsMessageBox(dialog->type) || info->dialogType.empty()) return;
    XtArgVal type = info->dialogType[0] == '?' ? XmDIALOG_QUESTION : XmDIALOG_INFORMATION;
    if (!strchr("?i", info->dialogType[0])) return;
    XtVaSetValues(dialog->widget, XmNdialogType, type, nullptr);
}

static Widget MakeDialog(XmtInfo *info, Widget parent) {
    DialogStrings strings = {};
    int buttons = AddDialogArgs(info, &strings);
    Widget widget = NewDialog(info, parent);
    XmtObjectData *object = XmtNewData(info->name.c_str(), info->type, widget);
    ConnectDialog(object, buttons);
    while (strings.count > 0) XmStringFree(strings.made[--strings.count]);
    RemoveButtons(object, info);
    SetDialogType(object, info);
    return widget;
}

Widget XmtNewPromptDialog(Widget parent, intptr_t type) {
    XmtInfo info;
    info.type = static_cast<int8_t>(type);
    XmtFillInfo(&info, XMT_FILL_RAW_LABEL);
    if (info.parent) parent = info.parent;
    bool flKnown = type >= XmtDataEntryDialog && type <= XmtmessageDialog;
    Widget widget = parent && flKnown ? MakeDialog(&info, parent) : nullptr;
    SpecifiedAppCBValue = 0;
    XmtClearInfo(&info);
    return widget;
}

// The push buttons of a row get the width of its widest.
static void AlignButtons(Widget row) {
    WidgetList children = nullptr;
    Cardinal count = 0;
    Dimension width, widest = 0;
    XtVaGetValues(row, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; i++) {
        if (!XmIsPushButton(children[i])) continue;
        XtVaGetValues(children[i], XmNwidth, &width, nullptr);
        widest = std::max(widest, width);
    }
    XtVaSetValues(row, XmNentryAlignment, XmALIGNMENT_CENTER, nullptr);
    for (Cardinal i = 0; i < count; i++)
        if (XmIsPushButton(children[i]))
            XtVaSetValues(children[i], XmNrecomputeSize, 0, XmNwidth, widest, nullptr);
}

// Motif has Return press a button, the one with the focus too, only where there is a default button.
static void AddButtonKeys(Widget widget) {
    static constexpr char Keys[] = ":<Key>osfActivate: ArmAndActivate()\n"
                                   "~s ~m ~a <Key>Return: ArmAndActivate()\n";
    if (XmIsPushButton(widget)) XtOverrideTranslations(widget, XtParseTranslationTable(Keys));
    if (!XtIsComposite(widget)) return;
    WidgetList children = nullptr;
    Cardinal count = 0;
    XtVaGetValues(widget, XmNchildren, &children, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; i++) AddButtonKeys(children[i]);
}

// Motif's own mark does not show on buttons with a frame.
static void MarkDefaultButton(Widget board, Widget ok) {
    enum { FRAME = 1, DEFAULT_FRAME = 2 };
    Widget old = nullptr;
    XtVaGetValues(board, XmNdefaultButton, &old, nullptr);
    if (old) XtVaSetValues(old, XmNborderWidth, XmtScaled(FRAME), nullptr);
    if (ok) XtVaSetValues(ok, XmNborderWidth, XmtScaled(DEFAULT_FRAME), nullptr);
}

void XmtSetDialogButtons(const char *dialog, const char *ok, const char *cancel) {
    Widget board = XmtGetWidget(dialog);
    if (!board || !XmIsBulletinBoard(board)) return;
    if (!ok) AddButtonKeys(board);
    MarkDefaultButton(board, XmtGetWidget(ok));
    XtVaSetValues(board, XmNdefaultButton, XmtGetWidget(ok), XmNcancelButton, XmtGetWidget(cancel), nullptr);
    XmtAlignButtons(cancel);
}

void XmtAlignButtons(const char *button) {
    if (Widget widget = XmtGetWidget(button)) AlignButtons(XtParent(widget));
}

// ---- the body of a menu bar

// Motif takes separators and push buttons into a bar, but says of each that it is no cascade button.
struct BarChild {
    BarChild() : saved(XtAppSetWarningMsgHandler(AppContext, Ignore)) {}
    ~BarChild() { XtAppSetWarningMsgHandler(AppContext, saved); }
    BarChild(const BarChild &) = delete;
    BarChild &operator=(const BarChild &) = delete;
    static void Ignore(String, String, String, String, String *, Cardinal *) {}
    XtErrorMsgHandler saved;
};

// One level of it. A file read in place goes on with the same level.
struct MenuLevel {
    Widget parent;
    XmtInfo *bar;
    const char *prefix;
    int counter;       // menus at the top, items and menus below
    int files;         // files being read on this level
    std::string menu;  // the menu last named, until its body has been read
    std::string label; // its
};

static void ReadMenuText(MenuLevel *level);

static std::string MenuArgs(const MenuLevel *level, const std::string &label) {
    const char *general = level->bar->slots[0];
    return " l(" + label + ") " + (general ? general : "");
}

static bool IsTop(const MenuLevel *level) {
    return !*level->prefix;
}

// "bar_n_prefix_k"
static std::string EntryName(const MenuLevel *level, const char *prefix) {
    return level->bar->name + "_" + std::to_string(BarItemCnt) + "_" + prefix + "_" +
           std::to_string(level->counter);
}

// A word with its '('. The cursor goes onto the parenthesis, over which every value reader steps.
static bool Opens(const char *head) {
    size_t length = strlen(head);
    if (strncmp(pNewDesc, head, length) != 0) return false;
    pNewDesc += length - 1;
    return true;
}

// The rest of the parenthesis, commas included; the escapes are for the reader of the label.
static std::string RestOfParenthesis() {
    std::string text;
    pNewDesc = GetArgValues(&text, pNewDesc);
    if (*pNewDesc) pNewDesc++;
    return text;
}

// "format," in front of a label. A parenthesis that ends with the format has no label.
static std::string TakeFormat(bool *flLabel) {
    std::string format;
    pNewDesc = GetArgValue(&format, pNewDesc);
    *flLabel = *pNewDesc == ',';
    if (*pNewDesc) pNewDesc++;
    return XmtDropEscapes(format, false);
}

static Widget NewTopItem(MenuLevel *level, const std::string &label) {
    BarItemCnt++;
    BarPullDownMenu = nullptr;
    std::string text = level->bar->name + "_" + std::to_string(BarItemCnt) + MenuArgs(level, label);
    return XmtNewWidget(text.c_str(), XmtCascadeBut, level->parent, XmNactivateCallback);
}

static Widget NewMenuItem(MenuLevel *level, const std::string &label) {
    level->counter++;
    std::string text = EntryName(level, level->prefix) + MenuArgs(level, label);
    return XmtNewWidget(text.c_str(), XmtPushBut, level->parent, XmNactivateCallback);
}

static void DoItem(MenuLevel *level, bool flFormat) {
    bool flLabel = true;
    std::string format = flFormat ? TakeFormat(&flLabel) : "";
    std::string label = flLabel ? RestOfParenthesis() : "";
    Widget item = IsTop(level) ? NewTopItem(level, label) : NewMenuItem(level, label);
    if (item && !format.empty()) XmtReplaceText(&pNewObjectData->format, format.c_str());
}

static void DoMenu(MenuLevel *level) {
    level->label = RestOfParenthesis();
    if (IsTop(level)) BarItemCnt++;
    level->counter++;
    level->menu = EntryName(level, IsTop(level) ? "a" : level->prefix) + "_pd";
    const char *general = level->bar->slots[0];
    std::string text = level->menu + " " + (general ? general : "");
    BarPullDownMenu = XmtNewWidget(text.c_str(), AUX_MENU, level->parent, nullptr);
}

// The cascade follows the body: it is the entry that opens the menu.
static void DoMenuBody(MenuLevel *level) {
    if (level->menu.empty()) return;
    std::string prefix = level->prefix + std::string(1, static_cast<char>('a' + level->counter));
    std::string text = level->menu + "_cb" + MenuArgs(level, level->label);
    level->menu.clear();
    BuildMenuBar(BarPullDownMenu, level->bar, prefix.c_str());
    XmtNewWidget(text.c_str(), AUX_CASCADE, level->parent, nullptr);
}

static void DoSeparator(MenuLevel *level) {
    const char *general = level->bar->slots[0];
    std::string text = EntryName(level, level->prefix) + "_s " + (general ? general : "");
    text += IsTop(level) ? " v" : " h";
    BarChild child;
    XmtNewWidget(text.c_str(), AUX_SEPARATOR, level->parent, nullptr);
}

static void DoFile(MenuLevel *level) {
    std::string name = RestOfParenthesis();
    if (level->files >= XMT_MENU_FILES) return;
    char *text = GetSavedFileContent(XmtDropEscapes(name, false).c_str(), nullptr);
    if (!text) return;
    level->files++;
    {
        XmtCursor cursor(text);
        ReadMenuText(level);
    }
    level->files--;
    PutMem(text);
}

// What may stand before a parenthesis, longest first. False if the text has no meaning here.
static bool DoWord(MenuLevel *level) {
    if (Opens("bf("))
        DoItem(level, true);
    else if (Opens("b("))
        DoItem(level, false);
    else if (Opens("m("))
        DoMenu(level);
    else if (Opens("id("))
        AppCBValue = GetNumber();
    else if (Opens("i("))
        DoFile(level);
    else
        return false;
    return true;
}

static void ReadMenuText(MenuLevel *level) {
    while (*pNewDesc) {
        if (DoWord(level)) continue;
        char ch = *pNewDesc++;
        if (ch == '}' || ch == ';') return;
        if (ch == '{') DoMenuBody(level);
        if (ch == 's') DoSeparator(level);
        if (ch == 'a') flConvertLabelToAppData = !flConvertLabelToAppData;
        if (ch == '#') pNewDesc += strcspn(pNewDesc, "\n");
    }
}

void BuildMenuBar(Widget parent, XmtInfo *bar, const char *prefix) {
    Widget saved = BarPullDownMenu;
    MenuLevel level = {parent, bar, prefix, 0, 0, "", ""};
    ReadMenuText(&level);
    BarPullDownMenu = saved;
}

// ---- menu bars

// What menus are made under: colours that are not to be had give no colour, and the keyboard stays out if the
// application says so.
struct MenuSettings {
    MenuSettings() : saved(flNoTraversal) {
        flUseDefaultColor = 0;
        flNoTraversal = flNoBarMenuTraversal;
    }
    ~MenuSettings() {
        flNoTraversal = saved;
        flUseDefaultColor = 1;
    }
    MenuSettings(const MenuSettings &) = delete;
    MenuSettings &operator=(const MenuSettings &) = delete;
    int saved;
};

static void SkipSpace() {
    while (isspace(static_cast<unsigned char>(*pNewDesc))) pNewDesc++;
}

// The body may end with a ';' in front of the closing brace, or with the brace itself.
static void ReadBarBody(Widget bar, XmtInfo *info) {
    BarItemCnt = 0;
    SkipSpace();
    bool flBrace = *pNewDesc == '{';
    if (flBrace) pNewDesc++;
    flConvertLabelToAppData = 0;
    BuildMenuBar(bar, info, "");
    flConvertLabelToAppData = 0;
    if (!flBrace || pNewDesc[-1] == '}') return;
    SkipSpace();
    if (*pNewDesc == '}') pNewDesc++;
}

Widget XmtNewMenuBar(Widget parent) {
    MenuSettings settings;
    XmtInfo info;
    info.type = XmtMenuBar;
    XmtFillInfoDesc(&info);
    Widget bar = XmtNewWidget(GenDesc(&info, GEN_NAME | 1, nullptr).c_str(), AUX_BAR, parent, nullptr);
    ReadBarBody(bar, &info);
    if (bar) XtManageChild(bar);
    XmtClearInfo(&info);
    return bar;
}

Widget XmtNewMenuBarButton(Widget parent) {
    MenuSettings settings;
    BarChild child;
    return XmtNewSimpleObject(XmtPushBut, parent, XmNactivateCallback);
}

Widget XmtNewMenuBarMenu(Widget parent) {
    MenuSettings settings;
    std::string name;
    const char *from = GetWord(&name, pNewDesc);
    Widget saved = BarPullDownMenu;
    BarPullDownMenu = XmtNewSimpleObject(AUX_MENU, parent, nullptr);
    Widget menu = BarPullDownMenu;
    std::string text = name + "_cb " + std::string(from, static_cast<size_t>(pNewDesc - from));
    XmtNewWidget(text.c_str(), AUX_CASCADE, parent, nullptr);
    BarPullDownMenu = saved;
    return menu;
}

// ---- the keys of menus

// Motif's own, which the entries had before they were taken.
static constexpr char ItemKeys[] = ":<Key>osfCancel: MenuEscape()\n"
                                   ":<Key>osfLeft: MenuTraverseLeft()\n"
                                   ":<Key>osfRight: MenuTraverseRight()\n"
                                   ":<Key>osfUp: MenuTraverseUp()\n"
                                   ":<Key>osfDown: MenuTraverseDown()\n"
                                   ":<Key>osfSelect: ArmAndActivate()\n"
                                   ":<Key>osfActivate: ArmAndActivate()\n"
                                   "~s ~m ~a <Key>Return: ArmAndActivate()\n"
                                   "~s ~m ~a <Key>space: ArmAndActivate()\n";
static constexpr char CascadeKeys[] = ":<Key>osfCancel: CleanupMenuBar()\n"
                                      ":<Key>osfLeft: MenuTraverseLeft()\n"
                                      ":<Key>osfRight: MenuTraverseRight()\n"
                                      ":<Key>osfUp: MenuTraverseUp()\n"
                                      ":<Key>osfDown: MenuTraverseDown()\n"
                                      ":<Key>osfSelect: KeySelect()\n"
                                      ":<Key>osfActivate: KeySelect()\n"
                                      "~s<Key>Return: KeySelect()\n"
                                      "~s<Key>space: KeySelect()\n";
// Of a menu that the mouse opened: none of its entries has the focus then.
static constexpr char MenuKeys[] = ":<Key>osfCancel: MenuGadgetEscape()\n"
                                   ":<Key>osfLeft: MenuGadgetTraverseLeft()\n"
                                   ":<Key>osfRight: MenuGadgetTraverseRight()\n"
                                   ":<Key>osfUp: MenuGadgetTraverseUp()\n"
                                   ":<Key>osfDown: MenuGadgetTraverseDown()\n";

struct MenuTables {
    XtTranslations menu, cascade, item;
};

static void AddMenuKeys(Widget menu, const MenuTables *keys);

static void AddEntryKeys(Widget entry, const MenuTables *keys) {
    if (XmIsPushButton(entry)) XtOverrideTranslations(entry, keys->item);
    if (!XmIsCascadeButton(entry)) return;
    XtOverrideTranslations(entry, keys->cascade);
    Widget menu = nullptr;
    XtVaGetValues(entry, XmNsubMenuId, &menu, nullptr);
    if (menu) AddMenuKeys(menu, keys);
}

static void AddMenuKeys(Widget menu, const MenuTables *keys) {
    XtOverrideTranslations(menu, keys->menu);
    // Menus share a shell: without this the focus goes from the one that is shown into the others.
    XtVaSetValues(menu, XmNnavigationType, XmTAB_GROUP, nullptr);
    WidgetList entries = nullptr;
    Cardinal count = 0;
    XtVaGetValues(menu, XmNchildren, &entries, XmNnumChildren, &count, nullptr);
    for (Cardinal i = 0; i < count; i++) AddEntryKeys(entries[i], keys);
}

void XmtAddMenuKeys(const char *bar) {
    static MenuTables keys;
    Widget widget = XmtGetWidget(bar);
    if (!widget || !XmIsRowColumn(widget)) return;
    if (!keys.menu)
        keys = {XtParseTranslationTable(MenuKeys), XtParseTranslationTable(CascadeKeys),
                XtParseTranslationTable(ItemKeys)};
    AddMenuKeys(widget, &keys);
}

// Statements of descriptions: keywords, blocks, inclusion.
#include "xmt/XmtNew.h"

#include "common/MemMgr.h"
#include "common/utils.h"
#include "xmt/XmtNewArgs.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewTab.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtPixmap.h"
#include "xmt/XmtStore.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <iterator>

static int Blocks; // open

// ---- statements

// Reads a text of its own: the calls that it leaves open end with it.
static void ReadText(const char *text, Widget parent) {
    XmtCursor cursor(text);
    XmtMacroLevel level;
    XmtNewObjectWP(parent);
}

void XmtNewObject(const char *parent, XmtHandler handler, int firstId, const char *text) {
    XmtInitStore();
    AppCB = handler;
    if (firstId) AppCBValue = firstId;
    XmtObjectData *object = parent && *parent ? XmtFindObject(parent) : nullptr;
    Widget widget = object ? object->widget : AppWin;
    if (!text || (parent && !widget)) return;
    XmtRenewCalls();
    ReadText(text, widget);
}

static void IncludeFile(Widget parent) {
    static const char word[] = "include";
    if (strncmp(pNewDesc, word, sizeof word - 1) != 0 || !pNewDesc[sizeof word - 1]) return;
    const char *name = XmtGetToken(pNewDesc + sizeof word, " \n\t");
    if (!name || Blocks >= XMT_BLOCKS || !XmtTakeCall()) return;
    char *text = GetSavedFileContent(name, nullptr);
    if (!text) return;
    Blocks++;
    ReadText(text, parent);
    Blocks--;
    PutMem(text);
}

static void ReadComment(Widget parent) {
    IncludeFile(parent);
    while (*pNewDesc && *pNewDesc != '\n') pNewDesc++;
}

static void ReadBlock(Widget object) {
    if (Blocks >= XMT_BLOCKS) return;
    Blocks++;
    XmtNewObjectWP(object);
    Blocks--;
}

struct Level {
    Widget parent;
    Widget object; // current: of the last keyword, null if that was none
};

static void EndKey(Level *level, std::string *key) {
    if (key->empty()) return;
    level->object = XmtProcessKey(&level->parent, key->c_str());
    key->clear();
}

static void ReadStatementChar(Level *level, std::string *key, char ch) {
    switch (ch) {
    case '{': ReadBlock(level->object); break;
    case '.': XmtDefineMacro(); break;
    case '*': PushMacro(); break;
    case '#': ReadComment(level->parent); break;
    case '(':
        if (!key->empty()) *key += ch;
        EndKey(level, key);
        break;
    default:
        if (XmtIsSpace(ch))
            EndKey(level, key);
        else if (isalnum(static_cast<unsigned char>(ch)))
            *key += ch;
    }
}

// H of the object just read. A shell has no parent that could leave it out.
static void HideObject(Widget object) {
    if (flHideObject && object && XtParent(object)) XtUnmanageChild(object);
    flHideObject = 0;
}

void XmtNewObjectWP(Widget parent) {
    Level level = {parent, nullptr};
    std::string key;
    PopMacro();
    while (*pNewDesc && *pNewDesc != '}') {
        ReadStatementChar(&level, &key, *pNewDesc++);
        PopMacro();
        HideObject(level.object);
    }
    if (*pNewDesc) pNewDesc++;
}

// ---- keywords

constexpr char ObjKeys[] =
    ",WM,WP,WB,WR,WF,W,DE,DW,Df,DI,DM,DB,DF,DR,D,bp,br,bl,bL,bt,bb,B,S,BB,Bl,Blm,M,Mb,Mm,"
    "s,t,tp,l,F,T,TB,TI,TW,P,PI,i,P(,id(,O,OS,";

// The keyword i makes no widget.
static Widget NewImage(intptr_t) {
    XmtNewImage(nullptr);
    return nullptr;
}

static constexpr XmtKeyRow SimpleRow(const char *key, int type, const char *callback = nullptr,
                                     bool flParent = false) {
    return {key, {.apt = XmtNewSimpleObject}, type, XMT_KIND_APT, callback, flParent};
}

static constexpr XmtKeyRow CompoundRow(const char *key, int type, const char *letters = "") {
    return {key, {.pat = XmtBuildObject}, type, XMT_KIND_PAT, letters, false};
}

static constexpr XmtKeyRow WindowRow(const char *key, char letter) {
    return {key, {.a = XmtNewMainWindow}, letter, XMT_KIND_A, nullptr, true};
}

static constexpr XmtKeyRow ParentFirstRow(const char *key, Widget (*create)(Widget, intptr_t), int first) {
    return {key, {.pa = create}, first, XMT_KIND_PA, nullptr, false};
}

static constexpr XmtKeyRow ParentRow(const char *key, Widget (*create)(Widget)) {
    return {key, {.p = create}, 0, XMT_KIND_P, nullptr, false};
}

static constexpr XmtKeyRow StatementRow(const char *key, int kind, bool flParent = false) {
    return {key, {.a = nullptr}, 0, kind, nullptr, flParent};
}

// ORDER ObjKeys
constexpr XmtKeyRow Objs[] = {
    StatementRow("", XMT_KIND_ID),
    WindowRow("WM", 'M'),
    WindowRow("WP", 'P'),
    WindowRow("WB", 'B'),
    WindowRow("WR", 'R'),
    WindowRow("WF", 'F'),
    WindowRow("W", '\0'),
    ParentFirstRow("DE", XmtNewPromptDialog, XmtDataEntryDialog),
    ParentFirstRow("DW", XmtNewPromptDialog, XmtWarnDialog),
    ParentFirstRow("Df", XmtNewPromptDialog, XmtFileDialog),
    ParentFirstRow("DI", XmtNewPromptDialog, XmtInfoDialog),
    ParentFirstRow("DM", XmtNewPromptDialog, XmtmessageDialog),
    SimpleRow("DB", XmtBBDialog, nullptr, true),
    SimpleRow("DF", XmtFormDialog, nullptr, true),
    CompoundRow("DR", XmtDraw),
    SimpleRow("D", XmtDialogShell, nullptr, true),
    SimpleRow("bp", XmtPushBut, "activateCallback"),
    CompoundRow("br", XmtRadioBox, "Lt"),
    CompoundRow("bl", XmtListBut, "mLp"),
    CompoundRow("bL", XmtCreatedListBut, "mLp"),
    CompoundRow("bt", XmtToggleBut),
    CompoundRow("bb", XmtButtonBox, "Lp"),
    CompoundRow("B", XmtButtonBox),
    CompoundRow("S", XmtScrolledArea),
    SimpleRow("BB", XmtBoard),
    ParentFirstRow("Bl", XmtNewListBox, 0),
    ParentFirstRow("Blm", XmtNewListBox, 1),
    ParentRow("M", XmtNewMenuBar),
    ParentRow("Mb", XmtNewMenuBarButton),
    ParentRow("Mm", XmtNewMenuBarMenu),
    SimpleRow("s", XmtSeperator),
    CompoundRow("t", XmtText),
    CompoundRow("tp", XmtPasswd),
    SimpleRow("l", XmtLabel),
    SimpleRow("F", XmtForm),
    ParentFirstRow("T", XmtNewTabForm, XmtForm),
    ParentFirstRow("TB", XmtNewTabForm, XmtBox),
    ParentRow("TI", XmtNewTabIcon),
    ParentRow("TW", XmtNewTabIconW),
    SimpleRow("P", XmtPanedBox),
    ParentRow("PI", XmtNewPicture),
    {"i", {.a = NewImage}, 0, XMT_KIND_A, nullptr, false},
    StatementRow("P(", XMT_KIND_PARENT, true),
    StatementRow("id(", XMT_KIND_ID),
    StatementRow("O", XMT_KIND_SELECT),
    StatementRow("OS", XMT_KIND_CHANGE),
};

static_assert(std::size(Objs) == XMT_KEYS && XmtCountWords(ObjKeys) + 1 == XMT_KEYS);
static_assert(XmtMisplacedRow(Objs, ObjKeys) == XMT_IN_PLACE,
              "a row of Objs stands elsewhere than its key in ObjKeys");

const XmtKeyRow *pXmtObjs = Objs;

// The value behind "P(" or "id(" with its ')'.
static std::string ReadKeyValue() {
    std::string value;
    GetValue(&value);
    return value;
}

static Widget ReadWordObject(XmtObjectData **object) {
    std::string name;
    pNewDesc = GetWord(&name, pNewDesc);
    *object = name.empty() ? nullptr : XmtFindObject(name.c_str());
    return *object ? (*object)->widget : nullptr;
}

static Widget ChangeObject() {
    XmtObjectData *object;
    Widget widget = ReadWordObject(&object);
    if (!widget) return nullptr;
    XmtInfo info;
    info.type = static_cast<int8_t>(object->type);
    XmtFillInfo(&info, XMT_FILL_NESTED);
    XtSetValues(widget, info.args, static_cast<Cardinal>(info.argCount));
    XmUpdateDisplay(widget);
    XmtClearInfo(&info);
    return widget;
}

static Widget SetParent(Widget *parent) {
    std::string name = ReadKeyValue();
    Widget widget = name.empty() ? nullptr : XmtGetWidget(name.c_str());
    if (widget) *parent = widget;
    return widget;
}

static Widget RunRow(const XmtKeyRow *row, Widget *parent) {
    XmtObjectData *object;
    switch (row->kind) {
    case XMT_KIND_A: return row->create.a(row->first);
    case XMT_KIND_P: return row->create.p(*parent);
    case XMT_KIND_PA: return row->create.pa(*parent, row->first);
    case XMT_KIND_APT: return row->create.apt(static_cast<int>(row->first), *parent, row->text);
    case XMT_KIND_PAT: return row->create.pat(*parent, static_cast<int>(row->first), row->text);
    case XMT_KIND_PARENT: return SetParent(parent);
    case XMT_KIND_ID: AppCBValue = atoi(ReadKeyValue().c_str()); return nullptr;
    case XMT_KIND_SELECT: return ReadWordObject(&object);
    case XMT_KIND_CHANGE: return ChangeObject();
    default: return nullptr; // a table of another maker
    }
}

Widget XmtProcessKey(Widget *parent, const char *key) {
    int n = key && *key ? XmtFindToken(key, ObjKeys) : 0;
    if (n == 0) return nullptr;
    const XmtKeyRow *row = &pXmtObjs[n];
    Widget widget = RunRow(row, parent);
    if (!*parent && row->flParent) *parent = widget;
    return widget;
}

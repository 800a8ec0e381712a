// Statements of descriptions: keywords, blocks, macros, inclusion. The value readers and tokens of all
// layers.
#include "xmt/XmtNew.h"

#include "common/MemMgr.h"
#include "common/Token.h"
#include "common/utils.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNewArgs.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewTab.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <utility>

const char *pNewDesc = "";
char *Macro[XMT_MACROS];
XmtHandler AppCB;
int AppCBValue = 1;
int SpecifiedAppCBValue;
int GetDescLen;

struct MacroCall {
    const char *back; // where the caller goes on
    char *text;       // what is read, managed
};
static MacroCall Mac[XMT_CALLS];
static int MacI;      // calls in progress
static int MacBase;   // those below it wait for an included text or a nested description to end
static int CallsLeft; // of the description in hand
static int Blocks;    // open

// ---- value readers

static bool IsWordChar(char ch) {
    return isalnum(static_cast<unsigned char>(ch)) || ch == '_';
}

const char *XmtSkipSpace(const char *position) {
    while (XmtIsSpace(*position)) position++;
    return position;
}

static const char *SkipOpen(const char *position) {
    return *position == '(' ? position + 1 : position;
}

// Up to one of the ends that is not escaped, or the end of the text; backslashes stay.
static const char *ReadUpTo(std::string *out, const char *position, const char *ends) {
    const char *start = position;
    for (; *position && !strchr(ends, *position); position++)
        if (*position == '\\' && position[1]) position++;
    out->assign(start, position);
    return position;
}

const char *GetArgValue(std::string *out, const char *position) {
    return ReadUpTo(out, SkipOpen(position), ",)");
}

void GetValue(std::string *out) {
    pNewDesc = GetArgValue(out, pNewDesc);
    if (*pNewDesc) pNewDesc++;
}

const char *GetArgValues(std::string *out, const char *position) {
    return ReadUpTo(out, SkipOpen(position), ")");
}

// A ')' behind a backslash that was itself escaped is text as well.
void GetValues(std::string *out) {
    out->clear();
    for (pNewDesc = SkipOpen(pNewDesc); *pNewDesc && *pNewDesc != ')'; pNewDesc++) {
        if (*pNewDesc == '\\' && !*++pNewDesc) return;
        *out += *pNewDesc;
        if (*pNewDesc == '\\' && pNewDesc[1] == ')') *out += *++pNewDesc;
    }
    if (*pNewDesc) pNewDesc++;
}

const char *GetSavedArgValues(char **text, const char *position) {
    std::string value;
    position = GetArgValues(&value, position);
    *text = SaveStr_(value.c_str());
    return position;
}

void GetSavedValues(char **text) {
    pNewDesc = GetSavedArgValues(text, pNewDesc);
    if (*pNewDesc) pNewDesc++;
}

int GetNumber() {
    pNewDesc = SkipOpen(pNewDesc);
    int number = atoi(pNewDesc);
    while (isdigit(static_cast<unsigned char>(*pNewDesc))) pNewDesc++;
    if (*pNewDesc && strchr(",()", *pNewDesc)) pNewDesc++;
    return number;
}

const char *GetWord(std::string *out, const char *position) {
    const char *start = position = XmtSkipSpace(position);
    while (IsWordChar(*position)) position++;
    out->assign(start, position);
    return position;
}

char *GetDesc(char end, int flKeep) {
    const char ends[] = {end, '\0'};
    std::string text;
    pNewDesc = ReadUpTo(&text, pNewDesc, ends);
    if (*pNewDesc && flKeep) text += end;
    if (*pNewDesc) pNewDesc++;
    GetDescLen = static_cast<int>(text.size());
    return SaveStr_(text.c_str());
}

char GetEscapedValue(char ch) {
    switch (ch) {
    case 'n': return '\n';
    case 'r': return '\r';
    case 't': return '\t';
    default: return ch; // every other character stands for itself
    }
}

int GetArgCount(const char *position) {
    std::string value;
    if (*position == '(' && position[1] == ')') return 0;
    int count = 1;
    for (position = GetArgValue(&value, position); *position == ','; count++)
        position = ReadUpTo(&value, position + 1, ",)");
    return count;
}

// The argument's place in the text: its start, and its length by *length; npos if there is none.
static size_t FindArg(const char *name, const char *text, size_t *length) {
    std::string word, value;
    for (const char *in = text; *(in = XmtSkipSpace(in));) {
        const char *start = in;
        in = GetWord(&word, in);
        if (in == start) {
            in++;
            continue;
        }
        if (*in == '(') in = ReadUpTo(&value, in, ")");
        if (*in == ')' && in != start + word.size()) in++;
        *length = static_cast<size_t>(in - start);
        if (word == name) return static_cast<size_t>(start - text);
    }
    return std::string::npos;
}

bool CopyArg(const char *name, const char *text, std::string *out) {
    size_t length, place = name && *name && text ? FindArg(name, text, &length) : std::string::npos;
    if (out) out->clear();
    if (place == std::string::npos) return false;
    if (out) out->assign(text + place, length);
    return true;
}

bool StripArg(const char *name, std::string *text, std::string *out) {
    size_t length, place = name && *name ? FindArg(name, text->c_str(), &length) : std::string::npos;
    if (out) out->clear();
    if (place == std::string::npos) return false;
    if (out) out->assign(*text, place, length);
    text->erase(place, length);
    return true;
}

// ---- tokens

char XmtGetTokenBuf[XMT_TOKEN_SIZE];
char *szXmtTokenIn;
char chXmtTokenDel;
static const char *XmtIn; // read position; szXmtTokenIn follows it when a call ends normally

void XmtSetTokenBuf(const char *text) {
    XmtIn = text;
    szXmtTokenIn = const_cast<char *>(text);
}

char *XmtGetToken(const char *in, const char *delims) {
    if (in && in != pTokenLine) XmtIn = in;
    TokenScan scan = {XmtIn, XmtGetTokenBuf, XMT_TOKEN_SIZE, '\0', in == pTokenLine};
    int result = ScanToken(&scan, delims);
    XmtIn = scan.position;
    chXmtTokenDel = scan.del;
    if (result != SCAN_LINE) szXmtTokenIn = const_cast<char *>(XmtIn);
    return result == SCAN_TOKEN ? XmtGetTokenBuf : nullptr;
}

int XmtFindToken(const char *token, const char *list) {
    return FindToken(token, list);
}

// Delimiters in front are passed before the scan, so that del tells of the token's own end.
char *XmtStrTok(XmtTokenRecord *record, const char *text, const char *delims) {
    if (text) record->position = text;
    if (record->position && !strchr(delims, '\\')) record->position += strspn(record->position, delims);
    TokenScan scan = {record->position, record->buffer, XMT_STRTOK_SIZE, '\0', false};
    int result = ScanToken(&scan, delims);
    record->position = scan.position;
    record->del = scan.del;
    return result == SCAN_TOKEN ? record->buffer : nullptr;
}

char *XmtSaveStr(const char *format, ...) {
    va_list args;
    va_start(args, format);
    int length = vsnprintf(nullptr, 0, format, args);
    va_end(args);
    if (length < 0) length = 0;
    auto text = static_cast<char *>(GetMem(static_cast<size_t>(length) + 1));
    if (!text) XmtSysError("%s", OutOfMem);
    va_start(args, format);
    vsnprintf(text, static_cast<size_t>(length) + 1, format, args);
    va_end(args);
    return text;
}

char *XmtSaveStr_(const char *text) {
    return XmtSaveStr("%s", text ? text : "");
}

void XmtFreeStr(char *text) {
    PutMem(text);
}

// ---- macros

// The rest of the line behind the number, its blank included, becomes the body.
static void DefineMacro() {
    int number = atoi(pNewDesc);
    for (int digits = number <= 9 ? 1 : 2; digits > 0 && *pNewDesc; digits--) pNewDesc++;
    char *body = GetDesc('\n', 0);
    if (number >= 0 && number < XMT_MACROS) std::swap(body, Macro[number]);
    PutMem(body);
}

// The body is copied even if it is read as it stands: it may define its own number anew.
void PushMacro() {
    int number = GetNumber();
    const char *body = number >= 0 && number < XMT_MACROS ? Macro[number] : nullptr;
    if (!body || MacI == XMT_CALLS || CallsLeft <= 0) return;
    CallsLeft--;
    std::string text, arguments;
    if (pNewDesc[-1] == '(') {
        GetValues(&arguments);
        ExpandMacro(&text, body, arguments.c_str());
        body = text.c_str();
    }
    Mac[MacI] = {pNewDesc, SaveStr_(body)};
    pNewDesc = Mac[MacI++].text;
}

void PopMacro() {
    while (!*pNewDesc && MacI > MacBase) {
        pNewDesc = Mac[--MacI].back;
        PutMem(Mac[MacI].text);
    }
}

struct Expansion {
    std::string *out;
    const char *arguments; // not yet taken
    int count;             // saved values
    char values[XMT_SAVED_VALUES][XMT_SAVED_VALUE_SIZE];
};

// Text up to the end character, which is consumed, with its escapes translated.
static std::string TakeText(const char **position, char end) {
    std::string text;
    const char *in = *position;
    for (; *in && *in != end; in++) {
        if (*in != '\\')
            text += *in;
        else if (in[1])
            text += GetEscapedValue(*++in);
    }
    *position = *in ? in + 1 : in;
    return text;
}

static void SaveValue(Expansion *expansion, const std::string &text) {
    if (expansion->count == XMT_SAVED_VALUES) return;
    snprintf(expansion->values[expansion->count++], XMT_SAVED_VALUE_SIZE, "%s", text.c_str());
}

// Behind an '&' that means something: where the body goes on, otherwise null.
static const char *ExpandValue(Expansion *expansion, const char *in) {
    if (*in == '*') {
        SaveValue(expansion, TakeText(&expansion->arguments, ','));
        return in + 1;
    }
    if (*in == '\'') {
        SaveValue(expansion, TakeText(&++in, '\''));
        return in;
    }
    if (*in < '0' || *in > '9' || expansion->count == 0) return nullptr;
    if (*in - '0' < expansion->count) *expansion->out += expansion->values[*in - '0'];
    return in + 1;
}

void ExpandMacro(std::string *out, const char *body, const char *arguments) {
    Expansion expansion = {};
    expansion.out = out;
    expansion.arguments = arguments;
    out->clear();
    while (*body) {
        const char *next = *body == '&' ? ExpandValue(&expansion, body + 1) : nullptr;
        if (next) {
            body = next;
        } else if (*body == '*') {
            *out += TakeText(&expansion.arguments, ',');
            body++;
        } else {
            if (*body == '\\' && body[1]) body++;
            *out += *body++;
        }
    }
}

// ---- statements

// Reads a text of its own: the calls that it leaves open end with it.
static void ReadText(const char *text, Widget parent) {
    XmtCursor cursor(text);
    int base = MacBase;
    MacBase = MacI;
    XmtNewObjectWP(parent);
    while (MacI > MacBase) PutMem(Mac[--MacI].text);
    MacBase = base;
}

void XmtNewObject(const char *parent, XmtHandler handler, int firstId, const char *text) {
    XmtInitStore();
    AppCB = handler;
    if (firstId) AppCBValue = firstId;
    XmtObjectData *object = parent && *parent ? XmtFindObject(parent) : nullptr;
    Widget widget = object ? object->widget : AppWin;
    if (!text || (parent && !widget)) return;
    if (MacI == 0) CallsLeft = XMT_CALLS_ALL;
    ReadText(text, widget);
}

static void IncludeFile(Widget parent) {
    static const char word[] = "include";
    if (strncmp(pNewDesc, word, sizeof word - 1) != 0 || !pNewDesc[sizeof word - 1]) return;
    const char *name = XmtGetToken(pNewDesc + sizeof word, " \n\t");
    if (!name || Blocks >= XMT_BLOCKS || CallsLeft <= 0) return;
    CallsLeft--;
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
    case '.': DefineMacro(); break;
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

static constexpr XmtKeyRow SimpleRow(int type, const char *callback = nullptr, bool flParent = false) {
    return {{.apt = XmtNewSimpleObject}, type, XMT_KIND_APT, callback, flParent};
}

static constexpr XmtKeyRow CompoundRow(int type, const char *letters = "") {
    return {{.pat = XmtBuildObject}, type, XMT_KIND_PAT, letters, false};
}

static constexpr XmtKeyRow WindowRow(char letter) {
    return {{.a = XmtNewMainWindow}, letter, XMT_KIND_A, nullptr, true};
}

static constexpr XmtKeyRow ParentFirstRow(Widget (*create)(Widget, intptr_t), int first) {
    return {{.pa = create}, first, XMT_KIND_PA, nullptr, false};
}

static constexpr XmtKeyRow ParentRow(Widget (*create)(Widget)) {
    return {{.p = create}, 0, XMT_KIND_P, nullptr, false};
}

static constexpr XmtKeyRow StatementRow(int kind, bool flParent = false) {
    return {{.a = nullptr}, 0, kind, nullptr, flParent};
}

// ORDER ObjKeys
const XmtKeyRow Objs[] = {
    StatementRow(XMT_KIND_ID),
    WindowRow('M'),
    WindowRow('P'),
    WindowRow('B'),
    WindowRow('R'),
    WindowRow('F'),
    WindowRow('\0'),
    ParentFirstRow(XmtNewPromptDialog, XmtDataEntryDialog),
    ParentFirstRow(XmtNewPromptDialog, XmtWarnDialog),
    ParentFirstRow(XmtNewPromptDialog, XmtFileDialog),
    ParentFirstRow(XmtNewPromptDialog, XmtInfoDialog),
    ParentFirstRow(XmtNewPromptDialog, XmtmessageDialog),
    SimpleRow(XmtBBDialog, nullptr, true),
    SimpleRow(XmtFormDialog, nullptr, true),
    CompoundRow(XmtDraw),
    SimpleRow(XmtDialogShell, nullptr, true),
    SimpleRow(XmtPushBut, "activateCallback"),
    CompoundRow(XmtRadioBox, "Lt"),
    CompoundRow(XmtListBut, "mLp"),
    CompoundRow(XmtCreatedListBut, "mLp"),
    CompoundRow(XmtToggleBut),
    CompoundRow(XmtButtonBox, "Lp"),
    CompoundRow(XmtButtonBox),
    CompoundRow(XmtScrolledArea),
    SimpleRow(XmtBoard),
    ParentFirstRow(XmtNewListBox, 0),
    ParentFirstRow(XmtNewListBox, 1),
    ParentRow(XmtNewMenuBar),
    ParentRow(XmtNewMenuBarButton),
    ParentRow(XmtNewMenuBarMenu),
    SimpleRow(XmtSeperator),
    CompoundRow(XmtText),
    CompoundRow(XmtPasswd),
    SimpleRow(XmtLabel),
    SimpleRow(XmtForm),
    ParentFirstRow(XmtNewTabForm, XmtForm),
    ParentFirstRow(XmtNewTabForm, XmtBox),
    ParentRow(XmtNewTabIcon),
    ParentRow(XmtNewTabIconW),
    SimpleRow(XmtPanedBox),
    ParentRow(XmtNewPicture),
    {{.a = NewImage}, 0, XMT_KIND_A, nullptr, false},
    StatementRow(XMT_KIND_PARENT, true),
    StatementRow(XMT_KIND_ID),
    StatementRow(XMT_KIND_SELECT),
    StatementRow(XMT_KIND_CHANGE),
};

static_assert(std::size(Objs) == XMT_KEYS && XmtCountWords(ObjKeys) + 1 == XMT_KEYS);

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

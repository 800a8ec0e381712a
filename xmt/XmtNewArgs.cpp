// Arguments of objects: read into resources, sorted for compounds, read back.
#include "xmt/XmtNewArgs.h"

#include "common/MemMgr.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtMacro.h"
#include "xmt/XmtPixmap.h"
#include "xmt/XmtScale.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtToken.h"
#include "xmt/XmtValue.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <iterator>

int flHideObject;
int flDefaultTabGroup;
int flNoTraversal;
XtTranslations XmtDummyKeyXlations;

enum { ARG_MACRO_DEPTH = 20, ARG_MACROS = 200 };
static int MacroDepth; // uses ".N" within the body of another
static int MacrosLeft; // of the object in hand

// ---- the record

void XmtAddArg(XmtInfo *info, const char *resource, XtArgVal value) {
    Arg *arg = info->args, *end = arg + info->argCount;
    while (arg < end && strcmp(arg->name, resource) != 0) arg++;
    if (arg == info->args + XMT_ARGS) return;
    XtSetArg(*arg, const_cast<char *>(resource), value);
    if (arg == end) info->argCount++;
}

void XmtClearInfo(XmtInfo *info) {
    int8_t type = info->type;
    PutMem(info->list);
    PutMem(info->icon);
    PutMem(info->format);
    for (char *slot : info->slots) PutMem(slot);
    if (info->labelString) XmStringFree(info->labelString);
    if (info->acceleratorString) XmStringFree(info->acceleratorString);
    *info = XmtInfo();
    info->type = type;
}

// A managed text of the record takes the place of the one before it.
static void SetInfoText(char **field, const char *text) {
    PutMem(*field);
    *field = text ? SaveStr_(text) : nullptr;
}

// A compound string of the record as a resource. What the list held of the string before it follows.
static void AddString(XmtInfo *info, XmString *field, const char *resource, const char *text) {
    XmString string = XmStringCreateLocalized(const_cast<char *>(text));
    for (int i = 0; *field && i < info->argCount; i++)
        if (info->args[i].value == reinterpret_cast<XtArgVal>(*field))
            info->args[i].value = reinterpret_cast<XtArgVal>(string);
    XmtAddArg(info, resource, reinterpret_cast<XtArgVal>(string));
    if (*field) XmStringFree(*field);
    *field = string;
}

// ---- readers of one argument; the cursor stands behind its letters

static void ReadNumber(XmtInfo *info, const XmtArgRow *row) {
    XmtAddArg(info, row->resource, GetNumber());
    if (row->second) XmtAddArg(info, row->second, GetNumber());
}

static void ReadPixels(XmtInfo *info, const XmtArgRow *row) {
    XmtAddArg(info, row->resource, XmtScaled(GetNumber()));
    if (row->second) XmtAddArg(info, row->second, XmtScaled(GetNumber()));
}

static bool ReadTruth() {
    std::string value;
    GetValue(&value);
    return value[0] == 'T';
}

static void ReadFlag(XmtInfo *info, const XmtArgRow *row) {
    XmtAddArg(info, row->resource, ReadTruth());
    if (row->second) XmtAddArg(info, row->second, ReadTruth());
}

static void ReadLetter(XmtInfo *info, const XmtArgRow *row) {
    std::string value;
    GetValue(&value);
    for (const char *letter = row->second; *letter; letter += 2)
        if (value[0] == *letter) XmtAddArg(info, row->resource, letter[1] - '0');
}

static void ReadFont(XmtInfo *info, const XmtArgRow *row) {
    std::string name;
    GetValue(&name);
    XmFontList font = XmtGetFontList(name.c_str());
    if (!font) font = XmtGetFontList("fixed");
    if (font) XmtAddArg(info, row->resource, reinterpret_cast<XtArgVal>(font));
}

// .N
static void ReadMacro(XmtInfo *info) {
    int number = GetNumber();
    const char *body = number >= 0 && number < XMT_MACROS ? Macro[number] : nullptr;
    if (!body || MacroDepth == ARG_MACRO_DEPTH || MacrosLeft <= 0) return;
    MacrosLeft--;
    MacroDepth++;
    XmtCursor cursor(body);
    XmtFillInfo(info, XMT_FILL_NESTED);
    MacroDepth--;
}

// k(text)
static void ReadKeys(XmtInfo *info) {
    std::string value;
    GetValue(&value);
    info->keys += value;
}

// L(a,b)
static void ReadList(XmtInfo *info) {
    PutMem(info->list);
    GetSavedValues(&info->list);
}

// i(text)
static void ReadIcon(XmtInfo *info) {
    PutMem(info->icon);
    GetSavedValues(&info->icon);
}

// f(format)
static void ReadFormat(XmtInfo *info) {
    std::string format;
    GetValues(&format);
    if (!format.empty()) SetInfoText(&info->format, format.c_str());
}

// A(spec,spec)
static void ReadAttachments(XmtInfo *info) {
    pNewDesc = AttachObject(info, pNewDesc + (*pNewDesc == '('));
}

// c(key value,key value)
static void ReadColours(XmtInfo *info) {
    pNewDesc = FillColor(info, pNewDesc + (*pNewDesc == '('));
}

// a(l), a(c), a(r)
static void ReadAlignment(XmtInfo *info) {
    static const char letters[] = "lcr";
    std::string value;
    GetValue(&value);
    const char *letter = value.empty() ? nullptr : strchr(letters, value[0]);
    if (!letter) return;
    XmtAddArg(info, "packing", XmPACK_COLUMN);
    XmtAddArg(info, "isAligned", 1);
    XmtAddArg(info, "entryAlignment", letter - letters);
    XmtAddArg(info, "alignment", letter - letters);
}

// t(text)
static void ReadText(XmtInfo *info) {
    GetValues(&info->text);
    if (info->type == XmtText || info->type == XmtPasswd)
        XmtAddArg(info, "value", reinterpret_cast<XtArgVal>(info->text.c_str()));
    if (info->type == XmtDataEntryDialog)
        AddString(info, &info->labelString, "textString", info->text.c_str());
}

// s(w,h): pixels, of text objects columns and rows
static void ReadSize(XmtInfo *info) {
    info->width = GetNumber();
    info->height = GetNumber();
    if (info->type == XmtText || info->type == XmtPasswd) {
        int rows = info->type == XmtText ? info->height : 1;
        XmtAddArg(info, "columns", info->width);
        XmtAddArg(info, "rows", rows);
        XmtAddArg(info, "navigationType", XmEXCLUSIVE_TAB_GROUP);
        if (rows > 1) XmtAddArg(info, "editMode", XmMULTI_LINE_EDIT);
        return;
    }
    info->width = XmtScaled(info->width);
    info->height = XmtScaled(info->height);
    if (info->width > -1) XmtAddArg(info, "width", info->width);
    if (info->height > -1) XmtAddArg(info, "height", info->height);
}

// P(name)
static void ReadParent(XmtInfo *info) {
    std::string name;
    GetValue(&name);
    info->parent = name.empty() ? nullptr : XmtGetWidget(name.c_str());
}

// l(text,accelerator text,accelerator), l(@file,colours)
static void ReadLabel(XmtInfo *info, int mode) {
    if (mode & XMT_FILL_RAW_LABEL) return GetValue(&info->label);
    pNewDesc = XmtGetArgLabel(nullptr, info, pNewDesc + (*pNewDesc == '('));
}

// id(n); 0 means the number that the counter has now
static void ReadId(XmtInfo *info) {
    int number = GetNumber();
    SpecifiedAppCBValue = info->id = number ? number : AppCBValue;
}

// ts(name)
static void ReadSource(XmtInfo *info) {
    std::string name;
    GetValue(&name);
    Widget widget = name.empty() ? nullptr : XmtGetWidget(name.c_str());
    if (widget && XmIsText(widget))
        XmtAddArg(info, "source", reinterpret_cast<XtArgVal>(XmTextGetSource(widget)));
}

// The text of a group up to its '>', with the digit in front of it as the slot's number.
static int ReadGroup(std::string *text, const char *position, const char **end) {
    int slot = isdigit(static_cast<unsigned char>(*position)) ? *position - '0' : 0;
    if (*position) position++;
    const char *in = position;
    for (; *in && *in != '>'; in++)
        if (*in == '\\' && in[1]) in++;
    text->assign(position, in);
    *end = in;
    return slot;
}

// <n text>; the '>' stays, a token without an effect. Group 0 is read on as plain arguments.
static void ReadSlot(XmtInfo *info) {
    std::string text;
    const char *end;
    int slot = ReadGroup(&text, pNewDesc, &end);
    if (slot == 0) {
        pNewDesc += *pNewDesc != '\0';
        return;
    }
    SetInfoText(&info->slots[slot], text.c_str());
    pNewDesc = end;
}

// ---- the argument tables

constexpr char SingleCharArgs[] = ".kLlfVAHhvcaotsmxypPM<{};Ti";
static const char SingleCharArgs2[] = "spld"; // a letter goes on in front of one of these

static constexpr XmtArgRow SingleRows[] = {
    {".", XMT_ARG_MACRO, nullptr, nullptr},
    {"k", XMT_ARG_KEYS, nullptr, nullptr},
    {"L", XMT_ARG_LIST, nullptr, nullptr},
    {"l", XMT_ARG_LABEL, nullptr, nullptr},
    {"f", XMT_ARG_FORMAT, nullptr, nullptr},
    {"V", XMT_ARG_NUMBER, "visibleItemCount", nullptr},
    {"A", XMT_ARG_ATTACHMENTS, nullptr, nullptr},
    {"H", XMT_ARG_HIDE, nullptr, nullptr},
    {"h", XMT_ARG_HORIZONTAL, "orientation", nullptr},
    {"v", XMT_ARG_VERTICAL, "orientation", nullptr},
    {"c", XMT_ARG_COLOURS, nullptr, nullptr},
    {"a", XMT_ARG_ALIGNMENT, nullptr, nullptr},
    {"o", XMT_ARG_FLAG, "allowOverlap", nullptr},
    {"t", XMT_ARG_TEXT, nullptr, nullptr},
    {"s", XMT_ARG_SIZE, nullptr, nullptr},
    {"m", XMT_ARG_PIXELS, "marginWidth", "marginHeight"},
    {"x", XMT_ARG_PIXELS, "x", nullptr},
    {"y", XMT_ARG_PIXELS, "y", nullptr},
    {"p", XMT_ARG_PIXELS, "x", "y"},
    {"P", XMT_ARG_PARENT, nullptr, nullptr},
    {"M", XMT_ARG_LETTER, "dialogStyle", "s3a1f2n0"},
    {"<", XMT_ARG_GROUP, nullptr, nullptr},
    {"{", XMT_ARG_END, nullptr, nullptr},
    {"}", XMT_ARG_END, nullptr, nullptr},
    {";", XMT_ARG_END, nullptr, nullptr},
    {"T", XMT_ARG_TITLE, nullptr, nullptr},
    {"i", XMT_ARG_ICON, nullptr, nullptr},
};
static_assert(std::size(SingleRows) == std::size(SingleCharArgs) - 1);
static_assert(XmtMisplacedLetter(SingleRows, SingleCharArgs) == XMT_IN_PLACE,
              "a row of SingleRows stands elsewhere than its letter in SingleCharArgs");

static constexpr char CompoundArgs[] =
    ",CB,bo,be,Fd,Fb,Fl,Ft,F_,ts,id,sp,ml,Ssp,Ss,Sr,Sw,Se,Sc,Sp,St,Sh,no,Dt,Srp,Vp,";

static constexpr XmtArgRow CompoundRows[] = {
    {"CB", XMT_ARG_CALLBACKS, nullptr, nullptr},
    {"bo", XMT_ARG_PIXELS, "borderWidth", nullptr},
    {"be", XMT_ARG_PIXELS, "entryBorder", nullptr},
    {"Fd", XMT_ARG_FONT, "defaultFontList", nullptr},
    {"Fb", XMT_ARG_FONT, "buttonFontList", nullptr},
    {"Fl", XMT_ARG_FONT, "labelFontList", nullptr},
    {"Ft", XMT_ARG_FONT, "textFontList", nullptr},
    {"F_", XMT_ARG_FONT, "fontList", nullptr},
    {"ts", XMT_ARG_SOURCE, nullptr, nullptr},
    {"id", XMT_ARG_ID, nullptr, nullptr},
    {"sp", XMT_ARG_PIXELS, "spacing", nullptr},
    {"ml", XMT_ARG_NUMBER, "maxLength", nullptr},
    {"Ssp", XMT_ARG_LETTER, "scrollingPolicy", "a0c1d1"},
    {"Ss", XMT_ARG_FLAG, "scrollVertical", "scrollHorizontal"},
    {"Sr", XMT_ARG_FLAG, "resizeWidth", "resizeHeight"},
    {"Sw", XMT_ARG_FLAG, "wordWrap", nullptr},
    {"Se", XMT_ARG_FLAG, "editable", nullptr},
    {"Sc", XMT_ARG_FLAG, "cursorPositionVisible", nullptr},
    {"Sp", XMT_ARG_LETTER, "selectionPolicy", "s0b3m1e2"},
    {"St", XMT_ARG_FLAG, "traversalOn", nullptr},
    {"Sh", XMT_ARG_PIXELS, "shadowThickness", nullptr},
    {"no", XMT_ARG_REMOVED, nullptr, nullptr},
    {"Dt", XMT_ARG_DIALOG_TYPE, nullptr, nullptr},
    {"Srp", XMT_ARG_LETTER, "resizePolicy", "a2n0g1"},
    {"Vp", XMT_ARG_LETTER, "visualPolicy", "c1v0"},
};
static_assert(std::size(CompoundRows) == XmtCountWords(CompoundArgs));
static_assert(XmtMisplacedRow(CompoundRows, CompoundArgs, 0) == XMT_IN_PLACE,
              "a row of CompoundRows stands elsewhere than its key in CompoundArgs");

const XmtArgRow *XmtFindArg(const char *token) {
    if (!token[0]) return nullptr;
    if (!token[1]) {
        const char *single = strchr(SingleCharArgs, token[0]);
        return single ? &SingleRows[single - SingleCharArgs] : nullptr;
    }
    int n = XmtFindToken(token, CompoundArgs);
    return n ? &CompoundRows[n - 1] : nullptr;
}

// ---- XmtFillInfo

static bool IsOneOf(char ch, const char *set) {
    return ch && strchr(set, ch);
}

const char *XmtGetArgToken(std::string *out, const char *position) {
    const char *start = position;
    while (*position && !XmtIsSpace(*position) && *position != '(') {
        bool flSingle = IsOneOf(*position++, SingleCharArgs);
        if (flSingle && !IsOneOf(*position, SingleCharArgs2)) break;
    }
    out->assign(start, position);
    return position;
}

// What no reader took of a parenthesis, an unknown argument's first of all.
static void SkipTail() {
    std::string rest;
    if (*pNewDesc != '(') return;
    pNewDesc = GetArgValues(&rest, pNewDesc);
    if (*pNewDesc) pNewDesc++;
}

static void ReadArgument(XmtInfo *info, const XmtArgRow *row, int mode) {
    switch (row->kind) {
    case XMT_ARG_NOTHING:
    case XMT_ARG_END: break;
    case XMT_ARG_NUMBER: ReadNumber(info, row); break;
    case XMT_ARG_PIXELS: ReadPixels(info, row); break;
    case XMT_ARG_FLAG: ReadFlag(info, row); break;
    case XMT_ARG_LETTER: ReadLetter(info, row); break;
    case XMT_ARG_FONT: ReadFont(info, row); break;
    case XMT_ARG_HORIZONTAL: XmtAddArg(info, row->resource, XmHORIZONTAL); break;
    case XMT_ARG_VERTICAL: XmtAddArg(info, row->resource, XmVERTICAL); break;
    case XMT_ARG_MACRO: ReadMacro(info); break;
    case XMT_ARG_KEYS: ReadKeys(info); break;
    case XMT_ARG_LIST: ReadList(info); break;
    case XMT_ARG_LABEL: ReadLabel(info, mode); break;
    case XMT_ARG_FORMAT: ReadFormat(info); break;
    case XMT_ARG_ATTACHMENTS: ReadAttachments(info); break;
    case XMT_ARG_HIDE: flHideObject = 1; break;
    case XMT_ARG_COLOURS: ReadColours(info); break;
    case XMT_ARG_ALIGNMENT: ReadAlignment(info); break;
    case XMT_ARG_TEXT: ReadText(info); break;
    case XMT_ARG_SIZE: ReadSize(info); break;
    case XMT_ARG_PARENT: ReadParent(info); break;
    case XMT_ARG_GROUP: ReadSlot(info); break;
    case XMT_ARG_TITLE: GetValues(&info->title); break;
    case XMT_ARG_ICON: ReadIcon(info); break;
    case XMT_ARG_CALLBACKS: GetValues(&info->callbacks); break;
    case XMT_ARG_SOURCE: ReadSource(info); break;
    case XMT_ARG_ID: ReadId(info); break;
    case XMT_ARG_REMOVED: GetValues(&info->no); break;
    case XMT_ARG_DIALOG_TYPE: GetValue(&info->dialogType); break;
    }
}

static void ReadArguments(XmtInfo *info, int mode) {
    std::string token;
    while (*(pNewDesc = XmtSkipSpace(pNewDesc))) {
        pNewDesc = XmtGetArgToken(&token, pNewDesc);
        if (token == ";") return;
        if (token == "{" || token == "}") {
            pNewDesc--;
            return;
        }
        const XmtArgRow *row = XmtFindArg(token.c_str());
        if (row) ReadArgument(info, row, mode);
        SkipTail();
    }
}

static void DummyKeyHandler(Widget, XEvent *, String *, Cardinal *) {}

static void MakeDummyTranslations() {
    static char name[] = "DummyKeyHandler";
    static XtActionsRec actions[] = {{name, DummyKeyHandler}};
    if (XmtDummyKeyXlations || !AppContext) return;
    XtAppAddActions(AppContext, actions, 1);
    XmtDummyKeyXlations =
        XtParseTranslationTable("#replace\n<KeyDown>: DummyKeyHandler()\n<KeyUp>: DummyKeyHandler()\n");
}

static void AddTraversal(XmtInfo *info, int mode) {
    if (!flDefaultTabGroup) XmtAddArg(info, "navigationType", XmEXCLUSIVE_TAB_GROUP);
    if (!flNoTraversal || mode & XMT_FILL_NO_TRAVERSAL) return;
    XmtAddArg(info, "navigationType", XmNONE);
    XmtAddArg(info, "traversalOn", 0);
    MakeDummyTranslations();
}

// Texts of the record may have moved since they became resources.
static void RenewTexts(XmtInfo *info) {
    for (int i = 0; i < info->argCount; i++) {
        const char *resource = info->args[i].name;
        if (strcmp(resource, "value") == 0)
            info->args[i].value = reinterpret_cast<XtArgVal>(info->text.c_str());
        else if (strcmp(resource, "accelerator") == 0)
            info->args[i].value = reinterpret_cast<XtArgVal>(info->keys.c_str());
    }
}

void XmtFillInfo(XmtInfo *info, int mode) {
    if (!(mode & XMT_FILL_NESTED)) {
        if (!(mode & XMT_FILL_KEEP)) XmtClearInfo(info);
        flHideObject = 0;
        pNewDesc = GetWord(&info->name, pNewDesc);
    }
    if (MacroDepth == 0) MacrosLeft = ARG_MACROS;
    AddTraversal(info, mode);
    ReadArguments(info, mode);
    RenewTexts(info);
}

// ---- colours

// key colour
static void AddColour(XmtInfo *info, const char *item) {
    Pixel pixel;
    const XmtColourKey *row = XmtReadColour(item, &pixel);
    if (!row) return;
    XmtAddArg(info, row->resource, static_cast<XtArgVal>(pixel));
    info->colours[row->place] = pixel;
}

// Runs add over the items up to the ')', which is not consumed.
static const char *ReadItems(XmtInfo *info, const char *position, void (*add)(XmtInfo *, const char *)) {
    std::string item;
    for (;; position++) {
        position = GetArgValue(&item, position);
        add(info, item.c_str());
        if (*position != ',') return position;
    }
}

static const char *ReadColourItems(XmtInfo *info, const char *position) {
    flNewColorSet = 1;
    return ReadItems(info, position, AddColour);
}

const char *FillColor(XmtInfo *info, const char *position) {
    position = ReadColourItems(info, position);
    return *position ? position + 1 : position;
}

// ---- labels

static Pixmap LoadPixmap(const XmtInfo *info, const char *file) {
    if (!AppScreen) return XmUNSPECIFIED_PIXMAP;
    std::string path = IconPath && *file != '\\' ? std::string(IconPath) + '/' + file : file;
    Pixel front = info->colours[XMT_FG], back = info->colours[XMT_BG];
    Pixmap pixmap = XmGetPixmap(AppScreen, path.data(), front, back);
    if (pixmap == XmUNSPECIFIED_PIXMAP)
        pixmap = XmGetPixmap(AppScreen, path.insert(0, "F").data(), front, back);
    return pixmap == XmUNSPECIFIED_PIXMAP ? pixmap : XmtScalePixmap(pixmap);
}

// XmUNSPECIFIED_PIXMAP if there is none. What is found is kept under the file's name, in its first colours.
static Pixmap FindPixmap(const XmtInfo *info, const char *file) {
    if (!*file) return XmUNSPECIFIED_PIXMAP;
    auto image = static_cast<ImageRecord *>(FindHashNode(XmtPixmaps, HashText(file)));
    if (!image) image = XmtNewImage(file);
    if (image && image->Pixmap) return image->Pixmap;
    ImageRecord record = {nullptr, LoadPixmap(info, file)};
    if (record.Pixmap != XmUNSPECIFIED_PIXMAP)
        PushHashNode(XmtPixmaps, HashText(file), &record, sizeof record);
    return record.Pixmap;
}

// The text without its marks: each '~' makes the character before it the mnemonic, backslashes go.
static std::string StripMarks(const std::string &text, unsigned char *mnemonic) {
    std::string label;
    for (char ch : text) {
        if (ch == '~' && !label.empty()) *mnemonic = static_cast<unsigned char>(label.back());
        if (ch != '~' && ch != '\\') label += ch;
    }
    return label;
}

// text,accelerator text,accelerator: what follows the text
static const char *ReadAccelerator(XmtInfo *info, const char *position) {
    if (*position != ',') return position;
    position = GetArgValue(&info->text, position + 1);
    AddString(info, &info->acceleratorString, "acceleratorText", info->text.c_str());
    if (*position != ',') return position;
    position = GetArgValue(&info->keys, position + 1);
    XmtAddArg(info, "accelerator", reinterpret_cast<XtArgVal>(info->keys.c_str()));
    return position;
}

static const char *ReadTextLabel(XmtInfo *info, const std::string &text, const char *position) {
    unsigned char mnemonic = '\0';
    info->label = StripMarks(text, &mnemonic);
    XmtAddArg(info, "labelType", XmSTRING);
    AddString(info, &info->labelString, "labelString", info->label.c_str());
    if (mnemonic) XmtAddArg(info, "mnemonic", mnemonic);
    return ReadAccelerator(info, position);
}

// The colours are read even where the picture is there already: the label's own are then those of the others.
static const char *ReadPixmapLabel(XmtInfo *info, const char *file, const char *position) {
    if (*position == ',') position = ReadColourItems(info, position + 1);
    Pixmap pixmap = FindPixmap(info, file);
    if (pixmap == XmUNSPECIFIED_PIXMAP) return ReadTextLabel(info, file, position);
    info->label = file;
    XmtAddArg(info, "labelType", XmPIXMAP);
    XmtAddArg(info, "labelPixmap", static_cast<XtArgVal>(pixmap));
    return position;
}

const char *XmtGetArgLabel(const char *, XmtInfo *info, const char *position) {
    std::string label;
    position = GetArgValue(&label, position);
    if (label[0] == '@')
        position = ReadPixmapLabel(info, label.c_str() + 1, position);
    else
        position = ReadTextLabel(info, label, position);
    return *position == ')' ? position + 1 : position;
}

// ---- attachments

static constexpr struct AttachSide {
    char letter;
    const char *attachment, *widget, *offset, *position;
} AttachSides[] = {
    {'t', "topAttachment", "topWidget", "topOffset", "topPosition"},
    {'b', "bottomAttachment", "bottomWidget", "bottomOffset", "bottomPosition"},
    {'l', "leftAttachment", "leftWidget", "leftOffset", "leftPosition"},
    {'r', "rightAttachment", "rightWidget", "rightOffset", "rightPosition"},
};

static bool flAttachPosition; // numbers of the list in hand are positions from here on

// The attachment that the letters at *item mean, -1 for none; *item moves behind them.
static int ReadAttachment(const char **item) {
    char ch = **item;
    bool flOpposite = ch && (*item)[1] == 'o';
    *item += ch != '\0';
    switch (ch) {
    case 'n': return XmATTACH_NONE;
    case 'p': flAttachPosition = true; return XmATTACH_POSITION;
    case 's': return XmATTACH_SELF;
    case 'f': *item += flOpposite; return flOpposite ? XmATTACH_OPPOSITE_FORM : XmATTACH_FORM;
    case 'w': *item += flOpposite; return flOpposite ? XmATTACH_OPPOSITE_WIDGET : XmATTACH_WIDGET;
    default: return -1; // nothing that attaches
    }
}

// side letter, attachment letter, of 'w' a name, a number
static void AddAttachment(XmtInfo *info, const char *item) {
    const AttachSide *side = AttachSides, *end = std::end(AttachSides);
    item = XmtSkipSpace(item);
    while (side < end && side->letter != *item) side++;
    if (side == end) return;
    item = XmtSkipSpace(item + 1);
    int attachment = ReadAttachment(&item);
    if (attachment < 0) return;
    XmtAddArg(info, side->attachment, attachment);
    if (attachment == XmATTACH_WIDGET || attachment == XmATTACH_OPPOSITE_WIDGET) {
        std::string name;
        item = GetWord(&name, item);
        Widget widget = name.empty() ? nullptr : XmtGetWidget(name.c_str());
        if (!widget) return;
        XmtAddArg(info, side->widget, reinterpret_cast<XtArgVal>(widget));
    }
    int number = atoi(item);
    if (number && flAttachPosition) XmtAddArg(info, side->position, number);
    if (number && !flAttachPosition) XmtAddArg(info, side->offset, XmtScaled(number));
}

const char *AttachObject(XmtInfo *info, const char *position) {
    flAttachPosition = false;
    position = ReadItems(info, position, AddAttachment);
    return *position ? position + 1 : position;
}

// ---- compounds

// Copies to the general text up to and with the next ')'.
static void CollectThrough(XmtInfo *info) {
    const char *end = strchr(pNewDesc, ')');
    end = end ? end + 1 : pNewDesc + strlen(pNewDesc);
    info->text.append(pNewDesc, end);
    pNewDesc = end;
}

// <n text>: the character behind the digit becomes a blank.
static void CollectGroup(XmtInfo *info) {
    std::string text;
    int slot = ReadGroup(&text, pNewDesc + 1, &pNewDesc);
    if (!text.empty()) text[0] = ' ';
    if (slot == 0)
        info->text += text;
    else
        SetInfoText(&info->slots[slot], text.c_str());
    if (*pNewDesc) pNewDesc++;
}

// l(...), L(...) or f(...), which leave the general text.
static void CollectPart(XmtInfo *info, char letter) {
    std::string text;
    pNewDesc = letter == 'l' ? GetArgValue(&info->label, pNewDesc + 1) : GetArgValues(&text, pNewDesc + 1);
    if (letter == 'L') SetInfoText(&info->list, text.c_str());
    if (letter == 'f') SetInfoText(&info->format, text.c_str());
    if (*pNewDesc) pNewDesc++;
}

static void CollectOne(XmtInfo *info, char ch) {
    switch (ch) {
    case '<': CollectGroup(info); break;
    case 'F':
    case 'm': CollectThrough(info); break;
    case 'l':
    case 'L':
    case 'f':
        if (pNewDesc[1] == '(') {
            CollectPart(info, ch);
            break;
        }
        [[fallthrough]];
    default:
        if (ch == '\\' && pNewDesc[1]) info->text += *pNewDesc++;
        info->text += *pNewDesc++;
    }
}

void XmtFillInfoDesc(XmtInfo *info) {
    XmtClearInfo(info);
    flHideObject = 0;
    pNewDesc = GetWord(&info->name, pNewDesc);
    while (*pNewDesc && *pNewDesc != ';' && *pNewDesc != '{') CollectOne(info, *pNewDesc);
    if (!*pNewDesc) return;
    SetInfoText(&info->slots[0], info->text.c_str());
    info->text.clear();
    if (*pNewDesc == ';') pNewDesc++;
}

static std::string SlotText(const XmtInfo *info, int slot) {
    return slot < XMT_SLOTS && info->slots[slot] ? std::string(" ") + info->slots[slot] : "";
}

std::string GenDesc(const XmtInfo *info, int flags, const char *prefix) {
    std::string text;
    int slot = flags & GEN_SLOT;
    if (flags & GEN_NAME) text += info->name;
    if (prefix) text += prefix;
    if (flags & GEN_LABEL) text += " l(" + info->label + ")";
    text += SlotText(info, 0);
    if (slot) text += SlotText(info, slot);
    if (flags & GEN_LIST && info->list) text += std::string(" L(") + info->list + ")";
    if (flags & GEN_FORMAT && info->format) text += std::string(" f(") + info->format + ")";
    return text;
}

// ---- reading back

struct GetList {
    XmtInfo *info;
    XtArgVal *values;
};

// The n-th resource of the list goes into the n-th value, also if the same one was asked for before.
static void AskFor(GetList *list, const char *resource) {
    XmtInfo *info = list->info;
    if (!resource || info->argCount == XMT_ARGS) return;
    int n = info->argCount++;
    XtSetArg(info->args[n], const_cast<char *>(resource), reinterpret_cast<XtArgVal>(&list->values[n]));
}

static constexpr struct {
    char letter;
    const char *first, *second;
} GetRows[] = {
    {'l', "labelString", nullptr},
    {'s', "columns", "rows"},
    {'m', "marginWidth", "marginHeight"},
    {'p', "x", "y"},
    {'S', "scrollVertical", "scrollHorizontal"},
    {'V', "visibleItemCount", nullptr},
    {'r', "resizeWidth", "resizeHeight"},
    {'h', "orientation", nullptr},
    {'v', "orientation", nullptr},
    {'o', "allowOverlap", nullptr},
};

static void AskForLetter(GetList *list, char letter) {
    bool flText = list->info->type == XmtText || list->info->type == XmtPasswd;
    if (letter == 't' && flText) AskFor(list, "value");
    for (const auto &row : GetRows) {
        if (row.letter != letter) continue;
        AskFor(list, row.first);
        AskFor(list, row.second);
    }
}

static void AskForSide(GetList *list, const char *item) {
    for (const AttachSide &side : AttachSides)
        if (side.letter == *item) AskFor(list, side.attachment);
}

static void AskForColour(GetList *list, const char *item) {
    static const char keys[] = ",bg,fg,hi,bo,st,sb,";
    std::string key(item, strnlen(item, 2));
    const XmtColourKey *row = XmtFindColourKey(item);
    if (row && XmtFindToken(key.c_str(), keys)) AskFor(list, row->resource);
}

// letter(a,b): each value of the parenthesis behind A or c is asked for; of other letters it is skipped.
static const char *AskForList(GetList *list, char letter, const char *position) {
    std::string item;
    for (;; position++) {
        position = GetArgValue(&item, position);
        const char *start = XmtSkipSpace(item.c_str());
        if (letter == 'A') AskForSide(list, start);
        if (letter == 'c') AskForColour(list, start);
        if (*position != ',') break;
    }
    return *position ? position + 1 : position;
}

void XmtGetInfo(XmtInfo *info, const char *description, XtArgVal *values) {
    XmtClearInfo(info);
    GetList list = {info, values};
    description = GetWord(&info->name, description);
    XmtObjectData *object = info->name.empty() ? nullptr : XmtFindObject(info->name.c_str());
    if (object) info->type = static_cast<int8_t>(object->type);
    while (*description && *description != ';') {
        char letter = *description++;
        if (*description == '(')
            description = AskForList(&list, letter, description);
        else
            AskForLetter(&list, letter);
    }
}

XtArgVal XmtGetArgs(const char *description, XtArgVal *values) {
    XmtInfo info;
    XmtGetInfo(&info, description, values);
    for (int i = 0; i < info.argCount; i++) values[i] = XmtGetXmValue(info.name.c_str(), info.args[i].name);
    XtArgVal first = info.argCount ? values[0] : 0;
    XmtClearInfo(&info);
    return first;
}

// The list of printers.
#include "prndeck/gui/PrdGuiList.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdGuiSnmpText.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "xmt/XmtCallback.h"
#include "xmt/XmtGrow.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtScale.h"
#include "xmt/XmtUtils.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <iterator>

enum { LIST_TITLE = 10, LIST_COLUMNS = 5 };
enum { LIST_INDENT = 3 };    // pixels that a list's frame shifts its rows against the title
enum { BANNER_PLAIN = 250 }; // a column of the banner between name and stripes, where all look alike

// ORDER FIELD_
constexpr int aFieldSize[FIELD_COUNT] = {24, 24, 15, 17, 50};

int DisplayStyle = DISPLAY_DEFAULT;

// ---- Columns

struct ListColumn {
    int bit; // of the display style
    int field;
};

// From left to right, as their titles follow each other in the catalogue.
static constexpr ListColumn Columns[] = {
    {DISPLAY_NAME, FIELD_NAME},
    {DISPLAY_HOST, FIELD_HOST},
    {DISPLAY_ADDRESS, FIELD_ADDRESS},
    {DISPLAY_HWADR, FIELD_HWADR},
    {DISPLAY_DESCRIPTION, FIELD_DESCRIPTION},
};
static_assert(std::size(Columns) == LIST_COLUMNS);

// What a line is filled up to with blanks, less the widths of the columns shown.
static constexpr int TitleWidth =
    aFieldSize[FIELD_NAME] + aFieldSize[FIELD_ADDRESS] + aFieldSize[FIELD_DESCRIPTION] + 9;
static constexpr int EntryWidth = aFieldSize[FIELD_HOST] + aFieldSize[FIELD_NAME] + aFieldSize[FIELD_HWADR];

static bool TestColumn(const ListColumn &column) {
    if (column.bit == DISPLAY_HOST && DisplayStyle & DISPLAY_NAME) return false;
    return DisplayStyle & column.bit;
}

// A blank, padded to the rest; a negative rest counts by its magnitude.
static void PadListLine(std::string *out, int rest) {
    out->append(static_cast<size_t>(std::max(1, std::abs(rest))), ' ');
}

static const char *GetListTitle(size_t column) {
    static char *apTitle[LIST_COLUMNS];
    if (apTitle[column]) return apTitle[column];
    for (int i = 0; i < LIST_COLUMNS; i++)
        apTitle[i] = SaveStr_(NlsText(pDrvCoreDB, SET_MESSAGES, LIST_TITLE + i).c_str());
    return apTitle[column];
}

std::string GenListTitle() {
    std::string out;
    int used = 0;
    for (size_t i = 0; i < std::size(Columns); i++) {
        if (!TestColumn(Columns[i])) continue;
        std::string title = GetListTitle(i);
        int width = aFieldSize[Columns[i].field];
        title.resize(std::max(title.size(), static_cast<size_t>(width)), ' ');
        out += title + "   ";
        used += width;
    }
    PadListLine(&out, TitleWidth - used);
    return out;
}

bool TestControl(char ch) {
    auto code = static_cast<unsigned char>(ch);
    return iscntrl(code) || (code >= 0x80 && code < 0xA0);
}

// A row is one line, whatever a printer puts into its texts.
void AppendToListEntry(std::string *out, int width, const char *text) {
    static constexpr char Cut[] = "...";
    std::string field = GetPrinterText(text);
    std::replace_if(field.begin(), field.end(), TestControl, ' ');
    size_t room = static_cast<size_t>(width);
    if (field.size() > room) field = field.substr(0, room - strlen(Cut)) + Cut;
    field.resize(room, ' ');
    *out += field + "   ";
}

static const char *GetListField(int index, int field) {
    const PrnEntry *entry = GetPrnEntry(index);
    switch (field) {
    case FIELD_HOST: return entry->HostName;
    case FIELD_NAME: GetSysName(index); return entry->Name;
    case FIELD_ADDRESS: return entry->Address;
    case FIELD_HWADR: GetHwAdr(index); return entry->HwAddress;
    default: return entry->Description;
    }
}

std::string GenListEntry(int index) {
    std::string out;
    if (!GetPrnEntry(index)) return out;
    int used = 0;
    for (const ListColumn &column : Columns) {
        if (!TestColumn(column)) continue;
        AppendToListEntry(&out, aFieldSize[column.field], GetListField(index, column.field));
        used += aFieldSize[column.field];
    }
    PadListLine(&out, EntryWidth - used);
    return out;
}

void AlignListTitle(const char *label) {
    XmtSetXmValue(label, XmNmarginLeft, XmtScaled(LIST_INDENT));
}

void PrepareMainWindow() {
    // F1 climbs from the focus to the first window that hears of it: the dialogs belong to this one.
    if (XmtObjectData *window = XmtFindObject("prndeck")) XmtConnect(window, XmNhelpCallback);
    XmtAddMenuKeys(MENU_BAR);
    XmtLetGrow("w2");
    XmtLetListGrow("scrolList");
    XmtStretchPicture("LogoBanner", BANNER_PLAIN);
    XmtScrollTitle("scrolList", "scrolList_L");
    AlignListTitle("scrolList_L");
    SetupPrnListDisplay();
}

// Without the blanks that fill its last column: nobody needs to scroll to those.
static std::string ListRow(int index) {
    std::string row = GenListEntry(index);
    return row.substr(0, row.find_last_not_of(' ') + 1);
}

void SetupPrnListDisplay() {
    if (DisplayStyle == 0) DisplayStyle = DISPLAY_DEFAULT;
    XmtSetLabelRaw("scrolList_L", GenListTitle().c_str());
    XmtDeleteAllListItems("scrolList");
    for (int i = 0; i < DevCount; i++) XmtAddListItem("scrolList", ListRow(i).c_str(), i + 1);
}

// Motif would select every new row that reads like the selected one.
void UpdatePrListDisplay() {
    if (DisplayStyle == 0) DisplayStyle = DISPLAY_ALL;
    XmtSetLabelRaw("scrolList_L", GenListTitle().c_str());
    XmtClearAllListItems("scrolList");
    for (int i = 0; i < DevCount; i++) XmtReplaceListItem("scrolList", ListRow(i).c_str(), i + 1);
    if (Widget list = XmtGetWidget("scrolList"); list && GetPrnEntry(Cur_Product_Index))
        XmListSelectPos(list, Cur_Product_Index + 1, 0);
}

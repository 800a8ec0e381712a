// The printer list of the main window, and the panel of the selected printer.
#include "prndeck/gui/PrdGui.h"

#include "SnmpPkg/Pkg.h"
#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtUtils.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

enum { LIST_SET = 20, LIST_TITLE = 10, LIST_COLUMNS = 5, LIST_READ_FAILED = 88 };
enum { PANEL_WIDTH = 75 }; // characters of a line in the panel

// ORDER FIELD_
constexpr int aFieldSize[FIELD_COUNT] = {24, 24, 15, 17, 50};

int DisplayStyle = DISPLAY_DEFAULT;
int DisStyle;

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
        apTitle[i] = SaveStr_(NlsText(pDrvCoreDB, LIST_SET, LIST_TITLE + i).c_str());
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

// A row is one line, whatever a printer puts into its texts.
void AppendToListEntry(std::string *out, int width, const char *text) {
    static constexpr char Cut[] = "...";
    std::string field = text;
    std::replace_if(
        field.begin(), field.end(), [](char ch) { return ch == '\n' || ch == '\r' || ch == '\t'; }, ' ');
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

void SetupPrnListDisplay() {
    if (DisplayStyle == 0) DisplayStyle = DISPLAY_DEFAULT;
    XmtSetLabelRaw("scrolList_L", GenListTitle().c_str());
    XmtDeleteAllListItems("scrolList");
    for (int i = 0; i < DevCount; i++) XmtAddListItem("scrolList", GenListEntry(i).c_str(), i + 1);
}

// Motif would select every new row that reads like the selected one.
void UpdatePrListDisplay() {
    if (DisplayStyle == 0) DisplayStyle = DISPLAY_ALL;
    XmtSetLabelRaw("scrolList_L", GenListTitle().c_str());
    XmtClearAllListItems("scrolList");
    for (int i = 0; i < DevCount; i++) XmtReplaceListItem("scrolList", GenListEntry(i).c_str(), i + 1);
    if (Widget list = XmtGetWidget("scrolList"); list && GetPrnEntry(Cur_Product_Index))
        XmListSelectPos(list, Cur_Product_Index + 1, 0);
}

// ---- What the selection allows

void SetPrinterSelectionData(int index) {
    static PrnEntry Last; // what pCurPrnData means while no printer is selected
    PrnEntry *entry = GetPrnEntry(index);
    Cur_Product_Index = entry ? index : -1;
    if (!entry) {
        if (pCurPrnData && pCurPrnData != &Last) CopyPrnEntry(&Last, pCurPrnData);
        if (pCurPrnData) pCurPrnData = &Last;
        XmtDisable("printer_menu_3_c_5, printer_menu_3_c_6");
        return;
    }
    pCurPrnData = entry;
    XmtEnable("printer_menu_3_c_5, printer_menu_3_c_6");
}

// The item of the record of the selected printer's model, or null.
static const char *GetCurModelItem(const char *item, char *value, size_t capacity) {
    const PrnEntry *entry = GetPrnEntry(Cur_Product_Index);
    if (!entry || !pPPDData || entry->PpdIndex > PpdCnt) return nullptr;
    return GetPpdKeyValue(pPPDData[entry->PpdIndex].base, item, value, capacity);
}

// ORDER SNMP_
static constexpr const char *SnmpEntries[] = {
    nullptr,
    "printer_menu_3_c_6,tb3",
    "printer_menu_3_c_3,printer_menu_3_c_5,printer_menu_3_c_6,printer_menu_3_c_7,tb3i,tb3",
    "printer_menu_3_c_3,printer_menu_3_c_4,printer_menu_3_c_7,tb3i",
};

void GreyoutSNMP(int state) {
    char value[PPD_VALUE];
    const char *enabled = GetCurModelItem("SNMPServicesEnable", value, sizeof value);
    if (enabled && strcmp(enabled, "FALSE") == 0) state = SNMP_OFF;
    XmtDisable("printer_menu_3_c_6,printer_menu_3_c_7,tb3i,tb3");
    if (state > SNMP_NO_PRINTER && state <= SNMP_OFF) XmtEnable(SnmpEntries[state]);
}

void GreyoutReset() {
    char value[PPD_VALUE];
    if (GetCurModelItem("NoPrinterReset", value, sizeof value)) XmtDisable("printer_menu_3_c_5");
}

// ---- The panel

static constexpr char IconColours[] = ",fg black, bg white";
static constexpr char FamilyIcon[] = "@icon/prfamily.xbm";
static constexpr char NoAnswer[] = "\n\n\n";

static void SetPrinterPicture(const char *icon) {
    XmtSetLabel("PrinterPicture", (std::string(icon ? icon : FamilyIcon) + IconColours).c_str());
}

void ClearPrinterPanel() {
    SetPrinterPicture(nullptr);
    for (const char *label : {"mname", "msta", "mloc"}) XmtSetLabelText(label, "");
}

static const char *GetPanelText(PkgVar *var) {
    if (var->Status != SUCCESS) return NoAnswer;
    ConvertSNMPCharacters(var->RecText);
    return var->RecText;
}

static bool ReadPanel(SnmpPackage *package, const char *address) {
    static constexpr char OidConsole[] = "1.3.6.1.2.1.43.16.5.1.2.1.1";
    static constexpr char OidLocation[] = "1.3.6.1.2.1.1.6.0";
    static constexpr char OidStatus[] = "1.3.6.1.2.1.25.3.5.1.1.1";
    int code =
        SnmpSetup(package, PKG_INIT, PKG_EMPTY, OidConsole, PKG_EMPTY, OidLocation, PKG_EMPTY, OidStatus);
    if (code == SUCCESS)
        code = SnmpSend(package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, PDU_GET, PKG_ADDRESSES, address);
    return code == SUCCESS;
}

void DiscProcessPrinterSelection(int index) {
    const PrnEntry *entry = GetPrnEntry(index);
    if (!entry) return;
    SnmpPackage package;
    const char *status = "", *location = "";
    if (ReadPanel(&package, entry->Address)) {
        status = GetPanelText(&package.Vars[0]);
        location = GetPanelText(&package.Vars[1]);
    } else {
        XmtPostMsg_(nullptr, NlsText(pDrvCoreDB, LIST_SET, LIST_READ_FAILED).c_str());
    }
    SetPrinterPicture(pPPDData && entry->PpdIndex <= PpdCnt ? pPPDData[entry->PpdIndex].icon : nullptr);
    XmtSetLabelTextSize("mname", entry->Description, PANEL_WIDTH, 0);
    XmtSetLabelTextSize("msta", status, PANEL_WIDTH, 0);
    XmtSetLabelTextSize("mloc", location, PANEL_WIDTH, 0);
}

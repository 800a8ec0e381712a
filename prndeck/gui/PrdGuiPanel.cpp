// What the selected printer allows, and the panel that shows it.
#include "prndeck/gui/PrdGuiPanel.h"

#include "common/NlsUtils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdGuiSnmpText.h"
#include "prndeck/core/PrdOids.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/core/PrdSnmpRead.h"
#include "prndeck/gui/PrdDiscWeb.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiList.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtUtils.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>

enum { PANEL_READ_FAILED = 88 };
enum { PANEL_WIDTH = 75 }; // characters of a line in the panel

// ---- What the selection allows

void SetPrinterSelectionData(int index) {
    static PrnEntry Last; // what pCurPrnData means while no printer is selected
    PrnEntry *entry = GetPrnEntry(index);
    Cur_Product_Index = entry ? index : -1;
    if (!entry) {
        if (pCurPrnData && pCurPrnData != &Last) CopyPrnEntry(&Last, pCurPrnData);
        if (pCurPrnData) pCurPrnData = &Last;
        XmtDisable(MENU_RESET "," MENU_PROPERTIES);
        return;
    }
    pCurPrnData = entry;
    if (!(entry->Flags & PRN_WEB) && TestBrowser(entry->Address)) entry->Flags |= PRN_WEB;
    XmtEnable(MENU_RESET "," MENU_PROPERTIES);
}

// The item of the record of the selected printer's model, or null.
static const char *GetCurModelItem(const char *item, char *value, size_t capacity) {
    return GetPrnModelItem(GetPrnEntry(Cur_Product_Index), item, value, capacity);
}

// ORDER SNMP_
static constexpr const char *SnmpEntries[] = {
    nullptr,
    MENU_PROPERTIES ",tb3",
    MENU_UPGRADE "," MENU_RESET "," MENU_PROPERTIES "," MENU_WEB ",tb3i,tb3",
    MENU_UPGRADE "," MENU_BROWSER "," MENU_WEB ",tb3i",
};
static_assert(std::size(SnmpEntries) == SNMP_OFF + 1);

void GreyoutSNMP(int state) {
    char value[PPD_VALUE];
    const char *enabled = GetCurModelItem("SNMPServicesEnable", value, sizeof value);
    if (enabled && strcmp(enabled, "FALSE") == 0) state = SNMP_OFF;
    XmtDisable(MENU_UPGRADE "," MENU_PROPERTIES "," MENU_WEB ",tb3i,tb3");
    if (state > SNMP_NO_PRINTER && state <= SNMP_OFF) XmtEnable(SnmpEntries[state]);
}

void GreyoutReset() {
    char value[PPD_VALUE];
    if (GetCurModelItem("NoPrinterReset", value, sizeof value)) XmtDisable(MENU_RESET);
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

// What can be shown of a printer's text; its lines stay.
static std::string ShowPrinterText(const char *text) {
    std::string out = GetPrinterText(text);
    std::replace_if(
        out.begin(), out.end(), [](char ch) { return ch != '\n' && TestControl(ch); }, ' ');
    return out;
}

static std::string GetPanelText(const PkgVar *var) {
    if (var->Status != SUCCESS) return NoAnswer;
    std::string text = ShowPrinterText(var->RecText);
    ConvertSNMPCharacters(text.data());
    return text;
}

void DiscProcessPrinterSelection(int index) {
    const PrnEntry *entry = GetPrnEntry(index);
    if (!entry) return;
    static constexpr const char *Names[] = {OidConsoleText, OidSysLocation, OidHrPrinterStatus, nullptr};
    SnmpPackage package;
    std::string status, location;
    if (ReadPrinter(&package, entry->Address, Names) == SUCCESS) {
        status = GetPanelText(&package.Vars[0]);
        location = GetPanelText(&package.Vars[1]);
    } else {
        XmtPostMsg_(nullptr, NlsText(pDrvCoreDB, SET_MESSAGES, PANEL_READ_FAILED).c_str());
    }
    SetPrinterPicture(pPPDData && entry->PpdIndex <= PpdCnt ? pPPDData[entry->PpdIndex].icon : nullptr);
    XmtSetLabelTextSize("mname", ShowPrinterText(entry->Description).c_str(), PANEL_WIDTH, 0);
    XmtSetLabelTextSize("msta", status.c_str(), PANEL_WIDTH, 0);
    XmtSetLabelTextSize("mloc", location.c_str(), PANEL_WIDTH, 0);
}

// What the selected printer allows, and the panel that shows it.
#include "prndeck/gui/PrdGuiPanel.h"

#include "SnmpPkg/Pkg.h"
#include "common/NlsUtils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtUtils.h"

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
    XmtEnable(MENU_RESET "," MENU_PROPERTIES);
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
    MENU_PROPERTIES ",tb3",
    MENU_UPGRADE "," MENU_RESET "," MENU_PROPERTIES "," MENU_WEB ",tb3i,tb3",
    MENU_UPGRADE "," MENU_BROWSER "," MENU_WEB ",tb3i",
};
static_assert(std::size(SnmpEntries) == SNMP_OFF + 1);

void GreyoutSNMP(int state) {
    char value[PPD_VALUE];
    const char *enabled = GetCurModelItem("SNMPServicesEnable", value, sizeof value);
    if (enabled && strcmp(enabled, "FALSE") == 0) state = SNMP_OFF;
    XmtDisable(MENU_PROPERTIES "," MENU_WEB ",tb3i,tb3");
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
        XmtPostMsg_(nullptr, NlsText(pDrvCoreDB, SET_MESSAGES, PANEL_READ_FAILED).c_str());
    }
    SetPrinterPicture(pPPDData && entry->PpdIndex <= PpdCnt ? pPPDData[entry->PpdIndex].icon : nullptr);
    XmtSetLabelTextSize("mname", entry->Description, PANEL_WIDTH, 0);
    XmtSetLabelTextSize("msta", status, PANEL_WIDTH, 0);
    XmtSetLabelTextSize("mloc", location, PANEL_WIDTH, 0);
}

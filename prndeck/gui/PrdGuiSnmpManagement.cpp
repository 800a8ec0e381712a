// The property sheet of the selected printer.
#include "prndeck/gui/PrdGuiSnmpManagement.h"

#include "common/Dbm.h"
#include "common/NlsUtils.h"
#include "common/Token.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdOids.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/core/PrdSnmpRead.h"
#include "prndeck/core/PrdSnmpSet.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiSnmpPages.h"
#include "prndeck/gui/PrdGuiSnmpReset.h"
#include "xmt/XmtCopy.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNewTab.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <cstring>
#include <iterator>
#include <strings.h>

enum { SHEET_TITLE = 73 };      // text of SET_MESSAGES
enum { SHEET_NOT_STORED = 24 }; // of SET_WEB

// ORDER TabNames
const char TabNames[] =
    ",snmp,sdbt2_1,sdbt2_2,sdbt2_3,sdbt2_4,sdbt2_5,sdbt2_6,ssntab_1,ssntab_2,ssntab_3,ssntab_4,"
    "ssntab_5,sdbt3_1,sdbt3_2,sdbt_1,sdbt_2,";
int CurTab;
int SNMPRefreshTime = REFRESH_SECONDS;
int SNMPRefreshTimerID;

// ---- Pages

void DoSNMPRefresh(intptr_t) {
    switch (CurTab) {
    case TAB_SHEET:
    case TAB_CONSOLE: RefreshConsole(); break;
    case TAB_INPUT: GetInputTrayInformation(); break;
    case TAB_CONSUMABLES: GetConsumableInformation(); break;
    case TAB_OUTPUT: GetOutputTrayInformation(); break;
    case TAB_GENERAL: GetGeneralTab(); break;
    case TAB_INTERFACE:
    case TAB_IP:
    case TAB_UDP:
    case TAB_SNMP_IN:
    case TAB_SNMP_OUT: FillNetworkPage(CurTab - TAB_INTERFACE + 1); break;
    case TAB_CONTACT: GetPropContact(); break;
    case TAB_CHANNELS: GetPropPrintChannel(); break;
    default: break; // holders show nothing of their own
    }
}

// While the program turns the pages itself, what they report only says which one is shown: it is read once,
// at the end.
static bool flTurning;

static void RefreshPage() {
    BusyCursor busy("snmp");
    DoSNMPRefresh();
    ResetSNMPRefreshTimer();
}

static void TurnTo(const char *form, int tab) {
    flTurning = true;
    XmtSelectTab(form, tab);
    flTurning = false;
}

// The page that the holder's own form shows, which may be a holder as well.
static void FillInnerPage(const char *form) {
    int tab = static_cast<int>(XmtGetValue(form));
    if (tab < 1) tab = 1;
    TurnTo(form, tab);
    FillSnmpData((form + ("_" + std::to_string(tab))).c_str());
}

static bool ProbePrinter() {
    static constexpr const char *Oids[] = {OidConsoleText, nullptr};
    SnmpPackage package;
    return pCurPrnData && ReadPrinter(&package, pCurPrnData->Address, Oids) == SUCCESS &&
           package.Vars[0].Status == SUCCESS;
}

static void ShowSheet() {
    StopSNMPRefreshTimer();
    ReadSNMPRefreshTime();
    if (!ProbePrinter()) {
        XmtPostMsg_(pSetErr, pCommFail);
        return XmtHide("snmpwait");
    }
    ClearPages();
    XmtShow("snmp");
    TurnTo("sdbt", 1);
    TurnTo("sdbt2", 1);
    CurTab = TAB_CONSOLE;
    RefreshPage();
    SetupSNMPRefreshTimer();
}

void FillSnmpData(const char *page) {
    CurTab = FindToken(page, TabNames);
    if (flTurning) return;
    switch (CurTab) {
    case TAB_SHEET: return ShowSheet();
    case TAB_NETWORK: return FillInnerPage("ssntab");
    case TAB_STATUS: return FillInnerPage("sdbt2");
    case TAB_SETTINGS: return FillInnerPage("sdbt3");
    default: return RefreshPage();
    }
}

// ---- Opening

// A model whose values can't be set; of the lists the first fifteen.
static void SetReadOnly(bool flReadOnly) {
    enum { READ_ONLY_LISTS = 15 };
    std::string names;
    for (int i = 1; i <= CONTACT_FIELDS; i++) names += GetCellName("spcrt", i) + ",";
    for (int i = 1; i <= READ_ONLY_LISTS; i++) names += GetCellName("spn1b", i) + ",";
    flReadOnly ? XmtDisable(names.c_str()) : XmtEnable(names.c_str());
}

void OpenPropertySheet() {
    const PrnEntry *entry = GetPrnEntry(Cur_Product_Index);
    if (!entry) return;
    BusyCursor busy("prndeck");
    std::string title =
        NlsText(pDrvCoreDB, SET_MESSAGES, SHEET_TITLE) + " - " + GetPrinterText(entry->Description);
    XmtSetTitle("snmp", title.c_str());
    char value[PPD_VALUE];
    const char *item = GetPrnModelItem(entry, "SNMPReadOnly", value, sizeof value);
    SetReadOnly(item && strcasecmp(item, "TRUE") == 0);
    FillSnmpData("snmp");
}

static void CloseSheet() {
    StopSNMPRefreshTimer();
    XmtHide("snmp");
}

// The window manager closes the window without an event of the sheet's.
static void StopWithWindow(Widget, XtPointer, XtPointer) {
    StopSNMPRefreshTimer();
}

// Return in a field applies what was typed and leaves the sheet open.
void PrepareSheet() {
    XmtSetDialogButtons("snmp", "snmpb2", "snmpb3");
    if (Widget sheet = XmtGetWidget("snmp")) XtAddCallback(sheet, XmNunmapCallback, StopWithWindow, nullptr);
}

// ---- The timer and its interval

void SetupSNMPRefreshTimer() {
    SNMPRefreshTimerID = XmtStartTimer(XMT_TIMER_REPEAT, SNMPRefreshTime, DoSNMPRefresh, 0);
}

void ResetSNMPRefreshTimer() {
    XmtResetTimer(SNMPRefreshTimerID);
}

void StopSNMPRefreshTimer() {
    XmtStopTimer(SNMPRefreshTimerID);
    SNMPRefreshTimerID = 0;
}

void ResumeSNMPRefreshTimer() {
    XmtResumeTimer(SNMPRefreshTimerID, SNMPRefreshTime);
}

static constexpr char RefreshField[] = "snmpri";
static constexpr char RefreshDb[] = "IPDisc";
static constexpr char RefreshKey[] = "SNMPRefresh";

void SetSNMPRefreshTime() {
    char *text = XmtGetText(RefreshField);
    SNMPRefreshTime = text ? ParseInt(text) : 0;
    XtFree(text);
    ResumeSNMPRefreshTimer();
}

static int KeptRefreshTime; // was saved and could not be stored, holds for the run; 0: none

static bool WriteRefreshTime() {
    std::string record = std::to_string(SNMPRefreshTime);
    return DbmMayWrite() && DbmPutRecord(RefreshDb, RefreshKey, record.data(), record.size());
}

void SaveSNMPRefreshTime() {
    if (SNMPRefreshTimerID) SetSNMPRefreshTime();
    bool flStored = WriteRefreshTime();
    KeptRefreshTime = flStored ? 0 : SNMPRefreshTime;
    if (!flStored && DbmMayWrite())
        XmtPostMsg_(nullptr, NlsText(pDrvCoreDB, SET_WEB, SHEET_NOT_STORED).c_str());
    if (SNMPRefreshTimerID) ResumeSNMPRefreshTimer();
}

static int ReadStoredRefreshTime() {
    char record[16];
    int size = DbmGetRecord(RefreshDb, RefreshKey, record, sizeof record - 1);
    record[size] = '\0';
    return ParseInt(record);
}

// A record that no field could have written counts as none: it would leave the sheet without a timer.
void ReadSNMPRefreshTime() {
    SNMPRefreshTime = KeptRefreshTime ? KeptRefreshTime : ReadStoredRefreshTime();
    if (SNMPRefreshTime < REFRESH_MIN || SNMPRefreshTime > REFRESH_MAX) {
        SNMPRefreshTime = REFRESH_SECONDS;
        WriteRefreshTime();
    }
    XmtSetText(RefreshField, std::to_string(SNMPRefreshTime).c_str());
}

// ---- Values that were changed

static void SetContactValue(const std::string &field, const char *name, const char *text) {
    intptr_t came = XmtGetAppData(field.c_str());
    std::string value = PutPrinterText(JoinLines(text, came & TEXT_ONE_LINE), came & TEXT_UTF8);
    if (SNMPSetStringValue(name, value.c_str())) return XmtStoreValue(field.c_str());
    XmtPostMsg_(pSetErr, NlsFmt(pSetErr1, "s", "Unknown").c_str());
}

void SetChangedContactValues() {
    for (int i = 1; i <= CONTACT_FIELDS; i++) {
        std::string field = GetCellName("spcrt", i);
        const char *stored = XmtTextOf(XmtGetStoredValue(field.c_str()));
        char *text = XmtGetText(field.c_str());
        if (text && strcmp(text, stored ? stored : "") != 0) SetContactValue(field, ContactOID[i - 1], text);
        XtFree(text);
    }
}

// The state that a list shows, by its item from 0; a channel that can't be set shows the old one again.
static void SetChannelState(const std::string &list, const char *name, intptr_t item) {
    enum { ITEM_ENABLED = 2 };
    if (SNMPSetIntValue(name, static_cast<int>(item) + 1)) return XmtStoreValue(list.c_str());
    char *label = XmtGetLabel((list + "_L").c_str());
    const char *state = item == ITEM_ENABLED ? pEnabled : pDisabled;
    XmtPostMsg_(pSetErr, NlsFmt(pSetErr2, "ss", SkipSpace(label ? label : ""), state).c_str());
    XmtFreeStr(label);
    XmtResetToStoredValue(list.c_str());
}

// The instance of row n is the first one's with n as its last arc. A row that was not read has the stored
// value 0.
void SetChangedPrintChannels() {
    std::string first = ProtocolOID[1];
    std::string entry = first.substr(0, first.rfind('.') + 1);
    for (int i = 1; i <= CHANNEL_ROWS; i++) {
        std::string list = GetCellName("spn1b", i);
        intptr_t stored = XmtGetStoredValue(list.c_str()), item = XmtGetValue(list.c_str());
        if (stored != 0 && stored != item) SetChannelState(list, (entry + std::to_string(i)).c_str(), item);
    }
}

void SetChangedValues() {
    BusyCursor busy("snmp,prndeck");
    SetChangedContactValues();
    SetChangedPrintChannels();
}

// ---- Events

static void TurnedTo(const XmtCallData *data) {
    FillSnmpData((data->name + ("_" + std::to_string(data->value))).c_str());
}

void SnmpEventHandler(XmtCallData *data) {
    if (data->reason == XmtCR_CREATE) return;
    switch (data->id) {
    case RESET_WAIT_CLOSE: CloseResetWait(); break;
    case RESET_CONFIRM: ConfirmReset(data->reason); break;
    case SHEET_WINDOW: OpenPropertySheet(); break;
    case SHEET_TABS:
    case SHEET_STATUS_TABS:
    case SHEET_NETWORK_TABS:
    case SHEET_SETTINGS_TABS: TurnedTo(data); break;
    case SHEET_SET_INTERVAL: SetSNMPRefreshTime(); break;
    case SHEET_SAVE_INTERVAL: SaveSNMPRefreshTime(); break;
    case SHEET_REFRESH: RefreshPage(); break;
    case SHEET_OK:
        StopSNMPRefreshTimer();
        SetChangedValues();
        CloseSheet();
        break;
    case SHEET_APPLY: SetChangedValues(); break;
    case SHEET_CANCEL: CloseSheet(); break;
    default: break; // other windows'
    }
}

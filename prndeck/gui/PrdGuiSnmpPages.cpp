// The pages of the property sheet.
#include "prndeck/gui/PrdGuiSnmpPages.h"

#include "common/NlsUtils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdOids.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/core/PrdSnmpRead.h"
#include "xmt/XmtColor.h"
#include "xmt/XmtUtils.h"

#include <iterator>

#define PRT  "1.3.6.1.2.1.43"
#define MIB2 "1.3.6.1.2.1"
#define IF   MIB2 ".2.2.1"
#define SNMP MIB2 ".11"

enum { CONSOLE_MISSING = 31, CONSOLE_FAILED = 32 }; // texts of SET_MESSAGES

// Nothing is asked of an empty address.
static const char *GetPageAddress() {
    return pCurPrnData ? pCurPrnData->Address : "";
}

// ---- Console

static constexpr const char *LedOID[] = {PRT ".17.6.1.5.1.1", PRT ".17.6.1.4.1.1", PRT ".17.6.1.2.1.1",
                                         nullptr};
enum { LED_NAME, LED_COLOUR, LED_ON_TIME };
enum { LED_ROWS = 6 };

static std::string GetConsoleLine(const PkgVar *var) {
    std::string text = GetPrinterText(var->RecText);
    ConvertSNMPCharacters(text.data());
    return text;
}

int ConsoleCB(int, intptr_t, int, int, SnmpPackage *package, PkgSource *) {
    bool flCame = package->Vars[0].Status == SUCCESS;
    std::string missing = flCame ? "" : NlsText(pDrvCoreDB, SET_MESSAGES, CONSOLE_MISSING);
    static constexpr const char *Names[] = {"smsgb", "sgc7t1"};
    for (size_t i = 0; i < std::size(Names); i++)
        SetSNMPWidgetStringText(Names[i], (flCame ? GetConsoleLine(&package->Vars[i]) : missing).c_str());
    return 0;
}

void GetConsoleText(const char *address) {
    static constexpr const char *Oids[] = {OidConsoleText, OidMarkerLifeCount, nullptr};
    SnmpPackage package;
    if (ReadPrinter(&package, address, Oids, {PDU_GET, ConsoleCB, nullptr}) != SUCCESS)
        SetSNMPWidgetStringText("smsgb", NlsText(pDrvCoreDB, SET_MESSAGES, CONSOLE_FAILED).c_str());
}

// prtConsoleColor, from 1: other, unknown, white, red, green, blue, cyan, magenta, yellow.
static constexpr const char *LedColours[] = {nullptr, "grey", "grey", "grey",    "red",
                                             "green", "blue", "cyan", "magenta", "yellow"};
static constexpr char NoLedColour[] = "grey";

static const char *GetLedColour(intptr_t number) {
    return number >= 1 && number < static_cast<intptr_t>(std::size(LedColours)) ? LedColours[number]
                                                                                : NoLedColour;
}

static void SetLedColour(int row, const std::string &colour) {
    XmtSetColor((GetCellName("sl", row) + "_B").c_str(), "bg", colour.c_str());
}

int LEDNameCB(int, intptr_t userData, int, int, SnmpPackage *package, PkgSource *) {
    const SnmpTableDesc *table = CountRow(userData, package);
    if (!table) return 0;
    const PkgVar *vars = package->Vars;
    std::string label = GetCellName("slt", table->Row), light = GetCellName(table->Prefix, table->Row);
    XmtSetLabelRaw(label.c_str(), BreakLines(GetPrinterText(vars[LED_NAME].RecText)).c_str());
    XmtShow((light + "," + label).c_str());
    if (vars[LED_COLOUR].Status != SUCCESS || vars[LED_ON_TIME].Status != SUCCESS) return 0;
    const char *dark = vars[LED_ON_TIME].RecValue < 1 ? "dark" : "";
    SetLedColour(table->Row, dark + std::string(GetLedColour(vars[LED_COLOUR].RecValue)));
    return 0;
}

void HideUnusedLeds(const SnmpTableDesc *table) {
    XmtHide(GetCellName(table->Prefix, table->Row).c_str());
}

void GetLedValues(const char *address) {
    SnmpTableDesc table = {
        .Prefix = "sl", .Oids = LedOID, .Columns = 3, .MaxRows = LED_ROWS, .Formats = "sss"};
    FillTable(address, &table, LEDNameCB, HideUnusedLeds);
}

void RefreshConsole() {
    GetConsoleText(GetPageAddress());
    GetLedValues(GetPageAddress());
}

// ---- Trays, supplies

// The paper of a tray has no variable: it is made of the dimensions and their unit.
static constexpr const char *InputTrayOID[] = {PRT ".8.2.1.13.1.1",
                                               PRT ".8.2.1.8.1.1",
                                               PRT ".8.2.1.9.1.1",
                                               PRT ".8.2.1.10.1.1",
                                               PRT ".8.2.1.21.1.1",
                                               PRT ".8.2.1.4.1.1",
                                               PRT ".8.2.1.5.1.1",
                                               PRT ".8.2.1.3.1.1",
                                               "",
                                               nullptr};
enum { TRAY_FEED = 5, TRAY_CROSS_FEED = 6, TRAY_UNIT = 7 };
static constexpr const char *OutputTrayOID[] = {PRT ".9.2.1.7.1.1", PRT ".9.2.1.3.1.1", PRT ".9.2.1.4.1.1",
                                                PRT ".9.2.1.5.1.1", nullptr};
static constexpr const char *ConsumableOID[] = {PRT ".11.1.1.6.1.1", PRT ".11.1.1.7.1.1", PRT ".11.1.1.8.1.1",
                                                PRT ".11.1.1.9.1.1", nullptr};
enum { INPUT_ROWS = 8, BLOCK_ROWS = 9, BLOCKS_ROWS = 2 * BLOCK_ROWS, LANGUAGE_ROWS = 8 };

void GetInputTrayInformation() {
    SnmpTableDesc table = {.Prefix = "sic",
                           .Oids = InputTrayOID,
                           .Columns = std::size(InputTrayOID) - 1,
                           .MaxRows = INPUT_ROWS,
                           .Formats = "sumcsssup"};
    table.PaperX = TRAY_CROSS_FEED;
    table.PaperY = TRAY_FEED;
    table.PaperUnit = TRAY_UNIT;
    FillTable(GetPageAddress(), &table, nullptr, nullptr);
}

// Rows in two blocks side by side; the titles of the second one stand above rows alone.
static void FillBlocks(const char *prefix, const char *const *oids) {
    SnmpTableDesc table = {
        .Prefix = prefix, .Oids = oids, .Columns = 4, .MaxRows = BLOCKS_ROWS, .Formats = "sumc"};
    FillTable(GetPageAddress(), &table, nullptr, nullptr);
    std::string block = prefix + std::string("b");
    bool flUsed = XtIsManaged(XmtGetWidget(GetCellName(prefix, 1, BLOCK_ROWS + 1).c_str()));
    flUsed ? XmtShow(block.c_str()) : XmtHide(block.c_str());
}

void GetOutputTrayInformation() {
    FillBlocks("soc", OutputTrayOID);
}

void GetConsumableInformation() {
    FillBlocks("scc", ConsumableOID);
}

// ---- General

static constexpr const char *LanguageOID[] = {PRT ".15.1.1.5.1.1", PRT ".15.1.1.3.1.1", PRT ".15.1.1.4.1.1",
                                              nullptr};

struct GeneralField {
    const char *oid;
    const char *name; // of the object
};
static constexpr GeneralField GeneralFields[] = {
    {OidMarkerLifeCount, "sgc7t1"},
    {MIB2 ".25.2.3.1.3.1", "sgc6t1"}, // storage: description, allocation unit, size
    {MIB2 ".25.2.3.1.4.1", "sgc6t2"},
    {MIB2 ".25.2.3.1.5.1", "sgc6t3"},
};

int GeneralCB(int, intptr_t, int, int, SnmpPackage *package, PkgSource *) {
    for (size_t i = 0; i < std::size(GeneralFields); i++) {
        const PkgVar *var = &package->Vars[i];
        std::string text = var->Status == SUCCESS ? GetPrinterText(var->RecText) : pUnavailable;
        SetSNMPWidgetStringText(GeneralFields[i].name, text.c_str());
    }
    return 0;
}

void GetGeneralTab() {
    SnmpTableDesc table = {
        .Prefix = "sgc", .Oids = LanguageOID, .Columns = 3, .MaxRows = LANGUAGE_ROWS, .Formats = "sss"};
    FillTable(GetPageAddress(), &table, nullptr, nullptr);
    const char *oids[std::size(GeneralFields) + 1] = {};
    for (size_t i = 0; i < std::size(GeneralFields); i++) oids[i] = GeneralFields[i].oid;
    SnmpPackage package;
    if (ReadPrinter(&package, GetPageAddress(), oids, {PDU_GET, GeneralCB, nullptr}) == SUCCESS) return;
    for (const GeneralField &field : GeneralFields) SetSNMPWidgetStringText(field.name, pUnavailable);
}

// ---- Network statistics

const char *const NetStatInterfaceOIDs[] = {IF ".2.1",  IF ".5.1",  IF ".10.1", IF ".11.1", IF ".12.1",
                                            IF ".13.1", IF ".14.1", IF ".15.1", IF ".16.1", IF ".17.1",
                                            IF ".18.1", IF ".19.1", IF ".20.1", nullptr};
const char *const NetStatIpOIDs[] = {MIB2 ".4.3.0",  MIB2 ".4.4.0",  MIB2 ".4.5.0",
                                     MIB2 ".4.7.0",  MIB2 ".4.8.0",  MIB2 ".4.9.0",
                                     MIB2 ".4.10.0", MIB2 ".4.11.0", nullptr};
const char *const NetStatUdpOIDs[] = {MIB2 ".7.1.0", MIB2 ".7.4.0", nullptr};
const char *const NetStatSnmpInboundOIDs[] = {
    SNMP ".1.0",  SNMP ".3.0",  SNMP ".4.0",  SNMP ".5.0",  SNMP ".8.0",  SNMP ".9.0",
    SNMP ".10.0", SNMP ".11.0", SNMP ".12.0", SNMP ".13.0", SNMP ".14.0", SNMP ".15.0",
    SNMP ".16.0", SNMP ".17.0", SNMP ".18.0", SNMP ".19.0", nullptr};
const char *const NetStatSnmpOutboundOIDs[] = {SNMP ".2.0",  SNMP ".20.0", SNMP ".21.0",
                                               SNMP ".22.0", SNMP ".24.0", nullptr};

struct NetworkPage {
    const char *prefix;
    const char *const *oids;
};
static constexpr NetworkPage NetworkPages[] = {
    {"ssnc1t", NetStatInterfaceOIDs},   {"ssnc2t", NetStatIpOIDs},           {"ssnc3t", NetStatUdpOIDs},
    {"ssnc4t", NetStatSnmpInboundOIDs}, {"ssnc5t", NetStatSnmpOutboundOIDs},
};
static_assert(std::size(NetworkPages) == NETWORK_PAGES);

void FillNetworkPage(int page) {
    if (page < 1 || page > NETWORK_PAGES) return;
    const NetworkPage &row = NetworkPages[page - 1];
    FillColumn(GetPageAddress(), row.prefix, row.oids, pNA, 'l');
}

void GetNetworkStatTab() {
    for (int i = 1; i <= NETWORK_PAGES; i++) FillNetworkPage(i);
}

// ---- Contact

const char *const ContactOID[] = {OidSysName,         OidSysLocation,          OidSysContact,
                                  OidGeneralOperator, OidGeneralServicePerson, nullptr};
static_assert(std::size(ContactOID) == CONTACT_FIELDS + 1);
static constexpr char ContactPrefix[] = "spcrt";

static void StoreColumn(const char *prefix, int count) {
    for (int i = 1; i <= count; i++) XmtStoreValue(GetCellName(prefix, i).c_str());
}

void GetPropContact() {
    FillColumn(GetPageAddress(), ContactPrefix, ContactOID, "", 't');
    StoreColumn(ContactPrefix, CONTACT_FIELDS);
}

// ---- Print channels

const char *const ProtocolOID[] = {PRT ".14.1.1.3.1.1", PRT ".14.1.1.6.1.1", PRT ".14.1.1.2.1.1", nullptr};
enum { CHANNEL_VERSION, CHANNEL_STATE, CHANNEL_TYPE };
static constexpr char ChannelPrefix[] = "spn1b";

// An option list counts its items from 1, as the states of a channel do.
int PrintChannelCB(int, intptr_t userData, int, int, SnmpPackage *package, PkgSource *) {
    const SnmpTableDesc *table = CountRow(userData, package);
    if (!table) return 0;
    const PkgVar *vars = package->Vars;
    std::string name = GetCellName(table->Prefix, table->Row);
    std::string label = GetChannelLabel(vars[CHANNEL_VERSION].RecText, vars[CHANNEL_TYPE].RecValue);
    XmtSetLabelRaw((name + "_L").c_str(), label.c_str());
    XmtSetValuePF(name.c_str(), vars[CHANNEL_STATE].RecValue, 0);
    XmtShow((name + "_B1").c_str());
    return 0;
}

void HideUnusedPrintChannels(const SnmpTableDesc *table) {
    XmtHide((GetCellName(table->Prefix, table->Row) + "_B1").c_str());
}

void GetPropPrintChannel() {
    SnmpTableDesc table = {.Prefix = ChannelPrefix,
                           .Oids = ProtocolOID,
                           .Columns = 3,
                           .MaxRows = CHANNEL_ROWS,
                           .Formats = "sss"};
    FillTable(GetPageAddress(), &table, PrintChannelCB, HideUnusedPrintChannels);
    StoreColumn(ChannelPrefix, CHANNEL_ROWS);
}

// ---- Another printer

static void ClearColumn(const char *prefix, const char *const *oids, char kind) {
    for (int i = 1; oids[i - 1]; i++) SetColumnValue(GetCellName(prefix, i).c_str(), "", kind);
}

void ClearPages() {
    for (int i = 1; i <= LED_ROWS; i++) SetLedColour(i, NoLedColour);
    for (const NetworkPage &page : NetworkPages) ClearColumn(page.prefix, page.oids, 'l');
    ClearColumn(ContactPrefix, ContactOID, 't');
    StoreColumn(ContactPrefix, CONTACT_FIELDS);
    for (int i = 1; i <= CHANNEL_ROWS; i++) XmtSetValuePF(GetCellName(ChannelPrefix, i).c_str(), 1, 0);
    StoreColumn(ChannelPrefix, CHANNEL_ROWS);
}

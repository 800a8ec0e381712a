// The dialog of where printers are looked for.
#include "prndeck/gui/PrdDiscWin.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/Token.h"
#include "common/utils.h"
#include "prndeck/core/DiscPkg.h"
#include "prndeck/core/PrdDiscNets.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/gui/PrdDiscWeb.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiList.h"
#include "prndeck/gui/PrdGuiSnmpManagement.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <cstdio>
#include <cstring>
#include <string>

enum { MSG_MASK_TITLE = 161, MSG_MASK_EMPTY = 162, MSG_SUBNET_TITLE = 163, MSG_SUBNET_EMPTY = 164 };
enum { MSG_IP_REFUSED = 21, MSG_IP_KNOWN = 23, MSG_NOT_STORED = 24 };
enum { OCTETS = 4, OCTET_BITS = 8, OCTET_MAX = 255 };
enum { TAB_SUBNETS = 1, TAB_ADDRESSES };

static constexpr const char *SubnetFields[OCTETS] = {"snt1", "snt2", "snt3", "snt4"};
static constexpr const char *MaskFields[OCTETS] = {"smt1", "smt2", "smt3", "smt4"};
static constexpr const char *IpFields[OCTETS] = {"ipa1", "ipa2", "ipa3", "ipa4"};
static constexpr char NeedsSubnet[] = "ipsnr,ipsned"; // buttons

int SelSubnet, SelIp;
char *pSelIp;

// ---- Fields

static void ClearFields(const char *const fields[OCTETS]) {
    for (int i = 0; i < OCTETS; i++) XmtSetText(fields[i], "");
}

// Numbers beyond the fourth are not shown, missing ones leave their fields empty.
static void SetFields(const char *const fields[OCTETS], const char *address) {
    char octet[TOKEN_SIZE], *position = nullptr;
    const char *from = address;
    for (int i = 0; i < OCTETS; i++, from = nullptr) {
        char *next = GetTokenD(from, ".", &position, octet);
        XmtSetText(fields[i], next ? octet : "");
    }
}

static std::string GetField(const char *field) {
    char *text = XmtGetText(field);
    std::string out = text ? text : "";
    XtFree(text);
    return out;
}

void ClearComponentFields() {
    ClearFields(SubnetFields);
    ClearFields(MaskFields);
}

void ClearIPFields() {
    ClearFields(IpFields);
}

// ---- Subnets

static void DeselectSubnet() {
    SelSubnet = 0;
    XmtDisable(NeedsSubnet);
}

void DisplaySNList() {
    XmtReplaceAllListItems("ipsl", BuildSNList().c_str());
}

void SetupSubnetSelection(int position) {
    DeselectSubnet();
    const SubnetEntry *entry = GetSubnet(position);
    if (!entry) return;
    SelSubnet = position;
    XmtEnable(entry->UserAdded ? NeedsSubnet : "ipsned");
    SetFields(SubnetFields, entry->Address);
    SetFields(MaskFields, entry->Mask);
}

static void PostSubnetMsg(int title, int text) {
    XmtPostMsg_(NlsText(pDrvCoreDB, SET_MESSAGES, title).c_str(),
                NlsText(pDrvCoreDB, SET_MESSAGES, text).c_str());
}

// Adds the number of a field to a dotted text; false for an empty field.
static bool AppendOctet(std::string *address, const char *field, int *number) {
    std::string text = GetField(field);
    if (text.empty()) return false;
    *number = ParseInt(text.c_str());
    *address += (address->empty() ? "" : ".") + std::to_string(*number);
    return true;
}

// The ones of a mask stand at its front. flZero: a zero has been seen; it goes on with the next octet.
static bool TestMaskOctet(int octet, bool *flZero) {
    for (int bit = OCTET_BITS - 1; bit >= 0; bit--) {
        if (!(octet >> bit & 1))
            *flZero = true;
        else if (*flZero)
            return false;
    }
    return true;
}

// Both texts out of the fields; false after a message.
static bool ReadSubnetFields(std::string *address, std::string *mask) {
    bool flZero = false;
    for (int i = 0; i < OCTETS; i++) {
        int octet;
        if (!AppendOctet(mask, MaskFields[i], &octet)) {
            PostSubnetMsg(MSG_MASK_TITLE, MSG_MASK_EMPTY);
            return false;
        }
        if (!TestMaskOctet(octet, &flZero)) {
            XmtSetText(MaskFields[i], "");
            PostSubnetMsg(MSG_MASK_TITLE, MSG_MASK_TITLE);
            return false;
        }
        if (!AppendOctet(address, SubnetFields[i], &octet)) {
            PostSubnetMsg(MSG_SUBNET_TITLE, MSG_SUBNET_EMPTY);
            return false;
        }
    }
    return true;
}

void AddSubnetEntry() {
    std::string address, mask;
    if (!ReadSubnetFields(&address, &mask)) return;
    SubnetEntry entry = {};
    snprintf(entry.Address, sizeof entry.Address, "%s", address.c_str());
    snprintf(entry.Mask, sizeof entry.Mask, "%s", mask.c_str());
    entry.Enabled = entry.UserAdded = 1;
    UpdateSubnetList(&entry, SUBNET_REPLACE);
    DeselectSubnet(); // with the rows
    DisplaySNList();
    ClearComponentFields();
}

void RemoveSubnetEntry() {
    if (const SubnetEntry *entry = GetSubnet(SelSubnet)) {
        DeleteSubnetListEntry(entry);
        ClearComponentFields();
        DisplaySNList();
    }
    DeselectSubnet();
}

void DisableSubnetEntry() {
    if (const SubnetEntry *entry = GetSubnet(SelSubnet)) {
        SubnetEntry changed = *entry;
        changed.Enabled = !changed.Enabled;
        UpdateSubnetList(&changed, SUBNET_REPLACE);
        ClearComponentFields();
        DisplaySNList();
    }
    DeselectSubnet();
}

void ScanInterfaces() {
    ClearScannedSubnets();
    ClearComponentFields();
    SniffInterfaces(SubnetCount == 0);
    DisplaySNList();
    DeselectSubnet();
}

// ---- Addresses

static void DeselectIp() {
    SelIp = 0;
    PutMem(pSelIp);
    pSelIp = nullptr;
    XmtDisable("ipar");
}

// No row of a list that is filled anew is lit.
static void ShowIpRows(const char *list) {
    XmtReplaceAllListItems("ipal", list);
    DeselectIp();
}

void DisplayIPList() {
    ShowIpRows(pIpList ? pIpList : ",");
}

void SetupIPSelection(const XmtCallData *data) {
    DeselectIp();
    ClearIPFields();
    if (data->value < 1 || !data->text) return;
    SelIp = static_cast<int>(data->value);
    pSelIp = SaveStr_(data->text);
    XmtEnable("ipar");
    SetFields(IpFields, pSelIp);
}

bool GetIpAddr(const char *const fields[OCTETS], char *out, size_t capacity) {
    int octets[OCTETS];
    for (int i = 0; i < OCTETS; i++)
        if (XmtGetTextInt(fields[i], &octets[i], i == 0 ? 1 : 0, OCTET_MAX) != 0) return false;
    snprintf(out, capacity, "%i.%i.%i.%i", octets[0], octets[1], octets[2], octets[3]);
    return true;
}

void AddIPaddr() {
    char address[NET_TEXT];
    int result = GetIpAddr(IpFields, address, sizeof address) ? AddToIpList(address) : IP_REFUSED;
    if (result == IP_ADDED)
        ShowIpRows(GetIpList());
    else
        XmtPostMsg_(nullptr,
                    NlsText(pDrvCoreDB, SET_WEB, result == IP_KNOWN ? MSG_IP_KNOWN : MSG_IP_REFUSED).c_str());
    ClearIPFields();
}

void RemoveIPaddr() {
    RemoveFromIpList(pSelIp);
    XmtDeleteListItem("ipal", SelIp);
    DeselectIp();
    ClearIPFields();
}

// ---- The dialog

void PrepareDiscovery() {
    XmtSetDialogButtons("brw", "bro", "brca");
    XmtAlignButtons("idb1");
    SetDiscoveryTab(TAB_SUBNETS);
    for (const char *label : {"ipsl_L", "ipal_L"}) AlignListTitle(label);
}

void StartDiscovery() {
    pDiscReport = XmtPostMsg_;
    InitPkgDisc();
    DisplayIPList();
    XmtSetText("brp", pPreferredWB);
}

void OpenDiscovery() {
    DisplaySNList();
    DisplayIPList();
    ClearComponentFields();
    ClearIPFields();
    XmtShow("ipDisc");
    DeselectSubnet();
}

void SetDiscoveryTab(int tab) {
    XmtSetDialogButtons("ipDisc", tab == TAB_ADDRESSES ? "ipaa" : "ipsna", nullptr);
}

void ApplyDiscChanges() {
    int flStored = WriteSNListToDatabase();
    flStored &= WriteIPListToDatabase();
    if (!flStored) XmtPostMsg_(nullptr, NlsText(pDrvCoreDB, SET_WEB, MSG_NOT_STORED).c_str());
    ReadIPList();
    DisplayIPList();
}

static void ApplyDiscovery() {
    ApplyDiscChanges();
    ClearComponentFields();
    ClearIPFields();
}

void CloseDiscovery() {
    ApplyDiscChanges();
    XmtHide("ipDisc");
}

void IPDiscoveryEventHandler(XmtCallData *data) {
    if (data->reason == XmtCR_CREATE) return;
    int value = static_cast<int>(data->value);
    switch (data->id) {
    case DISC_BROWSER_OK: SetBrowser(); break;
    case DISC_DIALOG: OpenDiscovery(); break;
    case DISC_TABS: SetDiscoveryTab(value); break;
    case DISC_SUBNETS: SetupSubnetSelection(value); break;
    case DISC_SUBNET_ADD: AddSubnetEntry(); break;
    case DISC_SUBNET_REMOVE: RemoveSubnetEntry(); break;
    case DISC_SUBNET_SWITCH: DisableSubnetEntry(); break;
    case DISC_SUBNET_SCAN: ScanInterfaces(); break;
    case DISC_ADDRESSES: SetupIPSelection(data); break;
    case DISC_ADDRESS_ADD: AddIPaddr(); break;
    case DISC_ADDRESS_REMOVE: RemoveIPaddr(); break;
    case DISC_OK: CloseDiscovery(); break;
    case DISC_APPLY: ApplyDiscovery(); break;
    default: SnmpEventHandler(data); break;
    }
}

// The table of printers.
#include "prndeck/core/PrdDisc.h"

#include "common/MemMgr.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdDiscHosts.h"
#include "prndeck/core/PrdGuiSnmpText.h"
#include "prndeck/core/PrdOids.h"
#include "prndeck/core/PrdSnmpRead.h"

#include <cstdio>
#include <cstring>

enum { HW_BYTES = 6 };
enum { DESCRIPTION_MAX = 127, DESCRIPTION_CUT = 124 }; // characters, and those that stay in front of "..."
static constexpr char NoHwAddress[] = "00:00:00:00:00:00";

PrnEntry **prnData;
int DevCount;
int prnDataCnt;
int Cur_Product_Index = -1;
PrnEntry *pCurPrnData;

// ---- The table

static void EmptyPrnEntry(PrnEntry *entry) {
    for (char *text : {entry->Name, entry->HostName, entry->Address, entry->Description}) PutMem(text);
    *entry = {};
}

static void SetPrnTexts(PrnEntry *entry, const PrnEntry *from) {
    entry->Name = SaveStr_(from->Name);
    entry->HostName = SaveStr_(from->HostName);
    entry->Address = SaveStr_(from->Address);
    entry->Description = SaveStr_(from->Description);
}

void CopyPrnEntry(PrnEntry *to, const PrnEntry *from) {
    EmptyPrnEntry(to);
    *to = *from;
    SetPrnTexts(to, from);
}

static void GrowPrnData() {
    size_t room = static_cast<size_t>(prnDataCnt) + PRN_GROW;
    auto **table = static_cast<PrnEntry **>(AdjustMem(prnData, room * sizeof(PrnEntry *)));
    if (!table) SysError("%s", OutOfMem);
    prnData = table;
    prnDataCnt += PRN_GROW;
}

PrnEntry *ClaimPrnEntry() {
    if (DevCount == prnDataCnt) GrowPrnData();
    PrnEntry *&entry = prnData[DevCount];
    if (!entry) entry = static_cast<PrnEntry *>(GetMem(sizeof(PrnEntry)));
    if (!entry) SysError("%s", OutOfMem);
    EmptyPrnEntry(entry);
    SetPrnTexts(entry, entry); // null texts make empty ones
    DevCount++;
    return entry;
}

PrnEntry *GetPrnEntry(int index) {
    return index >= 0 && index < DevCount ? prnData[index] : nullptr;
}

int DuplicateDiscoveredPrinterTest(const char *address) {
    for (int i = 0; i < DevCount; i++)
        if (strcmp(prnData[i]->Address, address) == 0) return 1;
    return 0;
}

// ---- What a printer reports

void DecodeHwAdr(char *out, size_t capacity, const unsigned char *bytes) {
    snprintf(out, capacity, "%02x:%02x:%02x:%02x:%02x:%02x", bytes[0], bytes[1], bytes[2], bytes[3], bytes[4],
             bytes[5]);
}

// A number 6 has the same RecValue as a text of six bytes: the kind decides.
static bool IsHwAdr(const PkgVar *var) {
    return var->Status == SUCCESS && var->RecType == VT_STRING && var->RecValue == HW_BYTES && var->RecData;
}

static void SetHwAdr(char *out, size_t capacity, const PkgVar *var) {
    if (IsHwAdr(var))
        DecodeHwAdr(out, capacity, reinterpret_cast<const unsigned char *>(var->RecData));
    else
        snprintf(out, capacity, "%s", NoHwAddress);
}

// A letter of UTF-8 is not cut in two: the half would keep the rest from being read as such.
static void CutDescription(char *text) {
    static constexpr char Cut[] = "...";
    if (strlen(text) <= DESCRIPTION_MAX) return;
    char *end = text + DESCRIPTION_CUT;
    if (IsUtf8Text(text))
        while ((*end & 0xC0) == 0x80) end--;
    strcpy(end, Cut);
}

static void SetPrnText(char **field, const char *text) {
    char *copy = SaveStr_(text);
    PutMem(*field);
    *field = copy;
}

int PrdSnmpPkgCB(int, intptr_t, int, int, SnmpPackage *package, PkgSource *source) {
    if (DuplicateDiscoveredPrinterTest(source->Address)) return 0;
    PrnEntry *entry = ClaimPrnEntry();
    SetPrnText(&entry->Address, source->Address);
    const char *name = package->Vars[DISC_VAR_NAME].RecText;
    SetPrnText(&entry->Name, *name ? name : source->Address);
    char *description = package->Vars[DISC_VAR_DESCRIPTION].RecText;
    CutDescription(description);
    SetPrnText(&entry->Description, description);
    PutMem(entry->HostName);
    PrdGetHostNameS(entry->Address, &entry->HostName);
    SetHwAdr(entry->HwAddress, sizeof entry->HwAddress, &package->Vars[DISC_VAR_HARDWARE]);
    entry->PpdIndex = GetPpdData(entry->Description);
    entry->Flags = PRN_DISCOVERED;
    return 0;
}

// ---- Single reads

int GetSnmpPkgStrVar(const char *address, const char *name, char *out, size_t capacity, int mode) {
    snprintf(out, capacity, "%s", mode == SNMP_READ_HARDWARE ? NoHwAddress : "");
    const char *const names[] = {name, nullptr};
    SnmpPackage package;
    int code = ReadPrinter(&package, address, names);
    if (code == SUCCESS) code = package.Vars[0].Status;
    if (code != SUCCESS) return code;
    if (mode == SNMP_READ_HARDWARE)
        SetHwAdr(out, capacity, &package.Vars[0]);
    else
        snprintf(out, capacity, "%s", package.Vars[0].RecText);
    return SUCCESS;
}

void GetSysName(int index) {
    PrnEntry *entry = GetPrnEntry(index);
    if (!entry || *entry->Name) return;
    char name[PKG_VALUES_SIZE];
    GetSnmpPkgStrVar(entry->Address, OidSysName, name, sizeof name, SNMP_READ_TEXT);
    SetPrnText(&entry->Name, *name ? name : entry->Address);
}

void GetHwAdr(int index) {
    PrnEntry *entry = GetPrnEntry(index);
    if (!entry || *entry->HwAddress) return;
    GetSnmpPkgStrVar(entry->Address, OidIfPhysAddress, entry->HwAddress, sizeof entry->HwAddress,
                     SNMP_READ_HARDWARE);
}

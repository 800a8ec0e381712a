// The table of printers.
#include "prndeck/core/PrdDisc.h"

#include "SnmpPkg/Pkg.h"
#include "common/MemMgr.h"
#include "common/utils.h"

#include <cstdio>
#include <cstring>

enum { HW_BYTES = 6 };
static constexpr char NoHwAddress[] = "00:00:00:00:00:00";
static constexpr char OidSysName[] = "1.3.6.1.2.1.1.5.0";
static constexpr char OidPhysAddress[] = "1.3.6.1.2.1.2.2.1.6.1";

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

// ---- Single reads

void DecodeHwAdr(char *out, size_t capacity, const unsigned char *bytes) {
    snprintf(out, capacity, "%02x:%02x:%02x:%02x:%02x:%02x", bytes[0], bytes[1], bytes[2], bytes[3], bytes[4],
             bytes[5]);
}

// A number 6 has the same RecValue as a text of six bytes: the kind decides.
static bool IsHwAdr(const PkgVar *var) {
    return var->RecType == VT_STRING && var->RecValue == HW_BYTES && var->RecData;
}

int GetSnmpPkgStrVar(const char *address, const char *name, char *out, size_t capacity, int mode) {
    snprintf(out, capacity, "%s", mode == SNMP_READ_HARDWARE ? NoHwAddress : "");
    SnmpPackage package;
    int code = SnmpSetup(&package, PKG_INIT, PKG_EMPTY, name);
    if (code == SUCCESS)
        code = SnmpSend(&package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, PDU_GET, PKG_ADDRESSES, address);
    if (code == SUCCESS) code = package.Vars[0].Status;
    if (code != SUCCESS) return code;
    const PkgVar *var = &package.Vars[0];
    if (mode != SNMP_READ_HARDWARE)
        snprintf(out, capacity, "%s", var->RecText);
    else if (IsHwAdr(var))
        DecodeHwAdr(out, capacity, reinterpret_cast<const unsigned char *>(var->RecData));
    return SUCCESS;
}

void GetSysName(int index) {
    PrnEntry *entry = GetPrnEntry(index);
    if (!entry || *entry->Name) return;
    char name[PKG_VALUES_SIZE];
    GetSnmpPkgStrVar(entry->Address, OidSysName, name, sizeof name, SNMP_READ_TEXT);
    PutMem(entry->Name);
    entry->Name = SaveStr_(*name ? name : entry->Address);
}

void GetHwAdr(int index) {
    PrnEntry *entry = GetPrnEntry(index);
    if (!entry || *entry->HwAddress) return;
    GetSnmpPkgStrVar(entry->Address, OidPhysAddress, entry->HwAddress, sizeof entry->HwAddress,
                     SNMP_READ_HARDWARE);
}

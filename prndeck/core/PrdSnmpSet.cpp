// What is changed in the selected printer.
#include "prndeck/core/PrdSnmpSet.h"

#include "common/Token.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdOids.h"
#include "prndeck/core/PrdSnmpRead.h"

#include <cstring>

static constexpr char ReadCommunity[] = "rdcomm";
static constexpr char WriteCommunity[] = "wrcommx";

// ---- One value

// What is set: a text, or without one a number.
struct SetRequest {
    const char *name;
    const char *text;
    int number;
};

static int SetupSet(SnmpPackage *package, const SetRequest &set, const char *community) {
    int code = SnmpSetup(package, PKG_INIT, PKG_COMMUNITY, community);
    if (code != SUCCESS) return code;
    return set.text ? SnmpSetup(package, PKG_STRING, set.name, set.text)
                    : SnmpSetup(package, PKG_NUMBER, set.name, set.number);
}

static int SendSet(SnmpPackage *package) {
    return SnmpSend(package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, PDU_SET, PKG_ADDRESSES,
                    pCurPrnData->Address);
}

// The text of a variable without an answer looks like a text that somebody may want to set: its Status
// decides.
static bool IsConfirmed(const PkgVar *var, const SetRequest &set) {
    if (var->Status != SUCCESS) return false;
    return set.text ? strcmp(var->RecText, set.text) == 0
                    : var->RecType == VT_NUMBER && var->RecValue == set.number;
}

static bool TrySet(const SetRequest &set, const char *community) {
    SnmpPackage package;
    return SetupSet(&package, set, community) == SUCCESS && SendSet(&package) == SUCCESS &&
           IsConfirmed(&package.Vars[0], set);
}

static bool SetConfirmed(const SetRequest &set) {
    if (!pCurPrnData) return false;
    for (const char *community : {ReadCommunity, WriteCommunity})
        for (int i = 0; i < SET_ATTEMPTS; i++)
            if (TrySet(set, community)) return true;
    return false;
}

bool SNMPSetStringValue(const char *name, const char *text) {
    return SetConfirmed({name, text, 0});
}

bool SNMPSetIntValue(const char *name, int value) {
    return SetConfirmed({name, nullptr, value});
}

// ---- The reset

// ORDER RESET_
const char SNMPResetModes[] = ",SNMPResetNormal,SNMPResetPrivate,SNMPResetPublic,SNMPResetCustomComm,"
                              "SNMPResetSendPrivateOnce,SNMPResetSendPublicOnce,";

bool QueryForSNMPStatus(const char *address) {
    static constexpr const char *DeviceStatus[] = {OidHrDeviceStatus, nullptr};
    enum { STATUS_UNKNOWN = 1, STATUS_WARNING = 3 }; // with running between them
    SnmpPackage package;
    if (ReadPrinter(&package, address, DeviceStatus) != SUCCESS) return false;
    const PkgVar *var = &package.Vars[0];
    return var->Status == SUCCESS && var->RecValue >= STATUS_UNKNOWN && var->RecValue <= STATUS_WARNING;
}

static int GetResetMode() {
    char value[PPD_VALUE];
    const char *name = GetPrnModelItem(pCurPrnData, "SNMPResetMode", value, sizeof value);
    int position = name ? FindToken(name, SNMPResetModes) : 0;
    return position > 0 ? position - 1 : int{RESET_NORMAL};
}

enum ResetResult { RESET_NOT_SENT, RESET_STILL_UP, RESET_TOOK };

// One set. flOnce: that it was sent is enough.
static ResetResult TryReset(const SetRequest &set, const char *community, bool flOnce) {
    SnmpPackage package;
    if (SetupSet(&package, set, community) != SUCCESS) return RESET_NOT_SENT;
    if (SendSet(&package) != SUCCESS) return RESET_STILL_UP;
    return flOnce || !QueryForSNMPStatus(pCurPrnData->Address) ? RESET_TOOK : RESET_STILL_UP;
}

static ResetResult RunResetRound(const SetRequest &set, int mode) {
    ResetResult result = RESET_STILL_UP;
    bool flPublic = mode == RESET_PUBLIC || mode == RESET_SEND_PUBLIC_ONCE;
    if (!flPublic) result = TryReset(set, WriteCommunity, mode == RESET_SEND_PRIVATE_ONCE);
    if (flPublic || (mode == RESET_NORMAL && result == RESET_STILL_UP))
        result = TryReset(set, ReadCommunity, mode == RESET_SEND_PUBLIC_ONCE);
    return result;
}

// A printer that answers has not gone down, whatever it did in between.
static bool StaysDown() {
    for (int i = 0; i < RESET_QUERIES; i++)
        if (QueryForSNMPStatus(pCurPrnData->Address)) return false;
    return true;
}

bool SNMPSendReset(const char *name, int value) {
    if (!pCurPrnData || !QueryForSNMPStatus(pCurPrnData->Address)) return false;
    int mode = GetResetMode();
    ResetResult result = RESET_STILL_UP;
    for (int i = 0; i < RESET_ROUNDS && result == RESET_STILL_UP; i++)
        result = RunResetRound({name, nullptr, value}, mode);
    if (result != RESET_TOOK) return false;
    return mode == RESET_SEND_PRIVATE_ONCE || mode == RESET_SEND_PUBLIC_ONCE || StaysDown();
}

// One whole exchange: commands, targets, requests and answers.
#include "SnmpPkg/Pkg.h"

#include "SnmpPkg/Decode.h"
#include "SnmpPkg/Encode.h"
#include "SnmpPkg/Filter.h"
#include "SnmpPkg/Log.h"
#include "SnmpPkg/Udp.h"
#include "common/Token.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

enum { BURST_SECONDS = 1 }; // of silence end a broadcast and a trap

// What the commands of a send say beyond the package's own fields.
struct PkgSend {
    va_list List;
    int Mode = 0;
    int Pdu = -1;
    const char *Filter = nullptr;
    const char *Addresses = nullptr;
};

// ---- One host

// Writes the request for one variable; false if it does not fit a packet.
static bool EncodeRequest(const SnmpPackage *package, PkgPacket *packet, int number) {
    PkgStartPacket(packet);
    return EncodeVar(&package->Vars[number], packet, package->Pdu == PDU_SET) == 0 &&
           PkgEncodePacketProlog(packet, package->Community, number + 1, package->Pdu);
}

// What is still to come while a host is asked.
struct PkgAsked {
    uint64_t Open = 0; // 1 << number of each variable that was asked for and has no answer yet
    int Others = 0;    // receives that a datagram naming another variable than the one waited for used up
};
static_assert(PKG_VARS <= 64);

static uint64_t OpenBit(int number) {
    return uint64_t{1} << number;
}

// The name of the first binding at Pos; false if there is none.
static bool ReadFirstName(PkgPacket *packet, char *name, int capacity) {
    PkgHeader list, binding, object;
    return PkgDecodeHeader(packet, &list) && PkgDecodeHeader(packet, &binding) &&
           PkgDecodeObjectId(packet, &object, name, capacity);
}

// An answer to the variable waited for settles that one. Any other one that it names is settled as well, but
// the answer waited for is still under way then.
static void NoteAnswer(const SnmpPackage *package, PkgAsked *asked, int awaited, const char *name) {
    if (package->Pdu == PDU_GETNEXT) return; // an answer never carries the name that was asked
    if (awaited >= 0 && strcmp(package->Vars[awaited].Name, name) == 0) {
        asked->Open &= ~OpenBit(awaited);
        return;
    }
    asked->Others++;
    for (int i = 0; i < package->NumVars; i++)
        if (strcmp(package->Vars[i].Name, name) == 0) asked->Open &= ~OpenBit(i);
}

// Whatever came counts as the answer that was waited for; only its names say what it fills. One with an error
// fills nothing, but it is the answer to the name that it carries.
static void DecodeAnswer(SnmpPackage *package, PkgPacket *packet, PkgAsked *asked, int awaited) {
    PkgProlog prolog;
    PkgPrologText text;
    char name[PKG_OID_TEXT_SIZE];
    LogPacket(package, packet, "Receive Packet");
    bool sound = PkgReadProlog(packet, &prolog, &text);
    if (!sound && prolog.ErrorStatus == 0 && prolog.ErrorIndex == 0) return;
    int bindings = packet->Pos;
    if (ReadFirstName(packet, name, sizeof name)) NoteAnswer(package, asked, awaited, name);
    packet->Pos = bindings;
    if (sound) DecodeVariables(packet, package, prolog.Version);
}

static int ReceiveAnswer(SnmpPackage *package, int timeout, PkgSource *source, PkgAsked *asked, int awaited) {
    PkgPacket packet;
    int code = UdpReceivePacket(package, source, &packet, timeout);
    if (code == SUCCESS) DecodeAnswer(package, &packet, asked, awaited);
    return code;
}

// One late answer that took the receive of another variable leaves that one's answer to the next receive, and
// so on, up to the next host, which would be given its neighbour's values. So as many more are received as
// were taken, until nothing is open or nothing comes.
static void ReceiveOthers(SnmpPackage *package, int timeout, PkgSource *source, PkgAsked *asked) {
    for (int left = asked->Others; left > 0 && asked->Open != 0; left--)
        if (ReceiveAnswer(package, timeout, source, asked, -1) == SEND_ERR_TIMED_OUT) return;
}

// One attempt for each variable, one binding a packet, so that a host that knows a part of the list gives
// that part.
static void AskVariables(SnmpPackage *package, int timeout, PkgSource *source) {
    PkgPacket packet;
    PkgAsked asked;
    *source = {};
    InitRecVars(package);
    for (int i = 0; i < package->NumVars; i++) {
        if (!EncodeRequest(package, &packet, i)) continue;
        if (UdpSendPacket(package, nullptr, &packet) != SUCCESS) continue;
        asked.Open |= OpenBit(i);
        int code = ReceiveAnswer(package, timeout, source, &asked, i);
        if (code != SUCCESS) package->Vars[i].Status = code;
    }
    ReceiveOthers(package, timeout, source, &asked);
}

static void CallBack(SnmpPackage *package, const char *filter, PkgSource *source) {
    if (!package->Callback || !PassFilter(filter, package)) return;
    package->Callback(0, package->UserData, 0, 0, package, source);
}

void GetVariables(SnmpPackage *package, int timeout, const char *filter) {
    PkgSource source;
    AskVariables(package, timeout, &source);
    CallBack(package, filter, &source);
}

// ---- Tables

// The last arc of a name and what it stands at.
static char *LastArc(char *name) {
    char *dot = strrchr(name, '.');
    return dot != nullptr ? dot + 1 : name;
}

// Puts a number into the last arc; false if the name's room does not hold it.
static bool PutLastArc(PkgVar *var, int number) {
    char digits[16];
    char *arc = LastArc(var->Name);
    int length = snprintf(digits, sizeof digits, "%i", number);
    if (number < 0 || arc - var->Name + length >= var->NameRoom) return false;
    strcpy(arc, digits);
    return true;
}

static bool NextTableRow(SnmpPackage *package) {
    bool fits = true;
    for (int i = 0; i < package->NumVars; i++) {
        int arc = atoi(LastArc(package->Vars[i].Name));
        fits = arc < INT_MAX && PutLastArc(&package->Vars[i], arc + 1) && fits;
    }
    return fits;
}

void GetTableVariables(SnmpPackage *package, int timeout, const char *filter) {
    int first[PKG_VARS];
    for (int i = 0; i < package->NumVars; i++) first[i] = atoi(LastArc(package->Vars[i].Name));
    package->Pdu = PDU_GET;
    for (int row = 0; row < PKG_TABLE_ROWS && package->NumVars > 0; row++) {
        PkgSource source;
        AskVariables(package, timeout, &source);
        if (package->Vars[0].Status != SUCCESS) break;
        CallBack(package, filter, &source);
        if (!NextTableRow(package)) break;
    }
    // The next target starts at the first row again.
    for (int i = 0; i < package->NumVars; i++) PutLastArc(&package->Vars[i], first[i]);
    package->Pdu = PDU_TABLE;
}

// ---- Broadcast, trap, single datagrams

int ReceiveBroadcast(SnmpPackage *package) {
    if (!package->Callback) return 0;
    PkgPacket packet;
    uint32_t address = 0;
    int count = 0;
    int64_t end =
        UdpMilliseconds() + int64_t{SnmpBroadcastLimit} * 1000; // a drip of datagrams must not go on for ever
    while (count < PKG_STORE_MAX && UdpMilliseconds() < end) {
        if (UdpReceivePacketBinAdr(package, &address, &packet, BURST_SECONDS) != SUCCESS) break;
        count += Store(&address);
    }
    return count;
}

int ReceiveTrap(SnmpPackage *package) {
    PkgPacket packet;
    int seconds = package->SendMode >= PKG_MODE_BROADCAST ? BURST_SECONDS : package->Timeout;
    int64_t end = UdpMilliseconds() + int64_t{SnmpBroadcastLimit} * 1000;
    while (UdpMilliseconds() < end) {
        int code = UdpReceivePacket(package, nullptr, &packet, seconds);
        if (code != SUCCESS) return code;
    }
    return SEND_ERR_TIMED_OUT;
}

int ReceivePacket(SnmpPackage *package) {
    PkgPacket packet;
    PkgSource source = {};
    PkgProlog prolog;
    PkgPrologText text;
    int code = UdpReceivePacket(package, &source, &packet, package->Timeout);
    if (code != SUCCESS) return code;
    InitRecVars(package);
    LogPacket(package, &packet, "Receive Packet");
    if (PkgReadProlog(&packet, &prolog, &text)) DecodeVariables(&packet, package, prolog.Version);
    if (package->Callback)
        package->Callback(0, package->UserData, prolog.ErrorStatus, prolog.ErrorIndex, package, &source);
    return SUCCESS;
}

// ---- The run

static int SendCommand(SnmpPackage *package, int command, PkgSend *send) {
    switch (command) { // ORDER PkgCommand
    case PKG_COMMUNITY: return PkgSetCommunity(package, va_arg(send->List, const char *));
    case PKG_CALLBACK: package->Callback = va_arg(send->List, PkgCallback); return SUCCESS;
    case PKG_USERDATA:
        package->UserData = reinterpret_cast<intptr_t>(va_arg(send->List, void *));
        return SUCCESS;
    case PKG_SENDMODE: send->Mode = va_arg(send->List, int); return SUCCESS;
    case PKG_PDU: send->Pdu = va_arg(send->List, int); return SUCCESS;
    case PKG_CLEAR_DISCOVERED: InitDiscoveredList(); return SUCCESS;
    case PKG_SENDARG: va_arg(send->List, int); return SUCCESS; // nothing uses it
    case PKG_FILTER: send->Filter = va_arg(send->List, const char *); return SUCCESS;
    case PKG_ADDRESSES: send->Addresses = va_arg(send->List, const char *); return SUCCESS;
    default: return SETUP_ERR_INVALID_PARAM; // the commands of a set-up have no place here
    }
}

static int ReadSendCommands(SnmpPackage *package, PkgSend *send) {
    for (;;) {
        int command = va_arg(send->List, int);
        if (command == PKG_END || command == 0) break;
        int code = SendCommand(package, command, send);
        if (code != SUCCESS) return code;
    }
    if (send->Mode == 0 || send->Pdu == -1 || !send->Addresses) return SETUP_ERR_XTL_INIT;
    if (send->Mode < PKG_MODE_GET || send->Mode > PKG_MODE_TRAP) return SETUP_ERR_INVALID_PARAM;
    if (send->Pdu < PDU_GET || send->Pdu > PDU_SET) return SETUP_ERR_INVALID_PARAM;
    package->SendMode = send->Mode;
    package->Pdu = send->Pdu;
    package->Port = send->Mode == PKG_MODE_TRAP ? SnmpTrapPort : SnmpAgentPort;
    return SUCCESS;
}

static int SendGet(SnmpPackage *package, const PkgSend *send) {
    if (package->Pdu == PDU_TABLE && package->Callback)
        GetTableVariables(package, package->Timeout, send->Filter);
    else
        GetVariables(package, package->Timeout, send->Filter);
    return SUCCESS; // what came is told by each variable's Status
}

static int SendOnce(SnmpPackage *package, const char *mask) {
    PkgPacket packet;
    int code = EncodePkg(package, &packet);
    if (code == SUCCESS) code = UdpSendPacket(package, mask, &packet);
    if (code != SUCCESS) return code;
    return package->SendMode == PKG_MODE_TRAP ? ReceiveTrap(package) : ReceiveBroadcast(package);
}

// What stands behind the first blank of an element, which is cut there; null if that is nothing.
static char *CutMask(char *element) {
    char *mask = strchr(element, ' ');
    if (!mask) return nullptr;
    *mask++ = 0;
    mask += strspn(mask, " ");
    return *mask != 0 ? mask : nullptr;
}

// One element of the target list, "ADDRESS" or "ADDRESS MASK"; the mask counts in a broadcast alone.
static int SendTarget(SnmpPackage *package, const PkgSend *send, char *element) {
    element += strspn(element, " ");
    char *mask = CutMask(element);
    // An address that was cut might be somebody else's: too long a text is none.
    int length = snprintf(package->Address, sizeof package->Address, "%s", element);
    if (length >= static_cast<int>(sizeof package->Address)) package->Address[0] = 0;
    InitRecVars(package);
    if (package->SendMode < PKG_MODE_BROADCAST) return SendGet(package, send);
    return SendOnce(package, package->SendMode == PKG_MODE_BROADCAST ? mask : nullptr);
}

static int RunSend(SnmpPackage *package, const PkgSend *send) {
    char element[TOKEN_SIZE];
    char *position = nullptr;
    int result = SUCCESS;
    if (UdpOpenSocket(package) == 0) return SETUP_ERR_UNKNOWN_CMD;
    for (char *next = GetTokenD(send->Addresses, ",", &position, element); next != nullptr;
         next = GetTokenD(nullptr, ",", &position, element))
        result = SendTarget(package, send, element);
    if (package->SendMode == PKG_MODE_BROADCAST) WalkDiscovered(package, send->Filter, package->Callback);
    UdpCloseSocket(package);
    return result;
}

int SnmpSendPkg(SnmpPackage *package, ...) {
    if (!package) return SETUP_ERR_XTL_INIT;
    PkgSend send;
    va_start(send.List, package);
    int code = ReadSendCommands(package, &send);
    va_end(send.List);
    return code != SUCCESS ? code : RunSend(package, &send);
}

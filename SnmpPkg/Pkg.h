// One SNMP exchange in one record: variables, names, values to send and values received, community, target,
// callback.
//
// A caller keeps a SnmpPackage in a local variable, fills it by one run of commands to SnmpSetupPkg and hands
// it to SnmpSendPkg, which sends, waits, reads the answers into the same record and calls back once for each
// host. The whole exchange happens inside that call: a host that answers costs one round trip for each
// variable, a silent one Timeout seconds for each. No heap is used, neither for a package nor for a packet;
// the discovered set alone grows.
//
//     SnmpPackage package;
//     if (SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.6.1.2.1.1.5.0") == SUCCESS)
//         SnmpSend(&package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, PDU_GET, PKG_ADDRESSES, "10.0.0.7");
//     if (package.Vars[0].Status == SUCCESS) ... package.Vars[0].RecText
//
// What came in is judged by Status of each variable, not by a result. Answers are matched to variables by the
// name that they carry and by nothing else: neither the sender nor the request id is compared, so a late
// answer still fills its variable. It also takes the receive of another one; so behind the last variable at
// most as many more are received, until each has been answered or Timeout seconds are silent. A package is
// valid after PKG_INIT only and must not be copied: its pointers point into it. One exchange at a time; a
// callback must not start another one that uses the discovered set.
#pragma once

#include "SnmpPkg/Packet.h"

#include <cstdarg>
#include <cstddef>
#include <type_traits>

enum { // the commands of a run; ORDER PkgCommand
    PKG_INIT = 1,
    PKG_COMMUNITY = 2,
    PKG_CALLBACK = 3,
    PKG_USERDATA = 4,
    PKG_LOG = 5,
    PKG_NUMBER = 6,
    PKG_COUNTER = 7,
    PKG_GAUGE = 8,
    PKG_TIMETICKS = 9,
    PKG_UINTEGER32 = 10,
    PKG_STRING = 11,
    PKG_OPAQUE = 12,
    PKG_OBJECT = 13,
    PKG_EMPTY = 14,
    PKG_EMPTY_LIST = 15,
    PKG_TABLE_NAME = 16,
    PKG_TABLE_LIST = 17,
    PKG_IPADDRESS = 18,
    PKG_IPADDRESS_TEXT = 19,
    PKG_COUNTER64 = 20,
    PKG_NSAP = 21,
    PKG_BITSTRING = 22,
    PKG_END = 23,
    PKG_SENDMODE = 24,
    PKG_PDU = 25,
    PKG_CLEAR_DISCOVERED = 26,
    PKG_SENDARG = 27,
    PKG_FILTER = 28,
    PKG_ADDRESSES = 29,
};

enum { // VT codes; ORDER VtType
    VT_NUMBER = 0,
    VT_COUNTER = 1,
    VT_GAUGE = 2,
    VT_TIMETICKS = 3,
    VT_UINTEGER32 = 4, // received it is 7, the low bits of its tag
    VT_STRING = 5,
    VT_OPAQUE = 6, // received it is 68, its tag
    VT_OBJECT = 7,
    VT_EMPTY = 8,
    VT_IPADDRESS = 9,
    VT_COUNTER64 = 10,
    VT_NSAPADDRESS = 11,
    VT_BITSTRING = 12,
    VT_COUNT,
    VT_UNKNOWN = 16, // received only, as those below
    VT_NOSUCHOBJ = 128,
    VT_NOSUCHINS = 129,
    VT_ENDOFMIB = 130,
};

enum { // results of SnmpSetupPkg and SnmpSendPkg, and Status of a variable; ORDER pErr
    SUCCESS = 0,
    SETUP_ERR_XTL_INIT = 1,
    SETUP_ERR_UNKNOWN_CMD = 2,
    SETUP_ERR_INVALID_PARAM = 3,
    SEND_ERR_VAR_BIND = 4,
    SEND_ERR_ENCODE_FAILED = 5,
    SEND_ERR_TIMED_OUT = 6,
    SEND_CANCELLED = 7,
    SEND_ERR_TOO_BIG = 8,
    SEND_ERR_SEND_PACKET = 9,
    SEND_ERR_SOCKET_BUSY = 10,
    SEND_ERR_NO_DATA = 11,
    SEND_ERR_NOT_ALL_SENT = 12,
    SEND_ERR_TOO_LARGE = 13,
    SEND_ERR_TRANSPORT_ERR = 14,
    SEND_DATA_NOT_FILLED = 15,
    SEND_ERR_BAD_ADDRESS = 16,
    PKG_ERR_COUNT,
    XTL_ERR_COUNT = 33,
};

enum {
    PKG_MODE_GET = 1,
    PKG_MODE_GET_2 = 2,
    PKG_MODE_BROADCAST = 3,
    PKG_MODE_TRAP = 4
}; // the two gets are one
enum { PDU_GET = 0, PDU_GETNEXT = 1, PDU_TABLE = 2, PDU_SET = 3 };

enum {
    PKG_VARS = 50,
    PKG_NAMES_SIZE = 2048,
    PKG_VALUES_SIZE = 2048,
    PKG_ADDRESS_SIZE = 18,
    PKG_TABLE_SPARE = 10,  // bytes behind the name of a table column, for its last arc to grow
    PKG_TABLE_ROWS = 256,  // rows after which a table walk is given up: an agent may answer for ever
    PKG_TIMEOUT = 3,       // seconds
    PKG_STORE_MAX = 65536, // answers taken from one broadcast
};

struct SnmpPackage;

// The peer of a datagram. Callers rely on the text standing two bytes into the record.
struct PkgSource {
    uint16_t Port;
    char Address[PKG_ADDRESS_SIZE]; // dotted text, empty if nothing was received
};
static_assert(offsetof(PkgSource, Address) == 2);

// Called once a host has been read. error is 0; errorStatus and errorIndex come from ReceivePacket alone,
// else 0. The result is not used. The record is the exchange's: texts may be changed in place, nothing else.
typedef int (*PkgCallback)(int error, intptr_t userData, int errorStatus, int errorIndex,
                           SnmpPackage *package, PkgSource *source);

struct SnmpPackage {
    int32_t NumVars;
    int32_t NumRecVars; // at least NumVars: an answer that names a stranger appends it
    PkgVar Vars[PKG_VARS];
    int32_t NameUsed; // by the set-up
    int32_t ValueUsed;
    int32_t RecNameUsed; // after a receive
    int32_t RecValueUsed;
    char Names[PKG_NAMES_SIZE];
    char Values[PKG_VALUES_SIZE];
    PkgCallback Callback;
    intptr_t UserData;
    int32_t Timeout; // seconds for one answer
    int32_t Socket;  // 0 outside SnmpSendPkg
    uint16_t Port;
    char Address[PKG_ADDRESS_SIZE]; // current target
    char *Community;                // in Names
    int32_t CommunityRoom;          // bytes reserved there
    int32_t LogPackets;
    int32_t SendMode;
    int32_t Pdu;
    char Unfilled[16]; // RecText of a variable that got nothing: 14 underscores
    char Empty[2];     // RecText of a NULL
};
static_assert(std::is_trivial_v<SnmpPackage>, "PKG_INIT clears it as bytes");

extern const char *const pErr[PKG_ERR_COUNT];
extern const char *const pXtlErr[XTL_ERR_COUNT]; // padded to 21 characters; row (code % 300) + 33
// The name of a result of either table; "UNKNOWN" for any other number.
const char *PkgErrName(int code);

// Where agents listen. Tests move the ports and shorten the limit; the program never does.
extern uint16_t SnmpAgentPort; // 161
extern uint16_t SnmpTrapPort;  // 162
extern int SnmpBroadcastLimit; // 60: seconds after which a broadcast or a trap is no longer listened to

// Runs commands 1 to 23 until PKG_END. 0; 1 without a package; 3 at once for a 0 or a number above 23. A
// command whose argument cannot be used (no room for a variable, a name or a value, a negative length, a
// missing text, no address) leaves the package as it is, the others are carried out, and the result is 3. A
// null name makes no variable. Arguments: commands, numbers and counts as int; names, texts, bytes, callback
// and PKG_USERDATA as pointers; a list ends with (char *)nullptr. SnmpSetup brings its arguments into this
// form and ends the run.
int SnmpSetupPkg(SnmpPackage *package, ...);

// Runs commands 2, 3, 4 and 24 to 29 until PKG_END or 0, then the exchange. 1 without a package, mode, PDU or
// target list; 2 if there is no socket; 3 for an unknown command, mode or PDU, or a community that does not
// fit; nothing is sent then. Get modes give 0, a broadcast the answers counted on the last subnet, a trap the
// code that ended it. Uses: chTokenDel. The target list and the filter must stay as they are until the call
// ends, callbacks included.
int SnmpSendPkg(SnmpPackage *package, ...);

// Copies a community into the name area; 3 if there is none or no room for it.
int PkgSetCommunity(SnmpPackage *package, const char *text);
// Appends a variable with a copy of the name; null for a null name and when there is no room.
PkgVar *InitVar(SnmpPackage *package, int type, const char *name);

int EncodeVar(const PkgVar *var, PkgPacket *packet, int flSendValue); // 0; 1 for an unknown type
int EncodeVars(const SnmpPackage *package, PkgPacket *packet, int flSendValue);
int EncodePkg(const SnmpPackage *package, PkgPacket *packet); // 0 or SEND_ERR_TOO_BIG

// Forgets what was received: Status 15, Unfilled as text, everything else of the receive 0.
void InitRecVars(SnmpPackage *package);
// Reads the value at Pos into the variable of that name, appended if there is none. What has no room or does
// not fit its type is stepped over: a variable with a value keeps that, one without is told the type alone.
// The version plays no part yet.
void DecodeVar(PkgPacket *packet, const char *name, SnmpPackage *package, uint32_t version);
// Walks the bindings from Pos to Len.
void DecodeVariables(PkgPacket *packet, SnmpPackage *package, uint32_t version);
// Prolog and first binding; true if both could be read. Owns: as PkgDecodePacketProlog.
bool DecodeVariable(PkgPacket *packet, SnmpPackage *package, PkgProlog *prolog);

// Asks the host in Address for one variable after the other, receives what other answers left behind, then
// calls back if the filter passes.
void GetVariables(SnmpPackage *package, int timeout, const char *filter);
// Walks a table row by row, calling back for each row whose first column came, and stops at the first that
// has none, after PKG_TABLE_ROWS, or when a name has no room to grow. The names are those of the set-up again
// afterwards.
void GetTableVariables(SnmpPackage *package, int timeout, const char *filter);

int ReceiveBroadcast(SnmpPackage *package); // answers stored, until a second of silence
int ReceiveTrap(SnmpPackage *package);      // the code that ended the wait
// One datagram for a caller with a loop of its own. Calls back also if it carries an error status.
int ReceivePacket(SnmpPackage *package);

// The discovered set: a bit for each address that answered, in a tree over the four bytes of the address.
// Blocks are made on demand and never given back; 2 KB for a first and a second byte each, 32 bytes for a
// third.
extern unsigned char ***FirstQuad[256]; // writer: Store

void InitDiscoveredList();      // empties the set, keeps the blocks
int GetBit(int number);         // 1 << number, 0 outside 0 to 7
int Store(const void *address); // 4 bytes, network order; 1, or 0 when memory is exhausted
void WalkDiscovered(SnmpPackage *package, const char *filter, PkgCallback callback); // ascending addresses

// The typed front of the two runs: any integer goes as int, an object address and nullptr as a pointer, and
// PKG_END is added. A wider integer is refused at compile time, it would be read as something else.
template <class T>
auto PkgArgument(T value) {
    if constexpr (std::is_null_pointer_v<T>) {
        return static_cast<const char *>(nullptr);
    } else if constexpr (std::is_pointer_v<T>) {
        static_assert(!std::is_function_v<std::remove_pointer_t<T>> || std::is_same_v<T, PkgCallback>);
        return value;
    } else {
        static_assert((std::is_integral_v<T> || std::is_enum_v<T>)&&sizeof(T) <= sizeof(int));
        return static_cast<int>(value);
    }
}
template <class... T>
int SnmpSetup(SnmpPackage *package, T... arguments) {
    return SnmpSetupPkg(package, PkgArgument(arguments)..., static_cast<int>(PKG_END));
}
template <class... T>
int SnmpSend(SnmpPackage *package, T... arguments) {
    return SnmpSendPkg(package, PkgArgument(arguments)..., static_cast<int>(PKG_END));
}

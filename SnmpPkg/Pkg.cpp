// The package record of the SNMP package: set-up, encoding of the variables, decoding into them.
#include "SnmpPkg/Pkg.h"

#include "SnmpPkg/Decode.h"
#include "SnmpPkg/Encode.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <string_view>

enum { NUMBER_TEXT = 12, BYTE_TEXT = 5 }; // "-2147483648" and its 0 byte; "0xFF "

uint16_t SnmpAgentPort = 161;
uint16_t SnmpTrapPort = 162;
int SnmpBroadcastLimit = 60;

static constexpr char DefaultCommunity[] = "rdcomm";
static constexpr char UnfilledText[] = "______________";
static_assert(sizeof UnfilledText <= sizeof SnmpPackage::Unfilled);

// ORDER pErr
const char *const pErr[] = {
    "SUCCESS",
    "SETUP_ERR_XTL_INIT",
    "SETUP_ERR_UNKNOWN_CMD",
    "SETUP_ERR_INVALID_PARAM",
    "SEND_ERR_VAR_BIND",
    "SEND_ERR_ENCODE_FAILED",
    "SEND_ERR_TIMED_OUT",
    "SEND_CANCELLED",
    "SEND_ERR_TOO_BIG",
    "SEND_ERR_SEND_PACKET",
    "SEND_ERR_SOCKET_BUSY",
    "SEND_ERR_NO_DATA",
    "SEND_ERR_NOT_ALL_SENT",
    "SEND_ERR_TOO_LARGE",
    "SEND_ERR_TRANSPORT_ERR",
    "SEND_DATA_NOT_FILLED",
    "SEND_ERR_BAD_ADDRESS",
};
static_assert(std::size(pErr) == PKG_ERR_COUNT);

constexpr const char *const pXtlErr[] = {
    "XTLERR_NOT_FOUND     ", "XTLERR_NO_TIMER      ", "XTLERR_TOO_BIG       ", "XTLERR_NO_MAC        ",
    "XTLERR_NB_INIT       ", "XTLERR_WINSOCK_INIT  ", "XTLERR_NOT_SUPPORTED ", "XTLERR_NOT_CONNECTED ",
    "XTLERR_SPX_INIT      ", "XTLERR_TCP_INIT      ", "XTLERR_CANCELLED     ", "XTLERR_LOCAL_INIT    ",
    "XTLERR_BAD_ADDRESS   ", "XTLERR_WRITE_ONLY    ", "XTLERR_TOO_LARGE     ", "XTLERR_READ_ONLY     ",
    "XTLERR_SOCKET_BUSY   ", "XTLERR_NOT_ALL_SENT  ", "XTLERR_TRANSPORT_ERR ", "XTLERR_ALREADY_BOUND ",
    "XTLERR_NOT_BOUND     ", "XTLERR_BIND_FAILED   ", "XTLERR_BLOCKING      ", "XTLERR_NO_INIT       ",
    "XTLERR_SOCKET_DESTROY", "XTLERR_SOCKET_CREATE ", "XTLERR_INVALID_PARAM ", "XTLERR_NOMEM         ",
    "XTLERR_INTERNAL      ", "XTLERR_IPC_INIT      ", "XTLERR_DDP_INIT      ", "XTLERR_UDP_INIT      ",
    "XTLERR_IPX_INIT      ",
};
static_assert(std::size(pXtlErr) == XTL_ERR_COUNT);
static_assert(std::ranges::all_of(pXtlErr,
                                  [](const char *name) { return std::string_view(name).size() == 21; }));

const char *PkgErrName(int code) {
    if (code >= 0 && code < PKG_ERR_COUNT) return pErr[code];
    if (code >= -333 && code <= -301) return pXtlErr[code % 300 + XTL_ERR_COUNT];
    return "UNKNOWN";
}

// ---- Set-up

// A variable shows the underscores until something arrives.
static void PkgClearVar(SnmpPackage *package, PkgVar *var) {
    var->Status = SEND_DATA_NOT_FILLED;
    var->RecType = var->RecClass = 0;
    var->RecValue = 0;
    var->RecData = nullptr;
    var->RecText = package->Unfilled;
}

// Copies a text into the name area at *used, with spare bytes behind it; null if it does not fit.
static char *PkgStoreName(SnmpPackage *package, int32_t *used, const char *text, int room) {
    if (room > PKG_NAMES_SIZE - *used) return nullptr;
    char *name = package->Names + *used;
    memset(name, 0, static_cast<size_t>(room));
    strcpy(name, text);
    *used += room;
    return name;
}

static int PkgTextRoom(const char *text, int spare) {
    return static_cast<int>(strnlen(text, PKG_NAMES_SIZE)) + 1 + spare;
}

// Copies bytes into the value area, a 0 byte behind them; the caller has asked PkgValueFits.
static char *PkgStoreValue(SnmpPackage *package, const void *bytes, int length) {
    char *value = package->Values + package->ValueUsed;
    if (length > 0) memcpy(value, bytes, static_cast<size_t>(length));
    value[length] = 0;
    package->ValueUsed += length + 1;
    package->RecValueUsed = package->ValueUsed;
    return value;
}

static bool PkgValueFits(const SnmpPackage *package, int length) {
    return length >= 0 && length < PKG_VALUES_SIZE - package->ValueUsed;
}

static PkgVar *InitVarSpare(SnmpPackage *package, int type, const char *name, int spare) {
    if (!name || package->NumVars >= PKG_VARS) return nullptr;
    PkgVar *var = &package->Vars[package->NumVars];
    int room = PkgTextRoom(name, spare);
    char *copy = PkgStoreName(package, &package->NameUsed, name, room);
    if (!copy) return nullptr;
    *var = {};
    var->Name = copy;
    var->NameRoom = room;
    var->SendType = type;
    PkgClearVar(package, var);
    package->NumRecVars = ++package->NumVars;
    package->RecNameUsed = package->NameUsed;
    return var;
}

PkgVar *InitVar(SnmpPackage *package, int type, const char *name) {
    return InitVarSpare(package, type, name, 0);
}

// A community that fits where the last one stands takes its place, so that a package can be sent any number
// of times.
int PkgSetCommunity(SnmpPackage *package, const char *text) {
    if (!text) return SETUP_ERR_INVALID_PARAM;
    int room = PkgTextRoom(text, 0);
    if (room <= package->CommunityRoom) {
        memmove(package->Community, text, static_cast<size_t>(room));
        return SUCCESS;
    }
    char *copy = PkgStoreName(package, &package->NameUsed, text, room);
    if (!copy) return SETUP_ERR_INVALID_PARAM;
    package->RecNameUsed = package->NameUsed;
    package->Community = copy;
    package->CommunityRoom = room;
    return SUCCESS;
}

static int PkgInit(SnmpPackage *package) {
    memset(static_cast<void *>(package), 0, sizeof *package);
    strcpy(package->Unfilled, UnfilledText);
    package->Port = SnmpAgentPort;
    package->Timeout = PKG_TIMEOUT;
    return PkgSetCommunity(package, DefaultCommunity);
}

static int PkgAddNumber(SnmpPackage *package, int type, const char *name, int32_t value, int32_t low = 0) {
    if (!name) return SUCCESS;
    PkgVar *var = InitVar(package, type, name);
    if (!var) return SETUP_ERR_INVALID_PARAM;
    var->SendValue = value;
    var->SendData = low;
    return SUCCESS;
}

static int PkgAddBytes(SnmpPackage *package, int type, const char *name, int length, const void *bytes,
                       int spare = 0) {
    if (!name) return SUCCESS;
    if (!PkgValueFits(package, length) || !bytes) return SETUP_ERR_INVALID_PARAM;
    PkgVar *var = InitVarSpare(package, type, name, spare);
    if (!var) return SETUP_ERR_INVALID_PARAM;
    var->SendValue = length;
    var->SendData = reinterpret_cast<intptr_t>(PkgStoreValue(package, bytes, length));
    return SUCCESS;
}

static int PkgAddText(SnmpPackage *package, int type, const char *name, const char *text) {
    if (!name) return SUCCESS;
    int length = text != nullptr ? static_cast<int>(strnlen(text, PKG_VALUES_SIZE)) : -1;
    int code = PkgAddBytes(package, type, name, length, text);
    if (code != SUCCESS || type != VT_OBJECT) return code;
    PkgVar *var = &package->Vars[package->NumVars - 1];
    var->SendValue = var->SendData;
    return code;
}

// An empty variable holds one 0 byte and counts it, unlike an empty string.
static int PkgAddEmpty(SnmpPackage *package, const char *name, int spare) {
    if (!name) return SUCCESS;
    int code = PkgAddBytes(package, VT_EMPTY, name, 0, "", spare);
    if (code == SUCCESS) package->Vars[package->NumVars - 1].SendValue = 1;
    return code;
}

static int PkgAddAddress(SnmpPackage *package, const char *name, const char *text) {
    in_addr address;
    if (!name) return SUCCESS;
    if (!text || inet_aton(text, &address) == 0) return SETUP_ERR_INVALID_PARAM;
    return PkgAddNumber(package, VT_IPADDRESS, name, static_cast<int32_t>(address.s_addr));
}

// Takes bits / 8 + 1 bytes of the value area; of the caller's, only those that hold a bit are read.
static int PkgAddBits(SnmpPackage *package, const char *name, int bits, const void *bytes) {
    if (!name) return SUCCESS;
    if (bits < 0 || !bytes || !PkgValueFits(package, bits / 8 + 1)) return SETUP_ERR_INVALID_PARAM;
    PkgVar *var = InitVar(package, VT_BITSTRING, name);
    if (!var) return SETUP_ERR_INVALID_PARAM;
    int length = bits / 8 + (bits % 8 != 0);
    var->SendValue = bits;
    var->SendData = reinterpret_cast<intptr_t>(PkgStoreValue(package, bytes, length));
    if (bits % 8 == 0) PkgStoreValue(package, nullptr, 0);
    return SUCCESS;
}

// The arguments of a run. A function that reads them takes the record, so that all read from one place.
struct PkgArguments {
    va_list List;
    int Int() { return va_arg(List, int); }
    const char *Text() { return va_arg(List, const char *); }
    void *Pointer() { return va_arg(List, void *); }
};

static int PkgRunList(SnmpPackage *package, PkgArguments *in, int spare) {
    int code = SUCCESS;
    while (const char *name = in->Text())
        if (PkgAddEmpty(package, name, spare) != SUCCESS) code = SETUP_ERR_INVALID_PARAM;
    return code;
}

static int PkgRunNumber(SnmpPackage *package, PkgArguments *in, int type) {
    const char *name = in->Text();
    return PkgAddNumber(package, type, name, in->Int());
}

static int PkgRunText(SnmpPackage *package, PkgArguments *in, int type) {
    const char *name = in->Text();
    return PkgAddText(package, type, name, in->Text());
}

static int PkgRunBytes(SnmpPackage *package, PkgArguments *in, int type) {
    const char *name = in->Text();
    int length = in->Int();
    const void *bytes = in->Pointer();
    if (type == VT_BITSTRING) return PkgAddBits(package, name, length, bytes);
    return PkgAddBytes(package, type, name, length, bytes);
}

static int PkgRunAddress(SnmpPackage *package, PkgArguments *in) {
    const char *name = in->Text();
    return PkgAddAddress(package, name, in->Text());
}

static int PkgRunCounter64(SnmpPackage *package, PkgArguments *in) {
    const char *name = in->Text();
    int high = in->Int();
    return PkgAddNumber(package, VT_COUNTER64, name, high, in->Int());
}

// ORDER PkgCommand
static int PkgRunCommand(SnmpPackage *package, int command, PkgArguments *in) {
    switch (command) {
    case PKG_INIT: return PkgInit(package);
    case PKG_COMMUNITY: return PkgSetCommunity(package, in->Text());
    case PKG_CALLBACK: package->Callback = va_arg(in->List, PkgCallback); return SUCCESS;
    case PKG_USERDATA: package->UserData = reinterpret_cast<intptr_t>(in->Pointer()); return SUCCESS;
    case PKG_LOG: package->LogPackets = in->Int(); return SUCCESS;
    case PKG_NUMBER: return PkgRunNumber(package, in, VT_NUMBER);
    case PKG_COUNTER: return PkgRunNumber(package, in, VT_COUNTER);
    case PKG_GAUGE: return PkgRunNumber(package, in, VT_GAUGE);
    case PKG_TIMETICKS: return PkgRunNumber(package, in, VT_TIMETICKS);
    case PKG_UINTEGER32: return PkgRunNumber(package, in, VT_UINTEGER32);
    case PKG_STRING: return PkgRunText(package, in, VT_STRING);
    case PKG_OPAQUE: return PkgRunBytes(package, in, VT_OPAQUE);
    case PKG_OBJECT: return PkgRunText(package, in, VT_OBJECT);
    case PKG_EMPTY: return PkgAddEmpty(package, in->Text(), 0);
    case PKG_EMPTY_LIST: return PkgRunList(package, in, 0);
    case PKG_TABLE_NAME: return PkgAddEmpty(package, in->Text(), PKG_TABLE_SPARE);
    case PKG_TABLE_LIST: return PkgRunList(package, in, PKG_TABLE_SPARE);
    case PKG_IPADDRESS: return PkgRunNumber(package, in, VT_IPADDRESS);
    case PKG_IPADDRESS_TEXT: return PkgRunAddress(package, in);
    case PKG_COUNTER64: return PkgRunCounter64(package, in);
    case PKG_NSAP: return PkgRunBytes(package, in, VT_NSAPADDRESS);
    case PKG_BITSTRING: return PkgRunBytes(package, in, VT_BITSTRING);
    default: return SETUP_ERR_INVALID_PARAM; // the run ends before
    }
}

int SnmpSetupPkg(SnmpPackage *package, ...) {
    if (!package) return SETUP_ERR_XTL_INIT;
    PkgArguments in;
    va_start(in.List, package);
    int result = SUCCESS;
    for (int command = in.Int(); command != PKG_END; command = in.Int()) {
        if (command < PKG_INIT || command > PKG_END) {
            result = SETUP_ERR_INVALID_PARAM;
            break;
        }
        int code = PkgRunCommand(package, command, &in);
        if (code != SUCCESS) result = code;
    }
    va_end(in.List);
    return result;
}

// ---- Encoding

struct EncodeRow {
    unsigned Tag;
    int (*WithTag)(PkgPacket *packet, const PkgVar *var, unsigned tag);
    int (*Plain)(PkgPacket *packet, const PkgVar *var);
};
static constexpr EncodeRow EncodeRows[] = {
    // ORDER VtType
    {BER_INTEGER, PkgEncodeIntVar, nullptr},      {BER_COUNTER, PkgEncodeIntVar, nullptr},
    {BER_GAUGE, PkgEncodeIntVar, nullptr},        {BER_TIMETICKS, PkgEncodeIntVar, nullptr},
    {BER_UINTEGER32, PkgEncodeIntVar, nullptr},   {BER_STRING, PkgEncodeStrVar, nullptr},
    {BER_OPAQUE, PkgEncodeStrVar, nullptr},       {BER_OBJECT, nullptr, PkgEncodeObjectIdVar},
    {BER_NULL, nullptr, PkgEncodeEmptyVar},       {BER_IPADDRESS, PkgEncodeIntVar, nullptr},
    {BER_COUNTER64, nullptr, PkgEncodeInt64Var},  {BER_NSAPADDRESS, PkgEncodeStrVar, nullptr},
    {BER_BITSTRING, nullptr, PkgEncodeBitStrVar},
};
static_assert(std::size(EncodeRows) == VT_COUNT);

int EncodeVar(const PkgVar *var, PkgPacket *packet, int flSendValue) {
    if (!flSendValue) {
        PkgEncodeGetVar(packet, var);
        return 0;
    }
    if (var->SendType < 0 || var->SendType >= VT_COUNT) return 1;
    const EncodeRow &row = EncodeRows[var->SendType];
    if (row.WithTag)
        row.WithTag(packet, var, row.Tag);
    else
        row.Plain(packet, var);
    return 0;
}

// Last variable first, as the packet is written backwards. A broadcast asks for the first alone.
int EncodeVars(const SnmpPackage *package, PkgPacket *packet, int flSendValue) {
    int count = package->SendMode == PKG_MODE_BROADCAST ? std::min(package->NumVars, 1) : package->NumVars;
    while (count > 0) EncodeVar(&package->Vars[--count], packet, flSendValue);
    return 0;
}

int EncodePkg(const SnmpPackage *package, PkgPacket *packet) {
    *packet = {};
    PkgStartPacket(packet);
    EncodeVars(package, packet, package->Pdu == PDU_SET);
    bool fits = package->SendMode == PKG_MODE_TRAP
                    ? PkgEncodeTrapPacketProlog(packet, package->Community)
                    : PkgEncodePacketProlog(packet, package->Community, 1, package->Pdu);
    return fits ? SUCCESS : SEND_ERR_TOO_BIG;
}

// ---- Decoding

void InitRecVars(SnmpPackage *package) {
    memset(package->Values + package->ValueUsed, 0,
           static_cast<size_t>(PKG_VALUES_SIZE - package->ValueUsed));
    package->RecValueUsed = package->ValueUsed;
    package->RecNameUsed = package->NameUsed;
    package->NumRecVars = package->NumVars;
    strcpy(package->Unfilled, UnfilledText);
    package->Empty[0] = 0;
    for (int i = 0; i < package->NumVars; i++) PkgClearVar(package, &package->Vars[i]);
}

// Room for a received value behind those that are there; null if there is too little.
static char *PkgRecRoom(SnmpPackage *package, int size) {
    return size <= PKG_VALUES_SIZE - package->RecValueUsed ? package->Values + package->RecValueUsed
                                                           : nullptr;
}

static void PkgFillVar(SnmpPackage *package, PkgVar *var, intptr_t value, char *data, char *text, int size) {
    var->RecValue = value;
    var->RecData = data;
    var->RecText = text;
    package->RecValueUsed += size;
}

// The readers of one type each: the content lies inside the message; false leaves the variable as it is.
static bool DecodeNumber(PkgPacket *packet, PkgHeader *header, SnmpPackage *package, PkgVar *var) {
    int32_t value = 0;
    char *text = PkgRecRoom(package, NUMBER_TEXT);
    if (!text || !PkgDecodeIntData(packet, header, &value)) return false;
    int length = header->Type == BER_INTEGER
                     ? snprintf(text, NUMBER_TEXT, "%d", value)
                     : snprintf(text, NUMBER_TEXT, "%u", static_cast<uint32_t>(value));
    PkgFillVar(package, var, value, nullptr, text, length + 1);
    return true;
}

static bool DecodeString(PkgPacket *packet, PkgHeader *header, SnmpPackage *package, PkgVar *var) {
    char *text = PkgRecRoom(package, header->Len + 1);
    if (!text || !PkgDecodeStrData(packet, header, text, header->Len + 1)) return false;
    PkgFillVar(package, var, header->Len, text, text, header->Len + 1);
    return true;
}

static bool DecodeObject(PkgPacket *packet, PkgHeader *header, SnmpPackage *package, PkgVar *var) {
    char name[PKG_OID_TEXT_SIZE];
    if (!PkgDecodeObjectIdData(packet, header, name, sizeof name)) return false;
    char *text = PkgRecRoom(package, header->Len + 1);
    if (!text) return false;
    memcpy(text, name, static_cast<size_t>(header->Len) + 1);
    PkgFillVar(package, var, reinterpret_cast<intptr_t>(text), nullptr, text, header->Len + 1);
    return true;
}

// The value is the address as the system's calls hold it, in network order.
static bool DecodeAddress(PkgPacket *packet, PkgHeader *header, SnmpPackage *package, PkgVar *var) {
    in_addr address;
    char octets[sizeof address + 1];
    char *text = PkgRecRoom(package, INET_ADDRSTRLEN);
    if (!text || header->Len != sizeof address) return false;
    if (!PkgDecodeStrData(packet, header, octets, sizeof octets)) return false;
    memcpy(&address, octets, sizeof address);
    inet_ntop(AF_INET, &address, text, INET_ADDRSTRLEN);
    PkgFillVar(package, var, static_cast<int32_t>(address.s_addr), nullptr, text,
               static_cast<int>(strlen(text)) + 1);
    return true;
}

// The bytes, a 0 byte, and behind it each byte as text.
static bool DecodeBits(PkgPacket *packet, PkgHeader *header, SnmpPackage *package, PkgVar *var) {
    int bytes = header->Len - 1;
    int size = bytes + 1 + bytes * BYTE_TEXT + 1;
    char *data = PkgRecRoom(package, size);
    PkgBits bits = {0, reinterpret_cast<uint8_t *>(data), bytes};
    if (!data || !PkgDecodeBitStrData(packet, header, &bits)) return false;
    data[bytes] = 0;
    char *text = data + bytes + 1;
    text[0] = 0;
    for (int i = 0; i < bytes; i++) snprintf(text + i * BYTE_TEXT, BYTE_TEXT + 1, "0x%.2X ", bits.Buffer[i]);
    PkgFillVar(package, var, bits.Count, data, text, size);
    return true;
}

static bool DecodeNull(PkgPacket *, PkgHeader *, SnmpPackage *package, PkgVar *var) {
    PkgFillVar(package, var, 0, nullptr, package->Empty, 0);
    return true;
}

typedef bool (*DecodeReader)(PkgPacket *packet, PkgHeader *header, SnmpPackage *package, PkgVar *var);
struct DecodeRow {
    unsigned Tag;
    int RecType;
    DecodeReader Read; // null: the content is left to the walk, the variable stays without a value
};
static constexpr DecodeRow DecodeRows[] = {
    {BER_INTEGER, VT_NUMBER, DecodeNumber},
    {BER_BITSTRING, VT_BITSTRING, DecodeBits},
    {BER_STRING, VT_STRING, DecodeString},
    {BER_OPAQUE, BER_OPAQUE, DecodeString},
    {BER_NSAPADDRESS, VT_NSAPADDRESS, DecodeString},
    {BER_NULL, VT_EMPTY, DecodeNull},
    {BER_OBJECT, VT_OBJECT, DecodeObject},
    {BER_IPADDRESS, VT_IPADDRESS, DecodeAddress},
    {BER_COUNTER, VT_COUNTER, DecodeNumber},
    {BER_GAUGE, VT_GAUGE, DecodeNumber},
    {BER_TIMETICKS, VT_TIMETICKS, DecodeNumber},
    {BER_UINTEGER32, BER_UINTEGER32 & 0x1F, DecodeNumber},
    {BER_COUNTER64, VT_COUNTER64, nullptr}, // version 1 has no such type
    {BER_NOSUCHOBJ, VT_NOSUCHOBJ, nullptr},
    {BER_NOSUCHINS, VT_NOSUCHINS, nullptr},
    {BER_ENDOFMIB, VT_ENDOFMIB, nullptr},
};

static const DecodeRow *FindDecodeRow(unsigned tag) {
    static constexpr DecodeRow unknown = {0, VT_UNKNOWN, nullptr};
    for (const DecodeRow &row : DecodeRows)
        if (row.Tag == tag) return &row;
    return &unknown;
}

// The variable of that name, appended if there is none; null if there is no room for it.
static PkgVar *DecodeFindVar(SnmpPackage *package, const char *name) {
    for (int i = 0; i < package->NumRecVars; i++)
        if (strcmp(package->Vars[i].Name, name) == 0) return &package->Vars[i];
    if (package->NumRecVars >= PKG_VARS) return nullptr;
    int room = PkgTextRoom(name, 0);
    char *copy = PkgStoreName(package, &package->RecNameUsed, name, room);
    if (!copy) return nullptr;
    PkgVar *var = &package->Vars[package->NumRecVars++];
    *var = {};
    var->Name = copy;
    var->NameRoom = room;
    PkgClearVar(package, var);
    return var;
}

// What the walk does not read itself leaves no value; an unknown type leaves its tag.
static void DecodeNothing(SnmpPackage *package, PkgVar *var, const PkgHeader *header) {
    PkgFillVar(package, var, 0, nullptr, package->Unfilled, 0);
    if (var->RecType == VT_UNKNOWN)
        *reinterpret_cast<uint8_t *>(&var->RecValue) = static_cast<uint8_t>(header->Type);
}

void DecodeVar(PkgPacket *packet, const char *name, SnmpPackage *package, uint32_t) {
    PkgHeader header;
    PkgVar *var = DecodeFindVar(package, name);
    if (!PkgDecodeHeader(packet, &header)) return;
    const DecodeRow *row = FindDecodeRow(header.Type);
    int end = header.Len <= packet->Len - packet->Pos ? packet->Pos + header.Len : PKG_READ_END;
    if (!var || (row->Read && end == PKG_READ_END)) {
        packet->Pos = end;
        return;
    }
    PkgVar before = *var;
    var->RecClass = header.Class >> 6;
    var->RecType = row->RecType;
    if (!row->Read) {
        DecodeNothing(package, var, &header);
    } else if (row->Read(packet, &header, package, var)) {
        var->Status = SUCCESS;
    } else {
        if (before.Status == SUCCESS) *var = before; // RecValue must not be read as another type's
        packet->Pos = end;
    }
}

// One step of the walk: an object identifier is a name and its value follows. Everything else is entered,
// which is how the sequences of the list and of the bindings are passed.
static bool DecodeBinding(PkgPacket *packet, SnmpPackage *package, uint32_t version) {
    PkgHeader header;
    char name[PKG_OID_TEXT_SIZE];
    if (!PkgDecodeObjectId(packet, &header, name, sizeof name)) return false;
    DecodeVar(packet, name, package, version);
    return true;
}

void DecodeVariables(PkgPacket *packet, SnmpPackage *package, uint32_t version) {
    while (packet->Pos < packet->Len) DecodeBinding(packet, package, version);
}

bool DecodeVariable(PkgPacket *packet, SnmpPackage *package, PkgProlog *prolog) {
    if (!PkgDecodePacketProlog(packet, prolog)) return false;
    while (packet->Pos < packet->Len)
        if (DecodeBinding(packet, package, prolog->Version)) return true;
    PkgFreeProlog(prolog);
    return false;
}

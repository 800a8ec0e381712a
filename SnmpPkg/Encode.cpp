// The BER writer of the SNMP package.
#include "SnmpPkg/Encode.h"

#include <cstring>

enum { LONG_LENGTH = 127, LONG_FORM = 0x80, MORE_BITS = 0x80 }; // 127 itself takes the long form

void PkgStartPacket(PkgPacket *packet) {
    packet->Len = 0;
    packet->Pos = PKG_WRITE_START;
}

// The two writers that everything else goes through; what does not fit leaves the packet overrun for good.
static void PkgPutByte(PkgPacket *packet, unsigned byte) {
    if (packet->Pos < 1 || packet->Pos > PKG_WRITE_START) {
        packet->Pos = PKG_OVERRUN;
        return;
    }
    packet->Data[--packet->Pos] = static_cast<uint8_t>(byte);
    packet->Len++;
}

static void PkgPutBytes(PkgPacket *packet, const void *bytes, int count) {
    if (count > packet->Pos || packet->Pos > PKG_WRITE_START || (!bytes && count > 0)) {
        packet->Pos = PKG_OVERRUN;
        return;
    }
    packet->Pos -= count;
    packet->Len += count;
    if (count > 0) memcpy(packet->Data + packet->Pos, bytes, static_cast<size_t>(count));
}

// True if a length may be written at all; false overruns the packet.
static bool PkgTestLength(PkgPacket *packet, int length) {
    if (length >= 0 && length <= PKG_DATA_SIZE) return true;
    packet->Pos = PKG_OVERRUN;
    return false;
}

int PkgWrInt(PkgPacket *packet, uint32_t value) {
    int count = 1;
    PkgPutByte(packet, value & 0x7F);
    while ((value >>= 7) != 0) {
        PkgPutByte(packet, (value & 0x7F) | MORE_BITS);
        count++;
    }
    return count;
}

int PkgWrInt8(PkgPacket *packet, int32_t value) {
    uint32_t rest = static_cast<uint32_t>(value);
    unsigned byte = 0;
    int count = 0;
    do {
        byte = rest & 0xFF;
        PkgPutByte(packet, byte);
        rest >>= 8;
        count++;
    } while (rest != 0);
    if (value >= 0 && byte >= 0x80) {
        PkgPutByte(packet, 0);
        count++;
    }
    return count;
}

int PkgEncodeHeader(PkgPacket *packet, unsigned tag, int length) {
    if (!PkgTestLength(packet, length)) return 0;
    int count = 2;
    if (length < LONG_LENGTH) {
        PkgPutByte(packet, static_cast<unsigned>(length));
    } else {
        int bytes = 0;
        for (unsigned rest = static_cast<unsigned>(length); rest != 0; rest >>= 8, bytes++)
            PkgPutByte(packet, rest & 0xFF);
        PkgPutByte(packet, LONG_FORM | static_cast<unsigned>(bytes));
        count += bytes;
    }
    PkgPutByte(packet, tag);
    return length + count;
}

int PkgEncodeInt(PkgPacket *packet, int32_t value, unsigned tag) {
    return PkgEncodeHeader(packet, tag, PkgWrInt8(packet, value));
}

int PkgEncodeStr(PkgPacket *packet, const void *bytes, int length, unsigned tag) {
    if (!PkgTestLength(packet, length)) return 0;
    PkgPutBytes(packet, bytes, length);
    return PkgEncodeHeader(packet, tag, length);
}

// Reads one arc and the dots behind it. Numbers wrap at 32 bits; what follows the digits of an arc is passed
// over.
static uint32_t PkgReadArc(const char **text) {
    const char *p = *text;
    uint32_t arc = 0;
    for (; *p >= '0' && *p <= '9'; p++) arc = arc * 10 + static_cast<uint32_t>(*p - '0');
    while (*p != 0 && *p != '.') p++;
    while (*p == '.') p++;
    *text = p;
    return arc;
}

// Turns a dotted text into sub-identifiers, the first two arcs into one. Their number, or -1 if there are too
// many.
static int PkgReadSubIds(const char *text, uint32_t *subIds) {
    if (!text) text = "";
    while (*text == '.') text++;
    subIds[0] = PkgReadArc(&text) * 40;
    if (*text != 0) subIds[0] += PkgReadArc(&text);
    int count = 1;
    while (*text != 0) {
        if (count == PKG_OID_MAX) return -1;
        subIds[count++] = PkgReadArc(&text);
    }
    return count;
}

int PkgEncodeObjectId(PkgPacket *packet, const char *text) {
    uint32_t subIds[PKG_OID_MAX];
    int count = PkgReadSubIds(text, subIds);
    if (!PkgTestLength(packet, count)) return 0;
    int length = 0;
    while (count > 0) length += PkgWrInt(packet, subIds[--count]);
    return PkgEncodeHeader(packet, BER_OBJECT, length);
}

bool PkgEncodePacketProlog(PkgPacket *packet, const char *community, int32_t requestId, int pdu) {
    if (!community) community = "";
    PkgEncodeHeader(packet, BER_SEQUENCE, packet->Len);
    PkgEncodeInt(packet, 0, BER_INTEGER); // error index
    PkgEncodeInt(packet, 0, BER_INTEGER); // error status
    PkgEncodeInt(packet, requestId, BER_INTEGER);
    PkgEncodeHeader(packet, static_cast<unsigned>(pdu) | BER_PDU, packet->Len);
    PkgEncodeStr(packet, community, static_cast<int>(strnlen(community, PKG_DATA_SIZE)), BER_STRING);
    PkgEncodeInt(packet, 0, BER_INTEGER); // version 1 is number 0
    PkgEncodeHeader(packet, BER_SEQUENCE, packet->Len);
    return packet->Pos >= 0 && packet->Pos <= PKG_WRITE_START;
}

bool PkgEncodeTrapPacketProlog(PkgPacket *packet, const char *community) {
    if (!community) community = "";
    PkgEncodeHeader(packet, BER_PDU, packet->Len);
    PkgEncodeStr(packet, community, static_cast<int>(strnlen(community, PKG_DATA_SIZE)), BER_STRING);
    PkgEncodeInt(packet, 0, BER_INTEGER);
    PkgEncodeHeader(packet, BER_SEQUENCE, packet->Len);
    return packet->Pos >= 0 && packet->Pos <= PKG_WRITE_START;
}

// Puts the variable's name and the sequence around a value that stands in the packet already.
static int PkgEncodeBinding(PkgPacket *packet, const PkgVar *var, int valueSize) {
    return PkgEncodeHeader(packet, BER_SEQUENCE, valueSize + PkgEncodeObjectId(packet, var->Name));
}

int PkgEncodeGetVar(PkgPacket *packet, const PkgVar *var) {
    return PkgEncodeBinding(packet, var, PkgEncodeHeader(packet, BER_NULL, 0));
}

int PkgEncodeEmptyVar(PkgPacket *packet, const PkgVar *var) {
    return PkgEncodeGetVar(packet, var);
}

int PkgEncodeIntVar(PkgPacket *packet, const PkgVar *var, unsigned tag) {
    int32_t value = static_cast<int32_t>(var->SendValue);
    int size = tag == BER_IPADDRESS ? PkgEncodeStr(packet, &value, sizeof value, tag)
                                    : PkgEncodeInt(packet, value, tag);
    return PkgEncodeBinding(packet, var, size);
}

int PkgEncodeStrVar(PkgPacket *packet, const PkgVar *var, unsigned tag) {
    const char *bytes = reinterpret_cast<const char *>(var->SendData);
    return PkgEncodeBinding(packet, var, PkgEncodeStr(packet, bytes, static_cast<int>(var->SendValue), tag));
}

int PkgEncodeObjectIdVar(PkgPacket *packet, const PkgVar *var) {
    return PkgEncodeBinding(packet, var,
                            PkgEncodeObjectId(packet, reinterpret_cast<const char *>(var->SendValue)));
}

int PkgEncodeInt64Var(PkgPacket *packet, const PkgVar *var) {
    int32_t high = static_cast<int32_t>(var->SendValue);
    int32_t low = static_cast<int32_t>(var->SendData);
    int size = 0;
    if (high == 0) {
        size = PkgWrInt8(packet, low);
    } else {
        for (int shift = 0; shift < 32; shift += 8)
            PkgPutByte(packet, static_cast<uint32_t>(low) >> shift & 0xFF);
        size = 4 + PkgWrInt8(packet, high);
    }
    return PkgEncodeBinding(packet, var, PkgEncodeHeader(packet, BER_COUNTER64, size));
}

int PkgEncodeBitStrVar(PkgPacket *packet, const PkgVar *var) {
    const void *bytes = reinterpret_cast<const void *>(var->SendData);
    int bits = static_cast<int>(var->SendValue);
    if (!PkgTestLength(packet, bits < 0 ? -1 : bits / 8)) return 0;
    int count = bits / 8 + (bits % 8 != 0);
    PkgPutBytes(packet, bytes, count);
    PkgPutByte(packet, static_cast<unsigned>(8 - bits % 8) % 8);
    return PkgEncodeBinding(packet, var, PkgEncodeHeader(packet, BER_BITSTRING, count + 1));
}

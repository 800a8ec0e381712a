// The BER reader of the SNMP package.
#include "SnmpPkg/Decode.h"

#include "common/MemMgr.h"

#include <charconv>
#include <cstring>

enum { ARC_TEXT_MAX = 11 }; // a dot and ten digits

static unsigned PkgGetByte(PkgPacket *packet) {
    if (packet->Pos >= 0 && packet->Pos < PKG_DATA_SIZE) return packet->Data[packet->Pos++];
    packet->Pos = PKG_READ_END;
    return 0;
}

// True if Pos still lies in the buffer or right behind it: how every content reader ends.
static bool PkgInside(const PkgPacket *packet) {
    return packet->Pos >= 0 && packet->Pos < PKG_READ_END;
}

// Where the content of a header ends; PKG_READ_END if that lies outside the buffer.
static int PkgContentEnd(const PkgPacket *packet, const PkgHeader *header) {
    if (!PkgInside(packet) || header->Len < 0 || header->Len > PKG_DATA_SIZE - packet->Pos)
        return PKG_READ_END;
    return packet->Pos + header->Len;
}

// Steps over a content that is refused.
static bool PkgRefuse(PkgPacket *packet, int end) {
    packet->Pos = end;
    return false;
}

uint32_t PkgRdInt(PkgPacket *packet) {
    uint32_t value = 0;
    unsigned byte = 0;
    do {
        byte = PkgGetByte(packet); // 0 at the end of the buffer, so this ends
        value = value << 7 | (byte & 0x7F);
    } while ((byte & 0x80) != 0);
    return value;
}

uint32_t PkgRdInt8(PkgPacket *packet, int count, uint32_t seed) {
    for (; count > 0 && PkgInside(packet); count--) seed = seed << 8 | PkgGetByte(packet);
    return seed;
}

bool PkgDecodeHeader(PkgPacket *packet, PkgHeader *header) {
    unsigned tag = PkgGetByte(packet);
    header->Class = tag & BER_CLASS;
    header->Flag = tag & BER_CONSTRUCTED;
    header->Type = tag;
    uint32_t length = PkgGetByte(packet);
    if (length >= 0x80) length = PkgRdInt8(packet, length & 0x7F, 0);
    header->Len = static_cast<int32_t>(length);
    return packet->Pos < PKG_DATA_SIZE && header->Len >= 0 && header->Len <= PKG_DATA_SIZE;
}

bool PkgDecodeStrData(PkgPacket *packet, PkgHeader *header, char *text, int capacity) {
    int end = PkgContentEnd(packet, header);
    if (!text || end == PKG_READ_END || header->Len >= capacity) return PkgRefuse(packet, end);
    memcpy(text, packet->Data + packet->Pos, static_cast<size_t>(header->Len));
    text[header->Len] = 0;
    packet->Pos = end;
    return true;
}

bool PkgDecodeStr(PkgPacket *packet, PkgHeader *header, char *text, int capacity) {
    return PkgDecodeHeader(packet, header) && PkgDecodeStrData(packet, header, text, capacity);
}

bool PkgDecodeLongData(PkgPacket *packet, PkgHeader *header, int32_t *value) {
    *value = 0;
    int end = PkgContentEnd(packet, header);
    if (end == PKG_READ_END) return PkgRefuse(packet, end);
    if (header->Len == 0) return true;
    unsigned first = packet->Data[packet->Pos];
    if (header->Len == 5 && first != 0) return PkgRefuse(packet, end);
    *value = static_cast<int32_t>(PkgRdInt8(packet, header->Len, first >= 0x80 ? UINT32_MAX : 0));
    return PkgInside(packet);
}

bool PkgDecodeLong(PkgPacket *packet, PkgHeader *header, int32_t *value) {
    return PkgDecodeHeader(packet, header) && PkgDecodeLongData(packet, header, value);
}

bool PkgDecodeIntData(PkgPacket *packet, PkgHeader *header, int32_t *value) {
    return PkgDecodeLongData(packet, header, value);
}

bool PkgDecodeInt(PkgPacket *packet, PkgHeader *header, int32_t *value) {
    return PkgDecodeLong(packet, header, value);
}

// Writes a number and a dot behind it; needs room for ARC_TEXT_MAX bytes.
static char *PkgPutArc(char *text, uint32_t arc) {
    text = std::to_chars(text, text + ARC_TEXT_MAX, arc).ptr;
    *text++ = '.';
    return text;
}

bool PkgDecodeObjectIdData(PkgPacket *packet, PkgHeader *header, char *text, int capacity) {
    if (header->Len == 0 || !text) return false;
    int end = PkgContentEnd(packet, header);
    if (end == PKG_READ_END) return PkgRefuse(packet, end);
    char *write = text;
    for (bool first = true; packet->Pos < end; first = false) {
        uint32_t subId = PkgRdInt(packet);
        if (capacity - (write - text) < (first ? 2 * ARC_TEXT_MAX : ARC_TEXT_MAX))
            return PkgRefuse(packet, end);
        if (first) write = PkgPutArc(write, subId / 40);
        write = PkgPutArc(write, first ? subId % 40 : subId);
    }
    if (packet->Pos != end) return PkgRefuse(packet, end);
    *--write = 0; // the dot behind the last arc
    header->Len = static_cast<int32_t>(write - text);
    return true;
}

bool PkgDecodeObjectId(PkgPacket *packet, PkgHeader *header, char *text, int capacity) {
    return PkgDecodeHeader(packet, header) && header->Type == BER_OBJECT &&
           PkgDecodeObjectIdData(packet, header, text, capacity);
}

bool PkgDecodeInt64Data(PkgPacket *packet, PkgHeader *header, PkgInt64 *value) {
    *value = {0, 0};
    int end = PkgContentEnd(packet, header);
    if (end == PKG_READ_END) return PkgRefuse(packet, end);
    if (header->Len == 0) return true;
    unsigned first = packet->Data[packet->Pos];
    if (header->Len == 9 && first != 0) return PkgRefuse(packet, end);
    uint32_t seed = first >= 0x80 ? UINT32_MAX : 0;
    int high = header->Len < 4 ? header->Len : 4;
    value->High = PkgRdInt8(packet, high, seed);
    value->Low = PkgRdInt8(packet, header->Len - high, seed);
    return PkgInside(packet);
}

bool PkgDecodeInt64(PkgPacket *packet, PkgHeader *header, PkgInt64 *value) {
    return PkgDecodeHeader(packet, header) && PkgDecodeInt64Data(packet, header, value);
}

bool PkgDecodeBitStrData(PkgPacket *packet, PkgHeader *header, PkgBits *bits) {
    int end = PkgContentEnd(packet, header);
    if (!bits || !bits->Buffer || header->Len == 0 || end == PKG_READ_END) return PkgRefuse(packet, end);
    int unused = static_cast<int>(PkgGetByte(packet));
    header->Len--;
    if (unused > 7 || header->Len * 8 < unused || header->Len > bits->Capacity) return PkgRefuse(packet, end);
    bits->Count = header->Len * 8 - unused;
    memcpy(bits->Buffer, packet->Data + packet->Pos, static_cast<size_t>(header->Len));
    packet->Pos = end;
    return true;
}

bool PkgDecodeBitStr(PkgPacket *packet, PkgHeader *header, PkgBits *bits) {
    return PkgDecodeHeader(packet, header) && PkgDecodeBitStrData(packet, header, bits);
}

static bool PkgReadNumber(PkgPacket *packet, unsigned tag, int32_t *value) {
    PkgHeader header;
    return PkgDecodeLong(packet, &header, value) && header.Type == tag;
}

// The outer sequence: bytes of the datagram behind it are cut off, a message that is not all there is
// refused.
static bool PkgReadOuter(PkgPacket *packet, PkgProlog *prolog) {
    PkgHeader header;
    if (!PkgDecodeHeader(packet, &header)) return false;
    prolog->Length = static_cast<uint16_t>(header.Len);
    int end = packet->Pos + header.Len;
    if (end > packet->Len) return false;
    packet->Len = end;
    return header.Flag == BER_CONSTRUCTED && header.Type == BER_SEQUENCE;
}

static bool PkgReadResponse(PkgPacket *packet, PkgProlog *prolog) {
    return PkgReadNumber(packet, BER_INTEGER, &prolog->RequestId) &&
           PkgReadNumber(packet, BER_INTEGER, &prolog->ErrorStatus) &&
           PkgReadNumber(packet, BER_INTEGER, &prolog->ErrorIndex) && prolog->ErrorStatus == 0 &&
           prolog->ErrorIndex == 0;
}

static bool PkgReadTrap(PkgPacket *packet, PkgProlog *prolog, PkgPrologText *text) {
    PkgHeader header;
    char address[PKG_TEXT_SIZE];
    if (!PkgDecodeObjectId(packet, &header, text->Enterprise, sizeof text->Enterprise)) return false;
    if (!PkgDecodeStr(packet, &header, address, sizeof address)) return false;
    if (header.Type != BER_IPADDRESS || header.Len < static_cast<int>(sizeof prolog->AgentAddress))
        return false;
    memcpy(prolog->AgentAddress, address, sizeof prolog->AgentAddress);
    return PkgReadNumber(packet, BER_INTEGER, &prolog->Generic) &&
           PkgReadNumber(packet, BER_INTEGER, &prolog->Specific) &&
           PkgReadNumber(packet, BER_TIMETICKS, &prolog->TimeStamp);
}

bool PkgReadProlog(PkgPacket *packet, PkgProlog *prolog, PkgPrologText *text) {
    PkgHeader header;
    int32_t version = 0;
    *prolog = {};
    text->Community[0] = text->Enterprise[0] = 0;
    if (!PkgReadOuter(packet, prolog)) return false;
    if (!PkgReadNumber(packet, BER_INTEGER, &version)) return false;
    prolog->Version = static_cast<uint32_t>(version);
    if (version != 0) return false;
    if (!PkgDecodeStr(packet, &header, text->Community, sizeof text->Community)) return false;
    if (header.Type != BER_STRING || !PkgDecodeHeader(packet, &header)) return false;
    if (header.Flag != BER_CONSTRUCTED || header.Class != BER_CONTEXT) return false;
    prolog->PduType = static_cast<uint16_t>(header.Type);
    return header.Type == BER_TRAP ? PkgReadTrap(packet, prolog, text) : PkgReadResponse(packet, prolog);
}

bool PkgDecodePacketProlog(PkgPacket *packet, PkgProlog *prolog) {
    PkgPrologText text;
    if (!PkgReadProlog(packet, prolog, &text)) return false;
    prolog->Community = SaveStr_(text.Community);
    if (prolog->PduType == BER_TRAP) prolog->Enterprise = SaveStr_(text.Enterprise);
    return true;
}

void PkgFreeProlog(PkgProlog *prolog) {
    PutMem(prolog->Community);
    PutMem(prolog->Enterprise);
    prolog->Community = prolog->Enterprise = nullptr;
}

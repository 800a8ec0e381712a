// Reads the BER of SNMP version 1 messages out of a packet, forwards. Every byte is a stranger's: all reads
// go through one getter that gives 0 outside Data and leaves Pos at PKG_READ_END, all stores through a
// capacity.
//
// Every decoder gives true or false. A content reader takes the header that was read, consumes header.Len
// bytes and is true if Pos is then still inside the buffer; where a content is refused, Pos stands behind it
// as well (behind an object identifier of length 0 nothing moves). The readers without "Data" in their name
// read the header first. Which tag is wanted is the caller's test of header.Type; PkgDecodeObjectId alone
// asks for its own.
#pragma once

#include "SnmpPkg/Packet.h"

uint32_t PkgRdInt(PkgPacket *packet);                            // one base-128 number, modulo 2^32
uint32_t PkgRdInt8(PkgPacket *packet, int count, uint32_t seed); // big-endian, shifted into the seed
bool PkgDecodeHeader(PkgPacket *packet, PkgHeader *header);

// The bytes and a 0 byte behind them; false if they do not fit the capacity.
bool PkgDecodeStrData(PkgPacket *packet, PkgHeader *header, char *text, int capacity);
bool PkgDecodeStr(PkgPacket *packet, PkgHeader *header, char *text, int capacity);
// Clears the value first; sign-extended by its first byte whatever the tag. Five bytes must begin with 0.
bool PkgDecodeLongData(PkgPacket *packet, PkgHeader *header, int32_t *value);
bool PkgDecodeLong(PkgPacket *packet, PkgHeader *header, int32_t *value);
bool PkgDecodeIntData(PkgPacket *packet, PkgHeader *header, int32_t *value);
bool PkgDecodeInt(PkgPacket *packet, PkgHeader *header, int32_t *value);
// Dotted text; header.Len becomes its length. False for no content and for a last arc that runs past the
// content.
bool PkgDecodeObjectIdData(PkgPacket *packet, PkgHeader *header, char *text, int capacity);
bool PkgDecodeObjectId(PkgPacket *packet, PkgHeader *header, char *text, int capacity);
// Nine bytes must begin with 0. The first four bytes go to High, however short the number is.
bool PkgDecodeInt64Data(PkgPacket *packet, PkgHeader *header, PkgInt64 *value);
bool PkgDecodeInt64(PkgPacket *packet, PkgHeader *header, PkgInt64 *value);
// header.Len becomes the bytes without the one that counts the unused bits. False without a buffer.
bool PkgDecodeBitStrData(PkgPacket *packet, PkgHeader *header, PkgBits *bits);
bool PkgDecodeBitStr(PkgPacket *packet, PkgHeader *header, PkgBits *bits);

// Reads a message up to its list of bindings. False for a version other than 1, an error status, a message
// longer than the packet and everything that is no message; RequestId, ErrorStatus and ErrorIndex keep what
// was read so far. Owns: Community and Enterprise on true, released by PkgFreeProlog; on false they are null.
bool PkgDecodePacketProlog(PkgPacket *packet, PkgProlog *prolog);
void PkgFreeProlog(PkgProlog *prolog);

// The same without copies, for a caller that looks at a packet and goes on: the texts lie in text.
struct PkgPrologText {
    char Community[PKG_TEXT_SIZE];
    char Enterprise[PKG_OID_TEXT_SIZE]; // trap only
};
bool PkgReadProlog(PkgPacket *packet, PkgProlog *prolog, PkgPrologText *text);

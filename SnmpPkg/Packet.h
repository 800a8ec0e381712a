// What the encoder, the decoder and the package share: the packet buffer, the tags on the wire, one variable.
// doc/snmp.md shows a message byte by byte.
#pragma once

#include <cstdint>

enum {
    PKG_DATA_SIZE = 1400,     // bytes of a packet buffer
    PKG_WRITE_START = 1399,   // Pos before encoding: the first byte lands at 1398
    PKG_OVERRUN = -1,         // Pos once an encoder ran out of room; it stays there
    PKG_READ_END = 1401,      // Pos once a decoder wanted a byte that is not in the buffer
    PKG_TEXT_SIZE = 1401,     // holds every octet string of a packet and its 0 byte
    PKG_OID_TEXT_SIZE = 6144, // holds every object identifier of a packet as dotted text
    PKG_OID_MAX = 126,        // sub-identifiers that are sent
};

enum { // identifier bytes; ORDER VtType where a VT code belongs to one
    BER_INTEGER = 0x02,
    BER_BITSTRING = 0x03,
    BER_STRING = 0x04,
    BER_NULL = 0x05,
    BER_OBJECT = 0x06,
    BER_SEQUENCE = 0x30,
    BER_IPADDRESS = 0x40,
    BER_COUNTER = 0x41,
    BER_GAUGE = 0x42,
    BER_TIMETICKS = 0x43,
    BER_OPAQUE = 0x44,
    BER_NSAPADDRESS = 0x45,
    BER_COUNTER64 = 0x46,
    BER_UINTEGER32 = 0x47,
    BER_NOSUCHOBJ = 0x80,
    BER_NOSUCHINS = 0x81,
    BER_ENDOFMIB = 0x82,
    BER_PDU = 0xA0, // or-ed with the number of the PDU
    BER_TRAP = 0xA4,
    BER_CONSTRUCTED = 0x20, // bits of an identifier byte
    BER_CLASS = 0xC0,
    BER_CONTEXT = 0x80,
};

// The packet buffer, a value of whoever encodes or receives. Encoding runs from the end to the start, so that
// every header is written behind its contents; the message is the Len bytes from Pos. Decoding runs forwards
// from Pos 0.
struct PkgPacket {
    uint8_t Data[PKG_DATA_SIZE];
    int32_t Len; // bytes written, or bytes received (trimmed to the message by the prolog)
    int32_t Pos; // cursor; always one of the marks above when it is outside Data
};

struct PkgHeader {
    uint8_t Class; // identifier byte and BER_CLASS
    uint8_t Flag;  // identifier byte and BER_CONSTRUCTED
    uint32_t Type; // the whole identifier byte; the decoders leave it to the caller to ask for one
    int32_t Len;   // content bytes; an object identifier decoder puts the length of the text here
};

struct PkgProlog {
    uint16_t Length;
    uint32_t Version;
    char *Community; // managed copy, see PkgDecodePacketProlog
    uint16_t PduType;
    // Every PDU but the trap. Kept when the prolog failed on them, so that an agent's error can be told.
    int32_t RequestId;
    int32_t ErrorStatus;
    int32_t ErrorIndex;
    // The trap alone.
    char *Enterprise;        // managed copy
    uint8_t AgentAddress[4]; // network order
    int32_t Generic;
    int32_t Specific;
    int32_t TimeStamp; // hundredths of a second
};

struct PkgInt64 {
    uint32_t High;
    uint32_t Low;
};

struct PkgBits {
    int32_t Count;   // bits
    uint8_t *Buffer; // the caller's
    int32_t Capacity;
};

// One variable. Every word that may hold a pointer is as wide as one; numbers in it are sign-extended from 32
// bits.
struct PkgVar {
    char *Name;         // dotted object identifier in the package's name area
    int32_t NameRoom;   // bytes reserved there, the 0 byte included
    int32_t Status;     // 0 decoded, 15 nothing came, else the receive error
    int32_t SendType;   // VT codes
    int32_t RecType;    // 0 until something came: judge it together with Status
    int32_t RecClass;   // 0 to 3
    intptr_t SendValue; // number, byte length, bit count, high word or address of a text, by SendType
    intptr_t SendData;  // address of the bytes in the value area, or low word
    intptr_t RecValue;  // number, byte length, bit count or address of a text, by RecType; print as (int32_t)
    char *RecData;      // bytes in the value area; null unless RecType is one of the string kinds
    char *RecText;      // display text, never null; may be changed in place, but not made longer
};

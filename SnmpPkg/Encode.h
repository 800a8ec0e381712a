// Writes the BER of SNMP version 1 messages, backwards, into a packet. Holds no state and allocates nothing.
//
// Every encoder returns the bytes it wrote, header included, unless said otherwise. What does not fit is not
// stored: Pos goes to PKG_OVERRUN and stays there, later calls change nothing, and the prolog then gives
// false. A length that is negative or longer than a packet has the same effect and gives 0.
#pragma once

#include "SnmpPkg/Packet.h"

// Makes a packet ready for encoding; Data keeps its bytes.
void PkgStartPacket(PkgPacket *packet);

int PkgWrInt(PkgPacket *packet, uint32_t value);                  // one base-128 sub-identifier
int PkgWrInt8(PkgPacket *packet, int32_t value);                  // content of an integer, shortest form
int PkgEncodeHeader(PkgPacket *packet, unsigned tag, int length); // length, then tag; returns length + header
int PkgEncodeInt(PkgPacket *packet, int32_t value, unsigned tag);
int PkgEncodeStr(PkgPacket *packet, const void *bytes, int length, unsigned tag);
// Null, empty and arcless texts stand for "0.0"; empty arcs are skipped. At most 127 arcs of 31 bits, more
// overrun.
int PkgEncodeObjectId(PkgPacket *packet, const char *text);

// Wrap what is in the packet into a message; true if it fits. A null community is an empty one.
bool PkgEncodePacketProlog(PkgPacket *packet, const char *community, int32_t requestId, int pdu);
bool PkgEncodeTrapPacketProlog(PkgPacket *packet, const char *community);

// One binding of a variable. IpAddress goes out as its four octets, which the variable holds in network
// order.
int PkgEncodeGetVar(PkgPacket *packet, const PkgVar *var);
int PkgEncodeEmptyVar(PkgPacket *packet, const PkgVar *var);
int PkgEncodeIntVar(PkgPacket *packet, const PkgVar *var, unsigned tag);
int PkgEncodeStrVar(PkgPacket *packet, const PkgVar *var, unsigned tag);
int PkgEncodeObjectIdVar(PkgPacket *packet, const PkgVar *var);
int PkgEncodeInt64Var(PkgPacket *packet, const PkgVar *var);
int PkgEncodeBitStrVar(PkgPacket *packet, const PkgVar *var);

// Datagrams of a package, over plain sockets. Codes are those of Pkg.h.
#pragma once

#include "SnmpPkg/Pkg.h"

enum { UDP_BUFFER = 4 << 20 }; // bytes of receive buffer asked for, so that a burst of 1,000 answers fits

int UdpOpenSocket(SnmpPackage *package);   // 1 and Socket set, or 0 and Socket 0
void UdpCloseSocket(SnmpPackage *package); // Socket is 0 afterwards

// Sends to Address and Port; with a mask to the broadcast address of the subnet that both name. 1 without a
// package, a packet or a message in it; 14 for an address or mask that is none.
int UdpSendPacket(SnmpPackage *package, const char *mask, const PkgPacket *packet);
int UdpSendPacketBinAdr(SnmpPackage *package, uint32_t address, const PkgPacket *packet); // network order

// Waits at most that many whole seconds for one datagram, signals notwithstanding. On success Pos is 0, Len
// the size and Data zero behind it; otherwise Len is 0 and the result 6 (nothing came), 13 (more than a
// packet holds), 11, 10 or 14. The peer is delivered if asked for.
int UdpReceivePacket(SnmpPackage *package, PkgSource *source, PkgPacket *packet, int seconds);
int UdpReceivePacketBinAdr(SnmpPackage *package, uint32_t *address, PkgPacket *packet, int seconds);

// What one datagram may hold: 512 to 1400 bytes; 0 with code 14 if the socket cannot tell.
int UdpGetMaxPacketSize(SnmpPackage *package, int *code);

int64_t UdpMilliseconds(); // a clock that only goes forward

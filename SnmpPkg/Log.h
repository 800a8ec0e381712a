// The packet log of a package.
#pragma once

#include "SnmpPkg/Pkg.h"

#include <cstdio>

// Dumps the elements of a message to standard output when LogPackets is set: a heading, then one line for
// each header from Pos to the end of the message, or to the first that is damaged. Pos is put back.
void LogPacket(SnmpPackage *package, PkgPacket *packet, const char *heading);
void LogPacketTo(FILE *out, SnmpPackage *package, PkgPacket *packet, const char *heading);

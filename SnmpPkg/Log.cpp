// The packet log of the SNMP package.
#include "SnmpPkg/Log.h"

#include "SnmpPkg/Decode.h"

struct LogName {
    unsigned Tag;
    const char *Text;
};
static constexpr LogName LogNames[] = {
    {BER_INTEGER, "  VT_NUMBER: \n"},          {BER_BITSTRING, "  VT_BITSTRING: \n"},
    {BER_STRING, "  VT_STRING: \n"},           {BER_NULL, "  VT_EMPTY: \n"},
    {BER_OBJECT, "  VT_OBJECT: \n"},           {BER_IPADDRESS, "  VT_IPADDRESS: \n"},
    {BER_COUNTER, "  VT_COUNTER: \n"},         {BER_GAUGE, "  VT_GAUGE:  \n"},
    {BER_TIMETICKS, "  VT_TIMETICKS: \n"},     {BER_OPAQUE, "  VT_OPAQUE: \n"},
    {BER_NSAPADDRESS, "  VT_NSAPADDRESS: \n"}, {BER_COUNTER64, "  VT_COUNTER64: \n"},
    {BER_UINTEGER32, "  VT_UINTEGER32: \n"},   {BER_NOSUCHOBJ, "  VT_NOSUCHOBJ: \n"},
    {BER_NOSUCHINS, "  VT_NOSUCHINS: \n"},     {BER_ENDOFMIB, "  VT_ENDOFMIB: \n"},
};

static const char *LogTypeName(unsigned tag) {
    for (const LogName &name : LogNames)
        if (name.Tag == tag) return name.Text;
    return "  not defined: \n";
}

void LogPacketTo(FILE *out, SnmpPackage *package, PkgPacket *packet, const char *heading) {
    if (!package || !packet || package->LogPackets == 0) return;
    fprintf(out, "\n%s\n", heading);
    int32_t start = packet->Pos;
    int end = packet->Len < PKG_DATA_SIZE - start ? start + packet->Len : PKG_DATA_SIZE;
    PkgHeader header;
    while (packet->Pos < end && PkgDecodeHeader(packet, &header)) {
        fprintf(out, "Class = %02X   Flag = %02X   Length  = %i   Type = %02X  %s", header.Class, header.Flag,
                header.Len, header.Type, LogTypeName(header.Type));
        if (header.Flag == 0) packet->Pos += header.Len;
    }
    packet->Pos = start;
}

void LogPacket(SnmpPackage *package, PkgPacket *packet, const char *heading) {
    LogPacketTo(stdout, package, packet, heading);
}

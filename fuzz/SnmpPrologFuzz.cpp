// A datagram from anywhere: prolog with its copies, the log, and every reader of the codec at every place the
// first byte names.
#include "SnmpPkg/Decode.h"
#include "SnmpPkg/Log.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

static PkgPacket Received(const uint8_t *data, size_t size) {
    PkgPacket packet = {};
    size = std::min<size_t>(size, PKG_DATA_SIZE);
    if (size > 0) memcpy(packet.Data, data, size);
    packet.Len = static_cast<int32_t>(size);
    return packet;
}

static void Check(bool holds) {
    if (!holds) abort();
}

static void ReadProlog(const uint8_t *data, size_t size) {
    PkgPacket packet = Received(data, size);
    PkgProlog prolog;
    bool read = PkgDecodePacketProlog(&packet, &prolog);
    Check(read == (prolog.Community != nullptr));
    Check(!read || (packet.Len <= PKG_DATA_SIZE && prolog.ErrorStatus == 0));
    PkgFreeProlog(&prolog);
}

static void Log(const uint8_t *data, size_t size) {
    static FILE *null = fopen("/dev/null", "w");
    static SnmpPackage package;
    package.LogPackets = 1;
    PkgPacket packet = Received(data, size);
    LogPacketTo(null, &package, &packet, "fuzz");
    Check(packet.Pos == 0);
}

// One reader at one place; its room is a part of what the content may want.
static void Read(const uint8_t *data, size_t size, int which, int pos) {
    PkgPacket packet = Received(data, size);
    packet.Pos = pos;
    PkgHeader header;
    char text[PKG_OID_TEXT_SIZE];
    int32_t value = 0;
    PkgInt64 wide;
    uint8_t bytes[64];
    PkgBits bits = {0, bytes, sizeof bytes};
    bool read = false;
    switch (which) {
    case 0: read = PkgDecodeStr(&packet, &header, text, PKG_TEXT_SIZE); break;
    case 1: read = PkgDecodeStr(&packet, &header, text, 8); break;
    case 2: read = PkgDecodeInt(&packet, &header, &value); break;
    case 3: read = PkgDecodeObjectId(&packet, &header, text, sizeof text); break;
    case 4: read = PkgDecodeObjectId(&packet, &header, text, 24); break;
    case 5: read = PkgDecodeInt64(&packet, &header, &wide); break;
    case 6: read = PkgDecodeBitStr(&packet, &header, &bits); break;
    default: PkgRdInt(&packet); break;
    }
    Check(packet.Pos <= PKG_READ_END);
    if (read && which == 3) Check(static_cast<int>(strlen(text)) == header.Len);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    ReadProlog(data, size);
    Log(data, size);
    for (int which = 0; which < 8; which++)
        for (int pos : {0, static_cast<int>(data[0]), PKG_DATA_SIZE - 1 - data[0] % 16})
            Read(data, size, which, pos);
    return 0;
}

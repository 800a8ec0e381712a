// An exchange with hosts that answer anything: each part of the input, a length byte pair ahead of it, is one
// datagram read into the same package, as the engine does it; a part of no length ends a host. Where a part
// does not begin like a message its bytes are taken for bindings, so that the walk is reached without a
// prolog.
#include "SnmpPkg/Filter.h"
#include "tests/lib/PkgCheck.h"

#include <algorithm>
#include <cstdlib>

static void ReadPart(SnmpPackage *package, const std::string &bytes) {
    bool message = bytes[0] == BER_SEQUENCE && bytes.size() > 2 && bytes[2] == BER_INTEGER;
    PkgPacket packet = Received(bytes);
    if (message)
        ReadDatagram(package, bytes);
    else
        DecodeVariables(&packet, package, 0);
    if (PkgCheck(*package) != nullptr) abort();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    SnmpPackage package;
    SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.6.1.2.1.1.5.0", PKG_TABLE_NAME,
              "1.3.6.1.2.1.43.8.2.1.13.1.1");
    InitRecVars(&package);
    while (size >= 2) {
        size_t part = std::min<size_t>(static_cast<size_t>(data[0]) << 8 | data[1], size - 2);
        if (part > 0)
            ReadPart(&package, {reinterpret_cast<const char *>(data) + 2, part});
        else
            InitRecVars(&package);
        PassFilter("(($0) && ((Tarvo IN $1) || (!($2))))", &package);
        data += part + 2;
        size -= part + 2;
    }
    return 0;
}

// Datagrams at a simulated printer, ahead of a reset and behind it: what it sends back is one message, and
// the manager's decoder takes it.
#include "tools/prnsim/SimAgent.h"

#include "SnmpPkg/Decode.h"
#include "fuzz/FuzzDir.h"

#include <cstring>

static constexpr char Fleet[] = R"(
printer 10.0.0.1 to 10.0.0.2
 1.3.6.1.2.1.1.3.0 uptime
 1.3.6.1.2.1.1.5.0 text "lobby" rw max 20 keep
 1.3.6.1.2.1.1.6.0 text "{number}" rw cut 3
 1.3.6.1.2.1.2.1.0 integer -1 rw
 1.3.6.1.2.1.2.2.0 oid 1.3.1 rw
 1.3.6.1.2.1.2.3.0 ip 1.2.3.4 rw
 1.3.6.1.2.1.2.4.0 gauge 4294967295 rw
 1.3.6.1.2.1.2.4.1 null
 reset 1.3.6.1.2.1.2.1.0 4 factory 6
 at 1.3.6.1.2.1.2.2 otherid 100
 at 1.3.6.1.2.1.2.4 error 100 readOnly
 warm 1.3.6.1.2.1.1.5.0 text "warming up"
 warm 1.3.6.1.2.1.2.3.0 null
 reset-time 20000
 warm-up 20000
 size 700
)";

// The manager reads what the simulator sends, unless it is longer than a manager's packet.
static void CheckAnswer(const SimAnswer &answer) {
    SimRequest request = {};
    PkgPacket packet = {};
    PkgProlog prolog;
    Require(!SimDecodeRequest(answer.bytes, &request));
    if (answer.bytes.size() > PKG_DATA_SIZE) return;
    memcpy(packet.Data, answer.bytes.data(), answer.bytes.size());
    packet.Len = static_cast<int32_t>(answer.bytes.size());
    Require(PkgDecodePacketProlog(&packet, &prolog) || prolog.ErrorStatus != 0);
    Require(packet.Len == static_cast<int32_t>(answer.bytes.size()));
    PkgFreeProlog(&prolog);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static std::unique_ptr<SimFleet> fleet =
        (WriteFuzzFile("agent.fleet", Fleet), SimReadFleet({FuzzDirectory() + "/agent.fleet"}, {}));
    static SimAgent agent(*fleet);
    SimPrinter printer = {.place = &fleet->printers[0]};
    std::string_view datagram(reinterpret_cast<const char *>(data), size);
    for (SimTime now : {0, 10, 30000000, 50000000}) {
        SimAnswer answer = agent.Answer(&printer, datagram, false, now, 0);
        Require(!agent.LogFields(printer, answer, false).empty());
        if (answer.fate == FATE_SENT) CheckAnswer(answer);
        for (const auto &[name, value] : printer.changed) Require(SimFind(*printer.place, name) != nullptr);
    }
    return 0;
}

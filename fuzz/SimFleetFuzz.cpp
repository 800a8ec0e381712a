// A description, or a recorded walk behind its first byte, or lines that change a printer: a fault or a
// fleet; a walk over a printer is ascending and finds what a look-up finds, and its dump, read as a
// recording, is the same walk.
#include "tools/prnsim/SimFleet.h"

#include "fuzz/FuzzDir.h"

static std::unique_ptr<SimFleet> Read(const char *name) {
    try {
        return SimReadFleet({FuzzDirectory() + "/" + name}, {});
    } catch (const SimFault &fault) {
        Require(std::string(fault.what()).find(": ") != std::string::npos);
        return nullptr;
    }
}

static std::string Dump(const SimPlaceOfPrinter &printer) {
    SimOid last;
    std::string text;
    while (const SimEntry *entry = SimFindNext(printer, last)) {
        Require(entry->name > last && SimFind(printer, entry->name) == entry);
        last = entry->name;
        text += SimRecordLine(last, entry->value, printer.address, printer.number) + "\n";
    }
    return text;
}

static constexpr char Recorded[] = "printer 10.0.0.1\n recording \"walk\"\n";

static constexpr char Changed[] = R"(
name sys 1.3.6.1.2.1.1
model m
 sys.5.0 text "lobby" rw
 sys.6.0 integer 5
 warm sys.6.0 integer 6
 at sys loss 5
printer 10.0.0.1 to 10.0.0.2 like m
 sys.7.0 null
)";

// A line changes the printer that it names alone, and none if it is refused.
static std::unique_ptr<SimFleet> Change(const std::string &text) {
    WriteFuzzFile("changed.fleet", Changed);
    std::unique_ptr<SimFleet> fleet = Read("changed.fleet");
    for (size_t at = 0, end; at < text.size(); at = end + 1) {
        end = std::min(text.find('\n', at), text.size());
        std::set<SimOid> names;
        std::string before[] = {Dump(fleet->printers[0]), Dump(fleet->printers[1])};
        size_t changed = fleet->printers.size();
        try {
            changed = SimChangeFleet(fleet.get(), {}, std::string_view(text).substr(at, end - at), &names);
            for (const SimOid &name : names) Require(SimFind(fleet->printers[changed], name) != nullptr);
        } catch (const SimFault &) {
        }
        for (size_t i : {0, 1}) Require(i == changed || Dump(fleet->printers[i]) == before[i]);
    }
    return fleet;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string text(reinterpret_cast<const char *>(data), size);
    if (size > 0 && text[0] == '|') {
        WriteFuzzFile("walk", text.substr(1));
        text = Recorded;
    }
    WriteFuzzFile("read.fleet", text);
    std::unique_ptr<SimFleet> fleet =
        size > 0 && text[0] == '!' ? Change(text.substr(1)) : Read("read.fleet");
    if (!fleet || fleet->printers.empty()) return 0;
    std::string dump = Dump(fleet->printers.back());
    WriteFuzzFile("walk", dump);
    WriteFuzzFile("again.fleet", Recorded);
    std::unique_ptr<SimFleet> again = Read("again.fleet");
    Require(again && Dump(again->printers[0]) == dump);
    return 0;
}

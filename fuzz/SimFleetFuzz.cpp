// A description, or a recorded walk behind its first byte: a fault or a fleet; a walk over a printer is
// ascending and finds what a look-up finds, and its dump, read as a recording, is the same walk.
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

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string text(reinterpret_cast<const char *>(data), size);
    if (size > 0 && text[0] == '|') {
        WriteFuzzFile("walk", text.substr(1));
        text = Recorded;
    }
    WriteFuzzFile("read.fleet", text);
    std::unique_ptr<SimFleet> fleet = Read("read.fleet");
    if (!fleet || fleet->printers.empty()) return 0;
    std::string dump = Dump(fleet->printers.back());
    WriteFuzzFile("walk", dump);
    WriteFuzzFile("again.fleet", Recorded);
    std::unique_ptr<SimFleet> again = Read("again.fleet");
    Require(again && Dump(again->printers[0]) == dump);
    return 0;
}

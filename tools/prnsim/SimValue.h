// Object identifiers and values of the simulated printers.
//
// An identifier is a string of arcs, so that comparing two of them is the order in which get-next walks. A
// value is kept as it will be sent: texts, addresses and identifiers as the bytes of their content, numbers
// as numbers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

using SimOid = std::u32string;
using SimOidView = std::u32string_view;

enum { SIM_ARCS_MAX = 128, SIM_TEXT_MAX = 60000 };

// The tags of RFC 1155.
enum SimTag : uint8_t {
    SIM_INTEGER = 0x02,
    SIM_OCTETS = 0x04,
    SIM_NULL = 0x05,
    SIM_OBJECT = 0x06,
    SIM_IP = 0x40,
    SIM_COUNTER = 0x41,
    SIM_GAUGE = 0x42,
    SIM_TICKS = 0x43,
};

// Something of the printer's own that is put into the bytes when they are sent.
struct SimPlace {
    enum What : uint8_t { ADDRESS_TEXT, ADDRESS_BYTES, NUMBER_TEXT, NUMBER_BYTES };
    uint32_t at; // ahead of this byte; ascending in a value
    What what;
};

struct SimValue {
    SimTag tag = SIM_NULL;
    bool flUptime = false; // ticks since the printer started; number is not used
    bool flWritable = false;
    bool flKeep = false;       // what was set survives a reset
    uint32_t max = UINT32_MAX; // longest text, greatest integer that can be set
    uint32_t cut = UINT32_MAX; // a text that is set keeps this many bytes
    std::vector<int32_t> only; // integers that can be set, all if empty
    int64_t number = 0;        // SIM_INTEGER -2^31 .. 2^31-1, the others 0 .. 2^32-1
    std::string bytes;
    std::vector<SimPlace> places;
};

struct SimEntry {
    SimOid name;
    SimValue value;
    bool flRemoved = false; // hides the entry of this name in the model below
};

// Dotted text to arcs; false if it is none: fewer than two arcs, a first above 2, a second above 39 below 2,
// an arc of 2^32 or more, more than SIM_ARCS_MAX.
bool SimParseOid(std::string_view text, SimOid *oid);
std::string SimOidText(SimOidView oid);
// The content bytes of an identifier, and back; false if they are damaged.
std::string SimOidContent(SimOidView oid);
bool SimOidFromContent(std::string_view content, SimOid *oid);

// Dotted address to host order; four numbers of 0 to 255.
bool SimParseAddress(std::string_view text, uint32_t *address);
std::string SimAddressText(uint32_t address);
// Decimal digits, a sign where low is negative; within both limits.
bool SimParseNumber(std::string_view text, int64_t low, int64_t high, int64_t *number);
// Pairs of digits, blanks between them.
bool SimParseHex(std::string_view text, std::string *bytes);

// The bytes with what belongs into the value's places.
std::string SimExpand(const SimValue &value, uint32_t address, uint32_t number);
// One line of a recorded walk, without a line end; ticks of an uptime are 0.
std::string SimRecordLine(SimOidView name, const SimValue &value, uint32_t address, uint32_t number);
// For the log: text:"lobby\x20bar", integer:5, hex:00ff. Neither blank nor line end stands in it.
std::string SimValueText(const SimValue &value, uint32_t address, uint32_t number);

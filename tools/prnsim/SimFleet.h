// What a description says: models, printers, subnets, knobs. The grammar and every knob stand in
// doc/prnsim.md.
//
// Nothing here changes once it is read, but for SimChangeFleet(), so it is shared: a printer holds its model
// by address and its own lines in a block that all printers of one statement have in common. A thousand
// printers of a model cost a thousand SimPrinter.
#pragma once

#include "tools/prnsim/SimValue.h"

#include <array>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>

// ORDER SimKnob: the rows of the table in SimKnobs.cpp. Those up to KNOB_OTHERID, but foreign, can
// stand behind `at`.
enum SimKnob {
    KNOB_LOSS,
    KNOB_DELAY,
    KNOB_DUPLICATE,
    KNOB_REORDER,
    KNOB_FOREIGN,
    KNOB_GARBAGE,
    KNOB_TRUNCATE,
    KNOB_LONG,
    KNOB_ERROR,
    KNOB_OTHERID,
    KNOB_DIES,
    KNOB_BROADCAST,
    KNOB_BROADCAST_DELAY,
    KNOB_REFUSE,
    KNOB_SIZE,
    KNOB_RESET_TIME,
    KNOB_RESET_AFTER,
    KNOB_WARM_UP,
    KNOB_WEB,
    KNOB_RAW,
    KNOB_LPD,
    KNOB_READ,
    KNOB_WRITE,
    KNOB_RESET,
    KNOB_COUNT
};

enum { WEB_OFF, WEB_ON, WEB_MUTE, WEB_DEAF };  // by the words of `web`
enum { DIES_NEVER = -1, DIES_BROADCAST = -2 }; // else the number of requests that are answered

// Units: chances in millionths, times in microseconds. Which field holds what stands in the table of knobs.
struct SimSetting {
    bool flSet = false;
    bool flForced = false; // by the command line: what the description says of single identifiers is void
    int64_t first = 0, second = 0;
    std::string text;
    std::vector<std::string> words;
    SimOid name;                           // of the reset object
    std::vector<int64_t> numbers, factory; // its numbers; those of `factory` forget all
};
using SimKnobs = std::array<SimSetting, KNOB_COUNT>;

// A knob for requests that name something at or below an identifier.
struct SimAtKnob {
    SimOid top;
    SimKnob knob;
    SimSetting setting;
};

struct SimBlock {
    std::vector<SimEntry> entries; // ascending by name, each name once
    std::vector<SimEntry> warm;    // what stands in their place while it warms up; likewise
    SimKnobs knobs;                // of a printer's block: those in force; of a model's: those that were said
    std::vector<SimAtKnob> at;     // the first that fits counts; a model's behind the printer's own
};

struct SimSubnet {
    uint32_t address, mask;
    uint32_t Broadcast() const { return address | ~mask; }
};

struct SimPlaceOfPrinter {
    uint32_t address, number; // number: place in its statement's run, from 1
    const SimBlock *model;    // null without `like`
    const SimBlock *own;
};

struct SimFleet {
    std::map<std::string, SimOid> names; // words that may begin an identifier
    uint64_t seed = 1;
    int64_t pace = 10000; // answers a second to one broadcast; 0: no limit
    std::vector<SimSubnet> subnets;
    std::vector<SimPlaceOfPrinter> printers; // ascending by address, each address once
    std::map<std::string, SimBlock> models;
    std::deque<SimBlock> blocks; // the printers' own; addresses stay valid
};

// The text is "FILE:LINE: what is wrong", ready to be shown.
struct SimFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct SimReadOptions {
    uint32_t mapFrom = 0, mapTo = 0, mapMask = 0; // of addresses: those with `from` below the mask get `to`
    std::vector<std::string> knobs;               // in force over all others
};

// Reads the files one behind the other as one description. Throws SimFault.
std::unique_ptr<SimFleet> SimReadFleet(const std::vector<std::string> &files, const SimReadOptions &options);

// Carries out "ADDRESS LINE": a value, a knob or another line of a printer's block, for that printer alone,
// in the place of what it had. Gives the printer's number, and the names of values that the line set. Throws
// SimFault; the fleet is then as it was.
size_t SimChangeFleet(SimFleet *fleet, const SimReadOptions &options, std::string_view text,
                      std::set<SimOid> *names);

// True for an identifier at or below another one.
inline bool SimIsBelow(SimOidView name, SimOidView top) {
    return name.substr(0, top.size()) == top;
}

// The value that a printer has of this name by description, null if none; and the first name behind it.
const SimEntry *SimFind(const SimPlaceOfPrinter &printer, SimOidView name);
const SimEntry *SimFindNext(const SimPlaceOfPrinter &printer, SimOidView name);
// The value that it has instead while it warms up, null if that is none.
const SimEntry *SimFindWarm(const SimPlaceOfPrinter &printer, SimOidView name);

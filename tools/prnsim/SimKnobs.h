// The knobs: one line of a description each.
#pragma once

#include "tools/prnsim/SimFleet.h"
#include "tools/prnsim/SimWords.h"

#include <functional>

// What the reader of a description lends: names in identifiers, mapped addresses. False if the text is none.
struct SimResolver {
    std::function<bool(const std::string &text, SimOid *oid)> oid;
    std::function<bool(const std::string &text, uint32_t *address)> address;
};

int SimFindKnob(const std::string &word); // a SimKnob, -1 for another word
// The words of the line, the knob's first, into its setting; returns what is wrong, or an empty text.
std::string SimReadKnob(const std::vector<SimWord> &words, const SimResolver &resolver, SimKnobs *knobs);
// What holds where nothing is said.
const SimKnobs &SimDefaultKnobs();

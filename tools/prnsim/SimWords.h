// A line of a description as words.
#pragma once

#include "tools/prnsim/SimValue.h"

struct SimWord {
    std::string text;             // of a quoted one without quotes and escapes
    std::vector<SimPlace> places; // of a quoted one or of a bare {address}; as in a text value
    bool flQuoted = false;
};

// Reads blanks, words, commas (a word each), quoted texts; stops at a comment or the end. Returns what is
// wrong, or an empty text. A backslash stands for itself outside quotes; within, an unknown escape is a
// fault. The line has no end mark.
std::string SimSplit(std::string_view line, std::vector<SimWord> *words);

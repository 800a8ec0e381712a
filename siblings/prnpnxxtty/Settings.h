// Feature settings: lines NAME=CHOICE, as they go into ".settings" and into the record of a queue.
#pragma once

#include "siblings/lib/Ppd.h"

#include <string>
#include <string_view>

// Sets what each option is at: the choice that the text tells, the last one if there are several; the model's
// own without one that the model offers; nothing if that isn't offered either.
void ChooseSettings(Ppd &ppd, std::string_view text);
// A line for each option that is at a choice, and the lines of the text for options that are not for picking.
std::string MakeSettings(const Ppd &ppd, std::string_view text);
// A new file in place of the old one, so that nobody reads half of it. Empty, or what is wrong in words: then
// the old one stands.
std::string WriteSettings(const std::string &path, const std::string &settings);

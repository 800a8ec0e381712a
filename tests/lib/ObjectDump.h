// The objects that descriptions made, as text, and what Motif holds of them.
#pragma once

#include "xmt/Xmt.h"

#include <string>

// What is inside the object, pulldowns and dialogs behind the rest: "a_B1 100 Box{a_L 100 Label, a 100
// Text}", with name, number and type, and a '!' behind one that is not managed. A widget without a record is
// passed over; one whose name went to a later object is shown as "(name)".
std::string DumpObjects(const char *name);
// One resource as a number, widened from its size, or as the text of a compound string.
long ResourceOf(const char *name, const char *resource);
std::string StringOf(const char *name, const char *resource);
// Several of them: "a.columns b_B1.spacing" gives "12 3", "a_L.labelString b_L.labelString" gives
// "Name|Kind".
std::string ResourcesOf(const char *words);
std::string StringsOf(const char *words);
std::string TextOf(const char *name); // what a text object holds

// The statements of a description, and the objects that each keyword makes.
#pragma once

#include "tools/checkwin/Text.h"

// Reads a whole description below the main window, if there is one. The result: a line "key name" for each
// keyword that the running reader would carry out, to be held against it.
std::string ReadDescription(const Text &text);
// The same lines from the reader itself.
std::string AskReader(const std::string &text);

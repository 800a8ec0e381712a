// Formats of objects: clauses of the two dialects, and entry checks of text fields.
#pragma once

#include "tools/checkwin/Text.h"

// Checks the format of an object of the type, of which callbacks are the keys in CB(...).
void CheckFormat(int type, const Text &format, const std::string &callbacks);

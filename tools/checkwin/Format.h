// Formats of objects: clauses of the two dialects, and entry checks of text fields.
#pragma once

#include "tools/checkwin/Text.h"

// Checks the format of an object of the type, of which callbacks are the keys in CB(...) and items the number
// of its choices, 0 if it is not known.
void CheckFormat(int type, const Text &format, const std::string &callbacks, int items = 0);
// Whether the program hears of an object itself; of others it hears when they are targets of C.
bool IsHeard(int type, const Text &format, const std::string &callbacks);

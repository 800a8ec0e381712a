// Colours and fonts by name, as X knows them.
#pragma once

#include <string>

// A name of the reader's own table, "#" with 6 or 12 digits, or "rgb:" with three numbers. The server knows
// its names in any case, and with or without blanks.
bool IsColour(const std::string &name);
// A font or an alias of those that X has on this host; any, where it has none.
bool IsFont(const std::string &name);

// What a program of the family complained or warned of, in the windows.
#pragma once

#include <string>

// Shows it, a line each, in a message box; nothing for an empty text.
void PostTold(const std::string &told);

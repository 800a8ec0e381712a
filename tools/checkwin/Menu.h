// Menu bars: the language of their bodies.
#pragma once

#include "tools/checkwin/Text.h"

int BuildMenu(Scan *cursor, int parent); // behind the keyword, through the closing brace

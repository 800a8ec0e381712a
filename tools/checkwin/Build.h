// What each keyword makes: the names of its widgets and the groups that its parts read.
#pragma once

#include "tools/checkwin/Text.h"
#include "xmt/XmtNew.h"

// Reads an object behind its keyword: its number for the block that follows, -1 for none.
int BuildObject(Scan *cursor, const XmtKeyRow &row, int parent);
int FindMainWindow(); // -1 before there is one

// What a program of the family complained or warned of, in the windows.
#include "prndeck/gui/PrdGuiTold.h"

#include "xmt/XmtMsg.h"

void PostTold(const std::string &told) {
    if (!told.empty()) XmtPostMsg_(nullptr, told.c_str());
}

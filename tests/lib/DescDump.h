// What a description does, as text, without a display: a recording table stands in place of the creators.
#pragma once

#include "xmt/XmtNewArgs.h"

#include <string>

// Reads the description and gives a line for each keyword that was carried out: two blanks for
// each level, key, name, number. Arguments are read as the creators read them; "[h]" marks a hidden object.
// The objects can be named by P(...), O and attachments, in the same and in later descriptions.
std::string DumpDescription(const char *text, int firstId, const char *parent = nullptr);
// The same with the argument text that each object took, its white space squeezed.
std::string DumpArguments(const char *text);
// What XmtFillInfo makes of arguments: the resources in order, then the fields of the record that are set.
std::string DumpFillInfo(const char *text, int type, int mode);
// What XmtFillInfoDesc makes of them.
std::string DumpFillInfoDesc(const char *text);

// The objects that descriptions made, as text: one a line, "name id type", with " hidden" for one that is not
// managed, indented by the objects around it. Widgets without a record are passed over; one whose record went
// to a later object of its name is shown as "(name)".
#pragma once

#include "xmt/Xmt.h"

#include <string>

// The object and all below it, pulldowns and dialogs included.
std::string DumpObjects(const char *name);
std::string DumpWidget(Widget widget);
// One resource as a number, widened from its size, or as the text of a compound string.
long ResourceOf(const char *name, const char *resource);
std::string StringOf(const char *name, const char *resource);
std::string TextOf(const char *name); // what a text object holds

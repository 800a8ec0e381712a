// What every program of the family does first, and how it complains.
#pragma once

#include <string>

extern const char ToolVersion[]; // of the family, without a name

// Sets my_name, opens the standard streams that the caller closed (no other file must take their numbers),
// and puts signals and mode mask in order.
void BeginProgram(const char *name);

// Sets pToolPath to the program's own directory, whatever link or PATH it was started by; to "." and false if
// that can't be told.
bool FindToolDirectory();
// The same, and makes it the current one. False if that can't be done.
bool EnterToolDirectory();

// Ends the run, with status 1, some time after the limit for its commands: the last resort against anything
// that blocks outside of them.
void LimitRun();

// Prints "NAME: ERROR" on standard error and answers 1; 0 for an empty text.
int Complain(const std::string &error);

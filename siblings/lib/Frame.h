// What every program of the family does first, and how it complains.
#pragma once

#include <string>

extern const char ToolVersion[]; // of the family, without a name

// Sets my_name, opens the standard streams that the caller closed (no other file must take their numbers),
// and puts signals and mode mask in order.
void BeginProgram(const char *name);

// Where the tool directory is: that of the name the program was called by, with links as they stand, so that
// a directory of links serves; a bare name counts for where PATH has it. Where no printer models (ppd/) lie
// there, the directory that PRNDECK_DIR names. Sets pToolPath to it; if models are in neither, to the former,
// and answers false. Null counts as a bare name that PATH doesn't have, which is the current directory.
inline constexpr char ToolDirVariable[] = "PRNDECK_DIR";
bool FindToolDirectory(const char *argv0);
// The same, and makes it the current one. False if that can't be done, with the complaint told.
bool EnterToolDirectory(const char *argv0);

// Ends the run, with status 1, some time after the limit for its commands: the last resort against anything
// that blocks outside of them.
void LimitRun();

// Prints "NAME: ERROR" on standard error and answers 1; 0 for an empty text.
int Complain(const std::string &error);

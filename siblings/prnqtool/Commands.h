// What the tool's commands do: the queues of both stores and their records, changed together.
#pragma once

#include "siblings/prnqtool/Options.h"

// Runs the command; 0, or 1 with the reason on standard error, or STATUS_CHANGED. The current directory is
// the tool's.
int RunCommand(const Options &options);
// One command that changes queues. Answers an empty text, or why it didn't.
std::string ChangeBy(const Options &options);
// The titles of all queues that have none of their own. BeginChange is part of it.
std::string SetSystemBanner(const std::string &banner);

// What the tool's commands do: the queues of both stores and their records, changed together.
//
// The order of every change keeps what was there: all values are checked first; the records are made ready on
// the disk, so that a full or read-only one is known; then the host changes; then the records come into
// place. If a step is refused the ones before it are undone.
#pragma once

#include "siblings/prnqtool/Options.h"

// Runs the command; 0, or 1 with the reason on standard error. The current directory is the tool's.
int RunCommand(const Options &options);

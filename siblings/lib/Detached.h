// Processes that stay behind a call: prnout's sender and its watcher (siblings/prnout/Sender.h).
#pragma once

#include <string>

// Starts "prnout MODE DIRECTORY" from a program file on its own: no terminal, no parent, no open files. Does
// nothing but cost a moment if there is one already. Empty, or why it can't be started; a program file that
// can't be run isn't noticed.
std::string StartDetached(const char *program, const char *mode, const std::string &directory);

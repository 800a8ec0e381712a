// The two processes that stay behind a call: the sender, which prints the jobs of the tool's own store, and
// the watcher, which keeps the picture of the scheduler's jobs true. Each is alone in its spool directory.
#pragma once

#include <string>

// Delivers job after job, oldest first, and tries again for as long as the printer can't be reached; returns
// when no job is left that it could print. Jobs of a queue that is gone are held. A job leaves the spool only
// after it was delivered whole. Sweeps the spool first. PRNQ_RETRY tells the seconds between two tries (10).
std::string RunSender(const std::string &directory);

// Refreshes the picture every two seconds, or as PRNQ_WATCH tells; returns when no job waits. Sweeps first,
// too.
std::string RunWatcher(const std::string &directory);

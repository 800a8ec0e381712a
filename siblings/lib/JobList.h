// The jobs that wait on this host, of the scheduler and of the tool's own store, for lists.
#pragma once

#include "siblings/lib/Host.h"

#include <string>
#include <vector>

struct WaitingJob {
    std::string queue; // empty if only its owner may read whose job it is
    std::string name;  // as prnrm takes it
    std::string user, title;
    long long size = 0; // bytes
    Place place = PLACE_NONE;
    std::string directory; // of spool; empty for a queue of the scheduler without a record
};

// All of them: the scheduler's first, each store's oldest first. The host and the records are open. Answers
// an empty text, or why the list isn't whole.
std::string ListJobs(const Host &host, std::vector<WaitingJob> &jobs);

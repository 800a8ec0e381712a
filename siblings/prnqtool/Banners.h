// Banner pages that come late: while jobs wait the scheduler isn't told of the page's file, and a queue that
// is made then goes without. The file "db/.prnq_banner" keeps the names of such queues, a line each.
#pragma once

#include "siblings/lib/Host.h"

#include <string>
#include <vector>

// Behind each change that stands, with the queues that it gave their banner page or would have: notes those
// that went without, or gives all of the file what they lack. What can't be done now waits for the next
// change.
void SettleBanners(const Host &host, const std::vector<std::string> &changed);

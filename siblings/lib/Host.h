// The host's queues as a whole: those of the print system and those of the tool's own store.
#pragma once

#include "siblings/lib/CupsStore.h"

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

enum Place {       // ORDER Place
    PLACE_NONE,    // the host answered, and doesn't know the queue
    PLACE_FILE,    // the tool's own store
    PLACE_CUPS,    // the host's scheduler
    PLACE_UNKNOWN, // the scheduler doesn't answer: the queue may be there or not
};

struct Host {
    CupsState state = CUPS_ABSENT;
    std::vector<std::string> queues, leftovers; // of CUPS; queues by HostPut and HostForget only
    std::string error;                          // why CUPS is down
    bool flStandAlone = false;                  // the marker file says that queues are the tool's own
    std::unordered_set<std::string> known;      // the queues of CUPS, for look-ups
    std::unordered_multimap<std::string, std::string> folded; // all queues by their name in lower case
};

// Reads both lists. Answers an empty text, or what is wrong. A scheduler that is down is no error here.
std::string HostOpen(Host &host);
std::vector<std::string> HostQueues(const Host &host);
Place HostFind(const Host &host, const std::string &name);
// A queue that CUPS has from now on, or no longer has.
void HostPut(Host &host, const std::string &name);
void HostForget(Host &host, const std::string &name);
// A queue of either store whose name differs by case only; empty for none. Of the own store it knows those of
// HostOpen and HostNamed.
std::string HostTwin(const Host &host, const std::string &name);
void HostNamed(Host &host, const std::string &name); // a queue that the own store has from now on
// Where a new queue goes; PLACE_UNKNOWN with the reason in error.
Place HostChoose(const Host &host, std::string &error);

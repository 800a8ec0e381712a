// Which store has a queue, and which one gets a new one.
#include "siblings/lib/Host.h"

#include "print/MainUtils.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/Say.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

// PRNQ_STORE=file leaves CUPS out altogether.
static bool IsStore(const char *name) {
    const char *store = getenv("PRNQ_STORE");
    return store && !strcmp(store, name);
}

std::string HostOpen(Host &host) {
    if (getenv("PRNQ_STORE") && !IsStore("file") && !IsStore("cups"))
        return "PRNQ_STORE must be \"file\" or \"cups\"";
    SetConfigFlags();
    host.flStandAlone = flToolCfg & CFG_DIRECT;
    if (!IsStore("file")) host.state = CupsList(host.queues, host.leftovers, host.error);
    return FileStoreOpen();
}

std::vector<std::string> HostQueues(const Host &host) {
    std::vector<std::string> queues = FileStoreQueues();
    for (const std::string &name : host.queues)
        if (!FileStoreHas(name)) queues.push_back(name);
    return queues;
}

Place HostFind(const Host &host, const std::string &name) {
    if (FileStoreHas(name)) return PLACE_FILE;
    if (host.state == CUPS_DOWN) return PLACE_UNKNOWN;
    bool flThere = std::find(host.queues.begin(), host.queues.end(), name) != host.queues.end();
    return flThere ? PLACE_CUPS : PLACE_NONE;
}

Place HostChoose(const Host &host, std::string &error) {
    if (IsStore("file")) return PLACE_FILE;
    if (!IsStore("cups") && host.flStandAlone) return PLACE_FILE;
    bool flWanted = IsStore("cups") || (flToolCfg & CFG_CUPS);
    if (host.state == CUPS_UP) return PLACE_CUPS;
    if (host.state == CUPS_ABSENT && !flWanted) return PLACE_FILE;
    // To fall back to the other store without a word would scatter the queues.
    error = host.error.empty() ? Say(SaySchedulerDown) : host.error;
    return PLACE_UNKNOWN;
}

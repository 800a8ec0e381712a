// Which store has a queue, and which one gets a new one.
#include "siblings/lib/Host.h"

#include "print/MainUtils.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/Say.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

// PRNQ_STORE=file leaves CUPS out altogether.
static bool IsStore(const char *name) {
    const char *store = getenv("PRNQ_STORE");
    return store && !strcmp(store, name);
}

static std::string Folded(std::string name) {
    for (char &byte : name) byte = static_cast<char>(tolower(static_cast<unsigned char>(byte)));
    return name;
}

std::string HostOpen(Host &host) {
    if (getenv("PRNQ_STORE") && !IsStore("file") && !IsStore("cups"))
        return "PRNQ_STORE must be \"file\" or \"cups\"";
    SetConfigFlags();
    host.flStandAlone = flToolCfg & CFG_DIRECT;
    if (!IsStore("file")) host.state = CupsList(host.queues, host.leftovers, host.error);
    host.known.insert(host.queues.begin(), host.queues.end());
    std::string error = FileStoreOpen();
    for (const std::string &name : HostQueues(host)) HostNamed(host, name);
    return error;
}

std::vector<std::string> HostQueues(const Host &host) {
    std::vector<std::string> queues = FileStoreQueues();
    for (const std::string &name : host.queues)
        if (host.known.contains(name) && !FileStoreHas(name)) queues.push_back(name);
    return queues;
}

Place HostFind(const Host &host, const std::string &name) {
    if (FileStoreHas(name)) return PLACE_FILE;
    if (host.state == CUPS_DOWN) return PLACE_UNKNOWN;
    return host.known.contains(name) ? PLACE_CUPS : PLACE_NONE;
}

void HostNamed(Host &host, const std::string &name) {
    host.folded.emplace(Folded(name), name);
}

void HostPut(Host &host, const std::string &name) {
    if (!host.known.insert(name).second) return;
    std::erase(host.queues, name); // one that was forgotten
    host.queues.push_back(name);
    HostNamed(host, name);
}

void HostForget(Host &host, const std::string &name) {
    host.known.erase(name);
}

static bool IsThere(const Host &host, const std::string &name) {
    return FileStoreHas(name) || host.known.contains(name);
}

std::string HostTwin(const Host &host, const std::string &name) {
    auto [first, last] = host.folded.equal_range(Folded(name));
    for (auto each = first; each != last; ++each)
        if (each->second != name && IsThere(host, each->second) && DiffersByCase(each->second, name))
            return each->second;
    return "";
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

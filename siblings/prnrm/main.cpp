// prnrm: removes waiting jobs of a queue, of the host's scheduler or of the tool's own store.
#include "siblings/lib/Child.h"
#include "siblings/lib/CupsJobs.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Frame.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Spool.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

static const char UsageText[] =
    "usage: prnrm QUEUE JOB ...  remove jobs that wait for the queue's printer\n"
    "       prnrm QUEUE -        remove all of them\n"
    "       prnrm --help | --version\n"
    "\n"
    "  JOB  as \"prnout -l\" shows it: a number of the host's scheduler, \"A\" and a number of the tool's\n"
    "       own store; also the file's name in \".q\", or QUEUE-NUMBER\n";

using Names = std::vector<std::string>;

// What a removal works on.
struct Removal {
    Host host;
    std::string queue, directory;     // of spool, empty for a queue without one
    std::vector<std::string> sharers; // the scheduler's queues that wait there
    std::vector<CupsJob> cupsJobs;    // theirs
    std::vector<SpoolJob> spoolJobs;  // all others of the directory
};

static std::string CheckNames(const Names &names) {
    for (const std::string &name : names)
        if (!IsJobName(name) || (name.starts_with('-') && name != "-"))
            return Say(SayJobName, name.substr(0, 80));
    bool flAll = std::find(names.begin(), names.end(), "-") != names.end();
    return flAll && names.size() > 1 ? "\"-\" for all jobs stands alone" : "";
}

// ---- What there is

static std::string OpenQueue(Removal &removal) {
    Queue queue;
    std::string error = HostOpen(removal.host);
    if (error.empty()) error = RecordsOpen();
    if (!error.empty()) return error;
    Place place = HostFind(removal.host, removal.queue);
    if (place == PLACE_UNKNOWN) return removal.host.error;
    if (place == PLACE_NONE) return Say(SayQueueUnknown, removal.queue);
    bool flRecorded = RecordsRead(removal.queue, queue) && CheckQueueTarget(queue).empty();
    if (!flRecorded && place == PLACE_FILE) return Say(SayRecordLost, removal.queue);
    if (flRecorded) removal.directory = FileStoreSpool(queue);
    if (flRecorded) removal.sharers = CupsSharers(removal.host, removal.directory);
    if (place == PLACE_CUPS && !flRecorded) removal.sharers.push_back(removal.queue);
    return "";
}

static std::string FindJobs(Removal &removal) {
    std::string error;
    std::vector<CupsJob> all;
    // Nothing was ever spooled there if the directory can't be entered, but the scheduler may have jobs.
    if (!removal.directory.empty()) error = SpoolOpen(removal.directory, false);
    if (!error.empty()) removal.directory.clear();
    if (!error.empty() && errno != ENOENT && removal.sharers.empty()) return error;
    error = removal.sharers.empty() ? "" : CupsJobs(all);
    for (const CupsJob &job : all)
        if (IsQueueOf(removal.sharers, job)) removal.cupsJobs.push_back(job);
    if (removal.directory.empty()) return error;
    for (const SpoolJob &job : SpoolJobs(removal.directory))
        if (!IsHostJob(job.name)) removal.spoolJobs.push_back(job);
    return error;
}

// ---- Removal

// A job's name, or that of its control file, as ".q" has it.
static bool IsNameOf(const std::string &name, const std::string &job) {
    return name == job || (name.starts_with('c') && name.substr(1) == job);
}

static bool IsNameOf(const std::string &name, const CupsJob &job) {
    std::string number = name.starts_with('c') ? name.substr(1) : name;
    return name == job.queue + "-" + std::to_string(job.number) ||
           (IsHostJob(number) && atol(number.c_str()) == job.number);
}

// Keeps the jobs that are named, and answers the names that fit none.
static Names Choose(Removal &removal, const Names &names) {
    std::vector<CupsJob> cupsJobs;
    std::vector<SpoolJob> spoolJobs;
    Names missing;
    for (const std::string &name : names) {
        size_t before = cupsJobs.size() + spoolJobs.size();
        for (const CupsJob &job : removal.cupsJobs)
            if (IsNameOf(name, job)) cupsJobs.push_back(job);
        for (const SpoolJob &job : removal.spoolJobs)
            if (IsNameOf(name, job.name)) spoolJobs.push_back(job);
        if (before == cupsJobs.size() + spoolJobs.size()) missing.push_back(name);
    }
    removal.cupsJobs = cupsJobs;
    removal.spoolJobs = spoolJobs;
    return missing;
}

// A status that speaks of waiting jobs is no longer true without any. A sender that prints tells its own.
static std::string ShowEmptySpool(const std::string &directory) {
    FileLock lock(directory + "/.sender", 0);
    std::string before;
    ReadWholeFile(directory + "/.status", SPOOL_TEXT_MAX, before);
    bool flEmpty = SpoolJobs(directory).empty();
    bool flPrinting = !lock.IsHeld() && before.starts_with("printing");
    return flEmpty && !flPrinting ? SpoolStatus(directory, "idle\n") : "";
}

static std::string Show(const Removal &removal) {
    size_t waiting;
    if (removal.directory.empty() || (geteuid() && !MayWriteSpool(removal.directory))) return "";
    if (removal.sharers.empty()) return ShowEmptySpool(removal.directory);
    return CupsRefresh(removal.directory, removal.sharers, 0, "", waiting);
}

static std::string RemoveJobs(Removal &removal, const Names &names) {
    bool flAll = names.front() == "-";
    Names missing = flAll ? Names() : Choose(removal, names);
    std::string error;
    for (const SpoolJob &job : removal.spoolJobs)
        if (error.empty()) error = SpoolRemove(removal.directory, job);
    std::string refused = CupsCancel(removal.cupsJobs);
    if (error.empty()) error = refused;
    for (const std::string &name : missing) TellUser(Say(SayJobUnknown, name, removal.queue));
    std::string shown = Show(removal);
    if (error.empty()) error = shown;
    return error.empty() && !missing.empty() ? Say(SayJobsUnknown) : error;
}

static std::string Run(const std::string &queue, const Names &names) {
    Removal removal;
    removal.queue = queue;
    std::string error = CheckHostQueueName(queue);
    if (error.empty()) error = CheckNames(names);
    if (error.empty()) error = OpenQueue(removal);
    if (error.empty()) error = FindJobs(removal);
    return error.empty() ? RemoveJobs(removal, names) : error;
}

int main(int argc, char **argv) {
    BeginProgram("prnrm");
    Names words(argv + 1, argv + argc);
    if (words.size() == 1 && words[0] == "--help") return fputs(UsageText, stdout) < 0;
    if (words.size() == 1 && words[0] == "--version") return printf("prnrm %s\n", ToolVersion) < 0;
    if (words.size() < 2) return Complain("a queue and its jobs are needed; see prnrm --help");
    if (!EnterToolDirectory(argv[0])) return 1;
    LimitRun();
    return Complain(Run(words[0], Names(words.begin() + 1, words.end())));
}

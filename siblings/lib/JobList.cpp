// Jobs of both stores.
#include "siblings/lib/JobList.h"

#include "siblings/lib/CupsJobs.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Spool.h"

#include <map>
#include <sys/stat.h>

// The scheduler's list tells no titles; the stubs that show its jobs do, as far as they are there.
static std::string ListCupsJobs(std::vector<WaitingJob> &jobs) {
    std::vector<CupsJob> all;
    std::string error = CupsJobs(all);
    for (const CupsJob &each : all) {
        WaitingJob job = {each.queue, CupsJobName(each.number), each.user, "", each.size, PLACE_CUPS, ""};
        JobTicket ticket;
        Queue queue;
        if (RecordsRead(each.queue, queue) && CheckQueueTarget(queue).empty())
            job.directory = SpoolDirectory(queue);
        if (!job.directory.empty() && ReadTicket(job.directory + "/c" + job.name, ticket) &&
            ticket.queue == each.queue)
            job.title = ticket.title;
        jobs.push_back(job);
    }
    return error;
}

// A job of whom its owner alone may know belongs to the queue if no other one waits there.
static WaitingJob StoredJob(const std::string &directory, const SpoolJob &each, const std::string &only) {
    WaitingJob job = {only, each.name, "", "", 0, PLACE_FILE, directory};
    JobTicket ticket;
    struct stat status;
    if (ReadTicket(directory + "/" + each.control, ticket)) {
        job.queue = ticket.queue;
        job.user = ticket.user;
        job.title = ticket.title;
    }
    if (!lstat((directory + "/" + each.data).c_str(), &status)) job.size = status.st_size;
    return job;
}

static void ListStoredJobs(std::vector<WaitingJob> &jobs) {
    std::map<std::string, std::vector<std::string>> directories;
    Queue queue;
    for (const std::string &name : FileStoreQueues()) {
        queue = Queue();
        RecordsRead(name, queue);
        queue.name = name;
        directories[FileStoreSpool(queue)].push_back(name);
    }
    for (const auto &[directory, queues] : directories) {
        if (directory.empty() || !SpoolOpen(directory, false).empty())
            continue; // nothing was ever sent there
        for (const SpoolJob &each : SpoolJobs(directory))
            if (!IsHostJob(each.name))
                jobs.push_back(StoredJob(directory, each, queues.size() == 1 ? queues.front() : ""));
    }
}

std::string ListJobs(const Host &host, std::vector<WaitingJob> &jobs) {
    std::string error = host.state == CUPS_UP ? ListCupsJobs(jobs) : "";
    if (host.state == CUPS_DOWN && !host.flStandAlone) error = host.error;
    ListStoredJobs(jobs);
    return error;
}

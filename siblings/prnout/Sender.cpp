// Detached work: delivery with retries, and the watch over the scheduler's jobs.
#include "siblings/prnout/Sender.h"

#include "print/prnoutbase.h"
#include "siblings/lib/BannerPage.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/CupsJobs.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Spool.h"
#include "siblings/prnout/Deliver.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

enum { RETRY_SECONDS = 10, WATCH_SECONDS = 2, WATCH_DOWN_SECONDS = 30 };
enum { MARK_MAX = 256 };
enum { LOCK_SECONDS = 1 }; // other programs look for a sender by its lock, and hold it for a moment then

static const char PrintedName[] = "/.printed"; // what could be printed but not removed

// ---- Processes

// Another process that does the work is no error.
static std::string Taken(const std::string &directory) {
    return errno == EWOULDBLOCK ? "" : "can't work in " + directory + ": " + strerror(errno);
}

static void Pause(const char *variable, double seconds) {
    const char *told = getenv(variable);
    double wanted = told ? atof(told) : 0;
    if (wanted >= 0.01 && wanted < seconds) seconds = wanted;
    struct timespec pause = {
        static_cast<time_t>(seconds),
        static_cast<long>((seconds - static_cast<double>(static_cast<time_t>(seconds))) * 1e9)};
    nanosleep(&pause, nullptr);
}

// ---- Sender

enum Outcome {
    JOB_DONE,  // out of the spool
    JOB_LATER, // the printer doesn't take it now
    JOB_HELD,  // it can't be printed as things are; the others go on
};

static std::string Printed; // the mark of the job that was delivered whole but is in the spool still

static std::string LoadQueues() {
    std::string error = FileStoreOpen();
    return error.empty() ? RecordsOpen() : error;
}

static int OpenData(const std::string &path, long long &size) {
    struct stat status;
    int data = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (data < 0 || (!fstat(data, &status) && S_ISREG(status.st_mode))) {
        size = data < 0 ? 0 : status.st_size;
        return data;
    }
    close(data);
    errno = EINVAL;
    return -1;
}

// Why the job's queue can't print it, or empty.
static std::string FindQueue(const JobTicket &ticket, Queue &queue) {
    std::string quoted = "queue \"" + ticket.queue + "\" ";
    if (!FileStoreHas(ticket.queue)) return quoted + "does not exist";
    if (!RecordsRead(ticket.queue, queue)) return quoted + "has no record";
    std::string error = CheckQueueTarget(queue);
    return error.empty() ? FileStoreCheck(queue) : error;
}

// Why the job can't be printed as things are, or empty. Trying again would keep all behind it from the
// printer.
static std::string FindJob(const std::string &directory, const SpoolJob &job, JobTicket &ticket,
                           Queue &queue) {
    struct stat status;
    if (!ReadTicket(directory + "/" + job.control, ticket)) return job.control + " can't be read";
    if (lstat((directory + "/" + job.data).c_str(), &status) || !S_ISREG(status.st_mode))
        return job.data + " is missing";
    std::string error = FindQueue(ticket, queue);
    // Its queue was changed, and who changed it was killed before the job went along.
    if (error.empty() && !directory.ends_with(SpoolPrinter(queue)))
        error = "queue \"" + ticket.queue + "\" has another printer now";
    return error;
}

// A later job may bear the name again, where the last number couldn't be written down.
static std::string MarkOf(const std::string &control, const SpoolJob &job) {
    struct stat status = {};
    lstat(control.c_str(), &status);
    return job.name + " " + std::to_string(status.st_ino) + " " + std::to_string(status.st_mtime) + "\n";
}

static bool WasPrinted(const std::string &directory, const std::string &mark) {
    std::string text;
    return mark == Printed ||
           (ReadWholeFile(directory + PrintedName, MARK_MAX, text).empty() && mark == text);
}

// Out of the spool. A job that is printed but can't be removed must not be printed again, not by a later
// sender either.
static Outcome EndJob(const std::string &directory, const SpoolJob &job, const std::string &mark,
                      std::string &error) {
    Printed = mark;
    error = SpoolRemove(directory, job);
    if (error.empty()) unlink((directory + PrintedName).c_str());
    if (error.empty()) return JOB_DONE;
    ReplaceFile(directory + PrintedName, mark, SPOOL_LIST_MODE); // else this sender alone knows it
    return JOB_LATER;
}

static std::string BannerFor(const Queue &queue, const SpoolJob &job, const JobTicket &ticket) {
    if (!queue.flBanner || ticket.flRaw) return "";
    Titles titles = ReadTitles(queue.banner.empty() ? RecordsBanner() : queue.banner);
    return BannerOfJob(titles, ticket.user, ticket.queue + "-" + job.name, ticket.title);
}

static std::string DeliverJob(const std::string &directory, const SpoolJob &job, const JobTicket &ticket,
                              const Queue &queue) {
    Delivery delivery;
    delivery.data = OpenData(directory + "/" + job.data, delivery.size);
    if (delivery.data < 0) return job.data + ": " + strerror(errno);
    delivery.target = QueueTarget(queue);
    delivery.user = ticket.user;
    delivery.title = ticket.title;
    delivery.number = atoi(job.name.c_str() + 1);
    delivery.banner = BannerFor(queue, job, ticket);
    delivery.control = directory + "/" + job.control;
    delivery.directory = directory;
    delivery.status = "printing " + job.name + " on " + queue.printer + "\n";
    std::string error = Deliver(delivery);
    close(delivery.data);
    return error;
}

static Outcome SendJob(const std::string &directory, const SpoolJob &job, std::string &error) {
    JobTicket ticket;
    Queue queue;
    std::string control = directory + "/" + job.control;
    // A line whose file is gone is what a removal left that was killed.
    if (access(control.c_str(), F_OK) && errno == ENOENT) {
        error = SpoolRemove(directory, job);
        return error.empty() ? JOB_DONE : JOB_HELD;
    }
    error = FindJob(directory, job, ticket, queue);
    if (!error.empty()) return JOB_HELD;
    std::string mark = MarkOf(control, job);
    if (!WasPrinted(directory, mark)) error = DeliverJob(directory, job, ticket, queue);
    if (!error.empty() && error != Cancelled) return JOB_LATER;
    return EndJob(directory, job, mark, error);
}

// The first job that isn't held, if any; held tells about the first that is.
static Outcome SendNext(const std::string &directory, std::string &held, std::string &error) {
    held.clear();
    for (const SpoolJob &job : SpoolJobs(directory)) {
        if (!IsOwnJob(job.name)) continue;
        Outcome outcome = SendJob(directory, job, error);
        if (outcome != JOB_HELD) return outcome;
        if (held.empty()) held = job.name + ": " + error;
    }
    error.clear();
    return JOB_HELD;
}

static void SendAll(const std::string &directory) {
    std::string held, error;
    for (;;) {
        error = LoadQueues();
        Outcome outcome = error.empty() ? SendNext(directory, held, error) : JOB_LATER;
        if (outcome == JOB_HELD) break;
        if (outcome == JOB_DONE) continue;
        SpoolStatus(directory, "waiting: " + error + "\n");
        Pause("PRNQ_RETRY", RETRY_SECONDS);
    }
    SpoolStatus(directory, held.empty() ? "idle\n" : "held: " + held + "\n");
}

static bool HasWork(const std::string &directory) {
    JobTicket ticket;
    Queue queue;
    std::vector<SpoolJob> jobs = SpoolJobs(directory);
    if (!LoadQueues().empty()) return false;
    return std::any_of(jobs.begin(), jobs.end(), [&](const SpoolJob &job) {
        return IsOwnJob(job.name) && FindJob(directory, job, ticket, queue).empty();
    });
}

std::string RunSender(const std::string &directory) {
    std::string error = SpoolOpen(directory, false);
    if (!error.empty()) return error;
    SpoolSweep(directory);
    do {
        FileLock lock(directory + "/.sender", LOCK_SECONDS);
        if (!lock.IsHeld()) return Taken(directory);
        SendAll(directory);
    } while (HasWork(directory)); // a job may have come in while the lock was still held
    return "";
}

// ---- Watcher

// Answers how many jobs wait, or -1 if that can't be told.
static int Watch(const std::string &directory) {
    Host host;
    size_t waiting = 0;
    RestartRunLimit();
    std::string error = HostOpen(host);
    if (error.empty() && host.state == CUPS_DOWN) error = host.error;
    if (error.empty()) error = RecordsOpen();
    if (error.empty()) error = CupsRefresh(directory, CupsSharers(host, directory), 0, "", waiting);
    if (error.empty()) return static_cast<int>(waiting);
    SpoolStatus(directory, error + "\n");
    return -1;
}

// A scheduler that was just started may know its jobs only a moment later, so one look without a job isn't
// enough.
static void WatchAll(const std::string &directory) {
    for (int empty = 0; empty < 2;) {
        if (!SpoolOpen(directory, false).empty()) return;
        int waiting = Watch(directory);
        empty = waiting ? 0 : empty + 1;
        if (empty < 2) Pause("PRNQ_WATCH", waiting < 0 ? WATCH_DOWN_SECONDS : WATCH_SECONDS);
    }
}

std::string RunWatcher(const std::string &directory) {
    std::string error = SpoolOpen(directory, false);
    if (!error.empty()) return error;
    SpoolSweep(directory);
    do {
        FileLock lock(directory + "/.watch", 0);
        if (!lock.IsHeld()) return Taken(directory);
        WatchAll(directory);
    } while (SpoolOpen(directory, false).empty() && Watch(directory) > 0);
    return "";
}

// The scheduler's jobs by lpstat, lp and cancel, and the stubs that show them.
#include "siblings/lib/CupsJobs.h"

#include "siblings/lib/Child.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Spool.h"
#include "siblings/lib/Utf8.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

enum { REFRESH_SECONDS = 60, TITLE_MAX = 240 };
static const char RefreshFile[] = "/.refresh"; // read by prndeck/core/PrdJobs.cpp

using Words = std::vector<std::string>;

static std::string ErrorOf(const Ran &ran) {
    return Succeeded(ran) ? "" : ComplaintOf(ran);
}

// ---- Commands

// "QUEUE-NUMBER USER SIZE DATE", in columns.
static bool ReadJobLine(const std::string &line, CupsJob &job) {
    size_t end = line.find(' '), dash = line.rfind('-', end);
    size_t user = line.find_first_not_of(' ', end), userEnd = line.find(' ', user);
    if (userEnd == line.npos || dash == line.npos || !dash) return false;
    job.queue = line.substr(0, dash);
    job.number = atol(line.c_str() + dash + 1);
    job.user = line.substr(user, userEnd - user);
    job.size = atoll(line.c_str() + userEnd);
    return job.number > 0;
}

std::string CupsJobs(std::vector<CupsJob> &jobs) {
    // Asked in the name of root the scheduler tells the owners, too.
    Ran ran = RunChild({"lpstat", "-U", "root", "-o"});
    std::string error = ErrorOf(ran);
    CupsJob job;
    jobs.clear();
    for (size_t at = 0, end; error.empty() && (end = ran.output.find('\n', at)) != ran.output.npos;
         at = end + 1)
        if (ReadJobLine(ran.output.substr(at, end - at), job)) jobs.push_back(job);
    std::sort(jobs.begin(), jobs.end(),
              [](const CupsJob &left, const CupsJob &right) { return left.number < right.number; });
    return error;
}

std::string CupsSend(const CupsPrint &print, long &number) {
    Words words = {"lp", "-d", print.queue, "-t", CleanUtf8(print.title, TITLE_MAX)};
    // The banner page is the queue's, so it takes a second word to leave it out.
    if (print.flRaw) words.insert(words.end(), {"-o", "raw", "-o", "job-sheets=none,none"});
    words.push_back("--");
    if (print.bannerPath) words.push_back(print.bannerPath);
    words.push_back(print.path);
    Ran ran = RunChild(words);
    // "request id is QUEUE-NUMBER (1 file(s))"
    size_t dash = ran.output.rfind('-');
    number = dash == ran.output.npos ? 0 : atol(ran.output.c_str() + dash + 1);
    return ErrorOf(ran);
}

bool CupsHasBanner(const std::string &queue) {
    return RunChild({"lpoptions", "-p", queue}).output.find("job-sheets=prnq") != std::string::npos;
}

static std::string JobWord(const CupsJob &job) {
    return job.queue + "-" + std::to_string(job.number);
}

// One by one, as the command stops at the first that it can't cancel. A job that was printed meanwhile is as
// gone as it should be.
static std::string CancelEach(const std::vector<CupsJob> &jobs) {
    std::string error;
    for (const CupsJob &job : jobs) {
        Ran ran = RunChild({"cancel", JobWord(job)});
        bool flGone = ran.errors.find("already") != ran.errors.npos;
        if (error.empty() && !flGone) error = ErrorOf(ran);
    }
    return error;
}

std::string CupsCancel(const std::vector<CupsJob> &jobs) {
    Words words = {"cancel"};
    if (jobs.empty()) return "";
    for (const CupsJob &job : jobs) words.push_back(JobWord(job));
    return ErrorOf(RunChild(words)).empty() ? "" : CancelEach(jobs);
}

// ---- Queues of a directory

std::vector<std::string> CupsSharers(const Host &host, const std::string &directory) {
    std::vector<std::string> sharers;
    Queue queue;
    for (const std::string &name : RecordsQueues())
        if (HostFind(host, name) == PLACE_CUPS && RecordsRead(name, queue) &&
            CheckQueueTarget(queue).empty() && SpoolDirectory(queue) == directory)
            sharers.push_back(name);
    return sharers;
}

bool IsQueueOf(const Words &queues, const CupsJob &job) {
    return std::find(queues.begin(), queues.end(), job.queue) != queues.end();
}

// ---- Stubs

std::string CupsJobName(long number) {
    char name[24];
    snprintf(name, sizeof name, "%05ld", number);
    return name;
}

static SpoolJob StubOf(const CupsJob &job) {
    std::string name = CupsJobName(job.number);
    return {name, "c" + name, "d" + name};
}

// A sparse file: nothing but a size.
static bool PutSize(const std::string &path, long long size) {
    struct stat status;
    int file = open(path.c_str(), O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, SPOOL_JOB_MODE);
    if (file < 0) return false;
    bool flPut = !fstat(file, &status) && S_ISREG(status.st_mode) && !ftruncate(file, size);
    close(file);
    return flPut;
}

static std::string PutStub(const std::string &directory, const CupsJob &job, const std::string &title) {
    SpoolJob stub = StubOf(job);
    JobTicket old, ticket = {HostName(), job.user, title, job.queue, false};
    bool flKnown = ReadTicket(directory + "/" + stub.control, old);
    if (title.empty()) ticket.title = flKnown ? old.title : JobWord(job);
    std::string text = TicketText(ticket, stub.data), before;
    ReadWholeFile(directory + "/" + stub.control, text.size(), before);
    std::string error;
    if (before != text) error = ReplaceFile(directory + "/" + stub.control, text, SPOOL_JOB_MODE);
    return error.empty() && !PutSize(directory + "/" + stub.data, job.size)
               ? "can't write " + directory + "/" + stub.data
               : error;
}

static bool IsStubOf(const std::vector<SpoolJob> &stubs, std::string_view file) {
    return std::any_of(stubs.begin(), stubs.end(),
                       [=](const SpoolJob &stub) { return file == stub.control || file == stub.data; });
}

static void DropStubs(const std::string &directory, const std::vector<SpoolJob> &kept) {
    DIR *files = opendir(directory.c_str());
    for (struct dirent *entry; files && (entry = readdir(files));) {
        std::string_view name = entry->d_name;
        bool flStub = (name.front() == 'c' || name.front() == 'd') && IsHostJob(name.substr(1));
        if (flStub && !IsStubOf(kept, name)) unlink((directory + "/" + entry->d_name).c_str());
    }
    if (files) closedir(files);
}

// ---- Refresh

static std::string StatusOf(const Words &queues) {
    Words words = {"lpstat"};
    for (const std::string &queue : queues) words.insert(words.end(), {"-p", queue});
    Ran ran = RunChild(words);
    std::string error = ErrorOf(ran);
    return error.empty() ? ran.output : error + "\n";
}

static std::string ShowJobs(const std::string &directory, const Words &queues,
                            const std::vector<CupsJob> &jobs, long number, const std::string &title) {
    std::vector<SpoolJob> stubs;
    std::string error;
    for (const CupsJob &job : jobs) {
        if (!IsQueueOf(queues, job)) continue;
        stubs.push_back(StubOf(job));
        if (error.empty()) error = PutStub(directory, job, job.number == number ? title : "");
    }
    // A reader that finds a line finds its files: they come first and go last.
    if (error.empty()) error = SpoolShow(directory, stubs);
    if (error.empty()) DropStubs(directory, stubs);
    // Readers tell by it how old the list is; where that fails it looks older than it is.
    if (error.empty()) utimensat(AT_FDCWD, (directory + RefreshFile).c_str(), nullptr, 0);
    return error;
}

std::string CupsRefresh(const std::string &directory, const Words &queues, long number,
                        const std::string &title, size_t &waiting) {
    FileLock lock(directory + RefreshFile, REFRESH_SECONDS);
    std::vector<CupsJob> jobs;
    std::string error = CupsJobs(jobs);
    waiting = static_cast<size_t>(
        std::count_if(jobs.begin(), jobs.end(), [&](const CupsJob &job) { return IsQueueOf(queues, job); }));
    if (error.empty())
        error = ShowJobs(directory, queues, jobs, number, title);
    else
        SpoolStatus(directory, error + "\n"); // the list is not known, so it stays
    if (!error.empty()) return error;
    if (!queues.empty()) return SpoolStatus(directory, StatusOf(queues));
    // The last queue went with its jobs; a job of the tool's own store has a status of its own.
    return SpoolJobs(directory).empty() ? SpoolStatus(directory, "idle\n") : "";
}

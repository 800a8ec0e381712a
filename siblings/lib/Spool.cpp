// Directories, lists, job files and status of the spool.
#include "siblings/lib/Spool.h"

#include "common/utils.h"
#include "print/prnoutbase.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Utf8.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

enum { QUE_MAX = 4 * 1024 * 1024, TICKET_MAX = 8192, NUMBER_MAX = 99999, DIRECTORY_MODE = 0755 };
enum { NEW_NAME_LETTERS = 6, NEW_NAME_SECONDS = 60 };
enum { TICKET_TITLE_MAX = 240, JOB_NAME_MAX = 200, COPY_SIZE = 65536 };

static const char SpoolRoot[] = "/var/spool/Tarvo";

static std::string Failed(const Sentence &sentence, const std::string &path) {
    return Say(sentence, path, std::string(strerror(errno)));
}

// ---- Directories

static std::string Root() {
    const char *root = getenv("PRNQ_SPOOL");
    return root && *root == '/' ? root : SpoolRoot;
}

// A device is a path of its own below the tool's directory, or, for a queue without user interface, a single
// name.
static std::string PrinterPath(const Queue &queue) {
    bool flFlat = IsDeviceType(queue.type) && !queue.flUserInterface;
    return flFlat ? GenDirName(queue.printer.c_str()) : queue.printer;
}

// The components of a path; false if one of them leads upwards or nowhere.
static bool SplitPath(std::string_view path, std::vector<std::string> &parts) {
    while (!path.empty()) {
        std::string_view part = path.substr(0, path.find('/'));
        path.remove_prefix(std::min(path.size(), part.size() + 1));
        if (part == "." || part == ".." || part.size() > NAME_MAX) return false;
        if (!part.empty()) parts.emplace_back(part);
    }
    return true;
}

std::string SpoolPrinter(const Queue &queue) {
    std::vector<std::string> parts;
    std::string printer;
    if (!SplitPath(PrinterPath(queue), parts)) return "";
    for (const std::string &part : parts) printer += "/" + part;
    return printer;
}

std::string SpoolDirectory(const Queue &queue) {
    const char *tool = strrchr(pToolPath, '/');
    std::string printer = SpoolPrinter(queue);
    return printer.empty() ? "" : Root() + "/" + (tool ? tool + 1 : pToolPath) + printer;
}

// Opens one component below the directory, which it closes.
static int EnterPart(int directory, const std::string &part, bool flMake) {
    if (flMake && mkdirat(directory, part.c_str(), DIRECTORY_MODE) && errno != EEXIST) {
        int reason = errno;
        close(directory);
        errno = reason;
        return -1;
    }
    int next = openat(directory, part.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    int reason = errno;
    close(directory);
    errno = reason;
    return next;
}

static bool IsOurs(int directory) {
    struct stat status;
    return !fstat(directory, &status) && (status.st_uid == 0 || status.st_uid == geteuid()) &&
           !(status.st_mode & (S_IWGRP | S_IWOTH));
}

std::string SpoolOpen(const std::string &directory, bool flMake) {
    std::string root = Root(), parent = root.substr(0, root.rfind('/')) + "/";
    std::vector<std::string> parts;
    bool flBelow = directory.starts_with(root + "/") && SplitPath(directory.substr(parent.size()), parts);
    errno = EINVAL;
    if (!flBelow) return Say(SaySpoolNoDirectory, directory);
    int file = open(parent.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (const std::string &part : parts) {
        if (file >= 0) file = EnterPart(file, part, flMake);
        if (file < 0) return Failed(SaySpoolCantOpen, directory);
        if (IsOurs(file)) continue;
        close(file);
        errno = EPERM;
        return Say(SaySpoolOpenToOthers, directory, part);
    }
    close(file);
    return "";
}

bool MayWriteSpool(const std::string &directory) {
    return !access(directory.c_str(), W_OK);
}

// ---- Names

static bool IsNumber(std::string_view text) {
    return !text.empty() && text.size() <= 10 &&
           std::all_of(text.begin(), text.end(), [](char byte) { return byte >= '0' && byte <= '9'; });
}

bool IsHostJob(std::string_view name) {
    return IsNumber(name);
}

bool IsOwnJob(std::string_view name) {
    return name.starts_with('A') && IsNumber(name.substr(1));
}

bool IsJobName(std::string_view name) {
    return !name.empty() && name.size() <= JOB_NAME_MAX && name.front() != '.' &&
           std::all_of(name.begin(), name.end(), [](char byte) {
               return static_cast<unsigned char>(byte) > ' ' && byte != 127 && byte != '/';
           });
}

// ---- The list

static std::string ListText(const std::string &directory) {
    std::string text;
    // A missing list is an empty one.
    if (!ReadWholeFile(directory + "/.q", QUE_MAX, text).empty()) return "";
    return text;
}

// The words of a job's line, false for any other line.
static bool ReadLine(std::string_view line, SpoolJob &job) {
    size_t blank = line.find(' ');
    if (blank == line.npos) return false;
    job = {std::string(line.substr(1, blank - 1)), std::string(line.substr(0, blank)),
           std::string(line.substr(blank + 1))};
    bool flControl = line.starts_with('c') || line.starts_with('C');
    return flControl && IsJobName(job.name) && IsJobName(job.data);
}

static std::vector<std::string> Lines(const std::string &text) {
    std::vector<std::string> lines;
    for (size_t at = 0, end; (end = text.find('\n', at)) != text.npos; at = end + 1)
        lines.push_back(text.substr(at, end - at));
    return lines;
}

std::vector<SpoolJob> SpoolJobs(const std::string &directory) {
    std::vector<SpoolJob> jobs;
    SpoolJob job;
    for (const std::string &line : Lines(ListText(directory)))
        if (ReadLine(line, job)) jobs.push_back(job);
    return jobs;
}

std::string SpoolShow(const std::string &directory, const std::vector<SpoolJob> &jobs) {
    FileLock lock(directory + "/.qlock", SPOOL_LOCK_SECONDS, 0666);
    int flLocked = SetQueLockState(directory.c_str(), 1);
    std::string before = ListText(directory), after, error;
    SpoolJob job;
    for (const std::string &line : Lines(before))
        if (!ReadLine(line, job) || !IsHostJob(job.name)) after += line + "\n";
    for (const SpoolJob &each : jobs) after += each.control + " " + each.data + "\n";
    if (before != after) error = ReplaceFile(directory + "/.q", after, SPOOL_LIST_MODE);
    if (flLocked) SetQueLockState(directory.c_str(), 0);
    return error;
}

std::string SpoolStatus(const std::string &directory, std::string_view text) {
    std::string path = directory + "/.status", before, after(text.substr(0, SPOOL_TEXT_MAX));
    if (ReadWholeFile(path, SPOOL_TEXT_MAX + 1, before).empty() && before == after) return "";
    return ReplaceFile(path, after, SPOOL_LIST_MODE);
}

// ---- Tickets

std::string UserName() {
    const struct passwd *entry = getpwuid(getuid());
    return entry && entry->pw_name && *entry->pw_name ? entry->pw_name
                                                      : "uid" + std::to_string(static_cast<long>(getuid()));
}

std::string HostName() {
    char name[256] = "";
    if (gethostname(name, sizeof name - 1)) return "localhost";
    std::string host = name;
    std::erase_if(
        host, [](char byte) { return !isalnum(static_cast<unsigned char>(byte)) && !strchr("._-", byte); });
    return host.empty() ? "localhost" : host;
}

// One word: the job monitor takes the fourth word of the file for the owner.
static std::string OneWord(std::string text) {
    for (char &byte : text)
        if (static_cast<unsigned char>(byte) <= ' ' || byte == 127) byte = '_';
    return text.empty() ? "-" : text;
}

std::string TicketText(const JobTicket &ticket, std::string_view data) {
    std::string text = "H " + OneWord(ticket.host) + "\nP " + OneWord(ticket.user) + "\n";
    text += "J " + CleanUtf8(ticket.title, TICKET_TITLE_MAX) + "\n";
    text += "f" + std::string(data) + "\nQ " + OneWord(ticket.queue) + "\n";
    return text + (ticket.flRaw ? "R\n" : "");
}

bool ReadTicket(const std::string &path, JobTicket &ticket) {
    std::string text;
    ticket = JobTicket();
    if (!ReadWholeFile(path, TICKET_MAX, text).empty()) return false;
    for (const std::string &line : Lines(text)) {
        std::string value = line.size() > 2 ? line.substr(2) : "";
        switch (line.empty() ? 0 : line[0]) {
        case 'H': ticket.host = value; break;
        case 'P': ticket.user = value; break;
        case 'J': ticket.title = value; break;
        case 'Q': ticket.queue = value; break;
        case 'R': ticket.flRaw = true; break;
        default: break; // lines of others
        }
    }
    return !ticket.queue.empty();
}

// ---- Jobs of the tool's own store

// Numbers go on from job to job: one that is asked for late must not meet another job.
static int NextNumber(const std::string &directory) {
    std::string text;
    FileLock lock(directory + "/.lastlock", SPOOL_LOCK_SECONDS);
    if (!ReadWholeFile(directory + "/.last", 16, text).empty()) text = "0";
    int number = atoi(text.c_str());
    number = number < 0 || number >= NUMBER_MAX ? 1 : number + 1;
    ReplaceFile(directory + "/.last", std::to_string(number) + "\n", SPOOL_LIST_MODE);
    return number;
}

static int MakeJobFile(const std::string &path) {
    return open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, SPOOL_JOB_MODE);
}

static bool CopyAll(int from, int to) {
    static char buffer[COPY_SIZE];
    ssize_t count;
    while ((count = read(from, buffer, sizeof buffer)) > 0 || (count < 0 && errno == EINTR))
        if (count > 0 && !WriteAll(to, std::string_view(buffer, static_cast<size_t>(count)))) return false;
    return count == 0;
}

// The bytes of a new job file must have reached the disk.
static std::string EndJobFile(int file, bool flWritten, const std::string &path) {
    if (flWritten && !fsync(file)) return "";
    std::string error = Failed(SayCantWrite, path);
    unlink(path.c_str());
    return error;
}

static std::string WriteJob(const std::string &directory, const SpoolJob &job, const JobTicket &ticket,
                            int data, int file) {
    std::string dataPath = directory + "/" + job.data;
    std::string error = EndJobFile(data, CopyAll(file, data), dataPath);
    if (!error.empty()) return error;
    // Its name comes last: a control file is a whole one.
    std::string control = directory + "/" + job.control;
    error = PrepareFile(control, TicketText(ticket, job.data), SPOOL_JOB_MODE);
    if (error.empty()) error = CommitFile(control);
    if (!error.empty()) unlink(dataPath.c_str());
    return error;
}

static bool IsListed(const std::string &directory, const std::string &name) {
    std::vector<SpoolJob> jobs = SpoolJobs(directory);
    return std::any_of(jobs.begin(), jobs.end(), [&](const SpoolJob &job) { return job.name == name; });
}

static bool IsUnlinked(int file) {
    struct stat status;
    return fstat(file, &status) || !status.st_nlink;
}

// The data file is locked until its job has a line, so that a sweep leaves it. A sweep may have been faster:
// then the file has no name any more.
static int MakeDataFile(const std::string &path) {
    int file = MakeJobFile(path);
    if (file < 0) return -1;
    int status = flock(file, LOCK_EX);
    if (!status && !IsUnlinked(file)) return file;
    int reason = status ? errno : EEXIST;
    if (status) unlink(path.c_str());
    close(file);
    errno = reason;
    return -1;
}

// A name that nobody has, and its data file; -1 without one.
static int TakeName(const std::string &directory, SpoolJob &job) {
    char name[16];
    for (int tries = 0; tries < NUMBER_MAX; tries++) {
        snprintf(name, sizeof name, "A%05d", NextNumber(directory));
        job = {name, std::string("c") + name, std::string("d") + name};
        if (!access((directory + "/" + job.control).c_str(), F_OK) || IsListed(directory, name)) continue;
        int data = MakeDataFile(directory + "/" + job.data);
        if (data >= 0 || errno != EEXIST) return data;
    }
    return -1;
}

static void Sync(const std::string &path) {
    int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return;
    fsync(file);
    close(file);
}

// The base layer waits for ever for a lock that can't be had, and a job that nobody lists isn't printed.
static std::string TryList(const std::string &directory) {
    std::string path = directory + "/.qlock";
    FileLock lock(path, SPOOL_LOCK_SECONDS, 0666);
    bool flLocked = SetQueLockState(directory.c_str(), 1) && SetQueLockState(directory.c_str(), 0);
    return flLocked ? "" : Failed(SayCantWrite, path);
}

std::string SpoolAdd(const std::string &directory, const JobTicket &ticket, int file, std::string &name) {
    SpoolJob job;
    int data = TakeName(directory, job);
    if (data < 0) return Failed(SayCantWrite, directory);
    std::string error = TryList(directory);
    if (!error.empty())
        unlink((directory + "/" + job.data).c_str());
    else
        error = WriteJob(directory, job, ticket, data, file);
    if (error.empty()) AddJobToQue(directory.c_str(), job.control.c_str(), job.data.c_str());
    close(data);
    if (!error.empty()) return error;
    // A job that was taken must outlast a host that is switched off: its line and its names, too.
    Sync(directory + "/.q");
    Sync(directory);
    name = job.name;
    // A job without a line but with a control file wasn't taken; one without either is printed already.
    if (IsListed(directory, name) || access((directory + "/" + job.control).c_str(), F_OK)) return "";
    SpoolRemove(directory, job);
    return Say(SaySpoolCantList, directory);
}

static std::string RemoveFile(const std::string &path) {
    return !unlink(path.c_str()) || errno == ENOENT ? "" : Failed(SayCantRemove, path);
}

std::string SpoolRemove(const std::string &directory, const SpoolJob &job) {
    std::string error = RemoveFile(directory + "/" + job.control);
    Sync(directory); // a job that is gone must not come back where a host is switched off
    if (error.empty()) error = RemoveFile(directory + "/" + job.data);
    if (error.empty()) DeleteJobFromQue(directory.c_str(), job.control.c_str(), 0);
    return error;
}

// ---- The jobs of one queue

// A job's ticket, if it is one of the tool's own store and the queue's.
static bool ReadJobOf(const std::string &directory, const SpoolJob &job, const std::string &queue,
                      JobTicket &ticket) {
    bool flOurs = IsOwnJob(job.name) && ReadTicket(directory + "/" + job.control, ticket);
    return flOurs && ticket.queue == queue;
}

// A directory that isn't there has no jobs. Answers an empty text, or what is wrong with it.
static std::string JobsOf(const std::string &directory, std::vector<SpoolJob> &jobs) {
    struct stat status;
    if (directory.empty() || lstat(directory.c_str(), &status)) return "";
    std::string error = SpoolOpen(directory, false);
    if (error.empty()) jobs = SpoolJobs(directory);
    return error;
}

std::string SpoolRemoveQueue(const std::string &directory, const std::string &queue) {
    std::vector<SpoolJob> jobs;
    JobTicket ticket;
    std::string error = JobsOf(directory, jobs);
    for (const SpoolJob &job : jobs)
        if (error.empty() && ReadJobOf(directory, job, queue, ticket)) error = SpoolRemove(directory, job);
    return error;
}

bool IsSpoolPrinting(const std::string &directory) {
    std::string status;
    if (!ReadWholeFile(directory + "/.status", SPOOL_TEXT_MAX, status).empty()) return false;
    FileLock lock(directory + "/.sender", 0);
    return !lock.IsHeld() && status.starts_with("printing");
}

// The copy is on the disk before the job goes: a cut in between leaves it twice, never lost.
static std::string MoveJob(const std::string &from, const std::string &to, const SpoolJob &job,
                           const JobTicket &ticket) {
    std::string data = from + "/" + job.data, name;
    int file = open(data.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return Failed(SayCantOpen, data);
    std::string error = SpoolAdd(to, ticket, file, name);
    close(file);
    return error.empty() ? SpoolRemove(from, job) : error;
}

std::string SpoolMoveQueue(const std::string &from, const std::string &to, const std::string &queue) {
    std::vector<SpoolJob> jobs;
    JobTicket ticket;
    std::string error = JobsOf(from, jobs);
    if (error.empty() && !jobs.empty()) error = SpoolOpen(to, true);
    for (const SpoolJob &job : jobs)
        if (error.empty() && ReadJobOf(from, job, queue, ticket)) error = MoveJob(from, to, job, ticket);
    return error;
}

// ---- What killed programs left

static bool IsMissing(const std::string &path) {
    return access(path.c_str(), F_OK) && errno == ENOENT;
}

// Nobody who may have the job in hand is left once the lock is free: who copies has it until the job has its
// line, and one with a line is the sender's. A control file without a line is that of a whole job whose line
// didn't reach the disk.
static void SweepJob(const std::string &directory, const std::string &name) {
    std::string data = directory + "/d" + name, control = directory + "/c" + name;
    int file = open(data.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) return;
    bool flFree = !flock(file, LOCK_EX | LOCK_NB) && !IsListed(directory, name) && !IsUnlinked(file);
    if (flFree && !IsMissing(control)) {
        AddJobToQue(directory.c_str(), ("c" + name).c_str(), ("d" + name).c_str());
    } else if (flFree) {
        DropFile(control);
        unlink(data.c_str());
    }
    close(file);
}

// The new file beside ".q", ".status", ".last" or a control file, "NAME.XXXXXX", which a rename never
// reached.
static bool IsNewName(std::string_view name) {
    static constexpr std::string_view Old[] = {".q", ".status", ".last"};
    size_t dot = name.rfind('.');
    if (dot == name.npos || name.size() - dot - 1 != NEW_NAME_LETTERS) return false;
    name = name.substr(0, dot);
    return std::find(std::begin(Old), std::end(Old), name) != std::end(Old) ||
           (name.starts_with('c') && IsHostJob(name.substr(1)));
}

// Whoever writes one renames it within moments.
static void SweepNew(const std::string &path) {
    struct stat status;
    bool flOld = !lstat(path.c_str(), &status) && S_ISREG(status.st_mode) &&
                 time(nullptr) - status.st_mtime > NEW_NAME_SECONDS;
    if (flOld) unlink(path.c_str());
}

void SpoolSweep(const std::string &directory) {
    std::vector<std::string> jobs;
    DIR *entries = opendir(directory.c_str());
    if (!entries) return;
    while (const struct dirent *entry = readdir(entries)) {
        std::string_view name = entry->d_name;
        if (name.starts_with('d') && IsOwnJob(name.substr(1)))
            jobs.emplace_back(name.substr(1));
        else if (IsNewName(name))
            SweepNew(directory + "/" + entry->d_name);
    }
    closedir(entries);
    std::sort(jobs.begin(), jobs.end());
    for (const std::string &name : jobs) SweepJob(directory, name);
}

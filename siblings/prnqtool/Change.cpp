// Lock, look, prepare, commit; batches, and what killed ones left.
#include "siblings/prnqtool/Change.h"

#include "common/Dbm.h"
#include "common/Words.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Frame.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Say.h"
#include "siblings/prnqtool/Banners.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

enum { BATCH_MAX = 4 * 1024 * 1024, BATCH_MODE = 0600 };

static const char LockPath[] = "db/.prnq_lock";
static const char BatchPath[] = "db/.prnq_batch";

using Names = std::vector<std::string>;

Host TheHost;

static bool flBatch, flDry;
static bool flBegun, flPrepared; // of a batch
static Names BatchNames, NewNames;
static Sequel Next, Pending; // of the change under way, and of those that stand

// ---- Values of one queue

Titles TitlesOf(const Queue &queue, const std::string &systemBanner) {
    return ReadTitles(queue.banner.empty() ? systemBanner : queue.banner);
}

bool IsSound(const Queue &queue) {
    return CheckQueueTarget(queue).empty();
}

std::string FollowDefault(const std::string &before, const std::string &now, bool flAsked) {
    if ((before == now && !flAsked) || TheHost.state != CUPS_UP) return "";
    if (HostFind(TheHost, now) == PLACE_CUPS) return CupsSetDefault(now);
    bool flOwned = !before.empty() && HostFind(TheHost, before) == PLACE_CUPS && CupsDefault() == before;
    return flOwned ? CupsClearDefault() : "";
}

// ---- What a batch has in hand

static void FindNewNames() {
    for (const std::string &name : BatchNames)
        if (HostFind(TheHost, name) == PLACE_NONE && !RecordsHave(name)) NewNames.push_back(name);
}

// Queues that come to be: without the batch's records they would be nobody's.
static std::string NoteNewQueues() {
    std::string text;
    for (const std::string &name : NewNames) text += "new " + name + "\n";
    std::string error = PrepareFile(BatchPath, text, BATCH_MODE);
    return error.empty() ? CommitFile(BatchPath) : error;
}

// Queues that are there: the scheduler's part goes back to what the record says, if there is one.
static std::string NoteOldQueues(const Names &queues) {
    std::string text;
    for (const std::string &name : queues)
        if (HostFind(TheHost, name) == PLACE_CUPS) text += "old " + name + "\n";
    if (text.empty()) return "";
    int file = open(BatchPath, O_WRONLY | O_APPEND | O_NOFOLLOW | O_CLOEXEC);
    bool flWritten = file >= 0 && WriteAll(file, text) && !fdatasync(file);
    int reason = errno;
    if (file >= 0) close(file);
    return flWritten ? "" : Say(SayCantWrite, std::string(BatchPath), std::string(strerror(reason)));
}

static void RestoreQueue(const std::string &name, bool flNew) {
    bool flTouched;
    Queue queue;
    bool flRecord = RecordsRead(name, queue), flThere = HostFind(TheHost, name) == PLACE_CUPS;
    std::string error;
    if (flThere && flNew && !flRecord) {
        error = CupsDelete(name);
        if (error.empty()) HostForget(TheHost, name);
    } else if (flThere && !flNew && flRecord && IsSound(queue)) {
        error = CupsReplace(queue, TitlesOf(queue, RecordsBanner()), flTouched);
    } else if (!flNew && flRecord && HostFind(TheHost, name) == PLACE_NONE) {
        RecordsDelete(name);
    }
    if (!error.empty()) TellUser(Say(SayQueueNotChanged, name, error));
    RestartRunLimit();
    LimitRun();
}

// The records are as they were before the batch, or as a batch left them that came to its end.
static std::string RestoreBatch() {
    std::string text;
    Names names;
    if (access(BatchPath, F_OK) || TheHost.state != CUPS_UP) return "";
    // Others may write in this directory, and what stands in the file can cost queues.
    if (!ReadOwnFile(BatchPath, BATCH_MAX, text)) {
        unlink(BatchPath);
        return "";
    }
    std::string error;
    std::string_view rest(text);
    for (std::string_view line; error.empty() && TakePlainLine(rest, line);) {
        std::string name(line.substr(std::min<size_t>(line.size(), 4)));
        if (!CheckHostQueueName(name).empty()) continue;
        RestoreQueue(name, line.starts_with("new "));
        names.push_back(name);
    }
    std::string standard = RecordsDefault();
    if (error.empty() && HostFind(TheHost, standard) == PLACE_CUPS) error = CupsSetDefault(standard);
    if (error.empty() && standard.empty() && std::count(names.begin(), names.end(), CupsDefault()))
        error = CupsClearDefault();
    if (error.empty()) error = RecordsPrepare();
    if (error.empty()) error = RecordsCommit();
    if (error.empty()) RecordsMark();
    if (error.empty()) unlink(BatchPath);
    if (error.empty() && !names.empty()) TellUser(Say(SayBatchRestored));
    return error;
}

// ---- One change

// A key that interrupts the caller's terminal must not part the host from the records.
static void HoldSignals() {
    sigset_t held;
    sigemptyset(&held);
    for (int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP}) sigaddset(&held, number);
    sigprocmask(SIG_BLOCK, &held, nullptr);
}

static std::string MakeDatabaseDirectory() {
    if (mkdir("db", DbmDirectoryMode()) && errno != EEXIST) return "can't make the directory db";
    return "";
}

static std::string Look() {
    std::string error = HostOpen(TheHost);
    if (error.empty()) error = RecordsOpen();
    flBegun = flBatch && error.empty();
    return error;
}

std::string BeginChange() {
    if (flBegun) return "";
    if (flDry) return Look();
    std::string error = MakeDatabaseDirectory();
    if (error.empty()) error = TakeLock(LockPath, ChildLimit());
    if (error.empty()) error = RecordsLock(ChildLimit());
    if (error.empty()) error = Look();
    HoldSignals();
    if (error.empty()) SettleLeftJobs();
    if (error.empty()) error = RestoreBatch();
    if (error.empty()) FindNewNames();
    return error;
}

static std::string PrepareFiles() {
    std::string error = RecordsPrepare();
    if (error.empty()) error = FileStorePrepare();
    if (!error.empty()) RecordsDrop();
    return error;
}

std::string PrepareChange(const Names &queues, const Sequel &sequel) {
    Next = sequel;
    if (flDry) return "";
    std::string error = flPrepared ? "" : PrepareFiles();
    if (error.empty() && !flBatch) error = NoteJobs(sequel.spooled);
    if (!error.empty()) return error;
    // Queues that a killed run left behind would be found by everybody; the host answers, or this is not
    // reached.
    for (const std::string &name : TheHost.leftovers) CupsDelete(name);
    TheHost.leftovers.clear();
    bool flNoted = flBatch && TheHost.state == CUPS_UP;
    if (flNoted && !flPrepared) error = NoteNewQueues();
    flPrepared = flBatch && error.empty();
    return flNoted && error.empty() ? NoteOldQueues(queues) : error;
}

// ---- What follows

static void Append(Names &names, const Names &more) {
    names.insert(names.end(), more.begin(), more.end());
}

static void FollowJobs(const JobNote &note) {
    Queue queue;
    RecordsRead(note.queue, queue);
    queue.name = note.queue;
    if (note.flMove && FileStoreHas(note.queue))
        MoveSpooled(note.queue, note.directory, FileStoreSpool(queue));
    else
        DropSpooled(note.queue, note.directory);
}

// The change stands: jobs that stay are no reason to refuse it.
static void Follow() {
    for (const std::string &name : Pending.cancelled) {
        std::string error = HostFind(TheHost, name) == PLACE_CUPS ? CupsCancelAll(name) : "";
        if (!error.empty()) TellUser(Say(SayJobsStay, name, error));
    }
    for (const JobNote &note : Pending.spooled) FollowJobs(note);
    ForgetJobs();
    SettleBanners(TheHost, Pending.banners);
}

static std::string WriteChange() {
    std::string error = FileStoreCommit();
    return error.empty() ? RecordsCommit() : error;
}

std::string CommitChange() {
    std::string error = flBatch ? "" : WriteChange();
    if (!error.empty()) return error;
    Pending.spooled.insert(Pending.spooled.end(), Next.spooled.begin(), Next.spooled.end());
    Append(Pending.cancelled, Next.cancelled);
    Append(Pending.banners, Next.banners);
    if (!flBatch) {
        Follow();
        return "";
    }
    RecordsMark();
    FileStoreMark();
    // There is work as long as the host takes it.
    RestartRunLimit();
    LimitRun();
    return "";
}

void DropChange() {
    if (flBatch) {
        RecordsRevert();
        FileStoreRevert();
        return;
    }
    ForgetJobs();
    FileStoreDrop();
    RecordsDrop();
}

// ---- Batches

void OnlyPretend() {
    flBatch = flDry = true;
    CupsPretend();
}

void BeginBatch(const Names &names) {
    flBatch = true;
    BatchNames = names;
}

std::string EndBatch() {
    if (!flPrepared) return ""; // nothing has changed
    std::string error = PrepareFiles();
    if (error.empty()) error = NoteJobs(Pending.spooled);
    if (error.empty()) error = WriteChange();
    if (error.empty()) {
        // What a scheduler that no longer answers makes of the last words to it is seen next time.
        if (TheHost.state != CUPS_DOWN) unlink(BatchPath);
        Follow();
        return "";
    }
    ForgetJobs();
    FileStoreDrop();
    RecordsDrop();
    // The host goes back to what the disk has.
    std::string lost = FileStoreOpen();
    if (lost.empty()) lost = RecordsOpen();
    if (lost.empty()) lost = RestoreBatch();
    if (!lost.empty()) TellUser(lost);
    return error;
}

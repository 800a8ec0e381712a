// The commands: add, copy, modify, delete, default banner, list.
#include "siblings/prnqtool/Commands.h"

#include "common/utils.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Host.h"
#include "siblings/lib/Ppd.h"
#include "siblings/lib/Queue.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Spool.h"
#include "siblings/prnqtool/Banners.h"
#include "siblings/prnqtool/JobNotes.h"
#include "siblings/prnqtool/List.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

static const char LockPath[] = "db/.prnq_lock";

static Host TheHost; // what the host told at the start of this run

static int Tell(const std::string &error) {
    if (error.empty()) return 0;
    TellUser(error);
    return 1;
}

// ---- Frame of a change

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

static std::string BeginChange() {
    std::string error = MakeDatabaseDirectory();
    if (error.empty()) error = TakeLock(LockPath, ChildLimit());
    if (error.empty()) error = RecordsLock(ChildLimit());
    if (error.empty()) error = HostOpen(TheHost);
    if (error.empty()) error = RecordsOpen();
    HoldSignals();
    if (error.empty()) SettleLeftJobs();
    return error;
}

static std::string PrepareChange() {
    std::string error = RecordsPrepare();
    if (error.empty()) error = FileStorePrepare();
    if (!error.empty()) RecordsDrop();
    // Queues that a killed run left behind would be found by everybody; the host answers, or this is not
    // reached.
    for (const std::string &name : TheHost.leftovers) CupsDelete(name);
    return error;
}

static std::string CommitChange() {
    std::string error = FileStoreCommit();
    return error.empty() ? RecordsCommit() : error;
}

static void DropChange() {
    ForgetJobs();
    FileStoreDrop();
    RecordsDrop();
}

// ---- Values of one queue

static Titles TitlesOf(const Queue &queue, const std::string &systemBanner) {
    return ReadTitles(queue.banner.empty() ? systemBanner : queue.banner);
}

// The database is open to everybody: a queue read from it goes back to the host only if it could have been
// made so.
static bool IsSound(const Queue &queue) {
    return CheckQueueTarget(queue).empty();
}

static std::string ReadText(const std::string &path, size_t limit, std::string &text) {
    std::string error = ReadWholeFile(path, limit, text);
    if (error.empty() && text.find('\0') != text.npos) return Say(SayFileNoText, path);
    return error;
}

// A settings file is named in every add line, whether the front end has left one or not.
static std::string ReadSettings(const Options &options, Queue &queue) {
    if (options.settings.empty()) return "";
    if (access(options.settings.c_str(), F_OK) && errno == ENOENT) return "";
    return ReadText(options.settings, SETTINGS_MAX, queue.settings);
}

static std::string ReadBanner(const Options &options, std::string &banner) {
    if (options.banner.empty()) return "";
    std::string error = ReadText(options.banner, BANNER_MAX, banner);
    return error.empty() && !HasTitle(banner) ? Say(SayFileNoTitle, options.banner) : error;
}

static std::string ReadTarget(const Options &options, Queue &queue) {
    std::string model = options.model.empty() ? PMs[PM_HOST] : options.model;
    auto word = std::find(std::begin(PMs), std::end(PMs), model);
    if (word == std::end(PMs)) return Say(SayModelUnknown, model.substr(0, 80));
    queue.name = options.queues.front();
    queue.type = GetQueueType(static_cast<int>(word - std::begin(PMs)),
                              options.flDevice ? CONNECTION_DEVICE : CONNECTION_TCP);
    queue.printer = options.flDevice ? options.device : options.host;
    queue.remote = options.flRemote ? options.remote : "lp";
    queue.flDefault = options.flDefault;
    if (queue.type == QUEUE_SERVER && options.flDevice) return Say(SayServerByHost);
    if (queue.type == QUEUE_SERVER && !options.flRemote) return Say(SayServerNoQueue);
    return CheckQueueName(queue.name);
}

static std::string CheckPpdFile(const Queue &queue) {
    std::string_view text;
    std::string error = CheckQueueTarget(queue);
    return error.empty() ? ReadPpdFile(queue.ppd, text) : error;
}

static std::string CheckCase(const std::string &name) {
    for (const std::string &other : HostQueues(TheHost))
        if (DiffersByCase(name, other)) return Say(SayNameByCase, name, other);
    return "";
}

// ---- The default queue

// The host's default follows the record: it names the queue, or nothing if the queue is none of the
// scheduler's. If the user asks for it, flAsked, the host is told even if the record says so already:
// somebody else may have changed it.
static std::string FollowDefault(const std::string &before, const std::string &now, bool flAsked) {
    if ((before == now && !flAsked) || TheHost.state != CUPS_UP) return "";
    if (HostFind(TheHost, now) == PLACE_CUPS) return CupsSetDefault(now);
    bool flOwned = !before.empty() && HostFind(TheHost, before) == PLACE_CUPS && CupsDefault() == before;
    return flOwned ? CupsClearDefault() : "";
}

// ---- Add, copy

// Where the jobs of a queue of the tool's own store wait.
static std::string SpoolOf(const std::string &name) {
    Queue queue;
    RecordsRead(name, queue);
    queue.name = name;
    return FileStoreSpool(queue);
}

struct Put {
    Queue queue, old;
    std::string spool; // of the old queue in the tool's own store
    Place place;
    bool flOnHost;      // the host has a queue of this name
    bool flRecorded;    // and it has records
    bool flTouched;     // the host has changed
    std::string before; // default queue
};

static std::string PutOnHost(Put &put) {
    if (put.place == PLACE_FILE) return "";
    Titles titles = TitlesOf(put.queue, RecordsBanner());
    std::string error;
    if (put.flOnHost)
        error = CupsReplace(put.queue, titles, put.flTouched);
    else {
        error = CupsAdd(put.queue, titles);
        put.flTouched = error.empty();
        if (put.flTouched) TheHost.queues.push_back(put.queue.name);
    }
    return error;
}

static void UndoPut(const Put &put) {
    bool flAgain;
    if (put.place == PLACE_CUPS && put.flTouched) {
        if (!put.flOnHost)
            CupsDelete(put.queue.name);
        else if (put.flRecorded && IsSound(put.old))
            CupsReplace(put.old, TitlesOf(put.old, RecordsBanner()), flAgain);
    }
    FollowDefault(RecordsDefault(), put.before, false);
}

// The jobs that wait were meant for what was there before. The queue stands: a job that stays is no reason to
// refuse.
static void DropJobs(const Put &put) {
    const std::string &name = put.queue.name;
    std::string error = put.place == PLACE_CUPS ? CupsCancelAll(name) : "";
    if (!error.empty()) TellUser(Say(SayJobsStay, name, error));
    if (put.place == PLACE_FILE) DropSpooled(name, put.spool);
    ForgetJobs();
}

static std::string FinishPut(Put &put) {
    std::string error = PrepareChange();
    if (!error.empty()) return error;
    error = PutOnHost(put);
    if (error.empty()) error = FollowDefault(put.before, RecordsDefault(), put.queue.flDefault);
    bool flSpooled = put.flOnHost && put.place == PLACE_FILE;
    if (error.empty() && flSpooled) error = NoteJobs({{put.queue.name, put.spool, false}});
    if (error.empty()) error = CommitChange();
    if (error.empty()) {
        if (put.flOnHost) DropJobs(put);
        SettleBanners(TheHost, {put.queue.name});
        return "";
    }
    UndoPut(put);
    DropChange();
    return Say(put.flOnHost ? SayQueueNotReplaced : SayQueueNotMade, put.queue.name, error);
}

static std::string PutQueue(const Queue &queue) {
    Put put = {.queue = queue,
               .old = {},
               .spool = SpoolOf(queue.name),
               .place = HostFind(TheHost, queue.name),
               .flOnHost = false,
               .flRecorded = false,
               .flTouched = false,
               .before = RecordsDefault()};
    // Where the tool's own store is wanted, a scheduler that is down has no say.
    if (put.place == PLACE_UNKNOWN && TheHost.flStandAlone) put.place = PLACE_NONE;
    if (put.place == PLACE_UNKNOWN) return TheHost.error;
    std::string error = CheckCase(queue.name);
    if (!error.empty()) return error;
    put.flOnHost = put.place != PLACE_NONE;
    if (!put.flOnHost) put.place = HostChoose(TheHost, error);
    if (put.place == PLACE_UNKNOWN) return error;
    put.flRecorded = RecordsRead(queue.name, put.old);
    RecordsPut(queue);
    if (put.place == PLACE_FILE) FileStorePut(queue);
    return FinishPut(put);
}

static std::string AddQueue(const Options &options) {
    Queue queue;
    queue.ppd = options.ppd;
    queue.flBanner = options.flBanner;
    queue.flFeatures = options.flFeatures;
    queue.flUserInterface = options.flUserInterface;
    queue.flLpd = options.flLpd;
    std::string error = ReadTarget(options, queue);
    if (error.empty()) error = CheckPpdFile(queue);
    if (error.empty()) error = ReadSettings(options, queue);
    if (error.empty()) error = ReadBanner(options, queue.banner);
    if (error.empty()) error = BeginChange();
    return error.empty() ? PutQueue(queue) : error;
}

static std::string CopyQueue(const Options &options) {
    Queue target, queue;
    std::string error = ReadTarget(options, target);
    if (error.empty()) error = CheckHostQueueName(options.source);
    if (error.empty()) error = BeginChange();
    if (!error.empty()) return error;
    if (!RecordsRead(options.source, queue)) return Say(SayQueueNoCopy, options.source);
    queue.name = target.name;
    queue.type = target.type;
    queue.printer = target.printer;
    queue.remote = target.remote;
    queue.flDefault = target.flDefault;
    error = CheckPpdFile(queue);
    return error.empty() ? PutQueue(queue) : error;
}

// ---- Modify

static std::string NotChanged(const Queue &queue, const std::string &error) {
    return Say(SayQueueNotChanged, queue.name, error);
}

// A device's spool directory goes by the user interface, and its jobs go along. One that is at the printer
// can't: the sender of the other directory would print into it.
static std::string CheckMove(const std::string &from, const std::string &to) {
    return from != to && IsSpoolPrinting(from) ? Say(SayJobPrints) : "";
}

static std::string FinishModify(const Queue &queue, const Queue &old, Place place) {
    std::string before = RecordsDefault(), banner = RecordsBanner(), from = FileStoreSpool(old),
                to = SpoolDirectory(queue), error = place == PLACE_FILE ? CheckMove(from, to) : "";
    if (!error.empty()) return NotChanged(queue, error);
    RecordsPut(queue);
    if (place == PLACE_FILE) FileStorePut(queue);
    error = PrepareChange();
    if (!error.empty()) return error;
    bool flPpd = queue.flFeatures != old.flFeatures || queue.settings != old.settings;
    if (place == PLACE_CUPS) error = CupsModify(queue, TitlesOf(queue, banner), flPpd);
    bool flModified = error.empty();
    if (error.empty()) error = FollowDefault(before, RecordsDefault(), queue.flDefault);
    bool flMoved = place == PLACE_FILE && from != to;
    if (error.empty() && flMoved) error = NoteJobs({{queue.name, from, true}});
    if (error.empty()) error = CommitChange();
    if (error.empty()) {
        if (flMoved) MoveSpooled(queue.name, from, to);
        if (flMoved) ForgetJobs();
        SettleBanners(TheHost, {queue.name});
        return "";
    }
    if (flModified && place == PLACE_CUPS) {
        CupsModify(old, TitlesOf(old, banner), flPpd);
        FollowDefault(RecordsDefault(), before, false);
    }
    DropChange();
    return NotChanged(queue, error);
}

static std::string ModifyQueue(const Options &options) {
    const std::string &name = options.queues.front();
    Queue queue, old, given;
    std::string error = CheckHostQueueName(name);
    if (error.empty()) error = ReadSettings(options, given);
    if (error.empty()) error = ReadBanner(options, given.banner);
    if (error.empty()) error = BeginChange();
    if (!error.empty()) return error;
    Place place = HostFind(TheHost, name);
    if (place == PLACE_UNKNOWN) return TheHost.error;
    if (place == PLACE_NONE) return Say(SayQueueUnknown, name);
    if (!RecordsRead(name, old)) return Say(SayRecordMissing, name);
    if (!IsSound(old)) return Say(SayRecordDamaged, name);
    error = FileStoreCheck(old);
    if (!error.empty()) return error;
    queue = old;
    queue.flBanner = options.flBanner;
    queue.flFeatures = options.flFeatures;
    queue.flUserInterface = options.flUserInterface;
    queue.flDefault = options.flDefault;
    if (!options.settings.empty()) queue.settings = given.settings;
    // The caller always tells the queue's own titles: without them it takes the system's.
    queue.banner = given.banner;
    return FinishModify(queue, old, place);
}

// ---- Delete

static std::string CheckDeletion(const std::vector<std::string> &names) {
    for (const std::string &name : names) {
        std::string error = CheckHostQueueName(name);
        if (!error.empty()) return error;
        if (HostFind(TheHost, name) == PLACE_UNKNOWN) return TheHost.error;
    }
    return "";
}

// Removes the host's part of each queue; those that it keeps come back.
static std::vector<std::string> DeleteFromHost(const std::vector<std::string> &names) {
    std::vector<std::string> kept;
    for (const std::string &name : names) {
        if (HostFind(TheHost, name) != PLACE_CUPS) continue;
        std::string error = CupsDelete(name);
        if (error.empty()) continue;
        Tell(Say(SayQueueNotRemoved, name, error));
        kept.push_back(name);
    }
    return kept;
}

static void EditDeletion(const std::vector<std::string> &names, const std::vector<std::string> &kept) {
    for (const std::string &name : names) {
        if (std::find(kept.begin(), kept.end(), name) != kept.end()) continue;
        RecordsDelete(name);
        FileStoreDelete(name);
    }
}

// Of the tool's own store, before their records and lines go.
static std::vector<JobNote> StoredQueues(const std::vector<std::string> &names) {
    std::vector<JobNote> queues;
    for (const std::string &name : names)
        if (HostFind(TheHost, name) == PLACE_FILE) queues.push_back({name, SpoolOf(name), false});
    return queues;
}

static std::string DeleteQueues(const std::vector<std::string> &names) {
    std::vector<std::string> places;
    bool flFailed = false;
    for (const std::string &name : names) {
        bool flThere = HostFind(TheHost, name) != PLACE_NONE || RecordsHave(name);
        if (flThere)
            places.push_back(name);
        else
            flFailed |= Tell(Say(SayQueueUnknown, name)) != 0;
    }
    // The host's list is asked before the lines go, so the names keep their place.
    std::vector<std::string> hosted;
    for (const std::string &name : places)
        if (HostFind(TheHost, name) == PLACE_CUPS) hosted.push_back(name);
    std::vector<JobNote> stored = StoredQueues(places);
    EditDeletion(places, {});
    std::string error = places.empty() ? "" : PrepareChange();
    if (error.empty()) error = NoteJobs(stored);
    if (!error.empty()) {
        DropChange();
        return error;
    }
    std::vector<std::string> kept = DeleteFromHost(hosted);
    if (!kept.empty()) {
        // The records of queues that are still there must stay.
        error = RecordsOpen();
        EditDeletion(places, kept);
        if (error.empty()) error = RecordsPrepare();
    }
    if (error.empty() && !places.empty()) error = CommitChange();
    if (error.empty()) {
        for (const JobNote &each : stored) DropSpooled(each.queue, each.directory);
        ForgetJobs();
        SettleBanners(TheHost, {});
    }
    return !error.empty() || (!flFailed && kept.empty()) ? error : Say(SayQueuesNotRemoved);
}

static std::string DeleteNamed(const Options &options) {
    std::vector<std::string> names;
    for (const std::string &name : options.queues)
        if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
    std::string error = BeginChange();
    if (error.empty()) error = CheckDeletion(names);
    return error.empty() ? DeleteQueues(names) : error;
}

static std::string DeleteAll() {
    std::string error = BeginChange();
    if (!error.empty()) return error;
    if (TheHost.state == CUPS_DOWN && !TheHost.flStandAlone) return TheHost.error;
    std::vector<std::string> names = HostQueues(TheHost);
    if (TheHost.state != CUPS_DOWN)
        for (const std::string &name : RecordsQueues())
            if (HostFind(TheHost, name) == PLACE_NONE) names.push_back(name);
    return DeleteQueues(names);
}

// ---- Default banner

// Queues of the scheduler that print the system's titles.
static std::vector<Queue> QueuesWithSystemBanner() {
    std::vector<Queue> queues;
    for (const std::string &name : RecordsQueues()) {
        Queue queue;
        if (RecordsRead(name, queue) && queue.flBanner && queue.banner.empty() &&
            HostFind(TheHost, name) != PLACE_FILE && HostFind(TheHost, name) != PLACE_NONE)
            queues.push_back(queue);
    }
    return queues;
}

static std::string ShowBanner(const std::vector<Queue> &queues, const std::string &banner) {
    for (const Queue &queue : queues) {
        std::string error = CupsSetBanner(queue, ReadTitles(banner));
        if (!error.empty()) return error;
    }
    return "";
}

static std::vector<std::string> NamesOf(const std::vector<Queue> &queues) {
    std::vector<std::string> names;
    for (const Queue &queue : queues) names.push_back(queue.name);
    return names;
}

static std::string SetSystemBanner(const std::string &banner) {
    std::string error = BeginChange();
    if (!error.empty()) return error;
    std::string before = RecordsBanner();
    std::vector<Queue> queues = QueuesWithSystemBanner();
    if (!queues.empty() && TheHost.state == CUPS_DOWN) return TheHost.error;
    RecordsSetBanner(banner);
    error = PrepareChange();
    if (!error.empty()) return error;
    error = ShowBanner(queues, banner);
    if (error.empty()) error = CommitChange();
    if (error.empty()) {
        SettleBanners(TheHost, NamesOf(queues));
        return "";
    }
    ShowBanner(queues, before);
    DropChange();
    return error;
}

static std::string SetBanner(const Options &options) {
    std::string banner, error = ReadBanner(options, banner);
    return error.empty() ? SetSystemBanner(banner) : error;
}

// ---- List

static std::string ListQueues() {
    std::string error = HostOpen(TheHost);
    for (const std::string &name : HostQueues(TheHost)) {
        // Readers split the list there: such a name would be that of another queue.
        if (name.find_first_of(",:") == name.npos)
            printf("%s:\n", name.c_str());
        else
            PutLog("queue \"" + name + "\" left out of the list: its name can't stand there");
    }
    if (error.empty() && TheHost.state == CUPS_DOWN && !TheHost.flStandAlone) error = TheHost.error;
    return error;
}

int RunCommand(const Options &options) {
    switch (options.command) { // ORDER Command
    case COMMAND_ADD: return Tell(AddQueue(options));
    case COMMAND_COPY: return Tell(CopyQueue(options));
    case COMMAND_MODIFY: return Tell(ModifyQueue(options));
    case COMMAND_DELETE: return Tell(DeleteNamed(options));
    case COMMAND_DELETE_ALL: return Tell(DeleteAll());
    case COMMAND_SET_BANNER: return Tell(SetBanner(options));
    case COMMAND_CLEAR_BANNER: return Tell(SetSystemBanner(""));
    case COMMAND_LIST: return Tell(ListQueues());
    case COMMAND_TABLE: return Tell(ListTable());
    case COMMAND_JSON: return Tell(ListJson());
    case COMMAND_HELP:
    case COMMAND_VERSION:
    case COMMAND_COUNT: break;
    }
    return 1;
}

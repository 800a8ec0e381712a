// The commands: add, copy, modify, delete, default banner, list.
#include "siblings/prnqtool/Commands.h"

#include "common/utils.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Frame.h"
#include "siblings/lib/Host.h"
#include "siblings/lib/Ppd.h"
#include "siblings/lib/Queue.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Spool.h"
#include "siblings/prnqtool/Batch.h"
#include "siblings/prnqtool/Change.h"
#include "siblings/prnqtool/Export.h"
#include "siblings/prnqtool/List.h"
#include "siblings/prnqtool/Outcome.h"
#include "siblings/prnqtool/Put.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <sys/stat.h>
#include <unistd.h>

static int Tell(const std::string &error) {
    if (error.empty()) return 0;
    TellUser(error);
    return 1;
}

// ---- Values of one queue

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

// ---- Add, copy

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
    if (!error.empty()) return error;
    return options.flEnsure ? EnsureQueue(queue) : PutQueue(queue);
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
    return ModifyQueueTo(queue, old, place);
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
        // There is work as long as the host does it.
        if (error.empty()) {
            RestartRunLimit();
            LimitRun();
            HostForget(TheHost, name);
            continue;
        }
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
    Sequel sequel = {.spooled = stored, .cancelled = {}, .banners = {}};
    std::string error = places.empty() ? "" : PrepareChange(places, sequel);
    std::vector<std::string> kept;
    if (error.empty()) kept = DeleteFromHost(hosted);
    if (!kept.empty()) {
        // The records of queues that are still there must stay.
        RecordsRevert();
        EditDeletion(places, kept);
        error = PrepareChange(kept, sequel);
    }
    if (error.empty() && !places.empty()) error = CommitChange();
    if (!error.empty()) DropChange();
    for (const std::string &name : places)
        if (error.empty() && !std::count(kept.begin(), kept.end(), name)) Report(name, OUTCOME_REMOVED);
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

std::string SetSystemBanner(const std::string &banner) {
    std::string error = BeginChange();
    if (!error.empty()) return error;
    std::string before = RecordsBanner();
    std::vector<Queue> queues = QueuesWithSystemBanner();
    if (!queues.empty() && TheHost.state == CUPS_DOWN) return TheHost.error;
    RecordsSetBanner(banner);
    Sequel sequel = {.spooled = {}, .cancelled = {}, .banners = NamesOf(queues)};
    error = PrepareChange(sequel.banners, sequel);
    if (!error.empty()) {
        DropChange();
        return error;
    }
    error = ShowBanner(queues, banner);
    if (error.empty()) error = CommitChange();
    if (error.empty()) Report("", banner == before ? OUTCOME_UNCHANGED : OUTCOME_CHANGED);
    if (error.empty()) return "";
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

std::string ChangeBy(const Options &options) {
    switch (options.command) { // ORDER Command
    case COMMAND_ADD: return AddQueue(options);
    case COMMAND_COPY: return CopyQueue(options);
    case COMMAND_MODIFY: return ModifyQueue(options);
    case COMMAND_DELETE: return DeleteNamed(options);
    case COMMAND_DELETE_ALL: return DeleteAll();
    case COMMAND_SET_BANNER: return SetBanner(options);
    case COMMAND_CLEAR_BANNER: return SetSystemBanner("");
    case COMMAND_LIST:
    case COMMAND_TABLE:
    case COMMAND_JSON:
    case COMMAND_BATCH:
    case COMMAND_EXPORT:
    case COMMAND_IMPORT:
    case COMMAND_HELP:
    case COMMAND_VERSION:
    case COMMAND_COUNT: break;
    }
    return ""; // no change
}

int RunCommand(const Options &options) {
    if (options.flDryRun) OnlyPretend();
    BeginReport(options.flEnsure || options.command == COMMAND_IMPORT, options.flDryRun);
    switch (options.command) { // ORDER Command
    case COMMAND_ADD:
    case COMMAND_COPY:
    case COMMAND_MODIFY:
    case COMMAND_DELETE:
    case COMMAND_DELETE_ALL:
    case COMMAND_SET_BANNER:
    case COMMAND_CLEAR_BANNER: return EndReport(Tell(ChangeBy(options)));
    case COMMAND_LIST: return Tell(ListQueues());
    case COMMAND_TABLE: return Tell(ListTable());
    case COMMAND_JSON: return Tell(ListJson());
    case COMMAND_BATCH: return EndReport(Tell(RunBatch(options)));
    case COMMAND_EXPORT: return Tell(ExportQueues(options.file));
    case COMMAND_IMPORT: return EndReport(Tell(ImportQueues(options.file)));
    case COMMAND_HELP:
    case COMMAND_VERSION:
    case COMMAND_COUNT: break;
    }
    return 1;
}

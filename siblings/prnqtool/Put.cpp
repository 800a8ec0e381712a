// One queue in both of its parts: the host's and the records.
#include "siblings/prnqtool/Put.h"

#include "siblings/lib/FileStore.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Spool.h"
#include "siblings/prnqtool/Change.h"
#include "siblings/prnqtool/Outcome.h"

#include <map>

std::string SpoolOf(const std::string &name) {
    Queue queue;
    RecordsRead(name, queue);
    queue.name = name;
    return FileStoreSpool(queue);
}

static std::string CheckCase(const std::string &name) {
    std::string other = HostTwin(TheHost, name);
    return other.empty() ? "" : Say(SayNameByCase, name, other);
}

// ---- Add or replace

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
        if (put.flTouched) HostPut(TheHost, put.queue.name);
    }
    return error;
}

static void UndoPut(const Put &put) {
    bool flAgain;
    if (put.place == PLACE_CUPS && put.flTouched) {
        if (!put.flOnHost) {
            CupsDelete(put.queue.name);
            HostForget(TheHost, put.queue.name);
        }
        if (put.flOnHost && put.flRecorded && IsSound(put.old))
            CupsReplace(put.old, TitlesOf(put.old, RecordsBanner()), flAgain);
    }
    FollowDefault(RecordsDefault(), put.before, false);
}

// The jobs that wait were meant for what was there before.
static Sequel SequelOf(const Put &put) {
    const std::string &name = put.queue.name;
    Sequel sequel = {.spooled = {}, .cancelled = {}, .banners = {name}};
    if (put.flOnHost && put.place == PLACE_FILE) sequel.spooled.push_back({name, put.spool, false});
    if (put.flOnHost && put.place == PLACE_CUPS) sequel.cancelled.push_back(name);
    return sequel;
}

static std::string FinishPut(Put &put) {
    std::string error = PrepareChange({put.queue.name}, SequelOf(put));
    if (!error.empty()) {
        DropChange();
        return error;
    }
    error = PutOnHost(put);
    if (error.empty()) error = FollowDefault(put.before, RecordsDefault(), put.queue.flDefault);
    if (error.empty()) error = CommitChange();
    if (error.empty()) {
        Report(put.queue.name, put.flOnHost ? OUTCOME_CHANGED : OUTCOME_ADDED);
        return "";
    }
    UndoPut(put);
    DropChange();
    return Say(put.flOnHost ? SayQueueNotReplaced : SayQueueNotMade, put.queue.name, error);
}

std::string PutQueue(const Queue &queue) {
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
    if (put.place == PLACE_FILE) HostNamed(TheHost, queue.name);
    return FinishPut(put);
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

std::string ModifyQueueTo(const Queue &queue, const Queue &old, Place place) {
    std::string before = RecordsDefault(), banner = RecordsBanner(), from = FileStoreSpool(old),
                to = SpoolDirectory(queue), error = place == PLACE_FILE ? CheckMove(from, to) : "";
    if (!error.empty()) return NotChanged(queue, error);
    RecordsPut(queue);
    if (place == PLACE_FILE) FileStorePut(queue);
    Sequel sequel = {.spooled = {}, .cancelled = {}, .banners = {queue.name}};
    if (place == PLACE_FILE && from != to) sequel.spooled.push_back({queue.name, from, true});
    error = PrepareChange({queue.name}, sequel);
    if (!error.empty()) {
        DropChange();
        return error;
    }
    bool flPpd = queue.flFeatures != old.flFeatures || queue.settings != old.settings;
    if (place == PLACE_CUPS) error = CupsModify(queue, TitlesOf(queue, banner), flPpd);
    bool flModified = error.empty();
    if (error.empty()) error = FollowDefault(before, RecordsDefault(), queue.flDefault);
    if (error.empty()) error = CommitChange();
    if (error.empty()) {
        Report(queue.name, OUTCOME_CHANGED);
        return "";
    }
    if (flModified && place == PLACE_CUPS) {
        CupsModify(old, TitlesOf(old, banner), flPpd);
        FollowDefault(RecordsDefault(), before, false);
    }
    DropChange();
    return NotChanged(queue, error);
}

// ---- Ensure

// The scheduler's queues with their device; asked once, and followed from then on.
static std::map<std::string, std::string> &Devices() {
    static std::map<std::string, std::string> devices;
    static bool flAsked;
    if (!flAsked) CupsDevices(devices);
    flAsked = true;
    return devices;
}

// The host's part may be another one than the record says: others have their own ways to it.
static bool HostAgrees(const Queue &queue, Place place) {
    if (place == PLACE_FILE) return FileStoreCheck(queue).empty();
    auto found = Devices().find(queue.name);
    if (found == Devices().end() || found->second != CupsUri(queue)) return false;
    return !queue.flDefault || CupsDefault() == queue.name;
}

static bool IsSameTarget(const Queue &left, const Queue &right) {
    return left.printer == right.printer && left.remote == right.remote && left.ppd == right.ppd &&
           left.type == right.type && left.flLpd == right.flLpd;
}

static bool IsSameUse(const Queue &left, const Queue &right) {
    return left.flBanner == right.flBanner && left.flUserInterface == right.flUserInterface &&
           left.flFeatures == right.flFeatures && left.flDefault == right.flDefault &&
           left.settings == right.settings && left.banner == right.banner;
}

std::string EnsureQueue(const Queue &queue) {
    Queue old;
    Place place = HostFind(TheHost, queue.name);
    std::string error;
    bool flThere = place == PLACE_FILE || place == PLACE_CUPS;
    bool flTarget = flThere && RecordsRead(queue.name, old) && IsSameTarget(queue, old);
    // A default queue that the host doesn't take for one is told so again.
    if (flTarget && IsSameUse(queue, old) && HostAgrees(queue, place)) {
        Report(queue.name, OUTCOME_UNCHANGED);
        return "";
    }
    Queue target = queue;
    target.flDefault = false;
    bool flModify = flTarget && HostAgrees(target, place);
    error = flModify ? ModifyQueueTo(queue, old, place) : PutQueue(queue);
    if (error.empty() && place != PLACE_FILE) Devices()[queue.name] = CupsUri(queue);
    return error;
}

// Queue records: the main record, settings, banner titles, count per printer, and the two system records.
#include "siblings/lib/Records.h"

#include "common/DbmT.h"
#include "print/QueFormat.h"
#include "siblings/lib/Files.h"

#include <algorithm>
#include <sys/stat.h>

static const char Database[] = "db/que.xdb"; // the tool directory is the current one

static DbTHandle *Handle;
static bool flLost; // an edit found no memory

// A walk to the end cuts a damaged image; what lies behind the damage would be lost with the next write.
static bool IsDamaged(size_t fileSize) {
    DbTWalk walked;
    for (int index = 0; WalkDbTRecords(Handle, &walked, index); index++) {
    }
    return Handle->size != fileSize;
}

std::string RecordsLock(int seconds) {
    static const DbmLock *lock;
    if (!lock) lock = new DbmLock(QueDb, seconds); // ends with the process
    return lock->Fault();
}

std::string RecordsOpen() {
    struct stat status;
    bool flThere = !lstat(Database, &status);
    if (flThere && !S_ISREG(status.st_mode)) return std::string(Database) + " is no regular file";
    if (flThere && status.st_size > DBM_FILE_MAX)
        return std::string(Database) + " is larger than a queue database can be";
    flLost = false;
    if (Handle) DbTClose(Handle);
    Handle = DbTOpen(QueDb, DBT_NO_RELOAD | DBT_NO_WRITE);
    if (!Handle) return "out of memory";
    if (Handle->type == DBT_HEADER) return std::string(Database) + " is no queue database";
    if (Handle->type == DBT_NONE) {
        if (flThere && status.st_size) return std::string("can't read ") + Database;
        // A fresh handle holds room for a header; the queue database has none.
        DbTSetDbType(Handle, DBT_HEADERLESS);
        Handle->size = 0;
        return "";
    }
    return IsDamaged(static_cast<size_t>(status.st_size))
               ? std::string(Database) + " is damaged; move it away and add the queues again"
               : "";
}

static std::string GetRecord(const std::string &key) {
    static char buffer[DBM_BUFFER];
    int size = DbmTGetRecord(Handle, key.c_str(), buffer, sizeof buffer);
    return std::string(buffer, size > 0 ? static_cast<size_t>(size) : 0);
}

static std::string GetText(const std::string &key) {
    std::string record = GetRecord(key);
    return record.substr(0, record.find('\0'));
}

// An empty value stands for no record: a record without data reads as absent anyway.
static void SetRecord(const std::string &key, const std::string &value) {
    if (value.empty())
        DbmTDeleteRecord(Handle, key.c_str());
    else if (!DbmTPutRecord(Handle, key.c_str(), value.data(), value.size()))
        flLost = true;
}

static std::string WithNul(const std::string &text) {
    return text.empty() ? text : text + '\0';
}

bool RecordsHave(const std::string &name) {
    return !GetRecord(name).empty();
}

bool RecordsRead(const std::string &name, Queue &queue) {
    std::string record = GetText(name);
    if (record.empty()) return false;
    QueFields fields = ReadQueFields(record);
    queue = Queue();
    queue.name = name;
    queue.printer = fields.printer;
    queue.remote = fields.remote;
    queue.ppd = fields.ppd;
    queue.type = fields.type;
    queue.flBanner = fields.banner != 0;
    queue.flUserInterface = fields.userInterface != 0;
    queue.flFeatures = fields.features != 0;
    queue.flDefault = RecordsDefault() == name;
    queue.flLpd = fields.lpd != 0;
    queue.settings = GetText(QueSettingsKey(name));
    queue.banner = GetText(QueOwnBannerKey(name));
    return true;
}

static bool IsQueueKey(const DbTWalk &walked) {
    return walked.K > 1 && IsQueKey(std::string_view(walked.key, walked.K - 1u));
}

std::vector<std::string> RecordsQueues() {
    std::vector<std::string> names;
    DbTWalk walked;
    for (int index = 0; WalkDbTRecords(Handle, &walked, index); index++)
        if (IsQueueKey(walked)) names.emplace_back(walked.key, walked.K - 1u);
    return names;
}

std::string RecordsDefault() {
    return GetText(QueDefaultKey);
}

std::string RecordsBanner() {
    return GetText(QueBannerKey);
}

// The count record tells how many queues a printer has, and by which host and name the last of them reaches
// it.
static void CountQueues(const std::string &printer) {
    int32_t count = 0;
    std::string words;
    DbTWalk walked;
    for (int index = 0; WalkDbTRecords(Handle, &walked, index); index++) {
        if (!IsQueueKey(walked)) continue;
        std::string_view record(walked.key + walked.K, walked.L - walked.K - 2u);
        // A removal of many queues walks over all records for each of them: only the printer's own are split.
        if (record.find(" " + printer + " ") == record.npos) continue;
        QueFields fields = ReadQueFields(record);
        if (fields.printer != printer) continue;
        words = printer + " " + fields.remote;
        count++;
    }
    static_assert(sizeof count == QUE_COUNT_FIELD);
    std::string record(reinterpret_cast<const char *>(&count), sizeof count);
    SetRecord(QueCountKey(printer), count ? record + words + '\0' : "");
}

static std::string MainRecord(const Queue &queue) {
    return WithNul(MakeQueText({.name = queue.name,
                                .printer = queue.printer,
                                .remote = queue.remote,
                                .ppd = queue.ppd,
                                .type = queue.type,
                                .banner = queue.flBanner,
                                .userInterface = queue.flUserInterface,
                                .features = queue.flFeatures,
                                .isDefault = queue.flDefault,
                                .lpd = queue.flLpd}));
}

void RecordsPut(const Queue &queue) {
    Queue old;
    bool flOld = RecordsRead(queue.name, old);
    SetRecord(queue.name, MainRecord(queue));
    SetRecord(QueSettingsKey(queue.name), queue.settings);
    SetRecord(QueOwnBannerKey(queue.name), WithNul(queue.banner));
    if (flOld && old.printer != queue.printer) CountQueues(old.printer);
    CountQueues(queue.printer);
    if (queue.flDefault)
        RecordsSetDefault(queue.name);
    else if (RecordsDefault() == queue.name)
        RecordsSetDefault("");
}

void RecordsDelete(const std::string &name) {
    Queue old;
    bool flOld = RecordsRead(name, old);
    for (const std::string &key : {name, QueSettingsKey(name), QueOwnBannerKey(name)}) SetRecord(key, "");
    if (flOld) CountQueues(old.printer);
    if (RecordsDefault() == name) RecordsSetDefault("");
}

void RecordsSetDefault(const std::string &name) {
    SetRecord(QueDefaultKey, WithNul(name));
}

void RecordsSetBanner(const std::string &banner) {
    SetRecord(QueBannerKey, WithNul(banner));
}

std::string RecordsPrepare() {
    if (flLost) return "out of memory";
    return PrepareFile(Database, std::string_view(Handle->image, Handle->size), DbmMode());
}

std::string RecordsCommit() {
    return CommitFile(Database);
}

void RecordsDrop() {
    DropFile(Database);
}

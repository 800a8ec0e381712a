// Queue records: the main record, settings, banner titles, count per printer, and the two system records.
#include "siblings/lib/Records.h"

#include "common/DbmT.h"
#include "print/QueFormat.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/RecordTable.h"

#include <map>
#include <set>
#include <sys/stat.h>

static const char Database[] = "db/que.xdb"; // the tool directory is the current one

static RecordTable Table;
static std::set<std::string> Recount; // printers whose count records are out of date
static bool flLost;                   // an edit was too large for a record

std::string RecordsLock(int seconds) {
    static const DbmLock *lock;
    if (!lock) lock = new DbmLock(QueDb, seconds); // ends with the process
    return lock->Fault();
}

// A walk to the end cuts a damaged image; what lies behind the damage would be lost with the next write.
static std::string LoadTable(DbTHandle *handle, size_t fileSize) {
    if (handle->type == DBT_HEADER) return std::string(Database) + " is no queue database";
    if (handle->type == DBT_NONE) return fileSize ? std::string("can't read ") + Database : "";
    DbTWalk walked;
    for (int index = 0; WalkDbTRecords(handle, &walked, index); index++) {
        bool flWhole = walked.K > 0 && walked.key[walked.K - 1] == '\0';
        size_t dataSize = walked.L - walked.K - 2u;
        Table.Load({walked.key, walked.K - (flWhole ? 1u : 0u)}, {walked.key + walked.K, dataSize}, flWhole);
    }
    if (handle->size == fileSize) return "";
    return std::string(Database) + " is damaged; move it away and add the queues again";
}

std::string RecordsOpen() {
    struct stat status;
    bool flThere = !lstat(Database, &status);
    if (flThere && !S_ISREG(status.st_mode)) return std::string(Database) + " is no regular file";
    if (flThere && status.st_size > DBM_FILE_MAX)
        return std::string(Database) + " is larger than a queue database can be";
    flLost = false;
    Table.Clear();
    Recount.clear();
    DbTHandle *handle = DbTOpen(QueDb, DBT_NO_RELOAD | DBT_NO_WRITE);
    if (!handle) return "out of memory";
    std::string error = LoadTable(handle, flThere ? static_cast<size_t>(status.st_size) : 0);
    DbTClose(handle);
    return error;
}

static std::string GetRecord(const std::string &key) {
    const std::string *data = Table.Find(key);
    return data ? *data : "";
}

static std::string GetText(const std::string &key) {
    std::string record = GetRecord(key);
    return record.substr(0, record.find('\0'));
}

// An empty value stands for no record: a record without data reads as absent anyway.
static void SetRecord(const std::string &key, const std::string &value) {
    if (value.empty())
        Table.Delete(key);
    else if (!Table.Put(key, value))
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

static bool IsQueue(const RecordTable::Record &record) {
    return record.flThere && record.flWhole && IsQueKey(record.key);
}

std::vector<std::string> RecordsQueues() {
    std::vector<std::string> names;
    for (const RecordTable::Record &record : Table.Records())
        if (IsQueue(record)) names.push_back(record.key);
    return names;
}

std::string RecordsDefault() {
    return GetText(QueDefaultKey);
}

std::string RecordsBanner() {
    return GetText(QueBannerKey);
}

// The count record tells how many queues a printer has, and by which host and name the last of them reaches
// it. They are made once, as the change is written: many queues may have changed by then.
static void CountQueues() {
    struct Count {
        int32_t count = 0;
        std::string remote;
    };
    static_assert(sizeof(Count::count) == QUE_COUNT_FIELD);
    std::map<std::string, Count> counts;
    if (Recount.empty()) return;
    for (const RecordTable::Record &record : Table.Records()) {
        if (!IsQueue(record)) continue;
        QueFields fields = ReadQueFields(record.data.substr(0, record.data.find('\0')));
        Count &count = counts[fields.printer];
        count.count++;
        count.remote = fields.remote;
    }
    for (const std::string &printer : Recount) {
        const Count &count = counts[printer];
        std::string record(reinterpret_cast<const char *>(&count.count), sizeof count.count);
        SetRecord(QueCountKey(printer), count.count ? record + printer + " " + count.remote + '\0' : "");
    }
    Recount.clear();
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
    if (flOld) Recount.insert(old.printer);
    Recount.insert(queue.printer);
    if (queue.flDefault)
        RecordsSetDefault(queue.name);
    else if (RecordsDefault() == queue.name)
        RecordsSetDefault("");
}

void RecordsDelete(const std::string &name) {
    Queue old;
    bool flOld = RecordsRead(name, old);
    for (const std::string &key : {name, QueSettingsKey(name), QueOwnBannerKey(name)}) SetRecord(key, "");
    if (flOld) Recount.insert(old.printer);
    if (RecordsDefault() == name) RecordsSetDefault("");
}

void RecordsSetDefault(const std::string &name) {
    SetRecord(QueDefaultKey, WithNul(name));
}

void RecordsSetBanner(const std::string &banner) {
    SetRecord(QueBannerKey, WithNul(banner));
}

void RecordsMark() {
    Table.Mark();
}

void RecordsRevert() {
    Table.Revert();
    flLost = false;
}

std::string RecordsPrepare() {
    if (flLost) return "a record is too large";
    CountQueues();
    return PrepareFile(Database, Table.Image(), DbmMode());
}

std::string RecordsCommit() {
    return CommitFile(Database);
}

void RecordsDrop() {
    DropFile(Database);
}

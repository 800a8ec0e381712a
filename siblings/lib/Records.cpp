// Queue records: the main record, settings, banner titles, count per printer, and the two system records.
#include "siblings/lib/Records.h"

#include "common/DbmT.h"
#include "siblings/lib/Files.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>

enum { DATABASE_MODE = 0666 };
enum { // fields of a main record, split at single blanks
    FIELD_NAME,
    FIELD_PRINTER,
    FIELD_REMOTE,
    FIELD_PPD,
    FIELD_TYPE,
    FIELD_BANNER,
    FIELD_USER_INTERFACE,
    FIELD_FEATURES,
    FIELD_DEFAULT, // written, never read: the record " default" tells
    FIELD_LPD,
    FIELD_COUNT,
};

static const char Database[] = "db/que.xdb"; // the tool directory is the current one
static const char KeySettings[] = " **";
static const char KeyBanner[] = " **banner";
static const char KeyCount[] = " count";
static const char KeyDefault[] = " default";
static const char KeySystemBanner[] = " banner";

static DbTHandle *Handle;
static bool flLost; // an edit found no memory

// A walk to the end cuts a damaged image; what lies behind the damage would be lost with the next write.
static bool IsDamaged(size_t fileSize) {
    DbTWalk walked;
    for (int index = 0; WalkDbTRecords(Handle, &walked, index); index++) {
    }
    return Handle->size != fileSize;
}

std::string RecordsOpen() {
    struct stat status;
    bool flThere = !lstat(Database, &status);
    if (flThere && !S_ISREG(status.st_mode)) return std::string(Database) + " is no regular file";
    flLost = false;
    if (Handle) DbTClose(Handle);
    Handle = DbTOpen("que", DBT_NO_RELOAD | DBT_NO_WRITE);
    if (!Handle) return "out of memory";
    if (Handle->type == DBT_HEADER) return std::string(Database) + " is no queue database";
    if (Handle->type == DBT_NONE) {
        if (flThere && status.st_size) return std::string("can't read ") + Database;
        // A fresh handle holds room for a header; the queue database has none.
        DbTSetDbType(Handle, DBT_HEADERLESS);
        Handle->size = 0;
        return "";
    }
    return IsDamaged((size_t)status.st_size)
               ? std::string(Database) + " is damaged; move it away and add the queues again"
               : "";
}

static std::string GetRecord(const std::string &key) {
    static char buffer[DBM_BUFFER];
    int size = DbmTGetRecord(Handle, key.c_str(), buffer, sizeof buffer);
    return std::string(buffer, size > 0 ? (size_t)size : 0);
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

static std::vector<std::string> SplitAtBlanks(const std::string &text) {
    std::vector<std::string> words;
    for (size_t at = 0; at < text.size() && words.size() < FIELD_COUNT;) {
        size_t end = std::min(text.find(' ', at), text.size());
        words.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    words.resize(FIELD_COUNT);
    return words;
}

bool RecordsRead(const std::string &name, Queue &queue) {
    std::string record = GetText(name);
    if (record.empty()) return false;
    std::vector<std::string> words = SplitAtBlanks(record);
    queue = Queue();
    queue.name = name;
    queue.printer = words[FIELD_PRINTER];
    queue.remote = words[FIELD_REMOTE];
    queue.ppd = words[FIELD_PPD];
    queue.type = atoi(words[FIELD_TYPE].c_str());
    queue.flBanner = atoi(words[FIELD_BANNER].c_str()) != 0;
    queue.flUserInterface = atoi(words[FIELD_USER_INTERFACE].c_str()) != 0;
    queue.flFeatures = atoi(words[FIELD_FEATURES].c_str()) != 0;
    queue.flDefault = RecordsDefault() == name;
    queue.flLpd = atoi(words[FIELD_LPD].c_str()) != 0;
    queue.settings = GetText(name + KeySettings);
    queue.banner = GetText(name + KeyBanner);
    return true;
}

// All other keys hold a blank.
static bool IsQueueKey(const DbTWalk &walked) {
    return walked.K > 1 && !memchr(walked.key, ' ', walked.K);
}

std::vector<std::string> RecordsQueues() {
    std::vector<std::string> names;
    DbTWalk walked;
    for (int index = 0; WalkDbTRecords(Handle, &walked, index); index++)
        if (IsQueueKey(walked)) names.emplace_back(walked.key, walked.K - 1u);
    return names;
}

std::string RecordsDefault() {
    return GetText(KeyDefault);
}

std::string RecordsBanner() {
    return GetText(KeySystemBanner);
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
        std::vector<std::string> fields = SplitAtBlanks(std::string(record));
        if (fields[FIELD_PRINTER] != printer) continue;
        words = printer + " " + fields[FIELD_REMOTE];
        count++;
    }
    std::string record((const char *)&count, sizeof count);
    SetRecord(printer + KeyCount, count ? record + words + '\0' : "");
}

static std::string MainRecord(const Queue &queue) {
    std::string record = queue.name + " " + queue.printer + " " + queue.remote + " " + queue.ppd + " ";
    for (int number : {queue.type, (int)queue.flBanner, (int)queue.flUserInterface, (int)queue.flFeatures,
                       (int)queue.flDefault, (int)queue.flLpd})
        record += std::to_string(number) + " ";
    return WithNul(record);
}

void RecordsPut(const Queue &queue) {
    Queue old;
    bool flOld = RecordsRead(queue.name, old);
    SetRecord(queue.name, MainRecord(queue));
    SetRecord(queue.name + KeySettings, queue.settings);
    SetRecord(queue.name + KeyBanner, WithNul(queue.banner));
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
    for (const char *suffix : {"", KeySettings, KeyBanner}) SetRecord(name + suffix, "");
    if (flOld) CountQueues(old.printer);
    if (RecordsDefault() == name) RecordsSetDefault("");
}

void RecordsSetDefault(const std::string &name) {
    SetRecord(KeyDefault, WithNul(name));
}

void RecordsSetBanner(const std::string &banner) {
    SetRecord(KeySystemBanner, WithNul(banner));
}

std::string RecordsPrepare() {
    if (flLost) return "out of memory";
    return PrepareFile(Database, std::string_view(Handle->image, Handle->size), DATABASE_MODE);
}

std::string RecordsCommit() {
    return CommitFile(Database);
}

void RecordsDrop() {
    DropFile(Database);
}

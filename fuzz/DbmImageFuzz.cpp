// Any bytes as a database in memory: the index finds what a walk finds, the walk of a headerless file what
// the stream layer reads, and edits keep the other records.
#include "common/DbmT.h"
#include "common/MemMgr.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

static void Require(bool flHolds) {
    if (!flHolds) abort();
}

static std::string MemoryFile(const uint8_t *data, size_t size) {
    static int file = memfd_create("fuzz", 0);
    Require(ftruncate(file, 0) == 0 && pwrite(file, data, size, 0) == static_cast<ssize_t>(size));
    return "/proc/./self/fd/" + std::to_string(file);
}

static std::vector<std::string> WalkKeys(DbTHandle *handle) {
    std::vector<std::string> keys;
    char *list = DbmTGetRecordList(handle, "\n", "\n");
    for (const char *key = list; key && key[1]; key = strchr(key + 1, '\n'))
        keys.emplace_back(key + 1, strchr(key + 1, '\n'));
    PutMem(list);
    return keys;
}

// The records with a whole key and data, the first of each key.
static std::map<std::string, std::string> WalkRecords(DbTHandle *handle) {
    std::map<std::string, std::string> records;
    DbLink *chain = DbmTGetDbLinkList(handle, "");
    for (DbLink *link = chain; link; link = link->next)
        if (strlen(link->record) + 1 == static_cast<size_t>(link->data - link->record))
            records.emplace(link->record, std::string(link->data, static_cast<size_t>(link->size)));
    DbmFreeDbLinkList(chain);
    return records;
}

static std::string Get(DbTHandle *handle, const std::string &key) {
    static char buffer[DBM_BUFFER];
    return {buffer, static_cast<size_t>(DbmTGetRecord(handle, key.c_str(), buffer, sizeof(buffer)))};
}

static void CompareWithStream(DbTHandle *handle, const uint8_t *data, size_t size) {
    FILE *in = fmemopen(const_cast<uint8_t *>(data), size, "rb");
    static DbmRecord record;
    DbTWalk walked;
    for (int i = 0; WalkDbTRecords(handle, &walked, i); i = 1) {
        Require(GetData(in, &record) != 0 && record.L == walked.L);
        Require(walked.L < DBM_WORD || memcmp(record.body + DBM_WORD, walked.key, walked.L - DBM_WORD) == 0);
    }
    Require(GetData(in, &record) == 0);
    fclose(in);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    DbTHandle *handle = DbTOpen(MemoryFile(data, size).c_str(), DBT_NO_RELOAD | DBT_NO_WRITE);
    Require(handle != nullptr);
    if (handle->type == DBT_HEADERLESS) CompareWithStream(handle, data, size);
    std::map<std::string, std::string> records = WalkRecords(handle);
    size_t keys = WalkKeys(handle).size();
    for (const auto &[key, value] : records) Require(key.empty() || Get(handle, key) == value);
    Require(DbmTPutRecord(handle, "added", "12", 2) == 1);
    records["added"] = "12";
    Require(WalkRecords(handle) == records && WalkKeys(handle).size() <= keys + 1);
    Require(DbmTDeleteRecords(handle, "a") == 1);
    std::erase_if(records, [](const auto &record) { return record.first[0] == 'a'; });
    Require(WalkRecords(handle) == records);
    DbTClose(handle);
    Require(CheckMem() == nullptr);
    return 0;
}

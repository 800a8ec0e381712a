// The two lists of queues.
#include "prndeck/core/PrdQueList.h"

#include "common/MemMgr.h"
#include "common/Token.h"
#include "common/utils.h"
#include "print/MainUtils.h"

#include <cstring>
#include <string>
#include <sys/stat.h>

char *pQueList;
char *pTarvoQueList;

char *GetTarvoQueList() {
    char *list = GetQueueList();
    if (!list) return nullptr;
    for (char *blank = list; (blank = strchr(blank, ' '));) *blank = ',';
    SortTokens(list, ',', 1);
    return list;
}

void DropQueList() {
    PutMem(pQueList);
    pQueList = nullptr;
}

// A host without queues has none of the family: prnqtool is not asked again.
void ReadQueLists() {
    DropQueList();
    PutMem(pTarvoQueList);
    pTarvoQueList = nullptr;
    pQueList = GetQueList();
    if (pQueList) pTarvoQueList = GetTarvoQueList();
}

int TestHostQueue(const char *name) {
    ReadQueLists();
    return pQueList && FindToken(name, pQueList) > 0;
}

// ---- The database

// Two changes within a second, or a file put in place of another, differ in one of these; all 0 for no file.
struct DbStamp {
    time_t seconds;
    long nanoseconds;
    off_t size;
    ino_t inode;
    bool operator==(const DbStamp &) const = default;
};

static DbStamp ReadDbStamp() {
    struct stat info;
    std::string path = std::string(pToolPath) + "/db/que.xdb";
    if (stat(path.c_str(), &info) != 0) return {};
    return {info.st_mtim.tv_sec, info.st_mtim.tv_nsec, info.st_size, info.st_ino};
}

int TestQueDbChange() {
    static bool flKnown;
    static DbStamp last;
    DbStamp now = ReadDbStamp();
    bool changed = flKnown && now != last;
    flKnown = true;
    last = now;
    return changed;
}

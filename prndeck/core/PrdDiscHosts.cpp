// The host table.
#include "prndeck/core/PrdDiscHosts.h"

#include "common/Hash.h"
#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/Token.h"
#include "common/utils.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cctype>
#include <cstring>
#include <ctime>
#include <resolv.h>

enum { HOST_TABLE_MIN = 1000 };
static constexpr char NisDelims[] = " :\t\n";
static constexpr char FileDelims[] = " \t";

const char *aHostDirs[2] = {"/etc", "/etc/inet"};
hostent *(*pGethostbyaddr)(const void *address, socklen_t size, int family) = gethostbyaddr;

static HashTable *HostTable; // dotted address to name
static bool flHostTable;     // it has been read
static bool flNoNameServer;  // one kept a call waiting

// ---- The table

// Node count for so many lines, with room for the probe.
static int HostTableSize(size_t lines) {
    return static_cast<int>(lines + lines / 10);
}

static void AddHostLine(const char *line, const char *delims) {
    char address[TOKEN_SIZE], name[TOKEN_SIZE], *position;
    if (!GetTokenD(line, delims, &position, address) || !GetTokenD(nullptr, delims, &position, name)) return;
    PushHashNode(HostTable, HashText(address), name, static_cast<int>(strlen(name)) + 1);
}

// A host without NIS prints a message: an answer begins with an address.
static bool TestNisAnswer(const ResponseNode *answer) {
    char address[TOKEN_SIZE], *position;
    in_addr word;
    return answer && GetTokenD(answer->text, NisDelims, &position, address) &&
           isdigit(static_cast<unsigned char>(*address)) && inet_aton(address, &word);
}

static bool ReadNisHosts() {
    if (!TestCmd(CMD_YPCAT)) return false;
    ResponseNode *answer = GetCmdResponse(CMD_YPCAT, nullptr, "hosts 2> /dev/null");
    bool flValid = TestNisAnswer(answer);
    if (flValid) {
        size_t lines = 0;
        for (const ResponseNode *node = answer; node; node = node->next) lines++;
        HostTable = NewHashTable(HostTableSize(lines), HASH_TEXT);
        for (const ResponseNode *node = answer; node; node = node->next) AddHostLine(node->text, NisDelims);
    }
    FreeResponseList(answer);
    return flValid;
}

static void ReadHostsFile() {
    char *text = nullptr;
    for (const char *directory : aHostDirs)
        if (!text) text = GetSavedFileContent(directory, "hosts");
    if (!text) return;
    size_t lines = static_cast<size_t>(std::count(text, text + strlen(text), '\n'));
    HostTable = NewHashTable(lines > HOST_TABLE_MIN ? HostTableSize(lines) : HOST_TABLE_MIN, HASH_TEXT);
    for (char *line = text, *end; line; line = end) {
        end = strchr(line, '\n');
        if (end) *end++ = '\0';
        if (*line != '#') AddHostLine(line, FileDelims);
    }
    PutMem(text);
}

static void FreeHostTable() {
    int index = 0;
    while (auto *node = static_cast<HashNode *>(WalkHashTable(HostTable, &index, 1)))
        PopHashNode(HostTable, HashText(node->key.text), 1);
    PutMem(HostTable);
    HostTable = nullptr;
}

void PrdInitHostTableS() {
    FreeHostTable();
    flHostTable = true;
    if (!ReadNisHosts()) ReadHostsFile();
}

// ---- Name servers

// Each printer would cost a server's time-out, which is 10 seconds and more by default.
static void LimitNameServers() {
    static bool flLimited;
    if (flLimited) return;
    flLimited = true;
    if (res_init() != 0) return;
    _res.retrans = NAME_SERVER_PATIENCE;
    _res.retry = 1;
}

void ResetNameServers() {
    flNoNameServer = false;
}

static long MonotonicMilliseconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000 + now.tv_nsec / 1000000;
}

static const char *AskNameServers(const char *address) {
    in_addr word;
    if (flNoNameServer || !inet_aton(address, &word)) return nullptr;
    LimitNameServers();
    long start = MonotonicMilliseconds();
    const hostent *host = pGethostbyaddr(&word, sizeof word, AF_INET);
    if (host) return host->h_name;
    flNoNameServer = MonotonicMilliseconds() - start >= NAME_SERVER_PATIENCE * 1000L;
    return nullptr;
}

// ---- Look-up

static bool TestHostName(const char *name) {
    static constexpr char Others[] = "-._:";
    for (const char *p = name; *p; p++)
        if (!isalnum(static_cast<unsigned char>(*p)) && !strchr(Others, *p)) return false;
    return *name;
}

void PrdGetHostNameS(const char *address, char **name) {
    if (!flHostTable) PrdInitHostTableS();
    const char *found = static_cast<const char *>(FindHashNode(HostTable, HashText(address)));
    if (!found) found = AskNameServers(address);
    *name = SaveStr_(found && TestHostName(found) ? found : address);
}

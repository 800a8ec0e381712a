// Both lists of where printers are looked for.
#include "prndeck/core/PrdDiscNets.h"

#include "common/Dbm.h"
#include "common/MemMgr.h"
#include "common/Token.h"
#include "common/utils.h"
#include "prndeck/core/PrdSets.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

enum { MSG_SCAN_TITLE = 75, MSG_SCAN_FAILED = 76, MSG_SUBNET_ON = 79, MSG_SUBNET_OFF = 80 };
enum { NET_INTERFACES = 64 };                     // of one host
enum { NET_LOOPBACK = 127, NET_MULTICAST = 224 }; // first octets
static constexpr char Db[] = "IPDisc";
static constexpr char DefaultBrowser[] = "netscape";
static constexpr char OldDelims[] = "*,"; // between the addresses of an older release

SubnetEntry *SubnetList;
int SubnetCount, SubnetBuffer;
char *pIpList, *pIpListMod, *pPreferredWB;
int flBrowserDoubtful;
void (*pDiscReport)(const char *title, const char *text);

static int HostIoctl(int socket, unsigned long request, void *argument) {
    return ioctl(socket, request, argument);
}
int (*pDiscIoctl)(int socket, unsigned long request, void *argument) = HostIoctl;

// ---- Records

static bool ReadRecord(const char *key, std::string *text) {
    std::vector<char> buffer(DBM_BUFFER);
    int size = DbmGetRecord(Db, key, buffer.data(), buffer.size() - 1);
    *text = buffer.data(); // a NUL ends it, stored or not
    return size > 0;
}

// An unchanged record is let be: the file may not be ours to write.
static int WriteRecord(const char *key, const std::string &text, size_t size) {
    std::vector<char> buffer(DBM_BUFFER);
    int stored = DbmGetRecord(Db, key, buffer.data(), buffer.size());
    if (stored == static_cast<int>(size) && memcmp(buffer.data(), text.c_str(), size) == 0) return 1;
    if (!DbmMayWrite()) return 1; // it lasts for the run
    return DbmPutRecord(Db, key, text.c_str(), size);
}

static void SetManaged(char **field, const char *text) {
    char *copy = text ? SaveStr_(text) : nullptr;
    PutMem(*field);
    *field = copy;
}

// ---- Subnets

static SubnetEntry *FindSubnet(const SubnetEntry *entry) {
    for (int i = 0; i < SubnetCount; i++)
        if (strcmp(SubnetList[i].Address, entry->Address) == 0 &&
            strcmp(SubnetList[i].Mask, entry->Mask) == 0)
            return &SubnetList[i];
    return nullptr;
}

const SubnetEntry *GetSubnet(int position) {
    return position > 0 && position <= SubnetCount ? &SubnetList[position - 1] : nullptr;
}

int NotInSubnetList(const SubnetEntry *entry) {
    return !FindSubnet(entry);
}

static void GrowSubnetList() {
    size_t room = static_cast<size_t>(SubnetBuffer) + NET_GROW;
    auto *list = static_cast<SubnetEntry *>(AdjustMem(SubnetList, room * sizeof(SubnetEntry)));
    if (!list) SysError("%s", OutOfMem);
    SubnetList = list;
    SubnetBuffer += NET_GROW;
}

void UpdateSubnetListEntry(const SubnetEntry *entry) {
    if (SubnetEntry *found = FindSubnet(entry)) *found = *entry;
}

void UpdateSubnetList(const SubnetEntry *entry, int mode) {
    SubnetEntry copy = *entry; // which may lie in the list
    if (mode != SUBNET_APPEND && FindSubnet(&copy)) {
        if (mode == SUBNET_REPLACE) UpdateSubnetListEntry(&copy);
        return;
    }
    if (SubnetCount == SubnetBuffer) GrowSubnetList();
    SubnetList[SubnetCount++] = copy;
}

void DeleteSubnetListEntry(const SubnetEntry *entry) {
    SubnetEntry *found = FindSubnet(entry);
    if (!found || !found->UserAdded) return;
    std::copy(found + 1, SubnetList + SubnetCount, found);
    SubnetCount--;
}

// A user's entry with the same texts stays: the places are gone through, not the texts.
void ClearScannedSubnets() {
    SubnetEntry *end = std::remove_if(SubnetList, SubnetList + SubnetCount,
                                      [](const SubnetEntry &entry) { return !entry.UserAdded; });
    SubnetCount = static_cast<int>(end - SubnetList);
}

void ClearSubnetList() {
    SubnetCount = 0;
}

static const char *GetStateText(bool flEnabled) {
    static char *apState[2];
    char *&text = apState[flEnabled];
    if (!text)
        text =
            SaveStr_(NlsText(pDrvCoreDB, SET_MESSAGES, flEnabled ? MSG_SUBNET_ON : MSG_SUBNET_OFF).c_str());
    return text;
}

std::string BuildSNList() {
    std::string out = ",";
    char row[2 * NET_TEXT + NLS_GUI_TEXT];
    for (int i = 0; i < SubnetCount; i++) {
        const SubnetEntry &entry = SubnetList[i];
        snprintf(row, sizeof row, "%-21s %-18s %9s,", entry.Address, entry.Mask, GetStateText(entry.Enabled));
        out += row;
    }
    return out;
}

std::string BuildDiscoveryList() {
    std::string out = ",";
    for (int i = 0; i < SubnetCount; i++)
        if (SubnetList[i].Enabled) out += std::string(SubnetList[i].Address) + " " + SubnetList[i].Mask + ",";
    return out;
}

// ---- The stored subnets

// inet_aton takes any text behind white space.
static bool TestDotted(const char *text) {
    in_addr word;
    return strspn(text, "0123456789.") == strlen(text) && inet_aton(text, &word);
}

// False for texts that are no addresses.
static bool SetSubnetTexts(SubnetEntry *entry, const char *address, const char *mask) {
    *entry = {};
    if (strlen(address) >= NET_TEXT || strlen(mask) >= NET_TEXT) return false;
    strcpy(entry->Address, address);
    strcpy(entry->Mask, mask);
    return TestDotted(address) && TestDotted(mask);
}

// line: address, mask, and two flags, which are set by the text "1" alone
static void ReadSubnetLine(const char *line) {
    enum { ADDRESS, MASK, ENABLED, USER_ADDED, FIELDS };
    char fields[FIELDS][TOKEN_SIZE] = {}, *position;
    const char *from = line;
    for (int i = 0; i < FIELDS && GetTokenD(from, ",", &position, fields[i]); i++) from = nullptr;
    SubnetEntry entry;
    if (!SetSubnetTexts(&entry, fields[ADDRESS], fields[MASK])) return;
    entry.Enabled = strcmp(fields[ENABLED], "1") == 0;
    entry.UserAdded = strcmp(fields[USER_ADDED], "1") == 0;
    UpdateSubnetList(&entry, SUBNET_APPEND);
}

static void ReadOldSubnets(const std::string &mask) {
    std::string text;
    ReadRecord("Subnets", &text);
    char address[TOKEN_SIZE], *position;
    for (char *next = GetTokenD(text.c_str(), OldDelims, &position, address); next;
         next = GetTokenD(nullptr, OldDelims, &position, address)) {
        SubnetEntry entry;
        if (!SetSubnetTexts(&entry, address, mask.c_str())) continue;
        entry.Enabled = entry.UserAdded = 1;
        UpdateSubnetList(&entry, SUBNET_APPEND);
    }
}

void ReadSubnetList() {
    std::string text;
    ClearSubnetList();
    if (!ReadRecord("SubnetList", &text)) {
        if (ReadRecord("SubnetMask", &text)) ReadOldSubnets(text);
        return;
    }
    char line[TOKEN_SIZE], *position;
    for (char *next = GetTokenD(text.c_str(), " \n", &position, line); next;
         next = GetTokenD(nullptr, " \n", &position, line))
        ReadSubnetLine(line);
}

// An empty list is one empty line: without a record that of an older release would come back.
int WriteSNListToDatabase() {
    std::string text;
    char line[2 * NET_TEXT + sizeof ",1,1\n"];
    for (int i = 0; i < SubnetCount; i++) {
        const SubnetEntry &entry = SubnetList[i];
        snprintf(line, sizeof line, "%s,%s,%i,%i\n", entry.Address, entry.Mask, entry.Enabled != 0,
                 entry.UserAdded != 0);
        text += line;
    }
    if (text.empty()) text = "\n";
    return WriteRecord("SubnetList", text, text.size());
}

// ---- Interfaces of this host

struct NetSocket {
    int file = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0); // a handle for the calls
    NetSocket() = default;
    ~NetSocket() {
        if (file >= 0) close(file);
    }
    NetSocket(const NetSocket &) = delete;
    NetSocket &operator=(const NetSocket &) = delete;
};

static int ReportAddressFailure(int flReport) {
    if (!flReport) return 1;
    int error = errno;
    static char *pTitle, *pText;
    if (!pTitle) pTitle = SaveStr_(NlsText(pDrvCoreDB, SET_MESSAGES, MSG_SCAN_TITLE).c_str());
    if (!pText) pText = SaveStr_(NlsText(pDrvCoreDB, SET_MESSAGES, MSG_SCAN_FAILED).c_str());
    if (pDiscReport) pDiscReport(pTitle, pText);
    errno = error;
    perror("Get Address");
    return 1;
}

static void AddressToText(const sockaddr &address, char *text) {
    sockaddr_in internet;
    memcpy(&internet, &address, sizeof internet);
    inet_ntop(AF_INET, &internet.sin_addr, text, NET_TEXT);
}

static bool TestLoopback(const ifreq &request, const char *address) {
    return strncmp(request.ifr_name, "lo", 2) == 0 || ParseInt(address) == NET_LOOPBACK;
}

static int AddInterface(int handle, ifreq request, int flReport) {
    SubnetEntry entry = {};
    entry.Enabled = 1;
    if (pDiscIoctl(handle, SIOCGIFADDR, &request) < 0) return ReportAddressFailure(flReport);
    AddressToText(request.ifr_addr, entry.Address);
    bool flLoopback = TestLoopback(request, entry.Address);
    if (pDiscIoctl(handle, SIOCGIFNETMASK, &request) < 0) {
        perror("Get Netmask");
        return 1;
    }
    AddressToText(request.ifr_netmask, entry.Mask);
    if (!flLoopback) UpdateSubnetList(&entry, SUBNET_IF_NEW);
    return 0;
}

int SniffInterfaces(int flReport) {
    ifreq found[NET_INTERFACES];
    ifconf all = {};
    all.ifc_len = sizeof found;
    all.ifc_req = found;
    NetSocket handle;
    if (handle.file < 0 || pDiscIoctl(handle.file, SIOCGIFCONF, &all) < 0) {
        perror("Determining Network Interface Configuration");
        return 1;
    }
    int count = all.ifc_len / static_cast<int>(sizeof(ifreq));
    for (int i = 0; i < count; i++)
        if (AddInterface(handle.file, found[i], flReport)) return 1;
    return 0;
}

// ---- Addresses

static char *GetChangedIpList() {
    if (!pIpListMod) SetManaged(&pIpListMod, pIpList ? pIpList : ",");
    return pIpListMod;
}

const char *GetIpList() {
    return pIpListMod ? pIpListMod : pIpList ? pIpList : ",";
}

static void SetSortedList(char **field, const std::string &text) {
    SetManaged(field, text.c_str());
    SortTokens(*field, ',', 1);
}

static void ReadStoredIps() {
    std::string stored, list = ",";
    if (!ReadRecord("IPaddr", &stored)) return;
    char address[TOKEN_SIZE], *position;
    for (char *next = GetTokenD(stored.c_str(), OldDelims, &position, address); next;
         next = GetTokenD(nullptr, OldDelims, &position, address))
        list += std::string(address) + ",";
    SetSortedList(&pIpList, list);
}

// A changed list that could not be stored holds for the run.
void ReadIPList() {
    pIpListMod ? SetManaged(&pIpList, pIpListMod) : ReadStoredIps();
}

int WriteIPListToDatabase() {
    const char *list = pIpListMod ? pIpListMod : pIpList;
    return !list || WriteRecord("IPaddr", list, strlen(list));
}

// The normal form of an address that a printer can have.
static bool NormalizeAddress(const char *address, char *normal) {
    in_addr word;
    if (!inet_aton(address, &word)) return false;
    inet_ntop(AF_INET, &word, normal, NET_TEXT);
    int first = ParseInt(normal);
    return first > 0 && first < NET_MULTICAST && first != NET_LOOPBACK;
}

int AddToIpList(const char *address) {
    char normal[NET_TEXT];
    if (!NormalizeAddress(address, normal)) return IP_REFUSED;
    if (FindToken(normal, GetIpList())) return IP_KNOWN;
    SetSortedList(&pIpListMod, std::string(GetIpList()) + normal + ",");
    return IP_ADDED;
}

// The comma in front keeps 5.1.1.1 from being found in 15.1.1.1.
void RemoveFromIpList(const char *address) {
    std::string list = GetChangedIpList();
    size_t place = address && *address ? list.find("," + std::string(address) + ",") : list.npos;
    if (place == list.npos) return;
    SetManaged(&pIpListMod, list.erase(place + 1, strlen(address) + 1).c_str());
}

// ---- The browser

// Whether somebody else may have written what the file holds. Without one nothing was read.
static bool IsStoreOpen() {
    struct stat info;
    std::string path = std::string(pToolPath) + "/db/IPDisc.xdb";
    if (stat(path.c_str(), &info) != 0) return false;
    return info.st_uid != geteuid() || (info.st_mode & (S_IWGRP | S_IWOTH));
}

void ReadBrowser() {
    std::string command;
    bool flStored = ReadRecord("FavBrowser", &command) && !command.empty();
    flBrowserDoubtful = flStored && IsStoreOpen();
    SetManaged(&pPreferredWB, flStored ? command.c_str() : DefaultBrowser);
}

int WriteBrowser(const char *command) {
    flBrowserDoubtful = 0;
    SetManaged(&pPreferredWB, command);
    return WriteRecord("FavBrowser", pPreferredWB, strlen(pPreferredWB) + 1); // with its NUL
}

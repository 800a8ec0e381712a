// Any texts as the records of the discovery and as a hosts file, a NUL between two: what is read is addresses
// and names that can go into command lines, and stays when it is read again.
#include "common/Dbm.h"
#include "common/MemMgr.h"
#include "common/utils.h"
#include "fuzz/FuzzDir.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdDiscHosts.h"
#include "prndeck/core/PrdDiscNets.h"

#include <arpa/inet.h>
#include <cstdint>
#include <cstring>

enum { TEXTS = 5 }; // the new list, both records of the old one, the addresses, the hosts
static const char *const Keys[TEXTS - 1] = {"SubnetList", "SubnetMask", "Subnets", "IPaddr"};

static void WriteRecords(const std::string texts[TEXTS]) {
    static DbmRecord record;
    FILE *out = fopen((FuzzDirectory() + "/tool/db/IPDisc.xdb").c_str(), "we");
    Require(out != nullptr);
    for (int i = 0; i < TEXTS - 1; i++) {
        size_t key = strlen(Keys[i]) + 1;
        std::string text = texts[i].substr(0, DBM_BODY_MAX - DBM_WORD - key);
        if (text.empty()) continue;
        auto length = static_cast<uint16_t>(key);
        record.L = static_cast<uint16_t>(DBM_WORD + key + text.size());
        memcpy(record.body, &length, DBM_WORD);
        memcpy(record.body + DBM_WORD, Keys[i], key);
        memcpy(record.body + DBM_WORD + key, text.data(), text.size());
        Require(PutData(out, &record) != 0);
    }
    Require(fclose(out) == 0);
}

static void CheckSubnets() {
    for (int i = 1; const SubnetEntry *entry = GetSubnet(i); i++) {
        in_addr word;
        Require(inet_aton(entry->Address, &word) && inet_aton(entry->Mask, &word));
        Require(strspn(entry->Address, "0123456789.") == strlen(entry->Address));
    }
}

static void CheckHostName(const char *address) {
    char *name;
    PrdGetHostNameS(address, &name);
    Require(*name && strspn(name, "-._:0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz") ==
                         strlen(name));
    PutMem(name);
}

static void SetUp() {
    static std::string tool = FuzzDirectory() + "/tool";
    static std::string hosts = FuzzDirectory();
    pToolPath = tool.data();
    aHostDirs[0] = aHostDirs[1] = hosts.c_str();
    pGethostbyaddr = [](const void *, socklen_t, int) -> hostent * { return nullptr; };
    std::filesystem::create_directories(tool + "/db");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    SetUp();
    FuzzTool tool;
    std::string texts[TEXTS], all(reinterpret_cast<const char *>(data), size);
    for (size_t i = 0, from = 0; i < TEXTS && from <= all.size(); i++) {
        size_t end = i < TEXTS - 1 ? std::min(all.find('\0', from), all.size()) : all.size();
        texts[i] = all.substr(from, end - from);
        from = end + 1;
    }
    WriteRecords(texts);
    WriteFuzzFile("hosts", texts[TEXTS - 1]);
    ReadSubnetList();
    CheckSubnets();
    Require(BuildDiscoveryList().back() == ',' && BuildSNList().front() == ',');
    ReadIPList();
    AddToIpList("10.0.0.7");
    RemoveFromIpList("10.0.0.7");
    PrdInitHostTableS();
    for (const char *address : {"10.0.0.1", "0", "127.0.0.1"}) CheckHostName(address);
    Require(CheckMem() == nullptr);
    return 0;
}

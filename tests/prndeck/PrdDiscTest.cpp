// Where printers are looked for, what a discovery makes of an answer, and the names of hosts.
#include "prndeck/core/PrdDisc.h"

#include "SnmpPkg/Pkg.h"
#include "common/Dbm.h"
#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "prndeck/core/DiscPkg.h"
#include "prndeck/core/PrdDiscHosts.h"
#include "prndeck/core/PrdDiscNets.h"
#include "prndeck/core/PrdOids.h"
#include "tests/lib/AppTool.h"
#include "tests/lib/Capture.h"

#include <arpa/inet.h>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <net/if.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

// ---- An own host with interfaces as the test wants them

struct Interface {
    const char *name, *address, *mask; // null for one that can't be told
};
static std::vector<Interface> Interfaces;
static bool flNoInterfaces;

static void SetAddress(sockaddr *field, const char *text) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    inet_aton(text, &address.sin_addr);
    memcpy(field, &address, sizeof address);
}

static int TestIoctl(int, unsigned long request, void *argument) {
    errno = EPERM;
    if (request == SIOCGIFCONF) {
        auto *all = static_cast<ifconf *>(argument);
        for (size_t i = 0; i < Interfaces.size(); i++) {
            all->ifc_req[i] = {};
            strcpy(all->ifc_req[i].ifr_name, Interfaces[i].name);
        }
        all->ifc_len = static_cast<int>(Interfaces.size() * sizeof(ifreq));
        return flNoInterfaces ? -1 : 0;
    }
    auto *one = static_cast<ifreq *>(argument);
    for (const Interface &interface : Interfaces) {
        if (strcmp(interface.name, one->ifr_name) != 0) continue;
        const char *text = request == SIOCGIFADDR ? interface.address : interface.mask;
        if (text) SetAddress(request == SIOCGIFADDR ? &one->ifr_addr : &one->ifr_netmask, text);
        return text ? 0 : -1;
    }
    return -1;
}

static std::vector<std::string> Reports;

class Disc : public testing::Test {
protected:
    AppTool tool;
    void SetUp() override {
        DevCount = 0;
        Interfaces = {{"lo", "127.0.0.1", "255.0.0.0"}, {"eth0", "10.0.0.9", "255.255.255.0"}};
        flNoInterfaces = false;
        pDiscIoctl = TestIoctl;
        pDiscReport = [](const char *, const char *text) { Reports.push_back(text); };
        Reports.clear();
        tool.Write("etc/hosts", "");
        hosts = tool.Path("etc");
        aHostDirs[0] = hosts.c_str();
        aHostDirs[1] = "/nonexistent";
        pGethostbyaddr = [](const void *, socklen_t, int) -> hostent * { return nullptr; };
        Restart();
    }
    // The lists as a new run of the program finds them.
    void Restart() {
        PutMem(pIpList);
        PutMem(pIpListMod);
        pIpList = pIpListMod = nullptr;
        ClearSubnetList();
    }
    static std::string Subnets() {
        std::string out;
        for (int i = 1; const SubnetEntry *entry = GetSubnet(i); i++)
            out += std::string(entry->Address) + "/" + entry->Mask + (entry->Enabled ? "+" : "-") +
                   (entry->UserAdded ? "u " : "i ");
        return out;
    }
    static std::string Stored(const char *key) {
        char text[256] = "";
        DbmGetRecord("IPDisc", key, text, sizeof text - 1);
        return text;
    }
    static SubnetEntry Entry(const char *address, const char *mask, int enabled = 1, int user = 1) {
        SubnetEntry entry = {};
        strcpy(entry.Address, address);
        strcpy(entry.Mask, mask);
        entry.Enabled = enabled;
        entry.UserAdded = user;
        return entry;
    }
    std::string hosts;
};

// ---- The lists

TEST_F(Disc, AFirstRunStoresTheInterfacesAndALaterOneKeepsTheUsersSettings) {
    InitPkgDisc();
    EXPECT_EQ(Subnets(), "10.0.0.9/255.255.255.0+i ");
    EXPECT_EQ(Stored("SubnetList"), "10.0.0.9,255.255.255.0,1,0\n");
    EXPECT_STREQ(pPreferredWB, "netscape");

    SubnetEntry off = Entry("10.0.0.9", "255.255.255.0", 0, 0), own = Entry("10.9.0.0", "255.255.0.0");
    UpdateSubnetList(&off, SUBNET_REPLACE);
    UpdateSubnetList(&own, SUBNET_REPLACE);
    EXPECT_EQ(WriteSNListToDatabase() + AddToIpList("10.5.0.7") + WriteIPListToDatabase() +
                  WriteBrowser("lynx -x"),
              3);
    Restart();
    Interfaces.push_back({"eth1", "10.8.0.1", "255.255.255.0"});
    InitPkgDisc();
    EXPECT_EQ(Subnets(), "10.0.0.9/255.255.255.0-i 10.9.0.0/255.255.0.0+u 10.8.0.1/255.255.255.0+i ");
    EXPECT_EQ(BuildDiscoveryList(), ",10.9.0.0 255.255.0.0,10.8.0.1 255.255.255.0,");
    EXPECT_STREQ(pIpList, ",10.5.0.7,");
    EXPECT_STREQ(pPreferredWB, "lynx -x");
}

TEST_F(Disc, AUserWhoMayNotStoreHasTheListsForTheRun) {
    if (geteuid()) GTEST_SKIP() << "needs root";
    flDbmShared = false;
    ASSERT_EQ(seteuid(65534), 0);
    testing::internal::CaptureStderr();
    InitPkgDisc();
    int stored = AddToIpList("10.5.0.7") + WriteIPListToDatabase() + WriteBrowser("lynx -x");
    ReadIPList();
    std::string errors = testing::internal::GetCapturedStderr();
    ASSERT_EQ(seteuid(0), 0);
    flDbmShared = true;
    EXPECT_EQ(errors, "");
    EXPECT_EQ(stored, 2);
    EXPECT_EQ(Subnets(), "10.0.0.9/255.255.255.0+i ");
    EXPECT_STREQ(pIpList, ",10.5.0.7,");
    EXPECT_EQ(access(tool.Db("IPDisc").c_str(), F_OK), -1);
}

TEST_F(Disc, RecordsOfAllKindsAreRead) {
    struct {
        Records records;
        const char *want;
    } cases[] = {
        {{{"SubnetList", "1.2.3.4,255.0.0.0,01,yes\n5.6.7.8,255.0.0.0,1,1\n"}},
         "1.2.3.4/255.0.0.0-i 5.6.7.8/255.0.0.0+u "},
        {{{"SubnetList", "1.2.3.4,255.0.0.0,1,1 1.2.3.4,255.255.0.0,1,0"}},
         "1.2.3.4/255.0.0.0+u 1.2.3.4/255.255.0.0+i "},
        {{{"SubnetList",
           "1.2.3.4\nno,255.0.0.0,1,1\n,,,\n123.123.123.1234567890,255.0.0.0,1,1\n%n%s,1,1,1\n"}},
         ""},
        {{{"SubnetList", "\n"}, {"SubnetMask", "255.0.0.0"}, {"Subnets", "1.2.3.4"}}, ""},
        {{{"SubnetMask", "255.255.0.0"}, {"Subnets", "*10.1.0.0*10.2.0.0,10.3.0.0"}},
         "10.1.0.0/255.255.0.0+u 10.2.0.0/255.255.0.0+u 10.3.0.0/255.255.0.0+u "},
        {{{"SubnetMask", "255.255.0.0"}}, ""},
    };
    for (const auto &c : cases) {
        tool.WriteDb("IPDisc", c.records);
        ReadSubnetList();
        EXPECT_EQ(Subnets(), c.want) << c.records[0].second;
    }
    tool.WriteDb("IPDisc", {{"IPaddr", "10.0.0.9*10.0.0.10,9.0.0.1"}});
    ReadIPList();
    EXPECT_STREQ(pIpList, ",10.0.0.10,10.0.0.9,9.0.0.1,");
}

TEST_F(Disc, AnEmptiedListStaysEmptyAndAnUnchangedOneIsNotWritten) {
    tool.WriteDb("IPDisc", {{"SubnetMask", "255.255.0.0"}, {"Subnets", "10.1.0.0"}});
    ReadSubnetList();
    SubnetEntry entry = *GetSubnet(1);
    DeleteSubnetListEntry(&entry);
    EXPECT_EQ(WriteSNListToDatabase(), 1);
    ReadSubnetList();
    EXPECT_EQ(Subnets(), "");

    UpdateSubnetList(&entry, SUBNET_APPEND);
    EXPECT_EQ(WriteSNListToDatabase(), 1);
    struct stat before, after;
    ASSERT_EQ(stat(tool.Db("IPDisc").c_str(), &before), 0);
    EXPECT_EQ(WriteSNListToDatabase(), 1);
    ASSERT_EQ(stat(tool.Db("IPDisc").c_str(), &after), 0);
    EXPECT_EQ(before.st_ino, after.st_ino);
}

TEST_F(Disc, ADamagedFileIsKeptBesideTheNewOne) {
    tool.WriteDb("IPDisc", {{"FavBrowser", "lynx"}, {"SubnetList", "10.1.0.0,255.255.0.0,1,1\n"}});
    std::string whole = ReadWhole(tool.Db("IPDisc"));
    std::string damaged = whole.substr(0, whole.size() - 5) + std::string(300, 'x');
    tool.Write("db/IPDisc.xdb", damaged);
    Capture capture;
    InitPkgDisc();
    EXPECT_EQ(Subnets() + pPreferredWB, "10.0.0.9/255.255.255.0+i lynx");
    EXPECT_EQ(Stored("SubnetList") + Stored("FavBrowser"), "10.0.0.9,255.255.255.0,1,0\nlynx");
    EXPECT_EQ(ReadWhole(tool.Path("db/IPDisc.xdb_damaged")), damaged);
}

TEST_F(Disc, EntriesAreAddedReplacedAndRemoved) {
    for (int i = 0; i < 25; i++) { // beyond the room of the first two growths
        SubnetEntry entry = Entry(("10.0.0." + std::to_string(i)).c_str(), "255.0.0.0", 1, i % 2);
        UpdateSubnetList(&entry, SUBNET_IF_NEW);
        UpdateSubnetList(&entry, SUBNET_IF_NEW);
    }
    ClearScannedSubnets();
    EXPECT_EQ(SubnetCount, 12);
    for (int i = 0; i < 10; i++) DeleteSubnetListEntry(GetSubnet(1));
    SubnetEntry entry = *GetSubnet(1), other = Entry(entry.Address, "255.255.0.0", 1, 0);
    entry.Enabled = 0;
    UpdateSubnetList(&other, SUBNET_REPLACE); // another mask is another subnet
    UpdateSubnetList(&entry, SUBNET_IF_NEW);
    EXPECT_EQ(Subnets(), "10.0.0.21/255.0.0.0+u 10.0.0.23/255.0.0.0+u 10.0.0.21/255.255.0.0+i ");
    UpdateSubnetList(&entry, SUBNET_REPLACE);
    DeleteSubnetListEntry(&other); // of an interface
    EXPECT_EQ(Subnets(), "10.0.0.21/255.0.0.0-u 10.0.0.23/255.0.0.0+u 10.0.0.21/255.255.0.0+i ");
}

TEST_F(Disc, FailuresOfTheScanAreToldWhenTheyAreAskedFor) {
    struct {
        const char *what;
        std::vector<Interface> interfaces;
        int report;
        size_t reports;
        const char *said;
    } cases[] = {
        {"no address", {{"eth0", nullptr, "255.0.0.0"}}, 1, 1, "Get Address: "},
        {"in silence", {{"eth0", nullptr, "255.0.0.0"}}, 0, 0, ""},
        {"no mask", {{"eth0", "10.0.0.1", nullptr}}, 0, 0, "Get Netmask: "},
        {"no answer", {}, 0, 0, "Determining Network Interface Configuration: "},
    };
    for (const auto &c : cases) {
        Interfaces = c.interfaces;
        flNoInterfaces = c.interfaces.empty();
        Reports.clear();
        Capture capture;
        EXPECT_EQ(SniffInterfaces(c.report), 1) << c.what;
        EXPECT_EQ(capture.Err().substr(0, strlen(c.said)), c.said) << c.what;
        EXPECT_EQ(Reports.size(), c.reports) << c.what;
        EXPECT_EQ(SubnetCount, 0) << c.what;
    }
    flNoInterfaces = false;
    Interfaces = {{"lo:1", "10.0.0.1", "255.0.0.0"}, {"tun0", "127.3.0.1", "255.0.0.0"}};
    EXPECT_EQ(SniffInterfaces(1), 0);
    EXPECT_EQ(SubnetCount, 0) << "loopbacks";
}

TEST_F(Disc, AddressesAreCheckedSortedAndRemoved) {
    const std::pair<const char *, int> cases[] = {{"0.1.2.3", IP_REFUSED}, {"10.0.0.x", IP_REFUSED},
                                                  {"223.1.1.1", IP_ADDED}, {"15.1.1.1", IP_ADDED},
                                                  {"5.1.1.1", IP_ADDED},   {"5.1.257", IP_KNOWN}};
    for (auto [text, want] : cases) EXPECT_EQ(AddToIpList(text), want) << text;
    EXPECT_STREQ(GetIpList(), ",15.1.1.1,223.1.1.1,5.1.1.1,");
    RemoveFromIpList("5.1.1.1");
    RemoveFromIpList("3.1.1.1");
    RemoveFromIpList(nullptr);
    EXPECT_STREQ(GetIpList(), ",15.1.1.1,223.1.1.1,");
    EXPECT_EQ(pIpList, nullptr) << "a change is not in force before it is stored and read back";
}

// ---- The host table

TEST_F(Disc, HostsHaveTheNamesOfTheFileThenOfTheServer) {
    tool.Write(
        "etc/hosts",
        "10.0.0.1 one two\n#10.0.0.2 no\n 10.0.0.3\tthree # c\n10.0.0.4\n10.0.0.5 a;b\n10.0.0.6 x.y-z_1");
    PrdInitHostTableS();
    static hostent Host = {};
    static char Name[] = "by-server", Bad[] = "$(reboot)";
    static int Asked;
    pGethostbyaddr = [](const void *address, socklen_t, int) -> hostent * {
        Asked++;
        int last = static_cast<const unsigned char *>(address)[3];
        Host.h_name = last == 9 ? Bad : Name;
        return last >= 8 ? &Host : nullptr;
    };
    const std::pair<const char *, const char *> cases[] = {
        {"10.0.0.1", "one"},       {"10.0.0.2", "10.0.0.2"}, {"10.0.0.3", "three"},
        {"10.0.0.4", "10.0.0.4"},  {"10.0.0.5", "10.0.0.5"}, {"10.0.0.6", "x.y-z_1"},
        {"10.0.0.8", "by-server"}, {"10.0.0.9", "10.0.0.9"}};
    for (auto [address, want] : cases) {
        char *name;
        PrdGetHostNameS(address, &name);
        EXPECT_STREQ(name, want);
        PutMem(name);
    }
    EXPECT_EQ(Asked, 4);
}

// NIS goes before the file where its answer begins with an address.
TEST_F(Disc, HostsHaveTheNamesOfNisWhereItAnswers) {
    const struct {
        const char *answer, *want;
    } cases[] = {{"10.0.0.1 nis other\\n10.0.0.2\\tsecond\\n", "nis second "},
                 {"10.x no map\\n", "file 10.0.0.2 "},
                 {"ypcat: no domain\\n", "file 10.0.0.2 "},
                 {"", "file 10.0.0.2 "}};
    tool.Write("etc/hosts", "10.0.0.1 file\n");
    std::string bin = tool.Path("etc");
    ComList[CMD_YPCAT].path = bin.c_str();
    for (const auto &c : cases) {
        std::string script = tool.Write("etc/ypcat", std::string("#!/bin/sh\necho broken >&2\n"
                                                                 "[ \"$*\" = hosts ] && printf '") +
                                                         c.answer + "'\n");
        chmod(script.c_str(), 0755);
        PrdInitHostTableS();
        std::string names;
        for (const char *address : {"10.0.0.1", "10.0.0.2"}) {
            char *name;
            PrdGetHostNameS(address, &name);
            names += std::string(name) + " ";
            PutMem(name);
        }
        EXPECT_EQ(names, c.want) << c.answer;
    }
    ComList[CMD_YPCAT].path = nullptr;
}

TEST_F(Disc, ADeadNameServerIsAskedOnce) {
    static int Asked;
    pGethostbyaddr = [](const void *, socklen_t, int) -> hostent * {
        Asked++;
        usleep(NAME_SERVER_PATIENCE * 1000000 + 10000);
        return nullptr;
    };
    PrdInitHostTableS();
    for (int run = 1; run <= 2; run++) {
        ResetNameServers();
        for (const char *address : {"10.0.0.1", "10.0.0.2", "10.0.0.3"}) {
            char *name;
            PrdGetHostNameS(address, &name);
            PutMem(name);
        }
        EXPECT_EQ(Asked, run);
    }
}

// ---- What a discovery makes of an answer

// A host's values by the number of their variable; those that are missing did not come.
static void Found(const char *address, const std::map<int, std::string> &values,
                  int hardwareType = VT_STRING) {
    static SnmpPackage package;
    static std::map<int, std::string> texts;
    texts = values;
    SnmpSetup(&package, PKG_INIT, PKG_EMPTY_LIST, OidSysObjectId, OidSysName, OidSysDescr, OidHrDeviceDescr,
              OidIfPhysAddress, OidLocalizationCharacterSet, nullptr);
    InitRecVars(&package);
    for (auto &[n, text] : texts) {
        PkgVar *var = &package.Vars[n];
        var->Status = SUCCESS;
        var->RecType = static_cast<uint8_t>(hardwareType);
        var->RecText = var->RecData = text.data();
        var->RecValue = static_cast<intptr_t>(text.size());
    }
    PkgSource source = {};
    strcpy(source.Address, address);
    PrdSnmpPkgCB(0, 0, 0, 0, &package, &source);
}

TEST_F(Disc, APrinterIsEnteredOnceWithItsTexts) {
    tool.Write("etc/hosts", "10.0.0.1 host1\n");
    PrdInitHostTableS();
    const std::string text127(127, 'd'), wide = std::string(122, 'd') + "\xE2\x82\xAC\xC3\xA9\xC3\xA9";
    Found("10.0.0.1", {{1, "%s%n"}, {3, text127}, {4, std::string("\x02\0\x5e\xff\x10\x07", 6)}});
    Found("10.0.0.1", {{1, "again"}});
    Found("10.0.0.2", {{1, ""}, {3, text127 + "d"}, {4, "12345"}});
    Found("10.0.0.3", {{1, "n"}, {3, wide}, {4, "123456"}}, VT_NUMBER);
    Found("10.0.0.4", {});
    struct {
        std::string name, host, description, hardware;
    } const want[] = {{"%s%n", "host1", text127, "02:00:5e:ff:10:07"},
                      {"10.0.0.2", "10.0.0.2", std::string(124, 'd') + "...", "00:00:00:00:00:00"},
                      {"n", "10.0.0.3", std::string(122, 'd') + "...", "00:00:00:00:00:00"},
                      {"______________", "10.0.0.4", "______________", "00:00:00:00:00:00"}};
    ASSERT_EQ(DevCount, 4);
    for (int i = 0; i < DevCount; i++) {
        EXPECT_EQ(prnData[i]->Name, want[i].name);
        EXPECT_EQ(prnData[i]->HostName, want[i].host);
        EXPECT_EQ(prnData[i]->Description, want[i].description);
        EXPECT_EQ(prnData[i]->HwAddress, want[i].hardware);
        EXPECT_EQ(prnData[i]->Flags, static_cast<uint32_t>(PRN_DISCOVERED));
    }
    prnData[0]->Flags |= PRN_WEB; // of a printer that is gone at the next discovery
    DevCount = 0;
    Found("10.0.0.7", {});
    EXPECT_EQ(prnData[0]->Flags, static_cast<uint32_t>(PRN_DISCOVERED));
}

// Whole exchanges against an agent on loopback: who is asked what, in which order, and what is left in the
// package.
#include "SnmpPkg/Encode.h"
#include "SnmpPkg/Pkg.h"
#include "SnmpPkg/Udp.h"
#include "common/MemMgr.h"
#include "tests/lib/SnmpAgent.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstring>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

static const char Name[] = "1.3.6.1.2.1.1.5.0", Location[] = "1.3.6.1.2.1.1.6.0",
                  Contact[] = "1.3.6.1.2.1.1.4.0";

// Notes every callback as a line "ADDRESS text0 text1 ...", with - for a text that is not filled.
static std::string Called;
static int NoteCall(int error, intptr_t userData, int status, int index, SnmpPackage *package,
                    PkgSource *source) {
    EXPECT_TRUE(userData == 0x1234 && error == 0);
    Called += reinterpret_cast<char *>(source) + 2;
    for (int i = 0; i < package->NumVars; i++)
        Called += std::string(" ") + (*package->Vars[i].RecText == '_' ? "-" : package->Vars[i].RecText);
    if (status != 0) Called += " error " + std::to_string(status) + " at " + std::to_string(index);
    Called += "\n";
    return 1;
}

static SnmpPackage package;

// Three variables and a second to wait; the agent's port is the one that is asked.
static void Prepare(SnmpAgent &agent) {
    SnmpAgentPort = SnmpTrapPort = agent.Port();
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_CALLBACK, NoteCall, PKG_USERDATA,
                        reinterpret_cast<void *>(0x1234), PKG_EMPTY_LIST, Name, Location, Contact, nullptr),
              SUCCESS);
    package.Timeout = 1;
}

template <class... T>
static int Send(int mode, int pdu, const char *addresses, T... more) {
    Called.clear();
    int code = SnmpSend(&package, PKG_SENDMODE, mode, PKG_PDU, pdu, PKG_ADDRESSES, addresses, more...);
    EXPECT_EQ(package.Socket, 0);
    return code;
}

template <class... T>
static int Get(const char *addresses, T... more) {
    return Send(PKG_MODE_GET, PDU_GET, addresses, more...);
}

static void AnswerName(SnmpAgent &agent, const AgentRequest &request) {
    agent.Answer(request, BerElement(0x04, request.to.substr(8) + "/" + request.name.substr(14)));
}

TEST(Engine, TwoTargetsOneAfterTheOther) {
    SnmpAgent agent(AnswerName);
    Prepare(agent);
    EXPECT_EQ(Get(",127.0.0.2,,127.0.0.3 255.255.255.0,"), SUCCESS); // the mask counts for nothing
    EXPECT_EQ(Called, "127.0.0.2 2/5.0 2/6.0 2/4.0\n127.0.0.3 3/5.0 3/6.0 3/4.0\n");
    std::string asked;
    for (const AgentRequest &r : agent.Requests()) asked += r.to + r.community + std::to_string(r.id) + " ";
    EXPECT_EQ(asked, "127.0.0.2rdcomm1 127.0.0.2rdcomm2 127.0.0.2rdcomm3 "
                     "127.0.0.3rdcomm1 127.0.0.3rdcomm2 127.0.0.3rdcomm3 ");
    EXPECT_EQ(pMemB, nullptr); // the first piece of managed memory would have made a block
}

TEST(Engine, WhatAHostDoesNotAnswer) {
    SnmpAgent agent([](SnmpAgent &from, const AgentRequest &request) {
        if (request.name == Name) AnswerName(from, request);
        if (request.name == Contact)
            from.Send(request, BerResponse(3, BerBinding(Contact, BerElement(5, "")), 2, 1));
    });
    Prepare(agent);
    EXPECT_EQ(Get("127.0.0.2", PKG_FILTER, "($1)"), SUCCESS);
    EXPECT_EQ(Called, ""); // the filter stands before the callback
    EXPECT_EQ(package.Vars[1].Status, SEND_ERR_TIMED_OUT);
    EXPECT_EQ(package.Vars[2].Status, SEND_DATA_NOT_FILLED); // an error status fills nothing
    EXPECT_EQ(Get("127.0.0.2", PKG_FILTER, "($0)"), SUCCESS);
    EXPECT_EQ(Called, "127.0.0.2 2/5.0 - -\n");
    EXPECT_EQ(agent.Count(), 6); // one attempt each
}

// What comes for host 3 ahead of its own answers when a host before it is late, and the seconds that go by.
TEST(Engine, AnswersThatComeForAnotherVariable) {
    static const std::string Nothing = BerElement(5, ""), Late = BerElement(0x04, "late");
    struct Case {
        const char *what;
        std::vector<std::string> ahead; // of the answer to the first variable
        const char *silent, *refused;   // names without an answer, and with an error
        int pdu;
        const char *want;
        int seconds;
    } cases[] = {
        {"own answers win",
         {BerResponse(2, BerBinding(Location, Late))},
         "",
         "",
         PDU_GET,
         "3/5.0 3/6.0 3/4.0",
         0},
        {"two in front",
         {BerResponse(3, BerBinding(Contact, Late)), BerResponse(2, BerBinding(Location, Nothing), 5, 1)},
         "",
         "",
         PDU_GET,
         "3/5.0 3/6.0 3/4.0",
         0},
        {"a stranger",
         {BerResponse(2, BerBinding("1.3.6.1.9", Late))},
         "",
         "",
         PDU_SET,
         "3/5.0 3/6.0 3/4.0",
         0},
        {"one wait for what is missing",
         {BerResponse(2, BerBinding(Location, Late)), BerResponse(3, BerBinding(Contact, Late))},
         Location,
         "",
         PDU_GET,
         "3/5.0 late 3/4.0",
         1},
        {"the error is the answer", {}, "", Location, PDU_GET, "3/5.0 - 3/4.0", 0},
        {"silence alone is not waited for again", {}, Name, "", PDU_GET, "- 3/6.0 3/4.0", 1},
        {"junk names nothing", {"junk", BerResponse(1, "")}, "", "", PDU_GET, "3/5.0 3/6.0 -", 0},
        {"the next one has another name",
         {BerResponse(1, BerBinding(Location, Late))},
         "",
         "",
         PDU_GETNEXT,
         "3/5.0 3/6.0 -",
         0},
    };
    for (const Case &c : cases) {
        SnmpAgent agent([&c](SnmpAgent &from, const AgentRequest &request) {
            if (request.name == Name)
                for (const std::string &bytes : c.ahead) from.Send(request, bytes, "127.0.0.2");
            if (request.name == c.refused)
                from.Send(request, BerResponse(request.id, BerBinding(request.name, Nothing), 2, 1));
            else if (request.name != c.silent)
                AnswerName(from, request);
        });
        Prepare(agent);
        int64_t start = UdpMilliseconds();
        EXPECT_EQ(Send(PKG_MODE_GET, c.pdu, "127.0.0.3"), SUCCESS);
        EXPECT_EQ((UdpMilliseconds() - start) / 1000, c.seconds) << c.what;
        EXPECT_EQ(Called.substr(Called.find(' ') + 1), c.want + std::string("\n")) << c.what;
        EXPECT_LE(agent.Count(), 3) << c.what; // one attempt each; the last may be unread yet
    }
}

// Rows 9 to 11 of two columns, the second with a hole; then an agent without an end.
TEST(Engine, Tables) {
    int rows = 11;
    SnmpAgent agent([&rows](SnmpAgent &from, const AgentRequest &request) {
        int row = atoi(request.name.c_str() + request.name.rfind('.') + 1);
        if (row > rows || (request.name[8] == '2' && row == 10))
            from.Send(request, BerResponse(request.id, BerBinding(request.name, BerElement(5, "")), 2, 1));
        else
            from.Answer(request, BerInt(row));
    });
    auto walk = [&](const char *addresses, int command) {
        Prepare(agent);
        package.NumVars = 0;
        SnmpSetup(&package, command, "1.3.6.1.1.9", command, "1.3.6.1.2.9");
        return Send(PKG_MODE_GET, PDU_TABLE, addresses);
    };
    EXPECT_EQ(walk("127.0.0.2,127.0.0.3", PKG_TABLE_NAME), SUCCESS);
    EXPECT_EQ(Called, "127.0.0.2 9 9\n127.0.0.2 10 -\n127.0.0.2 11 11\n"
                      "127.0.0.3 9 9\n127.0.0.3 10 -\n127.0.0.3 11 11\n");
    EXPECT_EQ(agent.Count(), 2 * 4 * 2);
    // A name without room to grow ends the walk where it would have to.
    walk("127.0.0.2", PKG_EMPTY);
    EXPECT_EQ(Called, "127.0.0.2 9 9\n");
    Prepare(agent);
    package.NumVars = 0;
    Send(PKG_MODE_GET, PDU_TABLE, "127.0.0.2");
    EXPECT_EQ(Called, "");
    rows = 1 << 30;
    walk("127.0.0.2", PKG_TABLE_NAME);
    EXPECT_EQ(std::count(Called.begin(), Called.end(), '\n'), PKG_TABLE_ROWS);
}

// ---- The discovered set

TEST(Discovered, ABroadcastFindsEveryHostOnce) {
    SnmpAgent agent([](SnmpAgent &from, const AgentRequest &request) {
        if (request.to != "127.255.255.255") return AnswerName(from, request);
        for (const char *host : {"127.0.0.9", "127.0.0.8", "127.0.0.9"}) from.Send(request, "whatever", host);
    });
    Prepare(agent);
    std::string want = "127.0.0.8 8/5.0 8/6.0 8/4.0\n127.0.0.9 9/5.0 9/6.0 9/4.0\n";
    EXPECT_EQ(Send(PKG_MODE_BROADCAST, PDU_GET, "127.0.0.0 255.0.0.0,127.0.0.0 255.0.0.0"), 3);
    EXPECT_EQ(Called, want);
    ASSERT_EQ(agent.Count(), 2 + 6);
    EXPECT_EQ(agent.Requests()[0].name, Name); // the first variable alone
    // Without PKG_CLEAR_DISCOVERED what was found before is read again, also with an empty list.
    EXPECT_EQ(Send(PKG_MODE_BROADCAST, PDU_GET, ""), SUCCESS);
    EXPECT_EQ(Called, want);
    EXPECT_EQ(Send(PKG_MODE_BROADCAST, PDU_GET, "", PKG_CLEAR_DISCOVERED), SUCCESS);
    EXPECT_EQ(Called, "");
}

// As many answers at once as a large site gives: none is lost between the probe and the first read.
TEST(Discovered, ABurstOfAThousandAnswers) {
    SnmpAgent agent([](SnmpAgent &from, const AgentRequest &request) {
        for (int i = 0; i < 1000; i++)
            from.Send(request, std::string(140, 'n'),
                      "127.3." + std::to_string(i / 250) + "." + std::to_string(i % 250 + 1));
    });
    Prepare(agent);
    int size = 4 << 20, probe = socket(AF_INET, SOCK_DGRAM, 0);
    bool granted = setsockopt(probe, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) == 0;
    close(probe);
    if (!granted) GTEST_SKIP() << "this user gets no receive buffer that holds them";
    PkgPacket packet;
    ASSERT_EQ(UdpOpenSocket(&package), 1);
    ASSERT_EQ(EncodePkg(&package, &packet), SUCCESS);
    ASSERT_EQ(UdpSendPacketBinAdr(&package, htonl(INADDR_LOOPBACK), &packet), SUCCESS);
    while (agent.Count() == 0) usleep(1000);
    usleep(500000); // nobody reads while they arrive
    EXPECT_EQ(ReceiveBroadcast(&package), 1000);
    UdpCloseSocket(&package);
}

// A host that never falls silent does not hold the program.
TEST(Discovered, ADripOfAnswersEnds) {
    std::atomic<bool> stop{false};
    SnmpAgent agent([&](SnmpAgent &from, const AgentRequest &request) {
        for (; !stop; usleep(200000)) from.Send(request, "drip", "127.0.0.9");
    });
    Prepare(agent);
    package.Timeout = 0;
    SnmpBroadcastLimit = 2;
    int64_t start = UdpMilliseconds();
    EXPECT_GE(Send(PKG_MODE_BROADCAST, PDU_GET, "127.0.0.0 255.0.0.0", PKG_CLEAR_DISCOVERED), 5);
    int64_t spent = UdpMilliseconds() - start;
    stop = true;
    SnmpBroadcastLimit = 60;
    EXPECT_TRUE(spent >= 1900 && spent < 4000) << spent;
}

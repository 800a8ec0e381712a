// Whole exchanges against an agent on loopback: who is asked what, in which order, and what is left in the
// package.
#include "SnmpPkg/Encode.h"
#include "SnmpPkg/Pkg.h"
#include "SnmpPkg/Udp.h"
#include "common/MemMgr.h"
#include "tests/lib/SnmpAgent.h"

#include <algorithm>
#include <arpa/inet.h>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

static const char Name[] = "1.3.6.1.2.1.1.5.0", Location[] = "1.3.6.1.2.1.1.6.0",
                  Contact[] = "1.3.6.1.2.1.1.4.0";

// Notes every callback as "ADDRESS text0 text1 ...".
static std::vector<std::string> Called;
static int NoteCall(int error, intptr_t userData, int status, int index, SnmpPackage *package,
                    PkgSource *source) {
    EXPECT_EQ(error, 0);
    EXPECT_EQ(userData, 0x1234);
    std::string line = reinterpret_cast<char *>(source) + 2;
    for (int i = 0; i < package->NumVars; i++) line += std::string(" ") + package->Vars[i].RecText;
    if (status != 0) line += " error " + std::to_string(status) + " at " + std::to_string(index);
    Called.push_back(line);
    return 1;
}
static void *const UserData = reinterpret_cast<void *>(0x1234);

static SnmpPackage package;

// Three variables and a second to wait; the agent's port is the one that is asked.
static void Prepare(SnmpAgent &agent, int timeout = 1) {
    SnmpAgentPort = agent.Port();
    Called.clear();
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_CALLBACK, NoteCall, PKG_USERDATA, UserData, PKG_EMPTY_LIST,
                        Name, Location, Contact, nullptr),
              SUCCESS);
    package.Timeout = timeout;
}

template <class... T>
static int Get(const char *addresses, T... more) {
    int code =
        SnmpSend(&package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, PDU_GET, PKG_ADDRESSES, addresses, more...);
    EXPECT_EQ(package.Socket, 0);
    return code;
}

static void AnswerName(SnmpAgent &agent, const AgentRequest &request) {
    agent.Answer(request, BerElement(0x04, request.to + "/" + request.name.substr(14)));
}

TEST(Engine, TwoTargetsOneAfterTheOther) {
    SnmpAgent agent(AnswerName);
    Prepare(agent);
    EXPECT_EQ(Get(",127.0.0.2,,127.0.0.3 255.255.255.0,"), SUCCESS);
    std::vector<std::string> want = {"127.0.0.2 127.0.0.2/5.0 127.0.0.2/6.0 127.0.0.2/4.0",
                                     "127.0.0.3 127.0.0.3/5.0 127.0.0.3/6.0 127.0.0.3/4.0"};
    EXPECT_EQ(Called, want);
    std::vector<AgentRequest> asked = agent.Requests();
    ASSERT_EQ(asked.size(), 6u);
    for (size_t i = 0; i < asked.size(); i++) {
        EXPECT_EQ(asked[i].to, i < 3 ? "127.0.0.2" : "127.0.0.3"); // the mask counts for nothing
        EXPECT_EQ(asked[i].id, static_cast<int>(i % 3) + 1);
        EXPECT_EQ(asked[i].pdu, 0);
        EXPECT_EQ(asked[i].community, "rdcomm");
        EXPECT_EQ(asked[i].value, std::string("\x05\x00", 2));
    }
    EXPECT_EQ(package.Port, agent.Port());
}

TEST(Engine, WhatAHostDoesNotAnswer) {
    SnmpAgent agent([](SnmpAgent &from, const AgentRequest &request) {
        if (request.name == Name) AnswerName(from, request);
        if (request.name == Contact)
            from.Send(request, BerResponse(3, BerBinding(Contact, BerElement(5, "")), 2, 1));
    });
    Prepare(agent);
    EXPECT_EQ(Get("127.0.0.2", PKG_FILTER, "($1)"), SUCCESS);
    EXPECT_TRUE(Called.empty()); // the filter stands before the callback
    EXPECT_EQ(package.Vars[0].Status, SUCCESS);
    EXPECT_EQ(package.Vars[1].Status, SEND_ERR_TIMED_OUT);
    EXPECT_EQ(package.Vars[2].Status, SEND_DATA_NOT_FILLED); // an error status fills nothing
    EXPECT_STREQ(package.Vars[1].RecText, "______________");
    EXPECT_EQ(Get("127.0.0.2", PKG_FILTER, "($0)"), SUCCESS);
    EXPECT_EQ(Called.size(), 1u);
    EXPECT_EQ(agent.Count(), 6); // one attempt each
}

TEST(Engine, LateForeignAndDamagedDatagrams) {
    // Nothing at first; then the late answer with the one that was due, which the last receive takes.
    SnmpAgent late([](SnmpAgent &from, const AgentRequest &request) {
        if (request.id == 1) return;
        if (request.id == 2) from.Send(request, BerResponse(1, BerBinding(Name, BerElement(4, "late"))));
        from.Answer(request, BerElement(4, "due"));
    });
    Prepare(late);
    EXPECT_EQ(Get("127.0.0.2"), SUCCESS);
    EXPECT_EQ(Called, std::vector<std::string>{"127.0.0.2 late due ______________"});
    EXPECT_EQ(package.Vars[2].Status, SEND_DATA_NOT_FILLED);

    SnmpAgent junk([](SnmpAgent &from, const AgentRequest &request) {
        if (request.id == 1) from.Send(request, "junk", "127.0.0.9");
        if (request.id == 2) from.Send(request, std::string(1401, 'x'));
        if (request.id == 3) from.Send(request, BerResponse(77, BerBinding(Contact, BerInt(5))), "127.0.0.8");
    });
    Prepare(junk);
    EXPECT_EQ(Get("127.0.0.2"), SUCCESS);
    EXPECT_EQ(package.Vars[0].Status, SEND_DATA_NOT_FILLED);
    EXPECT_EQ(package.Vars[1].Status, SEND_ERR_TOO_LARGE);
    EXPECT_EQ(Called,
              std::vector<std::string>{"127.0.0.8 ______________ ______________ 5"}); // last sender, any id
}

TEST(Engine, GetNextAndSet) {
    SnmpAgent agent([](SnmpAgent &from, const AgentRequest &request) {
        if (request.pdu == 1)
            from.Send(request, BerResponse(request.id, BerBinding(request.name + ".1", BerInt(8))));
        if (request.pdu == 3) from.Answer(request, request.value);
    });
    Prepare(agent);
    EXPECT_EQ(
        SnmpSend(&package, PKG_SENDMODE, PKG_MODE_GET_2, PKG_PDU, PDU_GETNEXT, PKG_ADDRESSES, "127.0.0.2"),
        SUCCESS);
    ASSERT_EQ(package.NumRecVars, 6);
    EXPECT_STREQ(package.Vars[4].Name, "1.3.6.1.2.1.1.6.0.1");
    EXPECT_EQ(package.Vars[1].Status, SEND_DATA_NOT_FILLED);
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_STRING, Name, "lobby", PKG_NUMBER, Location, 4), SUCCESS);
    EXPECT_EQ(SnmpSend(&package, PKG_COMMUNITY, "wrcommx", PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, PDU_SET,
                       PKG_ADDRESSES, "127.0.0.2 255.255.255.255"),
              SUCCESS);
    EXPECT_STREQ(package.Vars[0].RecText, "lobby");
    EXPECT_EQ(package.Vars[1].RecValue, 4);
    EXPECT_EQ(agent.Requests().back().community, "wrcommx");
    EXPECT_EQ(agent.Requests().back().to, "127.0.0.2");
}

TEST(Engine, Tables) {
    // Rows 9 to 11 of two columns, the second with a hole; then an agent without an end.
    int rows = 11;
    SnmpAgent agent([&rows](SnmpAgent &from, const AgentRequest &request) {
        int row = atoi(request.name.c_str() + request.name.rfind('.') + 1);
        if (row > rows || (request.name[8] == '2' && row == 10))
            from.Send(request, BerResponse(request.id, BerBinding(request.name, BerElement(5, "")), 2, 1));
        else
            from.Answer(request, BerInt(row));
    });
    SnmpAgentPort = agent.Port();
    auto walk = [&](const char *addresses, int command) {
        Called.clear();
        EXPECT_EQ(SnmpSetup(&package, PKG_INIT, PKG_USERDATA, UserData, command, "1.3.6.1.1.9", command,
                            "1.3.6.1.2.9"),
                  SUCCESS);
        return SnmpSend(&package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, PDU_TABLE, PKG_CALLBACK, NoteCall,
                        PKG_ADDRESSES, addresses);
    };
    EXPECT_EQ(walk("127.0.0.2,127.0.0.3", PKG_TABLE_NAME), SUCCESS);
    std::vector<std::string> want = {"127.0.0.2 9 9", "127.0.0.2 10 ______________", "127.0.0.2 11 11",
                                     "127.0.0.3 9 9", "127.0.0.3 10 ______________", "127.0.0.3 11 11"};
    EXPECT_EQ(Called, want);
    EXPECT_EQ(agent.Count(), 2 * 4 * 2);
    EXPECT_EQ(agent.Requests()[0].pdu, 0);
    EXPECT_EQ(package.Pdu, PDU_TABLE);
    // A name without room to grow ends the walk where it would have to.
    walk("127.0.0.2", PKG_EMPTY);
    EXPECT_EQ(Called.size(), 1u);
    EXPECT_STREQ(package.Vars[1].Name, "1.3.6.1.2.9");
    rows = 1 << 30;
    walk("127.0.0.2", PKG_TABLE_NAME);
    EXPECT_EQ(Called.size(), static_cast<size_t>(PKG_TABLE_ROWS));
    // Without a callback it is one pass with that number.
    package.Callback = nullptr;
    int before = agent.Count();
    EXPECT_EQ(SnmpSend(&package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, PDU_TABLE, PKG_ADDRESSES, "127.0.0.2"),
              SUCCESS);
    EXPECT_EQ(agent.Count(), before + 2);
    EXPECT_EQ(agent.Requests().back().pdu, 2);
}

TEST(Engine, RunsThatSendNothing) {
    SnmpAgent agent(AnswerName);
    Prepare(agent);
    EXPECT_EQ(SnmpSend(nullptr, PKG_SENDMODE, 1), SETUP_ERR_XTL_INIT);
    EXPECT_EQ(SnmpSend(&package, PKG_PDU, 0, PKG_ADDRESSES, "127.0.0.2"), SETUP_ERR_XTL_INIT);
    EXPECT_EQ(SnmpSend(&package, PKG_SENDMODE, 1, PKG_ADDRESSES, "127.0.0.2"), SETUP_ERR_XTL_INIT);
    EXPECT_EQ(SnmpSend(&package, PKG_SENDMODE, 1, PKG_PDU, 0), SETUP_ERR_XTL_INIT);
    EXPECT_EQ(SnmpSendPkg(&package, PKG_SENDMODE, 1, PKG_PDU, 0, 0, PKG_ADDRESSES, "127.0.0.2", PKG_END),
              SETUP_ERR_XTL_INIT);
    for (int command : {PKG_INIT + 0, PKG_LOG + 0, PKG_EMPTY + 0, 30, -1})
        EXPECT_EQ(Get("127.0.0.2", command, 5), SETUP_ERR_INVALID_PARAM) << command;
    EXPECT_EQ(SnmpSend(&package, PKG_SENDMODE, 5, PKG_PDU, 0, PKG_ADDRESSES, "127.0.0.2"),
              SETUP_ERR_INVALID_PARAM);
    EXPECT_EQ(SnmpSend(&package, PKG_SENDMODE, 1, PKG_PDU, 4, PKG_ADDRESSES, "127.0.0.2"),
              SETUP_ERR_INVALID_PARAM);
    EXPECT_EQ(Get("127.0.0.2", PKG_COMMUNITY, std::string(3000, 'c').c_str()), SETUP_ERR_INVALID_PARAM);
    EXPECT_EQ(Get("", PKG_SENDARG, 5), SUCCESS); // an empty list is one
    EXPECT_EQ(Called.size(), 0u);
    // A target that is none is passed by, whole: its first 17 characters would be 127.0.0.2.
    EXPECT_EQ(Get("no.address,127.0.0.00000000002,127.0.0.00000002"), SUCCESS);
    ASSERT_EQ(Called.size(), 3u);
    EXPECT_EQ(Called[0], " ______________ ______________ ______________");
    EXPECT_EQ(Called[1], Called[0]);
    EXPECT_EQ(Called[2].substr(0, 9), "127.0.0.2");
    EXPECT_EQ(agent.Count(), 3);
}

TEST(Engine, NoSocketIsResultTwo) {
    SnmpAgent agent(AnswerName);
    Prepare(agent);
    std::vector<int> taken;
    for (int fd; (fd = open("/dev/null", O_RDONLY)) >= 0;) taken.push_back(fd);
    int code = Get("127.0.0.2");
    for (int fd : taken) close(fd);
    EXPECT_EQ(code, SETUP_ERR_UNKNOWN_CMD);
    EXPECT_EQ(agent.Count(), 0);
}

// The descriptor 0 may be free, and 0 in Socket means none.
TEST(Engine, DescriptorZeroIsNotUsed) {
    SnmpPackage own;
    ASSERT_EQ(SnmpSetup(&own, PKG_INIT), SUCCESS);
    int saved = dup(0);
    close(0);
    EXPECT_EQ(UdpOpenSocket(&own), 1);
    EXPECT_GT(own.Socket, 2);
    int code = 99;
    EXPECT_EQ(UdpGetMaxPacketSize(&own, &code), 1400);
    EXPECT_EQ(code, SUCCESS);
    UdpCloseSocket(&own);
    EXPECT_EQ(own.Socket, 0);
    dup2(saved, 0);
    close(saved);
}

static volatile sig_atomic_t Alarms;

TEST(Engine, ASignalIsNoTimeOut) {
    SnmpAgent agent([](SnmpAgent &from, const AgentRequest &request) {
        usleep(300000);
        AnswerName(from, request);
    });
    Prepare(agent);
    struct sigaction action = {}, old;
    action.sa_handler = [](int) { Alarms = Alarms + 1; };
    sigaction(SIGALRM, &action, &old);
    itimerval every = {{0, 50000}, {0, 50000}}, none = {};
    setitimer(ITIMER_REAL, &every, nullptr);
    EXPECT_EQ(Get("127.0.0.2"), SUCCESS);
    setitimer(ITIMER_REAL, &none, nullptr);
    sigaction(SIGALRM, &old, nullptr);
    EXPECT_GT(Alarms, 5);
    for (int i = 0; i < 3; i++) EXPECT_EQ(package.Vars[i].Status, SUCCESS) << i;
}

TEST(Engine, NoAllocationForPackets) {
    SnmpAgent agent(AnswerName);
    Prepare(agent);
    ASSERT_EQ(pMemB, nullptr);
    for (int i = 0; i < 20; i++) Get("127.0.0.2");
    EXPECT_EQ(pMemB, nullptr); // the first piece of managed memory would have made a block
    EXPECT_EQ(agent.Count(), 60);
}

TEST(Engine, TrapAndSinglePackets) {
    SnmpAgent agent([](SnmpAgent &from, const AgentRequest &request) {
        from.Send(request, BerResponse(1, BerBinding(Name, BerInt(1)), 5, 3));
    });
    Prepare(agent);
    SnmpTrapPort = agent.Port();
    EXPECT_EQ(SnmpSend(&package, PKG_SENDMODE, PKG_MODE_TRAP, PKG_PDU, PDU_GET, PKG_ADDRESSES,
                       "127.0.0.2 255.0.0.0"),
              SEND_ERR_TIMED_OUT); // how the wait for answers ends
    EXPECT_EQ(agent.Count(), 1);
    EXPECT_EQ(agent.Requests()[0].to, "127.0.0.2");
    // A caller with a loop of its own hears of an error status.
    PkgPacket packet;
    ASSERT_EQ(UdpOpenSocket(&package), 1);
    package.SendMode = PKG_MODE_GET;
    ASSERT_EQ(EncodePkg(&package, &packet), SUCCESS);
    EXPECT_EQ(UdpSendPacketBinAdr(&package, htonl(INADDR_LOOPBACK), &packet), SUCCESS);
    EXPECT_EQ(ReceivePacket(&package), SUCCESS);
    EXPECT_EQ(Called, std::vector<std::string>{
                          "127.0.0.1 ______________ ______________ ______________ error 5 at 3"});
    packet.Len = 0;
    EXPECT_EQ(UdpSendPacket(&package, nullptr, &packet), SETUP_ERR_XTL_INIT);
    UdpCloseSocket(&package);
}

// ---- The discovered set

static void Walk(std::vector<std::string> *visited) {
    static std::vector<std::string> *to;
    to = visited;
    SnmpPackage own;
    ASSERT_EQ(SnmpSetup(&own, PKG_INIT), SUCCESS);
    WalkDiscovered(&own, nullptr, [](int, intptr_t, int, int, SnmpPackage *at, PkgSource *) {
        to->push_back(at->Address);
        return 0;
    });
}

TEST(Discovered, AscendingOnceAndClearedInPlace) {
    std::vector<std::string> visited;
    InitDiscoveredList();
    Walk(&visited);
    EXPECT_TRUE(visited.empty());
    const char *stored[] = {"255.255.255.255", "10.0.0.9",  "10.0.0.8", "0.0.0.0",
                            "10.0.0.9",        "9.255.0.1", "10.0.1.0"};
    for (const char *text : stored) {
        in_addr address;
        inet_aton(text, &address);
        EXPECT_EQ(Store(&address), 1) << text;
    }
    Walk(&visited);
    std::vector<std::string> want = {"0.0.0.0",  "9.255.0.1", "10.0.0.8",
                                     "10.0.0.9", "10.0.1.0",  "255.255.255.255"};
    EXPECT_EQ(visited, want);
    unsigned char *bitmap = FirstQuad[10][0][0];
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(bitmap[1], 3); // bits of .8 and .9
    InitDiscoveredList();
    visited.clear();
    Walk(&visited);
    EXPECT_TRUE(visited.empty());
    EXPECT_EQ(FirstQuad[10][0][0], bitmap);
    for (int i = -1; i <= 8; i++) EXPECT_EQ(GetBit(i), i >= 0 && i < 8 ? 1 << i : 0);
}

template <class... T>
static int Broadcast(const char *addresses, T... more) {
    return SnmpSend(&package, PKG_SENDMODE, PKG_MODE_BROADCAST, PKG_PDU, PDU_GET, PKG_ADDRESSES, addresses,
                    more...);
}

TEST(Discovered, ABroadcastFindsEveryHostOnce) {
    SnmpAgent agent([](SnmpAgent &from, const AgentRequest &request) {
        if (request.to != "127.255.255.255") return AnswerName(from, request);
        for (const char *host : {"127.0.0.9", "127.0.0.8", "127.0.0.9"}) from.Send(request, "whatever", host);
    });
    Prepare(agent);
    InitDiscoveredList();
    EXPECT_EQ(Broadcast("127.0.0.0 255.0.0.0,127.0.0.0 255.0.0.0", PKG_FILTER, "($2)"), 3);
    ASSERT_EQ(Called.size(), 2u);
    EXPECT_EQ(Called[0], "127.0.0.8 127.0.0.8/5.0 127.0.0.8/6.0 127.0.0.8/4.0");
    EXPECT_EQ(Called[1].substr(0, 9), "127.0.0.9");
    std::vector<AgentRequest> asked = agent.Requests();
    ASSERT_EQ(asked.size(), 2u + 6u);
    EXPECT_EQ(asked[0].to, "127.255.255.255");
    EXPECT_EQ(asked[0].name, Name); // the first variable alone
    // Without PKG_CLEAR_DISCOVERED what was found before is read again, also with an empty list.
    Called.clear();
    EXPECT_EQ(Broadcast(""), SUCCESS);
    EXPECT_EQ(Called.size(), 2u);
    Called.clear();
    EXPECT_EQ(Broadcast("", PKG_CLEAR_DISCOVERED), SUCCESS);
    EXPECT_EQ(Called.size(), 0u);
    // Without a callback nothing is stored.
    package.Callback = nullptr;
    EXPECT_EQ(Broadcast("127.0.0.0 255.0.0.0"), 0);
    EXPECT_EQ(Broadcast("127.0.0.0 mask"), SEND_ERR_TRANSPORT_ERR);
    EXPECT_EQ(package.Socket, 0);
}

// The receive buffer that this system grants at most.
static int GrantedBuffer() {
    int fd = socket(AF_INET, SOCK_DGRAM, 0);
    int size = 4 << 20;
    socklen_t length = sizeof size;
    if (setsockopt(fd, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) != 0)
        setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
    getsockopt(fd, SOL_SOCKET, SO_RCVBUF, &size, &length);
    close(fd);
    return size;
}

// As many answers at once as a large site gives: none is lost between the probe and the first read.
TEST(Discovered, ABurstOfAThousandAnswers) {
    if (GrantedBuffer() < 2 << 20)
        GTEST_SKIP() << "the system grants a receive buffer of " << GrantedBuffer() << " bytes only";
    SnmpAgent agent([](SnmpAgent &from, const AgentRequest &request) {
        if (request.to != "127.255.255.255") return AnswerName(from, request);
        for (int i = 0; i < 1000; i++)
            from.Send(request, BerResponse(1, BerBinding(Name, BerElement(4, std::string(100, 'n')))),
                      "127.3." + std::to_string(i / 250) + "." + std::to_string(i % 250 + 1));
    });
    SnmpAgentPort = agent.Port();
    Called.clear();
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_CALLBACK, NoteCall, PKG_USERDATA, UserData, PKG_EMPTY, Name),
              SUCCESS);
    // Nobody reads while they arrive.
    ASSERT_EQ(UdpOpenSocket(&package), 1);
    PkgPacket packet;
    package.SendMode = PKG_MODE_BROADCAST;
    package.Pdu = PDU_GET;
    ASSERT_EQ(EncodePkg(&package, &packet), SUCCESS);
    strcpy(package.Address, "127.0.0.0");
    ASSERT_EQ(UdpSendPacket(&package, "255.0.0.0", &packet), SUCCESS);
    while (agent.Count() == 0) usleep(1000);
    usleep(500000);
    InitDiscoveredList();
    int stored = ReceiveBroadcast(&package);
    UdpCloseSocket(&package);
    EXPECT_EQ(stored, 1000);
    EXPECT_EQ(Broadcast(""), SUCCESS);
    ASSERT_EQ(Called.size(), 1000u);
    EXPECT_EQ(Called[999].substr(0, 11), "127.3.3.250");
    InitDiscoveredList();
}

// A host that never falls silent does not hold the program.
TEST(Discovered, ADripOfAnswersEnds) {
    std::atomic<bool> stop{false};
    std::thread drip;
    SnmpAgent agent([&](SnmpAgent &from, const AgentRequest &request) {
        if (request.to != "127.255.255.255") return;
        drip = std::thread([&from, &stop, request] {
            for (; !stop; usleep(200000)) from.Send(request, "drip", "127.0.0.9");
        });
    });
    Prepare(agent, 0);
    SnmpBroadcastLimit = 2;
    int64_t start = UdpMilliseconds();
    int count = Broadcast("127.0.0.0 255.0.0.0", PKG_CLEAR_DISCOVERED);
    int64_t spent = UdpMilliseconds() - start;
    stop = true;
    if (drip.joinable()) drip.join();
    SnmpBroadcastLimit = 60;
    EXPECT_GE(count, 5);
    EXPECT_GE(spent, 1900);
    EXPECT_LT(spent, 4000);
    InitDiscoveredList();
}

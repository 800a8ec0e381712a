// The package beside net-snmp: values read from its agent and written to it.
#include "SnmpPkg/Pkg.h"
#include "tests/lib/Capture.h"

#include <arpa/inet.h>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

// Starts a program of net-snmp that reads no configuration and no MIB, and writes nowhere but the scratch
// directory.
static pid_t Start(const Scratch &scratch, const std::string &line) {
    pid_t child = fork();
    if (child != 0) return child;
    int null = open("/dev/null", O_RDWR);
    for (int fd : {0, 1, 2}) dup2(null, fd);
    setenv("MIBS", "", 1);
    setenv("SNMPCONFPATH", scratch.Path().c_str(), 1);
    setenv("SNMP_PERSISTENT_DIR", scratch.Path().c_str(), 1);
    setenv("PATH", "/usr/bin:/usr/sbin:/bin:/sbin", 1);
    execl("/bin/sh", "sh", "-c", ("exec " + line).c_str(), static_cast<char *>(nullptr));
    _exit(127);
}

static bool Installed(const char *program) {
    return system(("PATH=/usr/bin:/usr/sbin:/bin:/sbin; command -v >/dev/null " + std::string(program))
                      .c_str()) == 0;
}

static int BindLoopback(uint16_t *port) {
    sockaddr_in at = {};
    socklen_t size = sizeof at;
    int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    at.sin_family = AF_INET;
    at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(fd, reinterpret_cast<sockaddr *>(&at), sizeof at) != 0) return -1;
    getsockname(fd, reinterpret_cast<sockaddr *>(&at), &size);
    *port = ntohs(at.sin_port);
    return fd;
}

// Net-snmp's agent on a free port of loopback, until the end of the test.
struct Agent {
    Scratch scratch;
    pid_t child = 0;
    Agent() {
        close(BindLoopback(&SnmpAgentPort));
        scratch.Write("agent.conf", "rocommunity rdcomm 127.0.0.1\n"
                                    "rwcommunity wrcommx 127.0.0.1\n"
                                    "override .1.3.6.1.4.1.9999.1.0 integer -5\n"
                                    "override .1.3.6.1.4.1.9999.2.0 uinteger 4000000000\n"
                                    "override .1.3.6.1.4.1.9999.3.0 octet_str \"lobby\"\n"
                                    "override .1.3.6.1.4.1.9999.4.0 object_id .1.3.6.1.2.1.2147483647\n"
                                    "override .1.3.6.1.4.1.9999.5.0 counter 4294967295\n"
                                    "override .1.3.6.1.4.1.9999.6.0 timeticks 77\n"
                                    "override -rw .1.3.6.1.4.1.9999.7.0 integer 3\n"
                                    "override -rw .1.3.6.1.4.1.9999.8.0 octet_str \"x\"\n");
        child = Start(scratch, "snmpd -f -C -c " + scratch.Path("agent.conf") +
                                   " -Ln udp:127.0.0.1:" + std::to_string(SnmpAgentPort));
    }
    ~Agent() {
        kill(child, SIGTERM);
        waitpid(child, nullptr, 0);
    }
};

// One exchange with it; the package has its variables already.
static int Send(SnmpPackage *package, int pdu) {
    package->Timeout = 1;
    return SnmpSend(package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, pdu, PKG_ADDRESSES, "127.0.0.1");
}

TEST(Interop, ValuesOfItsAgent) {
    if (!Installed("snmpd")) GTEST_SKIP() << "snmpd of net-snmp is not installed";
    Agent agent;
    SnmpPackage package;
    int tries = 15; // until it is up
    do {
        ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.6.1.2.1.1.3.0"), SUCCESS);
        ASSERT_EQ(Send(&package, PDU_GET), SUCCESS);
    } while (package.Vars[0].Status != SUCCESS && --tries > 0);
    struct Case {
        const char *name;
        int status, type;
        const char *text;
    } cases[] = {
        {"1.3.6.1.4.1.9999.1.0", SUCCESS, VT_NUMBER, "-5"},
        {"1.3.6.1.4.1.9999.2.0", SUCCESS, VT_GAUGE, "4000000000"},
        {"1.3.6.1.4.1.9999.3.0", SUCCESS, VT_STRING, "lobby"},
        {"1.3.6.1.4.1.9999.4.0", SUCCESS, VT_OBJECT, "1.3.6.1.2.1.2147483647"},
        {"1.3.6.1.4.1.9999.5.0", SUCCESS, VT_COUNTER, "4294967295"},
        {"1.3.6.1.4.1.9999.6.0", SUCCESS, VT_TIMETICKS, "77"},
        {"1.3.6.1.2.1.4.20.1.1.127.0.0.1", SUCCESS, VT_IPADDRESS, "127.0.0.1"},
        {"1.3.6.1.4.1.9999.99.0", SEND_DATA_NOT_FILLED, 0, "______________"}, // noSuchName
    };
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT), SUCCESS);
    for (const Case &c : cases) ASSERT_EQ(SnmpSetup(&package, PKG_EMPTY, c.name), SUCCESS);
    EXPECT_EQ(Send(&package, PDU_GET), SUCCESS);
    for (size_t i = 0; i < std::size(cases); i++) {
        EXPECT_EQ(package.Vars[i].Status, cases[i].status) << cases[i].name;
        EXPECT_EQ(package.Vars[i].RecType, cases[i].type) << cases[i].name;
        EXPECT_STREQ(package.Vars[i].RecText, cases[i].text) << cases[i].name;
    }
    // Writing takes the right community, and is confirmed by the value that comes back.
    for (const char *community : {"rdcomm", "wrcommx"}) {
        ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_COMMUNITY, community, PKG_NUMBER, "1.3.6.1.4.1.9999.7.0",
                            4, PKG_STRING, "1.3.6.1.4.1.9999.8.0", "Second floor"),
                  SUCCESS);
        EXPECT_EQ(Send(&package, PDU_SET), SUCCESS);
        int want = *community == 'r' ? SEND_DATA_NOT_FILLED : SUCCESS;
        EXPECT_EQ(package.Vars[0].Status, want) << community;
        EXPECT_EQ(package.Vars[1].Status, want) << community;
    }
    EXPECT_EQ(package.Vars[0].RecValue, 4);
    EXPECT_STREQ(package.Vars[1].RecText, "Second floor");
    ASSERT_EQ(SnmpSetup(&package, PKG_INIT, PKG_EMPTY, "1.3.6.1.4.1.9999.2.0"), SUCCESS);
    EXPECT_EQ(Send(&package, PDU_GETNEXT), SUCCESS);
    ASSERT_EQ(package.NumRecVars, 2);
    EXPECT_STREQ(package.Vars[1].RecText, "lobby");
}

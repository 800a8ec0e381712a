// The SNMP package beside net-snmp's library in the same run: encoding and decoding a one-variable message,
// and one-variable requests one after the other to an agent on loopback. Says so and ends where the library
// is missing.
#include "SnmpPkg/Decode.h"
#include "SnmpPkg/Encode.h"
#include "SnmpPkg/Pkg.h"
#include "bench/Bench.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#if PRN_NETSNMP
#include <arpa/inet.h>
#include <csignal>
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

static const char Name[] = "1.3.6.1.2.1.43.8.2.1.13.1.1";
static const char Value[] = "Tray 2";

static void Need(bool holds, const char *what) {
    if (holds) return;
    fprintf(stderr, "SnmpCodecBench: %s\n", what);
    exit(1);
}

// A work of count calls, and of multiples of it.
template <class Call>
static BenchWork Repeat(long count, Call call) {
    return [=](int scale) {
        for (long i = 0; i < count * scale; i++) call();
        return count * scale;
    };
}

// ---- Ours

static SnmpPackage Ours;
static PkgPacket Sent;

static void EncodeOurs() {
    PkgStartPacket(&Sent);
    EncodeVar(&Ours.Vars[0], &Sent, 1);
    Need(PkgEncodePacketProlog(&Sent, "wrcommx", 12345, PDU_SET), "our encoder refused the message");
}

// A package is read into over and over, as the engine does it for the hosts of one run.
static void DecodeOurs(const uint8_t *bytes, size_t size) {
    PkgPacket packet;
    PkgProlog prolog;
    PkgPrologText text;
    memcpy(packet.Data, bytes, size);
    memset(packet.Data + size, 0, sizeof packet.Data - size);
    packet.Len = static_cast<int32_t>(size);
    packet.Pos = 0;
    InitRecVars(&Ours);
    Need(PkgReadProlog(&packet, &prolog, &text), "our decoder refused the message");
    DecodeVariables(&packet, &Ours, prolog.Version);
}

// ---- Theirs

static void *Session;
static netsnmp_pdu *MakePdu(int command) {
    oid name[MAX_OID_LEN];
    size_t length = MAX_OID_LEN;
    netsnmp_pdu *pdu = snmp_pdu_create(command);
    Need(snmp_parse_oid(Name, name, &length) != nullptr, "net-snmp refused the name");
    if (command == SNMP_MSG_SET)
        snmp_pdu_add_variable(pdu, name, length, ASN_OCTET_STR, Value, sizeof Value - 1);
    else
        snmp_add_null_var(pdu, name, length);
    return pdu;
}

static uint8_t TheirBytes[2048];
static size_t TheirSize;

// From the same things that ours starts with: a name as text, a value, a community.
static void EncodeTheirs() {
    netsnmp_session *session = snmp_sess_session(Session);
    netsnmp_pdu *pdu = MakePdu(SNMP_MSG_SET);
    pdu->version = SNMP_VERSION_1;
    pdu->reqid = 12345;
    u_char *buffer = static_cast<u_char *>(malloc(sizeof TheirBytes));
    size_t size = sizeof TheirBytes;
    size_t offset = 0;
    Need(snmp_build(&buffer, &size, &offset, session, pdu) == 0, "net-snmp refused to build");
    TheirSize = offset;
    memcpy(TheirBytes, buffer + size - offset, offset);
    free(buffer);
    snmp_free_pdu(pdu);
}

// Down to what ours delivers: the name as text and the value as text.
static void DecodeTheirs(const uint8_t *bytes, size_t size) {
    netsnmp_pdu *pdu = snmp_pdu_create(0);
    u_char copy[2048];
    char name[512];
    memcpy(copy, bytes, size);
    size_t left = size;
    long version = 0;
    size_t room = COMMUNITY_MAX_LEN;
    u_char buffer[COMMUNITY_MAX_LEN];
    u_char *community = snmp_comstr_parse(copy, &left, buffer, &room, &version);
    Need(community != nullptr, "net-snmp refused the community");
    u_char type = *community;
    Need(snmp_pdu_parse(pdu, community, &left) == 0, "net-snmp refused the message");
    Need(type == SNMP_MSG_SET && pdu->variables != nullptr, "net-snmp read another message");
    snprint_objid(name, sizeof name, pdu->variables->name, pdu->variables->name_length);
    snmp_free_pdu(pdu);
}

// ---- Requests over loopback

// An agent that sends every request back as its own answer: the PDU's tag is changed, nothing else.
static void RunAgent(int fd) {
    for (;;) {
        uint8_t bytes[2048];
        sockaddr_in peer;
        socklen_t size = sizeof peer;
        ssize_t count = recvfrom(fd, bytes, sizeof bytes, 0, reinterpret_cast<sockaddr *>(&peer), &size);
        for (ssize_t i = 5; i < count; i++) {
            if (bytes[i] != 0xA0) continue;
            bytes[i] = 0xA2;
            break;
        }
        sendto(fd, bytes, static_cast<size_t>(count), 0, reinterpret_cast<sockaddr *>(&peer), size);
    }
}

static pid_t StartAgent() {
    sockaddr_in at = {};
    socklen_t size = sizeof at;
    int fd = socket(AF_INET, SOCK_DGRAM, 0);
    at.sin_family = AF_INET;
    at.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    Need(bind(fd, reinterpret_cast<sockaddr *>(&at), sizeof at) == 0, "no port for the agent");
    getsockname(fd, reinterpret_cast<sockaddr *>(&at), &size);
    SnmpAgentPort = ntohs(at.sin_port);
    pid_t child = fork();
    if (child == 0) RunAgent(fd);
    close(fd);
    return child;
}

static void *OpenTheirs() {
    netsnmp_session session;
    static char peer[64];
    static char community[] = "rdcomm";
    snprintf(peer, sizeof peer, "127.0.0.1:%u", SnmpAgentPort);
    snmp_sess_init(&session);
    session.version = SNMP_VERSION_1;
    session.peername = peer;
    session.community = reinterpret_cast<u_char *>(community);
    session.community_len = strlen(community);
    return snmp_sess_open(&session);
}

// One request each, from opening to closing: the way a caller of either asks one printer one thing.
static void AskOurs() {
    SnmpPackage package;
    SnmpSetup(&package, PKG_INIT, PKG_EMPTY, Name);
    SnmpSend(&package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, PDU_GET, PKG_ADDRESSES, "127.0.0.1");
    Need(package.Vars[0].Status == SUCCESS, "our request was not answered");
}

static void AskTheirs(void *session) {
    netsnmp_pdu *response = nullptr;
    Need(snmp_sess_synch_response(session, MakePdu(SNMP_MSG_GET), &response) == STAT_SUCCESS,
         "net-snmp was not answered");
    snmp_free_pdu(response);
}

static void AskTheirsAlone() {
    void *session = OpenTheirs();
    AskTheirs(session);
    snmp_sess_close(session);
}

// What the round trip costs without any package: the bytes of a request sent and received.
static void AskBare() {
    static int fd = -1;
    char back[2048];
    if (fd < 0) {
        sockaddr_in to = {};
        to.sin_family = AF_INET;
        to.sin_port = htons(SnmpAgentPort);
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        fd = socket(AF_INET, SOCK_DGRAM, 0);
        Need(connect(fd, reinterpret_cast<sockaddr *>(&to), sizeof to) == 0,
             "no socket for the bare round trip");
    }
    Need(send(fd, Sent.Data + Sent.Pos, static_cast<size_t>(Sent.Len), 0) == Sent.Len,
         "the bare request was not sent");
    Need(recv(fd, back, sizeof back, 0) == Sent.Len, "the bare request was not answered");
}

// Fifty variables of one host by one call, one request each.
static void AskFifty() {
    SnmpPackage package;
    SnmpSetup(&package, PKG_INIT);
    for (int i = 0; i < PKG_VARS; i++) SnmpSetup(&package, PKG_EMPTY, Name);
    SnmpSend(&package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, PDU_GET, PKG_ADDRESSES, "127.0.0.1");
    Need(package.Vars[0].Status == SUCCESS, "our requests were not answered");
}

static void CompareRequests() {
    BenchWork fifty = [](int scale) {
        for (int i = 0; i < 20 * scale; i++) AskFifty();
        return long{20} * scale * PKG_VARS;
    };
    BenchWork theirs = Repeat(1000, [] { AskTheirs(Session); });
    BenchRow("snmp: a request, package and session made", Repeat(200, AskOurs), Repeat(200, AskTheirsAlone));
    BenchRow("snmp: a request of 50 to one host", fifty, theirs);
    // Most of it is the system's: what either adds to bytes that are sent and received by nobody's package.
    double best[3] = {1e18, 1e18, 1e18};
    for (int round = 0; round < 10; round++) {
        best[0] = std::min(best[0], BenchOnce(fifty, 1));
        best[1] = std::min(best[1], BenchOnce(theirs, 1));
        best[2] = std::min(best[2], BenchOnce(Repeat(1000, AskBare), 1));
    }
    double ours = best[0] - best[2], yardstick = best[1] - best[2];
    printf("%-44s %9.1f ns %9.1f ns %7.2f   the bare round trip takes %.1f ns\n",
           "snmp: what a request adds to a round trip", ours, yardstick, ours / yardstick, best[2]);
}

int main() {
    setenv("MIBS", "", 1);
    setenv("SNMPCONFPATH", "/nonexistent", 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_PERSIST_STATE, 1);
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_DONT_READ_CONFIGS, 1);
    netsnmp_ds_set_int(NETSNMP_DS_LIBRARY_ID, NETSNMP_DS_LIB_OID_OUTPUT_FORMAT, NETSNMP_OID_OUTPUT_NUMERIC);
    init_snmp("bench");
    pid_t agent = StartAgent();
    Session = OpenTheirs();
    Need(Session != nullptr, "net-snmp opened no session");
    Need(SnmpSetup(&Ours, PKG_INIT, PKG_STRING, Name, Value) == SUCCESS, "set-up failed");
    EncodeOurs();
    const uint8_t *bytes = Sent.Data + Sent.Pos;
    size_t size = static_cast<size_t>(Sent.Len);
    EncodeTheirs();

    BenchHead();
    BenchRow("snmp: encode one variable", Repeat(20000, EncodeOurs), Repeat(20000, EncodeTheirs));
    BenchRow("snmp: decode one variable", Repeat(20000, [=] { DecodeOurs(bytes, size); }),
             Repeat(20000, [=] { DecodeTheirs(bytes, size); }));
    CompareRequests();
    snmp_sess_close(Session);
    kill(agent, SIGKILL);
    waitpid(agent, nullptr, 0);
    return 0;
}
#else
int main() {
    printf("SNMP codec: skipped, net-snmp's library (libsnmp-dev) is not installed\n");
    return 0;
}
#endif

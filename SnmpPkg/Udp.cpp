// The transport of the SNMP package.
#include "SnmpPkg/Udp.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

enum { UDP_PACKET_MIN = 512, WAIT_MAX = 1 << 20 }; // the second in seconds, so that milliseconds fit an int

int64_t UdpMilliseconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

// Socket 0 means none, so the descriptor 0 of a process started without standard input must not be used.
static int UdpAvoidZero(int descriptor) {
    if (descriptor != 0) return descriptor;
    int other = fcntl(descriptor, F_DUPFD_CLOEXEC, 3);
    close(descriptor);
    return other;
}

int UdpOpenSocket(SnmpPackage *package) {
    if (!package) return 0;
    package->Socket = 0;
    int descriptor = UdpAvoidZero(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (descriptor < 0) return 0;
    int on = 1;
    int size = UDP_BUFFER;
    if (setsockopt(descriptor, SOL_SOCKET, SO_BROADCAST, &on, sizeof on) != 0) {
        close(descriptor);
        return 0;
    }
    // Only root may pass the system's limit; without it the buffer is as large as that allows.
    if (setsockopt(descriptor, SOL_SOCKET, SO_RCVBUFFORCE, &size, sizeof size) != 0)
        setsockopt(descriptor, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
    package->Socket = descriptor;
    return 1;
}

void UdpCloseSocket(SnmpPackage *package) {
    if (!package || package->Socket == 0) return;
    close(package->Socket);
    package->Socket = 0;
}

int UdpSendPacketBinAdr(SnmpPackage *package, uint32_t address, const PkgPacket *packet) {
    if (!package || !packet || packet->Len <= 0) return SETUP_ERR_XTL_INIT;
    if (packet->Pos < 0 || packet->Len > PKG_DATA_SIZE - packet->Pos) return SETUP_ERR_XTL_INIT;
    sockaddr_in to = {};
    to.sin_family = AF_INET;
    to.sin_port = htons(package->Port);
    to.sin_addr.s_addr = address;
    ssize_t sent;
    do {
        sent = sendto(package->Socket, packet->Data + packet->Pos, static_cast<size_t>(packet->Len), 0,
                      reinterpret_cast<sockaddr *>(&to), sizeof to);
    } while (sent < 0 && errno == EINTR);
    if (sent < 0) return errno == EAGAIN ? SEND_ERR_SOCKET_BUSY : SEND_ERR_TRANSPORT_ERR;
    return sent == packet->Len ? SUCCESS : SEND_ERR_NOT_ALL_SENT;
}

int UdpSendPacket(SnmpPackage *package, const char *mask, const PkgPacket *packet) {
    if (!package || !packet) return SETUP_ERR_XTL_INIT;
    in_addr address, bits;
    if (inet_aton(package->Address, &address) == 0) return SEND_ERR_TRANSPORT_ERR;
    if (mask) {
        if (inet_aton(mask, &bits) == 0) return SEND_ERR_TRANSPORT_ERR;
        address.s_addr |= ~bits.s_addr;
    }
    return UdpSendPacketBinAdr(package, address.s_addr, packet);
}

// SUCCESS when something can be read. A signal shortens nothing and ends nothing.
static int UdpWait(int descriptor, int seconds) {
    int64_t end = UdpMilliseconds() + int64_t{std::clamp<int>(seconds, 0, WAIT_MAX)} * 1000;
    pollfd wait = {descriptor, POLLIN, 0};
    for (;;) {
        int64_t left = std::max<int64_t>(end - UdpMilliseconds(), 0);
        int ready = poll(&wait, 1, static_cast<int>(left));
        if (ready > 0) return SUCCESS;
        if (ready == 0) return SEND_ERR_TIMED_OUT;
        if (errno != EINTR) return SEND_ERR_TRANSPORT_ERR;
    }
}

static int UdpReceiveCode(int error) {
    switch (error) {
    case EAGAIN: return SEND_ERR_NO_DATA;
    case EMSGSIZE: return SEND_ERR_TOO_LARGE;
    case EINPROGRESS: return SEND_ERR_SOCKET_BUSY;
    default: return SEND_ERR_TRANSPORT_ERR; // no other error is told apart
    }
}

static int UdpReceive(SnmpPackage *package, sockaddr_in *peer, PkgPacket *packet, int seconds) {
    if (!package || !packet) return SETUP_ERR_XTL_INIT;
    packet->Pos = packet->Len = 0;
    int code = UdpWait(package->Socket, seconds);
    if (code != SUCCESS) return code;
    socklen_t size = sizeof *peer;
    ssize_t count = recvfrom(package->Socket, packet->Data, PKG_DATA_SIZE, MSG_DONTWAIT | MSG_TRUNC,
                             reinterpret_cast<sockaddr *>(peer), &size);
    if (count < 0) return UdpReceiveCode(errno);
    if (count > PKG_DATA_SIZE) return SEND_ERR_TOO_LARGE; // the kernel cuts and tells the whole size
    memset(packet->Data + count, 0, static_cast<size_t>(PKG_DATA_SIZE - count));
    packet->Len = static_cast<int32_t>(count);
    return SUCCESS;
}

int UdpReceivePacket(SnmpPackage *package, PkgSource *source, PkgPacket *packet, int seconds) {
    sockaddr_in peer = {};
    int code = UdpReceive(package, &peer, packet, seconds);
    if (code != SUCCESS || !source) return code;
    source->Port = ntohs(peer.sin_port);
    inet_ntop(AF_INET, &peer.sin_addr, source->Address, sizeof source->Address);
    return code;
}

int UdpReceivePacketBinAdr(SnmpPackage *package, uint32_t *address, PkgPacket *packet, int seconds) {
    sockaddr_in peer = {};
    int code = UdpReceive(package, &peer, packet, seconds);
    if (code == SUCCESS && address) *address = peer.sin_addr.s_addr;
    return code;
}

int UdpGetMaxPacketSize(SnmpPackage *package, int *code) {
    int receive = 0;
    int send = 0;
    socklen_t size = sizeof receive;
    *code = SEND_ERR_TRANSPORT_ERR;
    if (!package) return 0;
    if (getsockopt(package->Socket, SOL_SOCKET, SO_RCVBUF, &receive, &size) != 0) return 0;
    if (getsockopt(package->Socket, SOL_SOCKET, SO_SNDBUF, &send, &size) != 0) return 0;
    *code = SUCCESS;
    return std::clamp<int>(std::min(receive, send), UDP_PACKET_MIN, PKG_DATA_SIZE);
}

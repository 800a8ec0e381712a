// Sockets, time and the log.
#include "tools/prnsim/SimNet.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <linux/filter.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>

enum { RECEIVE_BURST = 64, SOCKET_BUFFER = 1 << 20 };
static constexpr SimTime Second = 1000000;

SimNet::SimNet(SimFleet *of, const SimReadOptions &how, const SimPorts &at, FILE *to)
    : fleet(*of), options(how), ports(at), log(to), agent(*of) {
    for (const SimPlaceOfPrinter &place : fleet.printers) printers.push_back({.place = &place});
    prints.resize(printers.size());
    off.resize(printers.size());
    for (const SimPrinter &printer : printers) served.push_back(printer.place->own);
    for (const Port &port : Ports) sockets[port.kind].assign(printers.size(), -1);
}

SimNet::~SimNet() {
    for (const auto &kind : sockets) {
        for (int socket : kind) {
            if (socket >= 0) close(socket);
        }
    }
    for (auto &[address, socket] : foreign) close(socket);
    for (Connection &connection : connections) Close(&connection);
    if (epoll >= 0) close(epoll);
    if (control >= 0) {
        close(control);
        unlink(controlPath.c_str());
    }
    if (failed)
        fprintf(stderr, "prnsim: %llu answers could not be sent\n", static_cast<unsigned long long>(failed));
}

SimTime SimNet::Now() const {
    timespec time;
    clock_gettime(CLOCK_MONOTONIC, &time);
    return time.tv_sec * Second + time.tv_nsec / 1000 - start;
}

// --- opening ---

// The limit of open files that the fleet needs, as far as this user may raise it.
bool SimNet::RaiseLimit() const {
    rlimit limit;
    rlim_t wanted = fleet.subnets.size() + CONNECTIONS_MAX + 64;
    for (const SimPrinter &printer : printers) {
        wanted += 2;
        for (const Port &port : Ports) wanted += printer.Knob(port.knob).first != 0;
    }
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= wanted) return true;
    limit.rlim_cur = wanted;
    limit.rlim_max = std::max(limit.rlim_max, wanted);
    if (setrlimit(RLIMIT_NOFILE, &limit) == 0) return true;
    fprintf(stderr, "prnsim: this fleet needs %llu open files: %s\n", static_cast<unsigned long long>(wanted),
            strerror(errno));
    return false;
}

int SimNet::Bind(uint32_t address, uint16_t port, int type) const {
    int one = 1, size = SOCKET_BUFFER, made = socket(AF_INET, type | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    sockaddr_in at = {};
    at.sin_family = AF_INET;
    at.sin_addr.s_addr = htonl(address);
    at.sin_port = htons(port);
    if (type == SOCK_STREAM)
        setsockopt(made, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    else
        setsockopt(made, SOL_SOCKET, SO_RCVBUF, &size, sizeof size);
    if (made >= 0 && bind(made, reinterpret_cast<sockaddr *>(&at), sizeof at) == 0 &&
        (type != SOCK_STREAM || listen(made, LISTEN_BACKLOG) == 0))
        return made;
    fprintf(stderr, "prnsim: bind %s port %u/%s: %s\n", SimAddressText(address).c_str(), port,
            type == SOCK_STREAM ? "tcp" : "udp", strerror(errno));
    if (made >= 0) close(made);
    return -1;
}

// A socket that shall be written to was watched for reading before.
bool SimNet::Watch(int socket, Kind kind, size_t number, bool flWrite) {
    epoll_event event = {};
    event.events = flWrite ? EPOLLOUT : EPOLLIN;
    event.data.u64 = uint64_t{kind} << 32 | number;
    if (epoll_ctl(epoll, flWrite ? EPOLL_CTL_MOD : EPOLL_CTL_ADD, socket, &event) == 0) return true;
    fprintf(stderr, "prnsim: epoll: %s\n", strerror(errno));
    return false;
}

// Lets everything that comes for a listener fall, as if the host's cable were cut.
static bool Deafen(int socket) {
    sock_filter drop = BPF_STMT(BPF_RET | BPF_K, 0);
    sock_fprog program = {1, &drop};
    return setsockopt(socket, SOL_SOCKET, SO_ATTACH_FILTER, &program, sizeof program) == 0;
}

// Brings a listener into the state of its knob.
bool SimNet::OpenPort(const Port &port, size_t number) {
    int &socket = sockets[port.kind][number];
    int64_t state = printers[number].Knob(port.knob).first;
    if (socket >= 0) close(socket);
    socket = state ? Bind(printers[number].place->address, ports.*port.number, SOCK_STREAM) : -1;
    if (!state) return true;
    if (socket < 0 || (port.kind == WEB && state == WEB_DEAF && !Deafen(socket))) return false;
    return Watch(socket, port.kind, number);
}

// Opens and closes what a change of the printer says otherwise; connections that stand are left alone.
bool SimNet::FollowKnobs(size_t number) {
    const SimBlock *before = std::exchange(served[number], printers[number].place->own);
    bool flGood = true;
    for (const Port &port : Ports) {
        if (before->knobs[port.knob].first == printers[number].Knob(port.knob).first) continue;
        flGood = OpenPort(port, number) && flGood;
    }
    return OpenForeign(printers[number]) && flGood;
}

bool SimNet::OpenPrinter(size_t number) {
    int made = Bind(printers[number].place->address, ports.snmp, SOCK_DGRAM);
    sockets[PRINTER].push_back(made);
    if (made < 0 || !Watch(made, PRINTER, number)) return false;
    for (const Port &port : Ports) {
        if (!OpenPort(port, number)) return false;
    }
    Turn(number);
    return true;
}

// Answers from elsewhere leave by that printer's socket, or by one of their own.
bool SimNet::OpenForeign(const SimPrinter &printer) {
    const SimSetting &knob = printer.Knob(KNOB_FOREIGN);
    uint32_t address = static_cast<uint32_t>(knob.second);
    if (knob.first == 0 || foreign.count(address)) return true;
    auto at = std::find_if(printers.begin(), printers.end(),
                           [=](const SimPrinter &other) { return other.place->address == address; });
    int made = at != printers.end() ? dup(sockets[PRINTER][static_cast<size_t>(at - printers.begin())])
                                    : Bind(address, ports.snmp, SOCK_DGRAM);
    if (made >= 0) foreign[address] = made;
    return made >= 0;
}

bool SimNet::Open() {
    epoll = epoll_create1(EPOLL_CLOEXEC);
    if (epoll < 0 || !RaiseLimit()) return false;
    for (size_t i = 0; i < printers.size(); i++) {
        if (!OpenPrinter(i)) return false;
    }
    for (const SimSubnet &subnet : fleet.subnets) {
        int made = Bind(subnet.Broadcast(), ports.snmp, SOCK_DGRAM);
        if (made < 0) return false;
        sockets[SUBNET].push_back(made);
        if (!Watch(made, SUBNET, sockets[SUBNET].size() - 1)) return false;
    }
    return std::all_of(printers.begin(), printers.end(),
                       [this](const auto &printer) { return OpenForeign(printer); });
}

// --- the loop ---

// Until the next thing that happens by itself; -1 for never.
SimTime SimNet::Timeout(SimTime end) const {
    SimTime next = INT64_MAX;
    if (!late.empty()) next = late.top().due;
    if (end > 0) next = std::min(next, end);
    if (!turning.empty()) next = std::min(next, turning.begin()->first);
    SimTime now = Now();
    if (open) next = std::min(next, now + Second);
    return next == INT64_MAX ? -1 : std::max<SimTime>(next - now, 0);
}

bool SimNet::Run(double seconds, const sigset_t &waiting, const volatile sig_atomic_t *flStop) {
    start += Now();
    SimTime end = static_cast<SimTime>(seconds * static_cast<double>(Second));
    while (!*flStop && (end == 0 || Now() < end)) {
        SimTime timeout = Timeout(end);
        timespec wait = {timeout / Second, timeout % Second * 1000};
        pollfd ready = {epoll, POLLIN, 0};
        // Finer than the milliseconds of epoll_wait, and the place where signals come in.
        int count = ppoll(&ready, 1, timeout < 0 ? nullptr : &wait, &waiting);
        if (count < 0 && errno != EINTR) return perror("prnsim: ppoll"), false;
        epoll_event events[128];
        int got = count > 0 ? epoll_wait(epoll, events, std::size(events), 0) : 0;
        for (int i = 0; i < got; i++) {
            uint64_t data = events[i].data.u64;
            Handle(static_cast<Kind>(data >> 32), data & UINT32_MAX);
        }
        SendLate();
        CloseOld();
        TurnAll();
    }
    return true;
}

void SimNet::Handle(Kind kind, size_t number) {
    switch (kind) {
    case PRINTER:
    case SUBNET: return Receive(sockets[kind][number], kind, number);
    case WEB:
    case RAW:
    case LPD: return Accept(sockets[kind][number], kind, number);
    case CONTROL: return AcceptChange();
    case CHANGE: return ReceiveChange(static_cast<int>(number));
    case CONNECTION: return Serve(number);
    }
}

void SimNet::Receive(int socket, Kind kind, size_t number) {
    for (int i = 0; i < RECEIVE_BURST; i++) {
        sockaddr_in peer = {};
        socklen_t size = sizeof peer;
        ssize_t got = recvfrom(socket, buffer, sizeof buffer, 0, reinterpret_cast<sockaddr *>(&peer), &size);
        if (got < 0) return;
        std::string_view datagram(buffer, static_cast<size_t>(got));
        if (kind == SUBNET)
            Broadcast(number, datagram, peer);
        else
            Serve(number, datagram, peer, false, 0);
    }
}

// Every printer of the subnet answers, one behind the other at the fleet's pace.
void SimNet::Broadcast(size_t number, std::string_view datagram, const sockaddr_in &peer) {
    const SimSubnet &subnet = fleet.subnets[number];
    auto first =
        std::lower_bound(printers.begin(), printers.end(), subnet.address,
                         [](const SimPrinter &printer, uint32_t at) { return printer.place->address < at; });
    SimTime gap = fleet.pace ? Second / fleet.pace : 0, extra = 0;
    for (; first != printers.end() && (first->place->address & subnet.mask) == subnet.address; ++first) {
        size_t at = static_cast<size_t>(first - printers.begin());
        if (Serve(at, datagram, peer, true, extra)) extra += gap;
    }
}

// True if there is an answer.
bool SimNet::Serve(size_t number, std::string_view datagram, const sockaddr_in &peer, bool flBroadcast,
                   SimTime extra) {
    SimPrinter &printer = printers[number];
    SimAnswer answer = agent.Answer(&printer, datagram, flBroadcast, Now(), extra);
    if (log) Log(printer, peer, answer, flBroadcast);
    if (answer.flReset) {
        turning.emplace(printer.silentFrom, number);
        turning.emplace(printer.silentUntil, number);
    }
    Turn(number);
    if (answer.fate != FATE_SENT) return false;
    int socket = sockets[PRINTER][number];
    if (answer.Hit(DRAW_FOREIGN))
        socket = foreign.at(static_cast<uint32_t>(printer.Knob(KNOB_FOREIGN).second));
    for (int copies = answer.Hit(DRAW_DUPLICATE) ? 2 : 1; copies > 0; copies--)
        Send(socket, peer, answer.bytes, answer.delay);
    return true;
}

void SimNet::Send(int socket, const sockaddr_in &peer, std::string_view bytes, SimTime delay) {
    if (delay <= 0) return SendNow(socket, peer, bytes);
    late.push({Now() + delay, order++, socket, peer, std::string(bytes)});
}

void SimNet::SendNow(int socket, const sockaddr_in &peer, std::string_view bytes) {
    if (sendto(socket, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr *>(&peer),
               sizeof peer) >= 0)
        return;
    if (errno == EAGAIN || errno == ENOBUFS)
        late.push({Now() + 1000, order++, socket, peer, std::string(bytes)});
    else if (failed++ == 0)
        fprintf(stderr, "prnsim: answer to %s: %s\n", SimAddressText(ntohl(peer.sin_addr.s_addr)).c_str(),
                strerror(errno));
}

void SimNet::SendLate() {
    for (SimTime now = Now(); !late.empty() && late.top().due <= now;) {
        Late next = late.top();
        late.pop();
        SendNow(next.socket, next.peer, next.bytes);
    }
}

void SimNet::Log(const SimPrinter &printer, const sockaddr_in &peer, const SimAnswer &answer,
                 bool flBroadcast) {
    SimTime now = Now();
    std::string fields = agent.LogFields(printer, answer, flBroadcast);
    fprintf(log, "%lld.%06lld %s %s:%u %s\n", static_cast<long long>(now / Second),
            static_cast<long long>(now % Second), SimAddressText(printer.place->address).c_str(),
            SimAddressText(ntohl(peer.sin_addr.s_addr)).c_str(), ntohs(peer.sin_port), fields.c_str());
}

// The fleet on the network: one datagram socket a printer and a subnet, listeners where a printer has them,
// answers that wait for their time, and the log. One thread around one epoll descriptor.
#pragma once

#include "tools/prnsim/SimAgent.h"

#include <csignal>
#include <cstdio>
#include <deque>
#include <netinet/in.h>
#include <queue>
#include <unordered_map>

struct SimPorts {
    uint16_t snmp = 161, web = 80, raw = 9100;
};

class SimNet {
public:
    // `log` may be null; it is not closed.
    SimNet(const SimFleet &of, const SimPorts &at, FILE *to);
    ~SimNet();
    SimNet(const SimNet &) = delete;
    SimNet &operator=(const SimNet &) = delete;

    // Binds all sockets. False with the reason on standard error.
    [[nodiscard]] bool Open();
    // Serves until `*flStop` is set by a signal, which must be blocked but in `waiting`, or until `seconds`
    // are over (0: no limit). False if waiting itself failed.
    bool Run(double seconds, const sigset_t &waiting, const volatile sig_atomic_t *flStop);

private:
    enum { CONNECTIONS_MAX = 512, LISTEN_BACKLOG = 64 };
    enum Kind : uint32_t { PRINTER, SUBNET, WEB, RAW, CONNECTION };
    struct Late {
        SimTime due;
        uint64_t order;
        int socket;
        sockaddr_in peer;
        std::string bytes;
        bool operator<(const Late &other) const {
            return due != other.due ? due > other.due : order > other.order;
        }
    };
    struct Connection {
        int socket = -1, file = -1;
        Kind kind = WEB;
        size_t printer = 0;
        SimTime deadline = 0;
        std::string text = {}; // of a web client: its request, then what is left of the page
        bool flAnswering = false;
    };

    bool RaiseLimit() const;
    int Bind(uint32_t address, uint16_t port, int type) const;
    bool Watch(int socket, Kind kind, size_t number, bool flWrite = false);
    bool OpenPrinter(size_t number);
    bool OpenForeign(const SimPrinter &printer);
    SimTime Now() const;
    SimTime Timeout(SimTime end) const;

    void Handle(Kind kind, size_t number);
    void Receive(int socket, Kind kind, size_t number);
    void Broadcast(size_t subnet, std::string_view datagram, const sockaddr_in &peer);
    bool Serve(size_t number, std::string_view datagram, const sockaddr_in &peer, bool flBroadcast,
               SimTime extra);
    void Send(int socket, const sockaddr_in &peer, std::string_view bytes, SimTime delay);
    void SendNow(int socket, const sockaddr_in &peer, std::string_view bytes);
    void SendLate();
    void Log(const SimPrinter &printer, const sockaddr_in &peer, const SimAnswer &answer, bool flBroadcast);

    void Accept(int listener, Kind kind, size_t number);
    void Serve(size_t number);
    bool ServeWeb(Connection *connection, size_t number);
    bool ReadWeb(Connection *connection, size_t number);
    bool ServeRaw(Connection *connection);
    std::string Page(size_t number, std::string_view request);
    int RawFile(size_t number);
    void Close(Connection *connection);
    void CloseOld();
    void SwitchOff(size_t number);
    void SwitchOn();

    const SimFleet &fleet;
    SimPorts ports;
    FILE *log;
    SimAgent agent;
    int epoll = -1;
    SimTime start = 0;
    std::vector<SimPrinter> printers; // as in the fleet
    std::vector<int> sockets[4];      // by Kind up to RAW
    std::unordered_map<uint32_t, int> foreign;
    std::priority_queue<Late> late;
    uint64_t order = 0;
    std::vector<uint32_t> prints; // jobs stored, by printer
    std::deque<Connection> connections;
    std::vector<bool> off;                 // printers whose listeners are closed
    std::multimap<SimTime, size_t> waking; // those of them that come back
    size_t open = 0;
    uint64_t failed = 0; // sends
    char buffer[65536];
};

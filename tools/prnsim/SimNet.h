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
    uint16_t snmp = 161, web = 80, raw = 9100, lpd = 515;
};

class SimNet {
public:
    // `to` may be null; it is not closed. `how` is what the fleet was read with.
    SimNet(SimFleet *of, const SimReadOptions &how, const SimPorts &at, FILE *to);
    ~SimNet();
    SimNet(const SimNet &) = delete;
    SimNet &operator=(const SimNet &) = delete;

    // Binds all sockets. False with the reason on standard error.
    [[nodiscard]] bool Open();
    // The same for the socket at which lines that change a printer come in; see SimSendChange().
    [[nodiscard]] bool OpenControl(const std::string &path);
    // Serves until `*flStop` is set by a signal, which must be blocked but in `waiting`, or until `seconds`
    // are over (0: no limit). False if waiting itself failed.
    bool Run(double seconds, const sigset_t &waiting, const volatile sig_atomic_t *flStop);

private:
    enum { CONNECTIONS_MAX = 512, LISTEN_BACKLOG = 64 };
    enum Kind : uint32_t { PRINTER, SUBNET, WEB, RAW, LPD, CONTROL, CHANGE, CONNECTION };
    static constexpr struct Port {
        Kind kind;
        SimKnob knob;
        uint16_t SimPorts::*number;
    } Ports[] = {
        {WEB, KNOB_WEB, &SimPorts::web}, {RAW, KNOB_RAW, &SimPorts::raw}, {LPD, KNOB_LPD, &SimPorts::lpd}};
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
        std::string text =
            {}; // of a web client: its request, then what is left of the page; of an LPD one: a line
        bool flAnswering = false, flData = false;                     // flData: a data file of the job came
        enum { COMMAND, IN_JOB, IN_FILE, BEHIND_FILE } lpd = COMMAND; // what is awaited
        uint32_t job = 0;                                             // 0: none
        int64_t left = 0; // bytes of a file, negative: until the client closes
    };

    bool RaiseLimit() const;
    int Bind(uint32_t address, uint16_t port, int type) const;
    bool Watch(int socket, Kind kind, size_t number, bool flWrite = false);
    bool OpenPrinter(size_t number);
    bool OpenPort(const Port &port, size_t number);
    bool FollowKnobs(size_t number);
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
    bool ServeLpd(Connection *connection);
    bool LpdLine(Connection *connection);
    bool LpdFile(Connection *connection);
    size_t LpdTake(Connection *connection, std::string_view bytes);
    int JobFile(size_t number, SimKnob knob, uint32_t job, const char *suffix);
    bool Keep(const Connection &connection, std::string_view bytes);
    std::string Page(size_t number, std::string_view request);
    void Close(Connection *connection);
    void CloseOld();
    void Turn(size_t number);
    void SwitchOff(size_t number);
    void SwitchOn(size_t number);
    void TurnAll();

    void AcceptChange();
    void ReceiveChange(int socket);
    std::string Change(std::string_view line);

    SimFleet &fleet;
    const SimReadOptions &options;
    SimPorts ports;
    FILE *log;
    SimAgent agent;
    int epoll = -1;
    SimTime start = 0;
    std::vector<SimPrinter> printers;  // as in the fleet
    std::vector<int> sockets[CONTROL]; // by Kind
    int control = -1;
    std::string controlPath;
    std::unordered_map<uint32_t, int> foreign;
    std::priority_queue<Late> late;
    uint64_t order = 0;
    std::vector<uint32_t> prints; // jobs stored, by printer
    std::deque<Connection> connections;
    std::vector<const SimBlock *> served;   // what their listeners were opened for
    std::vector<bool> off;                  // printers whose listeners are closed
    std::multimap<SimTime, size_t> turning; // when one goes or comes back
    size_t open = 0;
    uint64_t failed = 0; // sends
    char buffer[65536];
};

// Sends lines "ADDRESS LINE" to the simulator that listens there; false with the reason on standard error.
[[nodiscard]] bool SimSendChange(const std::string &path, const std::vector<std::string> &lines);

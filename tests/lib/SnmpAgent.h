// The printers' side of SNMP on loopback, with a codec of its own: a thread that is asked on every address
// 127.x.y.z and answers from the one that was asked.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <netinet/in.h>
#include <string>
#include <thread>
#include <vector>

struct AgentRequest {
    std::string to; // the address asked
    std::string community;
    int id = 0;
    unsigned pdu = 0;  // 0xA0 get, 0xA3 set
    std::string name;  // of the only binding, dotted
    std::string value; // its value, encoded
    sockaddr_in peer = {};
};

class SnmpAgent {
public:
    typedef std::function<void(SnmpAgent &agent, const AgentRequest &request)> Handler;

    explicit SnmpAgent(Handler handler); // called in the agent's thread for every request
    ~SnmpAgent();
    SnmpAgent(const SnmpAgent &) = delete;
    SnmpAgent &operator=(const SnmpAgent &) = delete;

    uint16_t Port() const { return port; }
    std::vector<AgentRequest> Requests(); // so far
    int Count() { return static_cast<int>(Requests().size()); }
    // Sends a datagram to the asker, from the address asked or from another one.
    void Send(const AgentRequest &request, const std::string &bytes, const std::string &from = "");
    // Answers the request with one binding of its name.
    void Answer(const AgentRequest &request, const std::string &value);

private:
    void Run();
    int socket = -1;
    uint16_t port = 0;
    std::atomic<bool> stop{false};
    Handler handler;
    std::mutex lock;
    std::vector<AgentRequest> requests;
    std::thread thread;
};

std::string BerElement(unsigned tag, const std::string &content);
std::string BerInt(int64_t value, unsigned tag = 0x02);
std::string BerObject(const std::string &dotted);
std::string BerBinding(const std::string &name, const std::string &value);
// A response with these bindings, one behind the other.
std::string BerResponse(int id, const std::string &bindings, int errorStatus = 0, int errorIndex = 0);
std::string BerMessage(int version, const std::string &community, unsigned pdu, const std::string &content);

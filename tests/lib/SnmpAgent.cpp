#include "tests/lib/SnmpAgent.h"

#include <arpa/inet.h>
#include <cstdlib>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

// ---- Elements

std::string BerElement(unsigned tag, const std::string &content) {
    std::string out(1, static_cast<char>(tag));
    size_t n = content.size();
    if (n >= 256)
        out += {static_cast<char>(0x82), static_cast<char>(n >> 8), static_cast<char>(n)};
    else if (n >= 128)
        out += {static_cast<char>(0x81), static_cast<char>(n)};
    else
        out += static_cast<char>(n);
    return out + content;
}

std::string BerInt(int64_t value, unsigned tag) {
    std::string out;
    do {
        out.insert(out.begin(), static_cast<char>(value));
        value >>= 8;
    } while ((value != 0 && value != -1) || ((out[0] < 0) != (value < 0)));
    return BerElement(tag, out);
}

std::string BerObject(const std::string &dotted) {
    std::vector<uint32_t> arcs;
    for (const char *p = dotted.c_str(); p != nullptr && *p != 0; p = strchr(p, '.'), p = p ? p + 1 : p)
        arcs.push_back(static_cast<uint32_t>(strtoul(p, nullptr, 10)));
    std::string out;
    for (size_t i = 1; i < arcs.size(); i++) {
        uint32_t arc = i == 1 ? arcs[0] * 40 + arcs[1] : arcs[i];
        std::string part(1, static_cast<char>(arc & 0x7F));
        while ((arc >>= 7) != 0) part.insert(part.begin(), static_cast<char>((arc & 0x7F) | 0x80));
        out += part;
    }
    return BerElement(0x06, out);
}

std::string BerBinding(const std::string &name, const std::string &value) {
    return BerElement(0x30, BerObject(name) + value);
}

std::string BerMessage(int version, const std::string &community, unsigned pdu, const std::string &content) {
    return BerElement(0x30, BerInt(version) + BerElement(0x04, community) + BerElement(pdu, content));
}

std::string BerResponse(int id, const std::string &bindings, int errorStatus, int errorIndex) {
    return BerMessage(0, "rdcomm", 0xA2,
                      BerInt(id) + BerInt(errorStatus) + BerInt(errorIndex) + BerElement(0x30, bindings));
}

// Cuts the next element off; its content.
static std::string TakeElement(std::string &in) {
    if (in.size() < 2) return "";
    size_t length = static_cast<uint8_t>(in[1]), start = 2;
    if (length > 0x80) {
        start += length - 0x80;
        length = 0;
        for (size_t i = 2; i < start && i < in.size(); i++)
            length = length << 8 | static_cast<uint8_t>(in[i]);
    }
    std::string out = start < in.size() ? in.substr(start, length) : "";
    in.erase(0, start + length);
    return out;
}

static std::string Dotted(const std::string &content) {
    std::string out;
    uint32_t arc = 0;
    for (char ch : content) {
        arc = arc << 7 | (static_cast<uint8_t>(ch) & 0x7F);
        if (ch & 0x80) continue;
        out += out.empty() ? std::to_string(arc / 40) + "." + std::to_string(arc % 40)
                           : "." + std::to_string(arc);
        arc = 0;
    }
    return out;
}

static AgentRequest ReadRequest(std::string in) {
    AgentRequest request;
    in = TakeElement(in);
    TakeElement(in); // version
    request.community = TakeElement(in);
    if (!in.empty()) request.pdu = static_cast<uint8_t>(in[0]);
    in = TakeElement(in);
    for (char ch : TakeElement(in)) request.id = request.id << 8 | static_cast<uint8_t>(ch);
    TakeElement(in); // error status and index
    TakeElement(in);
    in = TakeElement(in);
    in = TakeElement(in);
    request.name = Dotted(TakeElement(in));
    request.value = in;
    return request;
}

// ---- The agent

SnmpAgent::SnmpAgent(Handler call) : handler(std::move(call)) {
    sockaddr_in at = {};
    socklen_t size = sizeof at;
    int on = 1;
    socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    at.sin_family = AF_INET;
    if (bind(socket, reinterpret_cast<sockaddr *>(&at), sizeof at) != 0) abort();
    getsockname(socket, reinterpret_cast<sockaddr *>(&at), &size);
    setsockopt(socket, IPPROTO_IP, IP_PKTINFO, &on, sizeof on);
    port = ntohs(at.sin_port);
    thread = std::thread([this] { Run(); });
}

SnmpAgent::~SnmpAgent() {
    stop = true;
    thread.join();
    close(socket);
}

std::vector<AgentRequest> SnmpAgent::Requests() {
    std::lock_guard guard(lock);
    return requests;
}

void SnmpAgent::Run() {
    while (!stop) {
        pollfd wait = {socket, POLLIN, 0};
        if (poll(&wait, 1, 10) <= 0) continue;
        char bytes[2048], control[128];
        sockaddr_in peer = {};
        iovec part = {bytes, sizeof bytes};
        msghdr message = {&peer, sizeof peer, &part, 1, control, sizeof control, 0};
        ssize_t count = recvmsg(socket, &message, 0);
        if (count < 0) continue;
        AgentRequest request = ReadRequest(std::string(bytes, static_cast<size_t>(count)));
        in_pktinfo info;
        memcpy(&info, CMSG_DATA(CMSG_FIRSTHDR(&message)), sizeof info);
        request.to = inet_ntoa(info.ipi_addr);
        request.peer = peer;
        {
            std::lock_guard guard(lock);
            requests.push_back(request);
        }
        handler(*this, request);
    }
}

void SnmpAgent::Send(const AgentRequest &request, const std::string &bytes, const std::string &from) {
    sockaddr_in peer = request.peer;
    iovec part = {const_cast<char *>(bytes.data()), bytes.size()};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(in_pktinfo))] = {};
    msghdr message = {&peer, sizeof peer, &part, 1, control, sizeof control, 0};
    cmsghdr *head = CMSG_FIRSTHDR(&message);
    head->cmsg_level = IPPROTO_IP;
    head->cmsg_type = IP_PKTINFO;
    head->cmsg_len = CMSG_LEN(sizeof(in_pktinfo));
    in_pktinfo info = {};
    inet_aton(from.empty() ? request.to.c_str() : from.c_str(), &info.ipi_spec_dst);
    memcpy(CMSG_DATA(head), &info, sizeof info);
    sendmsg(socket, &message, 0);
}

void SnmpAgent::Answer(const AgentRequest &request, const std::string &value) {
    Send(request, BerResponse(request.id, BerBinding(request.name, value)));
}

// Lines that change printers at work: a socket in the file system, one line "ADDRESS LINE" a connection,
// answered by "ok" or by what is wrong.
#include "tools/prnsim/SimNet.h"

#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

static constexpr std::string_view Good = "ok";

// An unconnected socket and the name that belongs to a path; -1 with the reason on standard error.
static int MakeSocket(const std::string &path, sockaddr_un *name) {
    *name = {};
    name->sun_family = AF_UNIX;
    int made = -1;
    if (path.size() >= sizeof name->sun_path)
        errno = ENAMETOOLONG;
    else
        made = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    path.copy(name->sun_path, sizeof name->sun_path - 1);
    if (made < 0) fprintf(stderr, "prnsim: %s: %s\n", path.c_str(), strerror(errno));
    return made;
}

bool SimNet::OpenControl(const std::string &path) {
    sockaddr_un name;
    int made = MakeSocket(path, &name);
    if (made < 0) return false;
    if (bind(made, reinterpret_cast<sockaddr *>(&name), sizeof name) != 0 ||
        listen(made, LISTEN_BACKLOG) != 0) {
        fprintf(stderr, "prnsim: %s: %s\n", path.c_str(), strerror(errno));
        close(made);
        return false;
    }
    control = made;
    controlPath = path;
    return Watch(control, CONTROL, 0);
}

void SimNet::AcceptChange() {
    int made = accept4(control, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (made >= 0 && !Watch(made, CHANGE, static_cast<size_t>(made))) close(made);
}

void SimNet::ReceiveChange(int socket) {
    ssize_t got = recv(socket, buffer, sizeof buffer, 0);
    if (got > 0) {
        std::string answer = Change({buffer, static_cast<size_t>(got)});
        if (send(socket, answer.data(), answer.size(), MSG_NOSIGNAL) < 0)
            perror("prnsim: answer to a change");
    }
    close(socket);
}

// What a set put in the place of the value that is changed is forgotten with it.
std::string SimNet::Change(std::string_view line) {
    std::set<SimOid> names;
    try {
        size_t number = SimChangeFleet(&fleet, options, line, &names);
        std::erase_if(printers[number].changed, [&](const auto &item) {
            return names.count(item.first) || !SimFind(*printers[number].place, item.first);
        });
        Turn(number);
        if (off[number] || FollowKnobs(number)) return std::string(Good);
        return "change: a socket can't be opened";
    } catch (const SimFault &fault) {
        return fault.what();
    }
}

// The answer to one line; what failed where there is none.
static std::string SendLine(int socket, const sockaddr_un &name, const std::string &line) {
    char answer[1024];
    if (connect(socket, reinterpret_cast<const sockaddr *>(&name), sizeof name) != 0 ||
        send(socket, line.data(), line.size(), MSG_NOSIGNAL) < 0)
        return strerror(errno);
    ssize_t got = recv(socket, answer, sizeof answer, 0);
    if (got > 0) return {answer, static_cast<size_t>(got)};
    return got < 0 ? strerror(errno) : "no answer";
}

bool SimSendChange(const std::string &path, const std::vector<std::string> &lines) {
    for (const std::string &line : lines) {
        sockaddr_un name;
        int socket = MakeSocket(path, &name);
        if (socket < 0) return false;
        std::string answer = SendLine(socket, name, line);
        close(socket);
        if (answer == Good) continue;
        fprintf(stderr, "prnsim: %s: %s\n", line.c_str(), answer.c_str());
        return false;
    }
    return true;
}

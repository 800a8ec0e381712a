// The printers' connections: who is let in and cut off, and their web pages.
#include "tools/prnsim/SimNet.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

enum { REQUEST_MAX = 8192 };
static constexpr SimTime Patience = 10000000; // with a client that says nothing

// Lines of the page, in order; those that the printer lacks are left out.
static constexpr struct {
    const char *label, *name;
} PageRows[] = {
    {"Model", "1.3.6.1.2.1.25.3.2.1.3.1"},      {"Name", "1.3.6.1.2.1.1.5.0"},
    {"Location", "1.3.6.1.2.1.1.6.0"},          {"Contact", "1.3.6.1.2.1.1.4.0"},
    {"Console", "1.3.6.1.2.1.43.16.5.1.2.1.1"}, {"Pages printed", "1.3.6.1.2.1.43.10.2.1.4.1.1"},
};
static constexpr char SupplyText[] = "1.3.6.1.2.1.43.11.1.1.6.1.", SupplyMax[] = "1.3.6.1.2.1.43.11.1.1.8.1.",
                      SupplyLevel[] = "1.3.6.1.2.1.43.11.1.1.9.1.";

static const SimValue *LookText(const SimPrinter &printer, const std::string &name) {
    SimOid oid;
    return SimParseOid(name, &oid) ? SimAgent::Look(printer, oid) : nullptr;
}

static std::string ShownText(const SimPrinter &printer, const std::string &name) {
    const SimValue *value = LookText(printer, name);
    if (!value) return "";
    if (value->tag != SIM_OCTETS) return std::to_string(value->number);
    std::string shown;
    for (char ch : SimExpand(*value, printer.place->address, printer.place->number)) {
        if (ch == '<')
            shown += "&lt;";
        else if (ch == '&')
            shown += "&amp;";
        else
            shown += ch;
    }
    return shown;
}

static std::string PageRow(const std::string &label, const std::string &text) {
    return "<tr><th>" + label + "</th><td>" + text + "</td></tr>\n";
}

static std::string PageText(const SimPrinter &printer) {
    std::string rows;
    for (const auto &row : PageRows) {
        std::string text = ShownText(printer, row.name);
        if (!text.empty()) rows += PageRow(row.label, text);
    }
    for (int i = 1; LookText(printer, SupplyText + std::to_string(i)); i++) {
        std::string n = std::to_string(i);
        rows += PageRow(ShownText(printer, SupplyText + n),
                        ShownText(printer, SupplyLevel + n) + " of " + ShownText(printer, SupplyMax + n));
    }
    std::string title = ShownText(printer, PageRows[0].name);
    return "<!DOCTYPE html>\n<html><head><title>" + title + "</title></head><body>\n<h1>" + title +
           "</h1>\n<table>\n" + rows + "</table>\n</body></html>\n";
}

std::string SimNet::Page(size_t number, std::string_view request) {
    SimAgent::Settle(&printers[number], Now());
    bool flHead = request.substr(0, 5) == "HEAD ", flGet = request.substr(0, 4) == "GET ";
    size_t path = flHead ? 5 : 4;
    const char *status = "501 Not Implemented";
    std::string body = "Not implemented\n", type = "text/plain";
    if ((flHead || flGet) && request.substr(path, 2) == "/ ") {
        status = "200 OK";
        body = PageText(printers[number]);
        type = "text/html";
    } else if (flHead || flGet) {
        status = "404 Not Found";
        body = "Not found\n";
    }
    return std::string("HTTP/1.0 ") + status + "\r\nContent-Type: " + type +
           "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" +
           (flHead ? "" : body);
}

// A full house takes nobody.
void SimNet::Accept(int listener, Kind kind, size_t number) {
    int made = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (made < 0) return;
    size_t at = 0;
    while (at < connections.size() && connections[at].socket >= 0) at++;
    if (at == connections.size() && at < CONNECTIONS_MAX) connections.emplace_back();
    if (at == CONNECTIONS_MAX || !Watch(made, CONNECTION, at)) {
        close(made);
        return;
    }
    open++;
    Connection &connection = connections[at];
    connection = {.socket = made, .kind = kind, .printer = number, .deadline = Now() + Patience};
    if (kind == RAW) connection.file = JobFile(number, KNOB_RAW, ++prints[number], ".prn");
}

void SimNet::Serve(size_t number) {
    Connection &connection = connections[number];
    if (connection.socket < 0) return; // closed since the event was fetched
    connection.deadline = Now() + Patience;
    bool flMore = connection.kind == WEB   ? ServeWeb(&connection, number)
                  : connection.kind == RAW ? ServeRaw(&connection)
                                           : ServeLpd(&connection);
    if (!flMore) Close(&connection);
}

// The readers and writers of connections give false when theirs is done with.
bool SimNet::ReadWeb(Connection *connection, size_t number) {
    std::string &text = connection->text;
    ssize_t got = recv(connection->socket, buffer, sizeof buffer, 0);
    if (got <= 0) return got < 0 && errno == EAGAIN;
    if (printers[connection->printer].Knob(KNOB_WEB).first == WEB_MUTE) return true;
    text.append(buffer, static_cast<size_t>(got));
    if (text.find("\r\n\r\n") == text.npos && text.find("\n\n") == text.npos)
        return text.size() < REQUEST_MAX;
    text = Page(connection->printer, text);
    connection->flAnswering = true;
    return Watch(connection->socket, CONNECTION, number, true);
}

bool SimNet::ServeWeb(Connection *connection, size_t number) {
    std::string &text = connection->text;
    if (!connection->flAnswering) return ReadWeb(connection, number);
    ssize_t sent = send(connection->socket, text.data(), text.size(), MSG_NOSIGNAL);
    if (sent < 0) return errno == EAGAIN;
    text.erase(0, static_cast<size_t>(sent));
    return !text.empty();
}

void SimNet::Close(Connection *connection) {
    if (connection->socket < 0) return;
    close(connection->socket);
    if (connection->file >= 0) close(connection->file);
    connection->socket = connection->file = -1;
    connection->text.clear();
    open--;
}

void SimNet::CloseOld() {
    if (!open) return;
    SimTime now = Now();
    for (Connection &connection : connections) {
        if (connection.socket < 0 || connection.kind != WEB || now <= connection.deadline) continue;
        if (printers[connection.printer].Knob(KNOB_WEB).first != WEB_MUTE) Close(&connection);
    }
}

// A printer that is gone refuses connections and cuts those it had. The ports stay bound meanwhile.
void SimNet::SwitchOff(size_t number) {
    off[number] = true;
    for (const Port &port : Ports) {
        int socket = sockets[port.kind][number];
        if (socket < 0) continue;
        epoll_ctl(epoll, EPOLL_CTL_DEL, socket, nullptr);
        shutdown(socket, SHUT_RDWR);
    }
    for (Connection &connection : connections) {
        if (connection.printer == number) Close(&connection);
    }
}

void SimNet::SwitchOn(size_t number) {
    off[number] = false;
    bool flGood = true;
    for (const Port &port : Ports) {
        int socket = sockets[port.kind][number];
        if (socket >= 0)
            flGood = listen(socket, LISTEN_BACKLOG) == 0 && Watch(socket, port.kind, number) && flGood;
    }
    if (!FollowKnobs(number) || !flGood)
        fprintf(stderr, "prnsim: a port could not be opened again: %s\n", strerror(errno));
}

void SimNet::Turn(size_t number) {
    bool flGone = printers[number].IsGone(Now());
    if (flGone == off[number]) return;
    flGone ? SwitchOff(number) : SwitchOn(number);
}

void SimNet::TurnAll() {
    for (SimTime now = Now(); !turning.empty() && turning.begin()->first <= now;) {
        size_t number = turning.begin()->second;
        turning.erase(turning.begin());
        Turn(number);
    }
}

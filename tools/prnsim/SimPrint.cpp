// The printers' ports for print data: 9100, where everything up to the end is the job, and LPD (RFC 1179).
#include "tools/prnsim/SimNet.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

enum { LPD_LINE_MAX = 1024, LPD_FILE_MAX = 1 << 30 };
enum { LPD_PRINT = 1, LPD_RECEIVE, LPD_SHORT, LPD_LONG, LPD_REMOVE }; // commands: first byte of a line
enum { LPD_ABORT = 1, LPD_CONTROL, LPD_DATA };                        // the same within a job
enum { LPD_GOOD = 0, LPD_BAD = 1 };                                   // answers

// A file for one print job, -1 if the printer doesn't store them.
int SimNet::JobFile(size_t number, SimKnob knob, uint32_t job, const char *suffix) {
    const std::string &directory = printers[number].Knob(knob).text;
    if (directory.empty()) return -1;
    std::string path = directory + "/" + SimAddressText(printers[number].place->address) + "-" +
                       std::to_string(job) + suffix;
    int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file < 0) fprintf(stderr, "prnsim: %s: %s\n", path.c_str(), strerror(errno));
    return file;
}

bool SimNet::Keep(const Connection &connection, std::string_view bytes) {
    if (connection.file < 0 ||
        write(connection.file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()))
        return true;
    fprintf(stderr, "prnsim: a print job could not be stored: %s\n", strerror(errno));
    return false;
}

bool SimNet::ServeRaw(Connection *connection) {
    ssize_t got = recv(connection->socket, buffer, sizeof buffer, 0);
    if (got <= 0) return got < 0 && errno == EAGAIN;
    return Keep(*connection, {buffer, static_cast<size_t>(got)});
}

// --- LPD ---

static bool Answer(int socket, char byte) {
    return send(socket, &byte, 1, MSG_NOSIGNAL) == 1;
}

// Begins a file of a job, "COUNT NAME" behind its letter. A count of 0 is a file of unknown length, which
// only data can have. Of several data files the second and further ones are jobs of their own.
bool SimNet::LpdFile(Connection *connection) {
    bool flData = connection->text[0] == LPD_DATA;
    size_t blank = connection->text.find(' ');
    if (blank == std::string::npos || !SimParseNumber(std::string_view(connection->text).substr(1, blank - 1),
                                                      0, LPD_FILE_MAX, &connection->left))
        return false;
    if (flData && connection->flData) connection->job = ++prints[connection->printer];
    connection->flData = connection->flData || flData;
    connection->file = JobFile(connection->printer, KNOB_LPD, connection->job, flData ? ".prn" : ".control");
    if (flData && connection->left == 0) connection->left = -1;
    connection->lpd = connection->left ? Connection::IN_FILE : Connection::BEHIND_FILE;
    return true;
}

// Carries out the line in `text`; false ends the connection.
bool SimNet::LpdLine(Connection *connection) {
    int letter = connection->text.empty() ? 0 : connection->text[0];
    if (connection->lpd == Connection::IN_JOB) {
        if (letter == LPD_CONTROL || letter == LPD_DATA)
            return Answer(connection->socket, LpdFile(connection) ? LPD_GOOD : LPD_BAD) &&
                   connection->lpd != Connection::IN_JOB;
        return letter == LPD_ABORT && Answer(connection->socket, LPD_GOOD);
    }
    if (letter == LPD_RECEIVE) {
        connection->lpd = Connection::IN_JOB;
        connection->job = ++prints[connection->printer];
        return Answer(connection->socket, LPD_GOOD);
    }
    static constexpr std::string_view Empty = "no entries\n";
    if (letter == LPD_SHORT || letter == LPD_LONG)
        return send(connection->socket, Empty.data(), Empty.size(), MSG_NOSIGNAL), false;
    if (letter == LPD_PRINT || letter == LPD_REMOVE) return Answer(connection->socket, LPD_GOOD), false;
    return false;
}

// Takes a line, a piece of a file or the byte behind one; how many bytes that was, 0 to end the connection.
size_t SimNet::LpdTake(Connection *connection, std::string_view bytes) {
    if (connection->lpd == Connection::IN_FILE) {
        bool flKnown = connection->left > 0;
        if (flKnown) bytes = bytes.substr(0, static_cast<size_t>(connection->left));
        if (!Keep(*connection, bytes)) return 0;
        if (flKnown && (connection->left -= static_cast<int64_t>(bytes.size())) == 0)
            connection->lpd = Connection::BEHIND_FILE;
        return bytes.size();
    }
    if (connection->lpd == Connection::BEHIND_FILE) {
        if (connection->file >= 0) close(connection->file);
        connection->file = -1;
        connection->lpd = Connection::IN_JOB;
        return bytes[0] == LPD_GOOD && Answer(connection->socket, LPD_GOOD) ? 1 : 0;
    }
    size_t end = bytes.find('\n'), taken = end == bytes.npos ? bytes.size() : end + 1;
    connection->text.append(bytes.substr(0, std::min(end, bytes.size())));
    if (connection->text.size() > LPD_LINE_MAX) return 0;
    if (end == bytes.npos) return taken;
    bool flMore = LpdLine(connection);
    connection->text.clear();
    return flMore ? taken : 0;
}

bool SimNet::ServeLpd(Connection *connection) {
    ssize_t got = recv(connection->socket, buffer, sizeof buffer, 0);
    if (got <= 0) return got < 0 && errno == EAGAIN;
    for (std::string_view bytes(buffer, static_cast<size_t>(got)); !bytes.empty();) {
        size_t taken = LpdTake(connection, bytes);
        if (taken == 0) return false;
        bytes.remove_prefix(taken);
    }
    return true;
}

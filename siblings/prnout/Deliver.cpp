// Connections, the two protocols and devices.
#include "siblings/prnout/Deliver.h"

#include "siblings/lib/Files.h"
#include "siblings/lib/Spool.h"
#include "siblings/lib/Utf8.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <linux/sockios.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

enum { POLL_MS = 1000, CHUNK = 65536, NAME_PART = 31, LPD_TITLE = 99, PORT_FIRST = 1023, PORT_LAST = 512 };
enum { OUTQ_PAUSE_MS = 20, BUSY_PAUSE_MS = 100 };

const char Cancelled[] = "the job was removed";

static const char Cut[] = "the job's file got shorter";

// Where the bytes go. Errors are kept, so that a row of steps may end at the first.
struct Channel {
    int file = -1;
    const Delivery *job = nullptr;
    std::string error;
};

static bool Fail(Channel &channel, const char *why) {
    if (channel.error.empty()) channel.error = why;
    return false;
}

static bool IsWanted(Channel &channel) {
    bool flGone = access(channel.job->control.c_str(), F_OK) && errno == ENOENT;
    return !flGone || Fail(channel, Cancelled);
}

static void PauseMs(int milliseconds) {
    struct timespec pause = {0, milliseconds * 1000000L};
    nanosleep(&pause, nullptr);
}

// Waits until the channel is ready; no longer than some seconds, or without a limit for 0.
static bool WaitFor(Channel &channel, short events, int seconds) {
    struct pollfd wait = {channel.file, events, 0};
    time_t end = time(nullptr) + seconds;
    while (poll(&wait, 1, POLL_MS) <= 0) {
        if (!IsWanted(channel)) return false;
        if (seconds && time(nullptr) > end) return Fail(channel, strerror(ETIMEDOUT));
    }
    return true;
}

static bool ShowOpened(Channel &channel) {
    SpoolStatus(channel.job->directory, channel.job->status);
    return true;
}

// A parallel port is always ready by its driver's word, and says only when it is written to that it is busy
// or has no paper.
static bool IsBusy(const Channel &channel, int reason) {
    bool flPaper = reason == ENOSPC && channel.job->target.kind == TARGET_DEVICE;
    if (flPaper)
        SpoolStatus(channel.job->directory, "waiting: " + channel.job->target.path + ": out of paper\n");
    return flPaper || reason == EAGAIN;
}

static bool Put(Channel &channel, std::string_view bytes) {
    bool flBusy = false;
    while (!bytes.empty()) {
        if (!WaitFor(channel, POLLOUT, 0)) return false;
        ssize_t count = write(channel.file, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        int reason = count < 0 ? errno : 0;
        if (reason && !IsBusy(channel, reason)) return Fail(channel, strerror(reason));
        if (count > 0) bytes.remove_prefix(static_cast<size_t>(count));
        if (count > 0 && flBusy) ShowOpened(channel);
        flBusy = count <= 0;
        if (!flBusy) continue;
        if (!IsWanted(channel)) return false;
        PauseMs(BUSY_PAUSE_MS);
    }
    return true;
}

static bool PutData(Channel &channel) {
    static char buffer[CHUNK];
    for (off_t at = 0; at < channel.job->size;) {
        size_t wanted = std::min<size_t>(sizeof buffer, (size_t)(channel.job->size - at));
        ssize_t count = pread(channel.job->data, buffer, wanted, at);
        if (count < 0) return Fail(channel, strerror(errno));
        if (count == 0) return Fail(channel, Cut);
        if (!Put(channel, std::string_view(buffer, static_cast<size_t>(count)))) return false;
        at += count;
    }
    return true;
}

// ---- Connections

// RFC 1179 wants a low port, which only root gets. Where they are taken any other has to do.
static void BindLowPort(int file, int family) {
    struct sockaddr_storage address = {};
    socklen_t size = family == AF_INET6 ? sizeof(struct sockaddr_in6) : sizeof(struct sockaddr_in);
    address.ss_family = (sa_family_t)family;
    int first = PORT_FIRST - (int)(getpid() % 256);
    for (int port = first; !geteuid() && port >= PORT_LAST; port--) {
        in_port_t wire = htons((in_port_t)port);
        if (family == AF_INET6)
            reinterpret_cast<struct sockaddr_in6 *>(&address)->sin6_port = wire;
        else
            reinterpret_cast<struct sockaddr_in *>(&address)->sin_port = wire;
        if (!bind(file, reinterpret_cast<struct sockaddr *>(&address), size)) return;
    }
}

static bool Connect(Channel &channel, const struct addrinfo &address, bool flLow) {
    int reason = 0;
    socklen_t size = sizeof reason;
    channel.error.clear();
    channel.file = socket(address.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
    if (channel.file < 0) return Fail(channel, strerror(errno));
    if (flLow) BindLowPort(channel.file, address.ai_family);
    if (connect(channel.file, address.ai_addr, address.ai_addrlen) && errno != EINPROGRESS)
        return Fail(channel, strerror(errno));
    if (!WaitFor(channel, POLLOUT, CONNECT_SECONDS)) return false;
    if (getsockopt(channel.file, SOL_SOCKET, SO_ERROR, &reason, &size)) reason = errno;
    return !reason || Fail(channel, strerror(reason));
}

static void CloseChannel(Channel &channel) {
    if (channel.file >= 0) close(channel.file);
    channel.file = -1;
}

static bool OpenConnection(Channel &channel, const char *port, bool flLow) {
    const Target &target = channel.job->target;
    struct addrinfo hints = {}, *list = nullptr;
    hints.ai_socktype = SOCK_STREAM;
    if (!target.port.empty()) port = target.port.c_str();
    int status = getaddrinfo(target.host.c_str(), port, &hints, &list);
    if (status) return Fail(channel, gai_strerror(status));
    bool flConnected = false;
    for (struct addrinfo *each = list; each && !flConnected; each = each->ai_next) {
        flConnected = Connect(channel, *each, flLow);
        // A low port may still be known to the receiver from the job before.
        if (!flConnected && flLow && channel.error != Cancelled) {
            CloseChannel(channel);
            flConnected = Connect(channel, *each, false);
        }
        if (!flConnected) CloseChannel(channel);
    }
    freeaddrinfo(list);
    return flConnected;
}

// ---- Port 9100

// Reads what the printer has to say until it closes; false if it breaks the connection off or time is over,
// as it is in the end for a printer that goes on and on about its state.
static bool ReadToEnd(Channel &channel) {
    char buffer[4096];
    for (time_t end = time(nullptr) + CLOSE_SECONDS;;) {
        if (time(nullptr) > end) return IsWanted(channel) && Fail(channel, strerror(ETIMEDOUT));
        if (!WaitFor(channel, POLLIN, CLOSE_SECONDS)) return false;
        ssize_t count = read(channel.file, buffer, sizeof buffer);
        if (count == 0) return true;
        if (count < 0 && errno != EAGAIN && errno != EINTR) return Fail(channel, strerror(errno));
    }
}

// Bytes that the printer hasn't acknowledged.
static int Unacknowledged(int file) {
    int count = 0;
    return ioctl(file, SIOCOUTQ, &count) ? 0 : count;
}

// A connection that is broken off may have taken bytes with it that were acknowledged but not read, so only
// an end in order counts; a printer that has all and doesn't close is left after a while.
static bool EndConnection(Channel &channel) {
    shutdown(channel.file, SHUT_WR);
    while (!ReadToEnd(channel)) {
        if (channel.error != strerror(ETIMEDOUT)) return false;
        channel.error.clear();
        if (!Unacknowledged(channel.file)) return true;
    }
    for (int waited = 0; Unacknowledged(channel.file); waited += OUTQ_PAUSE_MS) {
        if (waited > CLOSE_SECONDS * 1000) return Fail(channel, "closed the connection too early");
        PauseMs(OUTQ_PAUSE_MS);
    }
    return true;
}

static void SendBySocket(Channel &channel) {
    if (OpenConnection(channel, "9100", false) && ShowOpened(channel) && Put(channel, channel.job->banner) &&
        PutData(channel))
        EndConnection(channel);
}

// ---- Line printer protocol

static bool Acknowledged(Channel &channel) {
    char answer = 0;
    if (!WaitFor(channel, POLLIN, ANSWER_SECONDS)) return false;
    ssize_t count = read(channel.file, &answer, 1);
    if (count < 0) return Fail(channel, strerror(errno));
    if (count == 0) return Fail(channel, "closed the connection too early");
    return !answer || Fail(channel, "doesn't take the job now");
}

static std::string LpdWord(std::string text, size_t limit) {
    for (char &byte : text)
        if (static_cast<unsigned char>(byte) < ' ' || byte == 127) byte = ' ';
    return text.substr(0, limit);
}

static std::string LpdControl(const Delivery &job, const std::string &host, const std::string &data) {
    std::string title = LpdWord(CleanUtf8(job.title, LPD_TITLE), LPD_TITLE);
    return "H" + host + "\nP" + LpdWord(job.user, NAME_PART) + "\nJ" + title + "\nl" + data + "\nU" + data +
           "\nN" + title + "\n";
}

static void SendByLpd(Channel &channel) {
    const Delivery &job = *channel.job;
    char number[8];
    snprintf(number, sizeof number, "A%03d", job.number % 1000);
    std::string host = HostName().substr(0, NAME_PART), tail = number + host, data = "df" + tail;
    std::string control = LpdControl(job, host, data), nul(1, '\0');
    std::string sizes[] = {std::to_string(control.size()),
                           std::to_string((long long)job.banner.size() + job.size)};
    bool flSent = OpenConnection(channel, "515", true) && Put(channel, "\2" + job.target.path + "\n") &&
                  Acknowledged(channel) && ShowOpened(channel) &&
                  Put(channel, "\2" + sizes[0] + " cf" + tail + "\n") && Acknowledged(channel) &&
                  Put(channel, control + nul) && Acknowledged(channel) &&
                  Put(channel, "\3" + sizes[1] + " " + data + "\n") && Acknowledged(channel) &&
                  Put(channel, job.banner) && PutData(channel) && Put(channel, nul);
    if (flSent) Acknowledged(channel);
}

// ---- Devices

// A line speaks to the printer as it is, at the speed that the family's printers have.
static void SetLine(int file) {
    struct termios line;
    if (tcgetattr(file, &line)) return;
    cfmakeraw(&line);
    cfsetspeed(&line, B9600);
    line.c_cflag |= CLOCAL | CREAD;
    line.c_iflag |= IXON;
    tcsetattr(file, TCSANOW, &line);
}

static bool OpenDevice(Channel &channel) {
    struct stat status;
    const char *path = channel.job->target.path.c_str();
    channel.file = open(path, O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (channel.file < 0) return Fail(channel, strerror(errno));
    // A disk would be overwritten, and so would a file.
    if (fstat(channel.file, &status) || !S_ISCHR(status.st_mode))
        return Fail(channel, "is no printer device");
    SetLine(channel.file);
    return true;
}

// The line has what it was given only when its queue is empty; a printer that holds it up is waited for, but
// not for the sake of a job that was removed.
static void EndLine(Channel &channel) {
    int left = 0;
    while (!ioctl(channel.file, TIOCOUTQ, &left) && left > 0) {
        if (!IsWanted(channel)) {
            tcflush(channel.file, TCOFLUSH);
            return;
        }
        PauseMs(BUSY_PAUSE_MS);
    }
    if (tcdrain(channel.file)) Fail(channel, strerror(errno));
}

static void SendToDevice(Channel &channel) {
    if (!OpenDevice(channel) || !ShowOpened(channel) || !Put(channel, channel.job->banner) ||
        !PutData(channel))
        return;
    if (isatty(channel.file)) EndLine(channel);
}

std::string Deliver(const Delivery &job) {
    Channel channel;
    channel.job = &job;
    switch (job.target.kind) {
    case TARGET_SOCKET: SendBySocket(channel); break;
    case TARGET_LPD: SendByLpd(channel); break;
    case TARGET_DEVICE: SendToDevice(channel); break;
    }
    CloseChannel(channel);
    if (channel.error.empty() || channel.error == Cancelled) return channel.error;
    const std::string &name = job.target.kind == TARGET_DEVICE ? job.target.path : job.target.host;
    return name + ": " + channel.error;
}

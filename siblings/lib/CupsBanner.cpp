// The banner template, how it gets to the scheduler, and the coding of its titles.
#include "siblings/lib/CupsBanner.h"

#include "siblings/lib/BannerPage.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Say.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sys/stat.h>
#include <unistd.h>

enum { RELOAD_POLLS = 100, RELOAD_POLL_NS = 20000000, PID_FILE_MAX = 32, COMM_MAX = 64, STAT_MAX = 4096 };

enum { STAT_START_TIME = 22 }; // field of /proc/PID/stat, in clock ticks since the machine started

static const char DataDirectory[] = "/usr/share/cups";
static const char SocketPath[] = "/run/cups/cups.sock";

// The scheduler puts a job's values for {name}, escaped for PostScript; {?name} may be absent. An empty size
// leaves the 0, an empty title no line.
static const char TemplateLines[] =
    "({?prnq-ha}) 0{?prnq-sa} Centered\n"
    "({?prnq-hb}) 0{?prnq-sb} Centered\n"
    "({?prnq-hc}) 0{?prnq-sc} Centered\n"
    "({job-originating-user-name}  {printer-name}-{job-id}  {?job-name}) 14 Centered\n";

std::string CupsBannerPage() {
    return BannerPage(TemplateLines);
}

static double Seconds(const struct timespec &time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

static double Seconds(clockid_t clock) {
    struct timespec now;
    clock_gettime(clock, &now);
    return Seconds(now);
}

static std::string DataPath() {
    const char *data = getenv("PRNQ_DATADIR");
    return data && *data == '/' ? data : DataDirectory;
}

static std::string Socket() {
    const char *server = getenv("CUPS_SERVER");
    return server ? server : SocketPath;
}

// The scheduler's number stands beside its socket; 0 for none, or if the number is some other process's by
// now.
static pid_t SchedulerPid() {
    std::string socket = Socket(), text, name;
    if (socket.front() != '/') return 0;
    if (!ReadWholeFile(socket.substr(0, socket.rfind('/')) + "/cupsd.pid", PID_FILE_MAX, text).empty())
        return 0;
    int pid = atoi(text.c_str());
    if (pid <= 1 || !ReadWholeFile("/proc/" + std::to_string(pid) + "/comm", COMM_MAX, name).empty())
        return 0;
    return name == "cupsd\n" ? pid : 0;
}

static bool IsIdle() {
    Ran ran = RunChild({"lpstat", "-o"});
    return Succeeded(ran) && ran.output.empty();
}

// When a process began, in seconds since 1970; 0 if that can't be told.
static double StartOf(pid_t pid) {
    std::string text, uptime;
    if (!ReadWholeFile("/proc/" + std::to_string(pid) + "/stat", STAT_MAX, text).empty()) return 0;
    if (!ReadWholeFile("/proc/uptime", STAT_MAX, uptime).empty()) return 0;
    const char *field = strrchr(text.c_str(), ')');
    for (int number = 2; field && number < STAT_START_TIME; number++) field = strchr(field + 1, ' ');
    if (!field) return 0;
    return Seconds(CLOCK_REALTIME) - atof(uptime.c_str()) +
           atof(field) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

// A banner is known if it is older than the scheduler, or than its socket, which it makes anew when it reads
// its files again.
static bool IsKnown(const std::string &banner, pid_t pid) {
    struct stat socket, file;
    if (stat(banner.c_str(), &file)) return false;
    double written = Seconds(file.st_ctim);
    return (!stat(Socket().c_str(), &socket) && written < Seconds(socket.st_ctim)) ||
           (pid && written < StartOf(pid));
}

// Where the socket belongs to the host's service manager it stays; then the answer is all there is to wait
// for.
static bool Reload(pid_t pid, const std::string &banner) {
    struct timespec pause = {0, RELOAD_POLL_NS};
    if (kill(pid, SIGHUP)) return false;
    for (int poll = 0; poll < RELOAD_POLLS && !IsKnown(banner, pid); poll++) nanosleep(&pause, nullptr);
    for (int poll = 0; poll < RELOAD_POLLS; poll++) {
        Ran ran = RunChild({"lpstat", "-r"});
        if (Succeeded(ran) && ran.output.find("is running") != ran.output.npos) return true;
        if (ran.flTimedOut) return false;
        nanosleep(&pause, nullptr);
    }
    return false;
}

// The new file is written beside the directory of banners, not in it: the scheduler takes every name there
// for one.
static std::string WriteTemplate(const std::string &path) {
    std::string beside = DataPath() + "/.prnq";
    if (mkdir((DataPath() + "/banners").c_str(), 0755) && errno != EEXIST)
        return "can't make " + DataPath() + "/banners";
    std::string error = PrepareFile(beside, CupsBannerPage(), 0644);
    if (!error.empty()) return error;
    if (!rename((beside + "_new").c_str(), path.c_str())) return "";
    DropFile(beside);
    return "can't write " + path;
}

static std::string InstallBanner() {
    std::string path = DataPath() + "/banners/prnq", error;
    bool flThere = !access(path.c_str(), R_OK);
    pid_t pid = SchedulerPid();
    if (flThere && IsKnown(path, pid)) return "";
    if (!pid) return "the scheduler's process isn't known";
    if (!IsIdle()) return "jobs are waiting";
    if (!flThere) error = WriteTemplate(path);
    if (!error.empty()) return error;
    // A queue that asks for an unknown banner would refuse every job.
    return Reload(pid, path) ? "" : "the scheduler doesn't read its files again";
}

bool CupsBannerReady(bool flTell) {
    static int state = -1;
    if (state >= 0) return state;
    std::string error = InstallBanner();
    state = error.empty();
    if (!state && flTell) TellUser(Say(SayNoBannerYet, error));
    return state;
}

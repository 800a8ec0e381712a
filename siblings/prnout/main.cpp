// prnout: hands a file to a queue, of the host's scheduler or of the tool's own store.
#include "siblings/lib/BannerPage.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/CupsJobs.h"
#include "siblings/lib/Detached.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Frame.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Spool.h"
#include "siblings/prnout/JobTable.h"
#include "siblings/prnout/Sender.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

static const char UsageText[] = "usage: prnout [-d QUEUE] [-DL] [-oNoUi] FILE  send a file to a queue\n"
                                "       prnout -l [-d QUEUE] [--json]  list the jobs that wait\n"
                                "       prnout -send DIRECTORY | -watch DIRECTORY\n"
                                "       prnout --help | --version\n"
                                "\n"
                                "  -d QUEUE  the queue; without it the default queue\n"
                                "  -DL       download: every byte as it is, without banner page or filter\n"
                                "  -oNoUi    ask nothing (nothing is ever asked)\n"
                                "  -l        a table, with names that prnrm takes; --json: for programs\n"
                                "  -send     print the jobs that wait in a spool directory\n"
                                "  -watch    keep the list of a spool directory true while jobs wait\n";

static const char Self[] = "/proc/self/exe"; // also where a newer one has been installed

struct Words {
    std::string queue, file;
    bool flRaw = false, flQueue = false, flHelp = false, flVersion = false;
    bool flList = false, flJson = false;
};

// ---- Command line

static std::string Shown(std::string_view word) {
    return "\"" + std::string(word.substr(0, 80)) + "\"";
}

// An option, with the word behind it if it stands apart from its value; at moves to the last word taken.
static std::string ReadOption(const std::vector<std::string> &all, size_t &at, Words &words) {
    const std::string &word = all[at];
    if (word == "--help" || word == "--version")
        (word == "--help" ? words.flHelp : words.flVersion) = true;
    else if (word == "-l" || word == "--json")
        (word == "-l" ? words.flList : words.flJson) = true;
    else if (word == "-DL")
        words.flRaw = true;
    else if (word == "-oNoUi" || (word == "-o" && at + 1 < all.size() && all[at + 1] == "NoUi"))
        at += word == "-o";
    else if (word.starts_with("-d")) {
        if (word == "-d" && at + 1 == all.size()) return "-d needs a queue";
        words.queue = word == "-d" ? all[++at] : word.substr(2);
        words.flQueue = true;
    } else
        return "option " + Shown(word) + " is unknown";
    return "";
}

static std::string ReadWords(const std::vector<std::string> &all, Words &words) {
    bool flOptions = true;
    int files = 0;
    for (size_t at = 0; at < all.size(); at++) {
        std::string error;
        if (flOptions && all[at] == "--")
            flOptions = false;
        else if (flOptions && all[at].starts_with('-'))
            error = ReadOption(all, at, words);
        else if (files++)
            error = "one file at a time: " + Shown(all[at]) + " is one too many";
        else
            words.file = all[at];
        if (!error.empty()) return error;
    }
    if (words.flList && (words.flRaw || files)) return "-l takes no file";
    if (words.flJson && !words.flList) return "--json belongs to -l";
    if (words.flList && words.flQueue && words.queue.empty()) return "-d needs a queue";
    bool flWhole = words.flHelp || words.flVersion || words.flList || !words.file.empty();
    return flWhole ? "" : "no file is told; see prnout --help";
}

// ---- The file

// Relative names refer to the directory that the caller tells, else to the current one.
static std::string PathOf(const std::string &file) {
    const char *source = getenv("PrnOutFileSourceDir");
    char current[PATH_MAX];
    if (file.starts_with('/')) return file;
    std::string path = source && *source && strcmp(source, ".") ? source + ("/" + file) : file;
    if (path.starts_with('/') || !getcwd(current, sizeof current)) return path;
    return std::string(current) + "/" + path;
}

static std::string OpenFile(const std::string &path, int &file) {
    struct stat status;
    // Not blocking: a pipe without a writer would hold the caller.
    file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return "can't open " + path.substr(0, PATH_MAX) + ": " + strerror(errno);
    if (fstat(file, &status) || !S_ISREG(status.st_mode)) return path + " is no regular file";
    return status.st_size ? "" : path + " is empty";
}

static std::string TitleOf(const std::string &path) {
    return path.substr(path.rfind('/') + 1);
}

// ---- The scheduler's queues

static std::string BannerFile(const Queue &queue, const std::string &title) {
    std::string name = "/tmp/prnout.XXXXXX";
    Titles titles = ReadTitles(queue.banner.empty() ? RecordsBanner() : queue.banner);
    std::string page = BannerOfJob(titles, UserName(), queue.name, title);
    int file = mkostemp(name.data(), O_CLOEXEC);
    bool flWritten = file >= 0 && WriteAll(file, page);
    if (file >= 0) close(file);
    if (flWritten) return name;
    if (file >= 0) unlink(name.c_str());
    return "";
}

// The page goes in front as a document of its own where the scheduler couldn't be given the queue's.
static std::string SendToCups(const CupsPrint &print, const Queue &queue, long &number) {
    CupsPrint more = print;
    std::string banner;
    if (queue.flBanner && !print.flRaw && !CupsHasBanner(print.queue)) {
        banner = BannerFile(queue, print.title);
        if (banner.empty()) TellUser(Say(SayBannerUnwritten));
    }
    if (!banner.empty()) more.bannerPath = banner.c_str();
    std::string error = CupsSend(more, number);
    if (!banner.empty()) unlink(banner.c_str());
    return error;
}

// The job is on its way; a picture of it that can't be drawn is worth a warning, if the caller may draw one.
static void ShowQueue(const Host &host, const Queue &queue, long number, const std::string &title) {
    std::string directory = SpoolDirectory(queue);
    size_t waiting = 0;
    if (directory.empty()) return;
    std::string error = SpoolOpen(directory, true);
    if (geteuid() && (!error.empty() || !MayWriteSpool(directory))) return;
    if (error.empty()) error = CupsRefresh(directory, CupsSharers(host, directory), number, title, waiting);
    if (error.empty() && waiting) error = StartDetached(Self, "-watch", directory);
    if (!error.empty()) TellUser(Say(SayListStale, error));
}

static std::string PrintByCups(const Host &host, const CupsPrint &print) {
    Queue queue;
    long number = 0;
    // A queue of somebody else's has no record, and no list of jobs.
    bool flRecorded = RecordsRead(print.queue, queue) && CheckQueueTarget(queue).empty();
    if (!flRecorded) queue = Queue();
    std::string error = SendToCups(print, queue, number);
    if (error.empty() && flRecorded) ShowQueue(host, queue, number, print.title);
    return error;
}

// ---- The tool's own store

static std::string PrintBySpool(const CupsPrint &print, int file) {
    Queue queue;
    std::string name, error;
    if (!RecordsRead(print.queue, queue)) return Say(SayRecordMissing, print.queue);
    if (!CheckQueueTarget(queue).empty()) return Say(SayRecordDamaged, print.queue);
    error = FileStoreCheck(queue);
    if (!error.empty()) return error;
    std::string directory = SpoolDirectory(queue);
    if (directory.empty()) return Say(SayQueueNoPrinter, print.queue);
    error = SpoolOpen(directory, true);
    if (!error.empty()) return error;
    JobTicket ticket = {HostName(), UserName(), print.title, print.queue, print.flRaw};
    error = SpoolAdd(directory, ticket, file, name);
    if (!error.empty()) return error;
    {
        // The sender that prints already tells its own state.
        FileLock lock(directory + "/.sender", 0);
        if (lock.IsHeld() && !access((directory + "/c" + name).c_str(), F_OK))
            SpoolStatus(directory, "waiting: " + name + " is next\n");
    }
    // The job is taken: who was told otherwise would print it twice.
    error = StartDetached(Self, "-send", directory);
    if (!error.empty()) TellUser(Say(SayJobWaitsForCall, name, error));
    return "";
}

static std::string Print(const Words &words, int file, const std::string &path) {
    Host host;
    CupsPrint print;
    std::string error = HostOpen(host);
    if (error.empty()) error = RecordsOpen();
    if (!error.empty()) return error;
    print.queue = words.flQueue ? words.queue : RecordsDefault();
    print.path = path;
    print.title = TitleOf(path);
    print.flRaw = words.flRaw;
    if (print.queue.empty() && !words.flQueue) return Say(SayNoDefaultQueue);
    error = CheckHostQueueName(print.queue);
    if (!error.empty()) return error;
    switch (HostFind(host, print.queue)) {
    case PLACE_FILE: return PrintBySpool(print, file);
    case PLACE_CUPS: return PrintByCups(host, print);
    case PLACE_UNKNOWN: return host.error;
    case PLACE_NONE: break;
    }
    return Say(SayQueueUnknown, print.queue);
}

static int Detached(const char *argv0, const std::string &mode, const std::string &directory) {
    if (!EnterToolDirectory(argv0)) return 1;
    signal(SIGHUP, SIG_IGN);
    return Complain(mode == "-send" ? RunSender(directory) : RunWatcher(directory));
}

static int List(const char *argv0, const Words &words) {
    if (!EnterToolDirectory(argv0)) return 1;
    LimitRun();
    return Complain(PrintJobs(words.queue, words.flJson));
}

int main(int argc, char **argv) {
    Words words;
    int file = -1;
    BeginProgram("prnout");
    std::vector<std::string> all(argv + 1, argv + argc);
    if (all.size() == 2 && (all[0] == "-send" || all[0] == "-watch"))
        return Detached(argv[0], all[0], all[1]);
    std::string error = ReadWords(all, words);
    if (!error.empty()) return Complain(error);
    if (words.flHelp) return fputs(UsageText, stdout) < 0;
    if (words.flVersion) return printf("prnout %s\n", ToolVersion) < 0;
    if (words.flList) return List(argv[0], words);
    std::string path = PathOf(words.file);
    error = OpenFile(path, file);
    if (!error.empty()) return Complain(error);
    if (!EnterToolDirectory(argv[0])) return 1;
    LimitRun();
    return Complain(Print(words, file, path));
}

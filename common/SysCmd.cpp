// The table of host commands, the search that fills it, and the two roads by which a process is started.
#include "common/SysCmd.h"

#include "common/MemMgr.h"
#include "common/Token.h"
#include "common/utils.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <numeric>
#include <sys/stat.h>
#include <unistd.h>

enum {
    RESPONSE_LINE = 4096, // a longer line of a child arrives in pieces
    SHOW_UP_TRIES = 10,   // seconds that SysCmd waits for a command with delay -1 to show up
    SEARCHED_MAX = 64,    // directories that are remembered as searched
    STATUS_LAST = 151,    // statuses above it are not reported
};

int (*pSystem)(const char *) = system;
FILE *(*pPopen)(const char *, const char *) = popen;
int (*pPclose)(FILE *) = pclose;
unsigned (*pSleep)(unsigned) = sleep;
struct hostent *(*pGethostbyname)(const char *) = gethostbyname;

char SearchPaths[] = "/usr/bin:/usr/ucb:/usr/sbin:/bin:/sbin:/usr/lib:/usr/lib/lp";
char *FullSearchPath;
int flInitSysCmd = 1;
int flSysCmdLog;

// The path column is filled at run time. ORDER CMD_
SysCommand ComList[CMD_END + 1] = {
    /*  0 */ {"", "", nullptr, 0},
    /*  1 */ {"", "", nullptr, 0},
    /*  2 */ {"cancel", "", nullptr, 2},
    /*  3 */ {"cat", "", nullptr, 0},
    /*  4 */ {"chgrp", "", nullptr, 0},
    /*  5 */ {"chmod", "", nullptr, 0},
    /*  6 */ {"chown", "", nullptr, 0},
    /*  7 */ {"clear", "", nullptr, 0},
    /*  8 */ {"compress", "", nullptr, 0},
    /*  9 */ {"cp", "-p", nullptr, 0},
    /* 10 */ {"cp", "-pr", nullptr, 0},
    /* 11 */ {"cupsd", "", nullptr, 0},
    /* 12 */ {"id", "", nullptr, 0},
    /* 13 */ {"echo", "", nullptr, 0},
    /* 14 */ {"eject", "-f", nullptr, 1},
    /* 15 */ {"eject", "-q", nullptr, 1},
    /* 16 */ {"file", "", nullptr, 0},
    /* 17 */ {"ln", "", nullptr, 0},
    /* 18 */ {"lp", "", nullptr, 0},
    /* 19 */ {"lpc", "", nullptr, 1},
    /* 20 */ {"lpr", "", nullptr, 0},
    /* 21 */ {"lprm", "", nullptr, 1},
    /* 22 */ {"lpstat", "", nullptr, 1},
    /* 23 */ {"ls", "", nullptr, 0},
    /* 24 */ {"kill", "-KILL", nullptr, 0},
    /* 25 */ {"mv", "-f", nullptr, 0},
    /* 26 */ {"mkdir", "-p", nullptr, 0},
    /* 27 */ {"more", "", nullptr, 0},
    /* 28 */ {"ping", "", nullptr, 0},
    /* 29 */ {"rm", "-f", nullptr, 0},
    /* 30 */ {"rm", "-rf", nullptr, 0},
    /* 31 */ {"sh", "", nullptr, 0},
    /* 32 */ {"sleep", "", nullptr, 0},
    /* 33 */ {"tar", "cvfp", nullptr, 0},
    /* 34 */ {"tar", "xvfp", nullptr, 0},
    /* 35 */ {"touch", "", nullptr, 0},
    /* 36 */ {"uncompress", "", nullptr, 0},
    /* 37 */ {"whoami", "", nullptr, 0},
    /* 38 */ {"zcat", "", nullptr, 0},
    /* 39 */ {"uname", "", nullptr, 0},
    /* 40 */ {"sed", "", nullptr, 0},
    /* 41 */ {"du", "-s", nullptr, 0},
    /* 42 */ {"checkpc", "", nullptr, 0},
    /* 43 */ {"lpd", "", nullptr, 0},
    /* 44 */ {"pkgadd", "", nullptr, 1},
    /* 45 */ {"pkginfo", "", nullptr, 0},
    /* 46 */ {"pkgrm", "", nullptr, 1},
    /* 47 */ {"accept", "", nullptr, 1},
    /* 48 */ {"disable", "", nullptr, 1},
    /* 49 */ {"cupsdisable", "", nullptr, 1},
    /* 50 */ {"enable", "", nullptr, 1},
    /* 51 */ {"cupsenable", "", nullptr, 1},
    /* 52 */ {"lpadmin", "", nullptr, 1},
    /* 53 */ {"lpfilter", "", nullptr, 1},
    /* 54 */ {"lpsched", "", nullptr, 1},
    /* 55 */ {"lpshut", "", nullptr, 1},
    /* 56 */ {"lpsystem", "", nullptr, 1},
    /* 57 */ {"ps", "-e", nullptr, 0},
    /* 58 */ {"bar", "", nullptr, 0},
    /* 59 */ {"df", "-b", nullptr, 0},
    /* 60 */ {"lpq", "-P", nullptr, 0},
    /* 61 */ {"ypcat", "", nullptr, 0},
    /* 62 */ {"reject", "", nullptr, 1},
    /* 63 */ {"pmadm", "", nullptr, 1},
    /* 64 */ {"sacadm", "", nullptr, 1},
    /* 65 */ {"volcheck", "", nullptr, 0},
    /* 66 */ {"capture", "", nullptr, 0},
    /* 67 */ {"lpset", "", nullptr, 1},
    /* 68 */ {"instnetpr", "", nullptr, 1},
    /* 69 */ {"piomkpq", "", nullptr, 0},
    /* 70 */ {"piomisc_ext", "", nullptr, 0},
    /* 71 */ {"piomisc_base", "", nullptr, 0},
    /* 72 */ {"lsallq", "", nullptr, 0},
    /* 73 */ {"mkque", "", nullptr, 0},
    /* 74 */ {"mkquedev", "", nullptr, 0},
    /* 75 */ {"rmque", "", nullptr, 0},
    /* 76 */ {"rmquedev", "", nullptr, 0},
    /* 77 */ {"piochdfq", "", nullptr, 0},
    /* 78 */ {"enq", "", nullptr, 0},
    /* 79 */ {"lsquedev", "", nullptr, 0},
    /* 80 */ {"lsque", "", nullptr, 0},
    /* 81 */ {"startsrc", "", nullptr, 1},
    /* 82 */ {"stopsrc", "", nullptr, 0},
    /* 83 */ {"lssrc", "", nullptr, 0},
    /* 84 */ {nullptr, nullptr, nullptr, 0},
};
static_assert(std::size(ComList) == CMD_END + 1);

// ---- The search

// Rows from 2 on in the order of their names, so that one walk over a directory serves all of them.
static unsigned char aRowsByName[CMD_END - 2];

static void SortRowsByName() {
    if (aRowsByName[0]) return;
    std::iota(std::begin(aRowsByName), std::end(aRowsByName), static_cast<unsigned char>(2));
    std::sort(std::begin(aRowsByName), std::end(aRowsByName),
              [](int a, int b) { return strcmp(ComList[a].name, ComList[b].name) < 0; });
}

static void FillNamedRows(std::string_view name, const char *directory) {
    auto before = [](int row, std::string_view other) { return ComList[row].name < other; };
    const unsigned char *end = std::end(aRowsByName);
    const unsigned char *row = std::lower_bound(std::cbegin(aRowsByName), end, name, before);
    for (; row != end && ComList[*row].name == name; row++)
        if (!ComList[*row].path) ComList[*row].path = directory;
}

static int TestOpenRows() {
    for (int row = 2; row < CMD_END; row++)
        if (!ComList[row].path) return 1;
    return 0;
}

int FillCmdPaths(const char *directory) {
    char *list = GetDirFileList(directory);
    if (!list) return 1;
    SortRowsByName();
    for (const char *p = list + strspn(list, " "); *p; p += strspn(p, " ")) {
        size_t length = strcspn(p, " ");
        FillNamedRows({p, length}, directory);
        p += length;
    }
    PutMem(list);
    return TestOpenRows();
}

static void BuildFullSearchPath() {
    const char *path = getenv("PATH");
    PutMem(FullSearchPath);
    FullSearchPath = SaveStr("%s:%s", SearchPaths, path ? path : "");
}

int FillCmdPath(int row) {
    if (row < 2 || row >= CMD_END) return 0;
    if (!FullSearchPath) BuildFullSearchPath();
    for (const char *p = FullSearchPath + strspn(FullSearchPath, ":"); *p; p += strspn(p, ":")) {
        std::string directory(p, strcspn(p, ":"));
        if (FindFile(directory.c_str(), ComList[row].name)) {
            ComList[row].path = SaveStr_(directory.c_str());
            return 1;
        }
        p += directory.length();
    }
    return 0;
}

// True if the directory was searched before under this or another name: /bin is often a link to /usr/bin, and
// PATH names again what SearchPaths has. Reading directories is nearly all that the search costs.
static bool TestSearched(const char *directory) {
    static struct {
        dev_t device;
        ino_t inode;
    } aSearched[SEARCHED_MAX];
    static int searchedCnt;
    struct stat info;
    if (stat(directory, &info) != 0) return false;
    for (int i = 0; i < searchedCnt; i++)
        if (aSearched[i].device == info.st_dev && aSearched[i].inode == info.st_ino) return true;
    if (searchedCnt < SEARCHED_MAX) aSearched[searchedCnt++] = {info.st_dev, info.st_ino};
    return false;
}

// 1 while rows are open behind the last directory of the colon list.
static int FillFromList(char *list) {
    int flOpen = 1;
    for (char *p = GetTokenParse(list, ":"); p && flOpen; p = GetTokenParse(nullptr, ":"))
        if (!TestSearched(p)) flOpen = FillCmdPaths(p);
    return flOpen;
}

// Mode 0: the modes that log would come back here.
static void OpenUpLog(const char *path) {
    SysCmd(CMD_TOUCH, 0, "%s", ShArg(path).c_str());
    SysCmd(CMD_CHMOD, 0, "666 %s", ShArg(path).c_str());
}

void InitSysCmdList() {
    pOpenUpLog = OpenUpLog;
    flInitSysCmd = 0;
    signal(SIGCHLD, SIG_DFL);    // ignored, as some parents leave it, every command would seem to fail
    char *path = GetEnv("PATH"); // stays: the rows keep pieces of it
    BuildFullSearchPath();       // before SearchPaths is cut into pieces
    if (FillFromList(SearchPaths) && path) FillFromList(path);
    const SysCommand &shell = ComList[CMD_SH];
    setenv("SHELL", (std::string(shell.path ? shell.path : "/bin") + "/" + shell.name + " ").c_str(), 1);
    if (flUseLog) {
        flSysCmdLog = 1;
        PutLogMsg("initializing system\n");
    }
}

// ---- One command

int TestCmd(int row) {
    return row >= 2 && row < CMD_END && ComList[row].path != nullptr;
}

// Path, name: the command as the shell finds it.
static std::string CmdWord(const SysCommand &command, const char *path) {
    return ShArg(path) + "/" + command.name;
}

char *GetCmd(int row) {
    if (!TestCmd(row)) return nullptr;
    return SaveStr("%s %s", CmdWord(ComList[row], ComList[row].path).c_str(), ComList[row].flags);
}

char *GetCmdNoFlags(int row) {
    if (!TestCmd(row)) return nullptr;
    return SaveStr_(CmdWord(ComList[row], ComList[row].path).c_str());
}

std::string ShArg(std::string_view value) {
    auto plain = [](char ch) {
        return (ch >= 'a' && ch <= 'z') || (ch >= 'A' && ch <= 'Z') || (ch >= '0' && ch <= '9') ||
               (ch && strchr("_./:@%+=,-", ch));
    };
    if (std::all_of(value.begin(), value.end(), plain)) return std::string(value);
    std::string word = "'";
    for (char ch : value) {
        if (ch == '\'') word += "'\\'";
        word += ch;
    }
    return word + "'";
}

// The second layer: what stands between the double quotes of the shell's option -c.
static std::string Dq(std::string_view text) {
    std::string out;
    for (char ch : text) {
        if (strchr("\\\"$`", ch) && ch) out += '\\';
        out += ch;
    }
    return out;
}

static void FillLazily(int row) {
    if (!flInitSysCmd) return;
    if (row >= 2 && !TestCmd(row)) FillCmdPath(row);
    if (!ComList[CMD_SH].path) FillCmdPath(CMD_SH);
}

// "path/name flags " of a row of 2 or more. Ends: with status 0 if the host lacks the command.
static std::string StartLine(int row) {
    if (!TestCmd(row)) {
        const char *name = row < CMD_END ? ComList[row].name : "";
        fflush(stdout);
        fprintf(stderr, "ERROR: unable to locate system command '%s'\n", name);
        exit_app(0);
    }
    return CmdWord(ComList[row], ComList[row].path) + " " + ComList[row].flags + " ";
}

// A complete line stands as it is; a command goes into the shell's option -c, whose closing quote is still to
// come. Ends: as StartLine.
static std::string OpenLine(int row, const std::string &text) {
    if (row < 2) return text;
    std::string command = StartLine(row) + text;
    const SysCommand &shell = ComList[CMD_SH];
    return CmdWord(shell, shell.path ? shell.path : "/bin") + " -c \"" + Dq(command);
}

static void LogLine(const std::string &line) {
    putchar('.');
    fflush(stdout);
    PutLogMsg("%s\n", line.c_str());
}

// The shell runs nothing at all of a line whose redirection fails, so a log that can't be written is left
// out.
static std::string LogRedirection() {
    std::string path = std::string("/tmp/") + my_name + ".log";
    std::string log = flUseLog && TestLogFile(path.c_str()) ? ShArg(path) : "/dev/null";
    return " 1>>" + log + " 2>>" + log;
}

static std::string CloseLine(int row, int mode, bool flLog) {
    std::string redirection;
    if (mode == 0)
        redirection = " 1>/dev/null 2>/dev/null";
    else if (flLog)
        redirection = LogRedirection();
    return row >= 2 ? Dq(redirection) + "\"" : redirection;
}

static int RunLine(const std::string &line, int mode) {
    fflush(stdout);
    errno = 0;
    if (pSystem(line.c_str()) == 0) return 0;
    // A command that ran and failed leaves no errno; mode 2 must end the program all the same.
    return errno == 0 && mode == 2 ? EIO : errno;
}

static void ReportStatus(int status, int mode) {
    if (status < 1 || status > STATUS_LAST || status == EINTR) return;
    std::string text = std::string(mode == 2 ? "ERROR" : "WARNING_MSG") + ": " + strerror(status) + "\n";
    PutLogMsg("%s", text.c_str());
    if (mode != 2) return;
    fputs(text.c_str(), stdout);
    exit_app(1);
}

static void WaitForCmd(const char *name) {
    for (int i = 0; i <= SHOW_UP_TRIES; i++) {
        if (i > 0) pSleep(1);
        char *list = GetSysPsIdList(name);
        PutMem(list);
        if (list) return;
    }
    PutLogMsg("ERROR: Time out for command %s\n", name);
}

static void DelayAfter(const SysCommand &command) {
    if (command.delay == -1)
        WaitForCmd(command.name);
    else if (command.delay > 0)
        pSleep(static_cast<unsigned>(command.delay));
}

int SysCmd(int row, int mode, const char *format, ...) {
    bool flShown = mode == 1 || mode == 2;
    bool flLog = row > 0 && flShown;
    if (row < 0) row = -row;
    FillLazily(row);

    va_list args;
    va_start(args, format);
    std::string line = OpenLine(row, FormatV(format, args));
    va_end(args);

    if (flLog && flSysCmdLog) LogLine(line); // without the redirection
    line += CloseLine(row, mode, flLog);
    int status = RunLine(line, mode);
    if (flShown) ReportStatus(status, mode);
    DelayAfter(ComList[row]);
    return status;
}

// ---- Answers

// The line for popen: no shell wrapper beyond its own, no redirection.
[[gnu::format(printf, 2, 0)]] static std::string ResponseLine(int row, const char *format, va_list args) {
    FillLazily(row);
    std::string line = row >= 2 ? StartLine(row) : "";
    return line + FormatV(format, args);
}

// Hands each matching line of the child to the sink; false if the child could not be started.
template <typename Sink>
static bool ReadResponse(const std::string &line, const char *filter, Sink sink) {
    fflush(stdout);
    FILE *stream = pPopen(line.c_str(), "re");
    if (!stream) return false;
    char buffer[RESPONSE_LINE];
    while (fgets(buffer, sizeof(buffer), stream))
        if (!filter || !*filter || strstr(buffer, filter)) sink(buffer);
    pPclose(stream);
    return true;
}

static ResponseNode *NewResponseNode(const char *text) {
    size_t length = strlen(text);
    auto *node = static_cast<ResponseNode *>(GetMem(sizeof(ResponseNode) + length));
    if (!node) SysError("%s", OutOfMem);
    node->text = reinterpret_cast<char *>(node + 1);
    memcpy(node->text, text, length + 1);
    return node;
}

ResponseNode *GetCmdResponse(int row, const char *filter, const char *format, ...) {
    va_list args;
    va_start(args, format);
    std::string line = ResponseLine(row, format, args);
    va_end(args);

    ResponseNode *head = nullptr;
    ResponseNode **tail = &head;
    ReadResponse(line, filter, [&tail](const char *text) {
        *tail = NewResponseNode(text);
        tail = &(*tail)->next;
    });
    return head;
}

char *GetCmdResponseStr(int row, const char *filter, const char *format, ...) {
    va_list args;
    va_start(args, format);
    std::string line = ResponseLine(row, format, args);
    va_end(args);

    std::string all;
    ReadResponse(line, filter, [&all](const char *text) { all += text; });
    if (all.empty()) return nullptr;
    if (all.back() != '\n') all += '\n';
    return SaveStr_(all.c_str());
}

void FreeResponseList(ResponseNode *list) {
    while (list) {
        ResponseNode *next = list->next;
        PutMem(list);
        list = next;
    }
}

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
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

enum {
    RESPONSE_LINE = 4096,  // a longer line of a child arrives in pieces
    SHOW_UP_TRIES = 10,    // seconds that SysCmd waits for a command with delay -1 to show up
    SEARCHED_MAX = 64,     // directories that are remembered as searched
    STATUS_LAST = 151,     // statuses above it are not reported
    STATUS_NO_SHELL = 127, // as system answers it
};

static int RunShell(const char *line);

int (*pSystem)(const char *) = RunShell;
FILE *(*pPopen)(const char *, const char *) = popen;
int (*pPclose)(FILE *) = pclose;
unsigned (*pSleep)(unsigned) = sleep;
struct hostent *(*pGethostbyname)(const char *) = gethostbyname;

char SearchPaths[] = "/usr/bin:/usr/ucb:/usr/sbin:/bin:/sbin:/usr/lib:/usr/lib/lp";
char *FullSearchPath;
int flInitSysCmd = 1;
int flSysCmdLog;

// A row tells its key and the key's spelling, which is the name behind CMD_, and what tells rows of one name
// apart behind another underscore.
struct CommandRow {
    CommandKey key;
    const char *spelling;
    const char *name;
    const char *flags;
    int32_t delay;
};
#define COMMAND(key) key, #key

static constexpr CommandRow CommandRows[] = {
    {COMMAND(CMD_QUIET), "", "", 0},
    {COMMAND(CMD_LINE), "", "", 0},
    {COMMAND(CMD_CANCEL), "cancel", "", 2},
    {COMMAND(CMD_CAT), "cat", "", 0},
    {COMMAND(CMD_CHGRP), "chgrp", "", 0},
    {COMMAND(CMD_CHMOD), "chmod", "", 0},
    {COMMAND(CMD_CHOWN), "chown", "", 0},
    {COMMAND(CMD_CLEAR), "clear", "", 0},
    {COMMAND(CMD_COMPRESS), "compress", "", 0},
    {COMMAND(CMD_CP), "cp", "-p", 0},
    {COMMAND(CMD_CP_R), "cp", "-pr", 0},
    {COMMAND(CMD_CUPSD), "cupsd", "", 0},
    {COMMAND(CMD_ID), "id", "", 0},
    {COMMAND(CMD_ECHO), "echo", "", 0},
    {COMMAND(CMD_EJECT_F), "eject", "-f", 1},
    {COMMAND(CMD_EJECT_Q), "eject", "-q", 1},
    {COMMAND(CMD_FILE), "file", "", 0},
    {COMMAND(CMD_LN), "ln", "", 0},
    {COMMAND(CMD_LP), "lp", "", 0},
    {COMMAND(CMD_LPC), "lpc", "", 1},
    {COMMAND(CMD_LPR), "lpr", "", 0},
    {COMMAND(CMD_LPRM), "lprm", "", 1},
    {COMMAND(CMD_LPSTAT), "lpstat", "", 1},
    {COMMAND(CMD_LS), "ls", "", 0},
    {COMMAND(CMD_KILL), "kill", "-KILL", 0},
    {COMMAND(CMD_MV), "mv", "-f", 0},
    {COMMAND(CMD_MKDIR), "mkdir", "-p", 0},
    {COMMAND(CMD_MORE), "more", "", 0},
    {COMMAND(CMD_PING), "ping", "", 0},
    {COMMAND(CMD_RM), "rm", "-f", 0},
    {COMMAND(CMD_RM_R), "rm", "-rf", 0},
    {COMMAND(CMD_SH), "sh", "", 0},
    {COMMAND(CMD_SLEEP), "sleep", "", 0},
    {COMMAND(CMD_TAR_C), "tar", "cvfp", 0},
    {COMMAND(CMD_TAR_X), "tar", "xvfp", 0},
    {COMMAND(CMD_TOUCH), "touch", "", 0},
    {COMMAND(CMD_UNCOMPRESS), "uncompress", "", 0},
    {COMMAND(CMD_WHOAMI), "whoami", "", 0},
    {COMMAND(CMD_ZCAT), "zcat", "", 0},
    {COMMAND(CMD_UNAME), "uname", "", 0},
    {COMMAND(CMD_SED), "sed", "", 0},
    {COMMAND(CMD_DU), "du", "-s", 0},
    {COMMAND(CMD_CHECKPC), "checkpc", "", 0},
    {COMMAND(CMD_LPD), "lpd", "", 0},
    {COMMAND(CMD_PKGADD), "pkgadd", "", 1},
    {COMMAND(CMD_PKGINFO), "pkginfo", "", 0},
    {COMMAND(CMD_PKGRM), "pkgrm", "", 1},
    {COMMAND(CMD_ACCEPT), "accept", "", 1},
    {COMMAND(CMD_DISABLE), "disable", "", 1},
    {COMMAND(CMD_CUPSDISABLE), "cupsdisable", "", 1},
    {COMMAND(CMD_ENABLE), "enable", "", 1},
    {COMMAND(CMD_CUPSENABLE), "cupsenable", "", 1},
    {COMMAND(CMD_LPADMIN), "lpadmin", "", 1},
    {COMMAND(CMD_LPFILTER), "lpfilter", "", 1},
    {COMMAND(CMD_LPSCHED), "lpsched", "", 1},
    {COMMAND(CMD_LPSHUT), "lpshut", "", 1},
    {COMMAND(CMD_LPSYSTEM), "lpsystem", "", 1},
    {COMMAND(CMD_PS), "ps", "-e", 0},
    {COMMAND(CMD_BAR), "bar", "", 0},
    {COMMAND(CMD_DF), "df", "-b", 0},
    {COMMAND(CMD_LPQ), "lpq", "-P", 0},
    {COMMAND(CMD_YPCAT), "ypcat", "", 0},
    {COMMAND(CMD_REJECT), "reject", "", 1},
    {COMMAND(CMD_PMADM), "pmadm", "", 1},
    {COMMAND(CMD_SACADM), "sacadm", "", 1},
    {COMMAND(CMD_VOLCHECK), "volcheck", "", 0},
    {COMMAND(CMD_CAPTURE), "capture", "", 0},
    {COMMAND(CMD_LPSET), "lpset", "", 1},
    {COMMAND(CMD_INSTNETPR), "instnetpr", "", 1},
    {COMMAND(CMD_PIOMKPQ), "piomkpq", "", 0},
    {COMMAND(CMD_PIOMISC_EXT), "piomisc_ext", "", 0},
    {COMMAND(CMD_PIOMISC_BASE), "piomisc_base", "", 0},
    {COMMAND(CMD_LSALLQ), "lsallq", "", 0},
    {COMMAND(CMD_MKQUE), "mkque", "", 0},
    {COMMAND(CMD_MKQUEDEV), "mkquedev", "", 0},
    {COMMAND(CMD_RMQUE), "rmque", "", 0},
    {COMMAND(CMD_RMQUEDEV), "rmquedev", "", 0},
    {COMMAND(CMD_PIOCHDFQ), "piochdfq", "", 0},
    {COMMAND(CMD_ENQ), "enq", "", 0},
    {COMMAND(CMD_LSQUEDEV), "lsquedev", "", 0},
    {COMMAND(CMD_LSQUE), "lsque", "", 0},
    {COMMAND(CMD_STARTSRC), "startsrc", "", 1},
    {COMMAND(CMD_STOPSRC), "stopsrc", "", 0},
    {COMMAND(CMD_LSSRC), "lssrc", "", 0},
};
#undef COMMAND

static constexpr char SmallLetter(char ch) {
    return static_cast<char>(ch >= 'A' && ch <= 'Z' ? ch - 'A' + 'a' : ch);
}

static constexpr bool IsSpelledSo(const CommandRow &row) {
    if (row.key <= CMD_LINE) return !*row.name; // a complete line has no name
    std::string_view spelling(row.spelling + std::size("CMD"));
    for (const char *at = row.name; *at; at++, spelling.remove_prefix(1))
        if (spelling.empty() || SmallLetter(spelling[0]) != *at) return false;
    return spelling.empty() || spelling[0] == '_';
}

// The first command whose row isn't there; CMD_END if all are.
static consteval CommandKey FindWrongCommand() {
    int place = 0;
    for (const CommandRow &row : CommandRows) {
        if (row.key != place || !IsSpelledSo(row)) break;
        place++;
    }
    return static_cast<CommandKey>(place);
}

template <CommandKey Key>
struct RowOfCommand {
    static_assert(Key == CMD_END, "the row of this command is not at its place, or has another name");
    static constexpr bool flRight = Key == CMD_END;
};
static_assert(RowOfCommand<FindWrongCommand()>::flRight);
static_assert(std::size(CommandRows) == CMD_END, "a row of ComList has no CMD_");

static consteval CommandTable MakeComList() {
    CommandTable table = {};
    for (const CommandRow &row : CommandRows) table[row.key] = {row.name, row.flags, nullptr, row.delay};
    return table;
}

constinit CommandTable ComList = MakeComList(); // the path column is filled at run time

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
    return row >= 2 && row < CMD_END && ComList[row].path;
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

static bool flEndsWithUs; // the line that runs has the program's terminal; writer: RunLine

// Between fork and exec.
[[noreturn]] static void ExecShell(const char *line, pid_t parent) {
    signal(SIGINT, SIG_DFL);
    signal(SIGQUIT, SIG_DFL);
    prctl(PR_SET_PDEATHSIG, SIGHUP);
    if (getppid() == parent) execl("/bin/sh", "sh", "-c", line, nullptr);
    _exit(STATUS_NO_SHELL);
}

// A program called by its path: the shell makes room for it instead of waiting for it.
static std::string ExecLine(const std::string &line) {
    bool flPath = line.starts_with('/') || line.starts_with("'/");
    return flPath && line.find_first_of(";&|()\n") == line.npos ? "exec " + line : line;
}

// As system, but a program that talks on the terminal doesn't outlive us: it would share the terminal with
// the shell that we were started from.
static int RunShell(const char *line) {
    if (!flEndsWithUs) return system(line);
    pid_t us = getpid();
    std::string whole = ExecLine(line);
    auto interrupt = signal(SIGINT, SIG_IGN), quit = signal(SIGQUIT, SIG_IGN);
    pid_t child = fork();
    if (child == 0) ExecShell(whole.c_str(), us);
    int status = -1;
    while (child > 0 && waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    signal(SIGINT, interrupt);
    signal(SIGQUIT, quit);
    return status;
}

static int RunLine(const std::string &line, int mode, bool flTerminal) {
    fflush(stdout);
    errno = 0;
    flEndsWithUs = flTerminal;
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
    int status = RunLine(line, mode, flShown && !flLog);
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

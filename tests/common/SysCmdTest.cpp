// The command table, its search, the lines that reach the shell, statuses, answers, processes and disks.
#include "common/SysCmd.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "common/MemMgr.h"
#include "common/utils.h"
#include "tests/lib/Capture.h"

// Paths as on a plain host, logging by the table set up, and a log of this test's own.
class Commands : public testing::Test {
protected:
    void SetUp() override {
        my_name = name.c_str();
        flInitSysCmd = 0;
        for (int row = 2; row < CMD_END; row++) ComList[row].path = "/bin";
        ComList[CMD_SH].path = "/usr/bin";
    }
    void TearDown() override {
        my_name = "prndeck";
        flUseLog = flSysCmdLog = 0;
        unlink(log.c_str());
        setenv("PATH", path.c_str(), 1);
    }
    const std::string path = getenv("PATH");
    const std::string name = "prncmd" + std::to_string(getpid()), log = "/tmp/" + name + ".log";
};

TEST_F(Commands, Lines) {
    const std::string to = " 1>>" + log + " 2>>" + log, null = " 1>/dev/null 2>/dev/null";
    const std::string nulls = " 1>>/dev/null 2>>/dev/null", touch = "/usr/bin/sh -c \"/bin/touch  a b";
    struct Case {
        int row, mode, flLog;
        std::string line, out, logged;
    } cases[] = {
        {CMD_QUIET, 0, 1, "a b" + null, "", ""},
        {CMD_QUIET, 1, 1, "a b", "", ""},
        {CMD_LINE, 0, 1, "a b" + null, "", ""},
        {CMD_LINE, 1, 1, "a b" + to, ".", "a b\n"},
        {CMD_LINE, 1, 0, "a b" + nulls, "", ""},
        {CMD_TOUCH, 0, 1, touch + null + "\"", "", ""},
        {CMD_TOUCH, 2, 1, touch + to + "\"", ".", touch + "\n"},
        {CMD_TOUCH, 2, 0, touch + nulls + "\"", "", ""},
        {-CMD_TOUCH, 2, 1, touch + "\"", "", ""},
        {-CMD_MV, 0, 1, "/usr/bin/sh -c \"/bin/mv -f a b" + null + "\"", "", ""},
    };
    for (const Case &c : cases) {
        CreateTextFile(log.c_str(), "w", 0, "%s", "");
        ChildEnd end = RunForked([&c] {
            flUseLog = flSysCmdLog = c.flLog;
            SystemSpy spy;
            SysCmd(c.row, c.mode, "a %s", "b");
            fputs(spy.lines.at(0).c_str(), stderr);
        });
        EXPECT_EQ(end.err, c.line) << c.row << " " << c.mode;
        EXPECT_EQ(end.out, c.out) << c.row << " " << c.mode;
        EXPECT_EQ(ReadWhole(log), c.logged) << c.row << " " << c.mode;
    }
}

// A shell runs nothing of a line whose redirection fails: the command matters more than its log.
TEST_F(Commands, LogThatCannotBeWritten) {
    Scratch scratch;
    ASSERT_EQ(symlink(scratch.Path("target").c_str(), log.c_str()), 0);
    Capture capture;
    flUseLog = 1;
    SysCmd(CMD_TOUCH, 1, "%s", scratch.Path("made").c_str());
    EXPECT_TRUE(FindFile_(nullptr, scratch.Path("made").c_str()));
    EXPECT_FALSE(FindFile_(nullptr, scratch.Path("target").c_str()));
}

TEST_F(Commands, Statuses) {
    struct Case {
        const char *name;
        int mode, result, error, status, exit;
        const char *out, *logged;
    } cases[] = {
        {"fails without errno", 1, 256, 0, 0, 0, ".", "x\n"},
        {"fails without errno, fatal", 2, 256, 0, 0, 1, ".ERROR: Input/output error\n",
         "x\nERROR: Input/output error\n"},
        {"warning", 1, 256, EBUSY, EBUSY, 0, ".", "x\nWARNING_MSG: Device or resource busy\n"},
        {"fatal", 2, -1, ENOMEM, 0, 1, ".ERROR: Cannot allocate memory\n",
         "x\nERROR: Cannot allocate memory\n"},
        {"interrupted", 2, -1, EINTR, EINTR, 0, ".", "x\n"},
        {"beyond those reported", 2, -1, 152, 152, 0, ".", "x\n"},
    };
    for (const Case &c : cases) {
        CreateTextFile(log.c_str(), "w", 0, "%s", "");
        ChildEnd end = RunForked([&c] {
            flUseLog = flSysCmdLog = 1;
            SystemSpy spy;
            spy.result = c.result;
            spy.error = c.error;
            errno = EACCES; // what an earlier call left must not count
            fprintf(stderr, "%i", SysCmd(CMD_LINE, c.mode, "x"));
        });
        EXPECT_EQ(end.status, c.exit) << c.name;
        EXPECT_EQ(end.err, c.exit ? "" : std::to_string(c.status)) << c.name;
        EXPECT_EQ(end.out, c.out) << c.name;
        EXPECT_EQ(ReadWhole(log), c.logged) << c.name;
    }
}

TEST_F(Commands, Delays) {
    SystemSpy spy;
    EXPECT_EQ((SysCmd(CMD_LINE, 0, "x"), spy.slept), 0u);
    EXPECT_EQ((SysCmd(2, 0, "x"), spy.slept), 2u);
    spy.result = 256;
    EXPECT_EQ((SysCmd(-CMD_LPSCHED, 0, "x"), spy.slept), 3u) << "after a failure too";
    ComList[CMD_LPSCHED].delay = -1;
    spy.slept = 0;
    flUseLog = 1;
    SysCmd(CMD_LPSCHED, 0, "x");
    EXPECT_EQ(spy.slept, 10u);
    EXPECT_EQ(spy.asked.size(), 11u);
    EXPECT_EQ(ReadWhole(log), "ERROR: Time out for command lpsched\n");
    spy.answers = {{"ps -e", "9 ? 0:00 lpsched\n"}};
    SysCmd(CMD_LPSCHED, 0, "x");
    EXPECT_EQ(spy.slept, 10u) << "it runs at once";
    ComList[CMD_LPSCHED].delay = 1;
}

// A value reaches the command whole by every road, and nothing else happens; so does the command's own
// directory.
TEST_F(Commands, ShellWords) {
    for (const char *plain : {"", "lp", "a.b-c_d/e:1@h%+=,"}) EXPECT_EQ(ShArg(plain), plain);
    const char *values[] = {"it's",    "''\\''",  "$(id) `id`", "$HOME $'x'",
                            "a\\b\\",  "\\\"\"q", "a\n\tb",     "*?[a]{a,b}",
                            "a;b&c|d", "(a)<b>",  "~ #x !",     "\xc3\xa4\xe2\x82\xac\xff\x01"};
    Scratch scratch;
    const std::string dir = scratch.MakeDir("it's $x `y`"), made = scratch.MakeDir("made");
    for (std::string command : {"sh", "touch"})
        std::filesystem::create_symlink("/bin/" + command, dir + "/" + command);
    ComList[CMD_SH].path = ComList[CMD_TOUCH].path = dir.c_str();
    std::function<void(const char *)> roads[] = {
        [](const char *word) { SysCmd(-CMD_TOUCH, 1, "%s", word); },
        [](const char *word) { SysCmd(CMD_QUIET, 1, "touch %s", word); },
        [](const char *word) { FreeResponseList(GetCmdResponse(CMD_TOUCH, nullptr, "%s", word)); },
    };
    for (const auto &road : roads)
        for (const char *value : values) {
            std::string file = made + "/a" + value;
            road(ShArg(file).c_str());
            EXPECT_TRUE(std::filesystem::remove(file)) << &road - roads << ": " << value;
        }
    EXPECT_EQ(TakeText(SearchDirFileList(made.c_str(), nullptr)), "(null)") << "nothing else was made";
    EXPECT_EQ(TakeText(GetCmd(CMD_TOUCH)), ShArg(dir) + "/touch ");
    EXPECT_EQ(TakeText(GetCmdNoFlags(CMD_TOUCH)), ShArg(dir) + "/touch");
}

TEST_F(Commands, SharesTheTerminal) {
    ChildEnd end = RunForked(
        [] {
            fputs("prompt ", stdout);
            char line[16];
            if (!fgets(line, sizeof(line), stdin)) exit(1);
            SysCmd(0, 1, "read x; echo \"<$x>\"");
            fputs("after", stdout);
        },
        "mine\nthe child's\n");
    EXPECT_EQ(end.out, "prompt <the child's>\nafter");
}

TEST_F(Commands, MissingCommand) {
    void (*calls[])() = {
        [] { SysCmd(CMD_YPCAT, 1, "x"); },
        [] { SysCmd(-CMD_YPCAT, 0, "x"); },
        [] { PutMem(GetCmdResponseStr(CMD_YPCAT, nullptr, "x")); },
    };
    ComList[CMD_YPCAT].path = nullptr;
    for (auto call : calls) {
        ChildEnd end = RunForked([call] {
            call();
            exit(5);
        });
        EXPECT_EQ(end.status, 0);
        EXPECT_EQ(end.err, "ERROR: unable to locate system command 'ypcat'\n");
    }
    for (int row : {-1, 0, 1, int(CMD_YPCAT), int(CMD_END), 1000})
        EXPECT_TRUE(TestCmd(row) == 0 && !GetCmd(row) && !GetCmdNoFlags(row)) << row;
}

static std::string Join(ResponseNode *list) {
    std::string text;
    for (ResponseNode *node = list; node; node = node->next) text += std::string("[") + node->text + "]";
    FreeResponseList(list);
    return text;
}

TEST_F(Commands, Answers) {
    const std::string x4095(4095, 'x'), x905(905, 'x');
    struct Case {
        const char *name, *line, *filter;
        std::string list, text;
    } cases[] = {
        {"all lines", "echo a; echo b", nullptr, "[a\n][b\n]", "a\nb\n"},
        {"filter", "printf 'ab\\nc\\ncab'", "ab", "[ab\n][cab]", "ab\ncab\n"},
        {"nothing", "echo a", "z", "", "(null)"},
        {"long line", "printf '%05000d' 0 | tr 0 x", nullptr, "[" + x4095 + "][" + x905 + "]",
         x4095 + x905 + "\n"},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(Join(GetCmdResponse(CMD_QUIET, c.filter, "%s", c.line)), c.list) << c.name;
        EXPECT_EQ(TakeText(GetCmdResponseStr(CMD_LINE, c.filter, "%s", c.line)), c.text) << c.name;
    }
    SystemSpy spy;
    spy.popenFails = true;
    EXPECT_EQ(GetCmdResponse(CMD_DU, nullptr, "%s", "/a"), nullptr);
    EXPECT_EQ(spy.asked.back(), "/bin/du -s /a");
}

// ---- The search

// The oracle asks for one file at a time.
static std::string FirstHit(const std::string &list, const char *name) {
    for (size_t start = 0; start <= list.length();) {
        size_t end = std::min(list.find(':', start), list.length());
        std::string directory = list.substr(start, end - start);
        if (!directory.empty() && FindFile(directory.c_str(), name)) return directory;
        start = end + 1;
    }
    return "(null)";
}

TEST_F(Commands, TableFilled) {
    Scratch scratch;
    scratch.Write("one/ypcat", "");
    scratch.Write("two/ypcat", "");
    scratch.Write("two/lpsched", "");
    scratch.Write("two/sh", "");
    setenv("PATH", ("/no/such:" + scratch.Path("one") + "::" + scratch.Path("two") + ":").c_str(), 1);
    const std::string one = scratch.Path("one");
    ChildEnd end = RunForked([&] {
        for (SysCommand &command : ComList) command.path = nullptr;
        ComList[CMD_LPD].path = "/kept";
        flUseLog = 1;
        PutMem(FullSearchPath);
        FullSearchPath = nullptr;
        signal(SIGCHLD, SIG_IGN);
        InitSysCmdList();
        if (SysCmd(CMD_QUIET, 2, "true") != 0) exit(6);
        if (flInitSysCmd || !flSysCmdLog) exit(2);
        if (ReadWhole(log) != "initializing system\n") exit(3);
        if (getenv("SHELL") != std::string(ComList[CMD_SH].path) + "/sh ") exit(4);
        for (int row = 2; row < CMD_END; row++) {
            std::string want = row == CMD_LPD ? "/kept" : FirstHit(FullSearchPath, ComList[row].name);
            std::string got = ComList[row].path ? ComList[row].path : "(null)";
            if (got != want) printf("%i %s: %s, not %s\n", row, ComList[row].name, got.c_str(), want.c_str());
        }
        if (ComList[CMD_YPCAT].path != one) exit(5);
    });
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.out + end.err, "");
}

TEST_F(Commands, OneRowBeforeTheTableIsFilled) {
    Scratch scratch;
    scratch.Write("bin/ypcat", "#!/bin/sh\necho \"$1\"\n");
    std::filesystem::permissions(scratch.Path("bin/ypcat"), std::filesystem::perms::all);
    setenv("PATH", scratch.Path("bin").c_str(), 1);
    PutMem(FullSearchPath);
    FullSearchPath = nullptr;
    for (SysCommand &command : ComList) command.path = nullptr;
    EXPECT_EQ(FillCmdPath(CMD_LPSCHED), 0);
    flInitSysCmd = 1;
    EXPECT_EQ(TakeText(GetCmdResponseStr(CMD_YPCAT, nullptr, "hosts")), "hosts\n");
    EXPECT_EQ(ComList[CMD_YPCAT].path, scratch.Path("bin"));
    EXPECT_EQ(TestCmd(CMD_SH), 1);
}

// ---- Processes, packages, disks

TEST_F(Commands, ProcessLists) {
    SystemSpy spy;
    spy.answers = {{"/bin/ps -e ",
                    "  PID TTY          TIME CMD\n   12 ?        00:00:00 lpsched\n  13 ? 0:00 lpsched2\n"
                    "345 pts/0 0:00 lpsched <defunct>\n  7 ? 0:00 cupsd\n 8 lpsched\n"}};
    EXPECT_EQ(TakeText(GetSysPsIdList("lpsched")), " 12 345 ");
    EXPECT_EQ(TakeText(GetSysPsIdList("lps")), "(null)");
    EXPECT_EQ(TakeText(CheckProcTableForExecs("cupsd,lpd,lpsched")), "cupsd ( 7 )\nlpsched ( 12 345 )\n");
    spy.answers = {{"/bin/pkginfo  ", "system SUNWcsr core\napplication TVprn deck\nTVx\n"}};
    EXPECT_EQ(TakeText(GetSysPkgList("TV")), " TVprn ");
}

TEST_F(Commands, Kill) {
    ChildEnd end = RunForked([] {
        setpgid(0, 0); // what a heading line reads as, 0, would name this group
        pid_t child = fork();
        if (child == 0) pause();
        SystemSpy spy;
        spy.answers = {{"ps -e", "PID TTY TIME CMD\n" + std::to_string(INT_MAX) + " ? 0:00 victim\n" +
                                     std::to_string(child) + " ? 0:00 victim\n"}};
        KillProcessByName("CMD");
        if (waitpid(child, nullptr, WNOHANG) != 0) exit(1);
        KillProcessByName("victim");
        int status = 0;
        waitpid(child, &status, 0);
        exit(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL && spy.slept == 2 ? 0 : 2);
    });
    EXPECT_EQ(end.status, 0);
}

TEST_F(Commands, Disks) {
    const char *heading = "Filesystem 512-blocks Used Available Capacity Mounted on\n";
    Scratch scratch;
    scratch.Write("file", "");
    const std::string dir = scratch.Path();
    SystemSpy spy;
    DiskRecord record;
    EXPECT_EQ(GetDiskSpace("/a b", &record), 0);
    EXPECT_EQ(spy.asked.back(), "/bin/df -b '/a b'");
    EXPECT_EQ(AvailSpace((dir + "/x/y").c_str(), nullptr, 1), 0) << "ends at the root";
    EXPECT_EQ(AvailSpace("x/y", nullptr, 1), 0) << "ends at the current directory";
    spy.answers = {{"/df -b " + dir, heading}};
    EXPECT_EQ(GetDiskSpace(dir.c_str(), &record), 0) << "heading alone";
    spy.answers = {{"/df -b " + dir + "/no", ""},
                   {"/df -b " + dir, std::string(heading) + "/dev/sda1 900 800 100.5 88% /\n"},
                   {"/du -s " + dir + "/file", "50\t/x\n"}};
    EXPECT_EQ(GetDiskSpace(dir.c_str(), &record), 1);
    EXPECT_EQ(record.available, 100.5);
    EXPECT_STREQ(record.line, "/dev/sda1 900 800 100.5 88% /\n");
    EXPECT_EQ(DUPath((dir + "/file").c_str()), 50);
    struct Case {
        std::string directory;
        const char *file;
        double needed;
        int want;
    } cases[] = {
        {dir, nullptr, 100.5, 1}, {dir, nullptr, 101, 0}, {dir, "file", 150.5, 1},
        {dir, "file", 151, 0},    {dir, "none", 101, 0},  {dir + "/no/no", "x", 100, 1},
    };
    for (const Case &c : cases)
        EXPECT_EQ(AvailSpace(c.directory.c_str(), c.file, c.needed), c.want)
            << c.directory << " " << c.needed;
}

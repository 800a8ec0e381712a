// The command table, its search, the lines that reach the shell, their statuses, and processes killed by
// name.
#include "common/SysCmd.h"

#include "common/MemMgr.h"
#include "common/SysFile.h"
#include "common/utils.h"
#include "tests/lib/Capture.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

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

TEST_F(Commands, LinesAndStatuses) {
    const std::string to = " 1>>" + log + " 2>>" + log, null = " 1>/dev/null 2>/dev/null";
    const std::string nulls = " 1>>/dev/null 2>>/dev/null", touch = "/usr/bin/sh -c \"/bin/touch  a b";
    const std::string busy = "a b\nWARNING_MSG: Device or resource busy\n",
                      io = "ERROR: Input/output error\n";
    const std::string memory = "ERROR: Cannot allocate memory\n";
    struct Case {
        int row, mode, flLog, result, error; // result and errno of system
        std::string line, out, logged;
        int status; // negative: the end of the process
    } cases[] = {
        {CMD_QUIET, 0, 1, 0, 0, "a b" + null, "", "", 0},
        {CMD_LINE, 1, 1, 0, 0, "a b" + to, ".", "a b\n", 0},
        {CMD_TOUCH, 0, 1, 0, 0, touch + null + "\"", "", "", 0},
        {CMD_TOUCH, 2, 1, 0, 0, touch + to + "\"", ".", touch + "\n", 0},
        {-CMD_TOUCH, 2, 1, 0, 0, touch + "\"", "", "", 0},
        {CMD_LINE, 2, 1, 256, 0, "a b" + to, "." + io, "a b\n" + io, -1},
        {CMD_LINE, 1, 1, 256, EBUSY, "a b" + to, ".", busy, EBUSY},
        {CMD_LINE, 2, 1, -1, ENOMEM, "a b" + to, "." + memory, "a b\n" + memory, -1},
        {CMD_LINE, 2, 1, -1, EINTR, "a b" + to, ".", "a b\n", EINTR},
    };
    for (const Case &c : cases) {
        CreateTextFile(log.c_str(), "w", 0, "%s", "");
        ChildEnd end = RunForked([&c] {
            flUseLog = flSysCmdLog = c.flLog;
            static SystemSpy spy;
            spy.result = c.result;
            spy.error = c.error;
            atexit([] { fputs(spy.lines.at(0).c_str(), stderr); });
            errno = EACCES; // what an earlier call left must not count
            exit(SysCmd(c.row, c.mode, "a %s", "b"));
        });
        EXPECT_EQ(end.status, std::abs(c.status)) << &c - cases;
        EXPECT_EQ(end.err, c.line) << &c - cases;
        EXPECT_EQ(end.out, c.out) << &c - cases;
        EXPECT_EQ(ReadWhole(log), c.logged) << &c - cases;
    }
}

// A value reaches the command whole by every road, and nothing else happens; so does the command's own
// directory.
TEST_F(Commands, ShellWords) {
    const char *values[] = {"",           "a.b-c_d/e:1@h%+=,",
                            "it's",       "''\\''",
                            "$(id) `id`", "$HOME $'x'",
                            "a\\b\\",     "\\\"\"q",
                            "a\n\tb",     "*?[a]{a,b}",
                            "a;b&c|d",    "(a)<b>",
                            "~ #x !",     "\xc3\xa4\xe2\x82\xac\xff\x01"};
    Scratch scratch;
    const std::string dir = scratch.MakeDir("it's $x `y`"), made = scratch.MakeDir("made/a.b-c_d") + "/..";
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
            std::string file = made + "/" + value + (*value ? "" : "x");
            road(ShArg(file).c_str());
            EXPECT_TRUE(std::filesystem::remove(file)) << &road - roads << ": " << value;
        }
    EXPECT_EQ(TakeText(SearchDirFileList(made.c_str(), nullptr)), " a.b-c_d ") << "nothing else was made";
    EXPECT_EQ(TakeText(GetCmd(CMD_TOUCH)), ShArg(dir) + "/touch ");
    EXPECT_EQ(ShArg("a.b-c_d/e:1@h%+=,") + ShArg("it's"), "a.b-c_d/e:1@h%+=,'it'\\''s'");
}

TEST_F(Commands, MissingCommand) {
    ComList[CMD_YPCAT].path = nullptr;
    ChildEnd end = RunForked([] { exit(5 + SysCmd(-CMD_YPCAT, 0, "x")); });
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.err, "ERROR: unable to locate system command 'ypcat'\n");
    for (int row : {-1, 1, int(CMD_YPCAT), int(CMD_END)}) EXPECT_TRUE(!TestCmd(row) && !GetCmd(row)) << row;
}

// ---- The search

TEST_F(Commands, TableFilledFromThePath) {
    Scratch scratch;
    scratch.Write("two/ypcat", "");
    scratch.Write("two/lpsched", "");
    const std::string ypcat = scratch.Write("one/ypcat", "#!/bin/sh\necho \"$1\"\n"),
                      one = scratch.Path("one");
    std::filesystem::permissions(ypcat, std::filesystem::perms::all);
    setenv("PATH", ("/no/such:" + one + "::" + scratch.Path("two") + ":").c_str(), 1);
    for (SysCommand &command : ComList) command.path = nullptr;
    PutMem(FullSearchPath);
    FullSearchPath = nullptr;
    flInitSysCmd = 1;
    EXPECT_EQ(TakeText(GetCmdResponseStr(CMD_YPCAT, nullptr, "hosts")), "hosts\n") << "one row, when needed";
    EXPECT_EQ(ComList[CMD_YPCAT].path, one);
    ComList[CMD_YPCAT].path = nullptr;
    ComList[CMD_LPD].path = "/kept";
    ChildEnd end = RunForked([&] {
        flUseLog = 1;
        signal(SIGCHLD, SIG_IGN);
        InitSysCmdList();
        printf("%i %i %s %s", SysCmd(CMD_QUIET, 2, "true"), flSysCmdLog, getenv("SHELL"),
               ComList[CMD_LPD].path);
        // The table is filled in one walk a directory; asked row by row it must come out the same.
        for (int row = 2; row < CMD_END; row++) {
            std::string got = ComList[row].path ? ComList[row].path : "";
            ComList[row].path = nullptr;
            bool flSame = FillCmdPath(row) ? got == ComList[row].path : got.empty();
            if (!flSame && row != CMD_LPD) printf("%i %s in %s\n", row, ComList[row].name, got.c_str());
        }
    });
    EXPECT_EQ(end.out + end.err, "0 1 /usr/bin/sh  /kept");
    EXPECT_EQ(ReadWhole(log), "initializing system\n");
}

// ---- Processes

TEST_F(Commands, WithoutANameNothingIsFound) {
    ChildEnd end = RunForked([] {
        SystemSpy spy;
        for (const char *none : {static_cast<const char *>(nullptr), ""}) {
            if (GetSysPsIdList(none) || CheckProcTableForExecs(none) || DUPath(none) != 0) exit(1);
            DiskRecord record;
            if (GetDiskSpace(none, &record) || AvailSpace(none, nullptr, 0) || KillProcessByName(none))
                exit(2);
            DeleteFile("/tmp", none); // would name the directory
            RenameFile("/tmp", "", none);
        }
        if (GetEnv(nullptr)) exit(3);
    });
    EXPECT_EQ(end.status, 0) << end.err;
}

TEST_F(Commands, WhatTheHostTells) {
    SystemSpy spy;
    spy.answers = {{"df -b", "File system 512-blocks Avail Used\n/dev/a b 900 600 300\n"},
                   {"du", "50 /tmp\n"},
                   {"pkginfo", "system one The first\nshort\napp two Other\n"},
                   {"ps -e", " 12 ? 0:00 lpd\n13 ? 0:00 lpd2\n 14 ? 0:01 lpd\n"},
                   {"lpd", "LPRng 3\n"}};
    DiskRecord record;
    EXPECT_TRUE(GetDiskSpace("/tmp", &record) && record.available == 600);
    EXPECT_STREQ(record.line, "/dev/a b 900 600 300\n");
    Scratch scratch;
    scratch.Write("old", "");
    struct {
        const char *file;
        double room;
    } rooms[] = {{nullptr, 600}, {"none", 600}, {"old", 650}}; // an old file gives its room back
    for (const auto &[file, room] : rooms) {
        EXPECT_TRUE(AvailSpace(scratch.Path().c_str(), file, room)) << room;
        EXPECT_FALSE(AvailSpace(scratch.Path().c_str(), file, room + 1)) << room;
    }
    EXPECT_EQ(TakeText(GetSysPkgList(nullptr)), " one two ");
    EXPECT_EQ(TakeText(CheckProcTableForExecs(",lpd,no,lpd2")), "lpd ( 12 14 )\nlpd2 ( 13 )\n");
    EXPECT_TRUE(SniffLprng() && !SniffCUPS());
    ComList[CMD_LPD].path = nullptr;
    EXPECT_FALSE(SniffLprng());
    spy.answers.front().second = "Filesystem Free\n/dev/a 600\n";
    EXPECT_FALSE(GetDiskSpace("/tmp", &record) || AvailSpace("/tmp", nullptr, 1));
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

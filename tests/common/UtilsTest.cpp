// Paths taken apart, files found and read line by line, files made by commands, reports, and the log.
#include "common/utils.h"

#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/SysFile.h"
#include "tests/lib/Capture.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

TEST(Paths, TakenApart) {
    const std::string deep = "/" + std::string(300, 'd');
    struct Case {
        char *(*function)(const char *);
        std::string in, want;
    } cases[] = {{StripExt, "/a.b/c.d", "/a"}, {StripPath, "/a/b/", ""},
                 {StripFn, "printer", "."},    {StripPathExt, "/a.x/b.tar.gz", "b"},
                 {StripFn, "/printer", "/"},   {StripFn, "/a/b/", "/a/b"},
                 {StripFn, deep + "/x", deep}, {GenName, "42 big-coLOR 4_x9\xe4z", "BigColor4X9Z"}};
    for (const Case &c : cases) EXPECT_EQ(c.function(c.in.c_str()), c.want) << c.in;
    EXPECT_STREQ(StripFn(StripFn("/a/b/c")), "/a") << "an argument in the function's own buffer";
}

TEST(Finding, FilesAndLines) {
    Scratch scratch;
    scratch.Write("sub/two words", "");
    scratch.Write("sub/b.PPD", "");
    const std::string longest = "key " + std::string(507, 'x'), dir = scratch.Path(), sub = dir + "/sub";
    const std::string leaf = scratch.Write("sub/a.ppd", "first\n" + longest + "\nlast key");
    struct Case {
        std::string directory;
        const char *file;
        int want;
    } cases[] = {{sub, "a.ppd", 1},     {leaf, "", 1},         {sub + "/", nullptr, 1},
                 {dir, "sub/a.ppd", 1}, {"", "", 0},           {sub, "a.pp", 0},
                 {"/", nullptr, 1},     {dir + "/no", "x", 0}, {sub, "two words", 0}};
    for (const Case &c : cases) EXPECT_EQ(FindFile(c.directory.c_str(), c.file), c.want) << c.directory;
    ASSERT_EQ(symlink(sub.c_str(), (dir + "/link").c_str()), 0);
    EXPECT_EQ(GetFileType((dir + "/link").c_str()), TYPE_LINK);
    EXPECT_EQ(TakeText(FindExistingPath((leaf + "/x/y").c_str(), nullptr)), sub);
    EXPECT_EQ(TakeText(SearchDirFileList(sub.c_str(), "ppd")), " a.ppd ");
    EXPECT_EQ(FileSearch(leaf.c_str(), "key", ERR_SILENT), longest);
    EXPECT_STREQ(FileSearch(leaf.c_str(), "last", ERR_SILENT), "last key");
    EXPECT_TRUE(FindInPath("sh") && !FindInPath("no such program"));
}

static bool OpenText(const Scratch &scratch, const std::string &text) {
    return OpenInputFile(scratch.Write("in", text).c_str(), ERR_SILENT);
}

TEST(Reading, FileLines) {
    const std::string x510(510, 'x');
    std::string joined;
    for (int i = 0; i < 14; i++) joined += std::string(300, 'y') + "\\\n";
    struct Case {
        std::string text;
        std::vector<std::string> want;
    } cases[] = {{"a\\b\nb", {"a\\b\n", "b"}},
                 {"a\\\nb\nc\n", {"a\\\nb\n", "c\n"}},
                 {x510 + "z\n", {x510, "z\n"}},
                 {joined, {joined.substr(0, 4095), joined.substr(4095)}},
                 {"", {}}};
    Scratch scratch;
    for (const Case &c : cases) {
        ASSERT_TRUE(OpenText(scratch, c.text));
        std::vector<std::string> got;
        while (GetFileLine()) got.push_back(LineBuf);
        EXPECT_EQ(got, c.want) << c.text;
        EXPECT_TRUE(!pIn && FileStatus == FILE_ENDED) << c.text;
    }
    ASSERT_TRUE(OpenText(scratch, "# no\n \t\n  word rest\\\nx\n"));
    EXPECT_EQ(GetFileTextLine(" \t\n"), 1);
    EXPECT_STREQ(LineBuf, "word");
    EXPECT_EQ(GetFileTextLine(" \t\n"), 0);
}

// Anybody may have made one where a file of settings is looked for: nothing waits for its other end.
TEST(Reading, PipesAreNotWaitedFor) {
    Scratch scratch;
    const std::string path = scratch.Path("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0666), 0);
    EXPECT_EQ(GetFileContent(path.c_str(), nullptr) + OpenInputFile(path.c_str(), ERR_SILENT), 0);
    EXPECT_EQ(GetSavedFileContent(path.c_str(), nullptr), nullptr);
    for (const char *mode : {"r", "rt", "r+", "wt", "a"})
        EXPECT_EQ(OpenFile(nullptr, path.c_str(), mode, ERR_SILENT), nullptr) << mode;
}

TEST(Reading, AnotherFileClosesTheLast) {
    FILE *last = OpenFile(nullptr, "/dev/null", "r", ERR_FATAL);
    int descriptor = fileno(last);
    EXPECT_EQ(OpenFile(last, "/no", "r", ERR_SILENT), nullptr);
    EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
}

TEST(Making, RealFiles) {
    Scratch scratch;
    const std::string dir = scratch.Path("a/it's $HOME"), file = dir + "/\"q\" `id`", text = dir + "/t";
    CreateFile(dir.c_str(), "\"q\" `id`", "604", std::to_string(getuid()).c_str(), nullptr);
    struct stat info;
    ASSERT_EQ(stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0604u);
    EXPECT_EQ(CreateTextFile(text.c_str(), "wt", 0606, "%s %i\n", "100%", 3), 1);
    RenameFile(dir.c_str(), "t", "to $1");
    EXPECT_EQ(ReadWhole(dir + "/to $1"), "100% 3\n");
    ASSERT_EQ(stat((dir + "/to $1").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0606u);
    RenameFile(dir.c_str(), "to $1", "plain");
    DeleteFile_((dir + "/plain").c_str(), nullptr);
    EXPECT_EQ(GetFileType((dir + "/plain").c_str()), TYPE_MISSING);
    Capture capture;
    EXPECT_EQ(CreateTextFile("/no/t", "wt", 0, "x") + CreateTextFile("/dev/full", "wt", 0, "x"), 0);
    EXPECT_EQ(capture.Err(), "ERROR: couldn't open /no/t\nERROR: couldn't open /dev/full\n");
}

static void RunPlainLine(int mode, int result) {
    SystemSpy spy;
    spy.result = result;
    SysCmdP(mode, "do %s", "100%");
    if (spy.lines != std::vector<std::string>{"do 100%", "/usr/bin/sleep 1"}) exit(99);
}

TEST(Reporting, ControlsAreShownAsQuestionMarks) {
    static const struct {
        std::string text, shown;
    } Cases[] = {
        {"a\tb\n", "a\tb\n"},
        {"\x1b]0;x\x07\r\f\x7f", "?]0;x????"},
        {"\u00e4\u20ac\U0001F5A8", "\u00e4\u20ac\U0001F5A8"}, // with bytes from 128 to 159 behind the first
        {"\xe4\xa0\xff", "\xe4\xa0\xff"},                     // Latin 1
        {"\u009b2J\u0085", "??2J??"},
        {"\x9b\xe2\x82", "?\xe2?"}, // cut in the middle
        {"A\x9b", "A?"},
        {std::string("a\0b", 3), "a?b"}};
    for (const auto &[text, shown] : Cases) EXPECT_EQ(ShowPlain(text), shown);
}

TEST(Reporting, TextsAndEnds) {
    const std::string no = "can't open file, /no/%s";
    struct Case {
        void (*function)();
        int status;
        std::string err;
    } cases[] = {{[] { errormsg("a %i", 1); }, 0, "prndeck: a 1\n"},
                 {[] { ErrorMsg(ERR_FATAL, 3, "x"); }, 3, "ERROR: x\n"},
                 {[] { RunPlainLine(1, 256); }, 0, "prndeck: Input/output error\n"},
                 {[] { RunPlainLine(2, 256); }, 1, "prndeck: Input/output error\n"},
                 {[] { RunPlainLine(2, 512); }, 0, ""}, // exit code 2 is let pass
                 {[] { OpenInputFile("/no/%s", ERR_WARN); }, 0, "WARNING: " + no + "\n"},
                 {[] { OpenInputFile("/no/%s", ERR_FATAL); }, 0, "ERROR: " + no + "\n"},
                 {[] { OpenFile(nullptr, "/no/%s", "r", ERR_FATAL); }, 1,
                  "\nprndeck: " + no + " : No such file or directory\n"}};
    for (const Case &c : cases) {
        ChildEnd end = RunForked(c.function);
        EXPECT_EQ(end.status, c.status) << &c - cases;
        EXPECT_EQ(end.err, c.err) << &c - cases;
    }
}

// ---- A log of this test's own in /tmp

class Log : public testing::Test {
protected:
    void SetUp() override {
        my_name = name.c_str();
        flUseLog = 1;
    }
    void TearDown() override {
        my_name = "prndeck";
        flUseLog = 0;
        unlink(path.c_str());
    }
    const std::string name = "prntest" + std::to_string(getpid()), path = "/tmp/" + name + ".log";
};

TEST_F(Log, StartsAnewInEachProcess) {
    for (int i = 0; i < 2; i++) {
        ChildEnd end = RunForked([] {
            flSysCmdLog = 1; // the log is made by commands, which must not come back to it
            PutLogMsg("one %s\n", "1");
            PutLogMsg("two\n");
        });
        EXPECT_EQ(end.out + end.err, "");
        EXPECT_EQ(ReadWhole(path), "one 1\ntwo\n");
    }
}

static int PutForeignLog(const char *path) {
    enum { NOBODY = 65534 };
    int file = open(path, O_WRONLY | O_CREAT, 0666);
    if (file < 0 || fchmod(file, 0666) != 0) return -1;
    int status = geteuid() == 0 ? fchown(file, NOBODY, NOBODY) : fchmod(file, 0);
    close(file);
    return status;
}

TEST_F(Log, LeavesForeignFilesWhole) {
    Scratch scratch;
    const std::string target = scratch.Write("target", "precious"), missing = scratch.Path("missing");
    std::function<int()> tricks[] = {[&] { return symlink(target.c_str(), path.c_str()); },
                                     [&] { return symlink(missing.c_str(), path.c_str()); },
                                     [&] { return link(target.c_str(), path.c_str()); },
                                     [&] { return mkfifo(path.c_str(), 0666); },
                                     // The owner could swap it for a link before the shell opens it.
                                     [&] { return PutForeignLog(path.c_str()); }};
    for (const auto &trick : tricks) {
        ASSERT_EQ(trick(), 0) << strerror(errno);
        long size = GetFileSize(path.c_str());
        ChildEnd end = RunForked([] { PutLogMsg("x\n"); });
        EXPECT_EQ(end.err, "ERROR: couldn't open " + path + "\n") << &trick - tricks;
        EXPECT_FALSE(TestLogFile(path.c_str())) << &trick - tricks;
        EXPECT_EQ(ReadWhole(target), "precious") << &trick - tricks;
        EXPECT_EQ(GetFileSize(path.c_str()), size) << &trick - tricks;
        EXPECT_EQ(GetFileType(missing.c_str()), TYPE_MISSING) << &trick - tricks;
        remove(path.c_str());
    }
}

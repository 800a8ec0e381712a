// Paths taken apart, files found and read line by line, files made by commands, and the four kinds of report.
#include "common/utils.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "tests/lib/Capture.h"

TEST(Paths, TakenApart) {
    const std::string deep = "/" + std::string(300, 'd');
    struct Case {
        const char *name;
        char *(*function)(const char *);
        std::string in, want;
    } cases[] = {
        {"first dot of the whole path", StripExt, "/a.b/c.d", "/a"},
        {"trailing slash", StripPath, "/a/b/", ""},
        {"path and ext", StripPathExt, "/a.x/b.tar.gz", "b"},
        {"no directory", StripFn, "printer", "."},
        {"root", StripFn, "/printer", "/"},
        {"directory, trailing slash", StripFn, "/a/b/", "/a/b"},
        {"long directory", StripFn, deep + "/x", deep},
        {"identifier", GenName, "42 big-coLOR 4_x9\xe4z", "BigColor4X9Z"},
    };
    for (const Case &c : cases) EXPECT_EQ(c.function(c.in.c_str()), c.want) << c.name << ": " << c.in;
    EXPECT_STREQ(StripPath(nullptr), "");
    EXPECT_STREQ(StripFn(nullptr), ".");
    EXPECT_STREQ(StripFn(StripFn("/a/b/c")), "/a") << "an argument in the function's own buffer";
}

TEST(Paths, ToolDirectory) {
    Scratch scratch;
    const std::string top = scratch.MakeDir(std::string(120, 't')), mid = top + "/" + std::string(120, 'm');
    const std::string cwd = mid + "/cwd";
    scratch.MakeDir(cwd.substr(scratch.Path().length() + 1));
    struct Case {
        const char *argv0;
        std::string cwd, want;
    } cases[] = {
        {"/opt/t/prndeck", cwd, "/opt/t"},
        {"prndeck", cwd, cwd},
        {"./prndeck", cwd, cwd},
        {"bin/prndeck", cwd, cwd + "/bin"},
        {"././bin/prndeck", cwd, cwd + "/bin"},
        {"../prndeck", cwd, mid},
        {"../../prndeck", cwd, top},
        {"../bin/prndeck", cwd, mid + "/bin"},
        {"..bin/prndeck", cwd, cwd + "/..bin"},
        {"", cwd, cwd},
        {"prndeck", "/", "/"},
        {"bin/prndeck", "/", "/bin"},
    };
    for (const Case &c : cases) {
        ChildEnd end = RunForked([&c] {
            if (chdir(c.cwd.c_str()) == 0) fputs(GetToolPath(c.argv0), stdout);
        });
        EXPECT_EQ(end.out, c.want) << c.argv0 << " in " << c.cwd;
    }
}

TEST(Finding, ByListing) {
    Scratch scratch;
    scratch.Write("sub/leaf", "12345");
    scratch.Write("sub/two words", "");
    const std::string dir = scratch.Path(), sub = dir + "/sub";
    struct Case {
        const char *name;
        std::string directory;
        const char *file;
        int want;
    } cases[] = {
        {"directory and name", sub, "leaf", 1},
        {"joined path", sub + "/leaf", "", 1},
        {"trailing slash", sub + "/", nullptr, 1},
        {"name with a slash", dir, "sub/leaf", 1},
        {"no path at all", "", "", 0},
        {"part of a name", sub, "lea", 0},
        {"name with a blank", sub, "two words", 0},
        {"missing directory", dir + "/no", "x", 0},
        {"root itself", "/", nullptr, 1},
    };
    for (const Case &c : cases) EXPECT_EQ(FindFile(c.directory.c_str(), c.file), c.want) << c.name;
    EXPECT_EQ(FindFile(nullptr, (sub + "/leaf").c_str()), 1);
    EXPECT_EQ(FindFile_(sub.c_str(), "two words"), 1);

    ASSERT_EQ(symlink(sub.c_str(), (dir + "/link").c_str()), 0);
    EXPECT_EQ(GetFileType((dir + "/link").c_str()), TYPE_LINK);
    EXPECT_EQ(GetFileType(sub.c_str()), TYPE_DIRECTORY);
    EXPECT_EQ(GetFileType((dir + "/no").c_str()), TYPE_MISSING);
    EXPECT_EQ(GetFileSize((sub + "/leaf").c_str()), 5);
    EXPECT_EQ(GetFileTime((dir + "/no").c_str()), 0);
    int flWhole = -1;
    EXPECT_EQ(TakeText(FindExistingPath((sub + "/leaf/x/y").c_str(), &flWhole)), sub);
    EXPECT_EQ(flWhole, 0);
    EXPECT_EQ(TakeText(FindExistingPath("no/such/path", nullptr)), ".");
}

TEST(Finding, Listings) {
    Scratch scratch;
    for (const char *name : {"a.ppd", "b.PPD", "c.ppd.bak", "ppd"}) scratch.Write(name, "");
    const char *dir = scratch.Path().c_str();
    EXPECT_EQ(TakeText(SearchDirFileList(dir, "ppd")), " a.ppd ");
    EXPECT_EQ(TakeText(SearchDirFileList(dir, "txt")), "(null)");
    EXPECT_EQ(TakeText(SearchDirFileList(dir, nullptr)).length(), strlen(" a.ppd b.PPD c.ppd.bak ppd "));
    EXPECT_EQ(TakeText(GetDirFileList(dir)).length(), strlen(" . .. a.ppd b.PPD c.ppd.bak ppd "));
    EXPECT_EQ(TakeText(GetDirFileList("/no")), "(null)");

    const std::string longest = "key " + std::string(507, 'x');
    const std::string file = scratch.Write("f", "first\n" + longest + "\nlast key");
    EXPECT_STREQ(FileSearch(file.c_str(), nullptr, ERR_SILENT), "first\n");
    EXPECT_EQ(FileSearch(file.c_str(), "key", ERR_SILENT), longest);
    EXPECT_STREQ(FileSearch(file.c_str(), "last", ERR_SILENT), "last key");
    EXPECT_EQ(FileSearch(file.c_str(), "none", ERR_SILENT), nullptr);
}

TEST(Opening, FailureByLevel) {
    const std::string no = "can't open file, /no/%s";
    struct Case {
        int level, flInput, status;
        std::string err;
    } cases[] = {
        {ERR_SILENT, 0, 7, ""},
        {ERR_WARN, 0, 7, "ERROR: " + no + "\n"},
        {ERR_FATAL, 0, 1, "\nprndeck: " + no + " : No such file or directory\n"},
        {ERR_SILENT, 1, 7, ""},
        {ERR_WARN, 1, 7, "WARNING: " + no + "\n"},
        {ERR_FATAL, 1, 0, "ERROR: " + no + "\n"},
    };
    for (const Case &c : cases) {
        ChildEnd end = RunForked([&c] {
            strcpy(Line, "kept");
            bool flOpen = c.flInput ? OpenInputFile("/no/%s", c.level)
                                    : OpenFile(nullptr, "/no/%s", "r", c.level) != nullptr;
            exit(flOpen || strcmp(Line, "kept") != 0 ? 8 : 7);
        });
        EXPECT_EQ(end.status, c.status) << c.level << c.flInput;
        EXPECT_EQ(end.err, c.err) << c.level << c.flInput;
    }
}

static bool OpenText(const Scratch &scratch, const std::string &text) {
    return OpenInputFile(scratch.Write("in", text).c_str(), ERR_SILENT);
}

TEST(Reading, FileLines) {
    const std::string x510(510, 'x');
    std::string joined;
    for (int i = 0; i < 14; i++) joined += std::string(300, 'y') + "\\\n";
    struct Case {
        const char *name;
        std::string text;
        std::vector<std::string> want;
    } cases[] = {
        {"no final line feed", "a\\b\nb", {"a\\b\n", "b"}},
        {"continuation keeps its backslash", "a\\\nb\nc\n", {"a\\\nb\n", "c\n"}},
        {"continuation at the end", "a\\\n", {"a\\\n"}},
        {"pieces of 510", x510 + "z\n", {x510, "z\n"}},
        {"joined up to the buffer", joined, {joined.substr(0, 4095), joined.substr(4095)}},
        {"empty file", "", {}},
    };
    Scratch scratch;
    for (const Case &c : cases) {
        ASSERT_TRUE(OpenText(scratch, c.text));
        std::vector<std::string> got;
        while (GetFileLine()) got.push_back(LineBuf);
        EXPECT_EQ(got, c.want) << c.name;
        EXPECT_TRUE(!pIn && FileStatus == FILE_ENDED) << c.name;
    }
    ASSERT_TRUE(OpenText(scratch, "# no\n \t\n  word rest\\\nx\n"));
    EXPECT_TRUE(fcntl(fileno(pIn), F_GETFD) & FD_CLOEXEC) << "no child inherits the input file";
    EXPECT_EQ(GetFileTextLine(" \t\n"), 1);
    EXPECT_STREQ(LineBuf, "word");
    EXPECT_EQ(LineLen, 13);
    EXPECT_EQ(GetFileTextLine(" \t\n"), 0);
}

TEST(Reading, FilteredLines) {
    struct Case {
        const char *name;
        std::string text;
        std::vector<std::pair<int, std::string>> want;
    } cases[] = {
        {"white space and line ends", " \t a b \r\n\nc", {{1, "a b "}, {1, ""}, {1, "c"}}},
        {"comments in one line", "a /* b */ c /**/ d // e\n", {{1, "a  c  d "}}},
        {"comment over three lines", "a /* b\nc\nd */ e\nf\n", {{3, "a  e"}, {1, "f"}}},
        {"one comment ends, another begins", "a /*\n*/ b /*\n// */ c // d\n", {{3, "a  b  c "}}},
        {"nothing closes it, text in front", "a /* b\nc", {{2, "a "}}},
        {"nothing closes it, no text", "/* b\nc\n", {}},
    };
    Scratch scratch;
    for (const Case &c : cases) {
        ASSERT_TRUE(OpenText(scratch, c.text));
        std::vector<std::pair<int, std::string>> got;
        while (int lines = GetLine()) got.emplace_back(lines, Line);
        EXPECT_EQ(got, c.want) << c.name;
    }
    ASSERT_TRUE(OpenText(scratch, "one\n  two // 2\nthree\n"));
    memset(Line, 'z', INPUT_LINE + 1);
    EXPECT_EQ(GetLineN(2), 1);
    EXPECT_EQ(InPos, 4);
    EXPECT_EQ(std::string(Line, INPUT_LINE + 1), "two " + std::string(INPUT_LINE - 4, '\0') + "z");
    flInputFilterState = 0;
    EXPECT_EQ(GetLinePos(4), 1);
    EXPECT_STREQ(Line, "  two // 2\n");
    flInputFilterState = 1;
    EXPECT_EQ(GetLineN(2), 0);
    CloseInputFile();
}

TEST(Reading, WholeFiles) {
    Scratch scratch;
    const std::string big(200000, 'b'), nuls("a\0b\0", 4);
    struct Case {
        std::string text, want;
    } cases[] = {{"", "(null)"}, {"\n", ""}, {"ab", "ab"}, {nuls, "a"}, {big, big}};
    for (const Case &c : cases) {
        scratch.Write("f", c.text);
        char *content = GetSavedFileContent(scratch.Path().c_str(), "f");
        ASSERT_EQ(SavedFileSize, static_cast<long>(c.text.size()));
        EXPECT_TRUE(c.text.size() < 2 || memcmp(content, c.text.data(), c.text.size()) == 0) << c.text.size();
        EXPECT_EQ(TakeText(content), c.want);
    }
    EXPECT_EQ(TakeText(GetSavedFileContent(scratch.Path().c_str(), nullptr)), "(null)") << "a directory";
    EXPECT_EQ(GetFileContent(scratch.Path("f").c_str(), nullptr), 1);
    EXPECT_EQ(LineBuf, std::string(4095, 'b'));
    EXPECT_EQ(GetFileContent(scratch.Path().c_str(), "no"), 0);
}

TEST(Making, CommandLines) {
    Scratch scratch;
    flInitSysCmd = 1;
    scratch.Write("old", "");
    const std::string d = scratch.Path(), dir = d + "/new", name = "'" + dir + "/it'\\\\''s'";
    SystemSpy spy;
    CreateFile(dir.c_str(), "it's", "640", "root", "a b");
    CreateFile(d.c_str(), nullptr, "777", nullptr, nullptr);
    DeleteFile_((d + "/old").c_str(), nullptr);
    DeleteFile(d.c_str(), "no");
    RenameFile(d.c_str(), "old", "ne w");
    RenameFile(d.c_str(), "no", "x");
    const std::string to = " 1>>/dev/null 2>>/dev/null\"";
    const std::string wanted[] = {
        "/mkdir -p " + dir + to,      "/touch  " + name + to,
        "/chmod  640 " + name + to,   "/chown  root " + name + to,
        "/chgrp  'a b' " + name + to, "/chmod  777 " + d + to,
        "/rm -f " + d + "/old" + to,  "/mv -f " + d + "/old '" + d + "/ne w'\"",
    };
    ASSERT_EQ(spy.lines.size(), std::size(wanted));
    for (size_t i = 0; i < std::size(wanted); i++)
        EXPECT_TRUE(spy.lines[i].ends_with(wanted[i])) << spy.lines[i];
}

TEST(Making, RealFiles) {
    Scratch scratch;
    const std::string dir = scratch.Path("a/it's $HOME"), file = dir + "/\"q\" `id`", text = dir + "/t";
    CreateFile(dir.c_str(), "\"q\" `id`", "604", nullptr, nullptr);
    struct stat info;
    ASSERT_EQ(stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0604u);
    EXPECT_EQ(CreateTextFile(text.c_str(), "wt", 0606, "%s %i\n", "100%", 3), 1);
    EXPECT_EQ(CreateTextFile(text.c_str(), "at", 0, "more"), 1);
    RenameFile(dir.c_str(), "t", "to$1");
    EXPECT_EQ(ReadWhole(dir + "/to$1"), "100% 3\nmore");
    ASSERT_EQ(stat((dir + "/to$1").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0606u);
    DeleteFile(dir.c_str(), "to$1");
    EXPECT_EQ(GetFileType((dir + "/to$1").c_str()), TYPE_MISSING);
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

TEST(Reporting, TextsAndEnds) {
    struct Case {
        const char *name;
        void (*function)();
        int status;
        const char *err;
    } cases[] = {
        {"system error",
         [] {
             errno = 0;
             SysError("%s", "end");
         },
         1, "\nprndeck: end : Success\n"},
        {"message", [] { errormsg("a %i", 1); }, 0, "prndeck: a 1\n"},
        {"warning", [] { ErrorMsg(1, 3, "x"); }, 0, "WARNING: x\n"},
        {"error", [] { ErrorMsg(2, 3, "x"); }, 3, "ERROR: x\n"},
        {"other level", [] { ErrorMsg(3, 3, "x"); }, 0, ""},
        {"line, silent", [] { RunPlainLine(0, 256); }, 0, ""},
        {"line, reported", [] { RunPlainLine(1, 256); }, 0, "prndeck: Input/output error\n"},
        {"line, fatal", [] { RunPlainLine(2, 256); }, 1, "prndeck: Input/output error\n"},
        {"line, exit code 2 is let pass", [] { RunPlainLine(2, 512); }, 0, ""},
    };
    for (const Case &c : cases) {
        ChildEnd end = RunForked(c.function);
        EXPECT_EQ(end.status, c.status) << c.name;
        EXPECT_EQ(end.err, c.err) << c.name;
    }
}

// A log of this test's own in /tmp.
struct OwnLog {
    std::string name = "prntest" + std::to_string(getpid()), path = "/tmp/" + name + ".log";
    OwnLog() {
        my_name = name.c_str();
        flUseLog = 1;
    }
    ~OwnLog() {
        my_name = "prndeck";
        flUseLog = 0;
        unlink(path.c_str());
    }
};

TEST(Logging, FirstMessageTruncates) {
    OwnLog log;
    for (int i = 0; i < 2; i++) {
        ChildEnd end = RunForked([] {
            flSysCmdLog = 1; // the log is made by commands, which must not come back to it
            PutLogMsg("one %s\n", "1");
            PutLogMsg("two\n");
        });
        EXPECT_EQ(end.out + end.err, "");
        EXPECT_EQ(ReadWhole(log.path), "one 1\ntwo\n");
    }
    struct stat info;
    ASSERT_EQ(stat(log.path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0666u);
}

TEST(Logging, ForeignFilesStayWhole) {
    OwnLog log;
    Scratch scratch;
    const std::string target = scratch.Write("target", "precious"), missing = scratch.Path("missing");
    struct Case {
        const char *name;
        std::function<int()> make;
    } cases[] = {
        {"link", [&] { return symlink(target.c_str(), log.path.c_str()); }},
        {"dangling link", [&] { return symlink(missing.c_str(), log.path.c_str()); }},
        {"second name", [&] { return link(target.c_str(), log.path.c_str()); }},
        {"pipe", [&] { return mkfifo(log.path.c_str(), 0666); }},
    };
    for (const Case &c : cases) {
        ASSERT_EQ(c.make(), 0) << c.name << ": " << strerror(errno);
        ChildEnd end = RunForked([] { PutLogMsg("x\n"); });
        EXPECT_EQ(end.err, "ERROR: couldn't open " + log.path + "\n") << c.name;
        EXPECT_FALSE(TestLogFile(log.path.c_str())) << c.name;
        EXPECT_EQ(ReadWhole(target), "precious") << c.name;
        EXPECT_EQ(GetFileType(missing.c_str()), TYPE_MISSING) << c.name;
        remove(log.path.c_str());
    }
}

TEST(Process, AskedOfTheHost) {
    SystemSpy spy;
    for (int row : {CMD_WHOAMI, CMD_LPD, CMD_PS}) ComList[row].path = nullptr;
    EXPECT_EQ(TakeText(GetUserName()), getuid() == 0 ? "root" : "User ID:  " + std::to_string(getuid()));
    EXPECT_EQ(SniffLprng() + SniffCUPS(), 0) << "a missing command must not end the program";
    for (int row : {CMD_WHOAMI, CMD_LPD, CMD_PS}) ComList[row].path = "/my bin";
    EXPECT_EQ(TakeText(GetUserName()), "") << "whoami without a line";
    EXPECT_EQ(SniffLprng() + SniffCUPS(), 0);
    spy.answers = {{"'/my bin'/whoami", "lp\nmore\n"},
                   {"/lpd   -V 2>&1", "lpd\nLPRng-3.8\n"},
                   {"/ps -e ", " 7 ? 00:00:00 cupsd\n"}};
    EXPECT_EQ(TakeText(GetUserName()), "lp");
    EXPECT_EQ(SniffLprng() + SniffCUPS(), 2);
    spy.popenFails = true;
    EXPECT_EQ(TakeText(GetUserName()), "(null)");
    for (int row : {CMD_WHOAMI, CMD_LPD, CMD_PS}) ComList[row].path = nullptr;
    EXPECT_EQ(TakeText(GetEnv("PRN_NO_SUCH_NAME")), "(null)");
    char name[256];
    ASSERT_EQ(gethostname(name, sizeof(name)), 0);
    EXPECT_EQ(TakeText(GetHostname()), name);
}

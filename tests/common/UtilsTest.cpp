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

static std::string Take(char *managed) {
    std::string text = managed ? managed : "(null)";
    PutMem(managed);
    return text;
}

TEST(Paths, TakenApart) {
    const std::string deep = "/" + std::string(300, 'd');
    struct Case {
        const char *name;
        char *(*function)(const char *);
        std::string in, want;
    } cases[] = {
        {"ext: first dot of the whole path", StripExt, "/a.b/c.d", "/a"},
        {"ext: none", StripExt, "/a/b", "/a/b"},
        {"path: last component", StripPath, "/a/b.c", "b.c"},
        {"path: trailing slash", StripPath, "/a/b/", ""},
        {"path and ext", StripPathExt, "/a.x/b.tar.gz", "b"},
        {"directory: none", StripFn, "printer", "."},
        {"directory: empty", StripFn, "", "."},
        {"directory: root", StripFn, "/printer", "/"},
        {"directory: root itself", StripFn, "/", "/"},
        {"directory: plain", StripFn, "/a/b", "/a"},
        {"directory: trailing slash", StripFn, "/a/b/", "/a/b"},
        {"directory: long", StripFn, deep + "/x", deep},
        {"path: long", StripPath, "/x" + deep, deep.substr(1)},
        {"name: runs", GenName, "42 hp-coLOR 4_x9", "HpColor4X9"},
        {"name: no letter", GenName, "42 - 7", ""},
        {"name: bytes above 127", GenName, "a\xe4z", "AZ"},
    };
    for (const Case &c : cases) EXPECT_EQ(c.function(c.in.c_str()), c.want) << c.name << ": " << c.in;
    EXPECT_STREQ(StripPath(nullptr), "");
    EXPECT_STREQ(StripFn(nullptr), ".");
    EXPECT_STREQ(StripFn(StripFn("/a/b/c")), "/a") << "an argument in the function's own buffer";
}

TEST(Paths, ToolDirectory) {
    Scratch scratch;
    const std::string top = scratch.MakeDir(std::string(120, 't')), mid = top + "/" + std::string(120, 'm');
    const std::string cwd = scratch.MakeDir(mid.substr(scratch.Path().length() + 1) + "/cwd");
    struct Case {
        const char *argv0;
        std::string cwd, want;
    } cases[] = {
        {"/opt/t/prndeck", cwd, "/opt/t"},
        {"/prndeck", cwd, "/"},
        {"prndeck", cwd, cwd},
        {"./prndeck", cwd, cwd},
        {"././prndeck", cwd, cwd},
        {"bin/prndeck", cwd, cwd + "/bin"},
        {"./bin/prndeck", cwd, cwd + "/bin"},
        {"../prndeck", cwd, mid},
        {"../../prndeck", cwd, top},
        {"../bin/prndeck", cwd, mid + "/bin"},
        {"..bin/prndeck", cwd, cwd + "/..bin"},
        {"", cwd, cwd},
        {"prndeck", "/", "/"},
        {"bin/prndeck", "/", "/bin"},
        {"../prndeck", "/", "/"},
    };
    char *before = getcwd(nullptr, 0);
    for (const Case &c : cases) {
        ASSERT_EQ(chdir(c.cwd.c_str()), 0);
        EXPECT_EQ(Take(GetToolPath(c.argv0)), c.want) << c.argv0 << " in " << c.cwd;
    }
    EXPECT_EQ(Take(GetToolPath(nullptr)), "/");
    ASSERT_EQ(chdir(before), 0);
    free(before);
}

TEST(Finding, ExistingPath) {
    Scratch scratch;
    scratch.Write("d/file", "");
    int flWhole = -1;
    EXPECT_EQ(Take(FindExistingPath(scratch.Path("d").c_str(), &flWhole)), scratch.Path("d"));
    EXPECT_EQ(flWhole, 1);
    EXPECT_EQ(Take(FindExistingPath(scratch.Path("d/file/x/y").c_str(), &flWhole)), scratch.Path("d"));
    EXPECT_EQ(flWhole, 0);
    EXPECT_EQ(Take(FindExistingPath("no/such/path", nullptr)), ".");
}

TEST(Finding, ByListing) {
    Scratch scratch;
    const std::string dir = scratch.MakeDir("d"), sub = scratch.MakeDir("d/sub");
    scratch.Write("d/sub/leaf", "");
    scratch.Write("d/two words", "");
    struct Case {
        const char *name;
        std::string directory;
        const char *file;
        int want;
    } cases[] = {
        {"directory and name", sub, "leaf", 1},
        {"joined path, empty name", sub + "/leaf", "", 1},
        {"joined path, null name", sub, nullptr, 1},
        {"name with a slash", dir, "sub/leaf", 1},
        {"no directory", "", "", 0},
        {"part of a name", sub, "lea", 0},
        {"missing name", dir, "leaf", 0},
        {"name with a blank", dir, "two words", 0},
        {"missing directory", dir + "/no", "x", 0},
        {"root itself", "/", nullptr, 1},
        {"trailing slash", sub + "/", nullptr, 1},
        {"current directory", ".", nullptr, 1},
    };
    for (const Case &c : cases) EXPECT_EQ(FindFile(c.directory.c_str(), c.file), c.want) << c.name;
    EXPECT_EQ(FindFile(nullptr, (sub + "/leaf").c_str()), 1);
    EXPECT_EQ(FindFile_(dir.c_str(), "two words"), 1);
    EXPECT_EQ(FindFile_(nullptr, (dir + "/no").c_str()), 0);
}

TEST(Finding, Listings) {
    Scratch scratch;
    for (const char *name : {"a.ppd", "b.PPD", "c.ppd.bak", "ppd"}) scratch.Write(name, "");
    const char *dir = scratch.Path().c_str();
    EXPECT_EQ(Take(SearchDirFileList(dir, "ppd")), " a.ppd ");
    EXPECT_EQ(Take(SearchDirFileList(dir, "txt")), "(null)");
    EXPECT_EQ(Take(SearchDirFileList(dir, nullptr)).length(), strlen(" a.ppd b.PPD c.ppd.bak ppd "));
    EXPECT_EQ(Take(GetDirFileList(dir)).length(), strlen(" . .. a.ppd b.PPD c.ppd.bak ppd "));
    EXPECT_EQ(Take(GetDirFileList(scratch.Path("no").c_str())), "(null)");
    scratch.MakeDir("empty");
    EXPECT_EQ(Take(SearchDirFileList(scratch.Path("empty").c_str(), nullptr)), "(null)");
}

TEST(Finding, TypesAndSizes) {
    Scratch scratch;
    const std::string file = scratch.Write("file", "12345"), link = scratch.Path("link");
    ASSERT_EQ(symlink(scratch.Path().c_str(), link.c_str()), 0);
    EXPECT_EQ(GetFileType(file.c_str()), TYPE_OTHER);
    EXPECT_EQ(GetFileType(scratch.Path().c_str()), TYPE_DIRECTORY);
    EXPECT_EQ(GetFileType(link.c_str()), TYPE_LINK);
    EXPECT_EQ(GetFileType(scratch.Path("no").c_str()), TYPE_MISSING);
    EXPECT_EQ(GetFileSize(file.c_str()), 5);
    EXPECT_GT(GetFileTime(file.c_str()), 0);
    EXPECT_EQ(GetFileTime(scratch.Path("no").c_str()), 0);
}

TEST(Finding, LineOfAFile) {
    Scratch scratch;
    const std::string longest = "key " + std::string(507, 'x');
    const std::string path = scratch.Write("f", "first\n" + longest + "\nlast key");
    EXPECT_STREQ(FileSearch(path.c_str(), nullptr, ERR_SILENT), "first\n");
    EXPECT_EQ(FileSearch(path.c_str(), "key", ERR_SILENT), longest);
    EXPECT_STREQ(FileSearch(path.c_str(), "last", ERR_SILENT), "last key");
    EXPECT_EQ(FileSearch(path.c_str(), "none", ERR_SILENT), nullptr);
    EXPECT_EQ(FileSearch(scratch.Path("no").c_str(), "key", ERR_SILENT), nullptr);
}

TEST(Opening, FailureByLevel) {
    const std::string no = "can't open file, /no/%s";
    struct Case {
        const char *name;
        int level, flInput, status;
        std::string err;
    } cases[] = {
        {"stream, silent", ERR_SILENT, 0, 7, ""},
        {"stream, warn", ERR_WARN, 0, 7, "ERROR: " + no + "\n"},
        {"stream, fatal", ERR_FATAL, 0, 1, "\nprndeck: " + no + " : No such file or directory\n"},
        {"input, silent", ERR_SILENT, 1, 7, ""},
        {"input, warn", ERR_WARN, 1, 7, "WARNING: " + no + "\n"},
        {"input, fatal", ERR_FATAL, 1, 0, "ERROR: " + no + "\n"},
    };
    for (const Case &c : cases) {
        ChildEnd end = RunForked([&c] {
            if (c.flInput ? OpenInputFile("/no/%s", c.level) != 0
                          : OpenFile(nullptr, "/no/%s", "r", c.level) != nullptr)
                exit(8);
            exit(c.flInput && FileStatus != FILE_FAILED ? 9 : 7);
        });
        EXPECT_EQ(end.status, c.status) << c.name;
        EXPECT_EQ(end.err, c.err) << c.name;
    }
}

static bool OpenText(const Scratch &scratch, const std::string &text) {
    return OpenInputFile(scratch.Write("in", text).c_str(), ERR_SILENT);
}

TEST(Reading, FileLines) {
    const std::string x510(510, 'x'), y300 = std::string(300, 'y') + "\\\n";
    std::string joined; // 13 lines of 302 bytes, then what fits into 4095
    for (int i = 0; i < 14; i++) joined += y300;
    struct Case {
        const char *name;
        std::string text;
        std::vector<std::string> want;
    } cases[] = {
        {"no final line feed", "a\nb", {"a\n", "b"}},
        {"continuation keeps its backslash", "a\\\nb\nc\n", {"a\\\nb\n", "c\n"}},
        {"continuation at the end", "a\\\n", {"a\\\n"}},
        {"backslash inside a line", "a\\b\nc\n", {"a\\b\n", "c\n"}},
        {"510 bytes", x510 + "\n", {x510, "\n"}},
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
        EXPECT_EQ(pIn, nullptr) << c.name;
        EXPECT_EQ(FileStatus, FILE_ENDED) << c.name;
        EXPECT_EQ(GetFileLine(), 0) << c.name;
    }
    ASSERT_TRUE(OpenText(scratch, "ab\\\nc\n"));
    GetFileLine();
    EXPECT_EQ(LineLen, 4);
    EXPECT_TRUE(fcntl(fileno(pIn), F_GETFD) & FD_CLOEXEC) << "no child inherits the input file";
    ASSERT_TRUE(OpenText(scratch, "# no\n \t\n  word rest\n"));
    EXPECT_EQ(GetFileTextLine(" \t\n"), 1);
    EXPECT_STREQ(LineBuf, "word");
    EXPECT_EQ(GetFileTextLine(" \t\n"), 0);
}

TEST(Reading, FilteredLines) {
    struct Case {
        const char *name;
        std::string text;
        std::vector<std::pair<int, std::string>> want;
    } cases[] = {
        {"white space and line ends", " \t a b \r\n\nc", {{1, "a b "}, {1, ""}, {1, "c"}}},
        {"line comment", "a // b\n", {{1, "a "}}},
        {"comments in one line", "a /* b */ c /**/ d\n", {{1, "a  c  d"}}},
        {"comment over three lines", "a /* b\nc\nd */ e\nf\n", {{3, "a  e"}, {1, "f"}}},
        {"one comment ends, another begins", "a /*\n*/ b /*\n*/ c\n", {{3, "a  b  c"}}},
        {"line comment behind a comment", "a /*\n// */ b // c\n", {{2, "a  b "}}},
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
}

TEST(Reading, PositionedLines) {
    Scratch scratch;
    ASSERT_TRUE(OpenText(scratch, "one\n  two // 2\nthree\n"));
    memset(Line, 'z', INPUT_LINE + 1);
    EXPECT_EQ(GetLineN(2), 1);
    EXPECT_STREQ(Line, "two ");
    EXPECT_EQ(InPos, 4);
    EXPECT_EQ(std::string(Line + 4, INPUT_LINE - 4), std::string(INPUT_LINE - 4, '\0'));
    EXPECT_EQ(Line[INPUT_LINE], 'z');
    flInputFilterState = 0;
    EXPECT_EQ(GetLinePos(4), 1);
    EXPECT_STREQ(Line, "  two // 2\n");
    flInputFilterState = 1;
    EXPECT_EQ(GetLineN(2), 0);
    char buffer[8];
    EXPECT_STREQ(fgetsp(buffer, sizeof(buffer), pIn, 15), "three\n");
    CloseInputFile();
    EXPECT_EQ(GetLine(), 0);
}

TEST(Reading, WholeFiles) {
    Scratch scratch;
    const std::string big(200000, 'b'), nuls("a\0b\0", 4);
    struct Case {
        const char *name;
        std::string text;
        long size;
        std::string want;
    } cases[] = {
        {"empty", "", 0, "(null)"}, {"one byte", "\n", 1, ""}, {"two bytes", "ab", 2, "ab"},
        {"NULs", nuls, 4, "a"},     {"big", big, 200000, big},
    };
    for (const Case &c : cases) {
        scratch.Write("f", c.text);
        char *content = GetSavedFileContent(scratch.Path().c_str(), "f");
        EXPECT_EQ(SavedFileSize, c.size) << c.name;
        if (content && c.size > 1) {
            EXPECT_EQ(memcmp(content, c.text.data(), c.text.size()), 0) << c.name;
        }
        EXPECT_EQ(Take(content), c.want) << c.name;
    }
    EXPECT_EQ(Take(GetSavedFileContent(scratch.Path().c_str(), nullptr)), "(null)") << "a directory";
    EXPECT_EQ(GetFileContent(scratch.Path("f").c_str(), nullptr), 1);
    EXPECT_EQ(LineBuf, std::string(4095, 'b'));
    char small[4];
    EXPECT_EQ(GetFileContentR(scratch.Path().c_str(), "f", small, 3), 1);
    EXPECT_STREQ(small, "bbb");
    EXPECT_EQ(GetFileContent(scratch.Path("no").c_str(), nullptr), 0);
}

TEST(Making, CommandLines) {
    Scratch scratch;
    flInitSysCmd = 1;
    const std::string dir = scratch.Path("new"), d = scratch.Path();
    scratch.Write("old", "");
    SystemSpy spy;
    CreateFile(dir.c_str(), "it's", "640", "root", "a b");
    CreateFile(d.c_str(), nullptr, "777", nullptr, nullptr);
    DeleteFile(d.c_str(), "old");
    DeleteFile_((d + "/old").c_str(), nullptr);
    DeleteFile(d.c_str(), "no");
    RenameFile(d.c_str(), "old", "ne w");
    RenameFile(d.c_str(), "no", "x");
    const std::string name = "'" + dir + "/it'\\\\''s'";
    const char *wanted[] = {"mkdir -p ",   "touch  ", "chmod  640 ", "chown  root ", "chgrp  'a b' ",
                            "chmod  777 ", "rm -f ",  "rm -f ",      "mv -f "};
    const std::string paths[] = {
        dir, name, name, name, name, d, d + "/old", d + "/old", d + "/old '" + d + "/ne w'"};
    ASSERT_EQ(spy.lines.size(), std::size(wanted));
    for (size_t i = 0; i < std::size(wanted); i++)
        EXPECT_NE(spy.lines[i].find(std::string("/") + wanted[i] + paths[i]), std::string::npos)
            << spy.lines[i];
    EXPECT_EQ(spy.lines.back().find(">>"), std::string::npos) << "a rename stays out of the log";
}

TEST(Making, RealFiles) {
    Scratch scratch;
    const std::string dir = scratch.Path("a/it's $HOME"), file = dir + "/\"q\" `id`";
    CreateFile(dir.c_str(), "\"q\" `id`", "604", nullptr, nullptr);
    struct stat info;
    ASSERT_EQ(stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0604u);
    scratch.Write("from", "text");
    RenameFile(scratch.Path().c_str(), "from", "to$1");
    EXPECT_EQ(ReadWhole(scratch.Path("to$1")), "text");
    DeleteFile(scratch.Path().c_str(), "to$1");
    EXPECT_EQ(GetFileType(scratch.Path("to$1").c_str()), TYPE_MISSING);
}

TEST(Making, TextFiles) {
    Scratch scratch;
    const std::string file = scratch.Path("t");
    EXPECT_EQ(CreateTextFile(file.c_str(), "wt", 0606, "%s %i\n", "100%", 3), 1);
    EXPECT_EQ(CreateTextFile(file.c_str(), "at", 0, "more"), 1);
    EXPECT_EQ(ReadWhole(file), "100% 3\nmore");
    struct stat info;
    ASSERT_EQ(stat(file.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0606u);
    Capture capture;
    EXPECT_EQ(CreateTextFile("/no/t", "wt", 0, "x"), 0);
    EXPECT_EQ(CreateTextFile("/dev/full", "wt", 0, "x"), 0);
    EXPECT_EQ(capture.Err(), "ERROR: couldn't open /no/t\nERROR: couldn't open /dev/full\n");
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
             errno = ENOENT;
             SysError("%s failed", "x");
         },
         1, "\nprndeck: x failed : No such file or directory\n"},
        {"system error without errno",
         [] {
             errno = 0;
             SysError("end");
         },
         1, "\nprndeck: end : Success\n"},
        {"message", [] { errormsg("a %i", 1); }, 0, "prndeck: a 1\n"},
        {"silent", [] { ErrorMsg(0, 3, "x"); }, 0, ""},
        {"warning", [] { ErrorMsg(1, 3, "x"); }, 0, "WARNING: x\n"},
        {"error", [] { ErrorMsg(2, 3, "x"); }, 3, "ERROR: x\n"},
        {"other level", [] { ErrorMsg(3, 3, "x"); }, 0, ""},
    };
    for (const Case &c : cases) {
        ChildEnd end = RunForked(c.function);
        EXPECT_EQ(end.status, c.status) << c.name;
        EXPECT_EQ(end.err, c.err) << c.name;
    }
    strcpy(Line, "kept");
    OpenInputFile("/no/file", ERR_SILENT);
    EXPECT_STREQ(Line, "kept");
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
    auto run = [] {
        flSysCmdLog = 1; // the log is made by commands, which must not come back to it
        PutLogMsg("one %s\n", "1");
        PutLogMsg("two\n");
    };
    for (int i = 0; i < 2; i++) {
        ChildEnd end = RunForked(run);
        EXPECT_EQ(end.out + end.err, "");
        EXPECT_EQ(ReadWhole(log.path), "one 1\ntwo\n");
    }
    struct stat info;
    ASSERT_EQ(stat(log.path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0666u);
    flUseLog = 0;
    PutLogMsg("three\n");
    EXPECT_EQ(ReadWhole(log.path), "one 1\ntwo\n");
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
        {"directory", [&] { return mkdir(log.path.c_str(), 0777); }},
    };
    for (const Case &c : cases) {
        if (c.make() != 0) GTEST_FAIL() << c.name << ": " << strerror(errno);
        ChildEnd end = RunForked([] { PutLogMsg("x\n"); });
        EXPECT_EQ(end.err, "ERROR: couldn't open " + log.path + "\n") << c.name;
        EXPECT_FALSE(TestLogFile(log.path.c_str())) << c.name;
        EXPECT_EQ(ReadWhole(target), "precious") << c.name;
        EXPECT_EQ(GetFileType(missing.c_str()), TYPE_MISSING) << c.name;
        remove(log.path.c_str());
    }
}

TEST(Process, UserAndHost) {
    const char *saved = ComList[CMD_WHOAMI].path;
    SystemSpy spy;
    ComList[CMD_WHOAMI].path = nullptr;
    EXPECT_EQ(Take(GetUserName()), getuid() == 0 ? "root" : "User ID:  " + std::to_string(getuid()));
    ComList[CMD_WHOAMI].path = "/my bin";
    EXPECT_EQ(Take(GetUserName()), "") << "whoami without a line";
    spy.answers = {{"'/my bin'/whoami", "lp\nmore\n"}};
    EXPECT_EQ(Take(GetUserName()), "lp");
    spy.popenFails = true;
    EXPECT_EQ(Take(GetUserName()), "(null)");
    ComList[CMD_WHOAMI].path = saved;
    char name[256];
    ASSERT_EQ(gethostname(name, sizeof(name)), 0);
    EXPECT_EQ(Take(GetHostname()), name);
    EXPECT_EQ(Take(GetEnv("PRN_NO_SUCH_NAME")), "(null)");
}

TEST(Process, PlainCommandLine) {
    struct Case {
        const char *name;
        int mode, result, status;
        const char *out, *err;
    } cases[] = {
        {"silent", 0, 1 << 8, 0, "", ""},
        {"shown", 1, 0, 0, "do 100%\n", ""},
        {"reported", 1, 1 << 8, 0, "do 100%\n", "prndeck: Input/output error\n"},
        {"fatal", 2, 1 << 8, 1, "do 100%\n", "prndeck: Input/output error\n"},
        {"exit code 2 is let pass", 2, 2 << 8, 0, "do 100%\n", ""},
    };
    for (const Case &c : cases) {
        ChildEnd end = RunForked([&c] {
            SystemSpy spy;
            spy.result = c.result;
            SysCmdP(c.mode, "do %s", "100%");
            if (spy.lines != std::vector<std::string>{"do 100%", "/usr/bin/sleep 1"}) exit(99);
        });
        EXPECT_EQ(end.status, c.status) << c.name;
        EXPECT_EQ(end.out, c.out) << c.name;
        EXPECT_EQ(end.err, c.err) << c.name;
    }
}

TEST(Process, SpoolersSniffed) {
    SystemSpy spy;
    const char *lpd = ComList[CMD_LPD].path, *ps = ComList[CMD_PS].path;
    ComList[CMD_LPD].path = ComList[CMD_PS].path = nullptr;
    EXPECT_EQ(SniffLprng() + SniffCUPS(), 0) << "a missing command must not end the program";
    ComList[CMD_LPD].path = ComList[CMD_PS].path = "/x";
    EXPECT_EQ(SniffLprng() + SniffCUPS(), 0);
    spy.answers = {{"/x/lpd   -V 2>&1", "lpd\nLPRng-3.8\n"}, {"/x/ps -e ", " 7 ? 00:00:00 cupsd\n"}};
    EXPECT_EQ(SniffLprng(), 1);
    EXPECT_EQ(SniffCUPS(), 1);
    ComList[CMD_LPD].path = lpd;
    ComList[CMD_PS].path = ps;
}

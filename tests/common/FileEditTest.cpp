// The batch editor: what each change makes of a file, through the real shell.
#include "common/FileEdit.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "common/SysCmd.h"
#include "common/utils.h"
#include "tests/lib/Capture.h"

static const std::string Long(505, 'x');
static const char E[] = "conf";

static const struct Case {
    const char *name;
    void (*edit)(const char *name);
    std::string in, want;
} Cases[] = {
    {"first of a line, no line feed", [](const char *n) { FileChange(n, E, "a", "aa"); }, "aa\nca",
     "aaa\ncaa"},
    {"nothing to find", [](const char *n) { FileChange(n, E, "", "x"); }, "a\n", "a\n"},
    {"across the cut of a long line", [](const char *n) { FileChange(n, E, "abcdefgh", "-"); },
     Long + "abcdefgh\n", Long + "abcdefgh\n"},
    {"behind the cut", [](const char *n) { FileChange(n, E, "b", "-"); }, Long + "abcdefgb\n",
     Long + "a-cdefg-\n"},
    {"codes in three forms", [](const char *n) { FileChangeChar(n, E, "0x0a", "13,0x0a,041"); }, "a\nb",
     "a\r\n!b"},
    {"code of a NUL", [](const char *n) { FileChangeChar(n, E, "0", "32"); }, std::string("a\0b\n", 4),
     "a b\n"},
    {"delete all but the first", [](const char *n) { FileDel(n, E, 1, "a"); }, "ab\nxaa\na\n", "ab\nxa\n\n"},
    {"delete, count below 0", [](const char *n) { FileDel(n, E, -5, "a"); }, "a\n", "\n"},
    {"format, no mode", [](const char *n) { FileDelFormat(n, E, "", "b"); }, "abcb\nx\n", "acb\nx\n"},
    {"format a", [](const char *n) { FileDelFormat(n, E, "a", "b"); }, "abcb\r\nx\n", "ab\nx\n"},
    {"format b", [](const char *n) { FileDelFormat(n, E, "b", "b"); }, "abcb\nx\n", "bcb\nx\n"},
    {"format c", [](const char *n) { FileDelFormat(n, E, "cxyz", "0x62"); }, "abcb\nx\n", "ac\nx\n"},
    {"format l", [](const char *n) { FileDelFormat(n, E, "l", "b"); }, "abcb\nx\n", "x\n"},
    {"lines", [](const char *n) { FileDelLine(n, E, 1, "a"); }, "a1\nb\na2\nca3", "a1\nb\n"},
    {"lines, count too large", [](const char *n) { FileDelLine(n, E, 9, "a"); }, "a\r\na\n", "a\r\na\n"},
    {"pairs", [](const char *n) { FileDelLinePair(n, E, 1, "{", "}"); }, "{0\n}0\n{1\nx\n{2\n}2\n}1\n}3\n",
     "{0\n}0\nx\n}3\n"},
};
static const struct InsertCase {
    const char *line, *search;
    std::string in, want;
} InsertCases[] = {
    {"new", nullptr, "a\nb", "new\na\nnew\nb"},
    {"n%# x%s3\n", nullptr, "a\nb\n", "n00003 x\na\nn00004 x\nb\n"},
    {"%s5 n%#7\n", nullptr, "1\n2\n3\n4\n", "1\n2\n n00000\n3\n n00001\n4\n"},
    {"%s99999999999999999999 %#\n", nullptr, "1\n2\n", " 2147483647\n1\n 2147483648\n2\n"},
    {"%s1%#\n", "b", "a\nb\nab\n", "a\n00001\nb\n00002\nab\n"},
    {"x", "", "a\n", "a\n"},
};

TEST(FileEdit, Changes) {
    Scratch scratch;
    const std::string name = scratch.Path("file");
    auto run = [&](const std::string &in, const std::function<void()> &edit) {
        std::string path = scratch.Write("file.conf", in);
        edit();
        EXPECT_NE(access((path + "out").c_str(), F_OK), 0);
        return ReadWhole(path);
    };
    for (const Case &c : Cases) {
        EXPECT_EQ(run(c.in, [&] { c.edit(name.c_str()); }), c.want) << c.name;
        EXPECT_EQ(run("", [&] { c.edit(name.c_str()); }), "") << c.name;
    }
    for (const InsertCase &c : InsertCases) {
        std::string line = c.line;
        auto insert = [&] {
            c.search ? FileSearchInsert(name.c_str(), E, line.data(), c.search)
                     : FileInsert(name.c_str(), E, line.data());
        };
        EXPECT_EQ(run(c.in, insert), c.want) << c.line;
        EXPECT_EQ(strstr(line.c_str(), "%s"), nullptr) << "the start is taken out of the template";
    }
}

TEST(FileEdit, ReplacesTheFile) {
    Scratch scratch;
    std::string path = scratch.Write("it's a $(file) \"x\"", "a\n");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    struct stat before, after;
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    FileChange(path.c_str(), "", "a", "b");
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_EQ(ReadWhole(path), "b\n");
    EXPECT_NE(before.st_ino, after.st_ino);
    EXPECT_EQ(after.st_mode & 07777, 0640u);

    SystemSpy spy;
    scratch.Write("a b.c", "");
    FileDelLine(scratch.Path("a b").c_str(), "c", 0, "x");
    const std::string quoted = "'" + scratch.Path("a b.c");
    ASSERT_EQ(spy.lines.size(), 2u);
    EXPECT_EQ(spy.lines[0], "rm -f " + quoted + "'");
    EXPECT_EQ(spy.lines[1], "mv " + quoted + "out' " + quoted + "'");
}

TEST(FileEdit, RefusesAnUnknownMode) {
    Scratch scratch;
    std::string path = scratch.Write("f", "a\n");
    EXPECT_EQ(FileDelFormat(path.c_str(), nullptr, "x", "a"), 1);
    EXPECT_EQ(ReadWhole(path), "a\n");
    EXPECT_EQ(access((path + ".out").c_str(), F_OK), 0);
}

TEST(FileEdit, ByHand) {
    Scratch scratch;
    std::string path = scratch.Write("f.x", "1\n2\n"), other = scratch.Write("other", "kept");
    ASSERT_EQ(symlink(other.c_str(), (path + "out").c_str()), 0);
    OpenIOFiles(scratch.Path("f").c_str(), "x");
    EXPECT_EQ(Fn, path);
    EXPECT_EQ(FnOut, path + "out");
    while (GetFileLine()) fprintf(pOut, "<%s", LineBuf);
    ReplaceInputFile();
    EXPECT_EQ(ReadWhole(path), "<1\n<2\n");
    EXPECT_EQ(ReadWhole(other), "kept") << "a link in the temporary's place";
    EXPECT_FALSE(pIn || pOut);
}

TEST(FileEdit, EndsTheProcess) {
    Scratch scratch;
    scratch.MakeDir("dir");
    scratch.Write("busy", "a\n");
    scratch.MakeDir("busy.out");
    struct {
        const char *name, *file, *error;
    } cases[] = {
        {"no file", "none", "can't open file, "},
        {"a directory", "dir", "can't read file, "},
        {"no temporary", "busy", "can't open file, "},
    };
    for (const auto &c : cases) {
        ChildEnd end = RunForked([&] { FileDel(scratch.Path(c.file).c_str(), "", 0, "a"); });
        EXPECT_EQ(end.status, 1) << c.name;
        EXPECT_NE(end.err.find(c.error + scratch.Path(c.file)), std::string::npos) << c.name << end.err;
    }
    EXPECT_EQ(ReadWhole(scratch.Path("busy")), "a\n");
}

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

typedef std::function<void(const char *name, const char *extension)> Edit;

static Edit Insert(const char *text, const char *search = nullptr) {
    return [=](const char *name, const char *extension) {
        std::string line = text;
        if (search)
            FileSearchInsert(name, extension, line.data(), search);
        else
            FileInsert(name, extension, line.data());
    };
}

// The five functions that take a text or two, with their arguments.
static Edit Change(const char *oldText, const char *newText) {
    return [=](const char *name, const char *ext) { FileChange(name, ext, oldText, newText); };
}
static Edit Codes(const char *code, const char *codes) {
    return [=](const char *name, const char *ext) { FileChangeChar(name, ext, code, codes); };
}
static Edit Del(int count, const char *text) {
    return [=](const char *name, const char *ext) { FileDel(name, ext, count, text); };
}
static Edit Format(const char *mode, const char *text) {
    return [=](const char *name, const char *ext) { EXPECT_EQ(FileDelFormat(name, ext, mode, text), 0); };
}
static Edit DelLine(int count, const char *text) {
    return [=](const char *name, const char *ext) { FileDelLine(name, ext, count, text); };
}
static Edit Pair(int count, const char *first, const char *second) {
    return [=](const char *name, const char *ext) { FileDelLinePair(name, ext, count, first, second); };
}

static const std::string Long(505, 'x');

static const struct Case {
    const char *name;
    Edit edit;
    std::string in, want;
} Cases[] = {
    {"first of a line, no line feed at the end", Change("a", "bb"), "aa\nca", "bba\ncbb"},
    {"the new text holds the old", Change("a", "aa"), "a\n", "aa\n"},
    {"nothing to find", Change("", "x"), "a\n", "a\n"},
    {"NUL bytes stay", Change("a", "b"), std::string("\0a\0\n", 4), std::string("\0b\0\n", 4)},
    {"a text across the cut of a long line", Change("abcdefgh", "-"), Long + "abcdefgh\n",
     Long + "abcdefgh\n"},
    {"a text behind the cut", Change("b", "-"), Long + "abcdefgb\n", Long + "a-cdefg-\n"},
    {"codes in three forms", Codes("0x0a", "13,0x0a,041"), "a\nb\n", "a\r\n!b\r\n!"},
    {"code of a NUL", Codes("0", "32"), std::string("a\0b\n", 4), "a b\n"},
    {"no codes", Codes("97", ""), "aba\n", "b\n"},
    {"delete all but the first", Del(1, "a"), "ab\nxaa\na\n", "ab\nxa\n\n"},
    {"delete, count too large", Del(3, "a"), "a\na\n", "a\na\n"},
    {"delete, count below 0", Del(-5, "a"), "a\n", "\n"},
    {"format, no mode", Format("", "b"), "abcb\nx\n", "acb\nx\n"},
    {"format a", Format("a", "b"), "abcb\r\nx\n", "ab\nx\n"},
    {"format b", Format("b", "b"), "abcb\nx\n", "bcb\nx\n"},
    {"format c", Format("cxyz", "0x62"), "abcb\nx\n", "ac\nx\n"},
    {"format l", Format("l", "b"), "abcb\nx\n", "x\n"},
    {"lines", DelLine(1, "a"), "a1\nb\na2\nca3", "a1\nb\n"},
    {"lines, count too large", DelLine(9, "a"), "a\r\na\n", "a\r\na\n"},
    {"pair", Pair(0, "{", "}"), "}0\n{1\nx\n}1\n}2\n", "}0\nx\n}2\n"},
    {"pairs, nested", Pair(0, "{", "}"), "{1\n{2\n}2\n}1\n}3\n", "}3\n"},
    {"pairs, the first stays", Pair(1, "{", "}"), "{1\n}1\n{2\n}2\n", "{1\n}1\n"},
    {"insert", Insert("new"), "a\nb", "new\na\nnew\nb"},
    {"insert with a counter", Insert("n%# x%s3\n"), "a\nb\n", "n00003 x\na\nn00004 x\nb\n"},
    {"insert from an offset on", Insert("%s5 n%#7\n"), "1\n2\n3\n4\n", "1\n2\n n00000\n3\n n00001\n4\n"},
    {"insert with numbers too large", Insert("%s99999999999999999999 %#\n"), "1\n2\n",
     " 2147483647\n1\n 2147483648\n2\n"},
    {"insert in front of a text", Insert("%s1%#\n", "b"), "a\nb\nab\n", "a\n00001\nb\n00002\nab\n"},
    {"insert in front of an empty text", Insert("x", ""), "a\n", "a\n"},
};

TEST(FileEdit, Changes) {
    Scratch scratch;
    for (const Case &c : Cases) {
        for (const std::string &before : {c.in, std::string()}) {
            std::string path = scratch.Write("file.conf", before);
            c.edit(scratch.Path("file").c_str(), "conf");
            EXPECT_EQ(ReadWhole(path), before.empty() ? "" : c.want) << c.name;
        }
        EXPECT_NE(access(scratch.Path("file.confout").c_str(), F_OK), 0) << c.name;
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

TEST(FileEdit, ChangesTheTemplate) {
    Scratch scratch;
    std::string path = scratch.Write("f", "1\n");
    char line[] = "a%s41b%#1c";
    FileInsert(path.c_str(), "", line);
    EXPECT_STREQ(line, "ab%#1c");
    EXPECT_EQ(ReadWhole(path), "ab00040c\n1\n");
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

// The batch editor: what each change makes of a file, through the real shell.
#include "common/FileEdit.h"

#include "common/utils.h"
#include "tests/lib/Capture.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

static const std::string Long(505, 'x');
static const char E[] = "conf";

static void Insert(const char *name, std::string text, const char *search) {
    if (search) return FileSearchInsert(name, E, text.data(), search);
    FileInsert(name, E, text.data());
}

// The first line changed; the second is read to the end of the file.
static void EditByHand(const char *name) {
    OpenIOFiles(name, E);
    EXPECT_EQ(GetFileLine(), 1);
    fputs("new\n", pOut);
    while (GetFileLine()) fputs(LineBuf, pOut);
    ReplaceInputFile();
}

static const struct Case {
    const char *name;
    void (*edit)(const char *name);
    std::string in, want;
} Cases[] = {
    {"first of a line, no line feed", [](const char *n) { FileChange(n, E, "a", "aa"); }, "aa\nca",
     "aaa\ncaa"},
    {"across the cut of a long line", [](const char *n) { FileChange(n, E, "abcdefgh", "-"); },
     Long + "abcdefgh\n", Long + "abcdefgh\n"},
    {"behind the cut", [](const char *n) { FileChange(n, E, "b", "-"); }, Long + "abcdefgb\n",
     Long + "a-cdefg-\n"},
    {"a code at the head of a line", [](const char *n) { FileChangeChar(n, E, "10", "13,10"); }, "\na\n",
     "\r\na\r\n"},
    {"codes in three forms", [](const char *n) { FileChangeChar(n, E, "0x0a", "13,0x0a,041"); }, "a\nb",
     "a\r\n!b"},
    {"delete all but the first", [](const char *n) { FileDel(n, E, 1, "a"); }, "ab\nxaa\na\n", "ab\nxa\n\n"},
    {"format a", [](const char *n) { FileDelFormat(n, E, "a", "b"); }, "abcb\r\nx\n", "ab\nx\n"},
    {"format b", [](const char *n) { FileDelFormat(n, E, "b", "b"); }, "abcb\nx\n", "bcb\nx\n"},
    {"format c", [](const char *n) { FileDelFormat(n, E, "c", "0x62"); }, "abcb\n", "ac\n"},
    {"no format", [](const char *n) { FileDelFormat(n, E, nullptr, "b"); }, "abcb\nx\n", "acb\nx\n"},
    {"format l", [](const char *n) { FileDelFormat(n, E, "l", "b"); }, "abcb\nx\n", "x\n"},
    {"lines", [](const char *n) { FileDelLine(n, E, 1, "a"); }, "a1\nb\na2\nca3", "a1\nb\n"},
    {"pairs", [](const char *n) { FileDelLinePair(n, E, 1, "{", "}"); }, "{0\n}0\n{1\nx\n{2\n}2\n}1\n}3\n",
     "{0\n}0\nx\n}3\n"},
    {"insert a counter", [](const char *n) { Insert(n, "%s7<%#8>", nullptr); }, "a\nb\nc",
     "a\n<00000>\nb\n<00001>\nc"},
    {"insert at a text", [](const char *n) { Insert(n, "new\n", "b"); }, "a\nab", "a\nnew\nab"},
    {"by hand", EditByHand, "a\nb\n", "new\nb\n"},
};

TEST(FileEdit, Changes) {
    Scratch scratch;
    const std::string name = scratch.Path("file");
    for (const Case &c : Cases) {
        std::string path = scratch.Write("file.conf", c.in);
        c.edit(name.c_str());
        EXPECT_EQ(ReadWhole(path), c.want) << c.name;
        EXPECT_NE(access((path + "out").c_str(), F_OK), 0) << c.name;
    }
}

TEST(FileEdit, ReplacesTheFile) {
    Scratch scratch;
    std::string path = scratch.Write("it's a $(file) \"x\"", "a\n");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    struct stat before, after;
    ASSERT_EQ(stat(path.c_str(), &before), 0);
    std::string other = scratch.Write("other", "kept");
    ASSERT_EQ(symlink(other.c_str(), (path + ".out").c_str()), 0);
    FileChange(path.c_str(), "", "a", "b");
    ASSERT_EQ(stat(path.c_str(), &after), 0);
    EXPECT_EQ(ReadWhole(path), "b\n");
    EXPECT_EQ(ReadWhole(other), "kept") << "a link in the temporary's place";
    EXPECT_NE(before.st_ino, after.st_ino);
    EXPECT_EQ(after.st_mode & 07777, 0640u);
}

TEST(FileEdit, EndsTheProcess) {
    Scratch scratch;
    scratch.Write("busy", "a\n");
    scratch.MakeDir("busy.out");
    struct {
        const char *name, *file, *error;
    } cases[] = {
        {"no file", "none", "can't open file, "},
        {"no temporary", "busy", "can't open file, "},
    };
    for (const auto &c : cases) {
        ChildEnd end = RunForked([&] { FileDel(scratch.Path(c.file).c_str(), "", 0, "a"); });
        EXPECT_EQ(end.status, 1) << c.name;
        EXPECT_NE(end.err.find(c.error + scratch.Path(c.file)), std::string::npos) << c.name << end.err;
    }
    EXPECT_EQ(ReadWhole(scratch.Path("busy")), "a\n");
}

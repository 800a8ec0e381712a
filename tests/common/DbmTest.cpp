// The stream layer: bytes on disk against an independent reader, search and rewrite, limits, damage, and what
// stands after a failed, refused or killed write.
#include "common/Dbm.h"

#include <csignal>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "tests/lib/Xdb.h"

namespace fs = std::filesystem;

static int Put(const char *db, const std::string &key, const std::string &data) {
    return DbmPutRecord(db, key.c_str(), data.data(), data.length());
}

static std::string Get(const char *db, const std::string &key) {
    std::string data(DBM_BUFFER, '\0');
    data.resize(static_cast<size_t>(DbmGetRecord(db, key.c_str(), data.data(), data.length())));
    return data;
}

static std::string Take(char *managed) {
    std::string text = managed ? managed : "(null)";
    PutMem(managed);
    return text;
}

TEST(Dbm, ScramblingIsUndone) {
    char run[] = {1, 2, 3};
    DbScramble(run, 3);
    EXPECT_EQ(memcmp(run, "\x03\x01\x03", 3), 0);
    std::mt19937 random(1);
    for (size_t length = 0; length <= 300; length++) {
        std::string plain(length, '\0');
        for (char &ch : plain) ch = static_cast<char>(random());
        std::string bytes = plain;
        DbScramble(bytes.data(), length);
        EXPECT_TRUE(length > 1 || bytes == plain);
        DbUnscramble(bytes.data(), length);
        EXPECT_EQ(bytes, plain) << length;
    }
}

TEST(Dbm, WritesTheBytesOfTheFormat) {
    ToolDir tool;
    ASSERT_EQ(Put("que", "k", "ab"), 1);
    // L 6; K 2, 'k', NUL, 'a', 'b' scrambled
    EXPECT_EQ(ReadWhole(tool.Db("que")), std::string("\x06\x00\x02\x6b\x6b\x61\x03\x62", 8));
    ASSERT_EQ(Put("que", "", "e"), 1);
    EXPECT_EQ(ShowRecords(ReadXdb(tool.Db("que"))), "k=ab =e");
    EXPECT_FALSE(fs::exists(tool.Path("db/que.xdb_new")));
    EXPECT_EQ(fs::status(tool.Db("que")).permissions(), static_cast<fs::perms>(0666));
}

TEST(Dbm, ReadsWhatOthersWrote) {
    ToolDir tool;
    WriteXdb(
        tool.Db("que"), false,
        {{"printer", "a"}, {"", "e"}, {"print", std::string("x\0y", 3)}, {"none", ""}, {"printer", "late"}});
    EXPECT_EQ(Get("que", "printer"), "a") << "the first record of a key counts";
    EXPECT_EQ(Get("que", "print"), std::string("x\0y", 3));
    EXPECT_EQ(DbmGetRecordSize("que", "print"), 3);
    EXPECT_EQ(Get("que", "none") + Get("que", "prin") + Get("other", "print"), "");
    EXPECT_EQ(Take(DbmGetRecordList("que", ",", ";")), ",printer,,print,none,printer;");
    EXPECT_EQ(Take(DbmGetRecordList("other", ",", ";")), "(null)");
    std::string read;
    char buffer[8];
    for (int round = 0; round < 2; round++) // the end starts it over
        while (int size = DbmGetNextRecord("que", buffer, sizeof(buffer)))
            read.append(buffer, static_cast<size_t>(size)) += '|';
    EXPECT_EQ(read, std::string("a|e|x\0y|late|a|e|x\0y|late|", 26));
    char small[2] = {'.', '.'};
    EXPECT_EQ(DbmGetRecord("que", "printer", small, 0), 0);
    EXPECT_EQ(DbmGetRecord("que", "print", small, 1), 1);
    EXPECT_EQ(std::string(small, 2), "x.");
}

TEST(Dbm, LinksOfMatchingKeys) {
    ToolDir tool;
    WriteXdb(tool.Db("IPDisc"), false, {{"sub 1", "one"}, {"other", "-"}, {"a sub", ""}});
    DbLink *chain = DbmGetDbLinkList("IPDisc", "sub");
    std::string seen;
    for (DbLink *link = chain; link; link = link->next)
        seen +=
            std::string(link->record) + "=" + std::string(link->data, static_cast<size_t>(link->size)) + ";";
    EXPECT_EQ(seen, "sub 1=one;a sub=;");
    DbmFreeDbLinkList(chain);
    EXPECT_EQ(DbmGetDbLinkList("IPDisc", "none"), nullptr);
    EXPECT_EQ(CheckMem(), nullptr);
}

TEST(Dbm, NamesOfAllDatabases) {
    ToolDir tool;
    EXPECT_EQ(Take(DbmGetDbList(0)), "");
    for (const char *name : {"db/a.b.xdb", "db/c.xdb_new", "db/.xdb", "db/que.xdb"}) tool.Write(name, "");
    std::string commas = Take(DbmGetDbList(0));
    EXPECT_TRUE(commas == "a.b,que" || commas == "que,a.b") << commas;
    std::string blanks = Take(DbmGetDbList(1));
    EXPECT_TRUE(blanks == " a.b que" || blanks == " que a.b") << blanks;
}

struct EditCase {
    const char *name;
    int (*edit)();
    int result;
    const char *after;
};
static const EditCase EditCases[] = {
    {"replace moves to the end", [] { return Put("que", "pri", "new"); }, 1,
     "printer=1 priority=2 q=4 pri=new"},
    {"add", [] { return Put("que", "p", "5"); }, 1, "printer=1 priority=2 pri=3 q=4 p=5"},
    {"delete one key, not those it begins", [] { return DbmDeleteRecord("que", "pri"); }, 1,
     "printer=1 priority=2 q=4"},
    {"delete an absent key", [] { return DbmDeleteRecord("que", "pr"); }, 1,
     "printer=1 priority=2 pri=3 q=4"},
    {"delete a prefix", [] { return DbmDeleteRecords("que", "pri"); }, 1, "q=4"},
    {"delete a longer prefix", [] { return DbmDeleteRecords("que", "prin"); }, 1, "priority=2 pri=3 q=4"},
    {"delete the empty prefix", [] { return DbmDeleteRecords("que", ""); }, 0,
     "printer=1 priority=2 pri=3 q=4"},
    {"delete in no file", [] { return DbmDeleteRecord("none", "a") + DbmDeleteRecords("none", "a"); }, 0,
     "printer=1 priority=2 pri=3 q=4"},
    {"copy", [] { return DbmCopyRecord("que", "pri", "q"); }, 1, "printer=1 priority=2 pri=3 q=3"},
    {"copy an absent key", [] { return DbmCopyRecord("que", "x", "q"); }, 0,
     "printer=1 priority=2 pri=3 q=4"},
    {"no data", [] { return Put("que", "q", ""); }, 0, "printer=1 priority=2 pri=3 q=4"},
    {"null",
     [] {
         return DbmPutRecord("que", nullptr, "x", 1) + DbmPutRecord(nullptr, "q", "x", 1) +
                DbmPutRecord("que", "q", nullptr, 1);
     },
     0, "printer=1 priority=2 pri=3 q=4"},
};

TEST(Dbm, Edits) {
    for (const EditCase &c : EditCases) {
        ToolDir tool;
        WriteXdb(tool.Db("que"), false, {{"printer", "1"}, {"priority", "2"}, {"pri", "3"}, {"q", "4"}});
        EXPECT_EQ(c.edit(), c.result) << c.name;
        EXPECT_EQ(ShowRecords(ReadXdb(tool.Db("que"))), c.after) << c.name;
        EXPECT_FALSE(fs::exists(tool.Db("none"))) << c.name;
    }
}

TEST(Dbm, LargestRecord) {
    ToolDir tool;
    std::string data(65531, 'd');
    data.front() = data.back() = '\0';
    ASSERT_EQ(Put("que", "k", data), 1);
    ASSERT_EQ(Put("que", "next", "n"), 1);
    std::string before = ReadWhole(tool.Db("que"));
    EXPECT_EQ(Put("que", "k", data + "x"), 0);
    EXPECT_EQ(DbmPutRecord("que", "k", data.data(), 1 << 20), 0);
    EXPECT_EQ(ReadWhole(tool.Db("que")), before);
    EXPECT_EQ(Get("que", "k"), data);
    EXPECT_EQ(Get("que", "next"), "n");
    EXPECT_EQ(ReadXdb(tool.Db("que")), (Records{{"k", data}, {"next", "n"}}));
}

TEST(Dbm, EveryTruncation) {
    ToolDir tool;
    Records records = {{"one", "first"}, {"two", "2"}, {"three", "the last"}};
    WriteXdb(tool.Db("que"), false, records);
    std::string image = ReadWhole(tool.Db("que"));
    size_t ends[] = {2 + 2 + 4 + 5, 0, 0};
    ends[1] = ends[0] + 2 + 2 + 4 + 1;
    ends[2] = ends[1] + 2 + 2 + 6 + 8;
    ASSERT_EQ(ends[2], image.length());
    for (size_t length = 0; length <= image.length(); length++) {
        tool.Write("db/que.xdb", image.substr(0, length));
        std::string keys;
        for (size_t i = 0; i < 3; i++) {
            bool flWhole = length >= ends[i];
            if (flWhole) keys += " " + records[i].first;
            EXPECT_EQ(Get("que", records[i].first), flWhole ? records[i].second : "") << length;
        }
        EXPECT_EQ(Take(DbmGetRecordList("que", " ", "")), keys.empty() ? "(null)" : keys) << length;
    }
}

TEST(Dbm, RecordsWithoutAWholeKeyStayUnfound) {
    ToolDir tool;
    char noNul[] = {1, 0, 'a'};   // K covers the letter only
    char noKey[] = {0, 0, 'x'};   // K 0
    char past[] = {3, 0, 'b', 0}; // K runs past the record
    std::string file;
    for (auto [bytes, size] : {std::pair<char *, size_t>{noNul, 3}, {noKey, 3}, {nullptr, 0}}) {
        if (bytes) DbScramble(bytes, size);
        file += std::string(1, static_cast<char>(size)) + '\0' + std::string(bytes ? bytes : "", size);
    }
    std::string good("\x05\x00\x02\x67\x67\x31\x31", 7); // g=1
    DbScramble(past, sizeof(past));
    tool.Write("db/que.xdb", file + good + std::string("\x04\0", 2) + std::string(past, sizeof(past)) + good);
    EXPECT_EQ(Take(DbmGetRecordList("que", ",", "")), ",g") << "the walk ends at the key that runs past";
    EXPECT_EQ(Get("que", "a") + Get("que", "") + Get("que", "b"), "");
    ASSERT_EQ(Put("que", "h", "2"), 1);
    EXPECT_EQ(ReadWhole(tool.Db("que")).substr(0, file.length()), file) << "they are kept";
}

// ---- Writing under difficulties

TEST(Dbm, MakesTheLocalDirectoryAndReplacesTheFile) {
    ToolDir tool;
    tool.MakeDir("elsewhere");
    fs::current_path(tool.Path("elsewhere"));
    ASSERT_EQ(Put("que", "k", "1"), 1);
    EXPECT_EQ(fs::status("db").permissions(), fs::perms::all);
    EXPECT_TRUE(fs::is_empty("db"));
    struct stat before, after;
    ASSERT_EQ(stat(tool.Db("que").c_str(), &before), 0);
    FILE *reader = fopen(tool.Db("que").c_str(), "rb");
    ASSERT_EQ(Put("que", "k", "2"), 1);
    ASSERT_EQ(stat(tool.Db("que").c_str(), &after), 0);
    EXPECT_NE(before.st_ino, after.st_ino);
    DbmRecord record;
    ASSERT_NE(GetData(reader, &record), 0);
    EXPECT_EQ(record.body[record.L - 1], '1') << "an open reader keeps the old file";
    fclose(reader);
}

TEST(Dbm, RefusesAFileOfTheOtherFormat) {
    ToolDir tool;
    WriteXdb(tool.Db("que"), true, {{"k", "1"}});
    std::string before = ReadWhole(tool.Db("que"));
    Capture capture;
    EXPECT_EQ(Put("que", "k", "2") + DbmDeleteRecord("que", "k"), 0);
    EXPECT_EQ(capture.Err(), "ERROR: Can't write to queERROR: Can't write to que");
    EXPECT_EQ(ReadWhole(tool.Db("que")), before);
}

TEST(Dbm, FullDiskLeavesTheOldFile) {
    ToolDir tool;
    ASSERT_EQ(Put("que", "k", "old"), 1);
    std::string before = ReadWhole(tool.Db("que"));
    ChildEnd end = RunForked([] {
        signal(SIGXFSZ, SIG_IGN);
        rlimit limit = {4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        printf("%d", Put("que", "k", std::string(4500, 'n'))); // fits the stream's buffer but for the end
        printf("%d", Put("que", "k", std::string(60000, 'n')));
        printf("%d", Put("que", "j", "small"));
    });
    EXPECT_EQ(end.out, "001");
    EXPECT_EQ(end.err, "ERROR: Can't write to queERROR: Can't write to que");
    EXPECT_EQ(ShowRecords(ReadXdb(tool.Db("que"))), "k=old j=small");
    EXPECT_FALSE(fs::exists(tool.Path("db/que.xdb_new")));
}

TEST(Dbm, DirectoryThatCannotBeWritten) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    ToolDir tool;
    ASSERT_EQ(Put("que", "k", "old"), 1);
    fs::permissions(tool.Path(), static_cast<fs::perms>(0755));
    fs::permissions(tool.Path("db"), static_cast<fs::perms>(0755));
    ChildEnd end = RunForked([] {
        if (setresuid(65534, 65534, 65534) == 0) printf("%d", Put("que", "k", "new"));
    });
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.out, "0");
    EXPECT_EQ(end.err, "ERROR: Can't write to que");
    EXPECT_EQ(ShowRecords(ReadXdb(tool.Db("que"))), "k=old");
}

TEST(Dbm, FollowsNoLinkThatWasPutInItsWay) {
    ToolDir tool;
    std::string victim = tool.Write("victim", "precious");
    fs::permissions(victim, static_cast<fs::perms>(0600));
    fs::create_symlink(victim, tool.Path("db/que.xdb_new"));
    EXPECT_EQ(Put("que", "k", "1"), 1);
    fs::create_hard_link(victim, tool.Path("db/que.xdb_new"));
    EXPECT_EQ(Put("que", "k", "2"), 1);
    EXPECT_EQ(ReadWhole(victim), "precious");
    EXPECT_EQ(fs::status(victim).permissions(), static_cast<fs::perms>(0600));
    EXPECT_FALSE(fs::is_symlink(tool.Db("que")));
    EXPECT_EQ(Get("que", "k"), "2");
}

TEST(Dbm, FileThatStandsButDoesNotOpen) {
    ToolDir tool;
    fs::create_symlink(tool.Path("nowhere"), tool.Db("que")); // listed, but nothing to open
    SystemSpy spy;
    Capture capture;
    EXPECT_EQ(OpenDataBase("que", "xdb", "rb", 1), nullptr);
    EXPECT_EQ(capture.Err(), "");
    EXPECT_EQ(DbmGetRecordSize("que", "k"), 0);
    EXPECT_EQ(spy.slept, 20u);
    EXPECT_EQ(OpenDataBase("none", "xdb", "rb", 0), nullptr);
    EXPECT_EQ(spy.slept, 20u) << "a missing file is no error";
}

// Puts long records for ever; a reader must find each of them whole.
static void PutForEver() {
    for (char ch = 'a';; ch = ch == 'z' ? 'a' : static_cast<char>(ch + 1))
        for (const char *key : {"one", "two"}) Put("que", key, std::string(30000, ch));
}

TEST(Dbm, KilledAtAnyMoment) {
    ToolDir tool;
    ASSERT_EQ(Put("que", "one", std::string(30000, 'A')) & Put("que", "two", std::string(30000, 'A')), 1);
    std::mt19937 random(7);
    for (int round = 0; round < 25; round++) {
        pid_t child = fork();
        if (child == 0) {
            setpgid(0, 0);
            PutForEver();
        }
        usleep(1000 + random() % 60000);
        kill(-child, SIGKILL); // with the commands that it runs
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        for (const char *key : {"one", "two"}) {
            std::string data = Get("que", key);
            ASSERT_EQ(data, std::string(30000, data.empty() ? '?' : data[0])) << key << " in round " << round;
        }
    }
}

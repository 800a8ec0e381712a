// The stream layer: bytes on disk against an independent reader, search and rewrite, limits, and what stands
// after a failed, refused or killed write. Damaged files are cut together with the image layer's.
#include "common/Dbm.h"

#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "tests/lib/Xdb.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

static int Put(const char *db, const std::string &key, const std::string &data) {
    return DbmPutRecord(db, key.c_str(), data.data(), data.length());
}

static std::string Get(const char *db, const std::string &key) {
    std::string data(DBM_BUFFER, '\0');
    data.resize(static_cast<size_t>(DbmGetRecord(db, key.c_str(), data.data(), data.length())));
    return data;
}

TEST(Dbm, WritesANewFile) {
    ToolDir tool;
    fs::current_path(tool.MakeDir("elsewhere"));
    fs::remove(tool.Path("db"));
    ASSERT_EQ(Put("que", "k", "ab"), 1);
    EXPECT_EQ(fs::status("db").permissions(), fs::perms::all);
    EXPECT_TRUE(fs::is_empty("db"));
    EXPECT_EQ(fs::status(tool.Db("que")).permissions(), static_cast<fs::perms>(0666));
    fs::create_hard_link(tool.Db("que"), tool.Path("old"));
    ASSERT_EQ(Put("que", "k", "2"), 1);
    // L 6; K 2, 'k', NUL, 'a', 'b' scrambled; who has the file open goes on reading it
    EXPECT_EQ(ReadWhole(tool.Path("old")), std::string("\x06\x00\x02\x6b\x6b\x61\x03\x62", 8));
}

// Only root can be another user for a while.
TEST(Dbm, ClosedDatabasesAreTheirOwners) {
    if (geteuid()) GTEST_SKIP() << "needs root";
    ToolDir tool;
    fs::current_path(tool.MakeDir("elsewhere"));
    flDbmShared = false;
    ASSERT_EQ(Put("que", "k", "ab"), 1);
    EXPECT_EQ(fs::status("db").permissions(), static_cast<fs::perms>(0755));
    EXPECT_EQ(fs::status(tool.Db("que")).permissions(), static_cast<fs::perms>(0644));
    EXPECT_TRUE(DbmMayWrite());
    ASSERT_EQ(seteuid(65534), 0);
    bool flOther = DbmMayWrite();
    flDbmShared = true;
    bool flShared = DbmMayWrite(); // who can't write then is told so
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_FALSE(flOther);
    EXPECT_TRUE(flShared);
}

TEST(Dbm, ReadsWhatOthersWrote) {
    ToolDir tool;
    std::string odd("x\0y", 3);
    WriteXdb(tool.Db("que"), false,
             {{"printer", "a"}, {"", "e"}, {"print", odd}, {"none", ""}, {"printer", "late"}});
    EXPECT_EQ(Get("que", "printer"), "a") << "the first record of a key counts";
    EXPECT_EQ(Get("que", "print"), odd);
    EXPECT_EQ(Get("que", "none") + Get("que", "prin") + Get("other", "print"), "");
    EXPECT_EQ(TakeText(DbmGetRecordList("que", ",", ";")), ",printer,,print,none,printer;");
    tool.Write("db/que.xdb_new", "");
    EXPECT_EQ(TakeText(DbmGetDbList(1)) + TakeText(DbmGetDbList(0)), " queque");
    std::string read, links;
    char buffer[8] = "..";
    EXPECT_EQ(DbmGetRecord("que", "print", buffer, 1), 1);
    EXPECT_STREQ(buffer, "x.");
    for (int round = 0; round < 2; round++) // the end starts it over
        while (int size = DbmGetNextRecord("que", buffer, sizeof(buffer)))
            read.append(buffer, static_cast<size_t>(size)) += '|';
    EXPECT_EQ(read, "a|e|" + odd + "|late|a|e|" + odd + "|late|");
    DbLink *chain = DbmGetDbLinkList("que", "int");
    for (DbLink *link = chain; link; link = link->next)
        links += link->record + ("=" + std::string(link->data, static_cast<size_t>(link->size))) + ";";
    EXPECT_EQ(links, "printer=a;print=" + odd + ";printer=late;");
    DbmFreeDbLinkList(chain);
    EXPECT_EQ(CheckMem(), nullptr);
}

static const char Before[] = "printer=1 priority=2 pri=3 q=4";
struct EditCase {
    const char *name;
    int (*edit)();
    int result;
    const char *after;
};
static const EditCase EditCases[] = {
    {"replace moves to the end", [] { return Put("que", "pri", "new"); }, 1,
     "printer=1 priority=2 q=4 pri=new"},
    {"delete one key, not those it begins", [] { return DbmDeleteRecord("que", "pri"); }, 1,
     "printer=1 priority=2 q=4"},
    {"delete an absent key", [] { return DbmDeleteRecord("que", "pr"); }, 1, Before},
    {"delete a prefix", [] { return DbmDeleteRecords("que", "pri"); }, 1, "q=4"},
    {"copy", [] { return DbmCopyRecord("que", "pri", "q"); }, 1, "printer=1 priority=2 pri=3 q=3"},
};

TEST(Dbm, Edits) {
    for (const EditCase &c : EditCases) {
        ToolDir tool;
        WriteXdb(tool.Db("que"), false, {{"printer", "1"}, {"priority", "2"}, {"pri", "3"}, {"q", "4"}});
        EXPECT_EQ(c.edit(), c.result) << c.name;
        EXPECT_EQ(ShowRecords(ReadXdb(tool.Db("que"))), c.after) << c.name;
    }
}

TEST(Dbm, LargestRecord) {
    ToolDir tool;
    std::string data(65531, 'd');
    data.front() = data.back() = '\0';
    ASSERT_EQ(Put("que", "k", data), 1);
    ASSERT_EQ(Put("que", "next", "n"), 1);
    EXPECT_EQ(Put("que", "k", data + "x"), 0);
    EXPECT_EQ(Get("que", "k"), data);
    EXPECT_EQ(ReadXdb(tool.Db("que")), (Records{{"k", data}, {"next", "n"}}));
}

// ---- Writing under difficulties

TEST(Dbm, RefusesAFileOfTheOtherFormat) {
    ToolDir tool;
    WriteXdb(tool.Db("que"), true, {{"k", "1"}});
    Capture capture;
    EXPECT_EQ(Put("que", "k", "2") + DbmDeleteRecord("que", "k"), 0);
    EXPECT_EQ(capture.Err(), "ERROR: Can't write to queERROR: Can't write to que");
    EXPECT_EQ(ShowRecords(ReadXdb(tool.Db("que"))), "k=1");
}

TEST(Dbm, FullDiskLeavesTheOldFile) {
    ToolDir tool;
    ASSERT_EQ(Put("que", "k", "old"), 1);
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

TEST(Dbm, PurgeTellsWhetherItCouldWrite) {
    ToolDir tool;
    WriteXdb(tool.Db("que"), false, {{"k", "old"}, {"j", "1"}});
    FILE *in = fopen(tool.Db("que").c_str(), "rb"), *full = fopen("/dev/full", "wb");
    FILE *out = fopen(tool.Db("new").c_str(), "wb");
    setbuf(full, nullptr);
    Capture capture;
    EXPECT_EQ(PurgeRecord("que", in, out, "k", 0), 1);
    rewind(in);
    EXPECT_EQ(PurgeRecord("full", in, full, "k", 0), 0);
    EXPECT_EQ(capture.Err(), "ERROR: Can't write to full");
    EXPECT_EQ(RenameDataBase("new", nullptr, "xdb") + RenameDataBase("new", "xdb", nullptr), 0);
    for (FILE *file : {in, full, out}) fclose(file);
    EXPECT_EQ(ShowRecords(ReadXdb(tool.Db("new"))), "j=1");
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

TEST(Dbm, WhatOthersPutInItsWay) {
    ToolDir tool;
    std::string victim = tool.Write("victim", "precious"), temporary = tool.Path("db/que.xdb_new");
    fs::permissions(victim, static_cast<fs::perms>(0600));
    fs::create_symlink(victim, temporary);
    EXPECT_EQ(Put("que", "k", "1"), 1);
    fs::create_hard_link(victim, temporary);
    EXPECT_EQ(Put("que", "k", "2"), 1);
    EXPECT_EQ(ReadWhole(victim), "precious");
    EXPECT_EQ(fs::status(victim).permissions(), static_cast<fs::perms>(0600));
    EXPECT_FALSE(fs::is_symlink(tool.Db("que")));
    fs::create_directory(temporary);
    ASSERT_EQ(mkfifo(tool.Db("pipe").c_str(), 0666), 0);
    ChildEnd end = RunForked([] { printf("%d%d", Put("que", "k", "3"), DbmGetRecordSize("pipe", "k")); });
    EXPECT_EQ(end.out, "00") << "neither ended nor waiting";
    fs::create_symlink(tool.Db("que"), tool.Db("link"));
    EXPECT_EQ(Put("link", "k", "3"), 1);
    EXPECT_FALSE(fs::is_symlink(tool.Db("link")));
    EXPECT_EQ(Get("que", "k"), "2");
}

// Holds a lock on the file as any user may who can read it.
TEST(Dbm, LockOfAnotherProgram) {
    ToolDir tool;
    ASSERT_EQ(Put("que", "k", "old"), 1);
    int file = open(tool.Db("que").c_str(), O_RDONLY);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    DbmLockTries = 3;
    Capture capture;
    EXPECT_EQ(Put("que", "k", "new") + DbmDeleteRecord("que", "k"), 0);
    DbmLockTries = DBM_LOCK_TRIES;
    EXPECT_NE(capture.Err().find("db/que.xdb is locked by process " + std::to_string(getpid()) +
                                 "\nERROR: Can't write to que"),
              std::string::npos);
    close(file);
    EXPECT_EQ(Get("que", "k"), "old");
    EXPECT_EQ(Put("que", "k", "new"), 1);
}

// Each answers 1 for each of its records, and none may be gone afterwards, nor may the first writer's
// leftover count.
TEST(Dbm, ManyWritersAtOnce) {
    enum { WRITERS = 8, RECORDS = 10 };
    ToolDir tool;
    tool.Write("db/que.xdb_new", "left by a killed writer");
    for (int writer = 0; writer < WRITERS; writer++) {
        if (fork() != 0) continue;
        int done = 0;
        for (int i = 0; i < RECORDS; i++)
            done += Put("que", (std::to_string(writer) + "-" + std::to_string(i)).c_str(), "data");
        _exit(done == RECORDS ? 0 : 1);
    }
    for (int status, writer = 0; writer < WRITERS; writer++) {
        ASSERT_GT(wait(&status), 0);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(ReadXdb(tool.Db("que")).size(), static_cast<size_t>(WRITERS * RECORDS));
    EXPECT_FALSE(fs::exists(tool.Path("db/que.xdb_new")));
}

TEST(Dbm, DamagedFileIsKept) {
    ToolDir tool;
    WriteXdb(tool.Db("que"), false, {{"a", "1"}, {"b", "2"}, {"c", "3"}});
    std::string bytes = ReadWhole(tool.Db("que"));
    bytes[bytes.size() / 3] = '\xff'; // the length of the second record
    tool.Write("db/que.xdb", bytes);
    EXPECT_EQ(Put("que", "d", "4"), 1);
    EXPECT_EQ(ReadWhole(tool.Path("db/que.xdb_damaged")), bytes);
    EXPECT_EQ(Get("que", "a") + Get("que", "d"), "14");
    fs::remove(tool.Path("db/que.xdb_damaged"));
    EXPECT_EQ(Put("que", "e", "5"), 1); // the new one is whole
    EXPECT_FALSE(fs::exists(tool.Path("db/que.xdb_damaged")));
}

// Anybody may make one; a sparse one costs no room.
TEST(Dbm, HugeFileIsLeftAlone) {
    ToolDir tool;
    ASSERT_EQ(Put("que", "k", "old"), 1);
    fs::resize_file(tool.Db("que"), 3000000000);
    Capture capture;
    EXPECT_EQ(Get("que", "k"), "");
    EXPECT_EQ(Put("que", "k", "new"), 0);
    EXPECT_EQ(fs::file_size(tool.Db("que")), 3000000000u);
    EXPECT_NE(capture.Err().find("db/que.xdb is larger than 16 MB: not read\nERROR: Can't write to que"),
              std::string::npos);
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

// The image layer: both formats against an independent reader, random edits against a plain list, reload,
// damage, and what a failed or held back write leaves.
#include "common/DbmT.h"

#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

#include "common/MemMgr.h"
#include "common/utils.h"
#include "tests/lib/Xdb.h"

namespace fs = std::filesystem;

static int Put(DbTHandle *handle, const std::string &key, const std::string &data) {
    return DbmTPutRecord(handle, key.c_str(), data.data(), data.length());
}

static std::string Get(DbTHandle *handle, const std::string &key) {
    std::string data(DBM_BUFFER, '\0');
    data.resize(static_cast<size_t>(DbmTGetRecord(handle, key.c_str(), data.data(), data.length())));
    return data;
}

static std::string Take(char *managed) {
    std::string text = managed ? managed : "(null)";
    PutMem(managed);
    return text;
}

static std::string Keys(DbTHandle *handle) {
    return Take(DbmTGetRecordList(handle, " ", ""));
}

TEST(DbmT, NewFileGetsTheHeader) {
    ToolDir tool;
    DbTHandle *handle = DbTOpen("new", 0);
    EXPECT_EQ(handle->type, DBT_NONE);
    EXPECT_EQ(Keys(handle), "(null)");
    ASSERT_EQ(Put(handle, "k", "ab"), 1);
    std::string image = ReadWhole(tool.Db("new"));
    EXPECT_EQ(image.substr(0, 8), std::string("TXDBAA1\0", 8));
    // L 6 and K 2, most significant byte first; the key and the data are runs of their own
    EXPECT_EQ(image.substr(16), std::string("\x00\x06\x00\x02\x6b\x00\x03\x62", 8));
    ASSERT_EQ(DbmTArchiveDb(handle), 1);
    std::string again = ReadWhole(tool.Db("new"));
    EXPECT_NE(again.substr(8, 8), image.substr(8, 8)) << "random bytes of every write";
    ASSERT_EQ(DbmTDeleteRecord(handle, "k"), 1);
    EXPECT_EQ(DbmTDeleteRecord(handle, "k"), 0);
    EXPECT_EQ(ReadWhole(tool.Db("new")).length(), 16u);
    DbTClose(handle);
}

// Keys that share beginnings, so that prefixes bite.
static std::string RandomKey(std::mt19937 &random) {
    return std::string(1 + random() % 3, static_cast<char>('a' + random() % 3)) + (random() % 2 ? "x" : "");
}

static void EraseKeys(Records *records, const std::string &key, bool flPrefix) {
    std::erase_if(*records, [&](const auto &record) {
        return flPrefix ? record.first.compare(0, key.length(), key) == 0 : record.first == key;
    });
}

TEST(DbmT, RandomEditsFollowAPlainList) {
    for (bool flHeader : {false, true}) {
        ToolDir tool;
        Records model = {{"first", "1"}, {"ax", "2"}};
        WriteXdb(tool.Db("db"), flHeader, model);
        DbTHandle *handle = DbTOpen("db", DBT_NO_RELOAD | DBT_NO_WRITE);
        std::mt19937 random(flHeader);
        for (int step = 0; step < 3000; step++) {
            std::string key = RandomKey(random);
            switch (random() % 8) {
            case 0:
                EraseKeys(&model, key, true);
                EXPECT_EQ(DbmTDeleteRecords(handle, key.c_str()), 1);
                break;
            case 1:
                EraseKeys(&model, key, false);
                DbmTDeleteRecord(handle, key.c_str());
                break;
            default: {
                std::string data(1 + random() % 40, static_cast<char>(random()));
                EraseKeys(&model, key, false);
                model.emplace_back(key, data);
                ASSERT_EQ(Put(handle, key, data), 1);
            }
            }
            std::string keys, wanted = RandomKey(random), data;
            for (const auto &[k, d] : model) {
                keys += " " + k;
                if (k == wanted) data = d;
            }
            ASSERT_EQ(Keys(handle), keys.empty() ? "(null)" : keys) << step;
            ASSERT_EQ(Get(handle, wanted), data) << step;
        }
        ASSERT_EQ(DbmTArchiveDb(handle), 1);
        EXPECT_EQ(ReadXdb(tool.Db("db")), model) << "the format stays: " << flHeader;
        EXPECT_EQ(handle->type, flHeader ? DBT_HEADER : DBT_HEADERLESS);
        DbTClose(handle);
        EXPECT_EQ(CheckMem(), nullptr);
    }
}

TEST(DbmT, ReadsEitherFormat) {
    std::string large(65000, 'l');
    for (bool flHeader : {false, true}) {
        ToolDir tool;
        WriteXdb(
            tool.Path("x.xdb"), flHeader,
            {{"sub a", "1"}, {"k", "first"}, {"", "e"}, {"k", "second"}, {"none", ""}, {"b sub", large}});
        DbTHandle *handle = DbTOpen("./x.xdb", 0);
        EXPECT_EQ(handle->count, flHeader ? 6 : 0);
        EXPECT_EQ(Get(handle, "k"), "first");
        EXPECT_EQ(Get(handle, "") + Get(handle, "none") + Get(handle, "kk"), "");
        EXPECT_EQ(DbmTGetRecordSize(handle, "b sub"), 65000);
        char small[3] = "..";
        EXPECT_EQ(DbmTGetRecord(handle, "k", small, 2), 2);
        EXPECT_STREQ(small, "fi");
        char *buffer = small;
        EXPECT_EQ(DbmTGetRecordV(handle, "sub a", &buffer, 2), 1);
        EXPECT_EQ(buffer, small);
        EXPECT_EQ(DbmTGetRecordV(handle, "b sub", &buffer, 2), 65000);
        EXPECT_EQ(Take(buffer), large);
        EXPECT_EQ(Take(DbmTGetRecordListS(handle, "x,k,sub", "<", ">")), "<sub a<k<k>");
        std::string links;
        DbLink *chain = DbmTGetDbLinkList(handle, "sub");
        for (DbLink *link = chain; link; link = link->next)
            links += std::string(link->record) + "," + link->data[0];
        EXPECT_EQ(links, "sub a,1b sub,l");
        DbmFreeDbLinkList(chain);
        DbTClose(handle);
    }
}

TEST(DbmT, KeyListEntriesAreBeginnings) {
    EXPECT_EQ(TestKeyName("sub 1", "a,sub"), 1);
    EXPECT_EQ(TestKeyName("su", "a,sub"), 0);
    EXPECT_EQ(TestKeyName("x", ",,"), 0);
    EXPECT_EQ(TestKeyName("x", nullptr) + TestKeyName(nullptr, "x"), 0);
}

TEST(DbmT, EveryTruncation) {
    for (bool flHeader : {false, true}) {
        ToolDir tool;
        Records records = {{"one", "first"}, {"two", "2"}, {"three", "the last"}};
        WriteXdb(tool.Db("whole"), flHeader, records);
        std::string image = ReadWhole(tool.Db("whole"));
        for (size_t length = 0; length <= image.length(); length++) {
            tool.Write("db/cut.xdb", image.substr(0, length));
            DbTHandle *handle = DbTOpen("cut", DBT_NO_RELOAD | DBT_NO_WRITE);
            size_t end = flHeader ? 16 : 0;
            std::string keys;
            for (const auto &[key, data] : records) {
                end += 4 + key.length() + 1 + data.length();
                if (end <= length) keys += " " + key;
                EXPECT_EQ(Get(handle, key), end <= length ? data : "") << length;
            }
            EXPECT_EQ(Keys(handle), keys.empty() ? "(null)" : keys) << length;
            ASSERT_EQ(Put(handle, "new", "n"), 1); // behind the sound records, whatever was cut
            EXPECT_EQ(Keys(handle), keys + " new") << length;
            EXPECT_TRUE(handle->type != DBT_HEADER || handle->size >= 16 + 8u) << length;
            DbTClose(handle);
        }
    }
}

struct StartCase {
    const char *name;
    std::string file;
    int type;
    long count;
};
static const StartCase StartCases[] = {
    {"five characters decide", "TXDBAx3" + std::string(9, '\0'), DBT_HEADER, 3},
    {"digits among the random bytes",
     std::string("TXDBAA2\0"
                 "9999999\0",
                 16),
     DBT_HEADER, 2},
    {"nine digits", std::string("TXDBAA123456789\0", 16), DBT_HEADER, 123456789},
    {"no end of the digits", "TXDBAA1234567890123", DBT_HEADER, 123456789},
    {"cut in the digits", "TXDBAA12", DBT_HEADER, 12},
    {"a negative count", std::string("TXDBAA-4\0", 9), DBT_HEADER, 0},
    {"four of the magic", "TXDB", DBT_HEADERLESS, 0},
    {"one byte", "T", DBT_HEADERLESS, 0},
    {"empty", "", DBT_NONE, 0},
};

TEST(DbmT, TypeOfAFile) {
    for (const StartCase &c : StartCases) {
        ToolDir tool;
        tool.Write("db/x.xdb", c.file);
        DbTHandle *handle = DbTOpen("x", 0);
        EXPECT_EQ(handle->type, c.type) << c.name;
        EXPECT_EQ(handle->count, c.count) << c.name;
        EXPECT_EQ(Get(handle, "a"), "") << c.name;
        DbTClose(handle);
    }
}

TEST(DbmT, NamesOfFiles) {
    ToolDir tool;
    tool.MakeDir("db/en_US");
    tool.MakeDir("plain");
    struct {
        std::string name, file;
    } cases[] = {
        {"que", tool.Db("que")},
        {"en_US/PrtString", tool.Db("en_US/PrtString")},
        {tool.Path("plain/x"),
         tool.Path("plain/x") + (tool.Path().find('.') == std::string::npos ? ".xdb" : "")},
        {tool.Path("plain/y.xdb"), tool.Path("plain/y.xdb")},
        {"./plain/z", tool.Path("plain/z")},
    };
    for (const auto &c : cases) {
        WriteXdb(c.file, true, {{"k", "v"}});
        DbTHandle *handle = DbTOpen(c.name.c_str(), 0);
        EXPECT_EQ(Get(handle, "k"), "v") << c.name;
        DbTClose(handle);
    }
    EXPECT_EQ(DbTOpen(nullptr, 0), nullptr);
}

// Puts the same number of bytes into the file, or a new file in its place, with the same second of change.
static void Replace(const std::string &path, const std::string &value, bool flRename, long nanoseconds) {
    WriteXdb(path + "2", false, {{"k", value}});
    if (flRename)
        fs::rename(path + "2", path);
    else
        fs::copy_file(path + "2", path, fs::copy_options::overwrite_existing);
    struct timespec times[2] = {{1000000, nanoseconds}, {1000000, nanoseconds}};
    ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
}

TEST(DbmT, SeesChangesOfOthers) {
    ToolDir tool;
    Replace(tool.Db("que"), "1", false, 0);
    DbTHandle *handle = DbTOpen("que", 0);
    DbTHandle *fixed = DbTOpen("que", DBT_NO_RELOAD);
    DbTHandle *held = DbTOpen("que", DBT_NO_WRITE);
    EXPECT_EQ(Get(handle, "k"), "1");
    Replace(tool.Db("que"), "2", false, 5);
    EXPECT_EQ(Get(handle, "k"), "2") << "nanoseconds";
    Replace(tool.Db("que"), "3", true, 5);
    EXPECT_EQ(Get(handle, "k"), "3") << "another file of the same time";
    EXPECT_EQ(Get(fixed, "k"), "1");
    EXPECT_EQ(Put(held, "mine", "m"), 1);
    EXPECT_EQ(Get(held, "mine"), "m");
    Replace(tool.Db("que"), "4", true, 6);
    EXPECT_EQ(Get(held, "mine") + Get(held, "k"), "4") << "a held back change goes with the reload";
    EXPECT_EQ(Put(handle, "k", "5") & Put(handle, "j", "6"), 1);
    EXPECT_EQ(ShowRecords(ReadXdb(tool.Db("que"))), "k=5 j=6");
    fs::remove(tool.Db("que"));
    EXPECT_EQ(Get(handle, "j"), "6") << "a missing file leaves the image";
    DbTClose(handle);
    DbTClose(fixed);
    DbTClose(held);
}

TEST(DbmT, LastRecordOfAHeaderlessImageStaysDeleted) {
    ToolDir tool;
    WriteXdb(tool.Db("que"), false, {{"k", "1"}});
    DbTHandle *handle = DbTOpen("que", DBT_NO_WRITE);
    EXPECT_EQ(DbmTDeleteRecord(handle, "k"), 1);
    EXPECT_EQ(Get(handle, "k"), "");
    EXPECT_EQ(DbmTArchiveDb(handle), 1);
    EXPECT_EQ(fs::file_size(tool.Db("que")), 0u);
    DbTClose(handle);
}

TEST(DbmT, WhatCannotBeWritten) {
    ToolDir tool;
    WriteXdb(tool.Db("que"), true, {{"k", "1"}});
    DbTHandle *path = DbTOpen(tool.Db("que").c_str(), 0);
    DbTHandle *handle = DbTOpen("que", DBT_NO_WRITE);
    {
        Capture capture;
        EXPECT_EQ(Put(path, "k", "2"), 0);
        EXPECT_EQ(capture.Err(), "ERROR: Can't write to " + tool.Db("que"));
    }
    std::string data(65532, 'x'); // with the key and its NUL one byte too much
    EXPECT_EQ(Put(handle, "k", data) + Put(handle, "k", "") + DbmTPutRecord(nullptr, "k", "x", 1), 0);
    EXPECT_EQ(Get(handle, "k"), "1");
    data.pop_back();
    EXPECT_EQ(Put(handle, "k", data), 1);
    EXPECT_EQ(Get(handle, "k"), data);
    EXPECT_EQ(DbmTCopyRecord(handle, "k", "j") & (Get(handle, "j") == data), 1);
    EXPECT_EQ(DbmTCopyRecord(handle, "none", "j"), 0);
    EXPECT_EQ(ShowRecords(ReadXdb(tool.Db("que"))), "k=1");
    DbTClose(path);
    DbTClose(handle);
}

TEST(DbmT, UnreadableFileIsTriedOnce) {
    if (geteuid() != 0) GTEST_SKIP() << "needs root to become another user";
    ToolDir tool;
    WriteXdb(tool.Db("que"), true, {{"k", "1"}});
    fs::permissions(tool.Path(), static_cast<fs::perms>(0755));
    fs::permissions(tool.Db("que"), static_cast<fs::perms>(0));
    ASSERT_EQ(chown(tool.Db("que").c_str(), 65534, 65534), 0);
    ChildEnd end = RunForked([&tool] {
        SystemSpy spy;
        if (setresuid(65534, 65534, 65534) != 0) return;
        DbTHandle *handle = DbTOpen("que", 0);
        printf("%d %u %s|", handle->type, spy.slept, Get(handle, "k").c_str());
        printf("%u|", spy.slept);
        fs::permissions(tool.Db("que"), static_cast<fs::perms>(0600));
        printf("%s %u", Get(handle, "k").c_str(), spy.slept);
    });
    EXPECT_EQ(end.out, "0 10 |10|1 10");
}

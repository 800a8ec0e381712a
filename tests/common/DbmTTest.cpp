// The image layer: both formats against an independent reader, random edits against a plain list, reload,
// damage (of the stream layer too), and what a held back write leaves.
#include "common/DbmT.h"

#include "common/MemMgr.h"
#include "tests/lib/Xdb.h"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>

namespace fs = std::filesystem;

static int Put(DbTHandle *handle, const std::string &key, const std::string &data) {
    return DbmTPutRecord(handle, key.c_str(), data.data(), data.length());
}

static std::string Get(DbTHandle *handle, const std::string &key) {
    std::string data(DBM_BUFFER, '\0');
    data.resize(static_cast<size_t>(DbmTGetRecord(handle, key.c_str(), data.data(), data.length())));
    return data;
}

static std::string Keys(DbTHandle *handle) {
    return TakeText(DbmTGetRecordList(handle, " ", ""));
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
        DbTHandle *handle = DbTOpen("db", DBT_NO_WRITE);
        std::mt19937 random(flHeader);
        for (int step = 0; step < 3000; step++) {
            std::string key = RandomKey(random), data(1 + random() % 40, static_cast<char>(random()));
            unsigned action = random() % 8;
            EraseKeys(&model, key, action == 0);
            if (action > 1) model.emplace_back(key, data);
            if (action > 1)
                ASSERT_EQ(Put(handle, key, data), 1);
            else if (action == 1)
                DbmTDeleteRecord(handle, key.c_str());
            else
                EXPECT_EQ(DbmTDeleteRecords(handle, key.c_str()), 1);
            std::string keys, wanted = RandomKey(random), found;
            for (const auto &[k, d] : model) {
                keys += " " + k;
                if (k == wanted) found = d;
            }
            ASSERT_EQ(Keys(handle), keys.empty() ? "(null)" : keys) << step;
            ASSERT_EQ(Get(handle, wanted), found) << step;
        }
        ASSERT_EQ(DbmTArchiveDb(handle), 1);
        EXPECT_EQ(ReadXdb(tool.Db("db")), model) << "the format stays: " << flHeader;
        for (const char *key : {"a", "b", "c", "first"}) DbmTDeleteRecords(handle, key);
        EXPECT_EQ(Keys(handle), "(null)") << "the last record stays deleted";
        EXPECT_EQ(DbmTArchiveDb(handle), 1);
        EXPECT_EQ(fs::file_size(tool.Db("db")), flHeader ? 16u : 0u);
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
        char small[3] = "..";
        EXPECT_EQ(DbmTGetRecord(handle, "k", small, 2), 2);
        EXPECT_STREQ(small, "fi");
        DbmTGetData(handle, nullptr, 1); // nothing done
        DbmTGetData(nullptr, small, 1);
        char *buffer = small;
        EXPECT_EQ(DbmTGetRecordV(handle, "sub a", &buffer, 2), 1);
        EXPECT_EQ(buffer, small);
        EXPECT_EQ(DbmTGetRecordV(handle, "b sub", &buffer, 2), 65000);
        EXPECT_EQ(TakeText(buffer), large);
        DbLink *chain = DbmTGetDbLinkList(handle, "sub");
        ASSERT_TRUE(chain && chain->next && !chain->next->next);
        EXPECT_EQ(std::string(chain->data, static_cast<size_t>(chain->size)), "1");
        EXPECT_EQ(chain->next->record + std::string(chain->next->data, 1), "b subl");
        EXPECT_EQ(chain->next->size, 65000);
        DbmFreeDbLinkList(chain);
        EXPECT_EQ(TakeText(DbmTGetRecordListS(handle, "x,,kk,k,sub", "<", ">")), "<sub a<k<k>");
        DbTClose(handle);
    }
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
            std::string stream = TakeText(DbmGetRecordList("cut", " ", ""));
            EXPECT_EQ(stream, flHeader ? "(null)" : Keys(handle)) << length;
            ASSERT_EQ(Put(handle, "new", "n"), 1); // behind the sound records, whatever was cut
            EXPECT_EQ(Keys(handle), keys + " new") << length;
            EXPECT_TRUE(handle->type != DBT_HEADER || handle->size >= 16 + 8u) << length;
            DbTClose(handle);
        }
    }
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
    for (DbTHandle *each : {handle, fixed, held}) DbTClose(each);
}

// The key of a walk lies where the walk goes on.
// What can't be read of a file isn't lost to a write: damage in the middle in either format, and a file that
// is too large to be read, which costs a start no time.
TEST(DbmT, FileThatIsReadInPartIsKept) {
    for (int kind : {DBT_HEADERLESS, DBT_HEADER, DBT_NONE}) {
        ToolDir tool;
        WriteXdb(tool.Db("db"), kind == DBT_HEADER, {{"a", "1"}, {"b", "2"}, {"c", "3"}});
        std::string bytes = ReadWhole(tool.Db("db"));
        bytes[(kind == DBT_HEADER ? DBT_HEADER_SIZE : 0) + 7] = '\xff'; // in the length of the second record
        if (kind == DBT_NONE) bytes.resize(DBM_FILE_MAX + 1);
        tool.Write("db/db.xdb", bytes);
        DbTHandle *handle = DbTOpen("db", 0);
        EXPECT_EQ(Keys(handle), kind == DBT_NONE ? "(null)" : " a") << kind;
        EXPECT_FALSE(fs::exists(tool.Path("db/db.xdb_damaged")));
        EXPECT_EQ(Put(handle, "d", "4"), 1);
        EXPECT_TRUE(ReadWhole(tool.Path("db/db.xdb_damaged")) == bytes) << kind;
        fs::remove(tool.Path("db/db.xdb_damaged"));
        EXPECT_EQ(Put(handle, "e", "5"), 1);
        EXPECT_FALSE(fs::exists(tool.Path("db/db.xdb_damaged"))) << "the new one is whole";
        EXPECT_EQ(Get(handle, "d") + Get(handle, "e"), "45");
        DbTClose(handle);
    }
}

TEST(DbmT, WalkedKeyHandedBack) {
    ToolDir tool;
    WriteXdb(tool.Db("que"), false, {{"aa", "1"}, {"bb", "2"}, {"cc", "3"}});
    DbTHandle *handle = DbTOpen("que", 0);
    DbTWalk walked;
    ASSERT_TRUE(WalkDbTRecords(handle, &walked, 0) && WalkDbTRecords(handle, &walked, 1));
    EXPECT_EQ(DbmTDeleteRecord(handle, walked.key), 1);
    EXPECT_EQ(ShowRecords(ReadXdb(tool.Db("que"))), "aa=1 cc=3");
    DbTClose(handle);
}

TEST(DbmT, LargestRecordHeldBack) {
    ToolDir tool;
    WriteXdb(tool.Db("que"), true, {{"k", "1"}});
    DbTHandle *handle = DbTOpen("que", DBT_NO_WRITE);
    std::string data(65532, 'x'); // with the key and its NUL one byte too much
    EXPECT_EQ(Put(handle, "k", data) + Put(handle, "k", ""), 0);
    EXPECT_EQ(Get(handle, "k"), "1");
    data.pop_back();
    EXPECT_EQ(Put(handle, "k", data), 1);
    EXPECT_EQ(DbmTCopyRecord(handle, "k", "j") & (Get(handle, "j") == data), 1);
    EXPECT_EQ(ShowRecords(ReadXdb(tool.Db("que"))), "k=1");
    DbTClose(handle);
}

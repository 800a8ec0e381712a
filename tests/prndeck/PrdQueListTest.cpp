// The lists read anew, and how a change of their database is seen.
#include "prndeck/core/PrdQueList.h"

#include "common/MemMgr.h"
#include "common/utils.h"
#include "tests/lib/AppTool.h"

#include <filesystem>
#include <gtest/gtest.h>

static std::string Lists() {
    return std::string(pQueList ? pQueList : "-") + " " + (pTarvoQueList ? pTarvoQueList : "-");
}

TEST(ReadQueLists, BothAnew) {
    AppTool tool;
    SystemSpy spy;
    tool.WriteDb("que", {{"q2", "x"}, {"q10", "x"}, {"gone", "x"}});
    spy.answers = {{"-LQ", "q2\nother\nq10\n"}};
    ReadQueLists();
    EXPECT_EQ(Lists(), ",other,q10,q2, ,q10,q2,");
    spy.answers = {{"-LQ", "other\n"}};
    ReadQueLists();
    EXPECT_EQ(Lists(), ",other -");
    spy.answers = {{"-LQ", ""}};
    size_t asked = spy.asked.size();
    ReadQueLists();
    EXPECT_EQ(Lists(), "- -");
    EXPECT_EQ(spy.asked.size(), asked + 1) << "a host without queues is asked once";
}

// The steps follow each other within a second, and the times of the last are those of the file before.
TEST(TestQueDbChange, EachChangeOnce) {
    AppTool tool;
    std::string db = tool.Db("que"), other = tool.Path("other");
    TestQueDbChange();
    auto expect = [](int want, const char *what) {
        EXPECT_EQ(TestQueDbChange(), want) << what;
        EXPECT_EQ(TestQueDbChange(), 0) << "once more: " << what;
    };
    expect(0, "no file");
    tool.WriteDb("que", {{"q1", "x"}});
    expect(1, "made");
    tool.WriteDb("que", {{"q1", "x"}, {"q2", "x"}});
    expect(1, "longer");
    std::filesystem::copy_file(db, other);
    std::filesystem::last_write_time(other, std::filesystem::last_write_time(db));
    std::filesystem::rename(other, db);
    expect(1, "replaced");
    std::filesystem::remove(db);
    expect(1, "removed");
}

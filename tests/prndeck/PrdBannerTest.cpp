// Banner texts, read, written and read back; the banner menu's callbacks and what they leave in ".bsettings".
#include "prndeck/PrdBanner.h"

#include "common/MemMgr.h"
#include "common/utils.h"
#include "prndeck/PrdQueLine.h"
#include "tests/lib/AppTool.h"

#include <cstring>
#include <gtest/gtest.h>

static std::string Show(const BannerRow rows[BANNER_ROWS]) {
    std::string text;
    for (int i = 0; i < BANNER_ROWS; i++) text += std::to_string(rows[i].size) + "=" + rows[i].title + "|";
    return text;
}

TEST(BannerText, Read) {
    struct Case {
        const char *name;
        std::string text;
        const char *want;
    };
    const Case cases[] = {
        {"three rows", ".h1 8 One\n.h2 20 Two words\n.h3 40 3\n", "0=One|6=Two words|16=3|"},
        {"only the third", ".h3 12 x\n", "6=|6=|2=x|"},
        {"no final line feed", ".h1 10 a", "1=a|6=|6=|"},
        {"blanks belong to the title", ".h1 10  a b ", "1= a b |6=|6=|"},
        {"size that isn't in the list", ".h1 9 a\n.h2 x b\n.h3  c\n", "0=a|0=b|0=c|"},
        {"one blank", ".h1 10\n.h2 10 b\n", "6=|1=b|6=|"},
        {"another key", ".h4 10 a\n.h 10 b\nh1 10 c\n 10 d\n", "6=|6=|6=|"},
        {"last of two", ".h1 10 a\n.h1 12 b\n", "2=b|6=|6=|"},
        {"empty", "", "6=|6=|6=|"},
        {"directives", ".h1 10 %s%n\n", "1=%s%n|6=|6=|"},
    };
    BannerRow rows[BANNER_ROWS];
    for (const Case &c : cases) {
        ReadBannerText(c.text.c_str(), rows);
        EXPECT_EQ(Show(rows), c.want) << c.name;
    }
    ReadBannerText(nullptr, rows);
    EXPECT_EQ(Show(rows), "6=|6=|6=|");
    ReadBannerText((".h2 40 " + std::string(5000, 't')).c_str(), rows);
    EXPECT_EQ(strlen(rows[1].title), BANNER_TITLE - 1u);
}

TEST(BannerText, Write) {
    BannerRow rows[BANNER_ROWS] = {{"", 6}, {" \t\r\n", 6}, {"third %d", 16}};
    EXPECT_EQ(MakeBannerText(rows), ".h3 40 third %d\n");
    rows[0] = {"a b", -1}; // positions beyond the list
    rows[2] = {"c", 99};
    EXPECT_EQ(MakeBannerText(rows), ".h1 8 a b\n.h3 40 c\n");
    BannerRow again[BANNER_ROWS];
    ReadBannerText(MakeBannerText(rows).c_str(), again);
    EXPECT_EQ(Show(again), "0=a b|6=|16=c|");
}

class BannerMenu : public ::testing::Test {
protected:
    BannerMenu() { menu.items = ConfigureBannerPageMenuItems; }
    ~BannerMenu() override { FreeMenu(&menu); }
    void SetTitle(int row, const char *title) {
        snprintf(menu.items[row * 2].value.s, MENU_TEXT_SIZE, "%s", title);
    }
    std::string Values() {
        std::string text;
        for (int i = 0; i < 6; i += 2)
            text += std::to_string(menu.items[i + 1].value.i) + "=" + menu.items[i].value.s + "|";
        return text + std::to_string(menu.items[6].value.i);
    }
    std::string File() { return ReadWhole(tool.Path(BannerFile)); }
    AppTool tool;
    TextMenu menu;
};

TEST_F(BannerMenu, StartsWithTheQueuesOwnText) {
    tool.WriteDb("que", {{" banner", std::string(".h1 8 all\n\0", 11)},
                         {"q1 **banner", ".h2 9 own\n"},
                         {"q2 **banner", "\0"}});
    GetBannerInfoTty("q1");
    EXPECT_STREQ(BannerLine, ".h2 9 own\n");
    EXPECT_EQ(File(), ".h2 9 own\n");
    InitBannerInfoMenu(&menu);
    EXPECT_EQ(Values(), "6=|0=own|6=|0");
}

TEST_F(BannerMenu, ElseWithTheDefaultOfTheSystem) {
    tool.WriteDb("que",
                 {{" banner", std::string(".h1 8 all\n\0", 11)}, {"q2 **banner", std::string(1, '\0')}});
    for (const char *queue : {static_cast<const char *>(nullptr), "q1", "q2"}) {
        GetBannerInfoTty(queue);
        EXPECT_STREQ(BannerLine, ".h1 8 all\n");
        EXPECT_FALSE(TestToolFile(BannerFile));
    }
    tool.WriteDb("que", {{"q1 **banner", ".h1 40 " + std::string(6000, 'x')}});
    GetBannerInfoTty("q1");
    EXPECT_EQ(strlen(BannerLine), BANNER_TEXT - 1u);
    GetBannerInfoTty("q2");
    EXPECT_STREQ(BannerLine, "");
}

TEST_F(BannerMenu, RestoreUndoesTheEdits) {
    snprintf(BannerLine, sizeof BannerLine, ".h1 40 kept\n");
    InitBannerInfoMenu(&menu);
    SetTitle(0, "edited");
    SetTitle(2, "new");
    menu.items[1].value.i = menu.items[6].value.i = 1;
    EXPECT_EQ(RestoreBannerInfoTty(&menu, nullptr), 0);
    EXPECT_EQ(Values(), "16=kept|6=|6=|0");
}

TEST_F(BannerMenu, SaveWritesTheFileAndKeepsTheText) {
    SystemSpy spy;
    BannerLine[0] = '\0';
    InitBannerInfoMenu(&menu);
    SetTitle(2, "100% it's");
    EXPECT_EQ(SaveBannerInfoTty(&menu, nullptr), 0);
    EXPECT_EQ(File(), ".h3 20 100% it's\n");
    EXPECT_STREQ(BannerLine, ".h3 20 100% it's\n"); // what the next visit shows
    EXPECT_TRUE(spy.lines.empty());
}

TEST_F(BannerMenu, EmptyTitlesRemoveTheFile) {
    tool.Write(BannerFile, "old");
    snprintf(BannerLine, sizeof BannerLine, ".h1 40 kept\n");
    InitBannerInfoMenu(&menu);
    SetTitle(0, "  ");
    Capture quiet;
    SaveBannerInfoTty(&menu, nullptr);
    EXPECT_FALSE(TestToolFile(BannerFile));
    EXPECT_STREQ(BannerLine, "");
}

TEST_F(BannerMenu, DefaultIsNoOwnBanner) {
    struct Case {
        const char *title, *option;
        size_t count; // lines run; with a text the file is removed behind it
    };
    static const Case Cases[] = {{"all", " -dbps .bsettings 1>/dev/null 2>/dev/null", 2},
                                 {"", " -xdbps 1>/dev/null 2>/dev/null", 1}};
    for (const Case &c : Cases) {
        SystemSpy spy;
        remove(BannerFile); // the spy keeps rm from running
        InitBannerInfoMenu(&menu);
        SetTitle(0, c.title);
        SetTitle(1, "");
        SetTitle(2, "");
        menu.items[6].value.i = 1;
        Capture quiet;
        SaveBannerInfoTty(&menu, nullptr);
        ASSERT_EQ(spy.lines.size(), c.count) << c.title;
        EXPECT_EQ(spy.lines[0], std::string(pToolPath) + "/prnqtool" + c.option);
        if (c.count > 1) {
            EXPECT_NE(spy.lines[1].find("rm -f"), std::string::npos) << spy.lines[1];
        }
    }
}

TEST_F(BannerMenu, FileThatCantBeWrittenIsReported) {
    tool.MakeDir(BannerFile);
    BannerLine[0] = '\0';
    InitBannerInfoMenu(&menu);
    SetTitle(0, "a");
    Capture caught;
    SystemSpy spy;
    SaveBannerInfoTty(&menu, nullptr);
    EXPECT_EQ(caught.Err(), "ERROR: can't open file, " + tool.Path(BannerFile) + "\n");
}

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
    const std::pair<const char *, const char *> cases[] = {
        {".h1 8 One\n.h2 20 Two words\n.h3 40 3\n", "0=One|6=Two words|16=3|"},
        {".h3 12 x", "6=|6=|2=x|"},
        {".h1 10  a b \n", "1= a b |6=|6=|"},           // blanks belong to the title
        {".h1 9 a\n.h2 x b\n.h3  c\n", "0=a|0=b|0=c|"}, // sizes that are not in the list
        {".h1 10\n.h2 10 b\n", "6=|1=b|6=|"},
        {".h4 10 a\n.h 10 b\nh1 10 c\n 10 d\n", "6=|6=|6=|"},
        {".h1 10 a\n.h1 12 %s%n\n", "2=%s%n|6=|6=|"}};
    BannerRow rows[BANNER_ROWS];
    for (auto [text, want] : cases) {
        ReadBannerText(text, rows);
        EXPECT_EQ(Show(rows), want) << text;
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

TEST_F(BannerMenu, StartsWithTheQueuesTextOrThatOfTheSystem) {
    tool.WriteDb("que", {{" banner", std::string(".h1 8 all\n\0", 11)},
                         {"q1 **banner", ".h2 40 " + std::string(6000, 'x')},
                         {"q2 **banner", std::string(1, '\0')}});
    for (const char *queue : {static_cast<const char *>(nullptr), "q2", "q3"}) {
        GetBannerInfoTty(queue);
        EXPECT_STREQ(BannerLine, ".h1 8 all\n");
        EXPECT_FALSE(TestToolFile(BannerFile));
    }
    GetBannerInfoTty("q1");
    EXPECT_EQ(strlen(BannerLine), BANNER_TEXT - 1u);
    EXPECT_EQ(File(), BannerLine);
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

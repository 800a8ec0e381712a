// Banner texts, read and written; what the lists of models say;
// where a queue's text comes from, and a ".bsettings" that can't be written.
#include "common/MemMgr.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdQueLine.h"
#include "prndeck/tty/PrdTtyBanner.h"
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
        {".h1 10  a b \n", "1= a b |6=|6=|"},           // blanks belong to the title
        {".h1 9 a\n.h2 x b\n.h3  c\n", "0=a|0=b|0=c|"}, // sizes that are not in the list
        {".h4 10 a\n.h 10 b\nh1 10 c\n 10 d\n", "6=|6=|6=|"},
        {".h1 10 a\n.h1 12 %s%n\n", "2=%s%n|6=|6=|"}};
    BannerRow rows[BANNER_ROWS];
    for (auto [text, want] : cases) {
        ReadBannerText(text, rows);
        EXPECT_EQ(Show(rows), want) << text;
    }
    ReadBannerText((".h2 40 " + std::string(5000, 't')).c_str(), rows);
    EXPECT_EQ(strlen(rows[1].title), BANNER_TITLE - 1u);
}

TEST(BannerText, Write) {
    BannerRow rows[BANNER_ROWS] = {{"", 6}, {" ", 6}, {"third %d", 16}};
    EXPECT_EQ(MakeBannerText(rows), ".h2 20  \n.h3 40 third %d\n");
    rows[1] = {"", 6};
    EXPECT_EQ(MakeBannerText(rows), ".h3 40 third %d\n");
    rows[0] = {"a\nb", -1}; // positions beyond the list
    rows[2] = {"c", 99};
    EXPECT_EQ(MakeBannerText(rows), ".h1 8 a b\n.h3 40 c\n");
}

static std::string Show(const BannerRule &rule) {
    std::string text;
    for (int said : {rule.allowed, rule.value, rule.setup})
        text += said < 0 ? '-' : static_cast<char>('0' + said);
    return text;
}

TEST(BannerRule, ListsInTheirOrder) {
    struct Case {
        Records lists; // by key: their models
        const char *direct, *server;
    };
    const std::string all = "DisableCustomBanner", ps = "W2PS" + all, off = "DefaultCustomBannerOff",
                      noSetup = "DisableCustomBannerSetup";
    const Case cases[] = {{{{"x", "x"}}, "---", "---"},
                          {{{all, ",b,"}}, "111", "111"},
                          {{{all, ",a,"}, {off, ",b,"}}, "000", "000"},
                          {{{ps, ",a,"}}, "---", "000"},
                          {{{all, ",b,"}, {ps, ",a,"}, {noSetup, ",a,"}}, "110", "000"},
                          {{{off, ",a,"}, {noSetup, ",a,"}}, "-0-", "-0-"},
                          {{{off, ",b,"}, {noSetup, ",b,"}}, "-11", "-11"},
                          {{{all, ",b,"}, {off, ",a,"}}, "101", "101"}};
    for (const Case &c : cases) {
        AppTool tool;
        DbTClose(pEngPrtStrDB); // opened once in a process
        pEngPrtStrDB = nullptr;
        tool.WriteDb("en_US/PrtString", c.lists);
        EXPECT_EQ(Show(GetBannerRule("a", PM_HOST)), c.direct);
        EXPECT_EQ(Show(GetBannerRule("a", PM_SERVER)), c.server);
    }
}

TEST(BannerMenu, StartsWithTheQueuesTextOrThatOfTheSystem) {
    AppTool tool;
    tool.WriteDb("que", {{" banner", std::string(".h1 8 all\n\0", 11)},
                         {"q1 **banner", ".h2 40 " + std::string(6000, 'x')},
                         {"q2 **banner", std::string(1, '\0')}});
    for (const char *queue : {"q2", "q3"}) {
        GetBannerInfoTty(queue);
        EXPECT_STREQ(BannerLine, ".h1 8 all\n");
    }
    GetBannerInfoTty("q1");
    EXPECT_EQ(strlen(BannerLine), BANNER_TEXT - 1u);
    EXPECT_EQ(ReadWhole(tool.Path(BannerFile)), BannerLine);
}

TEST(BannerMenu, FileThatCantBeWrittenIsReported) {
    AppTool tool;
    TextMenu menu;
    menu.items = ConfigureBannerPageMenuItems;
    tool.MakeDir(BannerFile);
    BannerLine[0] = '\0';
    InitBannerInfoMenu(&menu);
    snprintf(menu.items[0].value.s, MENU_TEXT_SIZE, "a");
    Capture caught;
    SystemSpy spy;
    SaveBannerInfoTty(&menu, nullptr);
    FreeMenu(&menu);
    EXPECT_EQ(caught.Err(), "ERROR: can't open file, " + tool.Path(BannerFile) + "\n");
}

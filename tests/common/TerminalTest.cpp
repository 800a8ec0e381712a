// Latin-1 and UTF-8 at the terminal.
#include "common/Terminal.h"

#include <gtest/gtest.h>

TEST(Terminal, ConvertsLettersOnce) {
    struct {
        const char *latin, *utf8;
    } const both[] = {{"", ""},
                      {"plain\n\033[H", "plain\n\033[H"},
                      {"B\374ro", "B\303\274ro"},
                      {"\377\240", "\303\277\302\240"}};
    for (const auto &row : both) {
        EXPECT_EQ(ToUtf8(row.latin), row.utf8);
        EXPECT_EQ(ToUtf8(row.utf8), row.utf8) << "converted twice";
        EXPECT_EQ(FromUtf8(row.utf8), row.latin);
    }
    EXPECT_EQ(FromUtf8("\342\202\254 \303\274 \303"), "\342\202\254 \374 \303"); // beyond Latin-1; cut off
    EXPECT_EQ(ToUtf8("\303"), "\303\203");
    EXPECT_EQ(ToUtf8("\302\200"), "\302\200"); // a control character of Latin-1 stays one
    EXPECT_EQ(FromUtf8("\302\200"), "\302\200") << "an escape in disguise";
    EXPECT_EQ(GetLetterLength("\360\235\204\236x"), 4u);
    EXPECT_EQ(GetLetterLength("\360\235\204"), 1u);
    EXPECT_EQ(GetLetterLength("\300\257"), 1u);
    EXPECT_EQ(GetLetterLength(""), 0u);
}

TEST(Terminal, KnowsTheLocaleByName) {
    struct {
        const char *all, *letters, *language;
        bool flUtf8;
    } const cases[] = {{"", "", "de_DE.UTF-8", true},   {"", "", "de_DE@euro", false},
                       {"C", "", "de_DE.UTF-8", false}, {"", "C.utf8", "C", true},
                       {"", "de_DE", "C.UTF-8", false}, {"", "", "", false},
                       {"", "", "de_DE.UTF-16", false}};
    for (const auto &row : cases) {
        setenv("LC_ALL", row.all, 1);
        setenv("LC_CTYPE", row.letters, 1);
        setenv("LANG", row.language, 1);
        EXPECT_EQ(TestUtf8Locale(), row.flUtf8) << row.all << "," << row.letters << "," << row.language;
    }
}

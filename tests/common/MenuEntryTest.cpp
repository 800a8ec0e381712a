// The entry validation language: code, message and lines read for each element and for the ways through a
// format.
#include "common/MenuEntry.h"

#include "common/NlsUtils.h"
#include "common/TextMenu.h"
#include "common/utils.h"
#include "tests/lib/Capture.h"
#include "tests/lib/MenuDump.h"

#include <cstring>
#include <gtest/gtest.h>

static const char Return[] = "Press <Return> to continue";
static const char HostFormat[] = "!(0.0.0.0)|!(255.255.255.255)|d(0,255).d(0,255).d(0,255).d(0,255)|t(1,255)";

struct EntryCase {
    const char *name;
    std::string format;
    std::string entry;
    int code;
    std::string message; // empty: nothing is told and no line is read
};

static std::string MakeSet(const std::string &characters) {
    std::string set;
    for (char ch : characters) set += std::string("+") + ch;
    return set;
}

static const std::string Full = std::string(78, '!') + "-"; // as much as a set holds

static const EntryCase Accepted[] = {
    {"end of the format accepts what is left", "kb", "kbc", 0, ""},
    {"name of full length", "A(1,14)+-+_", "a-b_c567890123", 0, ""},
    {"blanks between elements", " / \t A(0,0)\n", "/a", 0, ""},
    {"literal, then text", "/A(1,255)+-+_+/", "/tmp/x", 0, ""},
    {"letters", "a(1,5)", "Abc", 0, ""},
    {"the minus list of a text plays no part", "A(1,3)-a", "a", 0, ""},
    {"printable", "p(1,20)", "a b,c;~ %n", 0, ""},
    {"maximum 0 lifts the length test", "t(5,0)", "", 0, ""},
    {"any 80 characters", "t(1,80)", std::string(80, '\x01'), 0, ""},
    {"L as t", "L(1,2)", "\xe4\xff", 0, ""},
    {"integer in range", "d(0,255)", "255", 0, ""},
    {"maximum 0 lifts the range test, 30 digits", "d(0,0)", std::string(30, '9'), 0, ""},
    {"a number in range skips the rest up to the bar", "d(0,255).d(0,2)|x", "1", 0, ""},
    {"hexadecimal, bounds decimal", "x(16,255)", "fF", 0, ""},
    {"float", "f(0.5,2.5)", "2.50", 0, ""},
    {"long float", "D(0,1e25)", "10000000000000000000000000", 0, ""},
    {"other text than the forbidden", "!(no)", "nope", 0, ""},
    {"t without a parenthesis forbids", "tno)", "yes", 0, ""},
    {"forbidden text accepts without a look behind &", "!(no)&d(1,2)", "x", 0, ""},
    {"failed length in front of a bar", "A(1,3)|t(1,9)", "abcdefg", 0, ""},
    {"failed character in front of a bar", "a(1,3)|", "7", 0, ""},
    {"failed literal in front of a bar", "/k|", "/y", 0, ""},
    {"bar closes the format", "a(1,3)|t(9,9)", "abc", 0, ""},
    {"& tests again", "A(1,5)&aA(0,0)", "abc", 0, ""},
    {"host name", HostFormat, "printer1", 0, ""},
    {"the second reserved address", HostFormat, "255.255.255.255", 0, ""},
    {"empty host", HostFormat, "", 0, ""},
    {"host of 300 characters", HostFormat, std::string(300, 'h'), 0, ""},
    {"range cut off by the end", "A(1", "abc", 0, ""},
    {"set cut off by the end", "A(1,3)+", "abc", 0, ""},
};

static const EntryCase Refused[] = {
    {"empty name", "A(1,14)+-+_", "", 2, "This entry must have 1 to 14 characters."},
    {"name of 15 characters", "A(1,14)+-+_", "abcdefghijklmno", 2,
     "This entry must have 1 to 14 characters."},
    {"the whole entry counts, not the rest", "/t(1,3)", "/abc", 2, "This entry must have 1 to 3 characters."},
    {"exact length", "t(4,4)", "abc", 2, "This entry must have 4 characters."},
    {"81 characters", "t(1,80)", std::string(81, 'x'), 2, "This entry must have 1 to 80 characters."},
    {"character of a name", "A(1,14)+-+_", "a.b", 3,
     "Invalid character '.'\nThis text may contain \"abc..zABC..Z012..9-_\""},
    {"digit among letters", "a(1,14)++", "a+1", 3,
     "Invalid character '1'\nThis text may contain \"abc..zABC..Z+\""},
    {"control character", "p(1,14)", "a\tb", 3,
     "Invalid character '\t'\nThis text may contain \"abc..zABC..Z012..9\""},
    {"integer below", "d(1,60)", "0", 1, "This number must be between 1 to 60."},
    {"integer beyond an int", "d(1,2147483647)", "4294967297", 1,
     "This number must be between 1 to 2147483647."},
    {"integer out of range in front of a bar", "d(1,60)|t(1,9)", "61", 1,
     "This number must be between 1 to 60."},
    {"letter in an integer", "d(1,60)", "1a", 3, "Invalid digit:  a\n"},
    {"bad digit in front of a bar", "d(0,255)|t(1,9)", "x", 3, "Invalid digit:  x\n"},
    {"a digit of the minus list", "d(0,0)-7", "1727", 3, "Invalid digit:  7\n"},
    {"no number", "d(0,0)", "", 3, "Invalid digit:  \n"},
    {"hexadecimal out of range", "x(16,255)", "100", 1, "This number must be between 10 to ff."},
    {"no hexadecimal number", "x(0,255)", "g", 3, "Invalid digit:  g\n"},
    {"float out of range", "f(0.5,2.5)", "2.51", 1, "This number must be between 0.500000 to 2.500000."},
    {"letter in a float", "f(0,9)", "1.5e3", 3,
     "Invalid character 'e'\nThis text may contain \"0123456789.\""},
    {"two points", "f(0,9)", "1.2.3", 1, "Only one '.' may be entered."},
    {"no float", "f(0,9)", ".", 3, "Invalid digit:  .\n"},
    {"long float out of range", "D(1,1e10)", "10000000001", 1, "This number must be between 1 to 1e+10."},
    {"letter in a long float", "D(0,0)", "1x", 3,
     "Invalid character 'x'\nThis text may contain \"0123456789.\""},
    {"reserved address", HostFormat, "0.0.0.0", 4, "Invalid entry \"0.0.0.0\""},
    {"t without a parenthesis", "tno)", "no", 4, "Invalid entry \"no\""},
    {"literal behind a match", "kb", "kx%n", 3, "Invalid character x\nb was expected after \"k\""},
    {"literal at the end of the entry", "kb", "k", 3, "Invalid character  \nb was expected after \"k\""},
    {"& forgets what has matched", "A(1,9)&ky", "kz", 3, "Invalid character z\ny was expected after \"k\""},
    {"character 80 of a set", "A(0,0)" + MakeSet(Full + "_"), "a-_", 3,
     "Invalid character '_'\nThis text may contain \"abc..zABC..Z012..9" + Full + "\""},
    {"literal at the first character", "/A(1,255)+-+_+/", "tmp", 3, ""},
};

static void ExpectCases(const EntryCase *rows, size_t count) {
    for (const EntryCase *row = rows; row < rows + count; row++) {
        ChildEnd end = RunForked(
            [row] {
                OpenMenuTexts();
                int code = ValidateEntry(row->entry.c_str(), row->format.c_str());
                char rest[8];
                fprintf(stderr, "%i, then %s", code, Gets(rest, sizeof rest));
            },
            "first\nsecond\n");
        const char *next = row->message.empty() ? "first" : "second";
        EXPECT_EQ(end.err, std::to_string(row->code) + ", then " + next) << row->name << ": " << row->format;
        EXPECT_EQ(end.out, row->message.empty() ? "" : row->message + Return)
            << row->name << ": " << row->format;
    }
}

TEST(MenuEntry, Accepts) {
    ExpectCases(Accepted, std::size(Accepted));
}

TEST(MenuEntry, RefusesWithOneMessageAndOneLine) {
    ExpectCases(Refused, std::size(Refused));
}

TEST(MenuEntry, TakesEntryAndFormatFromTheLineBuffer) {
    ChildEnd end = RunForked(
        [] {
            OpenMenuTexts();
            snprintf(LineBuf, LINEBUF_SIZE, "%s", "far too long a name");
            printf("%i", ValidateEntry(LineBuf, "!(x)&A(1,3)"));
            printf("%i", ValidateEntry(LineBuf, "t(1,3)"));
            printf("<%s>", LineBuf);
            snprintf(LineBuf, LINEBUF_SIZE, "%s", "t(1,3)");
            printf("%i", ValidateEntry("abcd", LineBuf));
            printf("%i%i", ValidateEntry("x", nullptr), ValidateEntry(nullptr, "t(0,1)"));
        },
        "answer\nanswer\n");
    const std::string refused = std::string("This entry must have 1 to 3 characters.") + Return + "2";
    EXPECT_EQ(end.out, "0" + refused + "<answer>" + refused + "00");
}

TEST(MenuEntry, PrintsADamagedCatalogueTextAsItStands) {
    ChildEnd end = RunForked([] {
        pDrvCoreDB = DbTOpen("MenuTexts", DBT_NO_RELOAD | DBT_NO_WRITE);
        DbmTPutRecord(pDrvCoreDB, "25_1009", "%s %n %s", 9);
        printf("|%i", ValidateEntry("no", "!(no)"));
        printf("|%i", ValidateEntry("7", "d(1,6)"));
    });
    EXPECT_EQ(end.out, "%s %n %sError|4"
                       "25_1003Error|1");
}

// ---- the single checks

TEST(MenuEntry, ReadsRanges) {
    struct RangeCase {
        const char *range;
        int min, max;
    };
    static const RangeCase cases[] = {{"(1,14)", 1, 14},
                                      {"3;5", 3, 5},
                                      {"(-5,5)", -5, 5},
                                      {"(7)", 7, 0},
                                      {"", 0, 0},
                                      {"(", 0, 0},
                                      {"(9", 9, 0},
                                      {nullptr, 0, 0},
                                      {"12x34)", 12, 34},
                                      {"(a,3)", 0, 0},
                                      {"(0,99999999999)", 0, 2147483647}};
    for (const RangeCase &row : cases) {
        int min = -1;
        EXPECT_EQ(getMinMax(row.range, &min), row.max) << (row.range ? row.range : "null");
        EXPECT_EQ(min, row.min) << (row.range ? row.range : "null");
    }
}

TEST(MenuEntry, ChecksLengthThenDigits) {
    ChildEnd end = RunForked(
        [] {
            OpenMenuTexts();
            printf("%i%i", ValidateEntryLen("abcd", nullptr) != nullptr,
                   ValidateEntryLen("abc", "(0,0)") != nullptr);
            printf("<%s>", ValidateEntryLen("abc", nullptr));
            printf("<%i %i %i>", ValidateEntryDigit("012"), ValidateEntryDigit("0x"),
                   ValidateEntryDigit("\xe4"));
            snprintf(LineBuf, LINEBUF_SIZE, "%s", "a");
            printf("|%i", ValidateEntryTty(LineBuf, "(2,3)"));
            printf("|%i", ValidateEntryTty("1a", "(2,3)"));
            printf("|%i", ValidateEntryTty("12", "(2,3)"));
        },
        "\n\n");
    EXPECT_EQ(end.out, std::string("00<This entry must have 4 characters.><0 120 228>"
                                   "This entry must have 2 to 3 characters.") +
                           Return + "|2Invalid digit:  a\n" + Return + "|3|0");
}

TEST(MenuEntry, TestsNames) {
    ChildEnd end = RunForked([] {
        OpenMenuTexts();
        printf("%i%i%i", TestName("a-b_9"), TestName(""), TestName("a%"));
    });
    EXPECT_EQ(end.out,
              "\n'%' is not a valid name character. \nOnly alphanumeric character, '-', and '_' are valid: \n"
              "\nPress <Return> to continue 110");
}

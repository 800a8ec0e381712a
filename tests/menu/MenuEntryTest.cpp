// The entry validation language: code, message and lines read for each element and the ways through a format.
#include "menu/MenuEntry.h"

#include "common/utils.h"
#include "menu/TextMenu.h"
#include "tests/lib/Capture.h"
#include "tests/lib/MenuDump.h"

#include <cstring>
#include <gtest/gtest.h>

static const char Return[] = "Press <Return> to continue";
static const char HostFormat[] = "!(0.0.0.0)|!(255.255.255.255)|d(0,255).d(0,255).d(0,255).d(0,255)|t(1,255)";

static std::string MakeSet(const std::string &characters) {
    std::string set;
    for (char ch : characters) set += std::string("+") + ch;
    return set;
}

TEST(MenuEntry, Accepts) {
    const std::pair<std::string, std::string> cases[] = {
        {"kb", "kbc"}, // the end of the format accepts what is left
        {"A(1,14)+-+_", "a-b_c567890123"},
        {" / \t A(0,0)\n", "/a"},
        {"/A(1,255)+-+_+/", "/tmp/x"},
        {"p(1,20)", "a b,c;~ %n"},
        {"t(5,0)", ""}, // maximum 0 lifts the test
        {"L(1,2)", "\xe4\xff"},
        {"d(0,255)", "255"},
        {"d(0,255).d(0,2)|x", "1"}, // a number in range skips the rest up to the bar
        {"x(16,255)", "fF"},        // bounds decimal
        {"x(5,0)", "1"},
        {"f(0.5,2.5)", "2.50"},
        {"tno)", "yes"},              // without a parenthesis t forbids
        {"!(no)&d(1,2)", "x"},        // accepts without a look behind &
        {"A(1,3)|t(1,9)", "abcdefg"}, // failed length, character, literal in front of a bar
        {"A(1,5)&aA(0,0)", "abc"},
        {HostFormat, "printer1"},
        {HostFormat, ""},
        {HostFormat, std::string(300, 'h')},
        {"A(1,3)+", "abc"},
    };
    ChildEnd end = RunForked([&cases] {
        OpenMenuTexts();
        for (const auto &[format, entry] : cases)
            if (ValidateEntry(entry.c_str(), format.c_str()) != 0)
                printf("%s: %s\n", format.c_str(), entry.c_str());
    });
    EXPECT_EQ(end.out + end.err, "");
}

TEST(MenuEntry, RefusesWithOneMessageAndOneLine) {
    const std::string full = std::string(78, '!') + "-"; // as much as a set holds
    const std::string text = "\nThis text may contain \"abc..zABC..Z", length = "This entry must have ";
    const std::string number = "This number must be between ",
                      floats = "\nThis text may contain \"0123456789.\"";
    struct Case {
        std::string format, entry;
        int code;
        std::string message;
    } cases[] = {
        {"A(1,14)+-+_", "", 2, length + "1 to 14 characters.\n"},
        {"A(1,14)+-+_", "abcdefghijklmno", 2, length + "1 to 14 characters.\n"},
        {"/t(1,3)", "/abc", 2, length + "1 to 3 characters.\n"}, // the whole entry counts, not the rest
        {"A(1,14)+-+_", "a.b", 3, "Invalid character '.'" + text + "012..9-_\""},
        {"a(1,14)++", "a+1", 3, "Invalid character '1'" + text + "+\""},
        {"p(1,14)", "a\tb", 3, "Invalid character '\t'" + text + "012..9\""},
        {"d(1,60)", "0", 1, number + "1 to 60."},
        {"d(1,2147483647)", "4294967297", 1, number + "1 to 2147483647."},
        {"d(1,60)|t(1,9)", "61", 1, number + "1 to 60."},
        {"d(1,60)", "1a", 3, "Invalid digit:  a\n"},
        {"d(0,255)|t(1,9)", "x", 3, "Invalid digit:  x\n"},
        {"x(16,255)", "100", 1, number + "10 to ff."},
        {"x(0,255)", "g", 3, "Invalid digit:  g\n"},
        {"f(0.5,2.5)", "2.51", 1, number + "0.500000 to 2.500000."},
        {"f(0,9)", "1.5e3", 3, "Invalid character 'e'" + floats},
        {"f(0,9)", "1.2.3", 1, "Only one '.' may be entered."},
        {"D(1,1e10)", "10000000001", 1, number + "1 to 1e+10."},
        {HostFormat, "0.0.0.0", 4, "Invalid entry \"0.0.0.0\""},
        {"tno)", "no", 4, "Invalid entry \"no\""},
        {"kb", "kx%n", 3, "Invalid character x\nb was expected after \"k\""},
        {"A(1,9)&ky", "kz", 3, "Invalid character z\ny was expected after \"k\""},
        {"A(0,0)" + MakeSet(full + "_"), "a-_", 3, "Invalid character '_'" + text + "012..9" + full + "\""},
        {"/A(1,255)+-+_+/", "tmp", 3, ""}, // a literal at the first character tells nothing
    };
    for (Case &c : cases) {
        ChildEnd end = RunForked(
            [&c] {
                OpenMenuTexts();
                snprintf(LineBuf, LINEBUF_SIZE, "%s", c.entry.c_str()); // which the answer overwrites
                int code = ValidateEntry(LineBuf, c.format.c_str());
                char rest[8];
                fprintf(stderr, "%i, then %s", code, Gets(rest, sizeof rest));
            },
            "first\nsecond\n");
        EXPECT_EQ(end.err, std::to_string(c.code) + (c.message.empty() ? ", then first" : ", then second"));
        EXPECT_EQ(end.out, c.message + (c.message.empty() ? "" : Return)) << c.format << " " << c.entry;
    }
}

TEST(MenuEntry, ChecksLengthThenDigitsAndNames) {
    ChildEnd end = RunForked(
        [] {
            OpenMenuTexts();
            for (const char *text : {"a", "1a", "12"}) printf("|%i", ValidateEntryTty(text, "(2,3)"));
            printf("|%i%i", TestName("a-b_9"), TestName("a%"));
        },
        "\n\n");
    EXPECT_EQ(end.out, std::string("This entry must have 2 to 3 characters.\n") + Return +
                           "|2Invalid digit:  a\n" + Return +
                           "|3|0\n'%' is not a valid name character. \nOnly alphanumeric character, "
                           "'-', and '_' are valid: \n\nPress <Return> to continue |10");
}

// The token scanner in its four forms, lists of words with their sort, and the searches in texts.
#include "common/Token.h"

#include <algorithm>
#include <cstring>
#include <random>
#include <string>
#include <strings.h>
#include <vector>

#include <gtest/gtest.h>

#include "common/MemMgr.h"

using Words = std::vector<std::string>;

// ---- the scanner

static Words ScanAll(const char *text, const char *delims) {
    Words words;
    for (char *token = GetToken(text, delims); token; token = GetToken(nullptr, delims))
        words.push_back(token);
    return words;
}

static Words ScanAllD(const char *text, const char *delims) {
    Words words;
    char *position = nullptr, buffer[TOKEN_SIZE];
    for (char *token = GetTokenD(text, delims, &position, buffer); token;
         token = GetTokenD(nullptr, delims, &position, buffer))
        words.push_back(token);
    return words;
}

static Words ScanAllParse(std::string text, const char *delims) {
    Words words;
    for (char *token = GetTokenParse(text.data(), delims); token; token = GetTokenParse(nullptr, delims))
        words.push_back(token);
    return words;
}

static Words SplitAll(std::string text, const char *delims) {
    char *slots[8];
    int count = ParseStr(text.data(), delims, slots, 8);
    return Words(slots, slots + count);
}

TEST(Scan, SplitsTexts) {
    struct Case {
        const char *name, *text, *delims;
        Words tokens, parsed, split; // GetToken and GetTokenD; GetTokenParse; ParseStr
        char del;                    // what the last call leaves
    };
    static const Case cases[] = {
        {"plain", "a,b", ",", {"a", "b"}, {"a", "b"}, {"a", "b"}, '\0'},
        {"run of delimiters", ",,a,,b,", ",", {"a", "b"}, {"a", "b"}, {"a", "b"}, '\0'},
        {"only delimiters", ",;,", ",;", {}, {}, {}, ','},
        {"empty", "", ",", {}, {}, {}, '\0'},
        {"no delimiter set", "a,b", nullptr, {"a,b"}, {"a,b"}, {"a,b"}, '\0'},
        {"escaped delimiter", "a\\,b,c", ",", {"a,b", "c"}, {"a\\,b", "c"}, {"a\\", "b", "c"}, '\0'},
        {"leading escape", "\\,,b", ",", {",", "b"}, {"\\,", "b"}, {"\\", "b"}, '\0'},
        {"control escapes",
         "\\n\\r\\t\\q\\\\",
         ",",
         {"\n\r\tq\\"},
         {"\\n\\r\\t\\q\\\\"},
         {"\\n\\r\\t\\q\\\\"},
         0},
        {"backslash at the end", "ab\\", ",", {"ab"}, {"ab\\"}, {"ab\\"}, '\0'},
        {"nothing but a backslash", "\\", ",", {}, {"\\"}, {"\\"}, '\0'},
        {"bytes above 127", "\xb6x\xb6y", "\xb6", {"x", "y"}, {"x", "y"}, {"x", "y"}, '\0'},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(ScanAll(c.text, c.delims), c.tokens) << c.name;
        EXPECT_EQ(chTokenDel, c.del) << c.name;
        EXPECT_EQ(ScanAllD(c.text, c.delims), c.tokens) << c.name;
        EXPECT_EQ(chTokenDel, c.del) << c.name;
        EXPECT_EQ(ScanAllParse(c.text, c.delims), c.parsed) << c.name;
        EXPECT_EQ(chTokenDel, c.del) << c.name;
        EXPECT_EQ(SplitAll(c.text, c.delims), c.split) << c.name;
    }
}

TEST(Scan, TellsTheDelimiter) {
    EXPECT_STREQ(GetToken("a,,b,,", ","), "a");
    EXPECT_EQ(chTokenDel, ',');
    EXPECT_STREQ(GetToken(nullptr, ","), "b");
    EXPECT_EQ(GetToken(nullptr, ","), nullptr);
    EXPECT_EQ(chTokenDel, ',') << "the one that was passed on the way to the end";
    EXPECT_EQ(GetToken(nullptr, ","), nullptr);
    EXPECT_EQ(chTokenDel, '\0');
}

TEST(Scan, ChangesDelimitersWithinATextAndNests) {
    SetTokenBuf("name: the rest, of it\nnext");
    EXPECT_STREQ(GetToken(nullptr, ":"), "name");
    EXPECT_STREQ(szTokenIn, " the rest, of it\nnext");
    char *place = GetTokenBufInput();
    EXPECT_STREQ(GetToken("other", ","), "other");
    SetTokenBuf(place);
    EXPECT_EQ(GetTokenCount(nullptr, ","), 2);
    EXPECT_STREQ(GetToken(nullptr, "\n"), " the rest, of it");
    EXPECT_EQ(GetTokenCount("a,b,c", ","), 3);
    EXPECT_STREQ(GetTokenBuf, " the rest, of it") << "counting leaves no trace";
    EXPECT_EQ(chTokenDel, '\n');
    EXPECT_STREQ(GetToken(nullptr, "\n"), "next");
    SetTokenBuf(nullptr);
    EXPECT_EQ(GetToken(nullptr, ","), nullptr) << "before any text";
    EXPECT_EQ(GetTokenParse(nullptr, ","), nullptr);
    EXPECT_EQ(GetTokenCount(nullptr, ","), 0);
}

TEST(Scan, KeepsAnOuterScanApart) {
    char *position = nullptr, buffer[TOKEN_SIZE];
    EXPECT_STREQ(GetToken("a b", " "), "a");
    EXPECT_STREQ(GetTokenD("x;y", ";", &position, buffer), "x");
    EXPECT_EQ(chTokenDel, ';');
    EXPECT_STREQ(GetTokenBuf, "a");
    EXPECT_STREQ(GetToken(nullptr, " "), "b");
    EXPECT_STREQ(GetTokenD(nullptr, ";", &position, buffer), "y");
    EXPECT_STREQ(position, "");
}

// A token that a line feed ends is given up; the first token of the next line follows. A line feed in front
// of a token is passed like any other delimiter.
TEST(Scan, EndsLinesInLineMode) {
    std::string text = "a b\nc d\n\ne";
    char *position = text.data(), buffer[TOKEN_SIZE];
    SetTokenBuf(text.c_str());
    static const char *const words[] = {"a", nullptr, "c", nullptr, "e", nullptr};
    for (const char *wanted : words) {
        EXPECT_STREQ(GetToken(pTokenLine, " \n"), wanted);
        EXPECT_STREQ(GetTokenD(pTokenLine, " \n", &position, buffer), wanted);
        EXPECT_EQ(position, szIn);
        if (!wanted && *szIn) {
            EXPECT_STREQ(szTokenIn, szIn - 2) << "only a call that ends normally moves the copy";
        }
    }
    SetTokenBuf(text.data());
    EXPECT_STREQ(GetTokenParse(pTokenLine, " \n"), "a");
    EXPECT_EQ(GetTokenParse(pTokenLine, " \n"), nullptr);
    EXPECT_STREQ(szTokenIn, "b");
    EXPECT_STREQ(GetTokenParse(nullptr, " \n"), "c");
}

TEST(Scan, SwallowsTheRestOfALongToken) {
    std::string longText(300, 'x'), text = longText + ",y";
    EXPECT_EQ(ScanAll(text.c_str(), ","), (Words{longText.substr(0, TOKEN_SIZE - 1), "y"}));
    EXPECT_EQ(ScanAllD(text.c_str(), ","), (Words{longText.substr(0, TOKEN_SIZE - 1), "y"}));
    EXPECT_EQ(ScanAllParse(text, ","), (Words{longText, "y"}));
    EXPECT_EQ(ScanAll(longText.substr(0, 127).c_str(), ","), Words{longText.substr(0, 127)});
}

TEST(Scan, FindsTheNthToken) {
    EXPECT_STREQ(GetTokenN("a,b,c", ",", 2), "b");
    EXPECT_STREQ(GetTokenN("a,b,c", ",", 0), "a");
    EXPECT_EQ(GetTokenN("a,b,c", ",", 4), nullptr);
    EXPECT_EQ(GetTokenCount(",a,,b", ","), 2);
}

TEST(Scan, SplitsUpToTheCapacity) {
    char text[] = "a,b,c", *slots[3] = {text, text, text};
    EXPECT_EQ(ParseStr(text, ",", slots, 2), 2);
    EXPECT_STREQ(slots[1], "b");
    EXPECT_EQ(slots[2], text) << "beyond the capacity";
    EXPECT_EQ(ParseStr(nullptr, ",", slots, 2), 0);
    EXPECT_EQ(slots[0], nullptr);
    EXPECT_EQ(ParseStr(text, ",", slots, 0), 0);
}

// ---- lists of words

TEST(Words, AreFoundByPosition) {
    struct Case {
        const char *token, *list;
        int plain, noCase;
    };
    std::string longToken(600, 't'), longList = "," + longToken + ",b", nearList = "," + longToken + "x,b";
    const Case cases[] = {
        {"b", ";a;b;", 2, 2},
        {"b", ";a;b", 2, 2},
        {"B", ";a;b", 0, 2},
        {"a", ";a", 1, 1},
        {"a", ";ab;ca;", 0, 0},
        {"c", ";a;b", 0, 0},
        {"", ";a;b;", 3, 3},
        {"", ";a;;b", 2, 2},
        {"", ";a;b", 0, 0},
        {"", "", 0, 0},
        {"a", "", 0, 0},
        {nullptr, ";a", 0, 0},
        {"a", nullptr, 0, 0},
        {"a;b", ";x;a;b;", 2, 2},
        {"a", ";", 0, 0},
        {".", ";.;..;", 1, 1},
        {"-tty", ",update,-tty,", 2, 2},
        {longToken.c_str(), longList.c_str(), 1, 1},
        {longToken.c_str(), nearList.c_str(), 0, 0},
    };
    for (const Case &c : cases) {
        const char *token = c.token ? c.token : "(null)", *list = c.list ? c.list : "(null)";
        EXPECT_EQ(FindToken(c.token, c.list), c.plain) << token << " in " << list;
        EXPECT_EQ(FindTokenC(c.token, c.list), c.noCase) << token << " in " << list;
    }
}

TEST(Words, AreFoundInFields) {
    EXPECT_EQ(FindTokenWithDelim("a,b,c", "a", ','), 1);
    EXPECT_EQ(FindTokenWithDelim("a,,c", "c", ','), 3) << "an empty field counts";
    EXPECT_EQ(FindTokenWithDelim("ab,b", "b", ','), 2);
    EXPECT_EQ(FindTokenWithDelim("a,b", "B", ','), 0);
    EXPECT_EQ(FindTokenWithDelim("a,b", "a,b", ';'), 1);
    EXPECT_EQ(FindTokenWithDelim(nullptr, "a", ','), 0);
    EXPECT_EQ(FindTokenWithDelim("a", nullptr, ','), 0);
}

// A list in an array that ends with the spare byte, so that the sanitizer sees what is written behind.
static std::string Sorted(const std::string &list, char delim, int flNoCase) {
    std::vector<char> text(list.begin(), list.end());
    text.resize(list.size() + 2);
    SortTokens(text.data(), delim, flNoCase);
    return text.data();
}

TEST(Words, AreSorted) {
    struct Case {
        const char *name, *list, *plain, *noCase;
    };
    static const Case cases[] = {
        {"simple", "b,a,c", "a,b,c", "a,b,c"},
        {"last word takes a delimiter", "c,a", "a,c,", "a,c,"},
        {"leading delimiters stay", ",,b,a,", ",,a,b,", ",,a,b,"},
        {"case", "b,A,a,B,", "A,B,a,b,", "A,a,b,B,"},
        {"equal words keep their order", "b,a,B,A,b,", "A,B,a,b,b,", "a,A,b,B,b,"},
        {"a last word without delimiter stays behind its extensions", ",q2,q10,q1", ",q10,q1,q2,",
         ",q10,q1,q2,"},
        {"the same with nothing between", ",abc,ab", ",abc,ab", ",abc,ab"},
        {"with a delimiter it goes in front", ",abc,ab,", ",ab,abc,", ",ab,abc,"},
        {"escaped delimiter", "b\\,x,a\\,", "a\\,,b\\,x,", "a\\,,b\\,x,"},
        {"empty words inside", "b,,a,", ",a,b,", ",a,b,"},
        {"one word", "a", "a", "a"},
        {"empty", "", "", ""},
        {"only delimiters", ",,", ",,", ",,"},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(Sorted(c.list, ',', 0), c.plain) << c.name;
        EXPECT_EQ(Sorted(c.list, ',', 1), c.noCase) << c.name;
    }
    EXPECT_EQ(Sorted("b a c ", ' ', 0), "a b c ");
    EXPECT_EQ(Sorted("bbAbBbbBAb", 'b', 1), "bbAbBAbBbb") << "a delimiter that equals a letter without case";
    SortTokens(nullptr, ',', 0);
}

// The sort as it is defined: pick the smallest, compared over the later word's length, and cut it out.
static std::string SelectionSort(std::string list, char delim, bool flNoCase) {
    auto compare = flNoCase ? strncasecmp : strncmp;
    size_t start = std::min(list.find_first_not_of(delim), list.size());
    std::string sorted = list.substr(0, start), copy = list.substr(start);
    while (!copy.empty()) {
        size_t best = 0, bestEnd = 0, end;
        for (size_t i = 0; i < copy.size(); i = end) {
            const char *hit = StrChr(copy.c_str() + i, delim);
            end = hit ? static_cast<size_t>(hit - copy.c_str()) + 1 : copy.size();
            if (bestEnd == 0 || compare(copy.c_str() + i, copy.c_str() + best, end - i) < 0)
                best = i, bestEnd = end;
        }
        bool flDelim = StrChr(copy.c_str() + best, delim) != nullptr;
        sorted += copy.substr(best, bestEnd - best);
        copy.erase(best, bestEnd - best);
        if (!flDelim && !copy.empty()) sorted += delim;
    }
    return sorted;
}

TEST(Words, AreSortedAsASelectionSortWould) {
    static const char letters[] = "abAB,,,\\x1", delims[] = ",;bx\\";
    std::mt19937 random(7);
    for (int round = 0; round < 20000; round++) {
        std::string list(random() % 24, ' ');
        for (char &ch : list) ch = letters[random() % (sizeof(letters) - 1)];
        char delim = delims[random() % 3 ? 0 : random() % 5];
        bool flNoCase = random() % 2;
        ASSERT_EQ(Sorted(list, delim, flNoCase), SelectionSort(list, delim, flNoCase))
            << list << " by " << delim << (flNoCase ? " without case" : "");
    }
    EXPECT_EQ(pMemB, nullptr) << "the copy is given back";
}

// ---- searches

static long At(const char *text, const char *hit) {
    return hit ? hit - text : -1;
}

TEST(Text, IsSearched) {
    struct Case {
        const char *text, *pattern;
        long plain, noCase;
    };
    static const Case cases[] = {{"xabab", "ab", 1, 1}, {"xABab", "ab", 3, 1}, {"ab", "abc", -1, -1},
                                 {"ab", "", -1, -1},    {"", "a", -1, -1},     {"", "", -1, -1},
                                 {"aab", "ab", 1, 1}};
    for (const Case &c : cases) {
        EXPECT_EQ(At(c.text, StrStr(c.text, c.pattern)), c.plain) << c.text << " " << c.pattern;
        EXPECT_EQ(At(c.text, StrCaseStr(c.text, c.pattern)), c.noCase) << c.text << " " << c.pattern;
    }
    EXPECT_EQ(StrStr(nullptr, "a"), nullptr);
    EXPECT_EQ(StrCaseStr("a", nullptr), nullptr);

    const char *text = "a\\,b,c\\";
    EXPECT_EQ(At(text, StrChr(text, ',')), 4);
    EXPECT_EQ(StrChr(text, 'x'), nullptr) << "the last backslash hides no more than itself";
    EXPECT_EQ(StrChr("", ','), nullptr);
    EXPECT_EQ(StrChr(nullptr, ','), nullptr);
    EXPECT_EQ(At(text, StrNChr(text, ',', 1)), 2) << "no escapes here";
    EXPECT_EQ(At(text, StrNChr(text, ',', 2)), 4);
    EXPECT_EQ(StrNChr(text, ',', 3), nullptr);
    EXPECT_EQ(StrNChr(text, ',', 0), nullptr);
    EXPECT_EQ(At("aaaa", StrNStr("aaaa", "aa", 3)), 2) << "hits may overlap";
    EXPECT_EQ(StrNStr("aaaa", "aa", 4), nullptr);
    EXPECT_EQ(StrNStr(nullptr, "aa", 1), nullptr);
}

TEST(Text, IsStripped) {
    char text[] = "a\tb\x01 c,\x7f\xb6.\n", slashes[] = "\\a\\\\b\\";
    EXPECT_STREQ(StripNonPrint(text), "ab c,.");
    EXPECT_STREQ(StripAllBackslashes(slashes), "ab");
    EXPECT_EQ(StripNonPrint(nullptr), nullptr);
    EXPECT_EQ(StripAllBackslashes(nullptr), nullptr);
    EXPECT_STREQ(SkipSpace(" \t\n\r\v\fa "), "a ");
    EXPECT_STREQ(SkipSpace("  "), "");
    EXPECT_EQ(SkipSpace(nullptr), nullptr);
    EXPECT_EQ(StrLen("abc"), 3);
    EXPECT_EQ(StrLen(nullptr), 0);
}

TEST(Value, IsCopiedAndConverted) {
    char target[5] = "....";
    SetVarContent(target, "abc", 3, 0);
    EXPECT_STREQ(target, "abc.");
    SetVarContent(target, "abc", 3, 1);
    EXPECT_STREQ(target, "cba.");
    EXPECT_EQ(MaxD(1.5, 2.5), 2.5);
    EXPECT_EQ(MaxD(2.5, 1.5), 2.5);

    struct Case {
        int from, to;
        float value, wanted;
    };
    static const Case cases[] = {
        {UNIT_INCH, UNIT_CM, 2, 5.08f},   {UNIT_INCH, UNIT_POINT, 0.5f, 36}, {UNIT_CM, UNIT_INCH, 2.54f, 1},
        {UNIT_CM, UNIT_POINT, 2.54f, 72}, {UNIT_POINT, UNIT_INCH, 36, 0.5f}, {UNIT_POINT, UNIT_CM, 72, 2.54f},
        {UNIT_CM, UNIT_CM, 3.3f, 3.3f},   {UNIT_INCH, 3, 3.3f, 3.3f},        {-1, UNIT_CM, 3.3f, 3.3f},
    };
    for (const Case &c : cases)
        EXPECT_FLOAT_EQ(CvtFloatFormat(c.value, c.from, c.to), c.wanted) << c.from << " to " << c.to;
}

// The token scanner in its forms, lists of words with their sort, and the searches in texts.
#include "common/Token.h"

#include "common/MemMgr.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <strings.h>
#include <vector>

using Words = std::vector<std::string>;

// ---- the scanner

static Words ScanAll(const char *text, const char *delims) {
    Words words;
    for (char *token = GetToken(text, delims); token; token = GetToken(nullptr, delims))
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
    char *slots[4] = {text.data(), text.data(), text.data(), text.data()};
    int count = ParseStr(text.data(), delims, slots, 3);
    EXPECT_EQ(slots[3], text.data()) << "beyond the capacity";
    return Words(slots, slots + count);
}

TEST(Scan, SplitsTexts) {
    const std::string x127(127, 'x'), x300(300, 'x');
    struct Case {
        std::string text;
        const char *delims;
        Words tokens, parsed, split; // GetToken; GetTokenParse; ParseStr with room for three
        char del;                    // what the last call leaves
    } cases[] = {
        {",,a,,b,", ",", {"a", "b"}, {"a", "b"}, {"a", "b"}, '\0'},
        {"a\\,b,c", ",", {"a,b", "c"}, {"a\\,b", "c"}, {"a\\", "b", "c"}, '\0'},
        {"\\n\\r\\t\\q\\\\", ",", {"\n\r\tq\\"}, {"\\n\\r\\t\\q\\\\"}, {"\\n\\r\\t\\q\\\\"}, '\0'},
        {"\\", ",", {}, {"\\"}, {"\\"}, '\0'},
        {"\xb6x\xb6y", "\xb6", {"x", "y"}, {"x", "y"}, {"x", "y"}, '\0'},
        {"a,b,c,d", ",", {"a", "b", "c", "d"}, {"a", "b", "c", "d"}, {"a", "b", "c"}, '\0'},
        {x300 + ",y", ",", {x127, "y"}, {x300, "y"}, {x300, "y"}, '\0'},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(ScanAll(c.text.c_str(), c.delims), c.tokens) << c.text;
        EXPECT_EQ(chTokenDel, c.del) << c.text;
        EXPECT_EQ(ScanAllParse(c.text, c.delims), c.parsed) << c.text;
        EXPECT_EQ(chTokenDel, c.del) << c.text;
        EXPECT_EQ(SplitAll(c.text, c.delims), c.split) << c.text;
    }
}

TEST(Scan, ChangesDelimitersWithinATextAndNests) {
    char *position = nullptr, buffer[TOKEN_SIZE];
    SetTokenBuf("name: the rest, of it\nnext");
    EXPECT_STREQ(GetToken(nullptr, ":"), "name");
    char *place = GetTokenBufInput();
    EXPECT_STREQ(GetTokenN("other,token", ",", 2), "token");
    SetTokenBuf(place);
    EXPECT_STREQ(GetToken(nullptr, "\n"), " the rest, of it");
    EXPECT_EQ(GetTokenCount(",a,,b,c", ","), 3);
    EXPECT_STREQ(GetTokenBuf, " the rest, of it") << "counting leaves no trace";
    EXPECT_EQ(chTokenDel, '\n');
    EXPECT_STREQ(GetTokenD("x;y", ";", &position, buffer), "x");
    EXPECT_EQ(chTokenDel, ';');
    EXPECT_STREQ(GetToken(nullptr, "\n"), "next");
    EXPECT_STREQ(GetTokenD(nullptr, ";", &position, buffer), "y");
}

// ---- lists of words

TEST(Words, AreFoundByPosition) {
    struct Case {
        const char *token, *list;
        int plain, noCase, fields; // fields: without the leading delimiter
    };
    static const Case cases[] = {
        {"b", ";a;b;", 2, 2, 2},     {"B", ";a;b", 0, 2, 0},
        {"a", ";ab;ca;", 0, 0, 0},   {"", ";a;b;", 3, 3, 3},
        {"", ";a;;b", 2, 2, 2},      {"", ";a;b", 0, 0, 0},
        {"a;b", ";x;a;b;", 2, 2, 2}, {"c", ";a;;c", 3, 3, 3},
        {".", ";..;.", 2, 2, 2},     {"-tty", ";update;-tty", 2, 2, 2},
        {"a", ";", 0, 0, 0},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(FindToken(c.token, c.list), c.plain) << c.token << " in " << c.list;
        EXPECT_EQ(FindTokenC(c.token, c.list), c.noCase) << c.token << " in " << c.list;
        EXPECT_EQ(FindTokenWithDelim(c.list + 1, c.token, ';'), c.fields) << c.token << " in " << c.list;
    }
    EXPECT_EQ(FindToken("a", "") + FindToken(nullptr, ";a") + FindTokenC("a", nullptr), 0);
}

// A list in an array that ends with the spare byte, so that the sanitizer sees what is written behind.
static std::string Sorted(const std::string &list, char delim, int flNoCase) {
    std::vector<char> text(list.begin(), list.end());
    text.resize(list.size() + 2);
    SortTokens(text.data(), delim, flNoCase);
    return text.data();
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
    EXPECT_EQ(Sorted(",b\\,x,B,a,b,B,c", ',', 1), ",a,B,b,B,b\\,x,c") << "equal words keep their order";
}

// ---- searches

TEST(Text, IsSearchedAndStripped) {
    struct Case {
        const char *text, *pattern;
        int plain, noCase, second; // places of StrStr, StrCaseStr, and StrNStr of 2
    };
    static const Case cases[] = {{"xaaa", "aa", 1, 1, 2},   {"xABab", "ab", 3, 1, -1},
                                 {"ab", "abc", -1, -1, -1}, {"ab", "", -1, -1, -1},
                                 {"", "", -1, -1, -1},      {"aab", "ab", 1, 1, -1}};
    for (const Case &c : cases) {
        auto at = [&c](const char *hit) { return hit ? static_cast<int>(hit - c.text) : -1; };
        EXPECT_EQ(at(StrStr(c.text, c.pattern)), c.plain) << c.text << " " << c.pattern;
        EXPECT_EQ(at(StrCaseStr(c.text, c.pattern)), c.noCase) << c.text << " " << c.pattern;
        EXPECT_EQ(at(StrNStr(c.text, c.pattern, 2)), c.second) << c.text << " " << c.pattern;
    }
    char text[] = "a\\,b,c\\", odd[] = "a\tb\x01 c,\x7f\xb6.\n";
    EXPECT_EQ(StrChr(text, ','), text + 4);
    EXPECT_EQ(StrChr(text, 'x'), nullptr) << "the last backslash hides no more than itself";
    EXPECT_EQ(StrNChr(text, ',', 1), text + 2) << "no escapes here";
    EXPECT_TRUE(!StrNChr(text, ',', 3) && !StrNChr(text, ',', 0));
    EXPECT_STREQ(StripAllBackslashes(text), "a,b,c");
    EXPECT_STREQ(StripNonPrint(odd), "ab c,.");
    EXPECT_FLOAT_EQ(CvtFloatFormat(2.54f, UNIT_CM, UNIT_POINT), 72);
    EXPECT_FLOAT_EQ(CvtFloatFormat(36, UNIT_POINT, UNIT_INCH), 0.5f);
}

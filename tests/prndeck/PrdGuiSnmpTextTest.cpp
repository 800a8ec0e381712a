// Printers' values as texts of the property sheet.
#include "prndeck/core/PrdGuiSnmpText.h"

#include "common/NlsUtils.h"
#include "tests/lib/AppTool.h"

#include <gtest/gtest.h>

// The words of the catalogue, which stand for themselves here.
static const AppTool *Translate() {
    static AppTool tool;
    Records records;
    for (const auto &[number, text] : {std::pair(34, "0.0001 inch"),
                                       {35, "um"},
                                       {36, "sheets"},
                                       {37, "feet"},
                                       {38, "m"},
                                       {39, "N/A"},
                                       {40, "Some"},
                                       {41, "Other"},
                                       {42, "Unknown"},
                                       {46, "0.001 oz"},
                                       {47, "0.1 g"},
                                       {48, "0.01 fl oz"},
                                       {49, "0.1 ml"}})
        records.push_back({"20_" + std::to_string(number), std::string(text) + '\0'});
    tool.WriteDb("en_US/CoreString", records);
    pNLSLang = const_cast<char *>("en_US");
    pDrvCoreDB = NlsOpenDB("CoreString", 0);
    TranslateSNMPMessages();
    return &tool;
}

class SnmpText : public testing::Test {
    void SetUp() override {
        static const AppTool *tool = Translate();
        ASSERT_TRUE(tool);
    }
};

TEST_F(SnmpText, NumbersWithAMeaning) {
    struct {
        const char *value, *level, *maximum, *unit;
    } cases[] = {
        {"-3", "Some", "N/A", "N/A"},
        {"-2", "Unknown", "N/A", "N/A"},
        {"-1", "Other", "N/A", "N/A"},
        {"-4", "Unknown", "N/A", "N/A"},
        {"0", "0", "0", "N/A"},
        {"3", "3", "3", "0.0001 inch"},
        {"4", "4", "4", "um"},
        {"7", "7", "7", "N/A"},
        {"8", "8", "8", "sheets"},
        {"12", "12", "12", "0.001 oz"},
        {"13", "13", "13", "0.1 g"},
        {"14", "14", "14", "0.01 fl oz"},
        {"15", "15", "15", "0.1 ml"},
        {"16", "16", "16", "feet"},
        {"17", "17", "17", "m"},
        {"18", "18", "18", "N/A"},
        {"", "", "", "N/A"},
        {"12 x", "12 x", "12 x", "0.001 oz"},
        {"4294967295", "4294967295", "4294967295", "N/A"},
    };
    for (const auto &c : cases) {
        EXPECT_STREQ(CovertSnmpCapacityToValue(c.value), c.level) << c.value;
        EXPECT_STREQ(CovertSnmpMaximumToValue(c.value), c.maximum) << c.value;
        EXPECT_STREQ(CovertSnmpUnitToName(c.value), c.unit) << c.value;
    }
}

TEST_F(SnmpText, PaperSizes) {
    struct {
        int x, y, unit;
        const char *want;
    } cases[] = {
        {85000, 110000, 3, "Letter"},
        {110000, 85000, 3, "Letter"},
        {85049, 110000, 3, "Letter"},
        {84951, 109951, 3, "Letter"},
        {85050, 110000, 3, "Unknown"},
        {110000, 85050, 3, "Unknown"},
        {210000, 297000, 4, "A4"},
        {297049, 209951, 4, "A4"},
        {210000, 297000, 3, "Unknown"},
        {210000, 297000, 99, "A4"},
        {0, 0, 4, "Unknown"},
        {-2, -2, 4, "Unknown"},
        {216000, 279000, 4, "Letter"},
        {38700, 75000, 3, "Monarch"},
        {38750, 75000, 3, "Monarch"},
        {257000, 127000, 4, "B6-JIS"},
        {INT32_MIN, INT32_MAX, 3, "Unknown"},
    };
    for (const auto &c : cases) EXPECT_STREQ(FindPaperSize(c.x, c.y, c.unit), c.want) << c.x << "x" << c.y;
}

TEST_F(SnmpText, LabelsOfChannels) {
    struct {
        const char *version;
        int type;
        const char *want;
    } cases[] = {
        {"", 8, "Other"},
        {"Unknown", 8, "LPD Server"},
        {"UNKNOWN", 40, "Other"},
        {" ", 34, "USB"},
        {" ", 0, "Other"},
        {"unknown", -1, "Other"},
        {"  ", 8, "  "},
        {"LPR/1", 8, "LPR/1"},
        {"12345678901234567890123456789012345", 8, "12345678901234567890123456789012345"},
        {"123456789012345678901234567890123456", 8, "123456789012345678901234567890123..."},
        {"1234567890123456789012345678901234567890", 8, "123456789012345678901234567890123..."},
        {"B\xC3\xBCro", 8, "B\xFCro"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(GetChannelLabel(c.version, c.type), std::string(36 - strlen(c.want), ' ') + c.want);
}

TEST_F(SnmpText, LettersOutsideAscii) {
    struct {
        const char *text, *shown, *clean, *edit;
        bool utf8;
    } cases[] = {
        {"Tray 1", "Tray 1", "Tray 1", "Tray 1", true},
        {"B\xC3\xBCro 20\xC2\xB0", "B\xFCro 20\xB0", "Bro 20", "B\xFCro 20\xB0", true},
        {"B\xFCro", "B\xFCro", "Bro", "B\xFCro", false},
        {"B\xC3\xBCro \xFC", "B\xC3\xBCro \xFC", "Bro ", "B\xC3\xBCro \xFC", false},
        {"cut \xC3", "cut \xC3", "cut ", "cut \xC3", false},
        // letters that the fonts lack
        {"\xE7\xB4\x99 \xC3\xBC", "? \xFC", "? ", "\xE7\xB4\x99 \xC3\xBC", true},
        {"5 \xE2\x82\xAC \xF0\x9F\x96\xA8", "5 ? ?", "5 ? ?", "5 \xE2\x82\xAC \xF0\x9F\x96\xA8", true},
        {"\xC0\x80 overlong", "\xC0\x80 overlong", " overlong", "\xC0\x80 overlong", false},
        {"\xED\xA0\x80", "\xED\xA0\x80", "", "\xED\xA0\x80", false}, // half a pair
        {"line\r\n\tend\x7F", "line\r\n\tend\x7F", "lineend", "line\r\n\tend\x7F", true},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(GetPrinterText(c.text), c.shown);
        EXPECT_EQ(CleanPrinterText(c.shown), c.clean) << c.text;
        EXPECT_EQ(IsUtf8Text(c.text), c.utf8) << c.text;
        EXPECT_EQ(GetEditText(c.text), c.edit);
        EXPECT_EQ(PutPrinterText(c.edit, strcmp(c.edit, c.text) != 0), c.text);
    }
}

TEST_F(SnmpText, LongLinesAreBrokenAndMadeWholeAgain) {
    const std::string line(119, 'x');
    struct {
        std::string text, want;
    } cases[] = {
        {"", ""},
        {line, line},
        {line + "y", line + "\ny"},
        {line + line, line + "\n" + line},
        {line + line + "z", line + "\n" + line + "\nz"},
        {"ab\n" + line + "y", "ab\n" + line + "\ny"},
        {"a\nb\n", "a\nb\n"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(BreakLines(c.text), c.want);
        EXPECT_EQ(JoinLines(BreakLines(c.text), false), c.text);
    }
}

// A column without a variable moves the variables of those behind it.
TEST_F(SnmpText, ColumnsByTheirFormats) {
    static constexpr const char *Oids[] = {"1.1.1", "", "1.1.2", "1.1.3", "1.1.4", "1.1.5", nullptr};
    SnmpTableDesc table = {"x", Oids, 6, 1, "sxcmup"};
    table.PaperX = 0;
    table.PaperY = 1;
    table.PaperUnit = 2;
    SnmpPackage package;
    ASSERT_EQ(
        SnmpSetup(&package, PKG_INIT, PKG_EMPTY_LIST, "1.1.1", "1.1.2", "1.1.3", "1.1.4", "1.1.5", nullptr),
        0);
    char texts[][16] = {"Fach\t1\xFC", "-3", "-2", "8", "4"};
    InitRecVars(&package);
    for (int i = 0; i < 5; i++) package.Vars[i].RecText = texts[i];
    package.Vars[0].RecValue = 297000;
    package.Vars[1].RecValue = 210000;
    package.Vars[2].RecValue = 4;
    std::string shown;
    for (int i = 0; i < 6; i++) shown += ProcessDataFormat(table.Formats[i], &package, &table, i) + "|";
    EXPECT_EQ(shown, "Fach1||Some|N/A|sheets|A4|");
    EXPECT_STREQ(texts[0], "Fach\t1\xFC") << "what came stays";
    EXPECT_EQ(GetColumnVar(&table, &package, 1), nullptr);
}

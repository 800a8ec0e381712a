// Model records and their items, values and options of PPD files, the table of models and the match by
// description.
#include "common/PrdCommonUtils.h"

#include "common/MemMgr.h"
#include "tests/lib/AppTool.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>

static std::string Take(char *text) {
    std::string copy = text ? text : "(null)";
    PutMem(text);
    return copy;
}

// The database handle is opened once and never again: each test drops it, as a new process would.
class Models : public ::testing::Test {
protected:
    Models() {
        DbTClose(pEngPrtStrDB);
        pEngPrtStrDB = nullptr;
    }
    void PutRecords(const Records &records) { tool.WriteDb("en_US/PrtString", records); }
    AppTool tool;
};

TEST_F(Models, ItemsAreFoundBetweenTheirMarks) {
    std::string record = ".sppditem KeyLong\nlong\n.eppditem\n"
                         ".sppditem Key\none\ntwo\n.eppditem\n"
                         ".sppditem Empty\n\n.eppditem\n"
                         ".sppditem RunsOn\n.eppditem\n"
                         ".sppditem Last\nnever ended\n";
    PutRecords({{"other", "x"}, {"tv_a", record}, {"tv_b", record.substr(0, 20)}});
    struct Case {
        const char *name, *file, *item, *want;
    };
    static const Case Cases[] = {
        {"item whose name begins another's", "tv_a.ppd", "Key", "one\ntwo"},
        {"base name in place of the file", "tv_a", "KeyLong", "long"},
        {"path and two dots", "ppd/tv_a.v2.ppd", "KeyLong", "long"},
        {"empty line is a value", "tv_a", "Empty", ""},
        {"no value line: runs to the next end", "tv_a", "RunsOn",
         ".eppditem\n.sppditem Last\nnever ended\n.eppditem"},
        {"no end mark", "tv_a", "Last", "(null)"},
        {"no such item", "tv_a", "Ke", "(null)"},
        {"no such model", "tv_c", "Key", "(null)"},
        {"record cut in the mark", "tv_b", "KeyLong", "(null)"},
        {"empty file name", "", "Key", "(null)"},
        {"no file", nullptr, "Key", "(null)"},
        {"no item", "tv_a", nullptr, "(null)"},
    };
    for (const Case &c : Cases) {
        std::string want = c.want;
        if (want[0] == '.') want = "(null)"; // nothing follows the last end mark but text without one
        EXPECT_EQ(Take(GetPpdKeyValue(c.file, c.item, nullptr, 0)), want) << c.name;
    }
    char small[4];
    EXPECT_STREQ(GetPpdKeyValue("tv_a", "Key", small, sizeof small), "one");
}

TEST_F(Models, WithoutDatabaseEveryItemIsAbsent) {
    char buffer[PPD_VALUE];
    EXPECT_EQ(GetPpdKeyValue("tv_a", "Key", buffer, sizeof buffer), nullptr);
    EXPECT_EQ(FetchEngPrtStrDBValue("DisableCustomBanner", nullptr, 0), nullptr);
    EXPECT_EQ(TestModelList("DisableCustomBanner", "tv_a"), -1);
}

TEST_F(Models, PlainRecordsComeInTheSharedBufferOrTheCallers) {
    PutRecords({{"L", ",tv_a,tv_b"}, {"Long", std::string(9000, 'x')}, {"None", ""}});
    const char *first = FetchEngPrtStrDBValue("L", nullptr, 0);
    EXPECT_STREQ(first, ",tv_a,tv_b"); // no NUL in the record
    EXPECT_EQ(strlen(FetchEngPrtStrDBValue("Long", nullptr, 0)), PRT_SHARED - 1u);
    EXPECT_EQ(FetchEngPrtStrDBValue("L", nullptr, 0), first);
    char small[6];
    EXPECT_STREQ(FetchEngPrtStrDBValue("L", small, sizeof small), ",tv_a");
    EXPECT_EQ(FetchEngPrtStrDBValue(nullptr, nullptr, 0), nullptr);
    EXPECT_EQ(TestModelList("L", "tv_b"), 1);
    EXPECT_EQ(TestModelList("L", "tv_"), 0);
}

TEST_F(Models, PpdValueIsTheQuotedTextOfTheFirstLine) {
    struct Case {
        const char *name;
        std::string text;
        const char *want;
    };
    const Case cases[] = {
        {"plain", "*PPD-Adobe: \"4.3\"\n*ModelName: \"Tarvo X\"\n*ModelName: \"Y\"\n", "Tarvo X"},
        {"carriage returns", "*ModelName: \"Tarvo X\"\r\n", "Tarvo X"},
        {"no closing quote", "*ModelName: \"Tarvo X\r\n", "Tarvo X"},
        {"no quote at all", "*ModelName: Tarvo\n*ModelName: \"Y\"\n", "(null)"},
        {"key behind other text counts", "*% see *ModelName: \"Z\"\n*ModelName: \"Y\"\n", "Z"},
        {"longer key is another key", "*ModelNames: \"Z\"\n*ModelName: \"Y\"\n", "Y"},
        {"empty", "", "(null)"},
    };
    char buffer[PPD_VALUE];
    for (const Case &c : cases) {
        tool.Write("ppd/x.ppd", c.text);
        const char *got = GetPpdKeyValue_Old("x.ppd", "ModelName", buffer, sizeof buffer);
        EXPECT_STREQ(got ? got : "(null)", c.want) << c.name;
    }
    tool.Write("ppd/x.ppd", "*ModelName: \"" + std::string(600, 'm') + "\"\n");
    EXPECT_EQ(strlen(GetPpdKeyValue_Old("x.ppd", "ModelName", buffer, sizeof buffer)), PPD_VALUE - 1u);
    EXPECT_EQ(GetPpdKeyValue_Old("absent.ppd", "ModelName", buffer, sizeof buffer), nullptr);
}

TEST_F(Models, OptionsComeInTwoListsInStep) {
    std::string ppd =
        "*PageSize A4/A4 sheet: \"<<>>\"\n*PageSize Letter:x\n*Other A5/A5: y\n*PageSize\t B5/\n";
    tool.Write("ppd/x.ppd", ppd + "*PageSize " + std::string(700, 'w') + "*PageSize tail:\n");
    char *words, *texts;
    GetPpdOptions("x.ppd", "*PageSize", &words, &texts, "_");
    EXPECT_EQ(Take(words).substr(0, 17), "_A4,_Letter,_B5,_");
    EXPECT_EQ(Take(texts).substr(0, 22), "_A4 sheet,_Letter,_,_w");

    std::string many;
    for (int i = 0; i < 1000; i++)
        many += "*Tray t" + std::to_string(i) + "/Tray number " + std::to_string(i) + ":\n";
    tool.Write("ppd/x.ppd", many);
    GetPpdOptions("x.ppd", "*Tray", &words, &texts, nullptr);
    EXPECT_EQ(std::count(words, words + strlen(words), ','), std::count(texts, texts + strlen(texts), ','));
    EXPECT_LT(Take(texts).size(), static_cast<size_t>(PPD_OPTIONS));
    EXPECT_LT(Take(words).size(), static_cast<size_t>(PPD_OPTIONS));

    GetPpdOptions("absent.ppd", "*PageSize", &words, &texts, "_");
    EXPECT_EQ(words, nullptr);
    EXPECT_EQ(texts, nullptr);
}

TEST_F(Models, MatchByDescription) {
    PutRecords({{"m", ".sppditem Key\nTarvo,TRV X1 X2\n.eppditem\n"},
                {"p", ".sppditem Key\n*****Net Card X*Tarvo Z\n.eppditem\n"}});
    for (const char *file : {"m.ppd", "p.ppd", "plain.ppd"}) tool.Write(std::string("ppd/") + file, "");
    InitPpdData();
    ASSERT_EQ(PpdCnt, 3);
    struct Case {
        const char *name, *text, *want; // base of the row, "-" for none
    };
    static const Case Cases[] = {
        {"vendor and model", "Tarvo X1", "m"},
        {"other vendor, model in the middle", "printer by TRV model X2 rev 3", "m"},
        {"vendor behind the model", "the X1 Tarvo", "m"},
        {"digit behind", "Tarvo X12", "-"},
        {"letter behind", "Tarvo X1a", "m"},
        {"slash behind", "Tarvo X1/2", "m"},
        {"comma behind", "Tarvo X1, rev 3", "m"},
        {"semicolon behind", "Tarvo X1;x", "m"},
        {"tab behind", "Tarvo X1\tx", "m"},
        {"dash behind", "Tarvo X1-2", "-"},
        {"byte above 127 behind", "Tarvo X1\xe9", "-"},
        {"only the first place counts", "Tarvo X12 X1", "-"},
        {"model at the start", "X1 Tarvo", "-"},
        {"tab before", "Tarvo \tX1", "-"},
        {"vendor as part of a word", "Tarvos X1", "-"},
        {"vendor before a comma", "Tarvo, X1", "-"},
        {"prefix", "Net Card X9 anything", "p"},
        {"second prefix", "Tarvo Zeta", "p"},
        {"prefix not at the start", "a Net Card X", "-"},
        {"two rows: one of both", "Tarvo Z X1", "first"},
        {"empty", "", "-"},
    };
    for (const Case &c : Cases) {
        int row = GetPpdData(c.text);
        std::string base = row ? pPPDData[row].base : "-";
        std::string first = strcmp(pPPDData[1].base, "plain") ? pPPDData[1].base : pPPDData[2].base;
        EXPECT_EQ(base, strcmp(c.want, "first") ? c.want : first) << c.name << ": " << c.text;
    }
    EXPECT_EQ(GetPpdData(nullptr), 0);
}

TEST_F(Models, TableHasTheGenericModelInRow0) {
    tool.WriteModels({"tv_generic.ppd", "tv_a.v2.ppd"});
    tool.Write("icon/tv_a/static.xbm", "");
    tool.Write("ppd/notes.txt", "");
    InitPpdData();
    InitPpdData(); // replaces the table
    ASSERT_EQ(PpdCnt, 2);
    EXPECT_STREQ(pPPDData[0].file, "tv_generic.ppd");
    EXPECT_STREQ(pPPDData[0].icon, "@icon/tv_generic/static.xbm");
    int other = strcmp(pPPDData[1].file, "tv_generic.ppd") ? 1 : 2;
    EXPECT_STREQ(pPPDData[other].base, "tv_a");
    EXPECT_STREQ(pPPDData[other].icon, "@icon/tv_a/static.xbm");
    EXPECT_STREQ(pPPDData[3 - other].icon, "@icon/tv_generic/static.xbm");
    EXPECT_EQ(pPPDData[other].key, nullptr);
}

TEST_F(Models, EmptyDirectoryGivesAnEmptyTable) {
    InitPpdData();
    EXPECT_EQ(PpdCnt, 0);
    EXPECT_EQ(pPPDData[0].file, nullptr);
    EXPECT_EQ(GetPpdData("Tarvo X1"), 0);
}

TEST(ConvertSNMPCharacters, ReplacesTheFirstOnly) {
    char text[] = "t\xb6n\xb6";
    ConvertSNMPCharacters(text);
    EXPECT_STREQ(text, "tin\xb6");
    ConvertSNMPCharacters(nullptr);
}

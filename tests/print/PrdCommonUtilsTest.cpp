// Items of model records, values and options of PPD files, and the match of models by description.
#include "print/PrdCommonUtils.h"

#include "common/MemMgr.h"
#include "tests/lib/AppTool.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <tuple>

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
                         ".sppditem Last\nnever ended\n";
    PutRecords({{"other", "x"}, {"tv_a", record}, {"tv_b", record.substr(0, 20)}});
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {"tv_a.ppd", "Key", "one\ntwo"}, // its name begins another's
        {"ppd/tv_a.v2.ppd", "KeyLong", "long"},
        {"tv_a", "Empty", ""},
        {"tv_a", "Last", "(null)"},
        {"tv_a", "Ke", "(null)"},
        {"tv_c", "Key", "(null)"},
        {"tv_b", "KeyLong", "(null)"}, // record cut in the mark
        {"", "Key", "(null)"},
        {nullptr, "Key", "(null)"}};
    for (auto [file, item, want] : cases)
        EXPECT_EQ(TakeText(GetPpdKeyValue(file, item, nullptr, 0)), want) << (item ? item : "null");
    char small[4];
    EXPECT_STREQ(GetPpdKeyValue("tv_a", "Key", small, sizeof small), "one");
}

TEST_F(Models, WithoutDatabaseEveryItemIsAbsent) {
    char buffer[PPD_VALUE];
    EXPECT_EQ(GetPpdKeyValue("tv_a", "Key", buffer, sizeof buffer), nullptr);
    EXPECT_EQ(FetchEngPrtStrDBValue("DisableCustomBanner", nullptr, 0), nullptr);
    EXPECT_EQ(TestModelList("DisableCustomBanner", "tv_a"), -1);
}

TEST_F(Models, PpdValueIsTheQuotedTextOfTheFirstLine) {
    const std::pair<const char *, const char *> cases[] = {
        {"*PPD-Adobe: \"4.3\"\n*ModelName: \"Tarvo X\"\n*ModelName: \"Y\"\n", "Tarvo X"},
        {"*ModelName: \"Tarvo X\"\r\n", "Tarvo X"},
        {"*ModelName: \"Tarvo X\r\n", "Tarvo X"}, // no closing quote
        {"*ModelName: Tarvo\n*ModelName: \"Y\"\n", "(null)"},
        {"*% see *ModelName: \"Z\"\n*ModelName: \"Y\"\n", "Z"},
        {"", "(null)"}};
    char buffer[PPD_VALUE];
    for (auto [text, want] : cases) {
        tool.Write("ppd/x.ppd", text);
        const char *got = GetPpdKeyValue_Old("x.ppd", "ModelName", buffer, sizeof buffer);
        EXPECT_STREQ(got ? got : "(null)", want) << text;
    }
    tool.Write("ppd/x.ppd", "*ModelName: \"" + std::string(600, 'm') + "\"\n");
    EXPECT_EQ(strlen(GetPpdKeyValue_Old("x.ppd", "ModelName", buffer, sizeof buffer)), PPD_VALUE - 1u);
}

TEST_F(Models, OptionsComeInTwoListsInStep) {
    std::string ppd =
        "*PageSize A4/A4 sheet: \"<<>>\"\n*PageSize Letter:x\n*Other A5/A5: y\n*PageSize\t B5/\n";
    tool.Write("ppd/x.ppd", ppd + "*PageSize " + std::string(700, 'w') + "*PageSize tail:\n");
    char *words, *texts;
    GetPpdOptions("x.ppd", "*PageSize", &words, &texts, "_");
    EXPECT_EQ(TakeText(words).substr(0, 17), "_A4,_Letter,_B5,_");
    EXPECT_EQ(TakeText(texts).substr(0, 22), "_A4 sheet,_Letter,_,_w");

    std::string many;
    for (int i = 0; i < 1000; i++)
        many += "*Tray t" + std::to_string(i) + "/Tray number " + std::to_string(i) + ":\n";
    tool.Write("ppd/x.ppd", many);
    GetPpdOptions("x.ppd", "*Tray", &words, &texts, nullptr);
    EXPECT_EQ(std::count(words, words + strlen(words), ','), std::count(texts, texts + strlen(texts), ','));
    EXPECT_LT(TakeText(texts).size(), static_cast<size_t>(PPD_OPTIONS));
    EXPECT_LT(TakeText(words).size(), static_cast<size_t>(PPD_OPTIONS));

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
    const std::pair<const char *, std::vector<std::string>> cases[] = {
        // base of the row, texts that find it
        {"m",
         {"Tarvo X1", "printer by TRV model X2 rev 3", "the X1 Tarvo", "Tarvo X1a", "Tarvo X1/2",
          "Tarvo X1, rev 3", "Tarvo X1;x", "Tarvo X1\tx"}},
        {"p", {"Net Card X9 anything", "Tarvo Zeta"}},
        {"-",
         {"Tarvo X12", "Tarvo X1-2", "Tarvo X1\xe9", "Tarvo X12 X1", "X1 Tarvo", "Tarvo \tX1", "Tarvos X1",
          "Tarvo, X1", "a Net Card X", ""}}};
    for (const auto &[base, texts] : cases)
        for (const std::string &text : texts) {
            int row = GetPpdData(text.c_str());
            EXPECT_STREQ(row ? pPPDData[row].base : "-", base) << text;
        }
    int first = strcmp(pPPDData[1].base, "plain") ? 1 : 2;
    EXPECT_EQ(GetPpdData("Tarvo Z X1"), first); // two rows fit
    EXPECT_EQ(GetPpdData(nullptr), 0);
}

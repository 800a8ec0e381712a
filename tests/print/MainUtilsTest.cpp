// Queue records, short, long and damaged; the marker file; the lists of queues.
#include "print/MainUtils.h"

#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "tests/lib/AppTool.h"

#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>

static std::string Show(const QueRecord &r) {
    char numbers[80];
    snprintf(numbers, sizeof numbers, "|%i %i%i%i%i%i", r.type, r.banner, r.userInterface, r.features,
             r.isDefault, r.lpd);
    return std::string(r.name) + "|" + r.printer + "|" + r.serverQueue + "|" + r.lprQueue + "|" + r.ppdFile +
           "|" + (r.settings ? r.settings : "-") + numbers;
}

TEST(GetQueDbEntry, ReadsWhatIsThere) {
    const std::string main = QueData("q1 host lp a.ppd 1 1 0 1 0 1");
    const std::pair<Records, const char *> cases[] = {
        {{{"q1", main}}, "q1|host||lp|a.ppd|-|1 10101"},
        {{{"q1 **", "50% \"x\"\nend"},
          {"host count", CountData("srv ps1")},
          {" default", std::string("q1\0", 3)},
          {"q1", main}},
         "q1|host|srv|lp|a.ppd|50% \"x\"\nend|1 10111"},
        {{{"q1", main}, {" default", "q1"}}, "q1|host||lp|a.ppd|-|1 10111"}, // no NUL behind the name
        {{{"q1", QueData("q1 h lp a.ppd 0 0 0 0 1 0")}, {" default", "q2"}},
         "q1|h||lp|a.ppd|-|0 00000"}, // stale
        {{{"q1", "q1 h lp"}}, "q1|h||lp||-|0 00000"},
        {{{"q1", main.substr(0, main.size() - 1) + "7 8 "}}, "q1|host||lp|a.ppd|-|1 10101"},
        {{{"q1", "q1 h lp a.ppd x y z"}}, "q1|h||lp|a.ppd|-|0 00000"},
        {{{"q1 **", "s"}, {"z", "zzzz"}, {"q1", main}}, "q1|host||lp|a.ppd|s|1 10101"}};
    AppTool tool;
    QueRecord record = {};
    for (const auto &[records, want] : cases) {
        tool.WriteDb("que", records);
        EXPECT_EQ(GetQueDbEntry(&record, "q1"), 1) << want;
        EXPECT_EQ(Show(record), want);
    }
    PutMem(record.settings);
}

TEST(GetQueDbEntry, LeavesTheRecordWhenThereIsNone) {
    AppTool tool;
    QueRecord record = {};
    record.type = 3;
    EXPECT_EQ(GetQueDbEntry(&record, "q1"), 0); // no database
    tool.WriteDb("que", {{" default", "q1"}, {"h count", CountData("a b")}, {"q1", ""}});
    for (const char *name : {" default", "h count", "q1", "q", "", "%n%s"})
        EXPECT_EQ(GetQueDbEntry(&record, name), 0) << name;
    EXPECT_EQ(GetQueDbEntry(&record, nullptr), 0);
    EXPECT_EQ(record.type, 3);
}

TEST(SetConfigFlags, WordsOfTheMarkerFile) {
    const std::pair<std::string, int> cases[] = {
        {"", CFG_V5},
        {";V5;CUPS", CFG_V5},
        {";CUPS\n", CFG_CUPS},
        {"\nCUPS\nNoDb\n", CFG_CUPS | CFG_NO_DB},
        {";BSD;LPRng;", CFG_LPRNG},
        {";AIX;NoDb", CFG_AIX | CFG_NO_DB},
        {";Direct;NoDb;other", CFG_V5 | CFG_DIRECT | CFG_NO_DB},
        {"CUPS", CFG_V5},                           // its first letter is the delimiter
        {std::string(5000, ';') + "CUPS", CFG_V5}}; // read up to 4095 bytes
    AppTool tool;
    for (const auto &[text, want] : cases) {
        tool.Write(".pn_cfg", text);
        SetConfigFlags();
        EXPECT_EQ(flToolCfg, want) << text;
    }
    flToolCfg = 0;
}

TEST(GetQueList, FirstTokensSorted) {
    const std::pair<const char *, const char *> cases[] = {{"", "(null)"},
                                                           {"b:\na: x\n\nC\n", ",a,b,C"},
                                                           {"a b c\t\n", ",a"},
                                                           {"q2 accepting\nq10", ",q10,q2,"}};
    AppTool tool;
    SystemSpy spy;
    for (auto [answer, want] : cases) {
        spy.answers = {{"-LQ", answer}};
        EXPECT_EQ(TakeText(GetQueList()), want) << answer;
        EXPECT_EQ(spy.asked.back(), std::string(pToolPath) + "/prnqtool -LQ");
    }
}

TEST(GetQueueList, QueuesThatBothSidesKnow) {
    Scratch parent;
    AppTool tool;
    SystemSpy spy;
    spy.answers = {{"-LQ", "q1\nq2\nq4\nq5\n"}};
    std::string inner = parent.MakeDir("tool dir");
    char *saved = pToolPath;
    pToolPath = SaveStr_(inner.c_str());
    std::filesystem::create_directories(inner + "/db");
    tool.WriteDb(
        "que",
        {{"q3", "x"}, {"q2", "x"}, {"q2 **", "x"}, {"q4 count", "x"}, {" default", "q4"}, {"q1", "x"}});
    std::filesystem::copy(tool.Path("db/que.xdb"), inner + "/db/que.xdb");
    EXPECT_EQ(TakeText(GetQueueList()), " q2 q1");
    EXPECT_EQ(spy.asked.back(), "'" + inner + "'/prnqtool -LQ");
    parent.Write("77yyprinters", "q5 host,path x.ppd NIS\nq1 host x.ppd NIS\n\n  q4\tx\nq9 x\nq");
    EXPECT_EQ(TakeText(GetQueueList()), " q2 q1 q5 q4"); // q1 stands in both and is listed once
    std::filesystem::remove(parent.Path("77yyprinters"));
    std::filesystem::create_symlink("nowhere", parent.Path("77yyprinters")); // listed, but can't be opened
    Capture caught;
    EXPECT_EQ(TakeText(GetQueueList()), " q2 q1");
    EXPECT_EQ(caught.Err(), "Error: couldn't open printer config file 77yyprinters\n");
    PutMem(pToolPath);
    pToolPath = saved;
}

TEST(QueueType, BothDirections) {
    for (int type = QUEUE_PRINTER_HOST; type <= QUEUE_SERVER_DEVICE; type++) {
        QueChoice choice = GetQueChoice(type);
        EXPECT_EQ(GetQueueType(choice.printingModel, choice.connection), type);
    }
    EXPECT_EQ(GetQueueType(PM_SERVER, CONNECTION_DEVICE), QUEUE_SERVER) << "either connection";
    EXPECT_EQ(GetQueueType(PM_COUNT, CONNECTION_DEVICE), QUEUE_PRINTER_DEVICE) << "an unknown model";
    EXPECT_EQ(GetQueChoice(-1).printingModel, PM_HOST);
    EXPECT_EQ(GetQueChoice(99).connection, CONNECTION_TCP);
}

// Queue records, short, long and damaged; the marker file; the lists of queues.
#include "common/MainUtils.h"

#include "common/Dbm.h"
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
    struct Case {
        const char *name;
        Records records;
        const char *want;
    };
    const std::string main = QueData("q1 host lp a.ppd 1 1 0 1 0 1");
    const std::string wide(200, 'w');
    const Case cases[] = {
        {"plain", {{"q1", main}}, "q1|host||lp|a.ppd|-|1 10101"},
        {"all records",
         {{"q1 **", "50% \"x\"\nend"},
          {"host count", CountData("srv ps1")},
          {" default", std::string("q1\0", 3)},
          {"q1", main}},
         "q1|host|srv|lp|a.ppd|50% \"x\"\nend|1 10111"},
        {"default without a NUL", {{"q1", main}, {" default", "q1"}}, "q1|host||lp|a.ppd|-|1 10111"},
        {"stale default flag",
         {{"q1", QueData("q1 h lp a.ppd 0 0 0 0 1 0")}, {" default", "q2"}},
         "q1|h||lp|a.ppd|-|0 00000"},
        {"three fields", {{"q1", "q1 h lp"}}, "q1|h||lp||-|0 00000"},
        {"nine fields", {{"q1", "q1 h lp a.ppd 4 1 1 1 0"}}, "q1|h||lp|a.ppd|-|4 11100"},
        {"twelve fields", {{"q1", main.substr(0, main.size() - 1) + "7 8 "}}, "q1|host||lp|a.ppd|-|1 10101"},
        {"words for numbers", {{"q1", "q1 h lp a.ppd x y z"}}, "q1|h||lp|a.ppd|-|0 00000"},
        {"blanks only", {{"q1", "    "}}, "|||||-|0 00000"},
        {"count record of 4 bytes", {{"q1", main}, {"host count", "abcd"}}, "q1|host||lp|a.ppd|-|1 10101"},
        {"count record of 0 bytes", {{"q1", main}, {"host count", ""}}, "q1|host||lp|a.ppd|-|1 10101"},
        {"count record without a NUL",
         {{"q1", main}, {"host count", "\1abcsrv"}},
         "q1|host|srv|lp|a.ppd|-|1 10101"},
        {"settings in front of another record",
         {{"q1 **", "s"}, {"z", "zzzz"}, {"q1", main}},
         "q1|host||lp|a.ppd|s|1 10101"},
    };
    AppTool tool;
    QueRecord record = {};
    for (const Case &c : cases) {
        tool.WriteDb("que", c.records);
        EXPECT_EQ(GetQueDbEntry(&record, "q1"), 1) << c.name;
        EXPECT_EQ(Show(record), c.want) << c.name;
    }
    tool.WriteDb("que", {{"q1", wide + " " + std::string(300, 'p') + " " + wide + " " + wide +
                                    " 99999999999 300 1 1 1 1"}});
    EXPECT_EQ(GetQueDbEntry(&record, "q1"), 1);
    EXPECT_EQ(strlen(record.name), 14u);
    EXPECT_EQ(strlen(record.printer), 127u); // a token's limit
    EXPECT_EQ(strlen(record.lprQueue), 14u);
    EXPECT_EQ(strlen(record.ppdFile), 41u);
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

TEST(GetQueDbEntry, DamagedDatabaseIsReadAsFarAsItGoes) {
    AppTool tool;
    tool.WriteDb(
        "que", {{"q1", QueData("q1 h lp a.ppd 0 0 0 0 0 0")}, {"q2", QueData("q2 h lp a.ppd 0 0 0 0 0 0")}});
    std::string whole = ReadWhole(tool.Path("db/que.xdb"));
    QueRecord record = {};
    for (size_t size = 0; size < whole.size(); size++) {
        tool.Write("db/que.xdb", whole.substr(0, size));
        EXPECT_EQ(GetQueDbEntry(&record, "q2"), 0) << size;
        EXPECT_EQ(GetQueDbEntry(&record, "q1"), size >= whole.size() / 2) << size;
    }
}

TEST(GenQueDbEntry, WritesWhatIsReadBack) {
    AppTool tool;
    QueRecord record = {}, again = {};
    snprintf(record.name, sizeof record.name, "q1");
    snprintf(record.printer, sizeof record.printer, "/dev/lp0");
    snprintf(record.lprQueue, sizeof record.lprQueue, "lp");
    snprintf(record.ppdFile, sizeof record.ppdFile, "a.ppd");
    record.settings = SaveStr_("Tray=2\n");
    record.type = QUEUE_PRINTER_DEVICE;
    record.banner = record.lpd = 1;
    int written;
    {
        Capture quiet; // the dots of the file operations
        written = GenQueDbEntry(&record);
    }
    ASSERT_EQ(written, 1);
    char text[80];
    EXPECT_EQ(DbmGetRecord("que", "q1", text, sizeof text), 34);
    EXPECT_STREQ(text, "q1 /dev/lp0 lp a.ppd 2 1 0 0 0 1 ");
    EXPECT_EQ(DbmGetRecordSize("que", "q1 **"), 7);
    EXPECT_EQ(GetQueDbEntry(&again, "q1"), 1);
    EXPECT_EQ(Show(again), Show(record));
    PutMem(record.settings);
    PutMem(again.settings);
}

TEST(GetQueCountWords, SplitsBehindTheCounter) {
    struct Case {
        const char *name;
        std::string data;
        int want;
        const char *first, *second;
    };
    const Case cases[] = {
        {"two words", CountData("srv ps1"), 1, "srv", "ps1"},
        {"NULs in the counter", std::string("\0\0\0\0srv ps1", 11), 1, "srv", "ps1"},
        {"one word", CountData("srv"), 1, "srv", ""},
        {"blank word only", CountData("  "), 0, "", ""},
        {"no text", CountData(""), 0, "", ""},
        {"short", "\1", 0, "", ""},
        {"too long for the buffer", CountData("abcdefghijkl mnopqrstuvw"), 1, "abcdefg", "mnopqrs"},
    };
    AppTool tool;
    for (const Case &c : cases) {
        tool.WriteDb("que", {{"h count", c.data}});
        char first[8], second[8];
        EXPECT_EQ(GetQueCountWords("h", first, second, sizeof first), c.want) << c.name;
        EXPECT_STREQ(first, c.first) << c.name;
        EXPECT_STREQ(second, c.second) << c.name;
    }
}

TEST(SetConfigFlags, WordsOfTheMarkerFile) {
    struct Case {
        const char *text;
        int want;
    };
    const Case cases[] = {
        {"", CFG_V5},
        {";V5;CUPS", CFG_V5},
        {";CUPS", CFG_CUPS},
        {";CUPS\n", CFG_CUPS},
        {"\nCUPS\nNoDb\n", CFG_CUPS | CFG_NO_DB},
        {";BSD;LPRng;", CFG_LPRNG},
        {";BSD;AIX;V5", CFG_AIX},
        {" BSD StandAlone", CFG_BSD | CFG_DIRECT},
        {";Direct;NoDb;other", CFG_V5 | CFG_DIRECT | CFG_NO_DB},
        {"CUPS", CFG_V5}, // its first letter is the delimiter
    };
    AppTool tool;
    for (const Case &c : cases) {
        tool.Write(".pn_cfg", c.text);
        SetConfigFlags();
        EXPECT_EQ(flToolCfg, c.want) << c.text;
    }
    tool.Write(".pn_cfg", std::string(5000, ';') + "CUPS"); // read up to 4095 bytes
    SetConfigFlags();
    EXPECT_EQ(flToolCfg, CFG_V5);
    EXPECT_EQ(TestConfigFlag(".pn_cfg"), 1);
    EXPECT_EQ(TestConfigFlag("absent"), 0);
    flToolCfg = 0;
}

TEST(SetConfigFlags, MissingFileAsksTheHost) {
    AppTool tool;
    SystemSpy spy;
    const char *lpd = ComList[CMD_LPD].path;
    ComList[CMD_LPD].path = nullptr;
    SetConfigFlags();
    EXPECT_EQ(flToolCfg, CFG_V5); // and the process lives on a host without lpd
    ComList[CMD_LPD].path = "/opt";
    spy.answers = {{"-V", "LPRng-3.8\n"}};
    SetConfigFlags();
    EXPECT_EQ(flToolCfg, CFG_V5 | CFG_LPRNG);
    ComList[CMD_LPD].path = lpd;
    flToolCfg = 0;
}

static std::string Take(char *text) {
    std::string copy = text ? text : "(null)";
    PutMem(text);
    return copy;
}

TEST(GetQueList, FirstTokensSorted) {
    struct Case {
        const char *answer, *want;
    };
    const Case cases[] = {
        {"", "(null)"},
        {"\n \n::\n", "(null)"},
        {"b:\n", ",b"},
        {"b:\na: x\n\nC\n", ",a,b,C"},
        {"q2 accepting\nq10", ",q10,q2,"},
        {"a b c\t\n", ",a"},
    };
    AppTool tool;
    SystemSpy spy;
    for (const Case &c : cases) {
        spy.answers = {{"-LQ", c.answer}};
        EXPECT_EQ(Take(GetQueList()), c.want) << c.answer;
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
    EXPECT_EQ(Take(GetQueueList()), "(null)");
    std::filesystem::create_directories(inner + "/db");
    tool.WriteDb(
        "que",
        {{"q3", "x"}, {"q2", "x"}, {"q2 **", "x"}, {"q4 count", "x"}, {" default", "q4"}, {"q1", "x"}});
    std::filesystem::copy(tool.Path("db/que.xdb"), inner + "/db/que.xdb");
    EXPECT_EQ(Take(GetQueueList()), " q2 q1");
    EXPECT_EQ(spy.asked.back(), "'" + inner + "'/prnqtool -LQ");
    parent.Write("77yyprinters", "q5 host,path x.ppd NIS\nq1 host x.ppd NIS\n\n  q4\tx\nq9 x\nq");
    EXPECT_EQ(Take(GetQueueList()), " q2 q1 q5 q4"); // q1 stands in both and is listed once
    spy.answers = {};
    EXPECT_EQ(Take(GetQueueList()), "(null)");
    PutMem(pToolPath);
    pToolPath = saved;
}

TEST(GetQueueList, UnreadableOldFileIsReported) {
    Scratch parent;
    AppTool tool;
    SystemSpy spy;
    spy.answers = {{"-LQ", "q1\n"}};
    char *saved = pToolPath;
    pToolPath = SaveStr_(parent.MakeDir("t").c_str());
    std::filesystem::create_symlink("nowhere", parent.Path("77yyprinters")); // listed, but can't be opened
    Capture caught;
    EXPECT_EQ(Take(GetQueueList()), "(null)");
    EXPECT_EQ(caught.Err(), "Error: couldn't open printer config file 77yyprinters\n");
    PutMem(pToolPath);
    pToolPath = saved;
}

TEST(AddQToList, GrowsAndSkipsDoubles) {
    size_t length = 0;
    char *list = nullptr;
    std::string want;
    for (int i = 0; i < 300; i++) {
        std::string name = "queue" + std::to_string(i % 200);
        list = AddQToList(list, name.c_str(), &length);
        if (i < 200) want += " " + name;
    }
    EXPECT_EQ(length, want.size());
    EXPECT_EQ(Take(list), want);
}

// The lines that add and modify a queue, byte for byte; what a queue shows of where it prints.
#include "prndeck/core/PrdQueLine.h"

#include "common/SysFile.h"
#include "common/utils.h"
#include "print/MainUtils.h"
#include "print/PrdCommonUtils.h"
#include "tests/lib/AppTool.h"

#include <cstring>
#include <gtest/gtest.h>

// T stands for the tool directory.
static std::string Plain(std::string line) {
    for (size_t at; (at = line.find(pToolPath)) != line.npos;) line.replace(at, strlen(pToolPath), "T");
    return line;
}

TEST(MakeAddLine, EachTypeHasItsTail) {
    struct Case {
        QueTarget target;
        int printingModel;
        QueOptions options;
        const char *want;
    };
    static const Case Cases[] = {
        {{QUEUE_PRINTER_HOST, "q1", "h", "lp"}, PM_HOST, {1, 1, 1, 0}, "wp  -lpd -hn h -psqn lp -fe -bp -ui"},
        {{QUEUE_SERVER, "q1", "SRV", "ps1"}, PM_SERVER, {1, 0, 1, 0}, "wps  -lpd -hn SRV -psqn ps1 -fe  -ui"},
        {{QUEUE_PRINTER_DEVICE, "q1", "/l", "lp"}, PM_HOST, {0, 1, 0, 0}, "wp  -lpd -dn /l -psqn lp  -bp "},
        {{QUEUE_SERVER_HOST, "q1", "h", "lp"}, PM_SERVER_PRINTER, {1, 1, 1, 0}, "psp  -lpd -hn h "},
        {{QUEUE_SERVER_DEVICE, "q1", "/l", "lp"}, PM_SERVER_PRINTER, {1, 1, 1, 1}, "psp -d -lpd -dn /l"}};
    AppTool tool;
    for (const Case &c : Cases) {
        std::string want = std::string("T/prnqtool q1 -log prndeck -fs .settings -ppd M.ppd -pm ") + c.want;
        EXPECT_EQ(Plain(MakeAddLine(c.target, "M.ppd", c.printingModel, c.options)), want);
        tool.Write(BannerFile, "x");
        want += " -bps .bsettings";
        EXPECT_EQ(Plain(MakeAddLine(c.target, "M.ppd", c.printingModel, c.options)), want);
        DeleteFile(pToolPath, BannerFile);
    }
}

TEST(MakeModifyLine, OptionsInTheirOrder) {
    AppTool tool;
    EXPECT_EQ(Plain(MakeModifyLine("q1", {1, 1, 1, 1}, 1)), "T/prnqtool q1 -mq -log prndeck -ui -fe -bp -d");
    EXPECT_EQ(Plain(MakeModifyLine("q1", {1, 0, 0, 0}, 1)), "T/prnqtool q1 -mq -log prndeck -fe");
    EXPECT_EQ(Plain(MakeModifyLine("q1", {0, 1, 0, 0}, 1)), "T/prnqtool q1 -mq -log prndeck -bp");
    tool.Write(BannerFile, "x");
    tool.Write(SettingsFile, "x");
    EXPECT_EQ(Plain(MakeModifyLine("q1", {}, 1)),
              "T/prnqtool q1 -mq -log prndeck -fs .settings -bps .bsettings");
}

TEST(GetQuePlace, KindAndWordsOfTheCountRecord) {
    struct Case {
        const char *printer;
        int type;
        unsigned char lpd;
        const char *own;
        const char *want;
    };
    static const Case Cases[] = {{"h", QUEUE_PRINTER_HOST, 0, "own", "host h lp"},
                                 {"h", QUEUE_PRINTER_HOST, 1, "own", "remote h own"},
                                 {"h", QUEUE_SERVER, 0, "own", "remote h own"},
                                 {"h", QUEUE_SERVER, 0, "", "remote h lp"},
                                 {"/dev/l", QUEUE_SERVER_DEVICE, 0, "", "device /dev/l "},
                                 {"/dev/l", QUEUE_PRINTER_DEVICE, 1, "", "remote /dev/l "},
                                 {"none", QUEUE_SERVER_HOST, 0, "own", "host - -"}};
    static const char *const Kinds[] = {"remote", "host", "device"};
    AppTool tool;
    tool.WriteDb("que", {{"h count", CountData("h lp")}, {"/dev/l count", CountData("/dev/l")}});
    for (const Case &c : Cases) {
        QueRecord record = {};
        strcpy(record.printer, c.printer);
        strcpy(record.lprQueue, c.own);
        record.type = c.type;
        record.lpd = c.lpd;
        QuePlace place = GetQuePlace(&record);
        std::string words = place.counted ? std::string(place.address) + " " + place.remote : "- -";
        EXPECT_EQ(std::string(Kinds[place.kind]) + " " + words, c.want);
    }
}

TEST(MakeFeatureWindowLine, TheProgramThatSetsAModelsFeatures) {
    struct Case {
        FeatureCall call;
        const char *want;
    };
    static const Case Cases[] = {
        {{"tv_5.ppd", "q1", 0, 1}, "T/v5driver -GS tv_5.ppd 1>>/dev/null 2>>/dev/null"},
        {{"tv_4.ppd", "", 0, 0}, "T/driver -GS tv_4.ppd 1>>/dev/null 2>>/dev/null"},
        {{"tv_4.ppd", "a b", 1, 0}, "T/driver -MS 'a b' 1>>/dev/null 2>>/dev/null"},
        {{"tv_3.ppd", "", 0, 0}, "T/prnpnxxtty   -GST/ppd/tv_3.ppd"},
        {{"tv_3.ppd", "$x", 1, 1}, "T/prnpnxxtty -d'$x' -SBP -GST/ppd/tv_3.ppd"}};
    AppTool tool;
    tool.WriteDb("en_US/PrtString", {{"tv_5", ".sppditem v5ModelName\n5\n.eppditem\n"},
                                     {"tv_4", ".sppditem v4DriverPluginFilename\n4\n.eppditem\n"}});
    for (const Case &c : Cases) EXPECT_EQ(Plain(MakeFeatureWindowLine(c.call)), c.want);
}

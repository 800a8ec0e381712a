// The setup wizard by its events: the rows that choices show, the lines that are made, what is asked and
// refused, the titles that are kept.
#include "prndeck/gui/PrdWizard.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/SysFile.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "print/QueType.h"
#include "prndeck/core/Prd.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdDiscNets.h"
#include "prndeck/core/PrdQueLine.h"
#include "prndeck/core/PrdQueList.h"
#include "prndeck/gui/PrdGui.h"
#include "prndeck/gui/PrdGuiBanner.h"
#include "prndeck/gui/PrdGuiEvent.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "tests/lib/AppTool.h"
#include "tests/lib/WindowRig.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtUtils.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <net/if.h>
#include <sys/stat.h>

static std::unique_ptr<AppTool> Tool;

// Choices are lists; "T" stands for the tool directory, and what a line is redirected to is left out.
static Records Texts() {
    Records texts = {{"7_4", "%s"}, {"8_5", "a,b,c"}, {"20_166", "%s using %s"}};
    for (const char *key :
         {"7_6", "7_8", "7_13", "7_15", "7_17", "7_19", "7_21", "8_7", "11_11", "11_13", "11_15", "11_17"})
        texts.push_back({key, "a,b"});
    for (int i = 2; i <= 9; i++) texts.push_back({"11_" + std::to_string(i), "l: "});
    for (auto &[key, text] : texts) text += '\0';
    return texts;
}

static std::string Plain(std::string line) {
    for (size_t at; (at = line.find(pToolPath)) != line.npos;) line.replace(at, strlen(pToolPath), "T");
    return line.substr(0, std::min(line.find(" 1>"), line.find(" >")));
}

static std::string Lines(SystemSpy &spy) {
    std::string out;
    for (const std::string &line : spy.lines)
        if (line.find("prnqtool") != line.npos || line.find("lpsched") != line.npos) out += Plain(line) + "|";
    spy.lines.clear();
    return out;
}

class Wizard : public testing::Test {
protected:
    static void TearDownTestSuite() { Tool.reset(); }
    void SetUp() override {
        static std::string reason;
        static bool flRig = StartWindowRig("1280x1024x24", &reason);
        if (!flRig) GTEST_SKIP() << reason;
        if (!Tool) MakeWindows();
        spy.answers = {{"-LQ", "kept:\nother:\n"}};
        TakeMessages();
    }
    static void MakeWindows() {
        Tool = std::make_unique<AppTool>();
        pNLSLang = SaveStr_("en_US");
        Tool->WriteDb("en_US/CoreString", Texts());
        Tool->WriteDb("en_US/PrtHelp", {{"x", "x"}});
        Tool->WriteDb("en_US/PrtString", {{"DisableCustomBanner", std::string(",tv_none,\0", 10)},
                                          {"DefaultCustomBannerOff", std::string(",tv_off,\0", 9)}});
        Tool->WriteModels({"tv_a.ppd", "tv_generic.ppd", "tv_none.ppd", "tv_off.ppd"});
        chmod(Tool->Write("prnqtool", "#!/bin/sh\n").c_str(), 0755);
        flUserIsRoot = 1;
        pDiscIoctl = [](int, unsigned long, void *argument) {
            static_cast<ifconf *>(argument)->ifc_len = 0;
            return 0;
        };
        GenGui();
        RealizeWindows();
    }
    static void Event(int id, intptr_t value = 0, const char *text = nullptr, int reason = XmtCR_DEFAULT) {
        XmtCallData data = {};
        data.id = id;
        data.reason = reason;
        data.value = value;
        data.text = text;
        WizardEventHandler(&data);
    }
    // Titles and texts of the messages since the last call, which are the keys of the catalogue here, each
    // answered.
    static std::string TakeMessages(int reason = XmtCR_CANCEL) {
        std::string out;
        while (pXmtMsgList && pXmtMsgList->head) {
            auto *entry = static_cast<XmtMsgEntry *>(pXmtMsgList->head->item);
            out += std::string(entry->title ? entry->title : "") + ":" + entry->text + " ";
            XmtCallData data = {};
            data.reason = reason;
            XmtMsgEventHandler(&data);
        }
        return out;
    }
    // Those of the objects that are shown, by their last letters.
    static std::string Shown(const char *prefix, std::initializer_list<const char *> names) {
        std::string out;
        for (const char *name : names)
            if (XtIsManaged(XmtGetWidget((std::string(prefix) + name).c_str())))
                out += std::string(name) + " ";
        return out;
    }
    static std::string Text(const char *name) {
        char *text = XmtGetText(name);
        std::string out = text ? text : "";
        XtFree(text);
        return out;
    }
    SystemSpy spy;
};

// ---- A new queue

TEST_F(Wizard, TheChoicesOfANewQueueShowTheirRowsAndMakeItsLine) {
    struct {
        int model, connection;
        const char *rows, *line;
    } cases[] = {
        {0, 0, "hn_B1 ", "wp  -lpd -hn h -psqn lp -fe -bp -ui"},
        {1, 0, "hn_B1 rpn_B1 ", "wps  -lpd -hn h -psqn r -fe -bp -ui"},
        {0, 1, "dn_B1 ", "wp  -lpd -dn /d -psqn lp -fe -bp -ui"},
        {1, 1, "dn_B1 ", "wp  -lpd -dn /d -psqn lp -fe -bp -ui"}, // a device belongs to the workstation
    };
    for (const auto &c : cases) {
        Event(WIZARD_ADD);
        EXPECT_EQ(Shown("wq", {"hn_B1", "rpn_B1", "dn_B1"}), "hn_B1 ");
        EXPECT_EQ(PrinterModel, 2) << "the generic one";
        Event(WIZARD_ADD_APPLY);
        EXPECT_EQ(TakeMessages() + Lines(spy), ":20_123 :20_126 ");
        XmtSetText("wqn", "new");
        for (auto [field, text] : {std::pair{"wqhn", "h"}, {"wqdn", "/d"}}) XmtSetText(field, text);
        XmtSetValuePF("wqcm", c.model + 1, 1);
        XmtSetValuePF("wqc", c.connection + 1, 1);
        EXPECT_EQ(Shown("wq", {"hn_B1", "rpn_B1", "dn_B1"}), c.rows);
        if (c.model == 1 && !c.connection) {
            Event(WIZARD_ADD_APPLY);
            EXPECT_EQ(TakeMessages() + Lines(spy), ":20_129 ");
            XmtSetText("wqrpn", "r");
        }
        Event(WIZARD_ADD_APPLY);
        EXPECT_EQ(Lines(spy),
                  std::string("T/prnqtool new -log prndeck -fs .settings -ppd tv_generic.ppd -pm ") + c.line +
                      "|");
        EXPECT_FALSE(XtIsManaged(XmtGetWidget("wqw")));
    }
    XmtSetValuePF("wqcm", 2, 1); // and a print server is reached over TCP/IP
    EXPECT_EQ(Shown("wq", {"hn_B1", "rpn_B1", "dn_B1"}) + std::to_string(Connection), "hn_B1 rpn_B1 0");
}

TEST_F(Wizard, TheSelectedPrinterIsWhereANewQueueStarts) {
    DevCount = 0;
    PrnEntry *entry = ClaimPrnEntry();
    PutMem(entry->HostName);
    entry->HostName = SaveStr_("printer.example");
    entry->PpdIndex = PpdCnt;
    while (strcmp(pPPDData[entry->PpdIndex].file, "tv_off.ppd") != 0) entry->PpdIndex--;
    Cur_Product_Index = 0;
    DefaultPrinter = Daemon = 1;
    UseFeatures = GuiType = 0;
    Event(WIZARD_ADD);
    EXPECT_EQ(Text("wqhn") + " " + GetModelFile(PrinterModel), "printer.example tv_off.ppd");
    int choices[] = {PrintingModel, Connection, BannerPage, UseFeatures, GuiType, DefaultPrinter, Daemon};
    EXPECT_EQ(std::vector<int>(std::begin(choices), std::end(choices)), (std::vector{0, 0, 0, 1, 1, 0, 0}));
    XmtSetText("wqn", "x");
    XmtCallData button = {};
    button.id = WIZ_ADD;
    button.reason = XmtCR_DEFAULT;
    WizEventHandler(&button); // behind the event above, by the tool button
    EXPECT_EQ(Text("wqn") + "|" + Text("wqhn"), "|printer.example");
    entry->PpdIndex = 99;
    Event(WIZARD_ADD);
    EXPECT_EQ(PrinterModel, 1);
    Cur_Product_Index = -1;
    DevCount = 0;
    XmtHide("wqw");
}

static void FillAdd(const char *name) {
    XmtSetText("wqn", name);
    XmtSetText("wqhn", "h");
}

TEST_F(Wizard, AQueueIsReplacedWhenTheUserSaysSo) {
    struct {
        int id, reason;
        bool done;
    } cases[] = {{WIZARD_REPLACE_ADD, XmtCR_CANCEL, false},
                 {WIZARD_REPLACE_ADD, XmtCR_HELP, false},
                 {WIZARD_REPLACE_ADD, XmtCR_OK, true},
                 {WIZARD_REPLACE_ADD, XmtCR_APPLY, true}};
    for (const auto &c : cases) {
        Event(WIZARD_ADD);
        FillAdd("kept");
        Event(WIZARD_ADD_APPLY);
        EXPECT_EQ(Lines(spy), "");
        EXPECT_EQ(TakeMessages(), ":20_2 ") << "answered with Cancel";
        EXPECT_TRUE(XtIsManaged(XmtGetWidget("wqw")));
        Event(c.id, 0, nullptr, c.reason);
        EXPECT_EQ(Lines(spy).empty(), !c.done);
        EXPECT_EQ(XtIsManaged(XmtGetWidget("wqw")), !c.done);
    }
    Event(WIZARD_ADD);
    FillAdd("-x");
    Event(WIZARD_ADD_APPLY);
    EXPECT_EQ(TakeMessages() + Lines(spy), ":25_1021 ");
}

// A host has lpsched or not; without it nothing can be started again.
TEST_F(Wizard, WhileLpschedDoesNotStopTheLineCanBeTriedAgain) {
    Tool->Write("bin/lpsched", "");
    Event(WIZARD_ADD);
    FillAdd("new");
    const std::string text = "Failed shutting down lpsched.\nSee README for details. ";
    spy.result = -1;
    spy.error = EBUSY;
    testing::internal::CaptureStderr();
    Event(WIZARD_ADD_APPLY);
    const std::string line = Lines(spy);
    EXPECT_EQ(std::count(line.begin(), line.end(), '|'), 1) << line;
    static const std::string directory = Tool->Path("bin"); // stays in the list of commands
    FillCmdPaths(directory.c_str());
    EXPECT_EQ(TakeMessages(XmtCR_CANCEL), "Error creation problem:" + text);
    Event(WIZARD_RETRY, 0, nullptr, XmtCR_APPLY);
    EXPECT_EQ(Lines(spy), "");
    for (int i = 0; i < 2; i++) {
        Event(WIZARD_RETRY, 0, nullptr, XmtCR_OK);
        EXPECT_EQ(Lines(spy), line + "/usr/bin/sh -c \"T/bin/lpsched  |");
        EXPECT_EQ(TakeMessages(XmtCR_CANCEL), "Error stopping lpsched:" + text);
    }
    spy.result = spy.error = 0;
    Event(WIZARD_RETRY, 0, nullptr, XmtCR_OK);
    EXPECT_EQ(Lines(spy) + TakeMessages(), line);
    const std::string said = "Error:  Could not stop lpsched\n";
    EXPECT_EQ(testing::internal::GetCapturedStderr(), said + said + said);
}

// ---- Stored queues

// Label, or nothing for one that is hidden.
static std::string Row(const char *name) {
    if (!XtIsManaged(XmtGetWidget(name))) return "-";
    char *text = XmtGetLabel(name);
    std::string out = text ? text : "";
    PutMem(text);
    return out.substr(out.find(": ") + 2);
}

TEST_F(Wizard, WhereAQueuePrintsStandsInTheRowsOfItsKind) {
    struct {
        const char *record;
        bool counted;
        const char *rows; // host, device, printer; printing model and connection
        const char *copy; // choices, rows and texts in the window of a copy
    } cases[] = {
        {"q p lp tv_a.ppd 0 1 1 0 0 0", true, "p using lp|-|p|20_85|20_86", "00 hn_B1 p"},
        {"q p lp tv_a.ppd 3 0 0 0 0 0", false, "p|-|-|20_85|20_86", "20 hn_B1 "},
        {"q p lp tv_a.ppd 1 0 0 1 0 0", true, "p using lp|-|p|20_84|20_86", "10 hn_B1 rpn_B1 p lp"},
        {"q p lp tv_a.ppd 0 0 0 0 0 1", false, "-|-|p|20_85|20_86", "00 hn_B1 "},
        {"q p lp tv_a.ppd 2 0 0 0 0 0", true, "-|/d|p|20_85|20_87", "01 dn_B1 /d"},
        {"q p lp tv_a.ppd 4 0 0 0 0 0", false, "-|p|-|20_85|20_87", "21 dn_B1 "},
    };
    for (const auto &c : cases) {
        Records records = {{"q", QueData(c.record)}, {" default", std::string("q\0", 2)}};
        if (c.counted) records.push_back({"p count", CountData(strstr(c.record, "ppd 2") ? "/d" : "p lp")});
        Tool->WriteDb("que", records);
        Event(WIZARD_MODIFY_CHOICE, 1, "q");
        Event(WIZARD_MODIFY);
        std::string rows;
        for (const char *name : {"wmqhn", "wmqdn", "wmqtn", "wmqcm", "wmqc"}) rows += Row(name) + "|";
        EXPECT_EQ(rows, std::string(c.rows) + "|") << c.record;
        EXPECT_EQ(Row("wmqn") + Row("wmqpm") + std::to_string(DefaultPrinter), "qModel tv_a1");

        Event(WIZARD_COPY_CHOICE, 1, "q");
        Event(WIZARD_COPY);
        std::string copy = std::to_string(PrintingModel) + std::to_string(Connection) + " " +
                           Shown("cl", {"hn_B1", "rpn_B1", "dn_B1"}) + Text(Connection ? "cldn" : "clhn");
        EXPECT_EQ(copy + (PrintingModel == PM_SERVER ? " " + Text("clrpn") : ""), c.copy) << c.record;
    }
    EXPECT_EQ(TakeMessages(), "");
}

// They may be edited as well; the next queue has the window's own checks again.
TEST_F(Wizard, HostsThatNobodyCouldTypeAreKept) {
    Records records = {{"p count", CountData("p lp")}, {"q", QueData("q p lp tv_a.ppd 0 1 1 0 0 0")}};
    for (std::string host : {"[fd00::1]:9101", "print_er.example:9100"}) {
        records.push_back({"o", QueData("o " + host + " lp tv_a.ppd 0 1 1 0 0 0")});
        records.push_back({host + " count", CountData(host + " r")});
        Tool->WriteDb("que", records);
        Event(WIZARD_COPY_CHOICE, 1, "o");
        Event(WIZARD_COPY);
        EXPECT_EQ(Text("clhn"), host);
        XmtSetText("clhn", (host + "1").c_str());
        EXPECT_EQ(Text("clhn") + TakeMessages(), host + "1");
        InitQueSettings(host.c_str(), 1);
        EXPECT_EQ(Text("wqhn") + TakeMessages(), host);
        records.resize(2);
    }
    Event(WIZARD_COPY_CHOICE, 1, "q");
    Event(WIZARD_COPY);
    XmtSetText("clhn", "p:1");
    EXPECT_EQ(Text("clhn") + TakeMessages(), "p:25_1025 ");
}

TEST_F(Wizard, TheLinesOfACopyAndOfAChange) {
    Tool->WriteDb("que", {{"q", QueData("q p r tv_a.ppd 1 1 0 1 0 0")},
                          {"p count", CountData("h last")},
                          {"q **", "A=B\n"},
                          {"q **banner", ".h3 12 third\n"}});
    Event(WIZARD_COPY_CHOICE, 1, "q");
    Event(WIZARD_COPY);
    for (auto [name, said] : {std::pair{"", ":20_123 "}, {"-q", ":25_1021 "}, {"kept", ":20_2 "}}) {
        XmtSetText("clqn", name);
        Event(WIZARD_NEW_APPLY);
        EXPECT_EQ(TakeMessages() + Lines(spy), said);
    }
    Event(WIZARD_REPLACE_COPY, 0, nullptr, XmtCR_OK);
    EXPECT_EQ(Lines(spy), "T/prnqtool kept -log prndeck -cl q -pm wps -hn h -psqn r|");
    XmtSetText("clrpn", "");
    XmtSetText("clqn", "new");
    Event(WIZARD_NEW_APPLY);
    EXPECT_EQ(TakeMessages() + Lines(spy), ":20_129 ");
    Event(WIZARD_NEW_CONNECTION, 1); // a device belongs to the workstation
    Event(WIZARD_NEW_APPLY);
    EXPECT_EQ(TakeMessages() + Lines(spy), ":20_126 ");
    XmtSetText("cldn", "/dev/x");
    Event(WIZARD_NEW_APPLY);
    EXPECT_EQ(Lines(spy), "T/prnqtool new -log prndeck -cl q -pm wp -dn /dev/x -psqn lp|");

    Event(WIZARD_MODIFY_CHOICE, 1, "q");
    Event(WIZARD_MODIFY);
    EXPECT_EQ(Text("cbph3") + "|" + Text("cbph1"), "third|");
    Event(WIZARD_MOD_INTERFACE, 1);
    Event(WIZARD_MOD_DEFAULT, 1);
    Event(WIZARD_MOD_APPLY);
    EXPECT_EQ(Lines(spy), "T/prnqtool q -mq -ui -fe -bp -d -fs .settings -bps .bsettings|");
    Event(WIZARD_DELETE);
    XmtCallData data = {};
    data.id = WIZARD_DELETE_CHOICE;
    data.reason = 20;
    data.selection = const_cast<char *>("a b\0$c\0");
    WizardEventHandler(&data);
    Event(WIZARD_DELETE_OK);
    Event(WIZARD_DELETE_OK); // nothing is chosen any more
    Event(WIZARD_DELETE_ALL);
    EXPECT_EQ(Lines(spy), "T/prnqtool -log prndeck -xl a b '$c'|T/prnqtool -log prndeck -x all|");
}

TEST_F(Wizard, AQueueWithoutARecordOpensNoWindow) {
    Tool->WriteDb("que", {{"z", "z"}});
    for (auto [choice, press, window, said] :
         {std::tuple{WIZARD_MODIFY_CHOICE, WIZARD_MODIFY, "wmqw", ":20_3 "},
          {WIZARD_COPY_CHOICE, WIZARD_COPY, "clqw", ":20_4 "}}) {
        Event(choice, 1, "gone");
        Event(press);
        XmtShow(window); // as the button's format does
        EventLoopCBF();
        EventLoopCBF = nullptr;
        EXPECT_EQ(TakeMessages(), said);
        EXPECT_FALSE(XtIsManaged(XmtGetWidget(window)));
    }
}

// The event of a click that takes it back has the row's text.
TEST_F(Wizard, WithoutASelectionThereIsNothingToModifyOrCopy) {
    for (auto [choice, button, name] :
         {std::tuple{WIZARD_MODIFY_CHOICE, "mq", &MQueName}, {WIZARD_COPY_CHOICE, "cq", &CQueName}}) {
        Event(choice, 1, "q");
        XmtEnable(button); // as the format of the list to copy does each time
        Event(choice, 0, "q");
        EXPECT_TRUE(!XtIsSensitive(XmtGetWidget(button)) && !*name) << button;
    }
}

// ---- Banner titles

static std::string Banner() {
    char text[512] = "";
    FILE *file = fopen(Tool->Path(BannerFile).c_str(), "r");
    if (!file) return "";
    text[fread(text, 1, sizeof text - 1, file)] = '\0';
    fclose(file);
    return text;
}

TEST_F(Wizard, TitlesAreKeptByApplyAndTakenBackByCancel) {
    Tool->WriteDb("que", {{" banner", ".h1 8 default\n.h2 7 odd\n"}});
    Event(WIZARD_ADD);
    EXPECT_EQ(Text("cbph1") + Text("cbph2") + Text("cbph3") + pSysDefBanInfo,
              std::string("defaultodd") + pCBannerInfo);
    XmtSetText("cbph1", "");
    XmtSetText("cbph3", "50% \"x\"");
    XmtSetValuePF("cbps3", 17, 0);
    XmtStoreValue("cbph1,cbps1,cbph2,cbps2,cbph3,cbps3,cbpd"); // Apply, by its format
    Event(WIZARD_BANNER_APPLY);
    EXPECT_EQ(Banner() + Lines(spy), ".h2 8 odd\n.h3 40 50% \"x\"\n");
    Event(WIZARD_BANNER_DEFAULTS);
    EXPECT_EQ(Text("cbph1") + Text("cbph3"), "default");
    Event(WIZARD_ADD_TITLES);
    EXPECT_EQ(Text("cbph1") + Text("cbph3"), "50% \"x\"") << "defaults are shown without being kept";
    for (auto [title, line] : {std::pair{"t", "-dbps .bsettings"}, {"", "-xdbps"}}) {
        for (const char *field : {"cbph1", "cbph2", "cbph3"}) XmtSetText(field, title);
        XmtSetValuePF("cbpd", 2, 0);
        XmtStoreValue("cbph1,cbps1,cbph2,cbps2,cbph3,cbps3,cbpd");
        spy.lines.clear();
        Event(WIZARD_BANNER_APPLY);
        EXPECT_NE(spy.lines.back().find(BannerFile), std::string::npos) << "removed at last";
        EXPECT_EQ(Lines(spy), std::string("T/prnqtool ") + line + "|");
        EXPECT_EQ(XmtGetValue("cbpd"), 0);
    }
}

TEST_F(Wizard, WhatAModelAllowsOfTitles) {
    struct {
        const char *model;
        int keep, kept;
        const char *want; // the choice, and what is enabled
    } cases[] = {{"tv_a.ppd", 0, 0, "1 11"},
                 {"tv_a.ppd", 1, 0, "0 11"},
                 {"tv_off.ppd", 0, 1, "0 11"},
                 {"tv_none.ppd", 0, 1, "0 00"},
                 {"tv_none.ppd", 1, 1, "0 00"}};
    for (const auto &c : cases) {
        int model = 1;
        while (strcmp(GetModelFile(model), c.model) != 0) model++;
        BannerPage = c.kept;
        DisableCustomBannerCheck(PM_HOST, model, c.keep);
        EXPECT_EQ(std::to_string(BannerPage) + " " + (XmtIsEnabled("wqbp_B1") ? '1' : '0') +
                      (XmtIsEnabled("wmqcbp") ? '1' : '0'),
                  c.want)
            << c.model;
    }
}

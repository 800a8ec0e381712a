// The flows of the terminal at their callbacks: lists, states, labels, and what a user can hardly bring
// about. menus_test.py plays the flows whole.
#include "prndeck/PrdTty.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/PrdCommonUtils.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "prndeck/Prd.h"
#include "prndeck/PrdBanner.h"
#include "tests/lib/AppTool.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>

static std::string Take(char *text) {
    std::string copy = text ? text : "(null)";
    PutMem(text);
    return copy;
}

TEST(FormatQueList, BreaksInFrontOfTheWidth) {
    struct Case {
        const char *name, *list;
        int width;
        const char *want;
        int count;
    };
    static const Case Cases[] = {
        {"none", nullptr, 10, "H\n", 0},
        {"one", ",q1", 10, "H\n q1", 1},
        {"closing comma", ",q1,q2,", 80, "H\n q1 q2", 2},
        {"column and length reach the width", ",abcd,abcde", 10, "H\n abcd\n abcde", 2},
        {"one less stays", ",abcd,abcd", 10, "H\n abcd abcd", 2},
        {"column restarts behind the name", ",abcd,abcde,abc,ab", 10, "H\n abcd\n abcde abc\n ab", 4},
        {"longer than the width", ",abcdefghijkl,a", 10, "H\n\n abcdefghijkl\n a", 2},
    };
    for (const Case &c : Cases) {
        int count = -1;
        EXPECT_EQ(Take(FormatQueList(c.list, "H\n", c.width, &count)), c.want) << c.name;
        EXPECT_EQ(count, c.count) << c.name;
    }
}

// ---- The flows

static struct hostent *FindHost(const char *name) {
    static struct hostent Host;
    return strcmp(name, "nohost") == 0 ? nullptr : &Host;
}

// A child process runs the flow, so that its answers come from standard input; what it ran comes back as
// text, one line each, with T for the tool directory.
class Flow : public ::testing::Test {
protected:
    Flow() {
        DbTClose(pEngPrtStrDB);
        pEngPrtStrDB = nullptr;
        pGethostbyname = FindHost;
        flUserIsRoot = 1;
        ComList[CMD_LPSCHED].path = "/opt";
        ComList[CMD_RM].path = ComList[CMD_SH].path = ComList[CMD_CLEAR].path = "/bin";
        tool.WriteModels({"a.ppd", "b.ppd", "tv_generic.ppd"});
        tool.WriteDb("que", {{"q1", QueData("q1 host raw b.ppd 0 1 0 1 0 0")},
                             {"q1 **", "100% \"x\"\nend"},
                             {"host count", CountData("host ps1")},
                             {"q3", QueData("q3 dev lp gone.ppd 2 0 1 0 1 0")},
                             {" default", "q1"}});
    }
    ~Flow() override {
        pGethostbyname = gethostbyname;
        ComList[CMD_LPSCHED].path = nullptr;
    }
    ChildEnd Run(const std::function<void()> &flow, const std::string &input = "") {
        return RunForked(
            [&] {
                SystemSpy spy;
                spy.result = result;
                spy.error = error;
                spy.answers = {{"-LQ", "q1\nq3\nq10\n"}};
                MPS_tty.settings = nullptr;
                ReadLists();
                flow();
                fprintf(stderr, "%s", pQueList ? "" : "[lists dropped]\n");
                for (std::string line : spy.lines) fprintf(stderr, "%s\n", Plain(line).c_str());
                fflush(stderr);
                _exit(0); // nothing of the test's own runs twice
            },
            input);
    }
    static void ReadLists() {
        pQueList = nullptr;
        InitMainMenu(&MainMenu);
    }
    static std::string Plain(std::string line) {
        for (size_t at; (at = line.find(pToolPath)) != line.npos;) line.replace(at, strlen(pToolPath), "T");
        size_t end = std::min(line.find(" 1>/dev/null"), line.find(" 1>>/dev/null"));
        return line.substr(0, end);
    }
    static void SetText(TextMenu &menu, int item, const char *text) { SetItemText(&menu.items[item], text); }
    static void StartAdd() {
        InitAddMenu(&AddPrinterMenu);
        AddPrinterMenuItems[ADD_MODEL].choices = SaveStr_(PpdModelList);
        InitMenu(&AddPrinterMenu);
        SetText(AddPrinterMenu, ADD_NAME, "new");
        SetText(AddPrinterMenu, ADD_HOST, "h");
    }
    static std::string States(const TextMenu &menu) {
        std::string text;
        for (int i = 0; menu.items[i].text; i++) text += static_cast<char>('0' + menu.items[i].state);
        return text;
    }
    AppTool tool;
    int result = 0, error = 0;
};

static void Report(int status) {
    fprintf(stderr, "=%i ", status);
}

// system fails with EBUSY, as where the print system could not be stopped.
TEST_F(Flow, FailedStopOfThePrintSystem) {
    result = -1;
    error = EBUSY;
    ChildEnd end = Run(
        [] {
            StartAdd();
            Report(SavePrinter(&AddPrinterMenu, nullptr));
            char rest[10];
            fprintf(stderr, "%s ", Gets(rest, sizeof rest));
        },
        "\nnext\n");
    EXPECT_EQ(end.out, "Error stopping lpsched.  See README for details.");
    EXPECT_EQ(end.err,
              "=0 next [lists dropped]\n"
              "T/prnqtool new -log prndeck -fs .settings -ppd a.ppd -pm wp  -lpd -hn h -psqn lp -fe -bp -ui\n"
              "/bin/sh -c \"/opt/lpsched  \n");
}

TEST_F(Flow, AddStartsAnewEachTime) {
    tool.Write(SettingsFile, "x");
    tool.Write(BannerFile, "x");
    ChildEnd end = Run([] {
        for (int item : {ADD_CONNECTION, ADD_HOST, ADD_INTERFACE, ADD_BANNER, ADD_SETUP, ADD_BANNER_SETUP})
            AddPrinterMenuItems[item].state = STATE_HIDDEN; // as an earlier visit may have left them
        StartAdd();
        fprintf(stderr, "%s\n", States(AddPrinterMenu).c_str());
    });
    EXPECT_EQ(end.err, "000002220000000000\n"
                       "/bin/sh -c \"/bin/rm -f T/.settings\n"
                       "/bin/sh -c \"/bin/rm -f T/.bsettings\n");
}

TEST_F(Flow, ModelDecidesOnTheBanner) {
    tool.WriteDb("en_US/PrtString", {{"DisableCustomBanner", ",b,"},
                                     {"DefaultCustomBannerOff", ",a"},
                                     {"tv_generic", ".sppditem v4DriverPluginFilename\n\n.eppditem\n"}});
    ChildEnd end = Run([] {
        StartAdd();
        for (int model = 0; model < 3; model++) {
            AddPrinterMenuItems[ADD_MODEL].value.i = model;
            PrinterModelChangeCB(&AddPrinterMenu, &AddPrinterMenuItems[ADD_MODEL]);
            fprintf(stderr, "%i %li %i %i|", AddPrinterMenuItems[ADD_BANNER].state,
                    static_cast<long>(AddPrinterMenuItems[ADD_BANNER].value.i),
                    AddPrinterMenuItems[ADD_SETUP].state, AddPrinterMenuItems[ADD_BANNER_SETUP].state);
        }
    });
    // The banner's state and value, then the states of the two setup items.
    EXPECT_EQ(end.err, "0 0 0 0|2 0 0 0|0 1 2 2|");
}

TEST_F(Flow, PrintingModelDecidesOnTheAddress) {
    ChildEnd end = Run([] {
        StartAdd();
        for (int model : {PM_SERVER, PM_HOST}) {
            AddPrinterMenuItems[ADD_PRINTING_MODEL].value.i = model;
            PrintingModelChangeCB(&AddPrinterMenu, nullptr);
            fprintf(stderr, "%s\n", States(AddPrinterMenu).substr(0, 8).c_str());
        }
        AddPrinterMenuItems[ADD_CONNECTION].value.i = CONNECTION_DEVICE; // the choice that was made before
        PrintingModelChangeCB(&AddPrinterMenu, nullptr);
        fprintf(stderr, "%s\n", States(AddPrinterMenu).substr(0, 8).c_str());
    });
    EXPECT_EQ(end.err, "00022200\n00000222\n00002022\n");
}

TEST_F(Flow, PrintingModelAsksTheListOfTheLastQueuesType) {
    tool.WriteDb("en_US/PrtString", {{"DisableCustomBanner", ",b"}, {"W2PSDisableCustomBanner", ",a"}});
    ChildEnd end = Run([] {
        StartAdd();
        for (int type : {QUEUE_PRINTER_HOST, QUEUE_SERVER, QUEUE_PRINTER_DEVICE, QUEUE_SERVER_DEVICE}) {
            MPS_tty.type = type;
            PrintingModelChangeCB(&AddPrinterMenu, nullptr);
            fprintf(stderr, "%i%li ", AddPrinterMenuItems[ADD_BANNER].state,
                    static_cast<long>(AddPrinterMenuItems[ADD_BANNER].value.i));
        }
    });
    EXPECT_EQ(end.err, "20 20 01 01 ");
}

// ---- Modify

static std::string Labels() {
    std::string text;
    for (int i = 0; i < MOD_INTERFACE; i++)
        if (ModifyQueMenuItems[i].state == STATE_NORMAL)
            text += std::string(ModifyQueMenuItems[i].text) + "|";
    return text;
}

TEST_F(Flow, ModifyShowsTheQueue) {
    struct Case {
        const char *fields, *count, *want; // the catalogue is absent: lead-ins are keys
    };
    static const Case Cases[] = {
        {"q h lp b.ppd 0 0 0 0 0 0", "h ps1", "25_55workstation to printer|25_56TCP/IP|25_67h|25_58h|"},
        {"q h lp b.ppd 0 0 0 0 0 1", "h ps1",
         "25_55workstation to printer|25_56TCP/IP|25_57h using ps1|25_58h|"},
        {"q h lp b.ppd 1 0 0 0 0 0", "h ps1",
         "25_55workstation to print server|25_56TCP/IP|25_57h using ps1|25_58h|"},
        {"q h lp b.ppd 3 0 0 0 0 0", "", "25_55workstation to printer|25_56TCP/IP|25_58h|"},
        {"q h lp b.ppd 2 0 0 0 0 0", "", "25_55workstation to printer|25_56local device|25_67h|"},
        {"q h lp b.ppd 4 0 0 0 0 1", "", "25_55workstation to printer|25_56local device|25_58h|"},
        {"q h lp b.ppd 4 0 0 0 0 0", "/dev/x",
         "25_55workstation to printer|25_56local device|25_67/dev/x|25_58h|"},
    };
    for (const Case &c : Cases) {
        tool.WriteDb("que", {{"q", QueData(c.fields)}, {"h count", CountData(c.count)}});
        SetQueSettingsTty("q");
        EXPECT_EQ(Labels(), std::string("25_53q|25_54Model b|") + c.want) << c.fields << " " << c.count;
    }
    tool.WriteDb("que", {{"q", QueData("q h lp gone.ppd 0 7 0 255 0 0")}, {" default", "q"}});
    SetQueSettingsTty("q");
    EXPECT_EQ(PrinterModelTty, 0);
    EXPECT_EQ(Labels().find("25_53q|25_54Model a|"), 0u); // no position counts as the first model
    EXPECT_EQ(ModifyQueMenuItems[MOD_BANNER].initial.i, 1);
    EXPECT_EQ(ModifyQueMenuItems[MOD_INTERFACE].initial.i, 0);
    EXPECT_EQ(ModifyQueMenuItems[MOD_FEATURES].initial.i, 1);
    EXPECT_EQ(ModifyQueMenuItems[MOD_DEFAULT].initial.i, 1);
}

TEST_F(Flow, ModifyWritesTheSettingsAsTheyStand) {
    SetQueSettingsTty("q1");
    EXPECT_EQ(ReadWhole(tool.Path(SettingsFile)), "100% \"x\"\nend");
    EXPECT_EQ(MPS_tty.settings, nullptr);
    std::string large(60000, '%');
    tool.WriteDb("que",
                 {{"q", QueData("q h lp b.ppd 0 0 0 0 0 0")}, {"q **", large}, {std::string(400, 'k'), "x"}});
    SetQueSettingsTty("q");
    EXPECT_EQ(ReadWhole(tool.Path(SettingsFile)), large);
}

// ---- Copy

TEST_F(Flow, CopyOfEachType) {
    struct Case {
        int type;
        const char *defaults, *line;
    };
    static const Case Cases[] = {
        {0, "0 0 srv||ps1", "-pm wp -hn srv -psqn raw"},  {1, "1 0 srv||ps1", "-pm wps -hn srv -psqn ps1"},
        {2, "0 1 |srv|ps1", "-pm wp -dn srv -psqn raw"},  {3, "2 0 srv||ps1", "-pm psp -hn srv -psqn raw"},
        {4, "2 1 |srv|ps1", "-pm psp -dn srv -psqn raw"},
    };
    tool.WriteDb("en_US/PrtString", {{"b", ".sppditem LprQue\nraw\n.eppditem\n"}});
    for (const Case &c : Cases) {
        tool.WriteDb("que", {{"q1", QueData("q1 h x b.ppd " + std::to_string(c.type))},
                             {"h count", CountData("srv ps1")}});
        ChildEnd end = Run([&] {
            GetQueDbEntry(&MPS_tty, "q1");
            snprintf(pCloneQueName, QUE_NAME, "q1");
            InitCloneQueMenu(&CloneQueMenu);
            const TextMenuItem *items = CloneQueMenuItems;
            fprintf(stderr, "%s %li %li %s|%s|%s\n", items[COPY_MODEL].text,
                    static_cast<long>(items[COPY_PRINTING_MODEL].initial.i),
                    static_cast<long>(items[COPY_CONNECTION].initial.i), items[COPY_HOST].initial.s,
                    items[COPY_DEVICE].initial.s, items[COPY_SERVER_PRINTER].initial.s);
            InitMenu(&CloneQueMenu);
            SetText(CloneQueMenu, COPY_NAME, "new");
            Report(ApplyCQSettingsTty(&CloneQueMenu, nullptr));
        });
        EXPECT_EQ(end.err, std::string("25_91Model b ") + c.defaults +
                               "\n=0 [lists dropped]\nT/prnqtool new -log prndeck -cl q1 " + c.line + "\n");
    }
}

TEST_F(Flow, CopyRefusesWhatIsMissing) {
    struct Case {
        const char *name, *host, *device, *printer;
        int printingModel, connection;
        const char *want;
    };
    static const Case Cases[] = {
        {"no host", "", "d", "p", PM_HOST, CONNECTION_TCP, "20_126Error"},
        {"no device", "h", "", "p", PM_HOST, CONNECTION_DEVICE, "20_126Error"},
        {"unknown host", "nohost", "", "", PM_SERVER_PRINTER, CONNECTION_TCP, "Unknown hostname nohostError"},
        {"neither of the server's names", "", "", "", PM_SERVER, CONNECTION_TCP, "20_126Error20_129Error"},
    };
    for (const Case &c : Cases) {
        ChildEnd end = Run(
            [&] {
                GetQueDbEntry(&MPS_tty, "q1");
                SetText(CloneQueMenu, COPY_NAME, "new");
                SetText(CloneQueMenu, COPY_HOST, c.host);
                SetText(CloneQueMenu, COPY_DEVICE, c.device);
                SetText(CloneQueMenu, COPY_SERVER_PRINTER, c.printer);
                CloneQueMenuItems[COPY_PRINTING_MODEL].value.i = c.printingModel;
                CloneQueMenuItems[COPY_CONNECTION].value.i = c.connection;
                Report(ApplyCQSettingsTty(&CloneQueMenu, nullptr));
            },
            "\n\n");
        EXPECT_EQ(end.out, c.want) << c.name;
        EXPECT_EQ(end.err, "=1 ") << c.name;
    }
}

// ---- Delete

TEST_F(Flow, DeleteRunsALineForEachName) {
    struct Case {
        const char *name, *input, *want;
    };
    // The catalogue is absent, so the headings are keys without a line feed.
    static const Case Cases[] = {
        {"one", "q1\ny\n", "T/prnqtool q1 -x -log prndeck\n"},
        {"refused", "q1\nn\n", ""},
        {"no answer", "\n", ""},
        {"end of input", "", ""},
        {"end at the question", "q1\n", ""},
        {"commas, blanks and tabs", "q1, q3\tq10\ny\n",
         "T/prnqtool q1 -x -log prndeck\nT/prnqtool q3 -x -log prndeck\nT/prnqtool q10 -x -log prndeck\n"},
        {"unknown between known", "q1 zz q3\ny\n\n",
         "T/prnqtool q1 -x -log prndeck\nT/prnqtool q3 -x -log prndeck\n"},
        {"part of a name runs", "q\ny\n", "T/prnqtool q -x -log prndeck\n"},
        {"shell words", "$(id) `id` ;id\ny\n\n\n\n", ""},
    };
    for (const Case &c : Cases) {
        ChildEnd end = Run([] { RemoveExistingPrinter(&MainMenu, nullptr); }, c.input);
        EXPECT_EQ(end.err, c.want) << c.name;
    }
    ChildEnd end = Run([] { RemoveExistingPrinter(&MainMenu, nullptr); }, "zz %n\ny\n\n\n");
    EXPECT_NE(end.out.find("\"zz\" is not an existing queue.Error\"%n\" is not an existing queue."),
              std::string::npos)
        << end.out;
}

// ---- Main menu

TEST_F(Flow, ListsOfAHostWithoutQueues) {
    SystemSpy spy;
    pQueList = nullptr;
    InitMainMenu(&MainMenu);
    EXPECT_EQ(spy.asked.size(), 1u); // the second list isn't asked for
    EXPECT_EQ(pQueList, nullptr);
    EXPECT_STREQ(MainMenuItems[MAIN_QUEUES].text, "25_33");
    EXPECT_EQ(pExistingTarvoPrinterList, nullptr);
    EXPECT_EQ(ExistingPrinterCnt + ExistingTarvoPrinterCnt, 0);

    spy.answers = {{"-LQ", "x\nq3\nq1\n"}};
    InitMainMenu(&MainMenu);
    InitMainMenu(&MainMenu); // has its lists
    EXPECT_EQ(spy.asked.size(), 3u);
    EXPECT_STREQ(MainMenuItems[MAIN_QUEUES].text, "25_33 q1 q3 x");
    EXPECT_STREQ(pTarvoQueList, ",q1,q3");
    EXPECT_STREQ(pExistingTarvoPrinterList, "25_34 q1 q3");
    EXPECT_EQ(ExistingPrinterCnt, 3);
    EXPECT_EQ(ExistingTarvoPrinterCnt, 2);
    EXPECT_STREQ(MainMenu.title, "25_1 4.50.29");
}

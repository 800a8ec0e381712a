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
#include <tuple>

TEST(FormatQueList, BreaksInFrontOfTheWidth) {
    const std::tuple<const char *, const char *, int> cases[] = {
        {nullptr, "H\n", 0},
        {",q1,q2,", "H\n q1 q2", 2},
        {",abcd,abcd", "H\n abcd abcd", 2},
        {",abcd,abcde,abc,ab", "H\n abcd\n abcde abc\n ab", 4}, // the column restarts behind the name
        {",abcdefghijkl,a", "H\n\n abcdefghijkl\n a", 2}};
    for (auto [list, want, names] : cases) {
        int count = -1;
        EXPECT_EQ(TakeText(FormatQueList(list, "H\n", 10, &count)), want);
        EXPECT_EQ(count, names) << want;
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
                pQueList = nullptr;
                InitMainMenu(&MainMenu);
                flow();
                fprintf(stderr, "%s", pQueList ? "" : "[lists dropped]\n");
                for (std::string line : spy.lines) fprintf(stderr, "%s\n", Plain(line).c_str());
                fflush(stderr);
                _exit(0); // nothing of the test's own runs twice
            },
            input);
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

// The banner's state and value, then the states of the two setup items.
static void ShowBannerItems() {
    const TextMenuItem *items = AddPrinterMenuItems;
    fprintf(stderr, "%i%li%i%i ", items[ADD_BANNER].state, static_cast<long>(items[ADD_BANNER].value.i),
            items[ADD_SETUP].state, items[ADD_BANNER_SETUP].state);
}

TEST_F(Flow, ModelAndQueueTypeDecideOnTheBanner) {
    tool.WriteDb("en_US/PrtString", {{"DisableCustomBanner", ",b,"},
                                     {"DefaultCustomBannerOff", ",a"},
                                     {"W2PSDisableCustomBanner", ",a"},
                                     {"tv_generic", ".sppditem v4DriverPluginFilename\n\n.eppditem\n"}});
    ChildEnd end = Run([] {
        StartAdd();
        for (int model = 0; model < 3; model++) {
            AddPrinterMenuItems[ADD_MODEL].value.i = model;
            PrinterModelChangeCB(&AddPrinterMenu, &AddPrinterMenuItems[ADD_MODEL]);
            ShowBannerItems();
        }
        AddPrinterMenuItems[ADD_MODEL].value.i = 0;
        for (int type : {QUEUE_PRINTER_HOST, QUEUE_PRINTER_DEVICE}) {
            MPS_tty.type = type; // of the queue last modified or copied
            PrintingModelChangeCB(&AddPrinterMenu, nullptr);
            ShowBannerItems();
        }
    });
    EXPECT_EQ(end.err, "0000 2000 0122 2022 0122 ");
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
    const std::string printer = "25_55workstation to printer|", tcp = printer + "25_56TCP/IP|",
                      device = printer + "25_56local device|"; // the catalogue is absent: lead-ins are keys
    const std::tuple<const char *, const char *, std::string> cases[] = {
        // fields, count record, labels
        {"0 0 0 0 0 0", "h ps1", tcp + "25_67h|25_58h|"},
        {"0 0 0 0 0 1", "h ps1", tcp + "25_57h using ps1|25_58h|"},
        {"1 0 0 0 0 0", "h ps1", "25_55workstation to print server|25_56TCP/IP|25_57h using ps1|25_58h|"},
        {"3 0 0 0 0 0", "", tcp + "25_58h|"},
        {"2 0 0 0 0 0", "", device + "25_67h|"},
        {"4 0 0 0 0 1", "", device + "25_58h|"},
        {"4 0 0 0 0 0", "/dev/x", device + "25_67/dev/x|25_58h|"}};
    for (const auto &[fields, count, want] : cases) {
        tool.WriteDb("que",
                     {{"q", QueData(std::string("q h lp b.ppd ") + fields)}, {"h count", CountData(count)}});
        SetQueSettingsTty("q");
        EXPECT_EQ(Labels(), "25_53q|25_54Model b|" + want) << fields << " " << count;
    }
    tool.WriteDb("que", {{"q", QueData("q h lp gone.ppd 0 7 0 255 0 0")}, {" default", "q"}});
    SetQueSettingsTty("q");
    EXPECT_EQ(Labels().find("25_53q|25_54Model a|"), 0u); // no position counts as the first model
    const int initial[] = {MOD_BANNER, MOD_FEATURES, MOD_DEFAULT, MOD_INTERFACE};
    for (int item : initial) EXPECT_EQ(ModifyQueMenuItems[item].initial.i, item != MOD_INTERFACE) << item;
}

TEST_F(Flow, ModifyWritesTheSettingsAsTheyStand) {
    std::string large(60000, '%');
    tool.WriteDb("que",
                 {{"q", QueData("q h lp b.ppd 0 0 0 0 0 0")}, {"q **", large}, {std::string(400, 'k'), "x"}});
    SetQueSettingsTty("q");
    EXPECT_EQ(ReadWhole(tool.Path(SettingsFile)), large);
}

// ---- Copy

TEST_F(Flow, CopyOfEachType) {
    const std::pair<const char *, const char *> cases[] = {// defaults of the menu, options of the line
                                                           {"0 0 srv||ps1", "-pm wp -hn srv -psqn raw"},
                                                           {"1 0 srv||ps1", "-pm wps -hn srv -psqn ps1"},
                                                           {"0 1 |srv|ps1", "-pm wp -dn srv -psqn raw"},
                                                           {"2 0 srv||ps1", "-pm psp -hn srv -psqn raw"},
                                                           {"2 1 |srv|ps1", "-pm psp -dn srv -psqn raw"}};
    tool.WriteDb("en_US/PrtString", {{"b", ".sppditem LprQue\nraw\n.eppditem\n"}});
    for (int type = 0; type < 5; type++) {
        tool.WriteDb("que", {{"q1", QueData("q1 h x b.ppd " + std::to_string(type))},
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
        EXPECT_EQ(end.err, std::string("25_91Model b ") + cases[type].first +
                               "\n=0 [lists dropped]\nT/prnqtool new -log prndeck -cl q1 " +
                               cases[type].second + "\n");
    }
}

TEST_F(Flow, CopyRefusesWhatIsMissing) {
    const std::tuple<const char *, const char *, int, int, const char *> cases[] = {
        {"", "d", PM_HOST, CONNECTION_TCP, "20_126Error"},
        {"h", "", PM_HOST, CONNECTION_DEVICE, "20_126Error"},
        {"nohost", "", PM_SERVER_PRINTER, CONNECTION_TCP, "Unknown hostname nohostError"},
        {"", "", PM_SERVER, CONNECTION_TCP, "20_126Error20_129Error"}}; // the queue of the server too
    for (auto [host, device, printingModel, connection, want] : cases) {
        MPS_tty.settings = nullptr;
        SetText(CloneQueMenu, COPY_NAME, "new");
        SetText(CloneQueMenu, COPY_HOST, host);
        SetText(CloneQueMenu, COPY_DEVICE, device);
        CloneQueMenuItems[COPY_PRINTING_MODEL].value.i = printingModel;
        CloneQueMenuItems[COPY_CONNECTION].value.i = connection;
        ChildEnd end = Run([] { Report(ApplyCQSettingsTty(&CloneQueMenu, nullptr)); }, "\n\n");
        EXPECT_EQ(end.out, want);
        EXPECT_EQ(end.err, "=1 ") << want;
    }
    FreeMenu(&CloneQueMenu);
}

// ---- Delete

TEST_F(Flow, DeleteRunsALineForEachName) {
    // The catalogue is absent, so the headings are keys without a line feed.
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {"refused", "q1\nn\n", ""},
        {"no answer", "\n", ""},
        {"end of input", "", ""},
        {"end at the question", "q1\n", ""},
        {"commas, blanks, tabs and an unknown name", "q1, zz q3\tq10\ny\n\n",
         "T/prnqtool q1 -x -log prndeck\nT/prnqtool q3 -x -log prndeck\nT/prnqtool q10 -x -log prndeck\n"},
        {"part of a name runs", "q\ny\n", "T/prnqtool q -x -log prndeck\n"},
        {"shell words", "$(id) `id` %n ;id\ny\n\n\n\n\n", ""},
    };
    for (auto [name, input, want] : cases)
        EXPECT_EQ(Run([] { RemoveExistingPrinter(&MainMenu, nullptr); }, input).err, want) << name;
}

// The list of queues in its width, and the lines that the copy and the deletion of queues run. menus_test.py
// plays the flows whole.
#include "prndeck/PrdTty.h"

#include "common/PrdCommonUtils.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "prndeck/Prd.h"
#include "tests/lib/AppTool.h"

#include <algorithm>
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

static struct hostent *FindHost(const char *) {
    static struct hostent Host;
    return &Host;
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
        ComList[CMD_RM].path = ComList[CMD_SH].path = ComList[CMD_CLEAR].path = "/bin";
        tool.WriteModels({"a.ppd", "b.ppd", "tv_generic.ppd"});
        tool.WriteDb("que", {{"q1", QueData("q1 host raw b.ppd 0 1 0 1 0 0")},
                             {"q1 **", "100% \"x\"\nend"},
                             {"host count", CountData("host ps1")},
                             {"q3", QueData("q3 dev lp gone.ppd 2 0 1 0 1 0")},
                             {" default", "q1"}});
    }
    ~Flow() override { pGethostbyname = gethostbyname; }
    ChildEnd Run(const std::function<void()> &flow, const std::string &input = "") {
        return RunForked(
            [&] {
                SystemSpy spy;
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
    AppTool tool;
};

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
            SetItemText(&CloneQueMenuItems[COPY_NAME], "new");
            fprintf(stderr, "=%i ", ApplyCQSettingsTty(&CloneQueMenu, nullptr));
        });
        EXPECT_EQ(end.err, std::string("25_91Model b ") + cases[type].first +
                               "\n=0 [lists dropped]\nT/prnqtool new -log prndeck -cl q1 " +
                               cases[type].second + "\n");
    }
}

TEST_F(Flow, DeleteRunsALineForEachName) {
    // The catalogue is absent, so the headings are keys without a line feed.
    const std::tuple<const char *, const char *, const char *> cases[] = {
        {"refused", "q1\nn\n", ""},
        {"end at the question", "q1\n", ""},
        {"commas, blanks, tabs and an unknown name", "q1, zz q3\tq10\ny\n\n",
         "T/prnqtool q1 -x -log prndeck\nT/prnqtool q3 -x -log prndeck\nT/prnqtool q10 -x -log prndeck\n"},
        {"part of a name runs", "q\ny\n", "T/prnqtool q -x -log prndeck\n"},
        {"shell words", "$(id) `id` %n ;id\ny\n\n\n\n\n", ""},
    };
    for (auto [name, input, want] : cases)
        EXPECT_EQ(Run([] { RemoveExistingPrinter(&MainMenu, nullptr); }, input).err, want) << name;
}

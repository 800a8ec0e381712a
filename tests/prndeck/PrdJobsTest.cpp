// Waiting jobs: what is counted and shown of spool directories, what stays chosen, and the lines that remove.
#include "prndeck/core/PrdJobs.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "print/prnoutbase.h"
#include "prndeck/core/Prd.h"
#include "prndeck/core/PrdDiscNets.h"
#include "prndeck/core/PrdQueList.h"
#include "prndeck/gui/PrdGui.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiJobs.h"
#include "prndeck/gui/PrdWizard.h"
#include "tests/lib/AppTool.h"
#include "tests/lib/Capture.h"
#include "tests/lib/WindowRig.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtUtils.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <net/if.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

static std::unique_ptr<AppTool> Tool;

// The spool of the printers in a place of the test's own.
static std::string SpoolOf(const char *printer) {
    fs::path directory = fs::path(pSpoolRoot) / "Tarvo" / fs::path(pToolPath).filename() / printer;
    fs::create_directories(directory);
    return directory.string();
}

static void AddJob(const std::string &directory, const std::string &number, const std::string &control,
                   size_t size = 10) {
    std::ofstream(directory + "/cf" + number) << control;
    std::ofstream(directory + "/df" + number) << std::string(size, 'x');
    std::ofstream(directory + "/.q", std::ios::app) << "cf" << number << " df" << number << "\n";
}

static std::string Rows(const char *list) {
    XmStringTable items = nullptr;
    int count = 0;
    std::string out;
    XtVaGetValues(XmtGetWidget(list), XmNitems, &items, XmNitemCount, &count, nullptr);
    for (int i = 0; i < count; i++) {
        char *text = static_cast<char *>(
            XmStringUnparse(items[i], nullptr, XmCHARSET_TEXT, XmCHARSET_TEXT, nullptr, 0, XmOUTPUT_ALL));
        out += std::string(text) + "|";
        XtFree(text);
    }
    return out;
}

class Jobs : public testing::Test {
protected:
    static void TearDownTestSuite() { Tool.reset(); }
    void SetUp() override {
        static std::string reason;
        static bool flRig = StartWindowRig("1280x1024x24", &reason);
        if (!flRig) GTEST_SKIP() << reason;
        if (!Tool) MakeWindows();
        fs::remove_all(pSpoolRoot);
    }
    static void MakeWindows() {
        static std::string root;
        Tool = std::make_unique<AppTool>();
        root = Tool->Path("spool");
        pSpoolRoot = root.c_str();
        pNLSLang = SaveStr_("en_US");
        Tool->WriteDb("en_US/CoreString", {{"12_7", std::string("Queue: \0", 8)},
                                           {"20_172", std::string("Jobs of %s\0", 11)},
                                           {"20_173", std::string("Status: %s\0", 11)},
                                           {"20_174", std::string("%i min old\0", 11)},
                                           {"20_175", std::string("no list\0", 8)}});
        Tool->WriteDb("en_US/PrtHelp", {{"x", "x"}});
        Tool->WriteDb("en_US/PrtString", {{"x", "x"}});
        Tool->WriteModels({"tv_a.ppd", "tv_generic.ppd"});
        Tool->WriteDb("que", {{"q1", QueData("q1 hall lp tv_a.ppd 0 0 0 0 0 0")},
                              {"q2", QueData("q2 room lp tv_a.ppd 0 0 0 0 0 0")},
                              {"q3", QueData("q3 hall lp tv_a.ppd 0 0 0 0 0 0")}});
        chmod(Tool->Write("prnqtool", "#!/bin/sh\nprintf 'q1:\\nq2:\\nq3:\\n'\n").c_str(), 0755);
        chmod(
            Tool->Write("prnrm", "#!/bin/sh\nprintf '<%s>' \"$@\" >>" + Tool->Path("removed") + "\n").c_str(),
            0755);
        pDiscIoctl = [](int, unsigned long, void *argument) {
            static_cast<ifconf *>(argument)->ifc_len = 0;
            return 0;
        };
        flUserIsRoot = 1;
        GenGui();
        RealizeWindows();
    }
    static void Event(int id, const char *text = nullptr, intptr_t value = 0,
                      const char *selection = nullptr) {
        XmtCallData data = {};
        data.id = id;
        data.reason = XmtCR_DEFAULT;
        data.value = value;
        data.text = const_cast<char *>(text);
        data.selection = const_cast<char *>(selection);
        WizardEventHandler(&data);
    }
    static std::string Removed() {
        std::ifstream file(Tool->Path("removed"));
        std::string words;
        std::getline(file, words);
        fs::remove(Tool->Path("removed"));
        return words;
    }
};

TEST_F(Jobs, CountsAreThoseOfThePlacesWhereQueuesPrint) {
    std::string hall = SpoolOf("hall");
    char *queues = pTarvoQueList;
    pTarvoQueList = nullptr;
    Event(WIZARD_JOB_COUNTS);
    EXPECT_EQ(Rows("jmql"), "");
    pTarvoQueList = queues;
    AddJob(hall, "A001h", "P q1 h ann x");
    AddJob(hall, "A002h", "P q3 h bob x");
    Event(WIZARD_JOB_COUNTS);
    EXPECT_EQ(pJobPath.size(), 2U);
    EXPECT_EQ(Rows("jmql"), "  2               q1|  0               q2|  2               q3|");
    AddJob(SpoolOf("room"), "A003h", "P q2 h cid x");
    Event(WIZARD_JOB_COUNTS_REFRESH);
    EXPECT_EQ(Rows("jmql"), "  2               q1|  1               q2|  2               q3|");
    pTarvoQueList = nullptr; // all were deleted
    Event(WIZARD_JOB_COUNTS_REFRESH);
    EXPECT_EQ(Rows("jmql"), "");
    pTarvoQueList = queues;
}

TEST_F(Jobs, OneQueueWithItsStatusAndTheJobsThatAreWhole) {
    std::string hall = SpoolOf("hall");
    AddJob(hall, "A001h", "P q1 h ann x", 90);
    AddJob(hall, "A002,\\h", "short", 5);
    AddJob(hall, "A003h", "P q1 h cid x");
    fs::remove(hall + "/dfA003h");
    std::ofstream(hall + "/.q", std::ios::app) << "\nlonely\n../x ../y\n";
    std::ofstream(hall + "/.status") << "printing 100%\n";
    Event(WIZARD_JOB_QUEUE, "  3               q1", 1);
    EXPECT_EQ(Rows("jmsjl"), "ann                   fA001h                          102|"
                             "                      fA002,\\h                        10|");
    char *status = XmtGetText("jmss");
    EXPECT_STREQ(status, "Status: printing 100%\n");
    XtFree(status);
    char *label = XmtGetLabel("jmxq");
    EXPECT_NE(strstr(label, "hall"), nullptr) << label;
    PutMem(label);
}

// A list of the scheduler's jobs is as old as its last answer, one of the own store is always true.
TEST_F(Jobs, AListTellsHowOldItIs) {
    std::string hall = SpoolOf("hall");
    auto status = [&] {
        Event(WIZARD_JOB_QUEUE, "  1               q1", 1);
        char *text = XmtGetText("jmss");
        std::string out = text;
        XtFree(text);
        return out;
    };
    EXPECT_EQ(status(), "no list");
    AddJob(hall, "A001h", "P q1 h ann x");
    EXPECT_EQ(status(), "");
    std::ofstream(hall + "/.refresh") << "";
    std::ofstream(hall + "/.status") << "idle";
    EXPECT_EQ(status(), "Status: idle");
    fs::last_write_time(hall + "/.refresh", fs::file_time_type::clock::now() - std::chrono::seconds(150));
    EXPECT_EQ(status(), "Status: idle\n2 min old");
}

TEST_F(Jobs, WhatIsChosenStaysChosenAndIsRemoved) {
    std::string hall = SpoolOf("hall");
    for (const char *number : {"A001h", "A002h", "A003h"}) AddJob(hall, number, "P q1 h ann x");
    Event(WIZARD_JOB_QUEUE, "  3               q1", 1);
    Event(WIZARD_JOB_DELETE);
    EXPECT_EQ(Removed(), "") << "nothing is chosen";
    std::string rows;
    for (const PrintJob &job : ReadJobs(hall))
        if (job.name != "fA002h") rows += MakeJobRow(job) + '\0';
    Event(WIZARD_JOB_CHOICE, nullptr, 0, (rows + '\0').c_str());
    fs::remove(hall + "/cfA001h"); // printed meanwhile
    UpdateJobList();
    EXPECT_EQ(pJobText.size(), 1U);
    int *places = nullptr, count = 0;
    ASSERT_TRUE(XmListGetSelectedPos(XmtGetWidget("jmsjl"), &places, &count));
    EXPECT_TRUE(count == 1 && places[0] == 2);
    XtFree(reinterpret_cast<char *>(places));
    Event(WIZARD_JOB_DELETE);
    EXPECT_EQ(Removed(), "<q1><fA003h>");
    EXPECT_TRUE(pJobText.empty());
    Event(WIZARD_JOB_DELETE_ALL);
    EXPECT_EQ(Removed(), "<q1><->");
}

// Place of the row at the top, and of the one that the keys are on.
static std::string Places(const char *name) {
    int top = 0;
    Widget list = XmtGetWidget(name);
    XtVaGetValues(list, XmNtopItemPosition, &top, nullptr);
    return std::to_string(top) + " " + std::to_string(XmListGetKbdItemPos(list));
}

TEST_F(Jobs, ListsAndStatusStayWhereTheUserIs) {
    std::string hall = SpoolOf("hall"), status;
    for (int i = 100; i < 130; i++) AddJob(hall, "A" + std::to_string(i) + "h", "P q1 h ann x");
    for (int i = 0; i < 30; i++) status += "a line\n";
    std::ofstream(hall + "/.status") << status;
    Event(WIZARD_JOB_COUNTS);
    Event(WIZARD_JOB_QUEUE, "  3               q1", 1);
    XmListSetKbdItemPos(XmtGetWidget("jmql"), 2);
    XmListSetKbdItemPos(XmtGetWidget("jmsjl"), 9);
    XmListSetPos(XmtGetWidget("jmsjl"), 6);
    XmtSetTextPosTop("jmss", 21);
    fs::remove(hall + "/cfA101h");
    fs::remove(hall + "/cfA105h"); // the one at the top
    std::ofstream(hall + "/.status") << status + "one more\n";
    UpdateJobList();
    EXPECT_EQ(Places("jmsjl"), "6 7");
    EXPECT_EQ(XmTextGetTopCharacter(XmtGetWidget("jmss")), 15); // a line's start
    Event(WIZARD_JOB_QUEUE, "  3               q3", 3);
    EXPECT_EQ(Places("jmsjl") + " " + std::to_string(XmTextGetTopCharacter(XmtGetWidget("jmss"))), "1 1 0");
    XmListSetKbdItemPos(XmtGetWidget("jmsjl"), 5);
    AddJob(SpoolOf("room"), "A001h", "P q2 h ann x");
    UpdateJobCount();
    EXPECT_EQ(Places("jmql"), "1 2");
    for (int i = 100; i < 126; i++) fs::remove(hall + "/cfA" + std::to_string(i) + "h");
    UpdateJobList();
    EXPECT_EQ(Places("jmsjl"), "1 4") << "the last";
}

TEST_F(Jobs, AQueueThatGoesTakesItsJobsFromTheWindow) {
    AddJob(SpoolOf("room"), "A001h", "P q2 h ann x");
    Event(WIZARD_JOB_QUEUE, "  1               q2", 2);
    EXPECT_NE(Rows("jmsjl"), "");
    char *list = pTarvoQueList;
    pTarvoQueList = SaveStr_(",q1,q3"); // q3 has q2's place now
    UpdateJobList();
    EXPECT_EQ(Rows("jmsjl"), "");
    PutMem(pTarvoQueList);
    pTarvoQueList = list;
}

TEST_F(Jobs, TheIntervalIsAWholeNumberOfSeconds) {
    Event(WIZARD_JOB_INTERVAL, "7");
    EXPECT_EQ(JobTimerInterval, 7);
    Event(WIZARD_JOB_INTERVAL, "");
    EXPECT_EQ(JobTimerInterval, 7) << "the field is being filled in";
}

TEST_F(Jobs, AProgramThatIsNotThereIsSaid) {
    fs::rename(Tool->Path("prnrm"), Tool->Path("away"));
    Event(WIZARD_JOB_QUEUE, "  0               q1", 1);
    Event(WIZARD_JOB_DELETE_ALL);
    ASSERT_TRUE(pXmtMsgList && pXmtMsgList->head);
    EXPECT_NE(
        std::string(static_cast<XmtMsgEntry *>(pXmtMsgList->head->item)->text).find("prnrm: No such file"),
        std::string::npos);
    XmtCallData data = {};
    data.reason = XmtCR_CANCEL;
    XmtMsgEventHandler(&data);
    fs::rename(Tool->Path("away"), Tool->Path("prnrm"));
}

// ---- Real stores

static std::string Messages() {
    std::string out;
    for (ListLink *link = pXmtMsgList ? pXmtMsgList->head : nullptr; link; link = link->next)
        out += std::string(static_cast<XmtMsgEntry *>(link->item)->text) + "\n";
    return out;
}

static void PressMenuEntry(const char *name) {
    XmPushButtonCallbackStruct call = {};
    call.reason = XmCR_ACTIVATE;
    XtCallCallbacks(XmtGetWidget(name), XmNactivateCallback, &call);
}

static bool WaitForJobs(int count) {
    return RunLoopUntil([=] { return XmtGetListCount("jmsjl") == count; });
}

// Run by jobs_window_test.py in a tool directory with queues and jobs: three wait for the first queue.
TEST(DISABLED_JobsRoad, OneIsRemovedAndThenTheOthers) {
    std::string reason;
    ASSERT_TRUE(StartWindowRig("1024x768x24", &reason) && FindWindowUser(&reason)) << reason;
    pSpoolRoot = getenv("PRN_ROAD_SPOOL");
    pToolPath = SaveStr_(fs::current_path().c_str());
    flUserIsRoot = 1;
    OpenCatalogues();
    LoadModels();
    GenGui();
    EXPECT_FALSE(XtIsManaged(XmtGetWidget(MENU_JOBS)));
    PressMenuEntry(MENU_JOBS);
    ASSERT_TRUE(RunLoopUntil([] { return XtIsManaged(XmtGetWidget("jmw")); }));
    EXPECT_EQ(Rows("jmql"), "  0               hall|  3               office|");
    PressAt("jmql", "Down space");
    ASSERT_TRUE(RunLoopUntil([] { return XtIsManaged(XmtGetWidget("jmsw")); })) << JobQue;
    ASSERT_TRUE(WaitForJobs(3)) << Rows("jmsjl");
    printf("shown %s\n", Rows("jmsjl").c_str());
    PressAt("jmsjl", "space");
    EXPECT_EQ(pJobText.size(), 1U);
    ClickAndDispatch("jmsd");
    EXPECT_TRUE(WaitForJobs(2)) << Rows("jmsjl") << Messages();
    printf("left %s\n", Rows("jmsjl").c_str());
    ClickAndDispatch("jmsda");
    EXPECT_TRUE(WaitForJobs(0)) << Rows("jmsjl");
    ClickAndDispatch("jmse");
    ASSERT_TRUE(RunLoopUntil([] { return !XtIsManaged(XmtGetWidget("jmsw")); }));
    Widget counts = XtParent(XmtGetWidget("jmw"));
    XRaiseWindow(XtDisplay(counts), XtWindow(counts)); // as a window manager does
    DispatchWaiting();
    ClickAndDispatch("jmr");
    EXPECT_TRUE(RunLoopUntil([] {
        return Rows("jmql") == "  0               hall|  0               office|";
    })) << Rows("jmql");
    EXPECT_EQ(Messages(), "");
}

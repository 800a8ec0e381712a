// Messages that wait for each other, timers, the file dialog.
#include "xmt/XmtMsg.h"

#include "common/MemMgr.h"
#include "tests/lib/Capture.h"
#include "tests/lib/WindowRig.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtString.h"
#include "xmt/XmtUtils.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <string>
#include <vector>

static std::string Heard;

static void Hear(XmtCallData *data) {
    Heard += std::to_string(data->id) + ":" + std::to_string(data->reason) + " ";
}

// ---- timers, by ticks of our own

static std::string Rung;
static int OwnTimer;

static void Ring(intptr_t argument) {
    Rung += std::to_string(argument) + " ";
}

static void RingAndStop(intptr_t argument) {
    Ring(argument);
    XmtStopTimer(OwnTimer);
}

static void RingAndReset(intptr_t argument) {
    Ring(argument);
    XmtResetTimer(OwnTimer);
}

static void RingAndStart(intptr_t argument) {
    Ring(argument);
    XmtStopTimer(OwnTimer);
    OwnTimer = XmtStartTimer(XMT_TIMER_ONCE, 1, argument > 1 ? RingAndStart : Ring, argument - 1);
}

static void Tick(int count) {
    while (count-- > 0) {
        XtIntervalId id = 0;
        XmtTimerEventHandler(nullptr, &id);
        Rung += "|";
    }
}

TEST(XmtTimer, CountsDown) {
    static const struct {
        const char *name;
        int mode, seconds;
        XmtTimerCallback callback;
        const char *rung; // in four ticks
    } cases[] = {
        {"once", XMT_TIMER_ONCE, 2, Ring, "|3 |||"},
        {"repeated", XMT_TIMER_REPEAT, 2, Ring, "|3 ||3 |"},
        {"suspended at first", XMT_TIMER_SUSPENDED, 1, Ring, "||||"},
        {"stops itself", XMT_TIMER_REPEAT, 1, RingAndStop, "3 ||||"},
        {"resets itself, once", XMT_TIMER_ONCE, 1, RingAndReset, "3 ||||"},
        {"resets itself, repeated", XMT_TIMER_REPEAT, 2, RingAndReset, "|3 ||3 |"},
        {"starts another, which waits for the next tick", XMT_TIMER_REPEAT, 1, RingAndStart, "3 |2 |1 |0 |"},
        {"no time", XMT_TIMER_ONCE, 0, Ring, "||||"},
        {"no callback", XMT_TIMER_REPEAT, 1, nullptr, "||||"},
    };
    for (const auto &row : cases) {
        Rung.clear();
        OwnTimer = XmtStartTimer(row.mode, row.seconds, row.callback, 3);
        Tick(4);
        EXPECT_EQ(Rung, row.rung) << row.name;
        XmtStopTimer(OwnTimer);
    }
}

TEST(XmtTimer, IsSuspendedAndResumed) {
    int id = XmtStartTimer(XMT_TIMER_SUSPENDED, 3, Ring, 1);
    XmtResumeTimer(id, 0);
    Tick(3);
    XmtResumeTimer(id, 2);
    Tick(1);
    XmtSuspendTimer(id);
    Tick(3);
    XmtResetTimer(id);
    Rung.clear();
    Tick(4);
    EXPECT_EQ(Rung, "|1 ||1 |");
    XmtStopTimer(id);
    XmtResetTimer(id);
    XmtStopTimer(id);
}

TEST(XmtTimer, IdsComeAgainButNotWhileInUse) {
    int kept = XmtStartTimer(XMT_TIMER_REPEAT, 9, Ring, 0), highest = 0, last = kept;
    for (int i = 0; i < 250; i++) {
        int id = XmtStartTimer(XMT_TIMER_ONCE, 9, Ring, 0);
        ASSERT_NE(id, kept);
        ASSERT_NE(id, last);
        highest = std::max(highest, id);
        XmtStopTimer(last == kept ? 0 : last);
        last = id;
    }
    EXPECT_EQ(highest, 100);
    std::vector<int> ids;
    while (int id = XmtStartTimer(XMT_TIMER_ONCE, 9, Ring, 0)) ids.push_back(id);
    EXPECT_EQ(ids.size(), 98u);
    for (int id : ids) XmtStopTimer(id);
    XmtStopTimer(last);
    XmtStopTimer(kept);
    EXPECT_EQ(CheckMem(), nullptr);
}

TEST(XmtMsg, WithoutAWindowGoesToStandardError) {
    Capture capture;
    XmtPostMsg("title", "%s at 100%%", "%s%%n");
    XmtPostMsg_(nullptr, "50%% %n");
    EXPECT_EQ(capture.Err(), "prndeck: %s%n at 100%\nprndeck: 50%% %n\n");
    EXPECT_EQ(pXmtMsgList, nullptr);
}

TEST(XmtMsg, SysErrorEnds) {
    ChildEnd end = RunForked([] {
        errno = ENOENT;
        XmtSysError("no %s", "icon");
    });
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.err, "no icon : No such file or directory\n");
}

// ---- on the display

class XmtMsgWindow : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (!FindWindowUser(&reason) || !StartWindowRig("1024x768x24", &reason)) return;
        XmtNewObject(nullptr, Hear, 100, "WB main t(Main) { bp go p(10,10) s(120,40) l(Go); }\n");
        flUp = AppShell != nullptr;
    }
    void SetUp() override {
        if (!flUp) GTEST_SKIP() << reason;
        Heard.clear();
    }
    static std::string reason;
    static bool flUp;
};
std::string XmtMsgWindow::reason;
bool XmtMsgWindow::flUp;

static std::string ShownMsg() {
    if (!XtIsManaged(XmtGetWidget("XmtPostMsg"))) return "";
    auto string = reinterpret_cast<XmString>(XmtGetXmValue("XmtPostMsg", XmNmessageString));
    std::string text = TakeText(XmtDecodeString(string));
    XmStringFree(string);
    return text;
}

static bool WaitForMsg(const std::string &text) {
    bool flShown = RunLoopUntil([&] { return XmtGetWidget("XmtPostMsg") && ShownMsg() == text; });
    if (!flShown) printf("shown: %s\n", ShownMsg().c_str());
    return flShown;
}

static void PointAtMsg() {
    RunLoopFor(50);
    PointAt("XmtPostMsg");
    RunLoopFor(50);
}

static void PressInMsg(const std::string &keys) {
    PointAtMsg();
    PressKeys(keys);
}

static void PostThree(XmtCallData *data) {
    Hear(data);
    XmtSetPostMsgWidget(Hear, 7);
    XmtPostMsg("First", "one %s", "\"100%%\"");
    XmtPostMsg(nullptr, "two");
    XmtSetPostMsgWidget(Hear, 0);
    XmtPostMsg_(nullptr, "@three ~ %n");
}

TEST_F(XmtMsgWindow, ThreeOfOneHandlerShowOneAfterAnother) {
    XmtFindObject("go")->handler = PostThree;
    RunLoopFor(50);
    ClickAt("go");
    ASSERT_TRUE(WaitForMsg("one \"100%\""));
    EXPECT_EQ(pXmtMsgList->count, 3);
    EXPECT_FALSE(XtIsManaged(XmMessageBoxGetChild(XmtGetWidget("XmtPostMsg"), XmDIALOG_HELP_BUTTON)));
    PressInMsg("Return");
    ASSERT_TRUE(WaitForMsg("two"));
    EXPECT_EQ(Heard, "101:1 7:4 ");
    PressInMsg("Escape");
    ASSERT_TRUE(WaitForMsg("@three ~ %n"));
    PressInMsg("Return");
    EXPECT_TRUE(RunLoopUntil([] { return flPostMsgIsHidden != 0; }));
    EXPECT_EQ(Heard, "101:1 7:4 ") << "the second had no callback, the third no id";
    EXPECT_EQ(pXmtMsgList->count, 0);
}

static void PostAgain(XmtCallData *data) {
    Hear(data);
    XmtPostMsg(nullptr, "from the callback");
}

TEST_F(XmtMsgWindow, ClosedByTheManagerCountsAsCancelled) {
    XmtSetPostMsgWidget(PostAgain, 9);
    XmtPostMsg(nullptr, "to be closed");
    XmtPostMsg(nullptr, "waiting");
    XmtWakeMainLoop();
    ASSERT_TRUE(WaitForMsg("to be closed"));
    CloseByManager("XmtPostMsg");
    ASSERT_TRUE(WaitForMsg("waiting"));
    EXPECT_EQ(Heard, "9:5 ");
    PressInMsg("Return");
    ASSERT_TRUE(WaitForMsg("from the callback"));
    PressInMsg("Return");
    EXPECT_TRUE(RunLoopUntil([] { return pXmtMsgList->count == 0; }));
}

TEST_F(XmtMsgWindow, HelpCallsItsTargetAndTheMessageStays) {
    XmtNewObject("main", Hear, 300, "bp helper p(10,60) l(Help);");
    XmtSetPostMsgHelpWidget("helper");
    XmtPostMsg(nullptr, "helped");
    XmtWakeMainLoop();
    ASSERT_TRUE(WaitForMsg("helped"));
    Widget button = XmMessageBoxGetChild(XmtGetWidget("XmtPostMsg"), XmDIALOG_HELP_BUTTON);
    EXPECT_TRUE(XtIsManaged(button));
    PressInMsg("F1");
    EXPECT_TRUE(RunLoopUntil([] { return Heard == "300:7 "; })) << Heard;
    EXPECT_EQ(ShownMsg(), "helped");
    PressInMsg("Return");
    EXPECT_TRUE(RunLoopUntil([] { return pXmtMsgList->count == 0 && flPostMsgIsHidden; }));
    XmtSetPostMsgHelpWidget(nullptr);
    XmtPostMsg(nullptr, "alone");
    XmtWakeMainLoop();
    ASSERT_TRUE(WaitForMsg("alone"));
    EXPECT_FALSE(XtIsManaged(button));
    PressInMsg("Return");
    EXPECT_TRUE(RunLoopUntil([] { return pXmtMsgList->count == 0 && flPostMsgIsHidden; }));
}

static void PostFromTimer(intptr_t) {
    XmtPostMsg(nullptr, "from a timer");
}

TEST_F(XmtMsgWindow, APostOfATimerShowsWithoutAnEvent) {
    XmtStartTimer(XMT_TIMER_ONCE, 1, PostFromTimer, 0);
    flExitMainLoop = 0;
    EXPECT_TRUE(WaitForMsg("from a timer"));
    PressInMsg("Return");
    EXPECT_TRUE(RunLoopUntil([] { return pXmtMsgList->count == 0 && flPostMsgIsHidden; }));
}

static void PostAndAnswer(int count) {
    for (int i = 0; i < count; i++) XmtPostMsg("title", "message %i", i);
    while (pXmtMsgList->count > 0) {
        XmtDisplayMsg();
        XmtCallData data{};
        data.reason = XmtCR_OK;
        XmtMsgEventHandler(&data);
        DispatchWaiting();
    }
    XmtHide("XmtPostMsg");
    DispatchWaiting();
}

TEST_F(XmtMsgWindow, AThousandLeaveNothingBehind) {
    PostAndAnswer(50);
    size_t before = HeldBytes();
    PostAndAnswer(1000);
    EXPECT_LT(HeldBytes(), before + 4000);
}

// ---- the inactivity timer, the file dialog

TEST_F(XmtMsgWindow, NoEventForSomeTimeEndsTheLoop) {
    RunLoopFor(50);
    flXmtETDestroyApp = 1;
    XmtStartEventTimer(Hear, 55, 1);
    XmtMainEventLoop();
    EXPECT_EQ(Heard, "55:1 ");
    EXPECT_EQ(flXmtTimedOut, 1);
    EXPECT_EQ(XmtET, 0);
}

static std::string Chosen;

static void Choose(XmtCallData *data) {
    Chosen += std::to_string(data->id) + ":" + std::to_string(data->reason) + ":" + data->text + " ";
    if (data->id == 61) XmtSelectFile(Choose, 62, nullptr);
}

TEST_F(XmtMsgWindow, AFileIsChosen) {
    Scratch scratch;
    std::string file = scratch.Write("page.ps", "%!");
    XmtSelectFile(Hear, 60, "Send");
    XmtSelectFile(Choose, 61, "Send File");
    Widget dialog = XmtGetWidget("XmtFS"), text = XmFileSelectionBoxGetChild(dialog, XmDIALOG_TEXT);
    EXPECT_FALSE(XtIsManaged(XmFileSelectionBoxGetChild(dialog, XmDIALOG_HELP_BUTTON)));
    for (int round = 0; round < 2; round++) {
        EXPECT_TRUE(RunLoopUntil([&] { return XtIsManaged(dialog); }));
        XmTextSetString(text, const_cast<char *>(file.c_str()));
        RunLoopFor(50);
        PointAt("XmtFS");
        RunLoopFor(50);
        PressKeys("Return");
        size_t length = Chosen.size();
        ASSERT_TRUE(RunLoopUntil([&] { return Chosen.size() > length; }));
    }
    EXPECT_EQ(Chosen, "61:4:" + file + " 62:4:" + file + " ");
    EXPECT_FALSE(XtIsManaged(dialog));
    XmtSelectFile(Choose, 63, nullptr);
    CloseByManager("XmtFS");
    EXPECT_TRUE(RunLoopUntil([&] { return !XtIsManaged(dialog); }));
    XmtSelectFile(Choose, 64, nullptr);
    RunLoopFor(50);
    PointAt("XmtFS");
    PressKeys("Escape");
    EXPECT_TRUE(RunLoopUntil([&] { return !XtIsManaged(dialog); }));
    EXPECT_EQ(Heard + Chosen, "61:4:" + file + " 62:4:" + file + " ");
}

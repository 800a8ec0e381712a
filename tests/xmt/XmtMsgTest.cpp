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
        {"no callback", XMT_TIMER_REPEAT, 1, nullptr, "||||"}};
    for (const auto &row : cases) {
        Rung.clear();
        OwnTimer = XmtStartTimer(row.mode, row.seconds, row.callback, 3);
        Tick(4);
        EXPECT_EQ(Rung, row.rung) << row.name;
        XmtStopTimer(OwnTimer);
    }
}

TEST(XmtTimer, IsSuspendedAndResumed) {
    Rung.clear();
    int id = XmtStartTimer(XMT_TIMER_SUSPENDED, 3, Ring, 1);
    XmtResumeTimer(id, 0);
    Tick(3);
    XmtResumeTimer(id, 2);
    Tick(1);
    XmtSuspendTimer(id);
    Tick(3);
    XmtResetTimer(id);
    Tick(4);
    EXPECT_EQ(Rung, "||||||||1 ||1 |");
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

// ---- on the display

class XmtMsgWindow : public WindowTest {
protected:
    static void SetUpTestSuite() {
        SetUpWindow(Hear, 100, "WB main t(Main) { bp go p(10,10) s(120,40) l(Go); }\n");
    }
    void SetUp() override {
        WindowTest::SetUp();
        Heard.clear();
    }
};

static std::string ShownMsg() {
    if (!XmtGetWidget("XmtPostMsg") || !XtIsManaged(XmtGetWidget("XmtPostMsg"))) return "";
    auto string = reinterpret_cast<XmString>(XmtGetXmValue("XmtPostMsg", XmNmessageString));
    std::string text = TakeText(XmtDecodeString(string));
    XmStringFree(string);
    return text;
}

static void PressInMsg(const char *keys) {
    PointAt("XmtPostMsg");
    RunLoopFor(50);
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

static void PostAgain(XmtCallData *data) {
    Hear(data);
    XmtPostMsg(nullptr, "from the callback");
}

static void PostTwo(const char *text) {
    XmtSetPostMsgWidget(PostAgain, 9);
    XmtPostMsg(nullptr, "%s", text);
    XmtPostMsg(nullptr, "waiting");
    XmtWakeMainLoop();
}

static void PostWithHelp(const char *text) {
    XmtNewObject("main", Hear, 300, "bp helper p(10,60) l(Help);");
    XmtSetPostMsgHelpWidget("helper");
    XmtPostMsg_(nullptr, text);
    XmtWakeMainLoop();
}

// No X event follows.
static void PostFromTimer(const char *) {
    XmtSetPostMsgHelpWidget(nullptr);
    XmtStartTimer(
        XMT_TIMER_ONCE, 1, [](intptr_t) { XmtPostMsg(nullptr, "from a timer"); }, 0);
}

static const struct Step {
    void (*act)(const char *words);
    const char *words, *shown, *heard;
    bool flHelp; // the help button is there
} Steps[] = {
    {ClickAt, "go", "one \"100%\"", "101:1 ", false},
    {PressInMsg, "Return", "two", "7:4 ", false}, // the second has no callback, the third no id
    {PressInMsg, "Escape", "@three ~ %n", "", false},
    {PressInMsg, "Return", "", "", false},
    {PostTwo, "to be closed", "to be closed", "", false},
    {CloseByManager, "XmtPostMsg", "waiting", "9:5 ", false},
    {PressInMsg, "Return", "from the callback", "", false},
    {PressInMsg, "Return", "", "", false},
    {PostWithHelp, "helped", "helped", "", true},
    {PressInMsg, "F1", "helped", "300:7 ", true},
    {PressInMsg, "Return", "", "", true},
    {PostFromTimer, "", "from a timer", "", false},
    {PressInMsg, "Return", "", "", false},
};

TEST_F(XmtMsgWindow, OneAfterAnother) {
    XmtFindObject("go")->handler = PostThree;
    RunLoopFor(50);
    for (const Step &step : Steps) {
        Heard.clear();
        step.act(step.words);
        RunLoopUntil([&] { return ShownMsg() == step.shown && Heard == step.heard; });
        RunLoopFor(50);
        EXPECT_EQ(ShownMsg() + "|" + Heard, std::string(step.shown) + "|" + step.heard) << step.words;
        Widget help = XmMessageBoxGetChild(XmtGetWidget("XmtPostMsg"), XmDIALOG_HELP_BUTTON);
        EXPECT_EQ(XtIsManaged(help), step.flHelp) << step.words;
    }
    EXPECT_TRUE(flPostMsgIsHidden && pXmtMsgList->count == 0);
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
    XmtSelectFile(Choose, 61, "Send File"); // whose callback asks for another
    Widget dialog = XmtGetWidget("XmtFS");
    Chosen.clear();
    for (const char *keys : {"Return", "Return", "Escape"}) {
        ASSERT_TRUE(RunLoopUntil([&] { return XtIsManaged(dialog); }));
        XmTextSetString(XmFileSelectionBoxGetChild(dialog, XmDIALOG_TEXT), const_cast<char *>(file.c_str()));
        RunLoopFor(50);
        PointAt("XmtFS");
        RunLoopFor(50);
        size_t length = Chosen.size();
        PressKeys(keys);
        RunLoopUntil([&] { return Chosen.size() > length || !XtIsManaged(dialog); });
        if (!XtIsManaged(dialog)) XmtSelectFile(Choose, 63, nullptr);
    }
    CloseByManager("XmtFS");
    EXPECT_TRUE(RunLoopUntil([&] { return !XtIsManaged(dialog); }));
    EXPECT_EQ(Heard + Chosen, "61:4:" + file + " 62:4:" + file + " ");
}

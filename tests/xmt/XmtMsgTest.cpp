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
#include <set>
#include <string>
#include <vector>

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
    int kept = XmtStartTimer(XMT_TIMER_REPEAT, 9, Ring, 0);
    std::vector<int> ids;
    for (int round = 0; round < 3; round++) {
        ids.clear();
        while (int id = XmtStartTimer(XMT_TIMER_ONCE, 9, Ring, 0)) ids.push_back(id);
        std::set<int> different(ids.begin(), ids.end());
        EXPECT_EQ(different.size(), 99u);
        EXPECT_EQ(different.count(kept), 0u);
        for (int id : ids) XmtStopTimer(id);
    }
    int first = XmtStartTimer(XMT_TIMER_ONCE, 9, Ring, 0);
    XmtStopTimer(first);
    EXPECT_NE(XmtStartTimer(XMT_TIMER_ONCE, 9, Ring, 0), first)
        << "one that just ended is not given out at once";
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
        SetUpWindow(RecordEvent, 100, "WB main t(Main) { bp go p(10,10) s(120,40) l(Go); }\n");
    }
    void SetUp() override {
        WindowTest::SetUp();
        Events.clear();
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
    RecordEvent(data);
    XmtSetPostMsgWidget(RecordEvent, 7);
    XmtPostMsg("First", "one %s", "\"100%%\"");
    XmtPostMsg(nullptr, "two");
    XmtSetPostMsgWidget(RecordEvent, 0);
    XmtPostMsg_(nullptr, "@three ~ %n");
}

static void PostAgain(XmtCallData *data) {
    RecordEvent(data);
    XmtPostMsg(nullptr, "from the callback");
}

static void PostTwo(const char *text) {
    XmtSetPostMsgWidget(PostAgain, 9);
    XmtPostMsg(nullptr, "%s", text);
    XmtPostMsg(nullptr, "waiting");
    XmtWakeMainLoop();
}

static void PostWithHelp(const char *text) {
    XmtNewObject("main", RecordEvent, 300, "bp helper p(10,60) l(Help);");
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
    {ClickAt, "go", "one \"100%\"", "go 101/1=0;", false},
    {PressInMsg, "Return", "two", "XmtPostMsg 7/4=0;", false}, // the second has no callback, the third no id
    {PressInMsg, "Escape", "@three ~ %n", "", false},
    {PressInMsg, "Return", "", "", false},
    {PostTwo, "to be closed", "to be closed", "", false},
    {CloseByManager, "XmtPostMsg", "waiting", "XmtPostMsg 9/5=0;", false},
    {PressInMsg, "Return", "from the callback", "", false},
    {PressInMsg, "Return", "", "", false},
    {PostWithHelp, "helped", "helped", "", true},
    {PressInMsg, "F1", "helped", "helper 300/7=0;", true},
    {PressInMsg, "Return", "", "", true},
    {PostFromTimer, "", "from a timer", "", false},
    {PressInMsg, "Return", "", "", false},
};

TEST_F(XmtMsgWindow, OneAfterAnother) {
    XmtFindObject("go")->handler = PostThree;
    RunLoopFor(50);
    for (const Step &step : Steps) {
        Events.clear();
        step.act(step.words);
        RunLoopUntil([&] { return ShownMsg() == step.shown && Events == step.heard; });
        RunLoopFor(50);
        EXPECT_EQ(ShownMsg() + "|" + Events, std::string(step.shown) + "|" + step.heard) << step.words;
        Widget help = XmMessageBoxGetChild(XmtGetWidget("XmtPostMsg"), XmDIALOG_HELP_BUTTON);
        EXPECT_EQ(XtIsManaged(help), step.flHelp) << step.words;
    }
    EXPECT_TRUE(flPostMsgIsHidden && pXmtMsgList->count == 0);
}

TEST_F(XmtMsgWindow, ALongOneFitsTheScreen) {
    std::string text = "File \"/tmp";
    while (text.size() < 400) text += "/a long name";
    XmtPostMsg_(nullptr, (text + "\" does not exist.").c_str());
    XmtPostMsg_(nullptr, "Two\nlines\n");
    EXPECT_TRUE(RunLoopUntil([] { return ShownMsg().ends_with("exist."); })) << ShownMsg();
    EXPECT_LT(XmtGetXmValue("XmtPostMsg", XmNwidth), 900);
    for (const char *next : {"Two\nlines\n", ""}) {
        PressInMsg("Return");
        EXPECT_TRUE(RunLoopUntil([&] { return ShownMsg() == next; })) << ShownMsg();
    }
}

// ---- the inactivity timer, the file dialog

TEST_F(XmtMsgWindow, NoEventForSomeTimeEndsTheLoop) {
    RunLoopFor(50);
    flXmtETDestroyApp = 1;
    XmtStartEventTimer(RecordEvent, 55, 1);
    XmtMainEventLoop();
    EXPECT_EQ(Events, "XmtET 55/1=0;");
    EXPECT_EQ(flXmtTimedOut, 1);
    EXPECT_EQ(XmtET, 0);
}

static void ChooseAgain(XmtCallData *data) {
    RecordEvent(data);
    XmtSelectFile(RecordEvent, 62, nullptr);
}

TEST_F(XmtMsgWindow, AFileIsChosen) {
    Scratch scratch;
    std::string file = scratch.Write("page.ps", "%!");
    XmtSelectFile(RecordEvent, 60, "Send"); // gives way to the next
    XmtSelectFile(ChooseAgain, 61, "Send File");
    Widget dialog = XmtGetWidget("XmtFS");
    auto press = [&](const char *key) {
        ASSERT_TRUE(RunLoopUntil([&] { return XtIsManaged(dialog); }));
        XmTextSetString(XmFileSelectionBoxGetChild(dialog, XmDIALOG_TEXT), file.data());
        PointAt("XmtFS");
        RunLoopFor(50);
        size_t length = Events.size();
        PressKeys(key);
        RunLoopUntil([&] { return Events.size() > length || !XtIsManaged(dialog); });
    };
    press("Return");
    press("Return");
    std::string path = " " + file + ";";
    EXPECT_FALSE(XtIsManaged(dialog));
    EXPECT_EQ(TakeEvents(), "XmtFS 61/4=0" + path + "XmtFS 62/4=0" + path);
    XmtSelectFile(RecordEvent, 63, nullptr);
    press("Escape");
    XmtSelectFile(RecordEvent, 64, nullptr);
    CloseByManager("XmtFS");
    EXPECT_TRUE(RunLoopUntil([&] { return !XtIsManaged(dialog); }));
    EXPECT_EQ(TakeEvents(), "");
}

static void ClickChild(Widget dialog, int child) {
    Widget button = XmFileSelectionBoxGetChild(dialog, static_cast<unsigned char>(child));
    Position x, y;
    XtTranslateCoords(button, 5, 5, &x, &y);
    ClickPoint(x, y);
}

// By the button, by Return in the filter's field, and by a directory that is opened.
TEST_F(XmtMsgWindow, LookingForFilesIsNoAnswer) {
    Scratch scratch;
    for (const char *name : {"a.ps", "b.ps", "c.txt"}) scratch.Write(name, "");
    XmtSelectFile(RecordEvent, 65, nullptr);
    Widget dialog = XmtGetWidget("XmtFS");
    Widget filter = XmFileSelectionBoxGetChild(dialog, XmDIALOG_FILTER_TEXT);
    ASSERT_TRUE(RunLoopUntil([&] { return XtIsManaged(dialog); }));
    auto listed = [&] {
        int count = 0;
        XtVaGetValues(dialog, XmNfileListItemCount, &count, nullptr);
        return count;
    };
    XmTextSetString(filter, (scratch.Path("") + "*.ps").data());
    ClickChild(dialog, XmDIALOG_APPLY_BUTTON);
    EXPECT_TRUE(RunLoopUntil([&] { return listed() == 2; }));
    XmTextSetString(filter, (scratch.Path("") + "*.txt").data());
    ClickChild(dialog, XmDIALOG_FILTER_TEXT);
    PressKeys("Return");
    EXPECT_TRUE(RunLoopUntil([&] { return listed() == 1; }));
    ClickChild(dialog, XmDIALOG_DIR_LIST); // its first row, this directory
    PressKeys("Return");
    RunLoopFor(100);
    EXPECT_TRUE(XtIsManaged(dialog));
    EXPECT_EQ(TakeEvents(), "");
    XmtHide("XmtFS");
    scratch.Write("new.txt", "");
    XmtSelectFile(RecordEvent, 66, nullptr);
    EXPECT_EQ(listed(), 2);
    XmtHide("XmtFS");
}

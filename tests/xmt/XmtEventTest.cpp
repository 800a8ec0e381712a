// The display that does not come, stays away or goes; events of every kind by real keys and clicks.
#include "xmt/XmtEvent.h"

#include "tests/lib/Capture.h"
#include "tests/lib/WindowRig.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <X11/IntrinsicP.h>

#include <chrono>
#include <climits>
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <utility>

static const char NoDisplay[] = "prndeck: WARNING: can't open display\n";

static std::string Heard; // "name id/reason=value text" of each event

static int Count;

static void CountEvent(XmtCallData *) {
    Count++;
}

static void Hear(XmtCallData *data) {
    Heard += std::string(data->name) + " " + std::to_string(data->id) + "/" + std::to_string(data->reason) +
             "=" + (data->value > INT_MAX ? "text" : std::to_string(data->value));
    bool flTyped = data->length > 0;
    if (data->text)
        Heard += " " + (flTyped ? std::string(data->text, data->length) : std::string(data->text));
    for (const char *text = data->selection; text && *text; text += strlen(text) + 1)
        Heard += std::string("+") + text;
    Heard += ";";
}

// ---- the display; each case in a process of its own

TEST(XmtDisplay, ThereIsNone) {
    for (const char *display : {":63999", "", "nonsense", "nowhere.invalid:0"}) {
        ChildEnd end = RunForked([display] {
            setenv("DISPLAY", display, 1);
            if (XmtInitApp("prndeck", "prndeck", nullptr, nullptr)) exit(3);
            if (AppDisplay || AppContext || !flInitAppTimedOut) exit(4);
            if (XmtInitApp("prndeck", "prndeck", nullptr, nullptr)) exit(5);
        });
        EXPECT_EQ(end.status, 0) << display;
        EXPECT_EQ(end.err, std::string(NoDisplay) + NoDisplay) << display;
    }
}

static const char *const SkipMark = "no Xvfb";

TEST(XmtDisplay, OneThatDoesNotAnswerIsGivenUp) {
    ChildEnd end = RunForked([] {
        std::string reason;
        pid_t server = StartXvfb("640x480x24", &reason);
        if (server <= 0) {
            printf("%s", SkipMark);
            return;
        }
        kill(server, SIGSTOP);
        XmtOpenSeconds = 1;
        auto start = std::chrono::steady_clock::now();
        bool flOpen = XmtInitApp("prndeck", "prndeck", nullptr, nullptr);
        std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        struct sigaction action;
        sigaction(SIGALRM, nullptr, &action);
        printf("%d %d %d %d", flOpen, took.count() > 0.9 && took.count() < 3, alarm(0),
               action.sa_handler == SIG_DFL);
        kill(server, SIGKILL);
    });
    if (end.out == SkipMark) GTEST_SKIP() << end.out;
    EXPECT_EQ(end.out, "0 1 0 1");
    EXPECT_EQ(end.err, NoDisplay);
    EXPECT_EQ(end.status, 0);
}

static pid_t Server;

// A window with a main loop in a child process; the act comes from a timer.
static ChildEnd RunWindow(XmtTimerCallback act) {
    return RunForked([act] {
        std::string reason;
        Server = StartXvfb("640x480x24", &reason);
        if (Server <= 0 || !XmtInitApp("prndeck", "prndeck", nullptr, nullptr)) {
            printf("%s", SkipMark);
            return;
        }
        XmtNewObject(nullptr, Hear, 100, "WB main t(Main) { l x l(Text); }\n");
        XmtStartTimer(XMT_TIMER_ONCE, 1, act, 0);
        XmtMainEventLoop();
        printf("left");
        kill(Server, SIGKILL);
    });
}

TEST(XmtDisplay, ALostOneEndsTheProcess) {
    ChildEnd end = RunWindow([](intptr_t) { kill(Server, SIGKILL); });
    if (end.out == SkipMark) GTEST_SKIP() << end.out;
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.out, "");
    EXPECT_EQ(end.err, "ERROR: lost the connection to the display\n");
}

TEST(XmtDisplay, ATimerLeavesTheLoop) {
    ChildEnd end = RunWindow([](intptr_t) {
        XRaiseWindow(AppDisplay, 1); // an X error is no end, and nothing to show
        XSync(AppDisplay, 0);
        flExitMainLoop = 1;
    });
    if (end.out == SkipMark) GTEST_SKIP() << end.out;
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.out + end.err, "left");
}

TEST(XmtDisplay, ClosingTheMainWindowEndsTheProcess) {
    ChildEnd end = RunWindow([](intptr_t) { CloseByManager("main"); });
    if (end.out == SkipMark) GTEST_SKIP() << end.out;
    EXPECT_EQ(end.status, 0);
    EXPECT_EQ(end.out + end.err, "");
}

// ---- events

// Buttons and texts to the left, lists to the right; the option list lm is longer than one menu.
static const char MainWindow[] =
    "WB main t(Events) {\n"
    "M bar p(0,0) { b(Plain) m(File) { b(Open) b(Close) } }\n"
    "id(200) bp push p(10,40) l(Push) CB(me,ml,A,D,h);\n"
    "bp own p(100,40) l(Own) f(Cme[x] Ca[other] Ca[.]);\n"
    "id(210) bt toggle p(10,80) l(Toggle); bt statebut p(100,80) l(State) f(H1[hidden] C*[.]);\n"
    "l hidden p(200,80) l(Hidden);\n"
    "id(220) br radio p(10,120) L(One,Two,Three) CB(h);\n"
    "id(230) bl list p(10,240) l(List) L(Ex,Why,Zed);\n"
    "bl long p(160,240) L(1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23);\n"
    "id(240) t field p(10,290) s(10,1) CB(c,a,fg,fl); t moved p(150,290) s(10,1) CB(m);\n"
    "tp secret p(10,330) s(10,1) CB(a); t many p(10,370) s(20,3) CB(c) Ss(F,F);\n"
    "id(250) Bl one p(320,40) V(4) L(a,b,c) ; Blm some p(320,160) V(6) L(p,q,r,s,t,u);\n"
    "id(260) DR area p(320,300) s(60,40) bo(1);\n"
    "id(270) l other l(Other) p(320,380);\n"
    "}\n"
    "id(280) DE ask P(main) T(Ask) l(Name) t(abc); D up P(main) CB(pu,pd) { B upbox H { bp upbut l(Up); } "
    "}\n";

class XmtEventWindow : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (!FindWindowUser(&reason) || !StartWindowRig("1024x768x24", &reason)) return;
        XmtNewObject(nullptr, Hear, 100, MainWindow);
        flUp = AppShell != nullptr;
        if (flUp) RunLoopFor(100);
    }
    void SetUp() override {
        if (!flUp) GTEST_SKIP() << reason;
        PointAt("other");
        RunLoopFor(20);
        Heard.clear();
    }
    // What was heard by the time that it ends so.
    static std::string HearUntil(const std::string &end) {
        RunLoopUntil([&] { return Heard.size() >= end.size() && Heard.ends_with(end); });
        return std::exchange(Heard, "");
    }
    static std::string reason;
    static bool flUp;
};
std::string XmtEventWindow::reason;
bool XmtEventWindow::flUp;

TEST_F(XmtEventWindow, Buttons) {
    PointAt("push");
    EXPECT_EQ(HearUntil(";"), "push 200/18=0;");
    ClickAt("push");
    EXPECT_EQ(HearUntil("/16=0;"), "push 200/15=0;push 200/1=0;push 200/16=0;");
    PressKeys("space");
    EXPECT_EQ(HearUntil("/16=0;"), "push 200/15=0;push 200/1=0;push 200/16=0;");
    PressKeys("F1");
    EXPECT_EQ(HearUntil(";"), "push 200/7=0;");
    ClickAt("own");
    EXPECT_EQ(HearUntil("own 201/1=0;"), "push 200/19=0;other 270/1=0;own 201/1=0;");
}

TEST_F(XmtEventWindow, TogglesAndRadioBoxes) {
    ClickAt("toggle");
    EXPECT_EQ(HearUntil(";"), "toggle 210/2=1;");
    ClickAt("toggle");
    EXPECT_EQ(HearUntil(";"), "toggle 210/2=0;");
    EXPECT_EQ(XmtFindObject("toggle")->previous, 1);
    ClickAt("statebut");
    EXPECT_EQ(HearUntil(";"), "statebut 211/2=1;");
    EXPECT_FALSE(XtIsManaged(XmtGetWidget("hidden")));
    PressKeys("space");
    EXPECT_EQ(HearUntil(";"), "statebut 211/2=0;");
    EXPECT_TRUE(XtIsManaged(XmtGetWidget("hidden")));
    ClickAt("radio_3");
    EXPECT_EQ(HearUntil(";"), "radio 220/2=2;") << "the one switched off is silent";
    PressKeys("Up F1");
    EXPECT_EQ(HearUntil(";"), "radio 220/7=2;") << "help for another one does not choose it";
    PressKeys("space");
    EXPECT_EQ(HearUntil(";"), "radio 220/2=1;");
    EXPECT_EQ(XmtGetValue("radio"), 1);
}

// Menus grab the keyboard when they open: one key at a time.
static void PressSlowly(const std::string &keys) {
    for (size_t at = 0; at < keys.size(); at = keys.find_first_not_of(' ', keys.find(' ', at))) {
        PressKeys(keys.substr(at, keys.find(' ', at) - at));
        RunLoopFor(60);
    }
}

TEST_F(XmtEventWindow, OptionLists) {
    ClickAt("list");
    RunLoopFor(400);
    ClickAt("list_3");
    EXPECT_EQ(HearUntil(";"), "list 230/1=2;");
    EXPECT_EQ(XmtGetValue("list"), 2);
    PressSlowly("space Up Return");
    EXPECT_EQ(HearUntil(";"), "list 230/1=1;") << "the list has the focus";
    XmtSetFocus("long");
    PressSlowly("space Up Right Down Return");
    EXPECT_EQ(HearUntil(";"), "long 231/1=21;");
}

TEST_F(XmtEventWindow, Menus) {
    ClickAt("bar_1");
    EXPECT_EQ(HearUntil(";"), "bar_1 101/1=0;");
    ClickAt("bar_2_a_1_pd_cb");
    RunLoopFor(400);
    ClickAt("bar_2_b_2");
    EXPECT_EQ(HearUntil(";"), "bar_2_b_2 103/1=0;");
    PressSlowly("F10 Right Down Up Return");
    EXPECT_EQ(HearUntil(";"), "bar_2_b_1 102/1=0;") << "the menu comes up at the entry used last";
}

static void RefuseAndClear(XmtCallData *data) {
    if (data->reason == XmtCR_DEFAULT) XmtSetText(data->name, "");
    Hear(data);
    if (data->doit && data->text && *data->text == 'x') *data->doit = 0;
}

TEST_F(XmtEventWindow, Texts) {
    XmtFindObject("field")->handler = RefuseAndClear;
    ClickAt("field");
    EXPECT_EQ(HearUntil("/10=0;"), "field 240/10=0;");
    TypeText("axb");
    EXPECT_EQ(HearUntil(" b;"), "field 240/2=text a;field 240/2=text x;field 240/2=text b;");
    EXPECT_STREQ(XmtTextOf(XmtGetValue("field")), "a") << "the text in front of the last change";
    PressKeys("BackSpace Return");
    EXPECT_EQ(HearUntil("/1=text a;"), "field 240/2=text;field 240/2=text;field 240/1=text a;")
        << "nothing typed, no text; the text outlives what the handler sets";
    XmtFindObject("field")->handler = Hear;
    ClickAt("moved");
    EXPECT_EQ(HearUntil("/11=0;"), "field 240/11=0;");
    XmtSetText("moved", "words");
    PressKeys("End");
    HearUntil("moved 241/3=text;");
    ClickAt("secret");
    TypeText("pw");
    EXPECT_EQ(HearUntil("=0 w;"), "secret 242/2=0 p;secret 242/2=0 w;");
    ClickAt("many");
    TypeText("x");
    PressKeys("Return");
    EXPECT_EQ(HearUntil(" \n;"), "many 243/2=text x;many 243/2=text \n;");
}

TEST_F(XmtEventWindow, Lists) {
    auto clickRow = [](const char *list, int row) {
        Widget widget = XmtGetWidget(list);
        Position x, y, top;
        Dimension width, height;
        XmListPosToBounds(widget, row, &x, &top, &width, &height);
        XtTranslateCoords(widget, 5, static_cast<Position>(top + height / 2), &x, &y);
        ClickPoint(x, y);
    };
    clickRow("one", 2);
    EXPECT_EQ(HearUntil(";"), "one 250/1=2 b;");
    PressKeys("Down space");
    EXPECT_EQ(HearUntil(";"), "one 250/1=3 c;");
    RunLoopFor(500);
    clickRow("one", 3);
    EXPECT_EQ(HearUntil(";"), "one 250/1=0 c;") << "nothing is selected";
    clickRow("some", 2);
    EXPECT_EQ(HearUntil(";"), "some 251/20=2 q+q;");
    RunLoopFor(500);
    clickRow("some", 4);
    EXPECT_EQ(HearUntil(";"), "some 251/20=10 s+q+s;");
    EXPECT_EQ(TakeText(XmtSaveMultiSelectSelList(XmtFindObject("some")->selection, nullptr)), "q,s");
    RunLoopFor(500);
    clickRow("some", 2);
    EXPECT_EQ(HearUntil(";"), "some 251/20=8 q+s;");
}

TEST_F(XmtEventWindow, DialogsAndDrawingAreas) {
    XmtShow("ask");
    RunLoopFor(50);
    XmtSetFocus("ask");
    RunLoopFor(50);
    PressKeys("End");
    TypeText("de");
    PressKeys("Return");
    EXPECT_EQ(HearUntil(";"), "ask 280/4=0 abcde;");
    EXPECT_STREQ(XmtTextOf(XmtFindObject("ask")->value), "abcde");
    XmtShow("upbox");
    RunLoopFor(50);
    XmtHide("upbox");
    EXPECT_EQ(HearUntil("/14=0;"), "up 281/12=0;up 281/14=0;");
    ClickAt("area");
    EXPECT_TRUE(HearUntil(";area 260/9=0;").starts_with("area 260/9=0;area 260/9=0;"));
    RunLoopFor(50);
    Heard.clear();
    XtResizeWidget(XmtGetWidget("area"), 80, 40, 1);
    EXPECT_EQ(HearUntil("/13=0;"), "area 260/8=0;area 260/13=0;");
}

static void Hook() {
    Heard += "hook;";
}

static void LeaveModalLoop(intptr_t flag) {
    *reinterpret_cast<char *>(flag) = 1;
}

TEST_F(XmtEventWindow, HooksAndModalLoops) {
    EventLoopCBF = Hook;
    XmtWakeMainLoop();
    EXPECT_EQ(HearUntil("hook;"), "hook;");
    char flLeave = 0;
    XmtStartTimer(XMT_TIMER_ONCE, 1, LeaveModalLoop, reinterpret_cast<intptr_t>(&flLeave));
    XmtModalAppLoop(&flLeave);
}

// One round of events of many kinds, as Motif would deliver them.
static void SendRound() {
    char typed[] = "t";
    XmTextBlockRec block = {typed, 1, XmFMT_8_BIT};
    Boolean flUnused = 1;
    XmTextVerifyCallbackStruct text = {XmCR_MODIFYING_TEXT_VALUE, nullptr, flUnused, 0, 0, 0, 0, &block};
    XmToggleButtonCallbackStruct toggle = {XmCR_VALUE_CHANGED, nullptr, 1};
    XmAnyCallbackStruct activate = {XmCR_ACTIVATE, nullptr};
    XmtEventHandler(XmtGetWidget("field"), XmtFindObject("field"), &text);
    XmtEventHandler(XmtGetWidget("field"), XmtFindObject("field"), &activate);
    XmtEventHandler(XmtGetWidget("radio_2"), XmtFindObject("radio_2"), &toggle);
    XmtEventHandler(XmtGetWidget("statebut"), XmtFindObject("statebut"), &toggle);
    XmtEventHandler(XmtGetWidget("long_21"), XmtFindObject("long_21"), &activate);
    XmtEventHandler(XmtGetWidget("own"), XmtFindObject("own"), &activate);
    XmtSetListItem("one", 2, 1);
    XmtSetListItem("some", 5, 1);
    XmtSetListItem("some", 2, 1);
    XmtShow("ask");
    XmtHide("ask");
    DispatchWaiting();
}

TEST_F(XmtEventWindow, TenThousandLeaveNothingBehind) {
    for (const char *name : {"field", "radio_2", "long_21", "one", "some", "other", "own", "statebut"})
        XmtFindObject(name)->handler = CountEvent;
    for (int i = 0; i < 50; i++) SendRound();
    size_t before = HeldBytes();
    for (Count = 0; Count < 10000;) SendRound();
    EXPECT_LT(HeldBytes(), before + 4000);
}

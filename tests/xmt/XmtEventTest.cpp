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
#include <csignal>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <tuple>

static const char NoDisplay[] = "prndeck: WARNING: can't open display\n";

// ---- the display; each case in a process of its own

TEST(XmtDisplay, ThereIsNone) {
    for (const char *display : {":63999", "", "nonsense"}) {
        ChildEnd end = RunForked([display] {
            setenv("DISPLAY", display, 1);
            bool flOpen = XmtInitApp("prndeck", "prndeck", nullptr, nullptr);
            if (flOpen || AppDisplay || AppContext || !flInitAppTimedOut) exit(3);
        });
        EXPECT_EQ(std::to_string(end.status) + end.err, std::string("0") + NoDisplay) << display;
    }
}

static pid_t Server;

static void TryStoppedDisplay(intptr_t) {
    kill(Server, SIGSTOP);
    XmtOpenSeconds = 1;
    auto start = std::chrono::steady_clock::now();
    bool flOpen = XmtInitApp("prndeck", "prndeck", nullptr, nullptr);
    std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    struct sigaction action;
    sigaction(SIGALRM, nullptr, &action);
    printf("%d%d%d%d", flOpen, took.count() > 0.9 && took.count() < 3, alarm(0),
           action.sa_handler == SIG_DFL);
    kill(Server, SIGKILL);
    exit(0);
}

// With a display and a main window a timer acts, in a child process. With flWindow false the act comes
// before.
static ChildEnd RunWindow(XmtTimerCallback act, bool flWindow) {
    return RunForked([act, flWindow] {
        std::string reason;
        Server = StartXvfb("640x480x24", &reason);
        if (Server <= 0) exit(77);
        if (!flWindow) act(0);
        if (!XmtInitApp("prndeck", "prndeck", nullptr, nullptr)) exit(1);
        XmtNewObject(nullptr, RecordEvent, 100, "WB main t(Main) { l x l(Text); }\n");
        XmtStartTimer(XMT_TIMER_ONCE, 1, act, 0);
        XmtMainEventLoop();
        printf("left");
        kill(Server, SIGKILL);
    });
}

static void LeaveAfterXError(intptr_t) {
    XRaiseWindow(AppDisplay, 1);
    XSync(AppDisplay, 0);
    flExitMainLoop = 1;
}

TEST(XmtDisplay, Ends) {
    static const struct {
        const char *name;
        XmtTimerCallback act;
        bool flWindow;
        int status;
        std::string out, err;
    } cases[] = {{"one that does not answer is given up", TryStoppedDisplay, false, 0, "0101", NoDisplay},
                 {"one that is lost ends the process", [](intptr_t) { kill(Server, SIGKILL); }, true, 1, "",
                  "ERROR: lost the connection to the display\n"},
                 {"a timer leaves the loop, an X error does not", LeaveAfterXError, true, 0, "left", ""},
                 {"closing the main window ends", [](intptr_t) { CloseByManager("main"); }, true, 0, "", ""}};
    for (const auto &row : cases) {
        ChildEnd end = RunWindow(row.act, row.flWindow);
        if (end.status == 77) GTEST_SKIP() << "there is no Xvfb that starts here";
        EXPECT_EQ(std::make_tuple(end.status, end.out, end.err),
                  std::make_tuple(row.status, row.out, row.err))
            << row.name;
    }
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

static void RefuseAndClear(XmtCallData *data) {
    if (data->reason == XmtCR_DEFAULT) XmtSetText(data->name, "");
    RecordEvent(data);
    if (data->doit && data->text && *data->text == 'x') *data->doit = 0;
}

static void Hook() {
    Events += "hook;";
}

static void ClickRow(const char *list, int row) {
    Widget widget = XmtGetWidget(list);
    Position x, y, top;
    Dimension width, height;
    XmListPosToBounds(widget, row, &x, &top, &width, &height);
    XtTranslateCoords(widget, 5, static_cast<Position>(top + height / 2), &x, &y);
    ClickPoint(x, y);
}

class XmtEventWindow : public WindowTest {
protected:
    static void SetUpTestSuite() { SetUpWindow(RecordEvent, 100, MainWindow); }
};

// What the user or the program does, the words behind the verb, and what is heard of it.
static const struct Step {
    void (*act)(const char *words);
    const char *words, *heard;
} Steps[] = {
    {PointAt, "push", "push 200/18=0;"},
    {ClickAt, "push", "push 200/15=0;push 200/1=0;push 200/16=0;"},
    {PressSlowly, "space", "push 200/15=0;push 200/1=0;push 200/16=0;"},
    {PressSlowly, "F1", "push 200/7=0;"},
    {ClickAt, "own", "push 200/19=0;other 270/1=0;own 201/1=0;"},
    {ClickAt, "toggle", "toggle 210/2=1;"},
    {ClickAt, "statebut", "statebut 211/2=1;"},
    {PressSlowly, "space", "statebut 211/2=0;"},
    {ClickAt, "radio_3", "radio 220/2=2;"},   // the one switched off is silent
    {PressSlowly, "Up F1", "radio 220/7=2;"}, // help for another one does not choose it
    {PressSlowly, "space", "radio 220/2=1;"},
    {ClickAt, "list", ""},
    {ClickAt, "list_3", "list 230/1=2;"},
    {PressSlowly, "space Up Return", "list 230/1=1;"}, // the list has the focus
    {XmtSetFocus, "long", ""},
    {PressSlowly, "space Up Right Down Return", "long 231/1=21;"},
    {ClickAt, "bar_1", "bar_1 101/1=0;"},
    {ClickAt, "bar_2_a_1_pd_cb", ""},
    {ClickAt, "bar_2_b_2", "bar_2_b_2 103/1=0;"},
    {PressSlowly, "F10 Right Down Return", "bar_2_b_1 102/1=0;"},
    {ClickAt, "field", "field 240/10=0;"},
    {TypeText, "axb", "field 240/2=text a;field 240/2=text x;field 240/2=text b;"},
    {PressSlowly, "BackSpace", "field 240/2=text;"}, // nothing typed, no text
    {PressSlowly, "Return",
     "field 240/2=text;field 240/1=text a;"}, // x was refused, the text outlives its clearing
    {ClickAt, "moved", "field 240/11=0;"},
    {[](const char *words) { XmtSetText("moved", words); }, "words", ""},
    {PressSlowly, "End", "moved 241/3=text;"},
    {ClickAt, "secret", ""},
    {TypeText, "pw", "secret 242/2=0 p;secret 242/2=0 w;"},
    {ClickAt, "many", ""},
    {PressSlowly, "Return", "many 243/2=text \n;"},
    {[](const char *) { ClickRow("one", 2); }, "", "one 250/1=2 b;"},
    {PressSlowly, "Down space", "one 250/1=3 c;"},
    {PressSlowly, "space", "one 250/1=0 c;"}, // nothing is selected
    {PressSlowly, "space", "one 250/1=3 c;"},
    {PressSlowly, "Up Return", "one 250/20=2 b;"}, // what lights up is told
    {PressSlowly, "Down KP_Enter", "one 250/20=3 c;"},
    {[](const char *) { ClickRow("one", 1), ClickRow("one", 1); }, "", "one 250/1=1 a;one 250/20=1 a;"},
    {[](const char *) { ClickRow("some", 2); }, "", "some 251/20=2 q+q;"},
    {PressSlowly, "Down Return", "some 251/20=6 r+q+r;"}, // the others stay
    {[](const char *) { ClickRow("some", 3); }, "", "some 251/20=2 r+q;"},
    {XmtUpdate, "some", ""}, // a pause, or it is a double click
    {[](const char *) { ClickRow("some", 4); }, "", "some 251/20=10 s+q+s;"},
    {XmtUpdate, "some", ""},
    {[](const char *) { ClickRow("some", 2); }, "", "some 251/20=8 q+s;"},
    {XmtShow, "ask", ""},
    {XmtSetFocus, "ask", ""},
    {PressSlowly, "End d Return", "ask 280/4=0 abcd;"},
    {XmtShow, "upbox", "up 281/12=0;"},
    {XmtHide, "upbox", "up 281/14=0;"},
    {[](const char *name) { XtResizeWidget(XmtGetWidget(name), 80, 40, 1); }, "area",
     "area 260/8=0;area 260/13=0;"},
    {PointAt, "area", "area 260/9=0;"},
    {[](const char *) {
         EventLoopCBF = Hook;
         XmtWakeMainLoop();
     },
     "", "hook;"},
};

TEST_F(XmtEventWindow, ByKeysAndPointer) {
    XmtFindObject("field")->handler = RefuseAndClear;
    PointAt("other");
    RunLoopFor(100);
    for (const Step &step : Steps) {
        Events.clear();
        step.act(step.words);
        RunLoopUntil([&] { return Events.size() >= strlen(step.heard); });
        RunLoopFor(*step.heard ? 20 : 350);
        EXPECT_EQ(Events, step.heard) << &step - Steps << " " << step.words;
    }
    EXPECT_STREQ(XmtTextOf(XmtFindObject("ask")->value), "abcd");
    EXPECT_TRUE(XmtGetValue("radio") == 1 && XmtGetValue("list") == 1 &&
                XmtFindObject("statebut")->previous == 1);
    EXPECT_EQ(TakeText(XmtSaveMultiSelectSelList(XmtFindObject("some")->selection, nullptr)), "s");
}

// One round of events of many kinds, as Motif delivers them.
static void SendRound() {
    char typed[] = "t";
    XmTextBlockRec block = {typed, 1, XmFMT_8_BIT};
    XmTextVerifyCallbackStruct text = {XmCR_MODIFYING_TEXT_VALUE, nullptr, 1, 0, 0, 0, 0, &block};
    XmToggleButtonCallbackStruct toggle = {XmCR_VALUE_CHANGED, nullptr, 1};
    XmAnyCallbackStruct activate = {XmCR_ACTIVATE, nullptr};
    auto send = [](const char *name, void *call) {
        XmtEventHandler(XmtGetWidget(name), XmtFindObject(name), call);
    };
    send("field", &text);
    for (const char *name : {"field", "long_21", "own"}) send(name, &activate);
    for (const char *name : {"radio_2", "statebut"}) send(name, &toggle);
    for (int n : {5, 2}) XmtSetListItem("some", n, 1);
    XmtSetListItem("one", 2, 1);
    DispatchWaiting();
}

TEST_F(XmtEventWindow, TenThousandLeaveNothingBehind) {
    enum { ROUND = 9 };
    for (int i = 0; i < 50; i++) SendRound();
    size_t before = (Events.clear(), Events.shrink_to_fit(), HeldBytes());
    for (int i = 0; i < 10000 / ROUND; i++) {
        SendRound();
        Events.clear();
    }
    Events.shrink_to_fit();
    EXPECT_LT(HeldBytes(), before + 4000);
}

static void LeaveModalLoop(intptr_t flag) {
    *reinterpret_cast<char *>(flag) = 1;
}

TEST_F(XmtEventWindow, ATimerLeavesAModalLoop) {
    char flLeave = 0;
    XmtStartTimer(XMT_TIMER_ONCE, 1, LeaveModalLoop, reinterpret_cast<intptr_t>(&flLeave));
    XmtModalAppLoop(&flLeave);
}

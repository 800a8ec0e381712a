// Main windows, dialogs and menu bars: what their texts make, and what a user's mouse and keys do to them.
#include "xmt/XmtNew.h"

#include "common/MemMgr.h"
#include "tests/lib/AppTool.h"
#include "tests/lib/ObjectDump.h"
#include "tests/lib/WindowRig.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtColor.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

// clang-format off
#include <X11/IntrinsicP.h> // the next one needs it
#include <X11/CoreP.h>
// clang-format on
#include <gtest/gtest.h>

class Windows : public WindowTest {
protected:
    static void SetUpTestSuite() {
        if (!SetUpWindow(RecordEvent, 5,
                         "WF main id(77) t(A title: 50%) CB(a) f(C[x]) L(a) s(600,300); l inside; "))
            return;
        XmtNewObject("main", RecordEvent, 20, "F bars A(tf,lf,rf); B top A(bf,lf); ");
    }
    void SetUp() override {
        WindowTest::SetUp();
        Events.clear();
    }
};

TEST_F(Windows, HaveShellsOfTheirOwn) {
    EXPECT_EQ(DumpObjects("main_shell").substr(0, 30), "main 5 MainWindow{inside 6 Lab");
    EXPECT_STREQ(reinterpret_cast<char *>(XmtGetXmValue("main_shell", XmNtitle)), "A title: 50%");
    EXPECT_EQ(XmtFindObject("main")->format, nullptr);
    XmtNewObject(nullptr, RecordEvent, 30, "WM wm; WP wp; WB wb; WR wr; W ws t(Only) s(90,80) { B wsb; } ");
    std::string kinds;
    for (const char *name : {"wm", "wp", "wb", "wr", "ws"}) {
        std::string shell = std::string(name) + "_shell";
        const XmtObjectData *window = XmtFindObject(name);
        kinds += std::string(window->widget->core.widget_class->core_class.class_name) + " ";
        EXPECT_EQ(XmtFindObject(shell.c_str())->id, window->id) << name;
        EXPECT_TRUE(XtIsShell(XmtGetWidget(shell.c_str()))) << name;
    }
    EXPECT_EQ(kinds, "XmMainWindow XmPanedWindow XmBulletinBoard XmRowColumn ApplicationShell ");
    EXPECT_EQ(XmtFindObject("ws")->id, 34);
    EXPECT_EQ(ResourceOf("ws", XmNwidth), 90);
    EXPECT_EQ(XtParent(XmtGetWidget("wsb")), XmtGetWidget("ws"));
    EXPECT_EQ(std::string(pAppShellName) + " " + pAppWinName, "main_shell main");
    EXPECT_TRUE(AppShell == XmtGetWidget("main_shell") && AppWin == XmtGetWidget("main"));
}

// ---- dialogs

static Widget ButtonOf(const char *dialog, unsigned char button) {
    Widget widget = XmtGetWidget(dialog);
    return XmIsMessageBox(widget) ? XmMessageBoxGetChild(widget, button)
                                  : XmSelectionBoxGetChild(widget, button);
}

// The buttons that are shown, by the first letters of OK, Cancel, Help and Apply.
static std::string ButtonsOf(const char *dialog) {
    static const unsigned char buttons[] = {XmDIALOG_OK_BUTTON, XmDIALOG_CANCEL_BUTTON, XmDIALOG_HELP_BUTTON,
                                            XmDIALOG_APPLY_BUTTON};
    int count = XmIsMessageBox(XmtGetWidget(dialog)) ? 3 : 4; // a message box has no apply button
    std::string shown;
    for (int i = 0; i < count; i++)
        if (XtIsManaged(ButtonOf(dialog, buttons[i]))) shown += "OCHA"[i];
    return shown;
}

TEST_F(Windows, DialogsHaveTheirTextsAndButtons) {
    XmtNewObject(
        "main", RecordEvent, 40,
        "DE de L(Yes,,Later\\,) l(Type \\(it\\)) t(preset) T(Title) CB(a) f(C[x]); DE de2 no(help,ok); "
        "DW dw t(careful) no(cancel) Dt(?); DI di t(a\nb) no(help,,cancel) Dt(x); DI di2 Dt(i); Df df "
        "no(ok); "
        "DM dm t(plain); DB db t(Board) { l dbl; } DF dfo; D ds t(Shell); ");
    EXPECT_EQ(StringsOf("de.okLabelString de.cancelLabelString de.applyLabelString de.selectionLabelString "
                        "de.textString"),
              "Yes|Cancel|Later,|Type (it)|preset");
    EXPECT_EQ(
        StringsOf("de.dialogTitle dw.messageString dw.okLabelString di.messageString df.applyLabelString"),
        "Title|careful|OK|a\nb|Filter");
    EXPECT_EQ(StringsOf("dm.messageString db.dialogTitle dfo.dialogTitle"), "plain|Board|");
    EXPECT_STREQ(reinterpret_cast<char *>(XmtGetXmValue("ds", XmNtitle)), "Shell");
    EXPECT_EQ(ButtonsOf("de") + " " + ButtonsOf("de2") + " " + ButtonsOf("dw") + " " + ButtonsOf("df"),
              "OCHA C OH OCHA");
    EXPECT_EQ(ResourcesOf("dw.dialogType di.dialogType di2.dialogType"), "4 2 2");
    EXPECT_EQ(XmtFindObject("de")->format, nullptr);
    for (const char *name : {"de", "dw", "di", "df", "dm", "db", "dfo"})
        EXPECT_FALSE(XtIsManaged(XmtGetWidget(name)));
}

TEST_F(Windows, DialogButtonsReport) {
    static const struct {
        const char *dialog;
        unsigned char button;
        const char *want;
    } Cases[] = {{"ask", XmDIALOG_OK_BUTTON, "ask 60/4=0 answer;"},
                 {"ask", XmDIALOG_APPLY_BUTTON, "ask 60/6=0 answer;"},
                 {"ask", XmDIALOG_HELP_BUTTON, "ask 60/7=0;"},
                 {"ask", XmDIALOG_CANCEL_BUTTON, "ask 60/5=0;"},
                 {"warn", XmDIALOG_OK_BUTTON, "warn 61/4=0;"},
                 {"warn", XmDIALOG_CANCEL_BUTTON, "warn 61/5=0;"},
                 {"files", XmDIALOG_APPLY_BUTTON, ""}};
    XmtNewObject("main", RecordEvent, 60, "DE ask L(Yes,No,Apply) t(answer); DW warn; Df files; ");
    RealizeWindows();
    for (auto &c : Cases) {
        XmtShow(c.dialog);
        DispatchWaiting();
        Widget button = ButtonOf(c.dialog, c.button);
        Position x, y;
        XtTranslateCoords(button, 5, 5, &x, &y);
        ClickPoint(x, y);
        DispatchWaiting();
        EXPECT_EQ(TakeEvents(), c.want) << c.dialog << " " << int{c.button};
        XmtHide(c.dialog);
    }
}

// ---- menu bars

struct BarCase {
    const char *what, *text, *want;
};
static const BarCase Bars[] = {
    {"items, menus and menus in them",
     "M a { b(x) m(y) { b(1) m(2) { b(3) } s b(4) } m(z) { b(5) } b() } l after; ",
     "a 100 MenuBar{a_1 100 CascadeBut, a_2_a_1_pd_cb 104 CascadeBut, a_3_a_2_pd_cb 105 CascadeBut, a_4 105 "
     "CascadeBut, a_2_a_1_pd 101 Menu{a_2_b_1 101 PushBut, a_2_b_2_pd_cb 103 CascadeBut, a_2_b_2_s 103 "
     "Seperator, a_2_b_3 103 PushBut}, a_3_a_2_pd 104 Menu{a_3_c_1 104 PushBut}, a_2_b_2_pd 102 "
     "Menu{a_2_bc_1 102 PushBut}}, after 106 Label"},
    {"ends with a semicolon", "M b { b(x); }; l afterb; ",
     "b 100 MenuBar{b_1 100 CascadeBut}, afterb 101 Label"},
    {"no brace", "M c; b(x) s m(y) { b(1) b(2); b(z); l afterc; ",
     "c 100 MenuBar{c_1 100 CascadeBut, c_1__0_s 101 Seperator, c_2_a_1_pd_cb 103 CascadeBut, c_3 103 "
     "CascadeBut, c_2_a_1_pd 101 Menu{c_2_b_1 101 PushBut, c_2_b_2 102 PushBut}}, afterc 104 Label"},
    {"ids, comments, strangers", "M d { id(70) b(x) # b(no) }\n , ? b(y) k(no) z(1) id(80) b(z) } l afterd; ",
     "d 100 MenuBar{d_1 70 CascadeBut, d_2 71 CascadeBut, d_3 80 CascadeBut}, afterd 81 Label"},
    {"no label, no end", "M e { bf(C[x]) bf(C[x\\,y],la\\,bel) m(open) ",
     "e 100 MenuBar{e_1 100 CascadeBut, e_2 101 CascadeBut, e_3_a_1_pd 102 Menu}"},
    {"in pieces", "M f { } O f { Mb fb l(Push); Mm fm l(Menu) { bp fx; } Mm fn id(90) l(Other); } ",
     "f 100 MenuBar{fb 100 PushBut, fm_cb 101 CascadeBut, fn_cb 90 CascadeBut, fm 101 Menu{fx 101 PushBut}, "
     "fn 90 Menu}"},
};

TEST_F(Windows, MenuBarsHoldTheirEntries) {
    for (const BarCase &c : Bars) {
        std::string box = "box" + std::to_string(&c - Bars);
        XmtNewObject("bars", RecordEvent, 99, ("B " + box + " {" + c.text + "} ").c_str());
        EXPECT_EQ(DumpObjects(box.c_str()), c.want) << c.what << ": " << c.text;
    }
}

TEST_F(Windows, MenuBarsKeepFormatsLabelsAndLooks) {
    AppTool tool;
    tool.Write("menu.txt", "b(Read) b(Again);");
    tool.Write("circle.txt", "b(C) i(circle.txt)");
    flNoBarMenuTraversal = 1;
    XmtNewObject("bars", RecordEvent, 99,
                 "M g bo(3) { b(One) bf(C[x\\,y],Tw~o) m(File) { b(New,Ctrl+N,Ctrl<Key>n) i(menu.txt) a "
                 "b(Data) a b(Last) "
                 "i(missing.txt) } i(circle.txt) } ");
    flNoBarMenuTraversal = 0;
    EXPECT_STREQ(XmtFindObject("g_2")->format, "C[x,y]");
    EXPECT_EQ(StringOf("g_2", XmNlabelString), "Two");
    EXPECT_EQ(ResourceOf("g_2", XmNmnemonic), 'w');
    EXPECT_EQ(ResourceOf("g_1", XmNborderWidth), 3);
    EXPECT_EQ(StringOf("g_3_b_1", XmNacceleratorText), "Ctrl+N");
    EXPECT_EQ(StringOf("g_3_b_3", XmNlabelString), "Again");
    EXPECT_STREQ(XmtTextOf(XmtGetAppData("g_3_b_4")), "Data");
    EXPECT_EQ(XmtGetAppData("g_3_b_5"), 0);
    EXPECT_EQ(StringOf("g_3_b_5", XmNlabelString), "Last");
    EXPECT_EQ(XmtGetWidget("g_3_b_6"), nullptr);
    EXPECT_EQ(StringOf("g_4", XmNlabelString), "C");
    EXPECT_EQ(BarItemCnt, 3 + XMT_MENU_FILES);
    EXPECT_TRUE(!flNoTraversal && flUseDefaultColor && !flConvertLabelToAppData && !BarPullDownMenu);
}

static void ShowWindow(const char *shell) {
    RealizeWindows();
    XtRealizeWidget(XmtGetWidget(shell));
    XRaiseWindow(AppDisplay, XtWindow(XmtGetWidget(shell)));
    DispatchWaiting();
}

TEST_F(Windows, MenusOpenByMouseAndKeys) {
    XmtNewObject(
        nullptr, RecordEvent, 197,
        "WR keys { t some; M h { b(One) m(F~ile) { b(New) m(More) { b(Deep) } } s m(Help) { b(About) } } }");
    ShowWindow("keys_shell");
    XmtSetFocus("some");
    PressSlowly("F10 Right Down Down Right Return");
    EXPECT_EQ(TakeEvents(), "h_2_bc_1 201/1=0;");
    ClickAndDispatch("h_1");
    for (const char *name : {"h_2_a_1_pd_cb", "h_2_b_2_pd_cb", "h_2_bc_1"}) ClickAndDispatch(name);
    for (const char *name : {"h_3_a_2_pd_cb", "h_3_c_1"}) ClickAndDispatch(name);
    EXPECT_EQ(TakeEvents(), "h_1 199/1=0;h_2_bc_1 201/1=0;h_3_c_1 202/1=0;");
}

// A window manager doesn't know widgets: when the dialog goes, it hands on only what the shell had.
TEST_F(Windows, TheShellHasTheFocusAndTheFieldTheKeys) {
    XmtNewObject(nullptr, RecordEvent, 197, "WR aim { t first; t second; }");
    ShowWindow("aim_shell");
    XmtSetFocus("second");
    Window focus = 0;
    int revert = 0;
    XGetInputFocus(AppDisplay, &focus, &revert);
    EXPECT_EQ(focus, XtWindow(XmtGetWidget("aim_shell")));
    EXPECT_EQ(revert, RevertToPointerRoot);
    PressSlowly("a b");
    EXPECT_EQ(TextOf("second"), "ab");
}

TEST_F(Windows, MenusWithoutTraversalHearNoKeys) {
    flNoBarMenuTraversal = 1;
    XmtNewObject(nullptr, RecordEvent, 220, "WR silent { t quiet; M k { b(One) m(File) { b(New) } } }");
    flNoBarMenuTraversal = 0;
    ShowWindow("silent_shell");
    XmtSetFocus("quiet");
    PressSlowly("F10 Right Down Return");
    EXPECT_EQ(TakeEvents(), "");
    for (const char *name : {"k_2_a_1_pd_cb", "k_2_b_1"}) ClickAndDispatch(name);
    EXPECT_EQ(TakeEvents(), "k_2_b_1 223/1=0;");
    EXPECT_EQ(CheckMem(), nullptr);
}

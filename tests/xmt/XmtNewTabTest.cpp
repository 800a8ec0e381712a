// Tab forms by the order of their windows, pictures by their pixels, list boxes, images.
#include "xmt/XmtNew.h"

#include "common/MemMgr.h"
#include "tests/lib/AppTool.h"
#include "tests/lib/ObjectDump.h"
#include "tests/lib/WindowRig.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewTab.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <gtest/gtest.h>
#include <vector>

class Tabs : public WindowTest {
protected:
    static void SetUpTestSuite() { SetUpWindow(RecordEvent, 1, "WF first; "); }
    void SetUp() override {
        WindowTest::SetUp();
        flInEventLoop = 0;
        Events.clear();
    }
    // A window of its own for each text, numbered from 10.
    void Make(const std::string &text) {
        static int count;
        name = "w" + std::to_string(++count);
        XmtNewObject(nullptr, RecordEvent, 9, ("WF " + name + " c(bg #FFFFFF) { " + text + "} ").c_str());
    }
    void Show() {
        Widget shell = XmtGetWidget((name + "_shell").c_str());
        XtRealizeWidget(shell);
        flInEventLoop = 1;
        XRaiseWindow(AppDisplay, XtWindow(shell));
        DispatchWaiting();
    }
    std::string name;
};
using Pictures = Tabs;

struct TreeCase {
    const char *what, *text, *want;
};
static const TreeCase Trees[] = {
    {"numbers run on", "id(50) T ta { T 1 l(One) { l ina; } TB 2 l(Two); } l aftera; ",
     "ta 50 TabForm{ta_BB1 51 Box{ta_B1 53 PushBut}, ta_S1 52 Box, ta_1 54 Form{ina 55 Label}, ta_BB2 56 "
     "Box{ta_B2 58 PushBut}, ta_S2 57 Box, ta_2 59 Box}, aftera 60 Label"},
    {"numbers of a form and its tabs", "T tb id(60) CB(tab) { TB 1 id(0) l(One) { l inb; } } l afterb; ",
     "tb 59 TabForm{tb_BB1 -1 Box{tb_B1 1 PushBut}, tb_S1 0 Box, tb_1 2 Box{inb 10 Label}}, afterb 11 Label"},
    {"a list of tabs, a block for the form", "T tc L(a,b) { l inc; } ",
     "tc 10 TabForm{tc_BB1 11 Box{tc_B1 13 PushBut}, tc_S1 12 Box, tc_1 14 Form, tc_BB2 15 Box{tc_B2 17 "
     "PushBut}, tc_S2 16 Box, tc_2 18 Form, inc 19 Label}"},
    {"hidden form, hidden tab, parent by name", "T tf H; T tg; T 1 P(tg) l(One) H; T th l(Alone); ",
     "tf 10 TabForm!, tg 11 TabForm{tg_BB1 12 Box{tg_B1 14 PushBut}, tg_S1 13 Box, tg_1 15 Form!}, th 16 "
     "TabForm{th_BB1 17 Box{th_B1 19 PushBut}, th_S1 18 Box, th_1 20 Form}"},
    {"a label and a named object on top",
     "T ti { T 1 l(One); TI icon l(x) A(rf,tf); } l other; T tj { T 1 l(One); TW other; l last; } ",
     "ti 10 TabForm{ti_BB1 11 Box{ti_B1 13 PushBut}, ti_S1 12 Box, ti_1 14 Form, icon 15 Label}, other 16 "
     "Label, tj 17 TabForm{tj_BB1 18 Box{tj_B1 20 PushBut}, tj_S1 19 Box, tj_1 21 Form, last 22 Label}"},
    {"list boxes",
     "Bl la l(List) L(x,y) V(4) <1 m(2,2)> <2 m(3,3)> <3 m(5,5)>; Blm lb L(x); Bl lc l(Gone) H; Bl ld H; ",
     "la_B1 10 Box{la_L 10 Label, la_Form 10 Form{la 10 ListBox}}, lb_Form 11 Form{lb 11 ListBoxMS}, lc_B1 "
     "12 Box!{lc_L 12 Label, lc_Form 12 Form{lc 12 ListBox}}, ld_Form 13 Form!{ld 13 ListBox}"},
    {"pictures", "PI pa; PI pb l(Label) s(20,30); PI pc H; PI pd l(Gone) H; ",
     "pa 10 Picture, pb_B1 11 Box{pb_L 11 Label, pb 11 Picture}, pc 12 Picture!, pd_B1 13 Box!{pd_L 13 "
     "Label, pd 13 Picture}"},
};

TEST_F(Tabs, MakeTheTree) {
    for (const TreeCase &c : Trees) {
        Make(c.text);
        EXPECT_EQ(DumpObjects(name.c_str()), c.want) << c.what << ": " << c.text;
    }
}

// The windows inside an object, from the lowest.
static std::vector<Window> Stack(const char *name) {
    Window root, parent, *windows = nullptr;
    unsigned count = 0;
    XQueryTree(AppDisplay, XtWindow(XmtGetWidget(name)), &root, &parent, &windows, &count);
    std::vector<Window> stack(windows, windows + count);
    XFree(windows);
    return stack;
}

// The uppermost of the form's pages, from 1; 0 if it has no window there, or its strip is not on it.
static int TopPage(const char *form) {
    int top = 0;
    std::vector<Window> stack = Stack(form);
    for (size_t i = 0; i < stack.size(); i++)
        for (int k = 1; k <= 3; k++) {
            std::string number = std::to_string(k);
            Widget page = XmtGetWidget((form + ("_" + number)).c_str());
            Widget strip = XmtGetWidget((form + ("_S" + number)).c_str());
            if (!page || !XtIsManaged(page) || XtWindow(page) != stack[i]) continue;
            top = i + 1 < stack.size() && stack[i + 1] == XtWindow(strip) ? k : 0;
        }
    return top;
}

// The tab that is shown, by its page and by the outlines of the boxes, and what the handler heard.
static std::string Shown(const char *form) {
    std::string outlined;
    for (const char *k = "123"; *k; k++) {
        std::string box = std::string(form) + "_BB" + *k;
        bool flOutlined = ResourceOf(box.c_str(), XmNborderColor) == ResourceOf(form, XmNborderColor);
        if (XmtGetWidget(box.c_str()) && flOutlined) outlined += *k;
    }
    return std::to_string(TopPage(form)) + " " + outlined + ": " + TakeEvents();
}

TEST_F(Tabs, ShowTheTabThatTheUserPicks) {
    Make("T ua .4 CB(tab) A(tf,lf,rf,bf) { TB 1 id(0) .4 l(One) { l u1; } TB 2 id(0) l(Two) { t u2; } "
         "T 3 id(0) l(Three); } ");
    Show();
    EXPECT_EQ(Shown("ua"), "1 1: ua 10/0=1;") << "the first exposure";
    ClickAndDispatch("ua_B3");
    EXPECT_EQ(Shown("ua"), "3 3: ua 10/1=3;");
    PressAt("ua_B2", "space");
    EXPECT_EQ(Shown("ua"), "2 2: ua 10/1=2;");
    XmtDisableTab("ua", 1);
    ClickAndDispatch("ua_B1");
    EXPECT_EQ(Shown("ua"), "2 2: ");
    XmtEnableTab("ua", 1);
    ClickAndDispatch("ua_B1");
    EXPECT_EQ(Shown("ua"), "1 1: ua 10/1=1;");
    XmtHideTab("ua", 1);
    DispatchWaiting();
    EXPECT_FALSE(XtIsManaged(XmtGetWidget("ua_BB1")) || XtIsManaged(XmtGetWidget("ua_S1")));
    EXPECT_EQ(XmtGetValue("ua"), 1) << "no other takes its place";
    XmtShowTab("ua", 1);
    DispatchWaiting();
    EXPECT_EQ(TopPage("ua"), 1);
}

TEST_F(Tabs, ShowTheTabThatTheProgramPicks) {
    Make("T va A(tf,lf,rf) CB(x,tab) L(a,b,c); T vb A(tw va,lf,rf,bf) L(a,b); ");
    for (int tab : {3, 0, 4, -1}) XmtSelectTab("va", tab);
    XmtSelectTab("vb", 2);
    for (auto set : {XmtSelectTab, XmtHideTab, XmtShowTab, XmtEnableTab, XmtDisableTab}) {
        set("nothing", 1);
        set("va", 9);
        set("va_B1", 1);
    }
    EXPECT_EQ(TakeEvents(), "") << "nothing before there are windows";
    Show();
    EXPECT_EQ(Shown("va"), "3 3: va 10/0=3;") << "vb does not tell";
    EXPECT_EQ(Shown("vb"), "2 2: ");
    EXPECT_EQ(XmtGetValue("vb"), 2);
    ClickAndDispatch("va_B1");
    EXPECT_EQ(Shown("va"), "1 1: va 10/1=1;") << "no tab waits to be shown any more";
    XmtSelectTab("va", 2);
    XmtSetValuePF("vb", 1, 0);
    EXPECT_EQ(Shown("va"), "2 2: va 10/1=2;");
    EXPECT_EQ(Shown("vb"), "1 1: ");
    flInEventLoop = 1;
    Make("T vc A(tf,lf,rf,bf) L(a,b); ");
    XmtSelectTab("vc", 2); // in the loop, but there is no window yet
    Show();
    EXPECT_EQ(TopPage("vc"), 2);
}

TEST_F(Tabs, StandInEachOther) {
    Make("T xa A(tf,lf,rf,bf) { T 1 l(One) { T xb A(tf,lf,rf,bf) { T 1 l(In) { T xc A(tf,lf,rf,bf) L(p,q,r) "
         "s(300,100); } "
         "T 2 l(Side); } } T 2 l(Two); TI xi l(Icon) A(rf 5,bf 5); } ");
    XmtSelectTab("xc", 3);
    XmtSelectTab("xb", 2);
    Show();
    EXPECT_EQ(TopPage("xa") * 10 + TopPage("xb"), 12);
    XmtSelectTab("xb", 1);
    DispatchWaiting();
    EXPECT_EQ(TopPage("xc"), 3) << "seen for the first time when its page comes up";
    for (int tab = 1; tab <= 2; tab++) {
        XmtSelectTab("xa", tab);
        EXPECT_EQ(TopPage("xa"), tab);
        EXPECT_EQ(Stack("xa").back(), XtWindow(XmtGetWidget("xi"))) << "the icon is above all pages";
    }
}

TEST_F(Tabs, AreLaidOutUnderEachOther) {
    Make("T ya A(tf,lf,rf,bf) .4 { TB 1 l(One) <1 m(9,9)> <3 m(8,8) bo(5)>; T 2 sp(7) l(T\\,wo); } ");
    Show();
    EXPECT_EQ(
        ResourcesOf("ya_BB1.marginWidth ya_BB1.leftOffset ya_BB2.leftOffset ya_S1.topOffset ya_S1.height "
                    "ya_1.borderWidth"),
        "9 20 7 -4 6 5");
    EXPECT_EQ(XtParent(XmtGetWidget("ya_B2")), XmtGetWidget("ya_BB2"));
    EXPECT_EQ(ResourceOf("ya_2", XmNtopWidget), reinterpret_cast<long>(XmtGetWidget("ya_BB1")));
    EXPECT_EQ(ResourceOf("ya_BB2", XmNleftWidget), reinterpret_cast<long>(XmtGetWidget("ya_BB1")));
    EXPECT_EQ(StringOf("ya_B2", XmNlabelString), "T,wo");
    EXPECT_EQ(ResourceOf("ya_1", XmNx), ResourceOf("ya_2", XmNx));
}

// ---- pictures

// Red with two transparent pixels, and white.
static const char RedImage[] =
    "/* XPM */\nstatic char *r[] = {\n\"2 2 2 1\",\n\"r c #FF0000\",\n\". c None\",\n\"r.\",\n\".r\"\n};\n";
static const char WhiteImage[] = "/* XPM */\nstatic char *w[] = {\n\"2 2 2 1\",\n\"w c #FFFFFF\",\n\"b s "
                                 "back c #123456\",\n\"ww\",\n\"wb\"\n};\n";

// The first pixels of an object's window, a letter each, rows by blanks.
static std::string Pixels(const char *object, unsigned width, unsigned height) {
    static const struct {
        unsigned long pixel;
        char letter;
    } Letters[] = {{0xFF0000, 'r'}, {0xFFFFFF, 'w'}, {0x0000FF, 'b'}, {0x00FF00, 'g'}};
    XImage *image =
        XGetImage(AppDisplay, XtWindow(XmtGetWidget(object)), 0, 0, width, height, AllPlanes, ZPixmap);
    std::string text;
    for (unsigned i = 0; i < width * height; i++) {
        if (i && i % width == 0) text += ' ';
        char letter = '?';
        for (auto &row : Letters)
            if (XGetPixel(image, static_cast<int>(i % width), static_cast<int>(i / width)) == row.pixel)
                letter = row.letter;
        text += letter;
    }
    XDestroyImage(image);
    return text;
}

struct DrawCase {
    const char *commands, *want;
};
static const DrawCase Draws[] = {
    {"", "rbbb brbb bbbb"},
    {"+white w.xpm 1 1", "rbbb bwwb bwbb"},
    {"-red", "bbbb bwwb bwbb"},
    {"+*", "rbbb bwwb bwbb"},
    {">white 2/0", "rbww brwb bbbb"},
    {"cwhite #00FF00", "rbww brwg bbbb"},
    {"^red,-red,>red 1/1,-*", "rbbb brbb bbbb"},
    {"~red,-*re,+*wh", "bbww bbwg bbbb"},
    {">white -1/-1,+red", "gbbb brbb bbbb"},
    {"+none missing.xpm 0 0,,?red,x", "gbbb brbb bbbb"},
    {"-white,+other r.xpm 2 1", "rbbb brrb bbbr"},
};

TEST_F(Pictures, ShowTheImagesThatTheCommandsSay) {
    AppTool tool;
    tool.Write("r.xpm", RedImage);
    tool.Write("w.xpm", WhiteImage);
    Make("PI pic s(4,3) c(bg #0000FF) A(tf,lf) L(+red r.xpm 0 0); ");
    auto *picture = static_cast<XmtPictureData *>(XmtFindObject("pic")->extension);
    XmtPictureDraw(XmtFindObject("pic"), 0);
    Show();
    for (const DrawCase &c : Draws) {
        XmtSetValuePF("pic", c.commands, 0);
        EXPECT_EQ(Pixels("pic", 4, 3), c.want) << c.commands;
    }
    EXPECT_EQ(picture->count, 3);
    XClearArea(AppDisplay, XtWindow(XmtGetWidget("pic")), 0, 0, 0, 0, 1);
    DispatchWaiting();
    EXPECT_EQ(Pixels("pic", 4, 3), "rbbb brrb bbbr") << "drawn again when exposed";
    XmtSetPictureData(nullptr, "+*");
    XmtSetPictureData(picture, nullptr);
    XmtPictureDraw(XmtFindObject("pic"), 0);
}

TEST_F(Pictures, HaveTheSizeOfTheirImages) {
    AppTool tool;
    tool.Write("r.xpm", RedImage);
    Make("PI qa; PI qb s(30,20); PI qc L(+x r.xpm 5 9,+y r.xpm 1 1); PI qd l(Label) L(+x r.xpm 0 0) <3 "
         "s(40,41)>; ");
    std::string sizes;
    for (const char *object : {"qa", "qb", "qc", "qd"}) {
        const XImage *canvas = static_cast<XmtPictureData *>(XmtFindObject(object)->extension)->canvas;
        sizes += std::to_string(ResourceOf(object, XmNwidth)) + "/" + std::to_string(canvas->width) + " " +
                 std::to_string(ResourceOf(object, XmNheight)) + "/" + std::to_string(canvas->height) + ";";
    }
    EXPECT_EQ(sizes, "110/100 110/100;30/30 20/20;17/7 21/11;40/2 41/2;");
    EXPECT_EQ(ResourceOf("qa", XmNbackground), ResourceOf(name.c_str(), XmNbackground))
        << "around the canvas";
}

TEST_F(Pictures, ReportKeysAndPointerAndLetTabLeadOn) {
    Make("bp ra l(a) A(tf,lf); PI rb s(50,50) CB(i) A(tf,lw ra); DR rc s(50,50) A(tw rb,lf); "
         "bp rd l(d) A(tw rc,lf); ");
    Show();
    TakeEvents();
    PointAt("rb");
    DispatchWaiting();
    EXPECT_EQ(TakeEvents(), "rb 11/9=0;") << "the pointer moves";
    PressAt("rc", "x");
    EXPECT_EQ(TakeEvents(), "rc 12/9=0;rc 12/9=0;");
    PressAt("ra", "Tab Tab Tab");
    EXPECT_EQ(XmGetFocusWidget(XmtGetWidget("ra")), XmtGetWidget("rd"));
    PressKeys("shift+Tab shift+Tab shift+Tab");
    DispatchWaiting();
    EXPECT_EQ(XmGetFocusWidget(XmtGetWidget("ra")), XmtGetWidget("ra"));
}

TEST_F(Pictures, ImagesAreKeptByName) {
    AppTool tool;
    tool.Write("r.xpm", RedImage);
    tool.Write("w.xpm", WhiteImage);
    std::string bits =
        tool.Write("bits.xbm", "#define x_width 8\n#define x_height 1\nstatic char x_bits[] = {\n0x0f};\n");
    Make("i first r.xpm;i inl ! XPM2\n2 1 1 1\nr c #FF0000\nrr\n;i none missing.xpm;i data noimage;\n"
         "l ta l(@first) A(tf,lf); l tb l(@inl) A(tf,lw ta); l tc l(@none) A(tw ta); l td l(@bits.xbm,fg "
         "red) A(tw ta,lw tb); ");
    for (const char *kept : {"first", "inl", "none", "data"})
        EXPECT_EQ(FindHashNode(XmtPixmaps, HashText(kept)) != nullptr, *kept == 'f' || *kept == 'i') << kept;
    auto *image = static_cast<ImageRecord *>(FindHashNode(XmtPixmaps, HashText("inl")));
    EXPECT_EQ(ResourceOf("tb", XmNlabelPixmap), static_cast<long>(image->Pixmap));
    EXPECT_EQ(StringOf("tc", XmNlabelString), "none");
    EXPECT_EQ(ResourcesOf("td.labelType td.foreground"),
              std::to_string(XmPIXMAP) + " " + std::to_string(0xFF0000));
    ImageRecord *entry = XmtNewImage("w.xpm");
    tool.Write("w.xpm", RedImage);
    EXPECT_EQ(XmtNewImage("w.xpm"), entry) << "read anew, in its place";
    EXPECT_EQ(XGetPixel(entry->Image, 0, 0), 0xFF0000u);
    EXPECT_EQ(XmtNewImage(""), nullptr);
    IconPath = "..";
    std::string path = tool.Path().substr(tool.Path().rfind('/') + 1) + "/r.xpm";
    EXPECT_TRUE(XmtNewImage(path.c_str()) && XmtNewImage(tool.Path("r.xpm").c_str()));
    IconPath = nullptr;
    bits = "tp t(" + bits + ") c(fg #FF0000,bg #0000FF);";
    XmtCursor cursor(bits.c_str());
    EXPECT_TRUE(XtIsManaged(XmtNewPixmapLabel(XmtGetWidget(name.c_str()))));
    EXPECT_GT(ResourceOf("tp", XmNlabelPixmap), 2);
    EXPECT_EQ(CheckMem(), nullptr);
}

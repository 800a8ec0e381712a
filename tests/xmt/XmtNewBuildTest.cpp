// Objects made from descriptions: names, numbers, types and places of all parts, and what Motif holds of
// them.
#include "xmt/XmtNew.h"

#include "common/MemMgr.h"
#include "prndeck/gui/PrdGuiMacros.h"
#include "tests/lib/Capture.h"
#include "tests/lib/DescDump.h"
#include "tests/lib/ObjectDump.h"
#include "tests/lib/WindowRig.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtString.h"
#include "xmt/XmtUtils.h"

#include <gtest/gtest.h>

// Each "%s" by the next value of a comma list.
static std::string Fill(std::string text, const char *values) {
    XmtValues value(values);
    for (size_t at = 0; (at = text.find("%s", at)) != text.npos && value.Next(); at += value.value.size())
        text.replace(at, 2, XmtDropEscapes(value.value, false));
    return text;
}

// The objects of a text, made in a box of their own and numbered from 100.
static std::string Make(const std::string &text) {
    static int count;
    std::string box = "box" + std::to_string(++count);
    XmtNewObject("top", RecordEvent, 99, ("B " + box + " {" + text + " } ").c_str());
    return DumpObjects(box.c_str());
}

class Build : public WindowTest {
protected:
    static void SetUpTestSuite() {
        std::string macros = Fill(MainMacroDesc, "6x13,6x13,6x13,6x13,6x13,6x13,a\\,b,c\\,d");
        SetUpWindow(RecordEvent, 1, (macros + "\nWF main { S area A(tf,lf,rf,bf) { B top; } }").c_str());
    }
};

struct TreeCase {
    const char *what;
    const char *text;
    const char *want;
};
static const TreeCase Trees[] = {
    {"option list", "bl a l(Name) .22 L(a,b) .0 <1 h> <2 .21> <3 .22>; ",
     "a_B1 100 Box{a_L 100 Label, a 100 ListBut{a_pd 100 Menu{a_1 100 ListBut, a_2 100 ListBut}}}"},
    {"text with and without a label", "t b l(Text) s(10,1); t c; tp d; ",
     "b_B1 100 Box{b_L 100 Label, b 100 Text}, c 101 Text, d 102 Passwd"},
    {"toggle, no label of its own, a box for the icon only", "bt e l(On); bt f l(On) i(@x @y); ",
     "e 100 ToggleBut, f_B1 101 Box{f 101 ToggleBut, f_i 101 Label}"},
    {"radio box, button box, box", "br g l(Pick) L(x,y); bb h L(x); B i l(Box) { l in; } ",
     "g_B1 100 Box{g_L 100 Label, g 100 RadioBox{g_1 100 RadioBox, g_2 100 RadioBox}}, h 101 ButtonBox{h_1 "
     "101 ButtonBox}, i_B1 102 Box{i_L 102 Label, i 102 ButtonBox{in 103 Label}}"},
    {"icons", "t j i(@x); t k i(&o.x); t l l(L) H i(@&s\\(9\\,9\\)@&,@x); ",
     "j_B1 100 Box{j 100 Text, j_i 100 Label}, k_B1 101 Box{k 101 Text}, l_B1 102 Box!{l_L 102 Label, l 102 "
     "Text, l_i 102 Picture}"},
    {"created list", "bL m L(x); ",
     "m 100 CreatedListBut{m_pd 100 Menu{m_1 100 CreatedListBut}}, m_cb 101 CascadeBut"},
    {"no items", "bl o L(); l after; ", "o 100 ListBut{o_pd 100 Menu}, after 101 Label"},
    {"hidden box, control, simple object", "t p H l(x); t q H; l r H ; bl s l(x) H L(x) H; ",
     "p_B1 100 Box!{p_L 100 Label, p 100 Text}, q 101 Text!, r 102 Label!, s_B1 103 Box!{s_L 103 Label, s "
     "103 ListBut!{s_pd 103 Menu{s_1 103 ListBut}}}"},
    {"numbers", "t t l(x) id(7); bl u l(x) L(a) <3 id(9)>; l v id(0); l w; ",
     "t_B1 7 Box{t_L 7 Label, t 7 Text}, u_B1 100 Box{u_L 100 Label, u 9 ListBut{u_pd 99 Menu{u_1 99 "
     "ListBut}}}, v 100 Label, w 100 Label"},
    {"a name used twice", "B x { l y; } B z; l x; ", "(x){y 101 Label}, z 102 ButtonBox, x 103 Label"},
    {"parents", "B ba; B bc P(ba) { l bd; } t be P(bc) l(x); l bf P(nothing); ",
     "ba 100 ButtonBox{bc 101 ButtonBox{bd 102 Label, be_B1 103 Box, be_L 103 Label, be 103 Text}}, bf 104 "
     "Label"},
    {"unknown words, parents of no use",
     "xy zz { l lost; } l bg { t none l(x); T none2 L(a); Bl none3 l(x); PI none4; M none5 { m(x) { b(y) } } "
     "} "
     "B bh { l bi; } nothing { l gone; bl gone2 L(a); } ",
     "bg 100 Label, bh 101 ButtonBox{bi 102 Label}"},
    {"simple ones", "S bj { l bk; } DR bl; s bm; BB bn; P bo { l bp; } F bq; bp br; ",
     "bj 100 ScrolledArea{bk 101 Label}, bl 102 Draw, bm 103 Seperator, bn 104 Board, bo 105 PanedBox{bp 106 "
     "Label}, bq 107 Form, br 108 PushBut"},
};

TEST_F(Build, MakesTheTree) {
    for (const TreeCase &c : Trees) EXPECT_EQ(Make(c.text), c.want) << c.what << ": " << c.text;
}

// A window of the application is written like this: a frame of macros, and the fields in it.
static const char AddWindow[] =
    "*80(400,wqw,main,Add Queue,wqmb,wqwa)\nid(401)\nt wqn l(Queue name:) .0 <2 .21> <3 .22 CB(c,a)> "
    "f(A0,14+-+_);\n"
    "bl wqc l(Connection:) .22 L(TCP/IP,device) .0 <1 h> f(H1[wqhn_B1]) <2 .21> <3 .22>;\n"
    "*69(wqfsb,wqfs,Features...,413,wqfsl,414)\nid(414)\n*71(wqcbp,Banner...,C[wqcbp])\n}}\n}"
    "*72(aqbp,wqmb,4)\nid(415)\n*71(wqap,Apply,C[wqap])\n*71(wqhe,Help,Ca[tb6])\n}";

TEST_F(Build, MakesTheAddWindow) {
    XmtNewObject("main", RecordEvent, 0, AddWindow);
    EXPECT_EQ(
        DumpObjects("wqw"),
        "wqmb 401 ButtonBox{sp1 401 Label,  401 ButtonBox{wqn_B1 401 Box{wqn_L 401 Label, wqn 401 Text}, "
        "wqc_B1 402 Box{wqc_L 402 Label, wqc 402 ListBut{wqc_pd 402 Menu{wqc_1 402 ListBut, wqc_2 402 "
        "ListBut}}}, wqfsb 403 ButtonBox{wqfs 413 PushBut, wqfsl 404 Label}, wqcbp 414 PushBut}, "
        "aqbp 415 ButtonBox{Logo 415 Label, wqap 415 PushBut, wqhe 416 PushBut}}");
    EXPECT_EQ(StringOf("wqw", XmNdialogTitle), "Add Queue");
    EXPECT_EQ(ResourceOf("wqw", XmNdialogStyle), XmDIALOG_FULL_APPLICATION_MODAL);
    EXPECT_STREQ(XmtFindObject("wqn")->format, "A0,14+-+_");
    EXPECT_EQ(XmtFindObject("wqn_B1")->format, nullptr);
    EXPECT_STREQ(XmtFindObject("wqc_2")->format, "H1[wqhn_B1]");
}

// The 21st item of an option list opens a further menu; all of them report as the list.
TEST_F(Build, PutsItemsBeyondTwentyIntoAFurtherMenu) {
    std::string list;
    for (int i = 1; i <= 41; i++) list += (i > 1 ? "," : "") + std::to_string(i);
    Make("bl many L(" + list + ") .22; ");
    static const char *const cases[][2] = {{"many_20", "many_pd"},   {"many_cb1", "many_pd"},
                                           {"many_21", "many_sm1"},  {"many_40", "many_sm1"},
                                           {"many_cb2", "many_sm1"}, {"many_41", "many_sm2"}};
    for (auto &c : cases) EXPECT_EQ(XtParent(XmtGetWidget(c[0])), XmtGetWidget(c[1])) << c[0];
    EXPECT_EQ(ResourceOf("many_cb2", XmNsubMenuId), reinterpret_cast<long>(XmtGetWidget("many_sm2")));
    EXPECT_EQ(BarPullDownMenu, nullptr);
}

TEST_F(Build, GivesEachPartItsArguments) {
    Make("br rb L(x,y); t rt s(20,3); t rn l(x) bo(0) <1 sp(9)> <2 m(8,8)> <3 s(7,1) m(6,6)>; "
         "bt ri i(@x); t rs m(1,1) <1 m(7,7)>; Bl rl l(x) L(a,b) V(5) <1 m(2,2)> <2 m(3,3)>; bl ro "
         "L(A\\,1,B~b\\)); ");
    EXPECT_EQ(
        ResourcesOf("rb_1.set rb_2.set rt.columns rt.rows rt.editMode rl.itemCount rl.visibleItemCount"),
        "1 0 20 3 0 2 5");
    EXPECT_EQ(
        ResourcesOf("rn_B1.spacing rn_L.marginWidth rn.marginWidth rn.columns rn.borderWidth rs.marginWidth "
                    "rl_B1.marginWidth rl_L.marginWidth"),
        "9 8 6 7 0 7 2 3");
    EXPECT_EQ(ResourcesOf("rt.navigationType ro_1.navigationType"), "3 0");
    EXPECT_EQ(ResourceOf("ro", XmNmenuHistory), reinterpret_cast<long>(XmtGetWidget("ro_1")));
    EXPECT_EQ(ResourceOf("ro", XmNsubMenuId), reinterpret_cast<long>(XmtGetWidget("ro_pd")));
    EXPECT_EQ(StringsOf("ro_1.labelString ro_2.labelString rn_L.labelString rl_L.labelString"),
              "A,1|Bb)|x|x");
    EXPECT_TRUE(XmIsText(XmtGetWidget("rt"))) << "text of several lines";
    EXPECT_TRUE(XmIsTextField(XmtGetWidget("rn"))) << "text of one line";
}

TEST_F(Build, KeepsTheRecordOfANameUsedTwice) {
    Make("l twice l(one) f(C[x]); ");
    XmtObjectData *first = XmtFindObject("twice");
    first->value = 5;
    Widget old = first->widget;
    Make("B twice; ");
    XmtObjectData *second = XmtFindObject("twice");
    EXPECT_TRUE(second == first && second->widget != old);
    EXPECT_EQ(std::to_string(second->value) + second->format, "5C[x]");
    EXPECT_EQ(second->type, XmtButtonBox);
    EXPECT_EQ(XmtFindWidget(old), first);
    EXPECT_TRUE(XtIsManaged(old));
}

TEST_F(Build, TellsTheHandlerOfCreationsAndGivesApplicationData) {
    char word[] = "data";
    pAppData = reinterpret_cast<intptr_t>(word);
    TakeEvents();
    flCreateCallback = 1;
    XmtNewObject("top", RecordEvent, 100, "l created l(x) f(C[.]); ");
    flCreateCallback = 0;
    EXPECT_EQ(TakeEvents(), "created 100/0=0;");
    EXPECT_EQ(XmtGetAppData("created"), reinterpret_cast<intptr_t>(word));
    pAppData = 0;
    flConvertLabelToAppData = 1;
    Make("l converted l(My label); ");
    flConvertLabelToAppData = 0;
    EXPECT_STREQ(XmtTextOf(XmtGetAppData("converted")), "My label");
}

TEST_F(Build, FollowsTheStateWithIcons) {
    Make("t target; bt lamp; t owner i(@first @second); t other i(&target.hello &lamp.2); ");
    EXPECT_EQ(StringOf("owner_i", XmNlabelString), "first") << "a file that is not there";
    XmtSelectIcon(XmtFindObject("owner"), 2);
    EXPECT_EQ(StringOf("owner_i", XmNlabelString), "second");
    XmtSelectIcon(XmtFindObject("owner"), 3);
    EXPECT_EQ(StringOf("owner_i", XmNlabelString), " ");
    XmtSelectIcon(XmtFindObject("other"), 1);
    EXPECT_EQ(TextOf("target"), "hello");
    XmtSelectIcon(XmtFindObject("other"), 2);
    EXPECT_EQ(ResourceOf("lamp", XmNset), 1);
    XmtSelectIcon(XmtFindObject("target"), 1);
    XmtSelectIcon(nullptr, 1);
}

TEST_F(Build, MakesStringTables) {
    static const char *const cases[][2] = {
        {"", "|"}, {"a", "a|"}, {"a,,b", "a||b|"}, {"a,", "a||"}, {"a\\,b (c),d\\", "a,b (c)|d\\|"}};
    for (auto &c : cases) {
        XmtStringTable *table = XmtGenStringTable(c[0]);
        std::string got;
        for (int i = 0; i < table->count; i++) got += TakeText(XmtDecodeString(table->strings[i])) + "|";
        XmtFreeStringTable(table);
        EXPECT_EQ(got, c[1]) << c[0];
    }
    EXPECT_EQ(XmtGenStringTable(nullptr), nullptr);
    EXPECT_EQ(TakeText(XmtDecodeString(nullptr)), "");
    XmtFreeStringTable(nullptr);
}

TEST_F(Build, BindsKeysToTexts) {
    Make("t keyed t(abc) k(\\<KeyUp\\>F9: end-of-line\\(\\) delete-previous-character\\(\\)\\n"
         "\\<KeyUp\\>F8: beginning-of-line\\(\\) delete-next-character\\(\\)); ");
    RealizeWindows();
    PressAt("keyed", "F9 F8");
    EXPECT_EQ(TextOf("keyed"), "b");
    EXPECT_EQ(CheckMem(), nullptr);
}

// ---- what of the arguments needs widgets

TEST_F(Build, FillsInWhatIsThere) {
    Make("F ff s(300,200) { l fa l(A); t fc s(12,1) A(tw fa 4); } ");
    static const char *const cases[][2] = {
        {"x A(lw fa 7, two fc,rwnosuch 3);",
         "x leftAttachment=3 leftWidget=set leftOffset=7 topAttachment=4 topWidget=set rightAttachment=3"},
        {"x F_(7x13);", "x fontList=set"},
        {"x F_(no-such-font);", "x fontList=set"}, // fixed
        {"x P(ff);", "x parent"},
        {"x P(ff) P();", "x"},
        {"x ts(fc) ts(nosuch);", "x"}};
    for (const auto &c : cases) EXPECT_EQ(DumpFillInfo(c[0], XmtForm, 0), c[1]) << c[0];
    XmtNewObject(nullptr, RecordEvent, 0, "OS fa l(C) m(9); OS fc s(20,1); ");
    EXPECT_EQ(StringOf("fa", XmNlabelString), "C");
    EXPECT_EQ(ResourcesOf("fa.marginWidth fc.columns"), "9 20");
    XtArgVal values[8] = {};
    EXPECT_EQ(XmtGetArgs("fc s t A(t,r)", values), 20u);
    auto text = reinterpret_cast<char *>(values[2]);
    EXPECT_STREQ(text, "");
    XtFree(text);
    EXPECT_EQ(std::to_string(values[3]) + " " + std::to_string(values[4]), "3 0");
    EXPECT_EQ(XmtGetArgs("nosuch s", values), 0u);
}

TEST_F(Build, PutsPixelsIntoTheRecord) {
    XmtInfo info;
    XmtCursor cursor("x c(bg #102030,fg white,sa #0000FF);");
    XmtFillInfo(&info, 0);
    EXPECT_EQ(info.colours[XMT_BG], 0x102030u);
    EXPECT_EQ(NewObjectColor[XMT_BOTTOM], 0xFFu);
    EXPECT_EQ(XmtPixBg, 0x102030);
    XmtClearInfo(&info);
}

// Objects made from descriptions: names, numbers, types and places of all parts, and what Motif holds of
// them.
#include "common/MemMgr.h"
#include "prndeck/PrdGuiMacros.h"
#include "tests/lib/ObjectDump.h"
#include "tests/lib/WindowRig.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtString.h"
#include "xmt/XmtUtils.h"

#include <gtest/gtest.h>

static std::string LastEvent;

static void OnEvent(XmtCallData *data) {
    LastEvent = std::string(data->name) + " " + std::to_string(data->id) + " " + std::to_string(data->reason);
}

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
    XmtNewObject("top", OnEvent, 99, ("B " + box + " {" + text + " } ").c_str());
    std::string dump = DumpObjects(box.c_str());
    dump.pop_back();
    return dump.substr(dump.find('\n'));
}

class Build : public testing::Test {
protected:
    void SetUp() override {
        static std::string reason;
        static bool flRig = StartWindowRig("1280x1024x24", &reason);
        if (!flRig) GTEST_SKIP() << reason;
        if (AppWin) return;
        XmtNewObject(nullptr, OnEvent, 1,
                     Fill(MainMacroDesc, "6x13,6x13,6x13,6x13,6x13,6x13,a\\,b,c\\,d").c_str());
        XmtNewObject(nullptr, OnEvent, 1, "WF main { S area A(tf,lf,rf,bf) { B top; } }");
    }
};

struct TreeCase {
    const char *what;
    const char *text;
    const char *want;
};
static const TreeCase Trees[] = {
    {"option list", "bl a l(Name) .22 L(a,b) .0 <1 h> <2 .21> <3 .22>; ", R"(
  a_B1 100 XmtBox
    a_L 100 XmtLabel
    a 100 XmtListBut
      a_pd 100 XmtMenu
        a_1 100 XmtListBut
        a_2 100 XmtListBut)"},
    {"text with and without a label", "t b l(Text) s(10,1); t c; tp d; ", R"(
  b_B1 100 XmtBox
    b_L 100 XmtLabel
    b 100 XmtText
  c 101 XmtText
  d 102 XmtPasswd)"},
    {"toggle: no label of its own, a box for the icon only", "bt e l(On); bt f l(On) i(@x @y); ", R"(
  e 100 XmtToggleBut
  f_B1 101 XmtBox
    f 101 XmtToggleBut
    f_i 101 XmtLabel)"},
    {"radio box, button box, box", "br g l(Pick) L(x,y); bb h L(x); B i l(Box) { l in; } ", R"(
  g_B1 100 XmtBox
    g_L 100 XmtLabel
    g 100 XmtRadioBox
      g_1 100 XmtRadioBox
      g_2 100 XmtRadioBox
  h 101 XmtButtonBox
    h_1 101 XmtButtonBox
  i_B1 102 XmtBox
    i_L 102 XmtLabel
    i 102 XmtButtonBox
      in 103 XmtLabel)"},
    {"icons", "t j i(@x); t k i(&o.x); t l l(L) i(@&s\\(9\\,9\\)@&,@x); ", R"(
  j_B1 100 XmtBox
    j 100 XmtText
    j_i 100 XmtLabel
  k_B1 101 XmtBox
    k 101 XmtText
  l_B1 102 XmtBox
    l_L 102 XmtLabel
    l 102 XmtText
    l_i 102 XmtPicture)"},
    {"created list", "bL m L(x); ", R"(
  m 100 XmtCreatedListBut
    m_pd 100 XmtMenu
      m_1 100 XmtCreatedListBut
  m_cb 101 XmtCascadeBut)"},
    {"no items", "bl o L(); l after; ", R"(
  o 100 XmtListBut
    o_pd 100 XmtMenu
  after 101 XmtLabel)"},
    {"hidden: box, control, simple object", "t p H l(x); t q H; l r H ; bl s l(x) H L(x) H; ", R"(
  p_B1 100 XmtBox hidden
    p_L 100 XmtLabel
    p 100 XmtText
  q 101 XmtText hidden
  r 102 XmtLabel hidden
  s_B1 103 XmtBox hidden
    s_L 103 XmtLabel
    s 103 XmtListBut hidden
      s_pd 103 XmtMenu
        s_1 103 XmtListBut)"},
    {"numbers", "t t l(x) id(7); bl u l(x) L(a) <3 id(9)>; l v id(0); l w; ", R"(
  t_B1 7 XmtBox
    t_L 7 XmtLabel
    t 7 XmtText
  u_B1 100 XmtBox
    u_L 100 XmtLabel
    u 9 XmtListBut
      u_pd 99 XmtMenu
        u_1 99 XmtListBut
  v 100 XmtLabel
  w 100 XmtLabel)"},
    {"a name used twice", "B x { l y; } B z; l x; ", R"(
  (x)
    y 101 XmtLabel
  z 102 XmtButtonBox
  x 103 XmtLabel)"},
    {"parents", "B ba; B bc P(ba) { l bd; } t be P(bc) l(x); l bf P(nothing); ", R"(
  ba 100 XmtButtonBox
    bc 101 XmtButtonBox
      bd 102 XmtLabel
      be_B1 103 XmtBox
      be_L 103 XmtLabel
      be 103 XmtText
  bf 104 XmtLabel)"},
    {"unknown words", "xy zz { l lost; } l bg; B bh { l bi; } nothing { l gone; bl gone2 L(a); } ", R"(
  bg 100 XmtLabel
  bh 101 XmtButtonBox
    bi 102 XmtLabel)"},
    {"simple ones", "S bj { l bk; } DR bl; s bm; BB bn; P bo { l bp; } F bq; bp br; ", R"(
  bj 100 XmtScrolledArea
    bk 101 XmtLabel
  bl 102 XmtDraw
  bm 103 XmtSeperator
  bn 104 XmtBoard
  bo 105 XmtPanedBox
    bp 106 XmtLabel
  bq 107 XmtForm
  br 108 XmtPushBut)"},
    {"*71 *70 *74", "*71(m1,Apply,C[m1]) *70(m2,Help) *74(m3, ,) *85(m4,On)", R"(
  m1 100 XmtPushBut
  m2 101 XmtPushBut
  m3 102 XmtLabel
  m4 103 XmtToggleBut)"},
    {"*78", "*78(ip,Addr:,i1,i2,i2,i3,i3,i4,i4) ", R"(
  ip_B1 100 XmtBox
    ip_L 100 XmtLabel
    ip 100 XmtButtonBox
      i1 101 XmtText
      (dot)
      i2 103 XmtText
      (dot)
      i3 105 XmtText
      dot 106 XmtLabel
      i4 107 XmtText)"},
    {"*52", "*52(r,x,12) ", R"(
  r1 100 XmtText
  r2 101 XmtText
  r3 102 XmtText
  r4 103 XmtText
  r5 104 XmtText
  r6 105 XmtText
  r7 106 XmtText
  r8 107 XmtText)"},
    {"*59", "*59(ch,tf,Channel) ", R"(
  ch_B1 100 XmtBox
    ch_L 100 XmtLabel
    ch 100 XmtListBut
      ch_pd 100 XmtMenu
        ch_1 100 XmtListBut
        ch_2 100 XmtListBut)"},
    {"*49", "*49(lt,lt,ll,text) *69(ms,mb,text,413,ml,414) l mt; ", R"(
  lt 100 XmtButtonBox
    lt_B 101 XmtDraw
    ll 102 XmtLabel
  ms 103 XmtButtonBox
    mb 413 XmtPushBut
    ml 104 XmtLabel
  mt 414 XmtLabel)"},
    {"undefined", "*99(a,b) l mu; ", R"(
  mu 100 XmtLabel)"},
};

TEST_F(Build, MakesTheTree) {
    for (const TreeCase &c : Trees) EXPECT_EQ(Make(c.text), c.want) << c.what << ": " << c.text;
}

static Widget WidgetOf(const char *name) {
    return XmtGetWidget(name);
}

// All windows are written like this one: frame, work area and buttons from macros, the fields between them.
static const char AddWindow[] = R"(
*80(400,wqw,main,Add Queue,wqmb,wqwa)
B wqb0 .0 m(0,0) bo(0) h{
*88(wqhei,220)
B wqb1 .0 m(0,0) bo(0) v{
id(401)
t wqn l(Queue name:) s(12,1) h .0 <2 .21> <3 .22 CB(c,a) f(A0,14+-+_)>;
bl wqc l(Connection:) .22 L(TCP/IP,local device) .0  <1 h> f(H1[wqhn_B1] S1[wqdn_B1] C*[wqc]) <2 .21> <3 .22>;
t wqhn l(Host name:) s(40,1) h .0 <2 .21> <3 .22 CB(c,a) f(A0,256+-+.+:)>;
bl wqd H l(Daemon:) .22 L(PrnOutD,lpd) .0  <1 h> <2 .21> <3 .22> H;
*69(wqfsb,wqfs,Configure features...,413,wqfsl,414)
B wqb2 .0 m(0,0) bo(0) h {
id(414)
*71(wqcbp,Configure banner page...,C[wqcbp] S[cbpw] t[cbpw])
l wqb2 .0 l( );
}
l wqwi l( ) bo(0) .0 m(250,0);
}
}}}
}*72(aqbp,wqmb,4)
id(415)
*71(wqap,Apply,C[wqap])
*71(wqca,Cancel,H[wqw])
*71(wqhe,Help,Ca[tb6])
})";

TEST_F(Build, MakesTheAddWindow) {
    XmtNewObject("main", OnEvent, 0, AddWindow);
    EXPECT_EQ(DumpObjects("wqw"), R"(wqw 400 XmtBBDialog hidden
  wqmb 401 XmtButtonBox
    sp1 401 XmtLabel
     401 XmtButtonBox
      wqb0 401 XmtButtonBox
        wqhei 402 XmtLabel
        wqb1 403 XmtButtonBox
          wqn_B1 401 XmtBox
            wqn_L 401 XmtLabel
            wqn 401 XmtText
          wqc_B1 402 XmtBox
            wqc_L 402 XmtLabel
            wqc 402 XmtListBut
              wqc_pd 402 XmtMenu
                wqc_1 402 XmtListBut
                wqc_2 402 XmtListBut
          wqhn_B1 403 XmtBox
            wqhn_L 403 XmtLabel
            wqhn 403 XmtText
          wqd_B1 404 XmtBox hidden
            wqd_L 404 XmtLabel
            wqd 404 XmtListBut hidden
              wqd_pd 404 XmtMenu
                wqd_1 404 XmtListBut
                wqd_2 404 XmtListBut
          wqfsb 405 XmtButtonBox
            wqfs 413 XmtPushBut
            wqfsl 406 XmtLabel
          (wqb2)
            wqcbp 414 XmtPushBut
            wqb2 415 XmtLabel
          wqwi 416 XmtLabel
    aqbp 417 XmtButtonBox
      Logo 417 XmtLabel
      wqap 415 XmtPushBut
      wqca 416 XmtPushBut
      wqhe 417 XmtPushBut
)");
    EXPECT_EQ(AppCBValue, 418);
    EXPECT_EQ(StringOf("wqw", XmNdialogTitle), "Add Queue");
    EXPECT_EQ(ResourceOf("wqw", XmNdialogStyle), XmDIALOG_FULL_APPLICATION_MODAL);
    EXPECT_STREQ(XmtFindObject("wqn")->format, "A0,14+-+_");
    EXPECT_EQ(XmtFindObject("wqn_B1")->format, nullptr);
    EXPECT_EQ(ResourceOf("wqn", XmNcolumns), 12);
    EXPECT_EQ(ResourceOf("wqn_B1", XmNorientation), XmHORIZONTAL);
    EXPECT_STREQ(XmtFindObject("wqc_2")->format, "H1[wqhn_B1] S1[wqdn_B1] C*[wqc]");
}

// The 21st item of an option list opens a further menu; all of them report as the list.
TEST_F(Build, PutsItemsBeyondTwentyIntoAFurtherMenu) {
    std::string list;
    for (int i = 1; i <= 41; i++) list += (i > 1 ? "," : "") + std::to_string(i);
    Make("bl many L(" + list + ") .22; ");
    struct {
        const char *item, *menu;
    } cases[] = {{"many_1", "many_pd"},   {"many_20", "many_pd"},  {"many_cb1", "many_pd"},
                 {"many_21", "many_sm1"}, {"many_40", "many_sm1"}, {"many_cb2", "many_sm1"},
                 {"many_41", "many_sm2"}};
    for (auto &c : cases) EXPECT_EQ(XtParent(WidgetOf(c.item)), WidgetOf(c.menu)) << c.item;
    EXPECT_EQ(ResourceOf("many_cb2", XmNsubMenuId), reinterpret_cast<long>(WidgetOf("many_sm2")));
    EXPECT_EQ(BarPullDownMenu, nullptr);
}

struct ResourceCase {
    const char *object, *resource;
    long want;
};
static const ResourceCase Resources[] = {
    {"rb_1", XmNset, 1},
    {"rb_2", XmNset, 0},
    {"rt", XmNcolumns, 20},
    {"rt", XmNrows, 3},
    {"rt", XmNeditMode, 0},
    {"rn", XmNcolumns, 7},
    {"rn_B1", XmNspacing, 9},
    {"rn_L", XmNmarginWidth, 8},
    {"rn", XmNmarginWidth, 6},
    {"rn", XmNborderWidth, 0},
    {"rs", XmNmarginWidth, 7},
    {"ri_B1", XmNborderWidth, 0},
    {"rl", XmNitemCount, 2},
    {"rl", XmNvisibleItemCount, 5},
    {"rt", XmNnavigationType, XmEXCLUSIVE_TAB_GROUP},
    {"ro_1", XmNnavigationType, XmNONE},
};

TEST_F(Build, GivesEachPartItsArguments) {
    Make("br rb L(x,y); t rt s(20,3); t rn l(x) bo(0) <1 sp(9)> <2 m(8,8)> <3 s(7,1) m(6,6)>; "
         "bt ri i(@x); t rs m(1,1) <1 m(7,7)>; Bl rl l(x) L(a,b) V(5); bl ro L(A\\,1,B~b\\)); ");
    for (const ResourceCase &c : Resources)
        EXPECT_EQ(ResourceOf(c.object, c.resource), c.want) << c.object << " " << c.resource;
    EXPECT_EQ(ResourceOf("ro", XmNmenuHistory), reinterpret_cast<long>(WidgetOf("ro_1")));
    EXPECT_EQ(ResourceOf("ro", XmNsubMenuId), reinterpret_cast<long>(WidgetOf("ro_pd")));
    EXPECT_EQ(StringOf("ro_1", XmNlabelString), "A,1");
    EXPECT_EQ(StringOf("ro_2", XmNlabelString), "Bb)");
    EXPECT_TRUE(XmIsText(WidgetOf("rt"))) << "text of several lines";
    EXPECT_TRUE(XmIsTextField(WidgetOf("rn"))) << "text of one line";
}

TEST_F(Build, KeepsTheRecordOfANameUsedTwice) {
    Make("l twice l(one) f(C[x]); ");
    XmtObjectData *first = XmtFindObject("twice");
    first->value = 5;
    Widget old = first->widget;
    Make("B twice; ");
    XmtObjectData *second = XmtFindObject("twice");
    EXPECT_EQ(second, first);
    EXPECT_NE(second->widget, old);
    EXPECT_EQ(second->type, XmtButtonBox);
    EXPECT_EQ(second->value, 5);
    EXPECT_STREQ(second->format, "C[x]");
    EXPECT_EQ(XmtFindWidget(old), first);
    EXPECT_TRUE(XtIsManaged(old));
}

TEST_F(Build, TellsTheHandlerOfCreationsAndGivesApplicationData) {
    char word[] = "data";
    pAppData = reinterpret_cast<intptr_t>(word);
    flCreateCallback = 1;
    Make("l created l(x) f(C[.]); ");
    flCreateCallback = 0;
    EXPECT_EQ(LastEvent, "created 100 0");
    EXPECT_EQ(XmtGetAppData("created"), reinterpret_cast<intptr_t>(word));
    pAppData = 0;
    flConvertLabelToAppData = 1;
    Make("l converted l(My label); ");
    flConvertLabelToAppData = 0;
    EXPECT_STREQ(XmtTextOf(XmtGetAppData("converted")), "My label");
    Make("bl reporting L(a,b) id(44); bp pressed; bt toggled; ");
    XmPushButtonCallbackStruct press = {XmCR_ACTIVATE, nullptr, 1};
    XtCallCallbacks(WidgetOf("pressed"), XmNactivateCallback, &press);
    EXPECT_EQ(LastEvent, "pressed 100 1");
    XtCallCallbacks(WidgetOf("reporting_2"), XmNactivateCallback, &press);
    EXPECT_EQ(LastEvent, "reporting 44 1");
    XmToggleButtonSetState(WidgetOf("toggled"), 1, 1);
    EXPECT_EQ(LastEvent, "toggled 101 2");
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
    static const struct {
        const char *list, *want;
    } Cases[] = {{"", "|"}, {"a", "a|"}, {"a,,b", "a||b|"}, {"a,", "a||"}, {"a\\,b (c),d\\", "a,b (c)|d\\|"}};
    for (auto &c : Cases) {
        XmtStringTable *table = XmtGenStringTable(c.list);
        std::string got;
        for (int i = 0; i < table->count; i++) {
            char *text = XmtDecodeString(table->strings[i]);
            got += std::string(text) + "|";
            PutMem(text);
        }
        XmtFreeStringTable(table);
        EXPECT_EQ(got, c.want) << c.list;
    }
    EXPECT_EQ(XmtGenStringTable(nullptr), nullptr);
    XmtFreeStringTable(nullptr);
}

TEST_F(Build, BindsKeysToTexts) {
    Make("t keyed t(abc) k(\\<KeyUp\\>F9: end-of-line\\(\\) delete-previous-character\\(\\)\\n"
         "\\<KeyUp\\>F8: beginning-of-line\\(\\) delete-next-character\\(\\)); ");
    RealizeWindows();
    XmtSetFocus("keyed");
    DispatchWaiting();
    ASSERT_EQ(system("xdotool key F9 F8"), 0);
    DispatchWaiting();
    EXPECT_EQ(TextOf("keyed"), "b");
    EXPECT_EQ(CheckMem(), nullptr);
}

// Arguments of objects: the resources and parts that they become, and what is written from the parts. No
// display.
#include "xmt/XmtNewArgs.h"

#include "common/MemMgr.h"
#include "tests/lib/DescDump.h"
#include "xmt/XmtNew.h"

#include <gtest/gtest.h>

TEST(FillInfo, TurnsArgumentsIntoResources) {
    static const struct {
        const char *name;
        int type, mode;
        const char *text, *dump;
    } cases[] = {
        {"a sign ends the size", XmtForm, 0, "x s(580,-1) h;", "x width=580 orientation=2"},
        {"a long word is several arguments", XmtForm, 0, "x margin(0,0) bo(2);",
         "x marginWidth=0 marginHeight=0 packing=2 isAligned=1 entryAlignment=2 alignment=2 borderWidth=2"},
        {"unknown ones with their parenthesis", XmtForm, 0, "x S(T,T) r(h\\)h) Q v;", "x orientation=1"},
        {"a brace and a letter", XmtForm, 0, "x {s h; l", "x orientation=2 |  l"},
        {"a semicolon and a letter", XmtForm, 0, "x bo(1);l h;", "x borderWidth=1 orientation=2"},
        {"the end of the text", XmtForm, 0, "x s(", "x width=0 height=0"},
        {"numbers", XmtForm, 0, "x x(1) y(2) p(3,4) be(5) sp(6) Sh(7) V(8) m(9)",
         "x x=3 y=4 entryBorder=5 spacing=6 shadowThickness=7 visibleItemCount=8 marginWidth=9 "
         "marginHeight=0"},
        {"truth values", XmtForm, 0, "x o(T) Ss(T,F) Sr(F,Tx) Sw(t) Se(T) St() Sc(T);",
         "x allowOverlap=1 scrollVertical=1 scrollHorizontal=0 resizeWidth=0 resizeHeight=1 wordWrap=0 "
         "editable=1 traversalOn=0 cursorPositionVisible=1"},
        {"letters", XmtForm, 0, "x M(f) Ssp(a) Ssp(d) Sp(m) Srp(g) Vp(c) a(c);",
         "x dialogStyle=2 scrollingPolicy=1 selectionPolicy=1 resizePolicy=1 visualPolicy=1 packing=2 "
         "isAligned=1 entryAlignment=1 alignment=1"},
        {"texts of a field", XmtText, 0, "x s(40,2) t(a\\)b,c) ml(4) CB(a) CB(c,a);",
         "x columns=40 rows=2 editMode=0 value=\"a)b,c\" maxLength=4 text<a)b,c> callbacks<c,a>"},
        {"a masked field", XmtPasswd, 0, "x s(3,5) t(y);", "x columns=3 rows=1 value=\"y\" text<y>"},
        {"a dialog", XmtWarnDialog, 1, "x T(a,b) no(ok,help) Dt(?) L(a,,b\\));",
         "x title<a,b> list<a,,b\\)> no<ok,help> dialog<?>"},
        {"icon, keys, format", XmtForm, 0, "x i(a\\)b) k(one) k(\\,two) f() f(a[b\\)]) f();",
         "x keys<one\\,two> icon<a\\)b> format<a[b)]>"},
        {"a label and its mnemonic", XmtLabel, 0, "x l(Se~tup);",
         "x labelType=2 labelString=\"Setup\" mnemonic=101 label<Setup>"},
        {"a mark in front", XmtLabel, 0, "x l(~a\\\\\\b);", "x labelType=2 labelString=\"ab\" label<ab>"},
        {"an accelerator", XmtLabel, 0, "x l(a\\,b\\~c,Ctrl+Q,Ctrl<Key>q) h;",
         "x labelType=2 labelString=\"a,bc\" mnemonic=98 acceleratorText=\"Ctrl+Q\" "
         "accelerator=\"Ctrl<Key>q\" orientation=2 label<a,bc> text<Ctrl+Q> keys<Ctrl<Key>q>"},
        {"an accelerator's text that grows", XmtLabel, 0,
         "x l(a,b,c) k(0123456789012345678901234567890123456789);",
         "x labelType=2 labelString=\"a\" acceleratorText=\"b\" "
         "accelerator=\"c0123456789012345678901234567890123456789\""
         " label<a> text<b> keys<c0123456789012345678901234567890123456789>"},
        {"no such picture", XmtLabel, 0, "x l(@no/such.xpm,fg red, bg white) h;",
         "x foreground=0 background=0 labelType=2 labelString=\"no/such.xpm\" orientation=2 "
         "label<no/such.xpm>"},
        {"colours", XmtForm, 0,
         "x c(bg light gray, fg #102030,bo x,st x,sb x,hx x,zz x) c(hi red,se x,rr x) h;",
         "x background=0 foreground=0 borderColor=0 topShadowColor=0 bottomShadowColor=0 highlightColor=0 "
         "selectColor=0 troughColor=0 orientation=2"},
        {"attachments", XmtForm, 0, "x A(lf10, tfo -3,rn,b s) h;",
         "x leftAttachment=1 leftOffset=10 topAttachment=2 topOffset=-3 rightAttachment=0 bottomAttachment=6 "
         "orientation=2"},
        {"a position makes positions of the rest", XmtForm, 0, "x A(lf 1,tp 30,rf 4) A(bf 5);",
         "x leftAttachment=1 leftOffset=1 topAttachment=5 topPosition=30 rightAttachment=1 rightPosition=4 "
         "bottomAttachment=1 bottomOffset=5"},
        {"what attaches nothing", XmtForm, 0, "x A(l*,,zf 5,t,lw nosuch 5,two ,r) h;",
         "x leftAttachment=3 topAttachment=4 orientation=2"},
        {"a macro, up to its end", XmtForm, 0, "x .91 v;",
         "x borderWidth=3 marginWidth=1 marginHeight=2 orientation=1"},
        {"a macro that uses itself", XmtForm, 0, "x .92 .93 v;", "x orientation=1"},
        {"undefined macros", XmtForm, 0, "x .90 .-1 .100 v;", "x orientation=1"},
        {"number 0 is meant by none", XmtForm, 0, "x . ;", "x shadowThickness=5"},
        {"a name is not read within an object", XmtForm, XMT_FILL_NESTED, "h;", " orientation=2"},
    };
    DumpDescription(".0 Sh(5)\n.91 bo(3) m(1,2); h\n.92 h .92 .92 .92\n.93 .92 .93 .93", 0);
    for (const auto &c : cases)
        EXPECT_EQ(DumpFillInfo(c.text, c.type, c.mode), c.dump) << c.name << ": " << c.text;
    flNewColorSet = 0;
    DumpFillInfo("x c(bg white)", XmtForm, 0);
    EXPECT_EQ(flNewColorSet, 1);
}

TEST(FillInfo, AddsTraversalInEveryReading) {
    static const struct {
        int flNone, flLists, mode;
        const char *dump;
    } cases[] = {{0, 0, 0, "3"}, {0, 1, 0, ""}, {1, 0, 0, "00"}, {1, 0, XMT_FILL_NO_TRAVERSAL, "3"}};
    for (const auto &c : cases) {
        XmtInfo info;
        std::string values;
        XmtCursor cursor("x;");
        flNoTraversal = c.flNone;
        flDefaultTabGroup = c.flLists;
        XmtFillInfo(&info, c.mode);
        for (int i = 0; i < info.argCount; i++) values += std::to_string(info.args[i].value);
        EXPECT_EQ(values, c.dump) << c.flNone << c.flLists << c.mode;
        XmtClearInfo(&info);
    }
    flNoTraversal = flDefaultTabGroup = 0;
}

TEST(FillInfo, KeepsTheRecordWhereAsked) {
    XmtInfo info;
    info.type = XmtText;
    {
        XmtCursor cursor("x l(a) f(b);y t(c);");
        XmtFillInfo(&info, 0);
        XmtFillInfo(&info, XMT_FILL_KEEP);
    }
    EXPECT_EQ(info.name + info.text + info.format, "ycb");
    XmtClearInfo(&info);
    EXPECT_TRUE(info.type == XmtText && info.argCount == 0 && info.format == nullptr);
}

TEST(FillInfo, HasRoomForFortyResources) {
    XmtInfo info;
    std::string names[XMT_ARGS + 1];
    for (std::string &name : names) {
        name = "resource" + std::to_string(&name - names);
        XmtAddArg(&info, name.c_str(), 1);
    }
    XmtAddArg(&info, "resource39", 2);
    EXPECT_EQ(info.argCount, XMT_ARGS);
    EXPECT_EQ(info.args[XMT_ARGS - 1].value, 2);
}

// ---- compounds

TEST(FillInfoDesc, SortsArguments) {
    static const struct {
        const char *name, *text, *dump;
    } cases[] = {
        {"a choice", "wqpm l(Name) .22 L(a,b) .0 <1 h> <2 .21> <3.22>;",
         "wqpm label<Name> list<a,b> 0<  .22  .0   > 1< h> 2< .21> 3< 22>"},
        {"letters within words", "x Se(F) l(a) f(C[b\\)]) Ss(T,F) ml(4) F_(7x13) bl(c) {",
         "x label<c> format<C[b\\)]> 0< Se(F)   Ss(T,F) ml(4) F_(7x13) b > | {"},
        {"groups", "x \\<1 <0 h> <2\\>y> <1> <2 z\\> ;", "x text< \\<1  h   > 2< z\\> ;>"},
        {"escapes", "x l(a\\)b,c) L(a,b\\)c) \\; h;y", "x label<a\\)b> list<a,b\\)c> 0< c)  \\; h> | y"},
        {"without an end", "x h", "x text< h>"},
        {"an F swallows the rest", "x F ; l(a) h;", "x 0< F ; l(a) h>"},
        {"a label of nothing", "x l() l L;", "x 0<  l L>"},
        {"the later wins", "x <1 a> l(a) f(a) L(a) <1 b> l(b) f(b) L(b);",
         "x label<b> list<b> format<b> 0<        > 1< b>"},
    };
    for (const auto &c : cases) EXPECT_EQ(DumpFillInfoDesc(c.text), c.dump) << c.name << ": " << c.text;
}

// ---- reading back

TEST(GetInfo, ListsWhatIsAskedFor) {
    XmtInfo info;
    XtArgVal values[XMT_ARGS];
    std::string names;
    XmtGetInfo(&info, "q s m(x) lkL hv c(bg,, fg,xx) A(t,z,r) CB(a,b) zz(s) t o;s", values);
    for (int i = 0; i < info.argCount; i++) names += std::string(info.args[i].name) + " ";
    EXPECT_EQ(info.name, "q");
    EXPECT_EQ(names, "columns rows labelString orientation orientation background foreground topAttachment "
                     "rightAttachment allowOverlap ");
    XmtGetInfo(&info, ("q " + std::string(100, 's')).c_str(), values);
    EXPECT_EQ(info.argCount, XMT_ARGS);
    XmtClearInfo(&info);
}

// The accessors: what they do to objects, and that they do nothing to what is not there.
#include "xmt/XmtUtils.h"

#include "tests/lib/Capture.h"
#include "tests/lib/ObjectDump.h"
#include "tests/lib/WindowRig.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtString.h"

#include <climits>
#include <gtest/gtest.h>
#include <string>
#include <utility>

TEST(BreakString, Lines) {
    static const struct {
        const char *text;
        int width, indent;
        const char *broken;
    } cases[] = {{"short", 5, 2, "short"},
                 {"one two three", 7, 0, "one two\nthree"},
                 {"Key: one two three", 9, 5, "Key: one\n     two\n     thre-\n     e"},
                 {"abcdefgh", 3, 2, "abc-\n  d-\n  e-\n  f-\n  g-\n  h"},
                 {"abcdefgh", 3, 3, "abc-\ndef-\ngh"},
                 {"ab", 0, 0, "a-\nb"},
                 {"     x", 2, 1, "  \n  \n x"},
                 {"Key: a\nbc def", 8, 2, "Key: a\n  bc def"}, // the width begins anew
                 {"ab\n\nc\n", 9, 1, "ab\n \n c\n "}};
    for (const auto &row : cases)
        EXPECT_EQ(BreakString(row.text, row.width, row.indent), row.broken) << row.text << row.width;
}

static std::string Heard;

static void Hear(XmtCallData *data) {
    Heard += std::string(data->name) + "=" + std::to_string(data->value) + " ";
}

static const char Description[] =
    "WF main t(Main) {\n"
    "l label p(-7,3) l(Name: old) s(120,-1) A(lf-3,tf10); bp push l(P~ush) A(lf,tf40); l plain l( );\n"
    "BB board bo(3) A(lf150,tf) { l one l(1); l two l(2) p(0,20); l three l(3) p(0,40); }\n"
    "id(10) Bl list V(3) L(a,b,c) A(lf,tf80); Blm multi V(6) L(p,q,r,s,t) A(lf60,tf80);\n"
    "id(20) t field s(12,1) t(start) A(lf,tf200); t area s(30,4) t(many words) A(lf,tf240) Ss(F,F);\n"
    "t checked s(12,1) A(lf150,tf200) CB(c) f(d1,60); tp secret s(12,1) A(lf300,tf200) CB(c) f(A0,20);\n"
    "id(30) bt toggle l(Toggle) A(lf300,tf); br radio L(x,y,z) A(lf300,tf40); bl option l(Opt) L(x,y,z) "
    "A(lf300,tf140);\n"
    "bt follower l(F) f(C*[follower]) A(lf400,tf);\n"
    "}\n"
    "id(40) DB box t(Box) { l inbox l(In); }\n";

// What every accessor does with a name; on the screen or not, of the kind or not, it goes on.
static void CallAll(const char *name) {
    XmtSetXmValue(name, XmNx, 3);
    XmtGetXmValue(name, "noSuchResource");
    XmtSetArgs(name);
    XmtSetArgsNoUpdate(name);
    XmtUpdate(name);
    XmtSetAppData(name, XmtGetAppData(name));
    XmtSetItemState(name, 77);
    for (auto act : {XmtShow, XmtHide, XmtDisable, XmtEnable, XmtLowerItem, XmtRaiseItem, XmtClearCursor,
                     XmtSetFocus, XmtSetFocusToParent, SetFocus, XmtSetTextFocus, XmtShow, XmtDoFormat})
        act(name);
    for (unsigned shape : {0u, unsigned{XC_watch}, 152u, 160u, 100000u}) XmtSetCursor(name, shape);
    for (int n : {-1, 0, 1, 99}) {
        for (int flNotify : {0, 1}) XmtSetListItem(name, n, flNotify);
        for (auto act : {XmtClearListItem, XmtDeleteListItem, XmtSetOptionMenu, XmtSetRadioBox, XmtSetTextPos,
                         XmtSetTextPosTop})
            act(name, n);
        for (auto act : {XmtAddListItem, XmtReplaceListItem, XmtReplaceListItems_, XmtAddTextStr}) {
            act(name, "a,b,c", n);
            act(name, nullptr, n);
        }
        XmtSetTextHighlight(name, n, n + 2);
        XmtClearTextHighlight(name, n + 2, n);
        XmtSetValuePF(name, static_cast<intptr_t>(n), 1);
    }
    for (auto act : {XmtSetLabelText, XmtSetFont, XmtSetTitle, XmtSetIconName, XmtReplaceListItems,
                     XmtReplaceAllListItems})
        act(name, nullptr);
    XmtSetValuePF(name, nullptr, 1);
    XmtClearAllListItems(name);
    XmtStoreValue(name);
    XmtResetToStoredValue(name);
    EXPECT_LE(XmtGetListCount(name), 100);
    for (char *text : {XmtGetText(name), XmtGetTextSelection(name)}) XtFree(text);
    TakeText(XmtGetLabel(name));
}

class XmtUtils : public WindowTest {
protected:
    static void SetUpTestSuite() {
        if (!SetUpWindow(Hear, 1, Description)) return;
        for (const char *name :
             {"label", "list", "multi", "field", "area", "toggle", "radio", "option", "box"})
            CallAll(name);
        EXPECT_EQ(XmtGetWindow(XmtGetWidget("label")), 0u) << "all this was in front of the screen";
        XmtHide("box");
        RealizeWindows();
    }
    void SetUp() override {
        WindowTest::SetUp();
        Heard.clear();
    }
};

TEST_F(XmtUtils, WhatIsNotThereOrDoesNotFit) {
    XmtSetFocus_("push");
    for (const char *name : {"nobody", "", static_cast<const char *>(nullptr), "push", "board", "radio_1"})
        CallAll(name);
    DispatchWaiting();
    EXPECT_TRUE(!XmtGetWidget("nobody") && !XmtGetText("label") && !XmtGetLabel("board") &&
                !XmtFindWidget(nullptr));
    EXPECT_EQ(XmtGetValue("label"), 0);
    EXPECT_EQ(XmtFindWidget(XmtGetWidget("push")), XmtFindObject("push"));
}

TEST_F(XmtUtils, ResourcesAreWidened) {
    XmtReplaceListItems("multi", "p,q,r,s,t");
    XmtSetValuePF("toggle", static_cast<intptr_t>(1), 0);
    EXPECT_EQ(
        ResourcesOf("main.sensitive label.leftOffset label.x label.topAttachment field.columns area.rows "
                    "multi.itemCount board.borderWidth toggle.set"),
        "1 -3 -3 1 12 4 5 3 0");
    XmtSetArgs("list L(new,items) V(2)");
    EXPECT_EQ(XmtGetListCount("list"), 2);
    XmtSetArgsNoUpdate("list L(other)");
    EXPECT_EQ(XmtGetListCount("list"), 2);
    EXPECT_EQ(XmtGetXmValue("list", "visibleItemCount"), 2u);
}

TEST_F(XmtUtils, ListsOfNames) {
    auto managed = [] {
        std::string out;
        for (const char *name : {"one", "two", "three"}) out += XtIsManaged(XmtGetWidget(name)) ? "+" : "-";
        return out + " ";
    };
    XmtHide("one nobody,three"); // with a comma blanks split as well
    std::string seen = managed();
    XmtShow("one three"); // without one they do not
    seen += managed();
    XmtSetItemState("one three", XMT_SHOW);
    EXPECT_EQ(seen + managed(), "-+- -+- +++ ");
    XmtDisable("one,two");
    EXPECT_TRUE(!XmtIsEnabled("two") && XmtIsEnabled("three"));
}

TEST_F(XmtUtils, Labels) {
    static const struct {
        const char *label, *text, *result;
    } cases[] = {{"Name: old", "new", "Name: new"},
                 {"Name", "new", "Name new"},
                 {"A b: c: d", "x:y", "A b: x:y"},
                 {"Name: old", "", "Name: "},
                 {"Name: @/etc/passwd", "~%n\\,", "Name: ~%n\\,"},
                 {"", "new", " new"}};
    for (const auto &row : cases) {
        XmtSetLabelRaw("label", row.label);
        XmtSetLabelText("label", row.text);
        EXPECT_EQ(TakeText(XmtGetLabel("label")), row.result) << row.label;
    }
    XmtSetLabelRaw("label", "Name: x");
    XmtSetLabelTextSize("label", "one two three", 9, 0);
    EXPECT_EQ(TakeText(XmtGetLabel("label")), "Name: one\n      two\n      thr-\n      ee");
    for (const char *plain : {"plain (a), b; <c>", ""}) {
        XmtSetLabel("label", plain);
        EXPECT_EQ(TakeText(XmtGetLabel("label")), plain);
    }
    XmtSetLabel("push", "S~end");
    EXPECT_EQ(TakeText(XmtGetLabel("push")), "Send");
    EXPECT_EQ(ResourceOf("push", XmNmnemonic), 'S');
    XmtSetLabel("plain", "@no/such/file.xpm");
    std::string text = std::string(5000, 'w') + "\na\tb\n\n\t\xe9%s@~\\\n";
    XmtSetLabelRaw("plain", text.c_str());
    EXPECT_EQ(TakeText(XmtGetLabel("plain")), text);
    EXPECT_EQ(ResourceOf("plain", XmNlabelType), XmSTRING);
    XmtSetLabelRaw("plain", " ");
}

// The items, those selected in brackets.
static std::string Items(const char *name) {
    std::string out;
    auto items = reinterpret_cast<XmString *>(XmtGetXmValue(name, XmNitems));
    for (int i = 0; i < XmtGetListCount(name); i++) {
        std::string text = TakeText(XmtDecodeString(items[i]));
        out += XmListPosSelected(XmtGetWidget(name), i + 1) ? "[" + text + "]" : text + " ";
    }
    return out;
}

TEST_F(XmtUtils, Lists) {
    XmtReplaceAllListItems("list", "a,b,,c\\,d");
    XmtSetListItem("list", 2, 0);
    for (int position : {-1, 0, 4}) { // Motif takes 0 for the last
        XmtSetListItem("list", position, 1);
        XmtClearListItem("list", position);
        XmtDeleteListItem("list", position);
        XmtReplaceListItem("list", "no", position);
    }
    EXPECT_EQ(Items("list"), "a [b]c,d ");
    XmtAddListItem("list", "z", 0);
    XmtAddListItem("list", "@~%s", 1);
    XmtAddListItem("list", "no", 7);
    XmtReplaceListItem("list", "A,", 2);
    XmtReplaceListItems_("list", "y,z,too,many", 4);
    EXPECT_EQ(Items("list"), "@~%s A, [b]y z ");
    XmtDeleteListItem("list", 1);
    XmtClearListItem("list", 2);
    EXPECT_EQ(Items("list"), "A, b y z ");
    XmtReplaceAllListItems("list", nullptr);
    XmtSetListItem("list", 1, 1);
    EXPECT_EQ(Items("list"), "");
    XmtReplaceListItems("multi", "p,q,r,s,t");
    XmtSetListItem("multi", 2 + 8 + 16, 0);
    EXPECT_EQ(Items("multi"), "p [q]r [s]t ") << "a mask reaches four items";
}

TEST_F(XmtUtils, NumbersInFields) {
    static const struct {
        const char *text;
        int minimum, maximum, code, result;
    } cases[] = {{"", 0, 0, 0, 0},
                 {"", 1, 60, 2, 1},
                 {"60", 1, 60, 0, 60},
                 {"61", 1, 60, 2, 1},
                 {"12a", 5, 0, 1, 5},
                 {"99999999999999999999", 1, 60, 2, 1},
                 {"4000000000", 0, 0, 0, INT_MAX}};
    for (const auto &row : cases) {
        XmtSetText("field", row.text);
        int result = -77;
        EXPECT_EQ(XmtGetTextInt("field", &result, row.minimum, row.maximum), row.code) << row.text;
        EXPECT_EQ(result, row.result) << row.text;
    }
    for (const char *text : {"", ".", "1.2.3", "9", "7.5"}) {
        XmtSetText("field", text);
        float result = -77;
        int code = XmtGetTextFloat("field", &result, 1, 8);
        Heard += std::to_string(code) + (result == (code ? 1.0f : 7.5f) ? " " : "? ");
    }
    EXPECT_EQ(Heard, "2 1 1 2 0 ");
}

TEST_F(XmtUtils, Texts) {
    XmtSetText("area", "one\ntwo");
    XmtAddTextStr("area", "!", 0);
    XmtAddTextStr("area", "~", 1);
    XmtAddTextStr("area", "?", 999);
    EXPECT_EQ(TextOf("area"), "o~ne\ntwo!?");
    XmtSetTextPosTop("area", 5);
    EXPECT_EQ(XmtGetTextPos("area"), 5);
    XmtSetTextPos("area", 500);
    EXPECT_EQ(XmtGetTextPos("area"), 10);
    XmtSetText("field", "select me");
    XmtSetTextFocus("field");
    char *selection = XmtGetTextSelection("field");
    EXPECT_STREQ(selection, "select me");
    XtFree(selection);
    XmtSetText("field", "caf\xe9 100% \x01");
    EXPECT_EQ(TextOf("field"), "caf\xe9 100% \x01");
}

static void SetNumber(const char *name, intptr_t value) {
    XmtSetValuePF(name, value, 1);
}

TEST_F(XmtUtils, Values) {
    static const struct {
        const char *name;
        intptr_t set, value;
        const char *heard;
    } cases[] = {{"toggle", 2, 1, ""},        {"toggle", 1, 0, ""},
                 {"toggle", 0, 0, ""},        {"follower", 2, 1, "follower=1 "},
                 {"option", 3, 2, ""},        {"option", 9, 8, ""},
                 {"radio", 3, 2, "radio=2 "}, {"radio", 1, 0, "radio=0 "},
                 {"list", 2, 1, "list=2 "},   {"multi", 5, 4, "multi=1 multi=5 "}};
    XmtReplaceListItems("list", "a,b,c");
    for (const auto &row : cases) {
        Heard.clear();
        SetNumber(row.name, row.set);
        EXPECT_EQ(XmtGetValue(row.name), row.value) << row.name << row.set;
        EXPECT_EQ(Heard, row.heard) << row.name << row.set;
    }
    EXPECT_EQ(reinterpret_cast<Widget>(XmtGetXmValue("option", XmNmenuHistory)), XmtGetWidget("option_3"));
    EXPECT_EQ(ResourcesOf("radio_1.set radio_3.set"), "1 0") << "one of them is on";
    XmtSetValuePF("toggle", "2", 0);
    EXPECT_EQ(XmtGetValue("toggle"), 1);
}

TEST_F(XmtUtils, ValuesOfTexts) {
    XmtSetValuePF("checked", "42", 1);
    EXPECT_EQ(TextOf("checked"), "42");
    XmtSetValuePF("checked", static_cast<const char *>(nullptr), 1);
    XmtSetValuePF("checked", static_cast<intptr_t>(7), 1);
    EXPECT_EQ(TextOf("checked"), "42");
    XmtSetValuePF("secret", "word", 1);
    EXPECT_STREQ(XmtTextOf(XmtGetValue("secret")), "word");
    EXPECT_EQ(TextOf("secret"), "****");
    XmtResetToStoredValue("secret");
    EXPECT_STREQ(XmtTextOf(XmtGetStoredValue("secret")), "word") << "set from its own text";
    XmtSetText("field", "kept");
    XmtStoreValue("field secret,toggle");
    XmtSetText("field", "changed");
    EXPECT_STREQ(XmtTextOf(XmtGetStoredValue("field")), "kept");
    XmtResetToStoredValue("field");
    EXPECT_EQ(TextOf("field"), "kept");
}

TEST_F(XmtUtils, StoredValuesComeBack) {
    for (const char *name : {"toggle", "option", "radio", "multi"}) {
        SetNumber(name, 2);
        intptr_t value = XmtGetValue(name);
        XmtStoreValue(name);
        SetNumber(name, 1);
        XmtResetToStoredValue(name);
        EXPECT_EQ(XmtGetValue(name), value) << name;
    }
    XmtReplaceListItems("list", "a,b,c");
    XmtSetListItem("list", 2, 1);
    XmtStoreValue("list");
    XmtResetToStoredValue("list");
    EXPECT_EQ(Items("list"), "a b [c]") << "a value of an event counts from 1";
}

TEST_F(XmtUtils, ItemsAreAdded) {
    XmtReplaceFormat("option", "C*[option]");
    int next = AppCBValue;
    XmtAddListButton("option", "l(Fourth)");
    XmtAddRadioButton("radio", "l(Fourth)");
    XmtAddRadioButton("push", "l(No)"); // holds no items, and the record made last is another's
    DispatchWaiting();
    EXPECT_EQ(XmtFindObject("radio_4")->type, XmtRadioBox);
    XmtObjectData *item = XmtFindObject("option_4"), *owner = XmtFindObject("option");
    ASSERT_NE(item, nullptr);
    EXPECT_TRUE(item->id == owner->id && item->type == XmtListBut);
    EXPECT_STREQ(item->format, "C*[option]");
    XmtSetOptionMenu("option", 4);
    XmPushButtonCallbackStruct call = {XmCR_ACTIVATE, nullptr, 1};
    XtCallCallbacks(item->widget, XmNactivateCallback, &call);
    XmtSetRadioBox("radio", 4);
    EXPECT_EQ(Heard, "option=3 radio=3 ");
    XmtNewObject("main", Hear, 0, "l after l(after) A(lf,bf);");
    EXPECT_EQ(XmtFindObject("after")->id, next) << "the counter has not moved, no number is left over";
    XmtReplaceFormat("option", "");
}

// Fields of a queue's window, ruled by the formats of two option lists: model chosen, then connection.
static const char QueueFields[] = "id(403) bl wqcm l(Model) L(a,b,c) f(S1[wqrpn_B1] C*[wqcm]) A(lf500,tf);\n"
                                  "bl wqc l(Connection) L(a,b) f(H1[wqhn_B1,wqrpn_B1] S1[wqdn_B1] C*[wqc] "
                                  "P0[wqcm.wqcm_pd]) A(lf500,tf40);\n"
                                  "t wqhn l(Host) s(9,1) A(lf500,tf80); t wqrpn l(Name) s(9,1) "
                                  "A(lf500,tf120); t wqdn l(Device) s(9,1) A(lf500,tf160);\n";

static std::string Fields() {
    std::string out;
    for (const char *name : {"wqhn", "wqrpn", "wqdn"})
        if (XtIsManaged(XmtGetWidget((std::string(name) + "_B1").c_str())))
            out += std::string(out.empty() ? "" : " ") + name;
    return out;
}

TEST_F(XmtUtils, FormatsOfAWindow) {
    XmtNewObject("main", Hear, 403, QueueFields);
    static const struct {
        int model, connection;
        const char *fields, *heard;
    } cases[] = {{0, 0, "wqhn", "wqcm=0 wqc=0 wqcm=0 "},
                 {1, 0, "wqhn wqrpn", "wqcm=1 wqc=0 wqcm=1 "},
                 {2, 1, "wqdn", "wqcm=2 wqc=1 "}};
    for (const auto &row : cases) {
        Heard.clear();
        SetNumber("wqcm", row.model + 1);
        SetNumber("wqc", row.connection + 1);
        EXPECT_EQ(Fields(), row.fields) << row.model << row.connection;
        EXPECT_EQ(Heard, row.heard) << row.model << row.connection;
    }
    SetNumber("wqcm", 2);
    EXPECT_EQ(Fields(), "wqrpn wqdn") << "the model alone shows its field, whatever the connection";
}

// Formats: state lists, and what the clauses do to records without widgets.
#include "xmt/XmtFormat.h"

#include "common/MemMgr.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtUtils.h"

#include <gtest/gtest.h>
#include <string>

TEST(XmtFormat, StateLists) {
    static const struct {
        const char *list;
        int state;
        bool match;
    } cases[] = {{"1,3", 1, true}, {"1,3", 3, true}, {"1,3", 13, false}, {"*", 77, true},   {"", 0, false},
                 {"x", 0, true},   {"x", 1, false},  {"x,2", 2, true},   {"1,*", 5, false}, {"12", 2, false}};
    for (const auto &row : cases)
        EXPECT_EQ(XmtTestFormatState(row.list, row.state), row.match) << row.list << " " << row.state;
}

// A record without a widget.
static XmtObjectData *MakeRecord(const char *name, int id, XmtType type, const char *format) {
    XmtInitStore();
    auto object =
        static_cast<XmtObjectData *>(PushHashNode(XmtTable, HashText(name), nullptr, sizeof(XmtObjectData)));
    PutMem(object->name);
    PutMem(object->format);
    *object = {};
    object->name = SaveStr_(name);
    object->id = id;
    object->type = type;
    object->handler = RecordEvent;
    object->format = format ? SaveStr_(format) : nullptr;
    return object;
}

static std::string RunFormat(XmtType type, const char *format, intptr_t value, int reason) {
    XmtObjectData *object = MakeRecord("self", 1, type, format);
    XmtCallData data = XmtNewCallData(object, reason);
    data.value = value;
    XmtProcessFormat(object, &data, 0);
    return TakeEvents();
}

TEST(XmtFormat, ClausesReachTheirTargets) {
    MakeRecord("other", 7, XmtLabel, nullptr);
    MakeRecord("kept", 8, XmtListBut, "C1[kept]")->value = 1;
    static const struct {
        const char *name;
        XmtType type;
        const char *format;
        intptr_t value;
        int reason;
        const char *heard;
    } cases[] = {
        {"a match calls the target with the event's value", XmtListBut, "C1[other]", 1, 1, "other 7/1=1;"},
        {"each target of a clause", XmtListBut, "C*[other self]", 3, 1, "other 7/1=3;self 1/1=3;"},
        {"a dot is the object itself", XmtToggleBut, "C*[.]", 1, 2, "self 1/2=1;"},
        {"a list of names is no name to call", XmtListBox, "C*[other,self]", 1, 1, ""},
        {"an empty bracket takes the next token", XmtListBox, "C*[] other", 1, 1, "other 7/1=1;"},
        {"unknown letters, names, a lone head", XmtListBox, "Z*[other] C*[nobody] C*", 1, 1, ""},
        {"P with a number", XmtListBut, "P0[kept.1]", 0, 1, "kept 8/1=1;"},
        {"P with the other's own value", XmtListBut, "P0[kept.kept_pd]", 0, 1, "kept 8/1=1;"},
        {"no dialect for several selections", XmtListBoxMS, "C*[other]", 1, 1, ""},
        {"a button's every event", XmtPushBut, "C[other]", 0, 18, "other 7/18=0;"},
        {"a button's key", XmtPushBut, "Ca[other] Cme[self]", 0, 18, "self 1/18=0;"},
        {"a key that is none", XmtCascadeBut, "Cnokey[other]", 0, 1, "other 7/1=0;"}};
    for (const auto &row : cases) {
        MakeRecord("self", 1, row.type, nullptr);
        EXPECT_EQ(RunFormat(row.type, row.format, row.value, row.reason), row.heard) << row.name;
    }
}

TEST(XmtFormat, ValuesAndFormatsOfOthers) {
    XmtObjectData *toggle = MakeRecord("toggle", 5, XmtToggleBut, "C1[toggle]");
    EXPECT_EQ(RunFormat(XmtListBut, "V0[toggle.2]", 0, 1), "toggle 5/1=1;");
    EXPECT_EQ(toggle->value, 1);
    EXPECT_EQ(RunFormat(XmtListBut, "V0[toggle.1] V0[toggle] v1[toggle.2]", 0, 1), "");
    EXPECT_EQ(toggle->value, 0);
    RunFormat(XmtListBut, "f*[toggle.C*[toggle]", 0, 1);
    EXPECT_STREQ(toggle->format, "C*");
    RunFormat(XmtListBut, "f*[toggle.C0_toggle]", 0, 1);
    EXPECT_STREQ(toggle->format, "C0 toggle");
    EXPECT_EQ(RunFormat(XmtListBut, "f*[self.C*_toggle] V*[toggle.1] C*[self]", 0, 1),
              "toggle 5/1=0;self 1/1=0;")
        << "a format that replaces itself runs to its end";
    EXPECT_EQ(RunFormat(XmtListBut, "A*[toggle] V*[toggle.2] R1[toggle]", 0, 1), "toggle 5/1=0;")
        << "A and R run whatever the state";
}

TEST(XmtFormat, CirclesEnd) {
    MakeRecord("one", 1, XmtToggleBut, "V*[two.2] V*[two.1] C*[one]");
    MakeRecord("two", 2, XmtToggleBut, "V*[one.2] V*[one.1]");
    XmtSetValuePF("one", static_cast<intptr_t>(2), 1);
    EXPECT_NE(TakeEvents(), "");
    EXPECT_EQ(XmtFormatState.depth, 0);
}

TEST(XmtFormat, FormatsOfObjectsWithItems) {
    XmtObjectData *owner = MakeRecord("box", 1, XmtListBut, "H1[x]"), *items[4] = {};
    for (int n : {1, 2, 4})
        items[n - 1] = MakeRecord(("box_" + std::to_string(n)).c_str(), 1, XmtListBut, "old");
    XmtSetFormat("box", "S1[y]");
    EXPECT_STREQ(owner->format, "H1[x] S1[y]");
    EXPECT_STREQ(items[1]->format, "H1[x] S1[y]");
    EXPECT_STREQ(items[3]->format, "old") << "the walk ends at the missing third";
    XmtReplaceFormat("box", "E*[z]");
    XmtReplaceFormat("box", items[0]->format);
    EXPECT_STREQ(owner->format, "E*[z]");
    EXPECT_STREQ(items[1]->format, "E*[z]");
    EXPECT_EQ(CheckMem(), nullptr);
}

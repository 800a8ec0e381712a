// Entry validation of text fields: code and message for each element and the ways through a format; what is
// taken for the candidate of a change; masked fields; typed with real keys.
#include "xmt/XmtValidate.h"

#include "common/MemMgr.h"
#include "tests/lib/Capture.h"
#include "tests/lib/MenuDump.h"
#include "tests/lib/ObjectDump.h"
#include "tests/lib/WindowRig.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtUtils.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

struct EntryCase {
    const char *format;
    const char *typed;
    std::string candidate;
    int code;
    std::string message; // as it goes to standard error where there is no window
};

static const std::string NUMBER = "This number must be between ";
static const std::string LENGTH = "This entry is not valid.";
static const std::string CHARACTER = "Invalid character ";
static const std::string BEGIN = "\nThis entry is must begin with ";

static std::string Characters(const char *range) {
    return LENGTH + "\nIt must have " + range + " characters.";
}

static const EntryCase EntryCases[] = {
    {"A0,14+-+_", "n", "abcdefghijkl-n", 0, ""},
    {"A0,14+-+_", "o", "abcdefghijklmno", 2, Characters("1 to 14")},
    {"A0,14+-+_", "abcdefghijklmno", "abcdefghijklmno", 0, ""}, // pasted into an empty field: one more
    {"A0,14+-+_", "abcdefghijklmnop", "abcdefghijklmnop", 2, Characters("1 to 14")},
    {"A0,14+-+_", ".", "a.b", 3, CHARACTER + "at \".b\""},
    {"A0,14", "%", "a%b", 3, CHARACTER + "at \"%\""}, // shown once
    {"A0,14-x", "x", "x", 3, CHARACTER + "at \"x\""},
    {"p0,14", "\t", "a ~\t", 3, LENGTH},
    {"L0,255", "", std::string(300, 'x'), 2, Characters("1 to 255")},
    {"tb", "t", "tb", 0, ""},
    {"tb", "y", "ty", 3, CHARACTER + "y\nb was expected after \"t\""},
    {"d1,60", "0", "60", 0, ""},
    {"d1,60", "1", "61", 1, NUMBER + "1 to 60."},
    {"d1,60", "0", "0", 1, NUMBER + "1 to 60."},
    {"d1,60", "a", "1a", 3, CHARACTER + "'a'"},
    {"d1,60-7", "7", "7", 3, CHARACTER + "'7'"},
    {"d0,255", "9", "99999999999999999999", 1, NUMBER + "0 to 255."},
    {"xa,1f", "0", "20", 1, NUMBER + "a to 1f."},
    {"f0.5,2.5", ".", "2.", 0, ""},
    {"f0.5,2.5", "6", "2.6", 1, NUMBER + "0.500000 to 2.500000."},
    {"f0.5,2.5", ".", "1.2.", 1, "Only one '.' may be entered."},
    {"D1,1e10", "1", "10000000001", 1, NUMBER + "1 to 1e+10."},
    {"/A0,255+-+_+/+.", "/", "/", 0, ""},
    {"/A0,255+-+_+/+.", "x", "x", 3, CHARACTER + "x" + BEGIN + "/"},
    {"/A0,255", "", "", 0, ""},
    {"bc", "b", "b", 0, ""}, // more may come
    {"!(0.0.0.0)A0,9+.", "0.0.0.0", "0.0.0.0", 4, "Invalid entry \"0.0.0.0\""},
    {"!(no)|!(yes)|A0,9", "yes", "yes", 4, "Invalid entry \"yes\""}, // each must pass
    {"A0,9|t0,9", "-", "-", 0, ""},
    {"A0,3 | t0,9", "g", "abcdefg", 0, ""},                // a length is a failure as well
    {"A0,9|t0,3", "f", "abcdef", 2, Characters("1 to 3")}, // a bar in the ordinary way
    {"bc|gh", "x", "gx", 3, CHARACTER + "x\nh was expected after \"g\""},
    {"d1,60|a0,9", "1", "1", 3, LENGTH},
    {"`A0,9|t0,9", "-", "-", 3, CHARACTER + "at \"-\""},
    {"A0,9&a0,9", "b", "1b", 0, ""}, // behind & only what was typed
    {"v.tnext | d0,255", ".", "25.", 1, ""},
    {"v.|d0,255", ".", ".", 1, ""},
    {"v.tnext d0,255", "6", "25", 0, ""},
    {"l3tnext|A0,9", "c", "abc", 1, ""},
};

// What is said on standard error, without the head and the end of the line.
static std::string MessageOf(const std::function<void()> &act) {
    Capture capture;
    act();
    std::string text = capture.Err();
    return text.empty() ? text : text.substr(strlen("prndeck: "), text.size() - strlen("prndeck: \n"));
}

TEST(XmtValidateTest, CodesAndMessages) {
    OpenMenuTexts();
    for (const EntryCase &one : EntryCases) {
        int code = -1;
        EXPECT_EQ(MessageOf([&] { code = XmtValidateEntry(one.typed, one.candidate.c_str(), one.format); }),
                  one.message)
            << one.format << " " << one.candidate;
        EXPECT_EQ(code, one.code) << one.format << " " << one.candidate;
    }
    EXPECT_EQ(XmtValidateEntry("x", nullptr, "d1,2") + XmtValidateEntry("x", "x", nullptr), 0);
}

TEST(XmtValidateTest, Escapes) {
    static const char *const cases[][2] = {
        {"a(b),c;<d>", "a\\(b\\)\\,c\\;\\<d\\>"}, {"\\,\\\\,", "\\,\\\\\\,"}, {"\\", "\\"}, {"", ""}};
    for (const auto &one : cases) EXPECT_EQ(XmtInsertEscape(one[0]), one[1]);
}

// ---- changes

struct ChangeCase {
    const char *name;
    const char *old; // null: none
    std::string typed;
    int start, end, insert;
    std::string field;  // what is checked of a field's change
    std::string masked; // the real text of a masked field after it
};

static const std::string LONG_OLD = "!" + std::string(400, 'o'), LONG_TYPED(111, 't');
static const ChangeCase ChangeCases[] = {
    {"first character", nullptr, "!", 0, 0, 0, "!", "!"},
    {"at the end", "!ab", "c", 3, 3, 3, "!abc", "!abc"},
    {"within", "!ab", "c", 1, 1, 1, "!cab", "!cab"},
    {"replaced", "!abcd", "x", 2, 4, 2, "!axd", "!axd"},
    {"deleted", "!abcd", "", 1, 3, 3, "!cd", "!cd"},
    {"what it holds once more", "!a", "!a", 2, 2, 2, "!a", "!a!a"},
    {"places outside the text", "!a", "b", 90, 90, 90, "!ab", "!ab"},
    {"as long as it may get", LONG_OLD.c_str(), LONG_TYPED.substr(1), 401, 401, 401,
     LONG_OLD + LONG_TYPED.substr(1), LONG_OLD + LONG_TYPED.substr(1)},
    {"replaced in a long one", LONG_OLD.c_str(), LONG_TYPED, 1, 401, 1, "!" + LONG_TYPED, "!" + LONG_TYPED},
    {"too long", LONG_OLD.c_str(), LONG_TYPED, 401, 401, 401, LONG_OLD, LONG_OLD},
};

static XmtCallData MakeChange(const ChangeCase &one, Boolean *doit) {
    XmtCallData data = {};
    data.reason = XmtCR_CHANGED;
    data.text = one.typed.empty() ? nullptr : one.typed.c_str();
    data.length = static_cast<intptr_t>(one.typed.size());
    data.start = one.start;
    data.end = one.end;
    data.newInsert = one.insert;
    data.doit = doit;
    return data;
}

// Every candidate begins with a character that is refused, and the message shows it whole.
static void CheckPlainField(const ChangeCase &one) {
    XmtObjectData object = {};
    object.format = SaveStr_("A0,0");
    Boolean doit = 1;
    XmtCallData data = MakeChange(one, &doit);
    data.value = reinterpret_cast<intptr_t>(one.old);
    EXPECT_EQ(MessageOf([&] { XmtProcessTextFormat(&object, &data); }),
              CHARACTER + "at \"" + one.field + "\"")
        << one.name;
    EXPECT_FALSE(doit) << one.name;
    PutMem(object.format);
}

static std::string Heard;

static void CheckMaskedField(const ChangeCase &one) {
    XmtObjectData object = {};
    object.stored = reinterpret_cast<intptr_t>(one.old != nullptr ? SaveStr_(one.old) : nullptr);
    object.handler = [](XmtCallData *data) { Heard = data->text; };
    Boolean doit = 1;
    XmtCallData data = MakeChange(one, &doit);
    XmtProcessMaskedFormat(&object, &data);
    EXPECT_EQ(doit, one.name != std::string("too long")) << one.name;
    XmtCallData activation = {};
    activation.reason = XmtCR_DEFAULT;
    XmtProcessMaskedFormat(&object, &activation);
    EXPECT_EQ(Heard, one.masked) << one.name;
    PutMem(XmtTextOf(object.stored));
}

TEST(XmtValidateTest, TakesTheCandidateOfAChange) {
    OpenMenuTexts();
    for (const ChangeCase &one : ChangeCases) {
        CheckPlainField(one);
        CheckMaskedField(one);
    }
}

// ---- real keys

static const char Fields[] = "WF main { B b v { "
                             "t name .0 l(n) s(20,1) f(A0,14+-+_) <3 CB(c,a)>; "
                             "t number .0 l(n) s(20,1) f(d1,60) <3 CB(c,a)>; "
                             "t path .0 l(n) s(20,1) f(/A0,255+-+_+/+.) <3 CB(c,a)>; "
                             "t one .0 l(n) s(4,1) f(v.ttwo | d0,255) <3 CB(c,a)>; "
                             "t two .0 l(n) s(4,1) f(v.tthree | d0,255) <3 CB(c,a)>; "
                             "tp secret .0 l(n) s(20,1) f(A0,9) <3 CB(c,a)>; "
                             "tp shown .0 l(n) s(20,1) f(SA0,9) <3 CB(c,a)>; "
                             "tp bare s(20,1); tp formed s(20,1) f(A0,9); "
                             "} } ";

struct KeyCase {
    const char *field; // that gets the focus; null: it stays
    const char *keys;  // arguments of xdotool
    const char *looked;
    const char *text; // of the looked at field
    int messages;
    const char *message; // the last one's beginning
};
static const KeyCase KeyCases[] = {
    {"name", "type abcdefghijklmn", "name", "abcdefghijklmn", 0, ""},
    {nullptr, "type op", "name", "abcdefghijklmn", 2, "This entry is not valid."},
    {nullptr, "key BackSpace Home percent y", "name", "yabcdefghijklm", 1, "Invalid character at \"%\""},
    {"number", "type 61", "number", "6", 1, "This number must be between 1 to 60."},
    {nullptr, "key BackSpace 0 5", "number", "5", 1, "This number must be"},
    {"path", "type x", "path", "", 1, "Invalid character x\nThis entry is must begin with /"},
    {nullptr, "type /tmp/a.b", "path", "/tmp/a.b", 0, ""},
    {"one", "type 10.25", "one", "10", 0, ""},
    {nullptr, "key 5 7", "two", "255", 1, "This number must be between 0 to 255."},
    {"secret", "type aab", "secret", "***", 0, ""},
    {nullptr, "key Left BackSpace period c", "secret", "***", 1, "Invalid character at"},
    {"shown", "type abc", "shown", "abc", 0, ""},
    {"bare", "type ab,c", "bare", "****", 0, ""},
    {"formed", "type abc", "formed", "***", 0, ""},
};

static int CountMessages() {
    return pXmtMsgList != nullptr ? pXmtMsgList->count : 0;
}

static void PressKeys(const KeyCase &one) {
    if (one.field != nullptr) XmtSetTextFocus(one.field);
    DispatchWaiting();
    ASSERT_EQ(system((std::string("xdotool ") + one.keys).c_str()), 0);
    // The keys are on their way; what they lead to is waited for, and nothing more may come.
    for (int i = 0; i < 300 && (TextOf(one.looked) != one.text || CountMessages() < one.messages); i++) {
        DispatchWaiting();
        usleep(10000);
    }
    DispatchWaiting();
}

static void CheckKeys() {
    OpenMenuTexts();
    XmtNewObject(
        nullptr, [](XmtCallData *data) { Heard = data->text != nullptr ? data->text : ""; }, 1, Fields);
    RealizeWindows();
    XSetInputFocus(AppDisplay, XtWindow(XtParent(XmtGetWidget("main"))), RevertToParent, CurrentTime);
    DispatchWaiting();
    for (const KeyCase &one : KeyCases) {
        PressKeys(one);
        EXPECT_EQ(TextOf(one.looked), one.text) << one.looked << " " << one.keys;
        EXPECT_EQ(CountMessages(), one.messages) << one.looked << " " << one.keys;
        auto *last = static_cast<XmtMsgEntry *>(ListFindItemN(pXmtMsgList, CountMessages()));
        EXPECT_EQ(std::string(last != nullptr ? last->text : "").find(one.message), 0U)
            << one.looked << " " << one.keys;
        ListDelAllItems(pXmtMsgList);
    }
    EXPECT_STREQ(XmtTextOf(XmtFindObject("secret")->stored), "acb");
    EXPECT_STREQ(XmtTextOf(XmtFindObject("shown")->stored), "abc");
    EXPECT_STREQ(XmtTextOf(XmtGetValue("bare")), "ab,c");
    EXPECT_STREQ(XmtTextOf(XmtGetValue("formed")), "abc");
    XmtSetValuePF("secret", "wxyz", 1);
    XmtResetToStoredValue("secret");
    EXPECT_STREQ(XmtTextOf(XmtGetValue("secret")), "wxyz");
    EXPECT_EQ(TextOf("secret"), "****");
    XmtSetText("number", "99"); // the program's own settings are checked like everybody's
    EXPECT_EQ(TextOf("number"), "5");
    EXPECT_EQ(CountMessages(), 1);
}

TEST(XmtValidateTest, TypedWithRealKeys) {
    if (system("command -v xdotool >/dev/null") != 0) GTEST_SKIP() << "there is no xdotool";
    bool flSkipped = false;
    EXPECT_TRUE(RunOnScreen("640x480x24", CheckKeys, &flSkipped));
    if (flSkipped) GTEST_SKIP() << "there is no Xvfb that starts here";
}

// What of the arguments needs widgets: neighbours, callbacks, changes, fonts, pictures, reading back.
#include "xmt/XmtNewArgs.h"

#include <cstdlib>
#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/lib/DescDump.h"
#include "tests/lib/WindowRig.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtUtils.h"

static std::string Why;

static void Handler(XmtCallData *) {}

class OnDisplay : public testing::Test {
protected:
    static void SetUpTestSuite() {
        if (!StartWindowRig("800x600x24", &Why)) return;
        XmtNewObject(
            nullptr, Handler, 1,
            "WF w { F f s(300,200) { l a l(A); t field s(12,1) A(tw a 4); bp b l(B) A(tf,lw a 7); } }");
    }
    void SetUp() override {
        if (!Why.empty()) GTEST_SKIP() << Why;
    }
};

TEST_F(OnDisplay, FillsInWhatIsThere) {
    static const struct {
        const char *name, *text, *dump;
    } cases[] = {
        {"neighbours", "x A(lw a 7, two b,rwnosuch 3);",
         "x leftAttachment=3 leftWidget=set leftOffset=7 topAttachment=4 topWidget=set rightAttachment=3"},
        {"fonts, and fixed for a missing one", "x F_(7x13) Fd(no-such-font);",
         "x fontList=set defaultFontList=set"},
        {"a parent", "x P(f);", "x parent"},
        {"no parent", "x P(f) P();", "x"},
        {"a text's source", "x ts(a) ts(nosuch);", "x"},
    };
    for (const auto &c : cases) {
        std::string dump = DumpFillInfo(c.text, XmtForm, 0);
        if (size_t font = dump.find("defaultFontList="); font != dump.npos)
            dump.resize(dump.find('=', font)), dump += "=set";
        EXPECT_EQ(dump, c.dump) << c.name;
    }
}

TEST_F(OnDisplay, PutsPixelsIntoTheRecord) {
    XmtInfo info;
    XmtCursor cursor("x c(bg #102030,fg white,sa #0000FF);");
    XmtFillInfo(&info, 0);
    EXPECT_EQ(info.colours[XMT_BG], 0x102030u);
    EXPECT_EQ(NewObjectColor[XMT_BOTTOM], 0xFFu);
    EXPECT_EQ(XmtPixBg, 0x102030);
    XmtClearInfo(&info);
}

TEST_F(OnDisplay, ChangesAnObject) {
    XmtNewObject(nullptr, Handler, 0, "OS a .99 l(C) bo(3); OS field s(20,1); ");
    char *label = XmtGetLabel("a");
    EXPECT_STREQ(label, "C");
    XmtFreeStr(label);
    EXPECT_EQ(XmtGetXmValue("a", "borderWidth"), 3u);
    EXPECT_EQ(XmtGetXmValue("field", "columns"), 20u);
}

TEST_F(OnDisplay, ReadsResourcesBack) {
    XtArgVal values[8] = {};
    EXPECT_EQ(XmtGetArgs("field s t A(t,l)", values), 20u);
    auto text = reinterpret_cast<char *>(values[2]);
    EXPECT_STREQ(text, "");
    XtFree(text);
    EXPECT_EQ(values[3], XtArgVal{XmATTACH_WIDGET});
    EXPECT_EQ(values[4], XtArgVal{XmATTACH_NONE});
    EXPECT_EQ(XmtGetArgs("nosuch s", values), 0u);
}

TEST_F(OnDisplay, ConnectsCallbacksThatAWidgetHas) {
    XmtObjectData *button = XmtFindObject("b"), *field = XmtFindObject("field");
    SetCallBack(button, "A,c,zz,tab,me)");
    SetCallBack(field, "c,fg");
    EXPECT_EQ(XtHasCallbacks(button->widget, "armCallback"), XtCallbackHasSome);
    EXPECT_EQ(XtHasCallbacks(button->widget, "disarmCallback"), XtCallbackHasNone);
    EXPECT_EQ(XtHasCallbacks(field->widget, "focusCallback"), XtCallbackHasSome);
    EXPECT_EQ(XtHasCallbacks(field->widget, "modifyVerifyCallback"), XtCallbackHasSome);
}

TEST_F(OnDisplay, MakesTheTranslationsOfMenusOnce) {
    XmtInfo info;
    XmtCursor cursor("x;");
    flNoTraversal = 1;
    XmtFillInfo(&info, 0);
    XtTranslations first = XmtDummyKeyXlations;
    XmtFillInfo(&info, XMT_FILL_KEEP);
    flNoTraversal = 0;
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(XmtDummyKeyXlations, first);
    XmtClearInfo(&info);
}

TEST_F(OnDisplay, ShowsBitmapFilesInLabels) {
    char path[] = "/tmp/xmtargs-XXXXXX";
    int fd = mkstemp(path);
    const char bits[] = "#define x_width 8\n#define x_height 2\nstatic char x_bits[] = {\n 0x01, 0x80};\n";
    ASSERT_EQ(write(fd, bits, sizeof bits - 1), static_cast<ssize_t>(sizeof bits - 1));
    close(fd);
    std::string text = std::string("x l(@") + path + ",fg red) h;";
    for (int i = 0; i < 2; i++) {
        std::string dump = DumpFillInfo(text.c_str(), XmtLabel, 0);
        EXPECT_EQ(dump.find("x foreground=16711680 labelType=1 labelPixmap="), 0u) << dump;
        EXPECT_NE(dump.find(" orientation=2 "), std::string::npos) << dump;
    }
    unlink(path);
}

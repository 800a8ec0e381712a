// The window of the manual: what it is made of, what its numbers do to page, history and place.
#include "xmt/XmtHelp.h"

#include "help/html.h"
#include "tests/lib/Capture.h"
#include "tests/lib/ObjectDump.h"
#include "tests/lib/WindowRig.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtUtils.h"

#include <cstring>
#include <gtest/gtest.h>

enum { CLOSE = 10000, CONTENTS, BACK, TEXT };

static const std::string Lines = [] {
    std::string lines;
    for (int i = 0; i < 99; i++) lines += "line<br>";
    return lines;
}();
static const std::string Pages =
    "<html page=\"one\"><body><a href=\"#two\">Two</a><br><a href=\"#far\">Far</a><br><a "
    "href=\"gone\">Gone</a></body></html>"
    "<html page=\"two\"><body>first<br>" +
    Lines + "<a name=\"far\">far</a><br>" + Lines + "</body></html>";

class Help : public WindowTest {
protected:
    static void SetUpTestSuite() { SetUpWindow(RecordEvent, 5, "WF main s(300,200) { l inside l(in); } "); }
    void SetUp() override {
        WindowTest::SetUp();
        if (IsSkipped()) return;
        EventLoopCBF = nullptr;
        ASSERT_EQ(XmtHtmlHelp("pages.html", Pages.c_str(), "Title"), 1);
    }
    static void Event(int id, intptr_t position = 0, int reason = XmtCR_DEFAULT) {
        XmtCallData data = {};
        data.id = id;
        data.reason = reason;
        data.newInsert = position;
        XmtHtmlEventHandler(&data);
    }
    static void RunHook() {
        ASSERT_EQ(EventLoopCBF, SetGuiPos);
        EventLoopCBF = nullptr;
        SetGuiPos();
    }
    static std::string FirstLine() {
        std::string text = TextOf("xmtbt");
        return text.substr(0, text.find('\n'));
    }
    static int TopLine() { return static_cast<int>(XmTextGetTopCharacter(XmtGetWidget("xmtbt"))); }
};

TEST_F(Help, IsADialogOfTheMainWindow) {
    EXPECT_EQ(DumpObjects("xmtbw"), "xmtbmenu 10001 MenuBar{xmtbmenu_1 10000 CascadeBut, xmtbmenu_2 10001 "
                                    "CascadeBut, xmtbmenu_3 10002 CascadeBut}, xmtbt 10003 Text");
    EXPECT_EQ(XmtFindObject("xmtbw")->id, 10000);
    EXPECT_EQ(StringOf("xmtbw", XmNdialogTitle), "Title");
    EXPECT_EQ(ResourcesOf("xmtbt.columns xmtbt.rows xmtbt.editable xmtbt.wordWrap"), "80 30 0 1");
    EXPECT_TRUE(XtIsManaged(XmtGetWidget("xmtbw")));
}

TEST_F(Help, LinksPlacesAndHistory) {
    EXPECT_EQ(TextOf("xmtbt"), pCurrentPage->TextImage);
    Event(TEXT, 2, XmtCR_CREATE);
    EXPECT_EQ(FirstLine(), "<Two>") << "no event of the user's";
    Event(TEXT, 8);
    EXPECT_EQ(FirstLine(), "first");
    RunHook();
    int far = static_cast<int>(strstr(pCurrentPage->TextImage, "far") - pCurrentPage->TextImage);
    EXPECT_EQ(TopLine(), far);
    Event(BACK);
    EXPECT_EQ(FirstLine(), "<Two>");
    EXPECT_EQ(XmtGetTextPos("xmtbt"), 8) << "back on the link";
    Event(TEXT, 2);
    EXPECT_EQ(XmtHtmlHelp("pages.html", nullptr, "Other title"), 1) << "a loaded file begins anew";
    EXPECT_EQ(FirstLine() + std::to_string(HistoryI), "<Two>0");
    Event(TEXT, 2);
    Event(CONTENTS);
    EXPECT_EQ(FirstLine() + std::to_string(HistoryI), "<Two>0");
    Event(BACK);
    EXPECT_EQ(FirstLine(), "<Two>") << "without a history";

    EventLoopCBF = nullptr;
    XmtSetTextPos("xmtbt", 3);
    for (int nowhere : {5, 14, 5000, -1}) Event(TEXT, nowhere);
    EXPECT_TRUE(EventLoopCBF == nullptr && XmtGetTextPos("xmtbt") == 3) << "the reader's place stays";
    Event(CLOSE);
    EXPECT_FALSE(XtIsManaged(XmtGetWidget("xmtbw")));
}

TEST_F(Help, WhatCannotBeShown) {
    Event(CLOSE);
    Capture output;
    EXPECT_EQ(XmtHtmlHelp(nullptr, "", "Title") + XmtHtmlHelp("x", "", nullptr), 0);
    EXPECT_EQ(XmtHtmlHelp("/gone.html", nullptr, "Title"), 0);
    EXPECT_EQ(XmtHtmlHelp("buffer", "no page", "Title"), 0);
    EXPECT_EQ(output.Out(), "Error in reading HTML file /gone.html\nError reading HTML buffer\n");
    EXPECT_FALSE(XtIsManaged(XmtGetWidget("xmtbw")));
}

TEST_F(Help, LongLinesKeepTheirPlaces) {
    std::string page = "<html><body>" + std::string(20000, 'x') + "<br>" + [] {
        std::string words;
        for (int i = 0; i < 5000; i++) words += "word ";
        return words;
    }() + "<a href=\"#x\">end</a></body></html>";
    ASSERT_EQ(XmtHtmlHelp("long.html", page.c_str(), "Title"), 1);
    std::string text = TextOf("xmtbt"), image = pCurrentPage->TextImage;
    ASSERT_EQ(text.size(), image.size());
    EXPECT_EQ(text.find("<end>"), image.find("<end>"));
    size_t longest = 0;
    for (size_t at = 0, end; (end = text.find('\n', at)) != text.npos; at = end + 1)
        longest = std::max(longest, end - at);
    EXPECT_LE(longest, 8192u);
}

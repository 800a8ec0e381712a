// The manual's pages: tokens, tables, links and history, held against whole pages of expected text.
#include "help/html.h"

#include "common/MemMgr.h"
#include "tests/lib/Capture.h"

#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>

// Each buffer gets a file name of its own: a loaded name is not read again.
static HtmlFile *Load(const std::string &content, const char *target = "") {
    static int number = 0;
    return ParseHtmlFile(("page" + std::to_string(number++) + ".html" + target).c_str(), content.c_str());
}

static std::string Body(const std::string &body) {
    FileIndex = FileIndex > 90 ? 0 : FileIndex;
    HtmlFile *file = Load("<html><body>" + body + "</body></html>");
    return file ? file->Pages->TextImage : "(no page)";
}

static std::string Cell(const char *contents) {
    return std::string("<table border><tr><td>") + contents + "</td></tr></table>";
}

TEST(Html, TextAndTables) {
    const std::string long131(131, 'x'), long132(132, 'x'), long300(300, 'x');
    struct Case {
        std::string body, image;
    } cases[] = {
        {"<b>a  b\n\n c\t</b>", "a b\nc\t\n"}, // white space collapses to its first character
        {"<b>a</b> \n <b>b</b>", "ab\n"},
        {"<b>&#65;&quot;&QUOT;&#38;lt&nbsp;&yuml;</b>", "A\"\"&lt\xA0\xFF\n"},
        {"<b>&NBSP; &amp; a&b &#65</b>", "&NBSP; &amp; a&b &#65\n"},
        {"<b>&aaaaaaaaaaaaaaaa;</b>", "&aaaaaaaaaaaaaaaa;\n"},
        {"<h1>T</h1><p>a</p>b<br>c<br>", "\nT\n\n\n\na\nb\nc\n"},
        {"<ol><li>one</li><li>two</li></ol>e<br>", "\n   1. one\n   2. two\ne\n"},
        {"<b>" + long131 + "</b><br>e<br>", long131 + "\ne\n"},
        {"<b>" + long132 + "</b><br>e<br>", long132 + "\ne\n"},
        {"<b>" + long300 + "</b><i>e</i><br>f<br>", long300 + "e\nf\n"},
        {"<b>ab</b><b>" + long300 + "</b><b>e</b><br>", "ab" + long300 + "e\n"},
        {"<b>a</b></body></html>b", "a\n"},
        {"<br><br><br><br>e<br>", "\n\n\n\ne\n"},
        {"<table border><tr><td>abc</td><td>defgh</td></tr></table>",
         ",---+-----,\n|abc|defgh|\n'---+-----'\n"},
        {"<table><tr><td>abc</td><td>de</td></tr></table>e<br>", "        \n abc de \n        \ne\n"},
        {"<table border "
         "cellpadding=7><tr><td>a<br>bb</td><td>c</td></tr><tr><td>d</td><td>e</td></tr></table>",
         ",----+---,\n| a  | c |\n| bb |   |\n|----+---|\n| d  | e |\n'----+---'\n"},
        {"<table border><tr><td>a</td><td>" + Cell("in") + "</td></tr></table>",
         ",-+----,\n|a|,--,|\n| ||in||\n| |'--'|\n'-+----'\n"},
        {Cell("<p>a</p>"), ",-,\n|a|\n'-'\n"},
        {"<ol>" + Cell("a") + "</ol>", "\n,-,\n|a|\n'-'\n"},
        {"<fitab border>a</fitab><br>", "a\n"},
        {"<td>a</td></tr><tr>b</table>c<br>", "abc\n"},
    };
    for (const Case &c : cases) EXPECT_EQ(Body(c.body), c.image) << c.body;
}

TEST(Html, WidthsAreSharesOfTheTable) {
    // (300 - 1 * 3) / 7 = 42 columns in all; the first cell 42 * 50 / 100 - 1 = 20.
    const std::string cells = "><tr><td width=\"50%\">a</td><td>b</td></tr></table>";
    std::string image = Body("<table border width=300" + cells);
    EXPECT_EQ(image.substr(0, image.find('\n')),
              "," + std::string(20, '-') + "+" + std::string(19, '-') + ",");
    // In a table of 40 columns with padding 1, 50% is 40 * 50 / 100 - 2 - 1 = 17.
    image = Body("<table border width=\"700\"><tr><td width=280><table border cellpadding=7 width=\"100%\"" +
                 cells + "</td></tr></table>");
    EXPECT_EQ(image.substr(image.find('\n') + 1).find("|," + std::string(19, '-') + "+"), 0u);
}

TEST(Html, Pages) {
    FileIndex = 0;
    HtmlFile *file = Load("<html page=\"one\"><head><title>T</title></head><body>a<br></body></html>"
                          "<html page=\"skip\" SkipPage><body>b</body></HTML >"
                          "<html><body>more<br></body></html>"
                          "<HTML Page=\"two\"><body>c<br></body></html>");
    ASSERT_NE(file, nullptr);
    EXPECT_STREQ(file->Pages->Name, "one");
    EXPECT_EQ(file->Pages->TextImage, std::string(39, ' ') + "T\n\na\nmore\n");
    ASSERT_NE(file->Pages->next, nullptr);
    EXPECT_STREQ(file->Pages->next->Name, "two");
    EXPECT_EQ(file->Pages->next->next, nullptr);
    EXPECT_EQ(Load("<html SkipPage><body>b"), nullptr) << "an end that never comes";
    EXPECT_EQ(Load("no page at all"), nullptr);
    EXPECT_EQ(ParseHtmlFile("HTTP://host/x.html", nullptr), nullptr);
    EXPECT_EQ(ParseHtmlFile("/nonexistent.html", nullptr), nullptr);
}

TEST(Html, ALongPageIsLaidOutInParts) {
    FileIndex = 0;
    std::string body;
    for (int i = 0; i < 900; i++)
        body += "<h2>H</h2><ol><li>x<li><a name=s>y</a></ol><a href=#s>one<br>two</a><p><table border>"
                "<tr><td>a</td><td><table><tr><td><a href=#x>z</a></table></tr></table>";
    // Without a head the page is read as a whole, for its title may still come.
    const HtmlPage *whole = Load("<html><body>" + body + "</body></html>")->Pages;
    const HtmlPage *parts = Load("<html><head><meta></head><body>" + body + "</body></html>")->Pages;
    EXPECT_STREQ(whole->TextImage, parts->TextImage);
    ASSERT_EQ(whole->AnchorCount, 2700);
    ASSERT_EQ(parts->AnchorCount, 2700);
    for (int i = 0; i < 2700; i++) EXPECT_EQ(whole->Anchors[i]->End, parts->Anchors[i]->End) << i;
}

TEST(Html, LinksLieBetweenTheirMarks) {
    FileIndex = 0;
    std::string longText(200, 'y');
    HtmlFile *file =
        Load("<html><body>ab<a href=\"#x\">one</a><br>" + longText +
             "<a href=#y class=z>two</a><br><a name=\"x\">here</a><br><a href = \"#x\">none</a><br><a "
             "href=\"#y\">long<br>two</a> and more<br></body></html>");
    HtmlPage *page = file->Pages;
    const char *const texts[] = {"<one>", "<two>", "here", "none", "<lon"};
    ASSERT_EQ(page->AnchorCount, 5);
    for (int i = 0; i < 5; i++) {
        const HtmlLink *link = page->Anchors[i];
        EXPECT_EQ(std::string(page->TextImage + link->Start, page->TextImage + link->End), texts[i]);
    }
    EXPECT_STREQ(page->Anchors[1]->Target, "#y");
    EXPECT_EQ(page->Anchors[3]->Target, nullptr) << "a blank in front of the sign";
}

TEST(Html, LinksAndHistory) {
    FileIndex = 0;
    const std::string content =
        "<html page=\"one\"><body>1<a href=\"#far\">far</a><br>2<a href=\"#two\">two</a>"
        "<a href=\"#nowhere\">x</a></body></html>"
        "<html page=\"two\"><body>text<br><a name=\"far\">anchor</a><br></body></html>";
    ASSERT_EQ(HtmlHelp("first.html", content.c_str()), 1);
    HtmlPage *one = pCurrentPage, *two = one->next;
    EXPECT_EQ(HtmlSetHistory(-1), 0) << "no history yet";

    HtmlProcessLink(one->Anchors[0]->Start + 1);
    EXPECT_EQ(pCurrentPage, two);
    EXPECT_EQ(TargetPos, 5) << "the anchor's line";
    EXPECT_EQ(HtmlSetHistory(-1), 1);
    EXPECT_EQ(pCurrentPage, one);
    EXPECT_EQ(TargetPos, one->Anchors[0]->Start + 1) << "back on the line of the link";

    for (int nothing : {one->Anchors[2]->Start, one->Anchors[0]->End}) HtmlProcessLink(nothing);
    EXPECT_EQ(pCurrentPage, one) << "an unknown name, and a place behind the link";

    for (int i = 0; i < 150; i++) GoToTarget(i % 2 ? "one" : "#two");
    EXPECT_EQ(HistoryI, HTML_HISTORY);
    EXPECT_EQ(HtmlSetHistory(0), 1);
    EXPECT_EQ(HistoryI, 0);
    EXPECT_EQ(pCurrentPage, one);

    ASSERT_NE(Load("<html page=\"a\"><body>a</body></html><html page=\"b\"><body>b</body></html>", "#b"),
              nullptr);
    EXPECT_STREQ(pCurrentPage->Name, "b");
    EXPECT_EQ(HtmlHelp("first.html", nullptr), 1) << "a loaded file is not read again";
    EXPECT_EQ(pCurrentPage, one);
}

TEST(Html, Files) {
    FileIndex = 0;
    Scratch tool;
    const std::string page = tool.Write(
        "a#1/b#2/x.html", "<html page=one><body>1</body></html><html page=\"two\"><body>2</body></html>");
    ASSERT_EQ(HtmlHelp(page.c_str(), nullptr), 1) << "a '#' in a directory's name";
    EXPECT_STREQ(pCurrentPage->TextImage, "1\n");
    FileIndex = 0;
    ASSERT_NE(ParseHtmlFile(("file://" + page + "#two").c_str(), nullptr), nullptr);
    EXPECT_STREQ(pCurrentPage->TextImage, "2\n");
    ASSERT_EQ(mkfifo(tool.Path("pipe").c_str(), 0644), 0);
    for (const char *name : {"pipe", "a#1", "a#1/gone.html"})
        EXPECT_EQ(ParseHtmlFile(tool.Path(name).c_str(), nullptr), nullptr) << name;
    EXPECT_EQ(ParseHtmlFile("/dev/zero", nullptr), nullptr);

    HtmlPage *two = pCurrentPage;
    HtmlLink link = {};
    std::string target = tool.Path("pipe");
    TargetPos = 7;
    link.Target = target.data();
    ProcessLink(&link);
    EXPECT_TRUE(pCurrentPage == two && TargetPos == 7) << "a link to nothing";
    target = tool.Write("other.html", "<html><body>3</body></html>");
    link.Target = target.data();
    ProcessLink(&link);
    EXPECT_STREQ(pCurrentPage->TextImage, "3\n");
    EXPECT_EQ(TargetPos, 0) << "another file is shown from its top";
}

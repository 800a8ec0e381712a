// What follows the size of a window: its picture, and the title of a list that is wider than the window.
#include "xmt/XmtGrow.h"

#include "tests/lib/ObjectDump.h"
#include "tests/lib/WindowRig.h"
#include "tests/lib/WindowUser.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtPixmap.h"
#include "xmt/XmtUtils.h"

#include <fstream>
#include <gtest/gtest.h>

// Three columns: red, green, blue.
static const char Flag[] =
    "/* XPM */\nstatic char *flag[] = {\n\"3 2 3 1\",\n\"r c #ff0000\",\n\"g c #00ff00\",\n"
    "\"b c #0000ff\",\n\"rgb\",\n\"rgb\"\n};\n";

class Growing : public WindowTest {
protected:
    static void SetUpTestSuite() {
        std::string file = testing::TempDir() + "flag.xpm";
        std::ofstream(file) << Flag;
        if (!SetUpWindow(RecordEvent, 5,
                         ("WF main t(Any) { l flag l(@" + file +
                          ") m(0,0) A(tf,lf);"
                          " F row s(200,100) A(tw flag,lf,rf) { Bl list l(Title) L(one,two) A(tf,lf,bf,rf)"
                          " <1 m(0,30)> <3 A(rf)> V(4); } }")
                             .c_str()))
            return;
        RealizeWindows();
    }
};

static std::string ColumnsOf(Widget label) {
    Pixmap pixmap = 0;
    XtVaGetValues(label, XmNlabelPixmap, &pixmap, nullptr);
    Window root;
    int x, y;
    unsigned width, height, border, depth;
    XGetGeometry(AppDisplay, pixmap, &root, &x, &y, &width, &height, &border, &depth);
    XImage *image = XGetImage(AppDisplay, pixmap, 0, 0, width, height, AllPlanes, ZPixmap);
    std::string columns;
    for (int i = 0; i < image->width; i++) {
        unsigned long pixel = XGetPixel(image, i, image->height - 1);
        columns += pixel == 0xff0000 ? 'r' : pixel == 0xff00 ? 'g' : pixel == 0xff ? 'b' : '?';
    }
    XDestroyImage(image);
    return columns;
}

TEST_F(Growing, PictureRepeatsItsColumn) {
    Widget label = XmtGetWidget("flag");
    ASSERT_EQ(ColumnsOf(label), "rgb");
    XmtStretchPicture("flag", 1);
    XmtStretchPicture("row", 1);
    XmtStretchPicture("nothing", 1);
    for (int width : {220, 300, 210}) {
        XtVaSetValues(AppShell, XmNwidth, width, nullptr);
        DispatchWaiting();
        std::string columns = ColumnsOf(label);
        EXPECT_GT(static_cast<int>(columns.size()), width - 20);
        EXPECT_LE(static_cast<int>(columns.size()), width);
        EXPECT_EQ(columns, "r" + std::string(columns.size() - 2, 'g') + "b");
    }
}

TEST_F(Growing, TitleMovesWithItsColumns) {
    Widget title = XmtGetWidget("list_L"), list = XmtGetWidget("list");
    ASSERT_TRUE(title && list);
    long before = ResourceOf("list_L", XmNx), width = ResourceOf("main", XmNwidth);
    XmtScrollTitle("list", "list_L");
    XmtReplaceAllListItems("list", (std::string(300, 'x') + ",short").c_str());
    DispatchWaiting();
    EXPECT_EQ(ResourceOf("main", XmNwidth), width) << "the window follows its rows";
    Widget bar = nullptr;
    XtVaGetValues(XtParent(list), XmNhorizontalScrollBar, &bar, nullptr);
    ASSERT_TRUE(bar && XtIsManaged(bar));
    XmScrollBarSetValues(bar, 150, 0, 0, 0, 1);
    DispatchWaiting();
    EXPECT_EQ(static_cast<Position>(ResourceOf("list_L", XmNx)), before - 150);
    XmtSetLabelRaw("list_L", "Another title");
    DispatchWaiting();
    EXPECT_EQ(static_cast<Position>(ResourceOf("list_L", XmNx)), before - 150);
    XmtReplaceAllListItems("list", "short");
    DispatchWaiting();
    EXPECT_EQ(static_cast<Position>(ResourceOf("list_L", XmNx)), before);
}

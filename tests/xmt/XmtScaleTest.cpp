// The factor of dense screens and the colours of high contrast, as the screen and the resources have them.
#include "xmt/XmtScale.h"

#include "tests/lib/ObjectDump.h"
#include "tests/lib/WindowRig.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtPixmap.h"
#include "xmt/XmtUtils.h"

#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

static const char Description[] = R"(WF main t(Any) {
 bp one s(100,30) l(One) m(4,3) bo(1) A(tf 5,lf 7) c(bg blue,fg red);
 l two l(two) A(tw one 10,lf,rf) ;
 })";

struct Look {
    const char *screen, *resources;
    int scale;
    bool flContrast;
};

static const Look *Wanted;

static int Get(const char *object, const char *resource) {
    return static_cast<int>(ResourceOf(object, resource));
}

static void CheckLook() {
    int scale = Wanted->scale;
    ASSERT_EQ(XmtScale, scale) << Wanted->screen << Wanted->resources;
    EXPECT_EQ(flXmtHighContrast, Wanted->flContrast) << Wanted->resources;
    XmtNewObject(nullptr, nullptr, 1, Description);
    EXPECT_EQ(Get("one", XmNwidth), 100 * scale);
    EXPECT_EQ(Get("one", XmNheight), 30 * scale);
    EXPECT_EQ(Get("one", XmNmarginHeight), 3 * scale);
    EXPECT_EQ(Get("one", XmNborderWidth), scale);
    EXPECT_EQ(Get("one", XmNleftOffset), 7 * scale);
    EXPECT_EQ(Get("two", XmNtopOffset), 10 * scale);
    Pixel white = WhitePixelOfScreen(AppScreen), black = BlackPixelOfScreen(AppScreen);
    EXPECT_EQ(static_cast<Pixel>(XmtGetXmValue("one", XmNbackground)) == white, Wanted->flContrast);
    EXPECT_EQ(static_cast<Pixel>(XmtGetXmValue("one", XmNforeground)) == black, Wanted->flContrast);
    EXPECT_STREQ(XmtScaleFont("7x13"), scale == 1 ? "7x13" : "12x24");
    EXPECT_STREQ(XmtScaleFont("no-such-font"), "no-such-font");

    XImage *image = XmtMakeImage(2, 1);
    XPutPixel(image, 1, 0, 5);
    image = XmtScaleImage(image);
    EXPECT_EQ(image->width * 10 + image->height, scale * 21);
    EXPECT_EQ(XGetPixel(image, 2 * scale - 1, scale - 1), 5u);
    EXPECT_EQ(XGetPixel(image, scale - 1, scale - 1), 0u);
    XDestroyImage(image);
}

TEST(Scale, FollowsScreenAndResources) {
    const Look looks[] = {
        {"2600x1800x24", "Xft.dpi: 192\n", 2, false},
        {"2600x1800x24", "Xft.dpi: 159\n", 1, false},
        {"1280x1024x24", "Xft.dpi: 192\n", 1, false}, // windows would not fit
        {"1280x1024x24", "prndeck.scale: 2\nprndeck.highContrast: True\n", 2, true},
        {"2600x1800x24", "Xft.dpi: 192\nprndeck.scale: 1\nprndeck.highContrast: no\n", 1, false},
        {"1280x1024x24", "prndeck.scale: large\n*highContrast: true\n", 1, true},
    };
    std::string file = testing::TempDir() + "scale.resources";
    setenv("XENVIRONMENT", file.c_str(), 1);
    for (const Look &look : looks) {
        std::ofstream(file) << look.resources;
        bool flSkipped = false;
        Wanted = &look;
        EXPECT_TRUE(RunOnScreen(look.screen, CheckLook, &flSkipped)) << look.screen << " " << look.resources;
        if (flSkipped) GTEST_SKIP() << "there is no Xvfb here";
    }
    unlink(file.c_str());
}

// Colours: the table against the server's own names, texts to pixels while the colormap has room, when it is
// full, and where it can't run out; fonts.
#include "xmt/XmtColor.h"

#include "tests/lib/WindowRig.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNewArgs.h"
#include "xmt/XmtUtils.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

static std::string ToText(const XColor &colour) {
    char text[16];
    snprintf(text, sizeof text, "#%02X%02X%02X", colour.red >> 8, colour.green >> 8, colour.blue >> 8);
    return text;
}

static std::string GetPixelText(Pixel pixel) {
    XColor colour = {};
    colour.pixel = pixel;
    XQueryColor(AppDisplay, AppColormap, &colour);
    return ToText(colour);
}

static void CheckTable() {
    int rows = 0;
    std::string own; // rows that no server knows, or knows otherwise
    for (const XmtColorRow *row = pColor; *row->name != '\0'; row++, rows++) {
        XColor exact, screen;
        bool flKnown = XLookupColor(AppDisplay, AppColormap, row->name, &exact, &screen);
        if (!flKnown || ToText(exact) != row->value) own += std::string(row->name) + row->value + " ";
    }
    EXPECT_EQ(rows, 744);
    EXPECT_EQ(own, "gray#C0C0C0 grey#C0C0C0 darkyellow#8B8B00 light  goldenrod#EEDD82 "
                   "indian  red#CD5C5C orange,red#FF4500 grey#E3E3E3 ");
}

struct ColourCase {
    const char *name;
    const char *text;
    int flBackground;
    const char *wanted;
    int flSuccess;
};
static const ColourCase ColourCases[] = {
    {"name with a blank", "light gray", 0, "#D3D3D3", 1},
    {"value", "#D3D3D3", 0, "#D3D3D3", 1},
    {"blanks before it", " \t\nLightGray", 0, "#D3D3D3", 1},
    {"first of two rows", "grey", 0, "#C0C0C0", 1},
    {"name that only the server has", "navyblue", 0, "#000080", 1},
    {"no colour", "no such colour", 0, "#000000", 0},
    {"no colour, background", "no such colour", 1, "#FFFFFF", 0},
    {"odd digits", "#1234567", 1, "#FFFFFF", 0},
    {"empty", "", 0, "#000000", 0},
    {"only #", "#", 0, "#000000", 0},
    {"null", nullptr, 1, "#FFFFFF", 0},
    {"directives", "%s%n", 0, "#000000", 0},
};

static void CheckColours() {
    for (const ColourCase &one : ColourCases) {
        char flSuccess = 2;
        std::string got = GetPixelText(GenColor(one.text, one.flBackground, &flSuccess));
        EXPECT_EQ(got, one.wanted) << one.name;
        EXPECT_EQ(flSuccess, one.flSuccess) << one.name;
    }
    std::string longName(100000, 'x');
    EXPECT_EQ(GetPixelText(GenColor(longName.c_str(), 0, nullptr)), "#000000");
    flUseDefaultColor = 0;
    EXPECT_EQ(GenColor("no such colour", 1, nullptr), 0U);
    flUseDefaultColor = 1;
}

static Colormap MakeColormap(int allocate) {
    return XCreateColormap(AppDisplay, RootWindow(AppDisplay, AppScreenNum),
                           DefaultVisual(AppDisplay, AppScreenNum), allocate);
}

// A colormap with black and white, all other cells taken: the first two become greys, the others blues.
// Next to red is grey: the distance weighs the hue with 256 times the channels' scale.
static std::vector<Pixel> FillColormap() {
    AppColormap = MakeColormap(AllocNone);
    GenColor("black", 0, nullptr);
    GenColor("white", 0, nullptr);
    std::vector<Pixel> cells;
    for (unsigned long pixel; XAllocColorCells(AppDisplay, AppColormap, 0, nullptr, 0, &pixel, 1);) {
        XColor colour = {};
        colour.pixel = pixel;
        colour.flags = DoRed | DoGreen | DoBlue;
        if (cells.size() < 2)
            colour.red = colour.green = colour.blue = cells.empty() ? 0x5500 : 0x6000;
        else
            colour.blue = static_cast<unsigned short>(cells.size() << 4);
        XStoreColor(AppDisplay, AppColormap, &colour);
        cells.push_back(pixel);
    }
    return cells;
}

static void CheckFullColormap() {
    std::vector<Pixel> cells = FillColormap();
    ASSERT_EQ(cells.size(), 254U);
    const char *texts[] = {"red", "#FF0000", "#FFFF00000000"}; // one colour, three ways
    for (const char *text : texts) {
        char flSuccess = 0;
        flNewColorSet = 1;
        EXPECT_EQ(GenColor(text, 0, &flSuccess), cells[0]) << text;
        EXPECT_EQ(GenColor(text, 0, nullptr), cells[1]) << text << " again in its group";
        EXPECT_TRUE(flSuccess);
    }
    EXPECT_EQ(GetPixelText(GenColor("rgb:ff/80/00", 0, nullptr)), "#000000") << "numeric, but not by digits";
    EXPECT_EQ(GetClosestColor("#F00"), nullptr);
    EXPECT_EQ(GetClosestColor("#GG0000"), nullptr);
    EXPECT_EQ(GetClosestColor(""), nullptr);
    for (size_t i = 0; i < cells.size() + 20; i++) EXPECT_NE(GetClosestColor("#0000FF"), nullptr);
    flNewColorSet = 1;
    XColor *first = GetClosestColor("#FF0000");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->pixel, cells[0]) << "all entries were in use before";
}

static void CheckFonts() {
    XmtInitStore();
    XmFontList fixed = XmtGetFontList("fixed");
    EXPECT_NE(fixed, nullptr);
    EXPECT_EQ(XmtGetFontList("fixed"), fixed);
    for (const char *name : {"no such font", "no such font", static_cast<const char *>(nullptr)})
        EXPECT_EQ(XmtGetFontList(name), nullptr);
    EXPECT_EQ(XmtGetFontList(std::string(100000, 'x').c_str()), nullptr);
}

static void CheckTrueColor() {
    CheckColours();
    CheckFonts();
    EXPECT_EQ(GetClosestColor("#FF0000"), nullptr);
}

// A colormap that has not even white. The last check: the server goes with the program that ends.
static void CheckNoDefault() {
    AppColormap = MakeColormap(AllocAll);
    EXPECT_EXIT(GenColor("no such colour", 1, nullptr), testing::ExitedWithCode(1),
                "^Can't allocate color \"#FFFFFF\"\n$");
}

static void CheckPseudoColor() {
    CheckTable();
    CheckColours();
    CheckFullColormap();
    CheckNoDefault();
}

TEST(XmtColorTest, OnEveryKindOfScreen) {
    struct {
        const char *screen;
        void (*checks)();
    } const screens[] = {
        {"640x480x8", CheckPseudoColor},
        {"640x480x24", CheckTrueColor},
    };
    for (const auto &one : screens) {
        bool flSkipped = false;
        EXPECT_TRUE(RunOnScreen(one.screen, one.checks, &flSkipped)) << one.screen;
        if (flSkipped) GTEST_SKIP() << "there is no Xvfb that starts here";
    }
}

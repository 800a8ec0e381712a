// Factors of dense screens, and high contrast.
#include "xmt/XmtScale.h"

#include "common/utils.h"
#include "xmt/XmtDisplay.h"

#include <cstdlib>
#include <cstring>
#include <string>
#include <strings.h>

enum {
    DENSE_DPI = 160,
    ROOM_WIDTH = 2048,
    ROOM_HEIGHT = 1536
}; // twice 1024 x 768, into which all windows fit

int XmtScale = 1;
bool flXmtHighContrast;

static std::string GetResource(const std::string &name, const std::string &resourceClass) {
    char *type = nullptr;
    XrmValue value = {};
    XrmDatabase all = XtScreenDatabase(AppScreen);
    if (!all || !XrmGetResource(all, name.c_str(), resourceClass.c_str(), &type, &value) || !value.addr)
        return "";
    return std::string(value.addr, strnlen(value.addr, value.size));
}

static int GetDotsPerInch() {
    static constexpr int TENTHS_OF_INCH = 254;
    int dots = ParseInt(GetResource("Xft.dpi", "Xft.Dpi").c_str());
    if (dots > 0) return dots;
    int height = HeightMMOfScreen(AppScreen);
    return height > 0 ? HeightOfScreen(AppScreen) * TENTHS_OF_INCH / (height * 10) : 0;
}

static int FindScale(const std::string &wanted) {
    int scale = ParseInt(wanted.c_str());
    if (scale >= 1 && scale <= XMT_SCALE_MAX) return scale;
    bool flRoom = WidthOfScreen(AppScreen) >= ROOM_WIDTH && HeightOfScreen(AppScreen) >= ROOM_HEIGHT;
    return flRoom && GetDotsPerInch() >= DENSE_DPI ? int{XMT_SCALE_MAX} : 1;
}

void XmtReadScale(const char *name, const char *appClass) {
    std::string program = name, programs = appClass;
    XmtScale = FindScale(GetResource(program + ".scale", programs + ".Scale"));
    std::string contrast = GetResource(program + ".highContrast", programs + ".HighContrast");
    flXmtHighContrast = strcasecmp(contrast.c_str(), "true") == 0;
}

static void AddDefaults(const char *const *lines) {
    XrmDatabase all = XtScreenDatabase(AppScreen), ours = nullptr;
    for (; *lines; lines++) XrmPutLineResource(&ours, *lines);
    if (ours) XrmCombineDatabase(ours, &all, 0);
}

void XmtAddScaleDefaults() {
    static const char *const large[] = {"*VertScrollBar.width: 22", "*HorScrollBar.height: 22", nullptr};
    static const char *const contrast[] = {"*background: white",  "*foreground: black",
                                           "*borderColor: black", "*highlightColor: black",
                                           "*troughColor: white", nullptr};
    if (XmtScale > 1) AddDefaults(large);
    if (flXmtHighContrast) AddDefaults(contrast);
}

// ---- fonts

const char *XmtScaleFont(const char *name) {
    static constexpr struct {
        const char *font, *large;
    } Fonts[] = {{"6x13", "12x24"}, {"7x13", "12x24"},     {"7x14", "12x24"},     {"fixed", "12x24"},
                 {"8x13", "12x24"}, {"7x13bold", "12x24"}, {"8x13bold", "12x24"}, {"9x15", "12x24"}};
    if (XmtScale == 1) return name;
    for (const auto &row : Fonts)
        if (strcmp(row.font, name) == 0) return row.large;
    return name;
}

// ---- colours

const char *XmtContrastColour(const char *text, bool flBackground) {
    if (!flXmtHighContrast) return text;
    return flBackground ? "white" : "black";
}

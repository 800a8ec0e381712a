// Colours from text to pixels, fonts by name.
#include "xmt/XmtColor.h"

#include "common/MemMgr.h"
#include "common/Token.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtScale.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtToken.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

enum { COLOR_TEXT = 255 }; // longer texts are no colours, and longer names no fonts: they stay off the wire

// All entries of the default colormap. Both arrays are managed and are null until the first search.
struct ClosestCache {
    int count;
    XColor *entries;
    char *used; // by the present group of colours
};

int flNewColorSet;
Pixel NewObjectColor[XMT_COLOURS];
intptr_t XmtPixBg = -1;
int flUseDefaultColor = 1;

static ClosestCache Closest;

// ---- the nearest entry

double Sqrt(double x, double tolerance) {
    if (x <= 0) return 0;
    double v = x;
    while (v * v > x) v /= 2;
    double step = v / 2;
    do {
        double next = v + step;
        if (next == v) break;
        while (next * next > x) {
            step /= 2;
            next = v + step;
        }
        v = next;
    } while (v * v + tolerance < x);
    return v;
}

static float Square(int n) {
    return static_cast<float>(n) * static_cast<float>(n);
}

float RGBDiff(int red, int green, int blue, const XColor *colour) {
    int entryRed = colour->red, entryGreen = colour->green, entryBlue = colour->blue;
    float sum = Square((entryRed >> 8) - red) + Square((entryGreen >> 8) - green) +
                Square((entryBlue >> 8) - blue) + Square(abs(entryRed - entryGreen) - abs(red - green)) +
                Square(abs(entryGreen - entryBlue) - abs(green - blue)) +
                Square(abs(entryRed - entryBlue) - abs(red - blue));
    return static_cast<float>(Sqrt(static_cast<double>(sum), 0.01));
}

// Only these classes hand out cells one by one until none is left.
static Visual *FindExhaustibleVisual() {
    if (!AppDisplay) return nullptr;
    Visual *visual = DefaultVisual(AppDisplay, AppScreenNum);
    return visual->c_class == PseudoColor || visual->c_class == GrayScale ? visual : nullptr;
}

static bool FillClosestCache(const Visual *visual) {
    if (Closest.entries) return true;
    size_t count = static_cast<size_t>(visual->map_entries);
    auto *entries = static_cast<XColor *>(GetMem(count * sizeof(XColor)));
    auto *used = static_cast<char *>(GetMem(count));
    if (!entries || !used) {
        PutMem(entries);
        PutMem(used);
        return false;
    }
    Closest = {.count = visual->map_entries, .entries = entries, .used = used};
    for (int i = 0; i < Closest.count; i++) entries[i].pixel = static_cast<Pixel>(i);
    XQueryColors(AppDisplay, AppColormap, entries, Closest.count);
    return true;
}

// The channels of "#RRGGBB" or "#RRRRGGGGBBBB", 0 to 255 each.
static bool ReadChannels(const char *text, int channels[3]) {
    size_t digits = strlen(text) - 1;
    if (text[0] != '#' || (digits != 6 && digits != 12)) return false;
    if (strspn(text + 1, "0123456789abcdefABCDEF") != digits) return false;
    size_t width = digits / 3;
    for (size_t i = 0; i < 3; i++) { // the first two digits of a channel are its upper byte
        std::string channel(text + 1 + i * width, 2);
        channels[i] = static_cast<int>(strtol(channel.c_str(), nullptr, 16));
    }
    return true;
}

static int FindClosest(const int channels[3]) {
    float bestDistance = 1000000.0F;
    int best = 0;
    for (int i = 0; i < Closest.count; i++) {
        if (Closest.used[i]) continue;
        float distance = RGBDiff(channels[0], channels[1], channels[2], &Closest.entries[i]);
        if (distance >= bestDistance) continue;
        bestDistance = distance;
        best = i;
    }
    return best;
}

XColor *GetClosestColor(const char *text) {
    int channels[3];
    if (!text || *text == '\0' || !ReadChannels(text, channels)) return nullptr;
    const Visual *visual = FindExhaustibleVisual();
    if (!visual || !FillClosestCache(visual)) return nullptr;
    if (flNewColorSet) memset(Closest.used, 0, static_cast<size_t>(Closest.count));
    flNewColorSet = 0;
    int best = FindClosest(channels);
    Closest.used[best] = 1;
    return &Closest.entries[best];
}

// ---- text to pixel

static const char *FindColorValue(const char *text) {
    if (*text == '#') return text;
    for (const XmtColorRow *row = pColor; *row->name != '\0'; row++) {
        if (strcmp(row->name, text) == 0) return row->value;
    }
    return text;
}

static bool AllocateColor(const char *text, Pixel *pixel) {
    XColor colour;
    if (strlen(text) > COLOR_TEXT) return false;
    if (!XParseColor(AppDisplay, AppColormap, text, &colour)) return false;
    if (!XAllocColor(AppDisplay, AppColormap, &colour)) return false;
    *pixel = colour.pixel;
    return true;
}

// Cells that this process holds stay its own, so their texts need not be asked for again: each question is a
// trip to the server and back, and a window has a colour or two an object. A place holds the text that came
// last of those that share it.
enum { KEPT_COLORS = 256, KEPT_TEXT = 24 };
static struct {
    char text[KEPT_TEXT];
    Pixel pixel;
    Display *display; // null: the place is free
    Colormap colormap;
} Kept[KEPT_COLORS];

static unsigned PlaceOfColor(const char *text) {
    unsigned place = 0;
    for (; *text != '\0'; text++) place = place * 31 + static_cast<unsigned char>(*text);
    return place % KEPT_COLORS;
}

static bool FindKeptColor(const char *text, Pixel *pixel) {
    const auto &kept = Kept[PlaceOfColor(text)];
    if (kept.display != AppDisplay || kept.colormap != AppColormap || strcmp(kept.text, text) != 0)
        return false;
    *pixel = kept.pixel;
    return true;
}

static void KeepColor(const char *text, Pixel pixel) {
    auto &kept = Kept[PlaceOfColor(text)];
    if (strlen(text) >= KEPT_TEXT) return;
    strcpy(kept.text, text);
    kept.pixel = pixel;
    kept.display = AppDisplay;
    kept.colormap = AppColormap;
}

static Pixel GetDefaultColor(int flBackground) {
    const char *text = flBackground ? "#FFFFFF" : "#000000";
    Pixel pixel = 0;
    if (!flUseDefaultColor || AllocateColor(text, &pixel)) return pixel;
    fprintf(stderr, "Can't allocate color \"%s\"\n", text);
    exit(1);
}

Pixel GenColor(const char *text, int flBackground, char *flSuccess) {
    char unused;
    if (!flSuccess) flSuccess = &unused;
    *flSuccess = 0;
    if (!AppDisplay) return 0;
    if (!text) return GetDefaultColor(flBackground);
    while (isspace(static_cast<unsigned char>(*text))) text++;
    Pixel pixel;
    *flSuccess = 1;
    if (FindKeptColor(text, &pixel)) return pixel;
    const char *name = text;
    text = FindColorValue(name);
    if (AllocateColor(text, &pixel)) {
        KeepColor(name, pixel);
        return pixel;
    }
    const XColor *closest = GetClosestColor(text);
    if (closest) return closest->pixel;
    *flSuccess = 0;
    return GetDefaultColor(flBackground);
}

// ---- keys

const XmtColourKey XmtColourKeys[] = {
    {"bg", "background", XMT_BG},
    {"fg", "foreground", XMT_FG},
    {"bo", "borderColor", XMT_BORDER},
    {"st", "topShadowColor", XMT_TOP},
    {"sb", "bottomShadowColor", XMT_BOTTOM},
    {"se", "selectColor", XMT_BOTTOM},
    {"sa", "armColor", XMT_BOTTOM},
    {"hi", "highlightColor", XMT_HIGHLIGHT},
    {"rr", "troughColor", XMT_HIGHLIGHT},
    {"", nullptr, 0},
};

const XmtColourKey *XmtFindColourKey(const char *text) {
    const XmtColourKey *row = XmtColourKeys;
    while (row->resource && strncmp(text, row->key, 2) != 0) row++;
    return row->resource ? row : nullptr;
}

const XmtColourKey *XmtReadColour(const char *item, Pixel *pixel) {
    char flSuccess;
    item += strspn(item, " \t\n\r");
    const XmtColourKey *row = XmtFindColourKey(item);
    if (!row) return nullptr;
    *pixel = NewObjectColor[row->place] =
        GenColor(XmtContrastColour(item + 2, row->place == XMT_BG), row->place == XMT_BG, &flSuccess);
    if (row->place == XMT_BG) XmtPixBg = static_cast<intptr_t>(*pixel);
    return row;
}

// Keys and resources, from 1.
static constexpr char ColorKeys[] = ",bg,bo,fg,hi,r,sb,st,se,sa,";
static const char *const ColorResources[] = {
    "",
    XmNbackground,
    XmNborderColor,
    XmNforeground,
    XmNhighlightColor,
    XmNtroughColor,
    XmNbottomShadowColor,
    XmNtopShadowColor,
    XmNselectColor,
    XmNarmColor,
};

void XmtSetColor(const char *name, const char *key, const char *text) {
    if (!name || !key || !text) return;
    int row = XmtFindToken(key, ColorKeys);
    if (row < 1 || row >= static_cast<int>(std::size(ColorResources))) return;
    flNewColorSet = 1;
    bool flBackground = strcmp(key, "bg") == 0;
    Pixel pixel = GenColor(XmtContrastColour(text, flBackground), flBackground, nullptr);
    XmtSetXmValue(name, ColorResources[row], static_cast<XtArgVal>(pixel));
}

// ---- fonts

struct FontRecord { // an entry of XmtFonts
    XFontStruct *font;
    XmFontList list;
};

static XmFontList KeepFont(const char *name, XFontStruct *font) {
    FontRecord record = {.font = font,
                         .list = XmFontListCreate(font, const_cast<char *>(XmFONTLIST_DEFAULT_TAG))};
    if (PushHashNode(XmtFonts, HashText(name), &record, sizeof record) != nullptr) return record.list;
    XmFontListFree(record.list);
    XFreeFont(AppDisplay, font);
    return nullptr;
}

XmFontList XmtGetFontList(const char *name) {
    if (!AppDisplay || !name || strlen(name) > COLOR_TEXT) return nullptr;
    XmtInitStore();
    auto *known = static_cast<FontRecord *>(FindHashNode(XmtFonts, HashText(name)));
    if (known) return known->list;
    const char *scaled = XmtScaleFont(name);
    XFontStruct *font = XLoadQueryFont(AppDisplay, scaled);
    if (!font && scaled != name) font = XLoadQueryFont(AppDisplay, name);
    return font != nullptr ? KeepFont(name, font) : nullptr;
}

// Colours from text to pixels, fonts by name.
//
// A colour text is a name of the table ("light gray"), "#" with hexadecimal digits, or whatever else the
// server understands ("navyblue", "rgb:ff/80/0"). It ends as a pixel of AppColormap in three steps: the
// table, the server, and, where a colormap has run out, the nearest of its entries. Allocated cells are never
// given back: pixels live as long as the process.
#pragma once

#include "xmt/Xmt.h"

struct XmtColorRow {
    const char *value; // "#RRGGBB", capitals
    const char *name;  // compared letter by letter, blanks and capitals included
};
extern const XmtColorRow pColor[]; // ends with a row of two empty texts; of equal names the first counts

// Places of the colours read.
enum XmtColourPlace { XMT_BG, XMT_FG, XMT_BORDER, XMT_TOP, XMT_BOTTOM, XMT_HIGHLIGHT, XMT_COLOURS };
struct XmtColourKey {
    char key[3];
    const char *resource;
    int place; // XmtColourPlace
};
extern const XmtColourKey XmtColourKeys[]; // ends with a null resource
// The row whose key the text begins with, or null.
const XmtColourKey *XmtFindColourKey(const char *text);

extern int flNewColorSet;                 // a new group of colours begins; GetClosestColor clears it
extern Pixel NewObjectColor[XMT_COLOURS]; // of the object read last; writer: XmtReadColour
extern intptr_t XmtPixBg;                 // its background, -1 for none; likewise
extern int flUseDefaultColor;             // a colour that can't be had becomes white or black; initially set

// The pixel; *flSuccess (may be null) tells whether it is the colour asked for or the nearest to it. Leading
// white space is passed over. A colour that can't be had gives white for a background and else black, and 0
// while flUseDefaultColor is clear. Without a display 0, no success. Uses: flNewColorSet.
// Ends: with "Can't allocate color" on standard error when not even the default can be had.
Pixel GenColor(const char *text, int flBackground, char *flSuccess);
// "key colour", where the colour's name may hold blanks: the key's row, or null for an unknown one.
const XmtColourKey *XmtReadColour(const char *item, Pixel *pixel);
// The colormap's entry nearest to "#" with 6 or 12 digits, among those that the present group of colours has
// not taken yet: two colours of a picture never fall on the same. flNewColorSet begins a new group. Null for
// any other text and where a colormap can't run out. The entries are read from the server once; the first
// search of a process sees the colormap as all later ones.
// Buffer: an entry of the cache, for good.
XColor *GetClosestColor(const char *text);
// The distance of a colour, channels 0 to 255, from an entry with channels 0 to 65535: brightness by the
// channels, hue by the differences between them.
float RGBDiff(int red, int green, int blue, const XColor *colour);
// The root by halving, approached from below, whose square is at most tolerance below x; 0 for an x of 0 and
// less. tolerance is above 0.
double Sqrt(double x, double tolerance);
// Sets a colour of an object: the key is one of bg, bo, fg, hi, r, sb, st, se, sa. A null argument or an
// unknown key does nothing.
void XmtSetColor(const char *name, const char *key, const char *text);
// The list with the one font, kept in XmtFonts for good; null if there is no such font, without a display, or
// for null. A failure is not remembered.
XmFontList XmtGetFontList(const char *name);

// Colours from text to pixels, fonts by name.
#pragma once

#include "xmt/Xmt.h"

struct XmtColorRow {
    const char *value; // "#RRGGBB"
    const char *name;
};
extern const XmtColorRow pColor[]; // ends with a row of two empty texts
extern int flUseDefaultColor;      // a colour that can't be had becomes white or black

// The pixel; *flSuccess tells whether it is the colour asked for. Without a display 0, no success. Ends: when
// even the default can't be allocated.
Pixel GenColor(const char *text, int flBackground, char *flSuccess);
XColor *GetClosestColor(const char *text); // null where the colormap can't run out
float RGBDiff(int red, int green, int blue, const XColor *colour);
double Sqrt(double x, double tolerance);
void XmtSetColor(const char *name, const char *key, const char *text);
XmFontList XmtGetFontList(const char *name); // null if there is no such font

// The size of windows on dense screens, and their colours for eyes that need contrast.
//
// Descriptions are written for about 96 dots per inch: a font of 13 pixels, margins of four. On a screen of
// twice as many the same window is half as large and can't be read. There the builder doubles what
// descriptions give in pixels (sizes, places, margins, borders), loads a larger font for each that a
// description names, and doubles pictures.
//
// Two X resources of the program overrule what the screen says, from the user's resources or from a file of
// the host in app-defaults:
//
//   prndeck.scale: 1              never doubles; 2 always does
//   prndeck.highContrast: true    black on white, whatever colours a description has
#pragma once

#include "xmt/x11.h"

enum { XMT_SCALE_MAX = 2 };
// 1, or 2 from 160 dots per inch up on a screen that has room for the largest windows then. The dots are
// those that the resource Xft.dpi tells, which desktops set, else those of the server. Writer: XmtReadScale,
// and tests.
extern int XmtScale;
extern bool flXmtHighContrast; // likewise

// Asks the display that XmtInitApp opened; it calls this.
void XmtReadScale(const char *name, const char *appClass);
// Resources of all widgets that go with the two, below those that a user has set.
void XmtAddScaleDefaults();

inline int XmtScaled(int pixels) {
    return pixels * XmtScale;
}
// Of a size that was read from a widget, the number that a description would have for it.
inline int XmtUnscaled(int pixels) {
    return pixels / XmtScale;
}
// The font to load for one that a description names: itself, or one about twice as large.
const char *XmtScaleFont(const char *name);
// The colour to take for a description's.
const char *XmtContrastColour(const char *text, bool flBackground);

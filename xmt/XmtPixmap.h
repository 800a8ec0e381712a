// Images in XPM, GIF and XBM to pixmaps, and their merging in a picture.
#pragma once

#include "xmt/Xmt.h"

#include <cstddef>

// Both null when nothing was read.
struct ImageRecord {
    XImage *Image;
    ::Pixmap Pixmap;
};
extern int flSetColorNone; // read for a picture: transparency is kept

// All readers: the position behind the image in the text, which ends in a NUL at text + size.
const char *XmtCreatePixmap(const char *text, size_t size, ImageRecord *record);
const char *XmtLoadXPM(const char *text, size_t size, ImageRecord *record, int flXpm2);
const char *XmtLoadBitmap(const char *text, size_t size, ImageRecord *record);
void XmtClearImage(XImage *image, Pixel pixel);
// Merges at x, y: transparent pixels are skipped, background ones become the given pixel.
void XmtCopyImage(XImage *source, XImage *destination, int x, int y, Pixel background);
// An image of the screen's depth with its own data, or null. width and height in pixels.
XImage *XmtMakeImage(int width, int height);

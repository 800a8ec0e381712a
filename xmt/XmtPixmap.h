// Images in XPM, GIF and XBM to pixmaps, and their merging in a picture.
//
// An image is read from a text in memory into an XImage of the screen's depth, its colours allocated by
// GenColor, and copied to a pixmap. A picture keeps the images and merges them pixel by pixel. For that, two
// pixel values are set aside: a transparent pixel is all ones in its bits_per_pixel bits, a background pixel
// one less. At 8 and 16 bits they can't be told from a colour of that value; at 32 bits, where a colour has
// 24, they can. Pixels of fewer than 8 bits have no such values.
//
// Files come from anywhere: sizes are limited, what is too large or no image gives an empty record, what ends
// early leaves the rest of the pixels 0.
#pragma once

#include "xmt/Xmt.h"

#include <cstddef>

enum {
    XMT_IMAGE_SIDE = 32767,      // the protocol's limit for a pixmap
    XMT_IMAGE_PIXELS = 16777216, // in all
    XMT_IMAGE_COLOURS = 256,
    XMT_IMAGE_KEY = 3, // characters a pixel of an XPM
};

// Both null when nothing was read. Whoever keeps the record owns both; the image goes by XDestroyImage.
struct ImageRecord {
    XImage *Image;
    ::Pixmap Pixmap;
};
extern const char *IconPath; // folder of images, null: names are relative to the current directory
// Read for a picture: transparency is kept. Otherwise transparent pixels get XmtPixBg, if there is one.
extern int flSetColorNone;
// Bits per pixel of images that are made without a display, so that the readers work without one: 8, 16, 24,
// 32. There is no pixmap then, and all colours are 0.
extern int XmtOfflineBits;

// All readers: the text ends in a NUL at text + size, the record is empty before. The result is the position
// behind the image; behind its header if it was refused, and the text itself if it is no image of the format.

// Tells the format by the first characters, "GIF", "! XPM2", "/* XPM */", and makes the pixmap. XBM is none
// of them: Motif itself reads such files for labels.
const char *XmtCreatePixmap(const char *text, size_t size, ImageRecord *record);
// Lines begin behind a line feed (XPM2) or behind a line feed and a double quote. Of a colour line the first
// letter of the first word decides: 'c' a colour, with "None" for transparent, 's' the picture's background,
// anything else no colour.
const char *XmtLoadXPM(const char *text, size_t size, ImageRecord *record, int flXpm2);
// An image of depth 1.
const char *XmtLoadBitmap(const char *text, size_t size, ImageRecord *record);
// Sets every pixel. A null image or one without data: nothing.
void XmtClearImage(XImage *image, Pixel pixel);
// Merges at x, y, which may lie outside: transparent pixels are skipped, background ones become the given
// pixel. Nothing if either has no data, or the source more pixels in all than the destination.
void XmtCopyImage(XImage *source, XImage *destination, int x, int y, Pixel background);
// An image of the screen's depth with its own data, all 0; null if a side is below 1, above the limits, or
// memory exhausted. width and height in pixels. Owns: XDestroyImage.
XImage *XmtMakeImage(int width, int height);
// Each pixel XmtScale times in both directions. The image itself where that is 1, where its bits are no whole
// bytes or where there is no room. Owns: the image is released when another comes back.
XImage *XmtScaleImage(XImage *image);
// A pixmap that Motif made, as large as pictures are on this screen: itself, or a copy of another size, which
// the server keeps.
::Pixmap XmtScalePixmap(::Pixmap pixmap);
// Loads an image and enters it in XmtPixmaps under its name: the entry, or null. With a file, that is the
// name. With null reads a name at the cursor, and behind it image data that start with '!', or a file up to
// ';'. Files are looked for in IconPath. An entry that was there is replaced in place; its pixmap lives on.
ImageRecord *XmtNewImage(const char *file);

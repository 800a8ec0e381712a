// Reads GIF87a and GIF89a, as far as labels and pictures need it: one image of the size of the logical
// screen, in the colours of the global table. Every image block is drawn at the top left, one over the other.
// Transparency, delays and local colour tables are passed over.
#pragma once

#include "xmt/XmtPixmap.h"

// As the readers of XmtPixmap.h; bytes may hold NULs. Damaged data ends its block: the pixels so far stay.
// The result is the first byte that begins no further block.
const char *XmtLoadGIF(const char *bytes, size_t size, ImageRecord *record);

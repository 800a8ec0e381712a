// Reads GIF87a and GIF89a.
#pragma once

#include "xmt/XmtPixmap.h"

const char *XmtLoadGIF(const char *bytes, size_t size, ImageRecord *record);

// Images: the first byte chooses the pixel size, what transparency becomes, and the reader; the rest is the
// file. What was read is merged into a picture.
#include "xmt/XmtNewArgs.h"
#include "xmt/XmtPixmap.h"

#include <cstdint>
#include <cstdlib>
#include <string>

// Every pixel can be read, and merging at the corners stays within.
static void UseImage(XImage *image) {
    unsigned long sum = 0;
    for (int y = 0; y < image->height; y += 1 + image->height / 64) {
        for (int x = 0; x < image->width; x += 1 + image->width / 64) sum += XGetPixel(image, x, y);
    }
    XImage *picture =
        image->width * image->height < 65536 ? XmtMakeImage(image->width, image->height) : nullptr;
    if (picture == nullptr) return;
    XmtClearImage(picture, sum);
    XmtCopyImage(image, picture, 0, 0, 1);
    XmtCopyImage(image, picture, image->width / 2, -image->height / 2, 2);
    XDestroyImage(picture);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    std::string text(reinterpret_cast<const char *>(data + 1), size - 1);
    XmtOfflineBits = 8 + 8 * (data[0] & 3);
    flSetColorNone = data[0] >> 2 & 1;
    XmtPixBg = (data[0] >> 3 & 1) - 1;
    ImageRecord record = {};
    const char *end = (data[0] & 16) != 0 ? XmtLoadBitmap(text.c_str(), text.size(), &record)
                                          : XmtCreatePixmap(text.c_str(), text.size(), &record);
    if (end < text.c_str() || end > text.c_str() + text.size() || record.Pixmap != 0) abort();
    if (record.Image == nullptr) return 0;
    UseImage(record.Image);
    XDestroyImage(record.Image);
    return 0;
}

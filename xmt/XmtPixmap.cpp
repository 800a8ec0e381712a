// Images in XPM, GIF and XBM to pixmaps, and their merging in a picture.
#include "xmt/XmtPixmap.h"

#include "common/MemMgr.h"
#include "common/utils.h"
#include "xmt/XmtColor.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtScale.h"
#include "xmt/XmtStore.h"
#include "xmt/XmtValue.h"
#include "xmt/gif.h"

#include <cctype>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <strings.h>

enum { NO_SPECIAL_BITS = 8 }; // an image of fewer bits a pixel has no transparent and background values

const char *IconPath;
int flSetColorNone;
int XmtOfflineBits = 32;

// ---- images

static XImage *MakeOfflineImage(int width, int height) {
    auto *image = static_cast<XImage *>(calloc(1, sizeof(XImage)));
    if (!image) return nullptr;
    image->width = width;
    image->height = height;
    image->format = ZPixmap;
    image->byte_order = image->bitmap_bit_order = LSBFirst;
    image->bits_per_pixel = XmtOfflineBits;
    image->depth = XmtOfflineBits == 32 ? 24 : XmtOfflineBits;
    image->bitmap_unit = image->bitmap_pad = 32;
    if (XInitImage(image)) return image;
    free(image);
    return nullptr;
}

static XImage *MakeDisplayImage(int width, int height) {
    int depth = DefaultDepth(AppDisplay, AppScreenNum);
    int pad = depth <= 8 ? 8 : depth <= 16 ? 16 : 32;
    return XCreateImage(AppDisplay, DefaultVisual(AppDisplay, AppScreenNum), static_cast<unsigned>(depth),
                        ZPixmap, 0, nullptr, static_cast<unsigned>(width), static_cast<unsigned>(height), pad,
                        0);
}

static bool IsSizeAllowed(int width, int height) {
    return width >= 1 && height >= 1 && width <= XMT_IMAGE_SIDE && height <= XMT_IMAGE_SIDE &&
           width * height <= XMT_IMAGE_PIXELS;
}

// Gives an image its data; null, and the image is gone, if there is no memory for it.
static XImage *AllocateImage(XImage *image) {
    if (!image) return nullptr;
    image->data = static_cast<char *>(
        calloc(static_cast<size_t>(image->bytes_per_line), static_cast<size_t>(image->height)));
    if (image->data) return image;
    XDestroyImage(image);
    return nullptr;
}

XImage *XmtMakeImage(int width, int height) {
    if (!IsSizeAllowed(width, height)) return nullptr;
    return AllocateImage(AppDisplay ? MakeDisplayImage(width, height) : MakeOfflineImage(width, height));
}

// ---- merging

static uint32_t GetTransparent(const XImage *image) {
    if (image->bits_per_pixel < NO_SPECIAL_BITS) return UINT32_MAX;
    return UINT32_MAX >> (32 - image->bits_per_pixel);
}

// A pixel with all its bits. XGetPixel cuts it to the depth, which makes transparent ones white.
static uint32_t GetRawPixel(XImage *image, int x, int y) {
    int bytes = image->bits_per_pixel / 8;
    if (image->format != ZPixmap || bytes * 8 != image->bits_per_pixel)
        return static_cast<uint32_t>(XGetPixel(image, x, y));
    const auto *at = reinterpret_cast<const unsigned char *>(image->data) +
                     static_cast<ptrdiff_t>(y) * image->bytes_per_line + static_cast<ptrdiff_t>(x) * bytes;
    uint32_t pixel = 0;
    for (int i = 0; i < bytes; i++) {
        int place = image->byte_order == LSBFirst ? i : bytes - 1 - i;
        pixel |= static_cast<uint32_t>(at[i]) << (8 * place);
    }
    return pixel;
}

void XmtClearImage(XImage *image, Pixel pixel) {
    if (!image || !image->data) return;
    for (int y = 0; y < image->height; y++) {
        for (int x = 0; x < image->width; x++) XPutPixel(image, x, y, pixel);
    }
}

static bool IsWithin(const XImage *image, long x, long y) {
    return x >= 0 && y >= 0 && x < image->width && y < image->height;
}

void XmtCopyImage(XImage *source, XImage *destination, int x, int y, Pixel background) {
    if (!source || !destination) return;
    if (!source->data || !destination->data) return;
    if (static_cast<long>(source->width) * source->height >
        static_cast<long>(destination->width) * destination->height)
        return;
    const uint32_t transparent = GetTransparent(source);
    for (int row = 0; row < source->height; row++) {
        for (int column = 0; column < source->width; column++) {
            long toX = static_cast<long>(x) + column, toY = static_cast<long>(y) + row;
            uint32_t raw = GetRawPixel(source, column, row);
            if (raw == transparent || !IsWithin(destination, toX, toY)) continue;
            Pixel pixel = raw == transparent - 1 ? background : XGetPixel(source, column, row);
            XPutPixel(destination, static_cast<int>(toX), static_cast<int>(toY), pixel);
        }
    }
}

// ---- text

// The position behind the next match, or the end.
static const char *StrLocate(const char *text, const char *search) {
    const char *found = strstr(text, search);
    return found != nullptr ? found + strlen(search) : text + strlen(text);
}

// Copies up to the next line feed; the position behind it, or the end.
static const char *XmtGetLine(std::string *line, const char *text) {
    size_t length = strcspn(text, "\n");
    line->assign(text, length);
    return text[length] == '\n' ? text + length + 1 : text + length;
}

// Numbers as C writes them, saturated to an int; the count of those read.
static int ReadNumbers(const char *text, int *numbers, int count) {
    for (int i = 0; i < count; i++) {
        char *end;
        long number = strtol(text, &end, 0);
        if (end == text) return i;
        numbers[i] = number > INT_MAX ? INT_MAX : number < INT_MIN ? INT_MIN : static_cast<int>(number);
        text = end;
    }
    return count;
}

static const char *SkipSpace(const char *text) {
    while (isspace(static_cast<unsigned char>(*text))) text++;
    return text;
}

// ---- XPM

struct XpmColour {
    char key[XMT_IMAGE_KEY]; // 0 behind a shorter one
    Pixel pixel;
};
struct XpmTable {
    int count;
    int keyLength;
    XpmColour colours[XMT_IMAGE_COLOURS];
};
struct XpmHeader { // in the order of the file
    int width, height, count, keyLength;
};

static Pixel FindColor(const XpmTable *table, const char *key) {
    for (int i = 0; i < table->count; i++) {
        const XpmColour *colour = &table->colours[i];
        if (memcmp(colour->key, key, static_cast<size_t>(table->keyLength)) == 0) return colour->pixel;
    }
    return 0;
}

// The key letters behind which a colour line holds a value for another kind of screen.
static bool IsKeyWord(const std::string &word) {
    return word == "c" || word == "m" || word == "s" || word == "g" || word == "g4";
}

// The value at the head of the text: up to the next key word, without blanks at its end.
static std::string ReadColourValue(const char *text) {
    std::string value;
    while (*(text = SkipSpace(text)) != '\0') {
        std::string word(text, strcspn(text, " \t\r"));
        if (!value.empty() && IsKeyWord(word)) break;
        if (!value.empty()) value += ' ';
        value += word;
        text += word.size();
    }
    return value;
}

static Pixel GetColourPixel(const XImage *image, char letter, const std::string &value) {
    const uint32_t transparent = GetTransparent(image);
    if (letter == 's') return flSetColorNone ? transparent - 1 : 0;
    if (letter != 'c') return 0;
    if (strcasecmp(value.c_str(), "None") == 0) {
        if (flSetColorNone) return transparent;
        if (XmtPixBg != -1) return static_cast<Pixel>(XmtPixBg);
    }
    return GenColor(value.c_str(), 0, nullptr);
}

// line = KEY WORD VALUE, the key as wide as the head tells, so that it may hold blanks.
static void ReadColour(const XImage *image, const std::string &line, size_t keyLength, XpmColour *colour) {
    if (line.size() < keyLength) return;
    memcpy(colour->key, line.data(), keyLength);
    const char *word = SkipSpace(line.c_str() + keyLength);
    const char *end = word;
    while (isalnum(static_cast<unsigned char>(*end))) end++;
    if (end != word) colour->pixel = GetColourPixel(image, *word, ReadColourValue(end));
}

// Reads the colour lines; the position of the last.
static const char *ReadColours(const XImage *image, XpmTable *table, const char *text,
                               const char *delimiter) {
    flNewColorSet = 1;
    for (int i = 0; i < table->count; i++) {
        text = StrLocate(text, delimiter);
        std::string line(text, strcspn(text, "\n\""));
        ReadColour(image, line, static_cast<size_t>(table->keyLength), &table->colours[i]);
    }
    return text;
}

static bool HasKey(const char *text, int length) {
    int there = 0;
    while (there < length && text[there] != '\0' && text[there] != '\n' && text[there] != '"') there++;
    return there == length;
}

// The pixels that are there of one row; the position behind them.
static const char *SetImageRow(XImage *image, const XpmTable *table, const char *text, int y) {
    for (int x = 0; x < image->width && HasKey(text, table->keyLength); x++) {
        XPutPixel(image, x, y, FindColor(table, text));
        text += table->keyLength;
    }
    return text;
}

static const char *SetImage(XImage *image, const XpmTable *table, const char *text, int flXpm2) {
    for (int y = 0; y < image->height && *text != '\0'; y++)
        text = SetImageRow(image, table, StrLocate(text, flXpm2 ? "\n" : "\n\""), y);
    if (!flXpm2 && *text == '"') text++;
    return text + strspn(text, ";");
}

static bool ReadXpmHeader(const char *text, XpmHeader *header) {
    int numbers[4];
    if (ReadNumbers(text, numbers, 4) < 4) return false;
    *header = {.width = numbers[0], .height = numbers[1], .count = numbers[2], .keyLength = numbers[3]};
    return header->count >= 1 && header->count <= XMT_IMAGE_COLOURS && header->keyLength >= 1 &&
           header->keyLength <= XMT_IMAGE_KEY;
}

const char *XmtLoadXPM(const char *text, size_t, ImageRecord *record, int flXpm2) {
    const char *delimiter = flXpm2 ? "\n" : "\n\"";
    text = StrLocate(text, delimiter);
    XpmHeader header;
    XImage *image = ReadXpmHeader(text, &header) ? XmtMakeImage(header.width, header.height) : nullptr;
    if (!image) return text + strcspn(text, "\n");
    XpmTable table = {};
    table.count = header.count;
    table.keyLength = header.keyLength;
    text = ReadColours(image, &table, text, delimiter);
    record->Image = image;
    return SetImage(image, &table, text, flXpm2);
}

// ---- XBM

// A line of the form "#define NAME_width 9" with the given ending of the name.
static bool ReadDefine(const std::string &line, const char *name, int *number) {
    return ReadNumbers(StrLocate(line.c_str(), name), number, 1) == 1;
}

static XImage *MakeBitmap(int width, int height) {
    if (!IsSizeAllowed(width, height)) return nullptr;
    auto *image = static_cast<XImage *>(calloc(1, sizeof(XImage)));
    if (!image) return nullptr;
    image->width = width;
    image->height = height;
    image->format = XYBitmap;
    image->depth = image->bits_per_pixel = 1;
    image->bitmap_unit = image->bitmap_pad = 8;
    image->byte_order = image->bitmap_bit_order = LSBFirst;
    if (XInitImage(image)) return AllocateImage(image);
    free(image);
    return nullptr;
}

// Skips what separates the bytes. False at the end of the list or of the text.
static bool FindBitmapByte(const char **text) {
    *text += strspn(*text, " \t\r\n,");
    return **text != '\0' && **text != '}' && **text != ';';
}

static void SetBitmapByte(XImage *image, int x, int y, unsigned byte) {
    Pixel black = 1, white = 0;
    if (AppDisplay) {
        black = BlackPixel(AppDisplay, AppScreenNum);
        white = WhitePixel(AppDisplay, AppScreenNum);
    }
    for (int i = 0; i < 8 && x + i < image->width; i++)
        XPutPixel(image, x + i, y, (byte >> i & 1) != 0 ? black : white);
}

// Each row begins with a byte of its own.
static const char *SetBitmap(XImage *image, const char *text) {
    for (int y = 0; y < image->height; y++) {
        for (int x = 0; x < image->width; x += 8) {
            if (!FindBitmapByte(&text)) return text;
            char *end;
            unsigned long byte = strtoul(text, &end, 16);
            SetBitmapByte(image, x, y, static_cast<unsigned>(byte));
            text += strcspn(text, " \t\r\n,}");
        }
    }
    return text;
}

const char *XmtLoadBitmap(const char *text, size_t, ImageRecord *record) {
    std::string line;
    int width, height;
    const char *at = XmtGetLine(&line, text);
    if (!ReadDefine(line, "_width", &width)) return text;
    at = XmtGetLine(&line, at);
    if (!ReadDefine(line, "_height", &height)) return text;
    XImage *image = MakeBitmap(width, height);
    if (!image) return at;
    record->Image = image;
    do at = XmtGetLine(&line, at);
    while (*at != '\0' && line.find('{') == std::string::npos);
    return SetBitmap(image, at);
}

// ---- pixmaps

static Pixmap CopyToPixmap(XImage *image) {
    if (!AppDisplay) return 0;
    auto width = static_cast<unsigned>(image->width), height = static_cast<unsigned>(image->height);
    Pixmap pixmap = XCreatePixmap(AppDisplay, RootWindow(AppDisplay, AppScreenNum), width, height,
                                  static_cast<unsigned>(image->depth));
    XGCValues values = {};
    values.function = GXcopy;
    values.plane_mask = AllPlanes;
    GC gc = XCreateGC(AppDisplay, pixmap, GCFunction | GCPlaneMask, &values);
    XPutImage(AppDisplay, pixmap, gc, image, 0, 0, 0, 0, width, height);
    XFreeGC(AppDisplay, gc);
    return pixmap;
}

XImage *XmtScaleImage(XImage *image) {
    if (XmtScale == 1 || !image || !image->data || image->bits_per_pixel % 8 != 0) return image;
    XImage *large = XmtMakeImage(XmtScaled(image->width), XmtScaled(image->height));
    if (!large || large->bits_per_pixel != image->bits_per_pixel) {
        if (large) XDestroyImage(large);
        return image;
    }
    // By bytes: a pixel's spare bits tell what is transparent, and XGetPixel drops them.
    size_t bytes = static_cast<size_t>(image->bits_per_pixel) / 8;
    for (int y = 0; y < large->height; y++) {
        const char *from = image->data + static_cast<ptrdiff_t>(XmtUnscaled(y)) * image->bytes_per_line;
        char *to = large->data + static_cast<ptrdiff_t>(y) * large->bytes_per_line;
        for (int x = 0; x < large->width; x++)
            memcpy(to + static_cast<size_t>(x) * bytes, from + static_cast<size_t>(XmtUnscaled(x)) * bytes,
                   bytes);
    }
    XDestroyImage(image);
    return large;
}

Pixmap XmtScalePixmap(Pixmap pixmap) {
    Window root;
    int x, y;
    unsigned width, height, border, depth;
    if (XmtScale == 1 || !AppDisplay) return pixmap;
    if (!XGetGeometry(AppDisplay, pixmap, &root, &x, &y, &width, &height, &border, &depth)) return pixmap;
    XImage *image = XGetImage(AppDisplay, pixmap, 0, 0, width, height, AllPlanes, ZPixmap);
    if (!image) return pixmap;
    image = XmtScaleImage(image);
    Pixmap scaled = CopyToPixmap(image);
    XDestroyImage(image);
    return scaled;
}

static bool BeginsWith(const char *text, const char *head) {
    return strncmp(text, head, strlen(head)) == 0;
}

const char *XmtCreatePixmap(const char *text, size_t size, ImageRecord *record) {
    *record = {};
    const char *end = text;
    if (BeginsWith(text, "GIF")) end = XmtLoadGIF(text, size, record);
    if (BeginsWith(text, "! XPM2")) end = XmtLoadXPM(text, size, record, 1);
    if (BeginsWith(text, "/* XPM */")) end = XmtLoadXPM(text, size, record, 0);
    record->Image = XmtScaleImage(record->Image);
    if (record->Image) record->Pixmap = CopyToPixmap(record->Image);
    return end;
}

// ---- named images

// The server's copy of an image that is replaced may be on a label: it stays.
static ImageRecord *EnterImage(const char *name, const ImageRecord *image) {
    ImageRecord *old = static_cast<ImageRecord *>(FindHashNode(XmtPixmaps, HashText(name)));
    if (old && old->Image) XDestroyImage(old->Image);
    if (old)
        *old = *image;
    else
        old = static_cast<ImageRecord *>(PushHashNode(XmtPixmaps, HashText(name), image, sizeof *image));
    return old;
}

static ImageRecord *KeepImage(const char *name, ImageRecord *image) {
    if (image->Pixmap) return EnterImage(name, image);
    if (image->Image) XDestroyImage(image->Image);
    return nullptr;
}

static ImageRecord *LoadImage(const char *name, const char *file) {
    bool flAlone = !IconPath || file[0] == '\\' || file[0] == '/';
    char *text = flAlone ? GetSavedFileContent(file, nullptr) : GetSavedFileContent(IconPath, file);
    if (!text) return nullptr;
    ImageRecord image = {};
    XmtCreatePixmap(text, static_cast<size_t>(SavedFileSize), &image);
    PutMem(text);
    return KeepImage(name, &image);
}

static ImageRecord *ReadImage(const char *name) {
    ImageRecord image = {};
    pNewDesc = XmtCreatePixmap(pNewDesc, strlen(pNewDesc), &image);
    return KeepImage(name, &image);
}

ImageRecord *XmtNewImage(const char *file) {
    if (!AppDisplay) return nullptr;
    if (file) return *file ? LoadImage(file, file) : nullptr;
    std::string name;
    pNewDesc = GetWord(&name, pNewDesc);
    pNewDesc += strspn(pNewDesc, " \t\r\n");
    if (*pNewDesc == '!') return ReadImage(name.c_str());
    std::string path(pNewDesc, strcspn(pNewDesc, ";"));
    pNewDesc += path.size();
    if (*pNewDesc) pNewDesc++;
    return LoadImage(name.c_str(), path.c_str());
}

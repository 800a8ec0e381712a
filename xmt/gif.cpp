// Reads GIF87a and GIF89a.
#include "xmt/gif.h"

#include "xmt/XmtColor.h"

#include <cstdio>
#include <cstring>

enum { GIF_SIGNATURE = 6, GIF_SCREEN = 7, GIF_BLOCK = 9 };                   // lengths of the fixed parts
enum { GIF_HAS_TABLE = 0x80, GIF_TABLE_BITS = 0x07, GIF_INTERLACED = 0x40 }; // flags of screen and block
enum { GIF_CODE_BITS = 12, GIF_CODES = 1 << GIF_CODE_BITS, GIF_STACK = 1024, GIF_LAST_PASS = 3 };
static constexpr int GIF_END = -1; // no more data

struct GifReader {
    const unsigned char *at;
    const unsigned char *end;
    XImage *image;
    int width, height; // of the logical screen
    int colourCount;   // of the global table: 0, or a power of two
    Pixel pixels[XMT_IMAGE_COLOURS];
    // the image block
    int blockWidth, blockHeight;
    bool flInterlaced;
    int pass;
    int x, y; // of the next pixel
    // its data
    int blockBytes; // left of the sub-block
    bool flClosed;  // the empty sub-block has been read
    unsigned bits;
    int bitCount;
    int codeSize; // in bits
};

// The codes of the block in hand: a code is the text of its prefix and one more colour. A prefix is always
// the smaller number, so that every chain ends.
static unsigned short Prefix[GIF_CODES];
static unsigned short Suffix[GIF_CODES];
// Row steps of the four passes of an interlaced image; from the third on also the first rows of passes 1
// to 3.
static constexpr int VIStep[] = {8, 8, 4, 2, 1};

static int GetByte(GifReader *gif) {
    return gif->at < gif->end ? *gif->at++ : GIF_END;
}

static void SkipBytes(GifReader *gif, int count) {
    gif->at += count < gif->end - gif->at ? count : gif->end - gif->at;
}

static int GetShort(const unsigned char *bytes) {
    return bytes[0] | bytes[1] << 8;
}

static int GetTableSize(int flags) {
    return (flags & GIF_HAS_TABLE) != 0 ? 2 << (flags & GIF_TABLE_BITS) : 0;
}

// Signature and screen; false without either.
static bool RdHead(GifReader *gif) {
    if (gif->end - gif->at < GIF_SIGNATURE + GIF_SCREEN) return false;
    if (memcmp(gif->at, "GIF87a", GIF_SIGNATURE) != 0 && memcmp(gif->at, "GIF89a", GIF_SIGNATURE) != 0)
        return false;
    const unsigned char *screen = gif->at + GIF_SIGNATURE;
    gif->width = GetShort(screen);
    gif->height = GetShort(screen + 2);
    gif->colourCount = GetTableSize(screen[4]);
    gif->at += GIF_SIGNATURE + GIF_SCREEN;
    return true;
}

static void FillColorMap(GifReader *gif) {
    flNewColorSet = 1;
    for (int i = 0; i < gif->colourCount && gif->end - gif->at >= 3; i++, gif->at += 3) {
        char text[] = "#RRGGBB";
        snprintf(text, sizeof text, "#%02X%02X%02X", gif->at[0], gif->at[1], gif->at[2]);
        gif->pixels[i] = GenColor(text, 0, nullptr);
    }
}

// The rest of the sub-blocks, with the empty one that closes them.
static void SkipSubBlocks(GifReader *gif) {
    SkipBytes(gif, gif->blockBytes);
    gif->blockBytes = 0;
    while (!gif->flClosed) {
        int length = GetByte(gif);
        gif->flClosed = length <= 0;
        if (length > 0) SkipBytes(gif, length);
    }
}

static void NextRow(GifReader *gif) {
    gif->x = 0;
    if (!gif->flInterlaced) {
        gif->y++;
        return;
    }
    gif->y += VIStep[gif->pass];
    while (gif->y >= gif->blockHeight && gif->pass < GIF_LAST_PASS) {
        gif->y = VIStep[gif->pass + 2];
        gif->pass++;
    }
}

static void AddToPixel(GifReader *gif, int colour) {
    if (gif->x < gif->image->width && gif->y < gif->image->height)
        XPutPixel(gif->image, gif->x, gif->y, gif->pixels[colour & (XMT_IMAGE_COLOURS - 1)]);
    if (++gif->x == gif->blockWidth) NextRow(gif);
}

static int GetDataByte(GifReader *gif) {
    if (gif->flClosed) return GIF_END;
    if (gif->blockBytes == 0) {
        gif->blockBytes = GetByte(gif);
        if (gif->blockBytes <= 0) {
            gif->blockBytes = 0;
            gif->flClosed = true;
            return GIF_END;
        }
    }
    gif->blockBytes--;
    return GetByte(gif);
}

// The next code, or GIF_END.
static int GetImageValue(GifReader *gif) {
    while (gif->bitCount < gif->codeSize) {
        int byte = GetDataByte(gif);
        if (byte == GIF_END) return GIF_END;
        gif->bits |= static_cast<unsigned>(byte) << gif->bitCount;
        gif->bitCount += 8;
    }
    int code = static_cast<int>(gif->bits & ((1U << gif->codeSize) - 1));
    gif->bits >>= gif->codeSize;
    gif->bitCount -= gif->codeSize;
    return code;
}

// Draws a code's colours; the first of them comes back. The chain yields the last colour first, hence the
// stack. extra, if not GIF_END, is a colour behind them. What the stack does not hold is lost.
static int DrawCode(GifReader *gif, int code, int clear, int extra) {
    int stack[GIF_STACK];
    int top = 0;
    if (extra != GIF_END) stack[top++] = extra;
    while (code >= clear) {
        if (top < GIF_STACK) stack[top++] = Suffix[code];
        code = Prefix[code];
    }
    if (top < GIF_STACK) stack[top++] = code;
    while (top > 0) AddToPixel(gif, stack[--top]);
    return code;
}

static void AddCode(GifReader *gif, int *next, int prefix, int suffix) {
    if (*next == GIF_CODES) return;
    Prefix[*next] = static_cast<unsigned short>(prefix);
    Suffix[*next] = static_cast<unsigned short>(suffix);
    ++*next;
    if (*next == 1 << gif->codeSize && gif->codeSize < GIF_CODE_BITS) gif->codeSize++;
}

// Draws codes up to the end code, the end of the data, or a code that can't be there yet.
static void ProcessImageData(GifReader *gif, int minimum) {
    const int clear = 1 << minimum;
    int next = clear + 2;
    int previous = GIF_END, first = 0;
    gif->codeSize = minimum + 1;
    for (int code; (code = GetImageValue(gif)) != GIF_END && code != clear + 1;) {
        if (code == clear) {
            next = clear + 2;
            gif->codeSize = minimum + 1;
            previous = GIF_END;
        } else if (previous == GIF_END) {
            if (code > clear) return;
            first = DrawCode(gif, code, clear, GIF_END);
            previous = code;
        } else {
            if (code > next) return;
            first = code < next ? DrawCode(gif, code, clear, GIF_END) : DrawCode(gif, previous, clear, first);
            AddCode(gif, &next, previous, first);
            previous = code;
        }
    }
}

// Behind the ','.
static void ProcessImageBlock(GifReader *gif) {
    if (gif->end - gif->at < GIF_BLOCK) {
        gif->at = gif->end;
        return;
    }
    const unsigned char *block = gif->at;
    gif->at += GIF_BLOCK;
    SkipBytes(gif, 3 * GetTableSize(block[8]));
    gif->blockWidth = GetShort(block + 4);
    gif->blockHeight = GetShort(block + 6);
    gif->flInterlaced = (block[8] & GIF_INTERLACED) != 0;
    gif->pass = gif->x = gif->y = 0;
    gif->blockBytes = gif->bitCount = 0;
    gif->bits = 0;
    gif->flClosed = false;
    int minimum = GetByte(gif);
    if (minimum >= 1 && minimum < GIF_CODE_BITS && gif->blockWidth > 0 && gif->blockHeight > 0)
        ProcessImageData(gif, minimum);
    SkipSubBlocks(gif);
}

static void SkipExtension(GifReader *gif) {
    SkipBytes(gif, 1); // its label
    gif->blockBytes = 0;
    gif->flClosed = false;
    SkipSubBlocks(gif);
}

const char *XmtLoadGIF(const char *bytes, size_t size, ImageRecord *record) {
    GifReader gif = {};
    gif.at = reinterpret_cast<const unsigned char *>(bytes);
    gif.end = gif.at + size;
    if (!RdHead(&gif)) return bytes;
    gif.image = XmtMakeImage(gif.width, gif.height);
    if (!gif.image) return reinterpret_cast<const char *>(gif.at);
    FillColorMap(&gif);
    while (gif.at < gif.end && (*gif.at == ',' || *gif.at == '!')) {
        if (*gif.at++ == ',')
            ProcessImageBlock(&gif);
        else
            SkipExtension(&gif);
    }
    record->Image = gif.image;
    return reinterpret_cast<const char *>(gif.at);
}

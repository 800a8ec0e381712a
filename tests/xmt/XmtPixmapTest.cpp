// Images: the three formats, for labels and for pictures, whole and damaged; merging; the copy on the server.
// An image is compared as text: one letter a pixel, '-' transparent, '+' the picture's background, '.' 0.
#include "xmt/XmtPixmap.h"

#include "tests/lib/WindowRig.h"
#include "xmt/XmtColor.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNewArgs.h"
#include "xmt/gif.h"

#include <climits>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

// All of a pixel's bits, of an image in the order of bytes of this machine.
static uint32_t GetRaw(const XImage *image, int x, int y) {
    uint32_t raw = 0;
    int bytes = image->bits_per_pixel / 8;
    const char *at = image->data + y * image->bytes_per_line + x * bytes;
    for (int i = 0; i < bytes; i++) raw |= static_cast<uint32_t>(static_cast<unsigned char>(at[i])) << 8 * i;
    return raw;
}

static char GetLetter(const XImage *image, int x, int y) {
    static const struct {
        char letter;
        const char *colour;
    } colours[] = {{'r', "red"}, {'g', "green"}, {'b', "blue"}, {'w', "white"}, {'y', "light yellow"}};
    uint32_t raw = GetRaw(image, x, y), ones = UINT32_MAX >> (32 - image->bits_per_pixel);
    if (raw == 0) return '.';
    if (raw == ones) return '-';
    if (raw == ones - 1) return '+';
    for (const auto &one : colours) {
        if (GenColor(one.colour, 0, nullptr) == raw) return one.letter;
    }
    return '?';
}

static std::string Dump(const XImage *image) {
    std::string out;
    for (int y = 0; image != nullptr && y < image->height; y++) {
        for (int x = 0; x < image->width; x++) out += GetLetter(image, x, y);
        out += '\n';
    }
    return out;
}

static void Release(ImageRecord *record) {
    if (record->Image != nullptr) XDestroyImage(record->Image);
    if (record->Pixmap != 0) XFreePixmap(AppDisplay, record->Pixmap);
}

// ---- GIF files in the making

static std::string Short(int n) {
    return {static_cast<char>(n), static_cast<char>(n >> 8)};
}

// Screen and a table of black, red, green, blue.
static std::string GifHead(int width, int height) {
    return "GIF89a" + Short(width) + Short(height) +
           std::string("\x81\0\0"
                       "\0\0\0\xFF\0\0\0\xFF\0\0\0\xFF",
                       15);
}

// Codes as a reader expects them: one bit more whenever its table, which each code extends, is full, up
// to 12.
static std::string PackCodes(const std::string &codes, int bits) {
    std::string out;
    unsigned hold = 0;
    int held = 0, next = 5; // the first two codes extend nothing
    for (char code : codes) {
        hold |= static_cast<unsigned>(code - '0') << held;
        for (held += bits; held >= 8; held -= 8, hold >>= 8) out += static_cast<char>(hold);
        if (++next == (1 << bits) + 1 && bits < 12) bits++;
    }
    return out + static_cast<char>(hold);
}

// A block of codes: 0 to 3 are colours, 4 clears the table, 5 ends.
static std::string GifCodes(int width, int height, int flags, const std::string &codes) {
    std::string data = PackCodes(codes, 3);
    std::string out = "," + Short(1) + Short(1) + Short(width) + Short(height);
    out += static_cast<char>(flags);
    if ((flags & 0x80) != 0) out += std::string(6, '\x77');
    out += '\x02';
    for (size_t i = 0; i < data.size(); i += 100) { // in sub-blocks
        std::string part = data.substr(i, 100);
        out += static_cast<char>(part.size()) + part;
    }
    return out + '\0';
}

static std::string GifBlock(int width, int height, int flags, const std::string &colours) {
    return GifCodes(width, height, flags, "4" + colours + "5");
}

// ---- the cases

struct ImageCase {
    const char *name;
    int flPicture;
    std::string data;
    const char *wanted;
    const char *rest; // what stands behind the image; null: not looked at
};

static const std::string XPM_TEXT =
    "/* XPM */\nstatic char *x[] = {\n\"4 2 3 2\",\n\"AA c red\",\n\"AB c light "
    "yellow\",\n\"B  s mask\",\n\"AAABB AA\",\n\"ABABZZAB\"};\n";
static const std::string XPM_NONE =
    "/* XPM */\n\"3 1 3 1\",\n\"  c nONE\",\n\"w c light yellow\",\n\"s s back\",\n\" ws\"";

static const ImageCase ImageCases[] = {
    {"two characters a pixel", 1, XPM_TEXT, "ry+r\nyy.y\n", "};\n"},
    {"the background of a label is no colour", 0, XPM_TEXT, "ry.r\nyy.y\n", "};\n"},
    {"transparent in a picture", 1, XPM_NONE, "-y+\n", ""},
    {"transparent in a label", 0, XPM_NONE, "by.\n", ""},
    {"XPM2 within a text", 0, "! XPM2\n2 2 2 1\na c #FF0000\nb c #0000FF m white\nab\nba;;} rest", "rb\nbr\n",
     "} rest"},
    {"XPM2 of another system", 0, "! XPM2\r\n2 1 2 1\r\na c red\r\nb c blue\r\nab\r\n", "rb\n", "\r\n"},
    {"several values in a line", 0, "! XPM2\n1 1 1 1\na c light yellow g4 white m black\na", "y\n", ""},
    {"rows too short and missing", 0, "! XPM2\n3 4 1 1\na c red\na\naaa\naa", "r..\nrrr\nrr.\n...\n", ""},
    {"four characters a pixel", 0, "! XPM2\n1 1 1 4\nabcd c red\nabcd", "", "\nabcd c red\nabcd"},
    {"width 0", 0, "! XPM2\n0 1 1 1\na c red\n", "", nullptr},
    {"sides that overflow", 0, "! XPM2\n65536 65537 1 1\na c red\n", "", nullptr},
    {"numbers beyond an int", 0, "! XPM2\n4294967297 1 1 1\na c red\n", "", nullptr},
    {"anything else", 0, "%s%n", "", "%s%n"},
    {"GIF", 0, GifHead(2, 2) + GifBlock(2, 2, 0, "0123") + ";", ".r\ngb\n", ";"},
    {"GIF with extensions", 0,
     GifHead(2, 1) + std::string("!\xF9\4\1\0\0\0\0!\xFE\3abc\2de\0", 18) + GifBlock(2, 1, 0, "12") + "x",
     "rg\n", "x"},
    {"interlaced", 0, GifHead(1, 10) + GifBlock(1, 10, 0x40, "1232112223") + ";",
     "r\nr\ng\ng\nb\ng\nr\ng\ng\nb\n", ";"},
    {"block larger than the screen", 0, GifHead(2, 1) + GifBlock(3, 2, 0, "123123") + ";", "rg\n", ";"},
    {"a table of the block's own is passed over", 0, GifHead(2, 1) + GifBlock(2, 1, 0x80, "12") + ";", "rg\n",
     ";"},
    {"code of the entry in the making", 0, GifHead(3, 2) + GifCodes(3, 2, 0, "41645") + ";", "rrr\n...\n",
     ";"},
    {"code above the table", 0, GifHead(3, 2) + GifCodes(3, 2, 0, "41745") + ";", "r..\n...\n", ";"},
    {"first code no colour", 0, GifHead(3, 2) + GifCodes(3, 2, 0, "47145") + ";", "...\n...\n", ";"},
    {"block cut", 0, GifHead(2, 1) + ",\1", "..\n", ""},
    {"code size 0", 0, GifHead(1, 1) + "," + std::string(8, '\1') + std::string("\0\0\1\1\0;", 6), ".\n",
     ";"},
    {"screen too large", 0, GifHead(65535, 65535), "", nullptr},
    {"head cut", 0, GifHead(2, 2).substr(0, 12), "", nullptr},
};

// The pixmap holds what the image holds.
static void CheckPixmap(const ImageRecord &record, const char *name) {
    if (record.Image == nullptr) return;
    auto width = static_cast<unsigned>(record.Image->width),
         height = static_cast<unsigned>(record.Image->height);
    XImage *copy = XGetImage(AppDisplay, record.Pixmap, 0, 0, width, height, AllPlanes, ZPixmap);
    ASSERT_NE(copy, nullptr) << name;
    for (int i = 0, w = copy->width; i < w * copy->height; i++)
        EXPECT_EQ(XGetPixel(copy, i % w, i / w), XGetPixel(record.Image, i % w, i / w)) << name;
    XDestroyImage(copy);
}

static void CheckImages() {
    XmtPixBg = static_cast<intptr_t>(GenColor("blue", 1, nullptr));
    for (const ImageCase &one : ImageCases) {
        ImageRecord record = {};
        flSetColorNone = one.flPicture;
        const char *end = XmtCreatePixmap(one.data.c_str(), one.data.size(), &record);
        EXPECT_EQ(Dump(record.Image), one.wanted) << one.name;
        ASSERT_GE(end, one.data.c_str()) << one.name;
        ASSERT_LE(end, one.data.c_str() + one.data.size()) << one.name;
        EXPECT_STREQ(end, one.rest != nullptr ? one.rest : end) << one.name;
        CheckPixmap(record, one.name);
        Release(&record);
    }
}

// Codes of 12 bits, and more of them than the table holds.
static void CheckLongGif() {
    std::string colours, wanted;
    for (int i = 0; i < 6000; i++) {
        colours += static_cast<char>('1' + i * i % 7 % 3);
        wanted += "rgb"[i * i % 7 % 3];
        if (i % 100 == 99) wanted += '\n';
    }
    std::string data = GifHead(100, 60) + GifBlock(100, 60, 0, colours) + ";";
    ImageRecord record = {};
    EXPECT_STREQ(XmtLoadGIF(data.c_str(), data.size(), &record), ";");
    EXPECT_EQ(Dump(record.Image), wanted);
    Release(&record);
}

static void CheckScreen() {
    CheckImages();
    CheckLongGif();
}

TEST(XmtPixmapTest, OnEveryKindOfScreen) {
    for (const char *screen : {"640x480x8", "640x480x16", "640x480x24"}) {
        bool flSkipped = false;
        EXPECT_TRUE(RunOnScreen(screen, CheckScreen, &flSkipped)) << screen;
        if (flSkipped) GTEST_SKIP() << "there is no Xvfb that starts here";
    }
}

struct MergeCase {
    const char *name;
    int x, y;
    const char *wanted; // of 3 by 2 pixels
};
static const MergeCase MergeCases[] = {
    {"at the corner", 0, 0, "9B6999"},
    {"lower row", 0, 1, "9999B6"},
    {"over the right side", 2, 0, "999999"},
    {"over the left side", -2, 1, "999699"},
    {"above", 0, -1, "999999"},
    {"far away", INT_MAX, INT_MIN, "999999"},
};

// A transparent, a background and a plain pixel are merged into an image of nines.
TEST(XmtPixmapTest, MergesAtEveryPixelSize) {
    for (int bits : {8, 16, 24, 32}) {
        XmtOfflineBits = bits;
        XImage *source = XmtMakeImage(3, 1), *target = XmtMakeImage(3, 2);
        unsigned long ones = UINT32_MAX >> (32 - bits);
        XPutPixel(source, 0, 0, ones);
        XPutPixel(source, 1, 0, ones - 1);
        XPutPixel(source, 2, 0, 6);
        for (const MergeCase &one : MergeCases) {
            XmtClearImage(target, 9);
            XmtCopyImage(source, target, one.x, one.y, 11);
            std::string got;
            for (int i = 0; i < 6; i++) got += "0123456789AB"[XGetPixel(target, i % 3, i / 3) % 12];
            EXPECT_EQ(got, one.wanted) << one.name << " at " << bits << " bits";
        }
        XmtClearImage(source, 7);
        XmtCopyImage(target, source, 0, 0, 0);
        EXPECT_EQ(XGetPixel(source, 0, 0), 7U) << "a source of more pixels";
        XPutPixel(source, 0, 0, 0xFFFFFF);
        XmtCopyImage(source, target, 0, 0, 5);
        bool flOnes = ones <= 0xFFFFFF; // where a pixel has more bits than a colour, white is not transparent
        EXPECT_EQ(XGetPixel(target, 0, 0), flOnes ? 9 : 0xFFFFFF) << bits;
        XDestroyImage(source);
        XDestroyImage(target);
    }
}

struct BitmapCase {
    const char *name;
    const char *text;
    const char *wanted;
};
static const BitmapCase BitmapCases[] = {
    {"a row of two bytes",
     "#define x_width 9\n#define x_height 2\nstatic char x[] = {\n 0x03, 0xff,\n\t0x80,0x00};",
     "##......#\n.......#.\n"},
    {"hot spot", "#define x_width 2\n#define x_height 1\n#define x_x_hot 1\nstatic char x[] = {\n0x02 };",
     ".#\n"},
    {"bytes missing", "#define x_width 2\n#define x_height 2\nstatic char x[] = {\n0x3};\n0x3", "##\n..\n"},
    {"no height", "#define x_width 2\n", ""},
    {"too large", "#define x_width 40000\n#define x_height 40000\n{\n", ""},
};

TEST(XmtPixmapTest, Bitmaps) {
    for (const BitmapCase &one : BitmapCases) {
        ImageRecord record = {};
        XmtLoadBitmap(one.text, strlen(one.text), &record);
        std::string got;
        for (int y = 0; record.Image != nullptr && y < record.Image->height; y++) {
            for (int x = 0; x < record.Image->width; x++)
                got += XGetPixel(record.Image, x, y) != 0 ? '#' : '.';
            got += '\n';
        }
        EXPECT_EQ(got, one.wanted) << one.name;
        Release(&record);
    }
}

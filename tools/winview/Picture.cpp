// Takes a window's pixels from the server and writes them.
#include "tools/winview/Picture.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

// ---- pixels

struct Pixels {
    int width = 0, height = 0;
    std::string bytes; // red, green, blue
};

struct Area {
    int x, y; // in the window
    int width, height;
};

static Area SeenArea(Display *display, Window window) {
    XWindowAttributes facts;
    Window child;
    int x = 0, y = 0;
    XGetWindowAttributes(display, window, &facts);
    XTranslateCoordinates(display, window, facts.root, 0, 0, &x, &y, &child);
    Area area = {std::max(0, -x), std::max(0, -y), 0, 0};
    area.width = std::min(facts.width, WidthOfScreen(facts.screen) - x) - area.x;
    area.height = std::min(facts.height, HeightOfScreen(facts.screen) - y) - area.y;
    return area;
}

// The server knows what its pixels look like, whatever the visual.
static Pixels ReadPixels(Widget shell, const Area &area, XImage *image) {
    Pixels pixels = {area.width, area.height, ""};
    std::map<unsigned long, std::string> known;
    Colormap colours = 0;
    XtVaGetValues(shell, XmNcolormap, &colours, nullptr);
    for (int y = 0; y < area.height; y++)
        for (int x = 0; x < area.width; x++) {
            std::string &bytes = known[XGetPixel(image, x, y)];
            if (bytes.empty()) {
                XColor colour = {};
                colour.pixel = XGetPixel(image, x, y);
                XQueryColor(XtDisplay(shell), colours, &colour);
                for (int part : {colour.red, colour.green, colour.blue})
                    bytes += static_cast<char>(part >> 8);
            }
            pixels.bytes += bytes;
        }
    return pixels;
}

static Pixels TakePixels(Widget shell) {
    Display *display = XtDisplay(shell);
    Area area = SeenArea(display, XtWindow(shell));
    if (area.width < 1 || area.height < 1) return {};
    XImage *image = XGetImage(display, XtWindow(shell), area.x, area.y, static_cast<unsigned>(area.width),
                              static_cast<unsigned>(area.height), AllPlanes, ZPixmap);
    if (!image) return {};
    Pixels pixels = ReadPixels(shell, area, image);
    XDestroyImage(image);
    return pixels;
}

// ---- files

static std::string ToPpm(const Pixels &pixels) {
    return "P6\n" + std::to_string(pixels.width) + " " + std::to_string(pixels.height) + "\n255\n" +
           pixels.bytes;
}

static std::string BigEndian(uint32_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift);
    return bytes;
}

static uint32_t Crc(const std::string &bytes) {
    uint32_t crc = UINT32_MAX;
    for (unsigned char byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; bit++) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320u : 0);
    }
    return ~crc;
}

static uint32_t Adler(const std::string &bytes) {
    uint32_t low = 1, high = 0;
    for (unsigned char byte : bytes) {
        low = (low + byte) % 65521;
        high = (high + low) % 65521;
    }
    return high << 16 | low;
}

static std::string Chunk(const std::string &type, const std::string &data) {
    return BigEndian(static_cast<uint32_t>(data.size())) + type + data + BigEndian(Crc(type + data));
}

// A zlib stream of stored blocks: a length, its complement, the bytes.
static std::string Stored(const std::string &bytes) {
    enum { BLOCK = 65535 };
    std::string out = "\x78\x01";
    for (size_t at = 0; at == 0 || at < bytes.size(); at += BLOCK) {
        std::string block = bytes.substr(at, BLOCK);
        auto length = static_cast<unsigned>(block.size());
        out += at + BLOCK >= bytes.size() ? '\1' : '\0';
        for (unsigned part : {length, ~length})
            for (int shift : {0, 8}) out += static_cast<char>(part >> shift);
        out += block;
    }
    return out + BigEndian(Adler(bytes));
}

// Each row has the number of its filter in front: none.
static std::string ToPng(const Pixels &pixels) {
    std::string rows;
    size_t row = static_cast<size_t>(pixels.width) * 3;
    for (size_t at = 0; at < pixels.bytes.size(); at += row) rows += '\0' + pixels.bytes.substr(at, row);
    std::string head = BigEndian(static_cast<uint32_t>(pixels.width)) +
                       BigEndian(static_cast<uint32_t>(pixels.height)) + std::string("\10\2\0\0\0", 5);
    return "\x89PNG\r\n\x1a\n" + Chunk("IHDR", head) + Chunk("IDAT", Stored(rows)) + Chunk("IEND", "");
}

static bool EndsIn(const char *name, const char *end) {
    size_t length = strlen(name), tail = strlen(end);
    return length >= tail && strcmp(name + length - tail, end) == 0;
}

static bool WriteFile(const char *file, const std::string &bytes) {
    FILE *out = fopen(file, "wb");
    bool flWritten = out && fwrite(bytes.data(), 1, bytes.size(), out) == bytes.size();
    if (out && fclose(out) != 0) flWritten = false;
    if (!flWritten) fprintf(stderr, "winview: can't write %s: %s\n", file, strerror(errno));
    return flWritten;
}

bool SavePicture(Widget shell, const char *file) {
    Pixels pixels = TakePixels(shell);
    if (pixels.bytes.empty()) fprintf(stderr, "winview: nothing of the window is on the screen\n");
    return !pixels.bytes.empty() && WriteFile(file, EndsIn(file, ".ppm") ? ToPpm(pixels) : ToPng(pixels));
}

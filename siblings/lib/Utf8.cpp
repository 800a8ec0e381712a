// Texts as UTF-8.
#include "siblings/lib/Utf8.h"

// Bytes of the UTF-8 character at the start of the text, or 0 for a byte that begins none.
static size_t Utf8Length(std::string_view text) {
    unsigned char lead = static_cast<unsigned char>(text.front());
    size_t length = lead < 0x80 ? 1 : lead >= 0xc2 && lead < 0xe0 ? 2 : (lead & 0xf0) == 0xe0 ? 3 : 0;
    if (lead >= 0xf0 && lead < 0xf5) length = 4;
    if (!length || length > text.size()) return 0;
    for (size_t at = 1; at < length; at++)
        if ((static_cast<unsigned char>(text[at]) & 0xc0) != 0x80) return 0;
    unsigned char second = length > 2 ? static_cast<unsigned char>(text[1]) : 0x90;
    bool flOdd = (lead == 0xe0 && second < 0xa0) || (lead == 0xed && second > 0x9f) ||
                 (lead == 0xf0 && second < 0x90) || (lead == 0xf4 && second > 0x8f);
    return flOdd ? 0 : length;
}

std::string CleanUtf8(std::string_view text, size_t limit) {
    std::string clean;
    while (!text.empty()) {
        size_t length = Utf8Length(text);
        unsigned char lead = static_cast<unsigned char>(text.front());
        std::string character(text.substr(0, length));
        if (length == 1 && (lead < ' ' || lead == 127)) character = " ";
        // A byte that is no UTF-8 was typed in a single-byte locale.
        if (!length) character = {(char)(0xc0 | lead >> 6), (char)(0x80 | (lead & 0x3f))};
        if (clean.size() + character.size() > limit) break;
        clean += character;
        text.remove_prefix(length ? length : 1);
    }
    return clean;
}

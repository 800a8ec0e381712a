// The lines of a banner text.
#include "print/BannerText.h"

#include "common/Words.h"

#include <iterator>

static constexpr std::string_view Keys[] = {".h1", ".h2", ".h3"};
static_assert(std::size(Keys) == BANNER_ROWS);

static bool ReadBannerLine(std::string_view text, BannerTextLine *line) {
    size_t first = text.find(' ');
    size_t second = first == text.npos ? first : text.find(' ', first + 1);
    if (second == text.npos) return false;
    line->row = 0;
    while (line->row < BANNER_ROWS && text.substr(0, first) != Keys[line->row]) line->row++;
    line->size = text.substr(first + 1, second - first - 1);
    line->title = text.substr(second + 1);
    return line->row < BANNER_ROWS;
}

bool TakeBannerLine(std::string_view &text, BannerTextLine *line) {
    for (std::string_view next; TakePlainLine(text, next);)
        if (ReadBannerLine(next, line)) return true;
    return false;
}

// The banner text of a queue: up to three lines, one for each title, with its size in points.
//
//     .h1 20 Print room
//     .h3 12 second floor
#pragma once

#include <string_view>

enum { BANNER_ROWS = 3 };

struct BannerTextLine {
    int row;               // from 0
    std::string_view size; // as it stands
    std::string_view title;
};

// Takes the next line that is one: its key, a blank, a size, a blank and the title, which may be empty. What
// else stands there is passed over. False at the end of the text.
bool TakeBannerLine(std::string_view &text, BannerTextLine *line);

// Words and lines of a text that is only read: each call takes the next one off its front. Without copies,
// limits and state, and a backslash is a character like any other; where one protects a delimiter it is
// Token.h that reads.
#pragma once

#include <algorithm>
#include <string_view>

// What stands in front of the first of these characters, which stays; the whole text without one.
inline std::string_view TakeUpTo(std::string_view &text, std::string_view ends) {
    std::string_view taken = text.substr(0, text.find_first_of(ends));
    text.remove_prefix(taken.size());
    return taken;
}

// The next word, without the delimiters in front of it; the one behind it stays. False, and the text empty,
// if there is none.
inline bool TakeWord(std::string_view &text, std::string_view delims, std::string_view &word) {
    text.remove_prefix(std::min(text.find_first_not_of(delims), text.size()));
    word = TakeUpTo(text, delims);
    return !word.empty();
}

// The next line without its line feed, which goes as well. An empty line is one, the end of the text is not.
inline bool TakeLine(std::string_view &text, std::string_view &line) {
    if (text.empty()) return false;
    line = TakeUpTo(text, "\n");
    text.remove_prefix(std::min<size_t>(text.size(), 1));
    return true;
}

// The same for files that may come from elsewhere: without a carriage return in front of the line feed.
inline bool TakePlainLine(std::string_view &text, std::string_view &line) {
    if (!TakeLine(text, line)) return false;
    if (line.ends_with('\r')) line.remove_suffix(1);
    return true;
}

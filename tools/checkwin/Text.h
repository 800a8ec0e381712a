// Texts of which every character knows where it was written, and the value readers over them.
//
// A character out of a macro's body stands where the macro is called, and names the macro; an argument's
// characters keep their own place, a catalogue text's that of its hole.
#pragma once

#include <string>
#include <vector>

struct Place {
    int line = 1, column = 1;
    int macro = -1; // the innermost one that the character comes from, -1 for none
};

struct Text {
    std::string chars;
    std::vector<Place> places; // of each character

    bool empty() const { return chars.empty(); }
    char at(size_t i) const { return i < chars.size() ? chars[i] : '\0'; }
    Place place(size_t i) const; // of the last one behind the end
    void add(char ch, Place where);
    void add(const Text &other);
    Text part(size_t from, size_t to) const;
};
inline constexpr char AnyText[] = "text"; // in a hole that no catalogue fills
Text PlaceText(const std::string &chars);

// A place in a text; reading moves it.
struct Scan {
    Text text;
    size_t at = 0;

    char peek() const { return text.at(at); }
    bool end() const { return at >= text.chars.size(); }
    Place place() const { return text.place(at); }
    char next() { return end() ? '\0' : text.chars[at++]; }
    void skipSpace();
    bool skip(char ch); // true if it stood there
};

// The readers of xmt/XmtNew.h. close tells the character that ended a value and was consumed, NUL for the
// end.
Text TakeUpTo(Scan *cursor, const char *ends); // consumes nothing behind it
Text TakeValue(Scan *cursor, char *close = nullptr);
Text TakeList(Scan *cursor, char *close = nullptr);      // backslashes stay
Text TakeUnescaped(Scan *cursor, char *close = nullptr); // one level of backslashes goes
Text TakeWord(Scan *cursor);
int TakeNumber(Scan *cursor, char *close = nullptr);
std::vector<Text> SplitList(const Text &list); // at its unescaped commas

#include "tools/checkwin/Text.h"

#include "xmt/XmtNew.h"

#include <cctype>
#include <cstdlib>
#include <cstring>

Place Text::place(size_t i) const {
    if (places.empty()) return {};
    return places[i < places.size() ? i : places.size() - 1];
}

void Text::add(char ch, Place where) {
    chars += ch;
    places.push_back(where);
}

void Text::add(const Text &other) {
    chars += other.chars;
    places.insert(places.end(), other.places.begin(), other.places.end());
}

Text Text::part(size_t from, size_t to) const {
    Text text;
    for (; from < to && from < chars.size(); from++) text.add(chars[from], places[from]);
    return text;
}

Text PlaceText(const std::string &chars) {
    Text text;
    Place where;
    for (char ch : chars) {
        text.add(ch, where);
        where.column++;
        if (ch == '\n') where = {where.line + 1, 1, -1};
    }
    return text;
}

void Scan::skipSpace() {
    while (XmtIsSpace(peek())) at++;
}

bool Scan::skip(char ch) {
    if (end() || peek() != ch) return false;
    at++;
    return true;
}

static void Close(Scan *cursor, char *close) {
    char ch = cursor->next();
    if (close) *close = ch;
}

Text TakeUpTo(Scan *cursor, const char *ends) {
    size_t start = cursor->at;
    for (; !cursor->end() && !strchr(ends, cursor->peek()); cursor->at++)
        if (cursor->peek() == '\\' && cursor->text.at(cursor->at + 1)) cursor->at++;
    return cursor->text.part(start, cursor->at);
}

Text TakeValue(Scan *cursor, char *close) {
    cursor->skip('(');
    Text value = TakeUpTo(cursor, ",)");
    Close(cursor, close);
    return value;
}

Text TakeList(Scan *cursor, char *close) {
    cursor->skip('(');
    Text list = TakeUpTo(cursor, ")");
    Close(cursor, close);
    return list;
}

Text TakeUnescaped(Scan *cursor, char *close) {
    Text list;
    cursor->skip('(');
    while (!cursor->end() && cursor->peek() != ')') {
        if (cursor->skip('\\') && cursor->end()) break;
        Place where = cursor->place();
        char ch = cursor->next();
        list.add(ch, where);
        if (ch == '\\' && cursor->peek() == ')') list.add(cursor->next(), where);
    }
    Close(cursor, close);
    return list;
}

Text TakeWord(Scan *cursor) {
    cursor->skipSpace();
    size_t start = cursor->at;
    while (isalnum(static_cast<unsigned char>(cursor->peek())) || cursor->peek() == '_') cursor->at++;
    return cursor->text.part(start, cursor->at);
}

int TakeNumber(Scan *cursor, char *close) {
    cursor->skip('(');
    int number = atoi(cursor->text.chars.c_str() + cursor->at);
    while (isdigit(static_cast<unsigned char>(cursor->peek()))) cursor->at++;
    if (close) *close = '\0';
    if (cursor->peek() && strchr(",()", cursor->peek())) Close(cursor, close);
    return number;
}

std::vector<Text> SplitList(const Text &list) {
    std::vector<Text> items;
    Scan cursor{list};
    for (bool flMore = true; flMore; flMore = cursor.skip(',')) items.push_back(TakeUpTo(&cursor, ","));
    return items;
}

#include "tools/checkwin/Menu.h"

#include "tools/checkwin/Args.h"
#include "tools/checkwin/Format.h"
#include "tools/checkwin/Objects.h"
#include "tools/checkwin/Report.h"
#include "xmt/Xmt.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewBuild.h"

#include <cctype>
#include <cstring>
#include <fstream>

struct MenuBar {
    Scan *cursor;
    std::string name;
    int number;  // of the object
    int entries; // at the top level
};

struct MenuLevel {
    std::string prefix;
    int counter = 0;
    bool flMenu = false; // a menu was named, its body is due
    std::string letters; // of the entries so far
};

static void ReadLevel(MenuBar *bar, const std::string &prefix, const Place &open);

// The keyboard chooses by the letters, and the first of two would have it.
static void CheckLetter(MenuLevel *level, const std::string &label, const Place &place) {
    if (label.find_first_not_of(' ') == std::string::npos) return; // a spacer
    size_t mark = label.find('~');
    char letter = mark == std::string::npos || mark == 0 ? ' ' : label[mark - 1];
    if (!isascii(letter) || !isalnum(letter)) // one that not every keyboard has is none
        return Report(place, "no letter in the entry \"%s\"", label.c_str());
    letter = static_cast<char>(tolower(letter));
    if (level->letters.find(letter) != std::string::npos)
        Report(place, "the letter of \"%s\" is another entry's as well", label.c_str());
    level->letters += letter;
}

// A label as any other, a format of a button.
static void CheckItem(MenuBar *bar, MenuLevel *level, const Text &label, const Place &place) {
    CheckLetter(level, label.chars, place);
    for (const char *bad = ",;<>{}"; *bad; bad++)
        if (label.chars.find(*bad) != std::string::npos)
            Report(place, "'%c' in the label \"%s\"", *bad, label.chars.c_str());
    if (bar->cursor->text.at(bar->cursor->at - 1) != ')') Report(place, "no ')' behind the label");
}

static std::string EntryName(const MenuBar *bar, const MenuLevel &level, bool flTop) {
    std::string name = bar->name + "_" + std::to_string(bar->entries);
    if (flTop) return name;
    return name + "_" + (level.prefix.empty() ? "a" : level.prefix) + "_" + std::to_string(level.counter);
}

static void AddItem(MenuBar *bar, MenuLevel *level, const Place &place, bool flFormat) {
    char close;
    bool flTop = level->prefix.empty();
    if (flTop) bar->entries++;
    if (!flTop) level->counter++;
    Text format;
    if (flFormat) {
        format = TakeValue(bar->cursor, &close);
        if (close != ',') Report(place, "bf wants a format and a label");
        CheckFormat(XmtPushBut, format, "");
    }
    Text label = TakeList(bar->cursor);
    CheckItem(bar, level, label, place);
    int item = AddObject(EntryName(bar, *level, flTop), place, XmtPushBut, bar->number);
    bool flSpacer = label.chars.find_first_not_of(' ') == std::string::npos;
    ObjectOf(item)->flHeard = !flSpacer && IsHeard(XmtPushBut, format, "");
}

static void AddMenu(MenuBar *bar, MenuLevel *level, const Place &place) {
    if (level->prefix.empty()) bar->entries++;
    level->counter++;
    level->flMenu = true;
    CheckItem(bar, level, TakeList(bar->cursor), place);
    std::string name = EntryName(bar, *level, false) + "_pd";
    AddObject(name, place, AUX_MENU, bar->number);
    AddObject(name + "_cb", place, AUX_CASCADE, bar->number);
}

static void ReadMenuBody(MenuBar *bar, MenuLevel *level, const Place &place) {
    if (!level->flMenu) Report(place, "a body, but no menu in front of it");
    level->flMenu = false;
    ReadLevel(bar, level->prefix + static_cast<char>('a' + level->counter), place);
}

static void ReadFile(MenuBar *bar, const Place &place) {
    Text name = TakeList(bar->cursor);
    if (!std::ifstream(name.chars)) Report(place, "the file \"%s\" can't be read", name.chars.c_str());
}

static void ReadEntry(MenuBar *bar, MenuLevel *level, char ch, const Place &place) {
    Scan *cursor = bar->cursor;
    if (level->flMenu && strchr("bms", ch)) Report(place, "the menu in front of this has no body");
    switch (ch) {
    case 'b': AddItem(bar, level, place, cursor->skip('f')); break;
    case 'm': AddMenu(bar, level, place); break;
    case '{': ReadMenuBody(bar, level, place); break;
    case 's':
    case 'a': break;
    case 'i':
        if (cursor->skip('d'))
            NextId = TakeNumber(cursor);
        else
            ReadFile(bar, place);
        break;
    case '#': TakeUpTo(cursor, "\n"); break;
    default:
        if (!XmtIsSpace(ch)) Report(place, "'%c' means nothing in a menu", ch);
    }
}

static void ReadLevel(MenuBar *bar, const std::string &prefix, const Place &open) {
    MenuLevel level;
    level.prefix = prefix;
    while (!bar->cursor->end()) {
        Place place = bar->cursor->place();
        char ch = bar->cursor->next();
        if (ch == '}' || ch == ';') return;
        ReadEntry(bar, &level, ch, place);
    }
    Report(open, "this menu is not closed");
}

int BuildMenu(Scan *cursor, int parent) {
    Parts parts;
    Args args;
    CollectParts(cursor, &parts);
    ReadPart(parts, 1, &args);
    Place place = parts.name.place(0);
    MenuBar bar = {cursor, parts.name.chars, AddObject(parts.name.chars, place, AUX_BAR, parent), 0};
    cursor->skipSpace();
    bool flBrace = cursor->skip('{');
    ReadLevel(&bar, "", place);
    cursor->skipSpace();
    if (flBrace) cursor->skip('}');
    return bar.number;
}

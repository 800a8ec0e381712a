#include "tools/checkwin/Args.h"

#include "tools/checkwin/Look.h"
#include "tools/checkwin/Objects.h"
#include "tools/checkwin/Report.h"
#include "xmt/XmtCallback.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewArgs.h"

#include <cctype>
#include <cstring>
#include <filesystem>

std::string StageDir;
std::map<int, Text> MacroTexts;
int MacroUses;

bool CountMacroUse(const Place &place, int number) {
    if (MacroUses++ == XMT_CALLS_ALL) Report(place, "macro %d: the calls never end", number);
    return MacroUses <= XMT_CALLS_ALL;
}

// ---- values

struct Reading {
    Scan *cursor;
    Args *args;
    int mode;
    std::string token;
    Place place; // of the token
};

static void WantClosed(const Reading *r, char close) {
    if (close == ',') Report(r->place, "%s(...): too many values", r->token.c_str());
    if (close == '\0') Report(r->place, "%s(...): no ')' behind its value", r->token.c_str());
}

// A number with a sign is read, but stays: it is then an argument that is unknown.
static char WantNumber(const Reading *r) {
    char close;
    const std::string &text = r->cursor->text.chars;
    size_t at = text.find_first_not_of(" ", r->cursor->at + (r->cursor->peek() == '('));
    bool flDigit = at != text.npos && isdigit(static_cast<unsigned char>(text[at]));
    if (!flDigit && text[at == text.npos ? 0 : at] != '-')
        Report(r->place, "%s wants a number", r->token.c_str());
    TakeNumber(r->cursor, &close);
    return close;
}

static void WantNumbers(const Reading *r, bool flTwo) {
    char close = WantNumber(r);
    if (flTwo && close == ')') Report(r->place, "%s wants two numbers", r->token.c_str());
    if (flTwo && close != ')') close = WantNumber(r);
    if (close == ',') Report(r->place, "%s(...): too many values", r->token.c_str());
}

// For the next object; 0 means the number that the counter has.
static void ReadId(const Reading *r) {
    Scan number = *r->cursor;
    GivenId = TakeNumber(&number);
    if (GivenId == 0) GivenId = NextId;
    WantNumbers(r, false);
}

static void WantFlags(const Reading *r, bool flTwo) {
    char close;
    for (int left = flTwo ? 2 : 1; left > 0; left--) {
        Text value = TakeValue(r->cursor, &close);
        if (value.chars != "T" && value.chars != "F")
            Report(r->place, "%s wants T or F, not \"%s\"", r->token.c_str(), value.chars.c_str());
        if (left == 2 && close != ',') {
            Report(r->place, "%s wants two values", r->token.c_str());
            break;
        }
    }
    WantClosed(r, close);
}

static void WantLetter(const Reading *r, const char *letters) {
    char close;
    Text value = TakeValue(r->cursor, &close);
    std::string known;
    for (const char *letter = letters; *letter; letter += 2) known += *letter;
    if (value.chars.size() != 1 || !strchr(known.c_str(), value.at(0)))
        Report(r->place, "%s wants a letter of \"%s\", not \"%s\"", r->token.c_str(), known.c_str(),
               value.chars.c_str());
    WantClosed(r, close);
}

static Text WantText(const Reading *r) {
    char close;
    Text value = TakeValue(r->cursor, &close);
    if (value.empty()) Report(r->place, "%s wants a value", r->token.c_str());
    WantClosed(r, close);
    return value;
}

static void WantFont(const Reading *r) {
    Text name = WantText(r);
    if (!name.empty() && !IsFont(name.chars))
        Report(name.place(0), "there is no font \"%s\"", name.chars.c_str());
}

static Text WantList(const Reading *r, Text (*take)(Scan *, char *)) {
    char close;
    Text list = take(r->cursor, &close);
    WantClosed(r, close);
    return list;
}

static void WantObjectNow(const Text &name) {
    if (FindObject(name.chars) < 0) Report(name.place(0), "\"%s\" is no object so far", name.chars.c_str());
}

static void WantWords(const Text &list, const char *words) {
    for (const Text &word : SplitList(list))
        if (!XmtFindToken(word.chars.c_str(), words))
            Report(word.place(0), "\"%s\" is none of \"%s\"", word.chars.c_str(), words);
}

// key colour
static void CheckColour(const Text &item) {
    size_t at = item.chars.find_first_not_of(" \t\n\r");
    const XmtColourKey *row = XmtColourKeys;
    if (at == item.chars.npos) return Report(item.place(0), "a colour without a key");
    while (row->resource && item.chars.compare(at, 2, row->key) != 0) row++;
    if (!row->resource) Report(item.place(at), "no colour key \"%s\"", item.chars.substr(at, 2).c_str());
    size_t colour = item.chars.find_first_not_of(' ', at + 2);
    if (colour == item.chars.npos) return Report(item.place(at), "a key without a colour");
    if (!IsColour(item.chars.substr(colour)))
        Report(item.place(colour), "\"%s\" is no colour", item.chars.c_str() + colour);
}

static void ReadColours(const Reading *r) {
    for (const Text &item : SplitList(WantList(r, TakeList))) CheckColour(item);
}

// Behind the text: colours of a picture, or accelerator text and accelerator.
static void ReadLabel(const Reading *r) {
    char close;
    Text label = TakeValue(r->cursor, &close);
    r->args->flLabel = true;
    r->args->label = label;
    if (r->mode & ARGS_RAW_LABEL) return WantClosed(r, close);
    if (label.at(0) == '~') Report(label.place(0), "no character in front of '~'");
    if (label.at(0) == '@') {
        std::string file = label.chars.substr(1);
        if (!std::filesystem::exists(std::filesystem::path(StageDir) / file))
            Report(label.place(0), "there is no picture \"%s\"", file.c_str());
        while (close == ',') CheckColour(TakeValue(r->cursor, &close));
    }
    for (int more = 2; more > 0 && close == ','; more--) TakeValue(r->cursor, &close);
    WantClosed(r, close);
}

static void ReadGroup(const Reading *r) {
    int slot = isdigit(static_cast<unsigned char>(r->cursor->peek())) ? r->cursor->peek() - '0' : 0;
    r->cursor->next();
    if (!(r->mode & ARGS_PART)) Report(r->place, "a group, but the object has one widget");
    if (slot == 0) return;
    TakeUpTo(r->cursor, ">");
    if (r->cursor->end()) Report(r->place, "no '>' behind the group");
    r->cursor->next();
}

static void ReadMacro(const Reading *r) {
    static int depth;
    int number = TakeNumber(r->cursor);
    auto found = MacroTexts.find(number);
    if (found == MacroTexts.end()) return Report(r->place, "macro %d is not defined", number);
    if (depth == XMT_CALLS) return Report(r->place, "macro %d uses itself", number);
    if (!CountMacroUse(r->place, number)) return;
    Scan body{PlaceBody(found->second, r->place, number)};
    depth++;
    ReadArguments(&body, r->mode | ARGS_NO_NAME, r->args);
    depth--;
    r->args->end = '\0';
}

static void ReadAttachments(const Reading *r) {
    for (const Text &item : SplitList(WantList(r, TakeList))) r->args->attachments.push_back(item);
}

static void ReadOne(const Reading *r, const XmtArgRow *row) {
    Args *args = r->args;
    switch (row->kind) {
    case XMT_ARG_NOTHING:
    case XMT_ARG_END:
    case XMT_ARG_HORIZONTAL:
    case XMT_ARG_VERTICAL: break;
    case XMT_ARG_NUMBER:
    case XMT_ARG_PIXELS: WantNumbers(r, row->second); break;
    case XMT_ARG_FLAG: WantFlags(r, row->second); break;
    case XMT_ARG_LETTER: WantLetter(r, row->second); break;
    case XMT_ARG_ALIGNMENT: WantLetter(r, "l0c1r2"); break;
    case XMT_ARG_SIZE: WantNumbers(r, true); break;
    case XMT_ARG_ID: ReadId(r); break;
    case XMT_ARG_FONT: WantFont(r); break;
    case XMT_ARG_KEYS: WantText(r); break;
    case XMT_ARG_MACRO: ReadMacro(r); break;
    case XMT_ARG_LIST: args->flList = true, args->list = WantList(r, TakeList); break;
    case XMT_ARG_LABEL: ReadLabel(r); break;
    case XMT_ARG_FORMAT: args->format = WantList(r, TakeUnescaped); break;
    case XMT_ARG_ATTACHMENTS: ReadAttachments(r); break;
    case XMT_ARG_HIDE: args->flHide = true; break;
    case XMT_ARG_COLOURS: ReadColours(r); break;
    case XMT_ARG_TEXT:
    case XMT_ARG_TITLE: WantList(r, TakeUnescaped); break;
    case XMT_ARG_ICON: WantList(r, TakeList); break;
    case XMT_ARG_PARENT: args->flParent = true, WantObjectNow(args->parent = WantText(r)); break;
    case XMT_ARG_SOURCE: WantObjectNow(WantText(r)); break;
    case XMT_ARG_GROUP: ReadGroup(r); break;
    case XMT_ARG_CALLBACKS: args->callbacks = WantList(r, TakeUnescaped); break;
    case XMT_ARG_REMOVED: WantWords(WantList(r, TakeUnescaped), ",ok,cancel,help,"); break;
    case XMT_ARG_DIALOG_TYPE: WantWords(WantText(r), ",?,i,"); break;
    }
}

static void CheckCallbacks(const Text &keys) {
    for (const Text &key : SplitList(keys))
        if (!key.empty() && key.chars != "tab" && !XmtFindToken(key.chars.c_str(), pCBKeys))
            Report(key.place(0), "no callback \"%s\"", key.chars.c_str());
}

static void ReportUnknown(const Reading *r) {
    const char *token = r->token.c_str();
    if (r->token.size() > 1 && strchr("{};", token[0]))
        return Report(r->place, "'%c' wants white space in front of '%c'", token[0], token[1]);
    if (r->token.size() > 1 && strchr("{};", r->token.back()))
        return Report(r->place, "\"%s\": the '%c' is lost in an unknown argument", token, r->token.back());
    Report(r->place, "unknown argument \"%s\"", token);
}

static bool WantsValue(XmtArgKind kind) {
    switch (kind) {
    case XMT_ARG_NOTHING:
    case XMT_ARG_END:
    case XMT_ARG_HORIZONTAL:
    case XMT_ARG_VERTICAL:
    case XMT_ARG_MACRO:
    case XMT_ARG_HIDE:
    case XMT_ARG_GROUP: return false;
    default: return true; // all others
    }
}

// Without its parenthesis an argument takes what follows all the same.
static void ReadKnown(const Reading *r, const XmtArgRow *row) {
    bool flLost = WantsValue(row->kind) && r->cursor->peek() != '(';
    if (flLost) Report(r->place, "%s wants a value in parentheses", r->token.c_str());
    Muted += flLost;
    ReadOne(r, row);
    Muted -= flLost;
}

void ReadArguments(Scan *cursor, int mode, Args *args) {
    if (!(mode & ARGS_NO_NAME)) args->name = TakeWord(cursor);
    for (cursor->skipSpace(); !cursor->end(); cursor->skipSpace()) {
        Reading r = {cursor, args, mode, "", cursor->place()};
        const char *position = cursor->text.chars.c_str() + cursor->at;
        cursor->at += static_cast<size_t>(XmtGetArgToken(&r.token, position) - position);
        const XmtArgRow *row = XmtFindArg(r.token.c_str());
        if (row && row->kind == XMT_ARG_END) {
            args->end = r.token[0];
            cursor->at -= args->end != ';';
            break;
        }
        if (row)
            ReadKnown(&r, row);
        else if (!r.token.empty())
            ReportUnknown(&r);
        if (cursor->peek() == '(') TakeList(cursor);
    }
    CheckCallbacks(args->callbacks);
}

// ---- compounds

static void CopyThrough(Scan *cursor, Text *out) {
    size_t end = cursor->text.chars.find(')', cursor->at);
    end = end == std::string::npos ? cursor->text.chars.size() : end + 1;
    out->add(cursor->text.part(cursor->at, end));
    cursor->at = end;
}

static void CollectGroup(Scan *cursor, Parts *parts) {
    Place place = cursor->place();
    cursor->next();
    int slot = cursor->peek() - '0';
    if (slot < 0 || slot > 9) Report(place, "'<' wants the number of a group");
    if (slot < 0 || slot > 9) slot = 0;
    cursor->next();
    if (cursor->peek() && !strchr(" >", cursor->peek()))
        Report(cursor->place(), "the character behind a group's number is lost");
    Text text = TakeUpTo(cursor, ">");
    if (cursor->end()) Report(place, "no '>' behind the group");
    cursor->next();
    if (!text.empty()) text.chars[0] = ' ';
    if (slot == 0) return parts->slots[0].add(text);
    if (parts->flSlot[slot]) Report(place, "a second group %d", slot);
    parts->flSlot[slot] = true;
    parts->slots[slot] = text;
    parts->places[slot] = place;
}

static void CollectPart(Scan *cursor, Parts *parts, char letter) {
    Place place = cursor->place();
    char close;
    cursor->next();
    Text text = letter == 'l' ? TakeValue(cursor, &close) : TakeList(cursor, &close);
    if (close == ',') Report(place, "l(...): too many values for a compound");
    if (close == '\0') Report(place, "%c(...): no ')' behind its value", letter);
    if (letter == 'l') parts->flLabel = !text.empty(), parts->label = text;
    if (letter == 'L') parts->flList = true, parts->list = text;
    if (letter == 'f') parts->format = text;
}

static void CollectOne(Scan *cursor, Parts *parts) {
    char ch = cursor->peek();
    Text *general = &parts->slots[0];
    if (ch == '<') return CollectGroup(cursor, parts);
    if (ch == 'F' || ch == 'm') return CopyThrough(cursor, general);
    if (strchr("lLf", ch) && cursor->text.at(cursor->at + 1) == '(') return CollectPart(cursor, parts, ch);
    int count = ch == '\\' && cursor->text.at(cursor->at + 1) ? 2 : 1;
    general->add(cursor->text.part(cursor->at, cursor->at + count));
    cursor->at += count;
}

void CollectParts(Scan *cursor, Parts *parts) {
    Place place = cursor->place();
    parts->name = TakeWord(cursor);
    while (!cursor->end() && cursor->peek() != ';' && cursor->peek() != '{') CollectOne(cursor, parts);
    parts->end = cursor->peek();
    if (cursor->end()) Report(place, "\"%s\": neither ';' nor '{' ends it", parts->name.chars.c_str());
    cursor->skip(';');
}

void ReadPart(const Parts &parts, int slot, Args *args) {
    Scan cursor{parts.slots[0]};
    cursor.text.add(' ', cursor.text.place(cursor.text.chars.size()));
    if (slot) cursor.text.add(parts.slots[slot]);
    ReadArguments(&cursor, ARGS_NO_NAME | ARGS_PART, args);
}

// ---- macros

Text PlaceBody(const Text &body, const Place &place, int number) {
    Text text;
    for (char ch : body.chars) text.add(ch, {place.line, place.column, number});
    return text;
}

// Text up to the end character with its escapes translated.
static Text TakeEscaped(Scan *cursor, char end) {
    Text text;
    while (!cursor->end() && cursor->peek() != end) {
        bool flEscape = cursor->skip('\\');
        Place where = cursor->place();
        if (!cursor->end()) text.add(flEscape ? GetEscapedValue(cursor->next()) : cursor->next(), where);
    }
    cursor->skip(end);
    return text;
}

struct BodyReading {
    Scan body, arguments;
    int wanted, number; // parameters met; the macro's number
    std::vector<Text> saved;
    Text out;
};

static void Save(BodyReading *r, const Text &value) {
    if (value.chars.size() >= XMT_SAVED_VALUE_SIZE)
        Report(value.place(0), "macro %d keeps 39 characters of \"%s\"", r->number, value.chars.c_str());
    if (r->saved.size() < XMT_SAVED_VALUES) r->saved.push_back(value.part(0, XMT_SAVED_VALUE_SIZE - 1));
}

// Behind an '&'; false if it means nothing.
static bool ExpandValue(BodyReading *r) {
    char ch = r->body.text.at(r->body.at + 1);
    size_t n = static_cast<size_t>(ch - '0');
    if (ch == '*')
        Save(r, TakeEscaped(&r->arguments, ',')), r->wanted++;
    else if (ch == '\'')
        r->body.at += 2, Save(r, TakeEscaped(&r->body, '\'')), r->body.at -= 2;
    else if (n > 9 || r->saved.empty())
        return false;
    else if (n < r->saved.size())
        r->out.add(r->saved[n]);
    r->body.at += 2;
    return true;
}

static void ExpandAll(BodyReading *r) {
    while (!r->body.end()) {
        if (r->body.peek() == '&' && ExpandValue(r)) continue;
        if (r->body.skip('*')) {
            r->out.add(TakeEscaped(&r->arguments, ','));
            r->wanted++;
            continue;
        }
        if (r->body.peek() == '\\' && r->body.text.at(r->body.at + 1)) r->body.at++;
        Place where = r->body.place();
        r->out.add(r->body.next(), where);
    }
}

Text ExpandBody(const Text &body, const Text &arguments, const Place &place, int number) {
    BodyReading r = {{PlaceBody(body, place, number)}, {arguments}, 0, number, {}, {}};
    int given = static_cast<int>(SplitList(arguments).size());
    ExpandAll(&r);
    if (given != r.wanted) Report(place, "macro %d takes %d arguments, not %d", number, r.wanted, given);
    return r.out;
}

// A body that is read as it stands: its '*' are calls, and those without a number mistakes.
Text PlainBody(const Text &body, const Place &place, int number) {
    size_t at = 0;
    while ((at = body.chars.find('*', at)) != std::string::npos) {
        bool flCall = isdigit(static_cast<unsigned char>(body.at(at + 1)));
        if (!flCall && (at == 0 || body.chars[at - 1] != '\\')) break;
        at++;
    }
    if (at != std::string::npos) Report(place, "macro %d is called without arguments", number);
    return PlaceBody(body, place, number);
}

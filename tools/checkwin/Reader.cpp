#include "tools/checkwin/Reader.h"

#include "tools/checkwin/Args.h"
#include "tools/checkwin/Build.h"
#include "tools/checkwin/Objects.h"
#include "tools/checkwin/Report.h"
#include "xmt/XmtNew.h"

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>

static std::vector<Scan> Calls; // the description, and the macros that are being read
static std::string Done;
static bool flStopped; // a brace too many ended the description
static int Blocks;     // open, files among them

static Scan *In() {
    return &Calls.back();
}

static void Pop() {
    while (In()->end() && Calls.size() > 1) Calls.pop_back();
}

// ---- macros

static void DefineMacro(const Place &place) {
    int number = atoi(In()->text.chars.c_str() + In()->at);
    for (int digits = number <= 9 ? 1 : 2; digits > 0 && !In()->end(); digits--) In()->at++;
    Text body = TakeUpTo(In(), "\n");
    In()->next();
    if (number < 0 || number >= XMT_MACROS)
        return Report(place, "a macro's number is 0 to 99, not %d", number);
    MacroTexts[number] = body;
}

static void CallMacro(const Place &place) {
    size_t start = In()->at;
    int number = TakeNumber(In());
    bool flArguments = In()->at > start && In()->text.at(In()->at - 1) == '(';
    auto found = MacroTexts.find(number);
    if (found == MacroTexts.end()) return Report(place, "macro %d is not defined", number);
    if (Calls.size() > XMT_CALLS) return Report(place, "macro %d: more than %d calls", number, XMT_CALLS);
    if (!CountMacroUse(place, number)) return;
    if (!flArguments) {
        Calls.push_back({PlainBody(found->second, place, number)});
        return;
    }
    char close;
    Text arguments = TakeUnescaped(In(), &close);
    if (!close) Report(place, "macro %d: no ')' behind the arguments", number);
    Calls.push_back({ExpandBody(found->second, arguments, place, number)});
}

// ---- statements

struct Level {
    int parent = -1;     // of what is made here
    int object = -1;     // the current one
    bool flDead = false; // behind an unknown word: what follows is not looked at closely
};

static void ReadLevel(int parent, bool flBlock, const Place &open);

static Text ReadKeyValue() {
    char close;
    Place place = In()->place();
    Text value = TakeValue(In(), &close);
    if (close != ')') Report(place, "no ')' behind the value");
    return value;
}

static void SetParent(Level *level) {
    Text name = ReadKeyValue();
    int object = FindObject(name.chars);
    if (object < 0) Report(name.place(0), "\"%s\" is no object so far", name.chars.c_str());
    if (object >= 0) level->parent = object;
    level->object = object;
}

static void ReadKnownObject(Level *level) {
    Text name = TakeWord(In());
    level->object = FindObject(name.chars);
    if (level->object < 0) Report(name.place(0), "\"%s\" is no object so far", name.chars.c_str());
}

static void ChangeObject(Level *level) {
    Args args;
    ReadKnownObject(level);
    ReadArguments(In(), ARGS_NO_NAME, &args);
}

static void RunKey(Level *level, const std::string &key, int row) {
    size_t start = In()->at;
    switch (Objs[row].kind) {
    case XMT_KIND_PARENT: SetParent(level); break;
    case XMT_KIND_ID: NextId = atoi(ReadKeyValue().chars.c_str()), level->object = -1; break;
    case XMT_KIND_SELECT: ReadKnownObject(level); break;
    case XMT_KIND_CHANGE: ChangeObject(level); break;
    default:
        Scan name{In()->text, start};
        Done += key + " " + TakeWord(&name).chars + "\n";
        level->object = BuildObject(In(), Objs[row], level->parent);
    }
    if (level->parent < 0 && Objs[row].flParent) level->parent = level->object;
}

static void EndKey(Level *level, std::string *key, const Place &place) {
    if (key->empty()) return;
    int row = XmtFindToken(key->c_str(), ObjKeys);
    if (row) level->flDead = false;
    if (!row && !level->flDead) {
        Report(place, "unknown keyword \"%s\"", key->c_str());
        level->flDead = true;
    }
    if (!row) level->object = -1;
    if (row) RunKey(level, *key, row);
    key->clear();
}

// False, and reported, if it is one too many; else the caller counts it off again.
static bool CountBlock(const Place &place) {
    if (Blocks == XMT_BLOCKS) Report(place, "more than %d blocks or files within each other", XMT_BLOCKS);
    if (Blocks == XMT_BLOCKS) return false;
    Blocks++;
    return true;
}

static void ReadBlock(Level *level, const Place &place) {
    level->flDead = false;
    if (!CountBlock(place)) return;
    ReadLevel(level->object, true, place);
    Blocks--;
}

// A file is a description of its own: neither its blocks nor its macro calls go on behind it.
static void ReadFile(const std::string &name, int parent, const Place &place) {
    std::ifstream file(name);
    if (!file) return Report(place, "the file \"%s\" can't be read", name.c_str());
    if (!CountBlock(place)) return;
    std::vector<Scan> calls;
    std::string source = SourceName();
    std::string text(std::istreambuf_iterator<char>(file), {});
    text.resize(strlen(text.c_str()));
    calls.swap(Calls);
    Calls = {{PlaceText(text)}};
    BeginSource(name);
    ReadLevel(parent, false, {});
    Blocks--;
    BeginSource(source);
    Calls.swap(calls);
    flStopped = false;
}

static void ReadComment(const Level &level, const Place &place) {
    static const std::string word = "include";
    Text line = TakeUpTo(In(), "\n");
    if (line.chars.compare(0, word.size(), word) != 0) return;
    std::string name = line.chars.substr(std::min(word.size() + 1, line.chars.size()));
    name.resize(std::min(name.find_first_of(" \t"), name.size()));
    ReadFile(name, level.parent, place);
}

static void ReadStray(Level *level, const Place &place, char ch) {
    bool flCall = ch == '\\' && In()->peek() == '*';
    if (ch == ';') level->flDead = false;
    if (ch != ';' && !flCall && !level->flDead) Report(place, "'%c' means nothing here", ch);
}

static void ReadChar(Level *level, std::string *key, Place *keyPlace, char ch, const Place &place) {
    switch (ch) {
    case '{': return ReadBlock(level, place);
    case '.': return DefineMacro(place);
    case '*': return CallMacro(place);
    case '#': return ReadComment(*level, place);
    case '(':
        if (key->empty()) return ReadStray(level, place, ch);
        *key += ch;
        return EndKey(level, key, *keyPlace);
    default: break; // part of a word, or behind it
    }
    if (XmtIsSpace(ch)) {
        if (ch == '\n' && key->empty()) level->flDead = false;
        return EndKey(level, key, *keyPlace);
    }
    if (!isalnum(static_cast<unsigned char>(ch))) return ReadStray(level, place, ch);
    if (key->empty()) *keyPlace = place;
    *key += ch;
}

static void ReadLevel(int parent, bool flBlock, const Place &open) {
    Level level;
    std::string key;
    Place keyPlace, place;
    level.parent = parent;
    Pop();
    while (!In()->end() && !flStopped) {
        place = In()->place();
        char ch = In()->next();
        if (ch == '}' && flBlock) return;
        if (ch == '}') {
            flStopped = true;
            return Report(place, "this '}' closes nothing: the description ends here");
        }
        ReadChar(&level, &key, &keyPlace, ch, place);
        Pop();
    }
    if (!key.empty()) Report(keyPlace, "\"%s\": a keyword wants white space behind it", key.c_str());
    if (flBlock && !flStopped) Report(open, "this block is not closed");
}

std::string ReadDescription(const Text &text) {
    Calls = {{text}};
    Done.clear();
    flStopped = false;
    MacroUses = Blocks = 0;
    ReadLevel(FindMainWindow(), false, {});
    return Done;
}

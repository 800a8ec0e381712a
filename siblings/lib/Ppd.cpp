// Reading a PPD file line by line: a keyword, a name, a text, a value.
#include "siblings/lib/Ppd.h"

#include "common/Words.h"
#include "siblings/lib/Files.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <set>
#include <unordered_map>

static const char NameMarks[] = "_-.";
static const char ChoiceMarks[] = "_-.+";

struct RuleWords { // of a rule whose options may come later in the file
    std::string option[2], choice[2];
};

struct PpdReader {
    Ppd &ppd;
    std::unordered_map<std::string, size_t> places; // of the options by name
    std::vector<RuleWords> rules;
    std::string group;
};

// ---- Words and texts

static bool IsWord(std::string_view text, const char *marks) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [=](char ch) {
        unsigned char byte = static_cast<unsigned char>(ch);
        return byte != 0 && byte < 128 && (isalnum(byte) || strchr(marks, byte));
    });
}

static std::string_view SkipBlanks(std::string_view text) {
    text.remove_prefix(std::min(text.size(), text.find_first_not_of(" \t")));
    return text;
}

static bool IsHexRun(std::string_view digits) {
    return !digits.empty() && digits.size() % 2 == 0 &&
           std::all_of(digits.begin(), digits.end(),
                       [](char ch) { return isxdigit(static_cast<unsigned char>(ch)); });
}

// A text may spell bytes in hexadecimal: "Gr<FC>n".
static std::string DecodeText(std::string_view text) {
    std::string decoded;
    while (!text.empty()) {
        decoded += TakeUpTo(text, "<");
        size_t end = text.find('>');
        std::string_view digits = end == text.npos ? "" : text.substr(1, end - 1);
        if (!IsHexRun(digits)) {
            decoded += text.substr(0, 1);
            text.remove_prefix(std::min<size_t>(text.size(), 1));
            continue;
        }
        for (; !digits.empty(); digits.remove_prefix(2))
            decoded += static_cast<char>(strtol(std::string(digits.substr(0, 2)).c_str(), nullptr, 16));
        text.remove_prefix(end + 1);
    }
    return decoded;
}

// "/Text" in front of a colon, which it takes as well; the name where there is none.
static std::string TakeText(std::string_view &rest, std::string_view name) {
    std::string_view text = TakeUpTo(rest, ":");
    if (rest.starts_with(':')) rest.remove_prefix(1);
    std::string decoded = text.starts_with('/') ? DecodeText(text.substr(1)) : "";
    return decoded.find_first_not_of(" \t") == decoded.npos ? std::string(name) : decoded;
}

// ---- Statements

// *OpenUI *NAME/Text: KIND. Whatever follows up to the end of the file may add to the option, so that a
// missing *CloseUI does no harm. The page region always follows the page size.
static void ReadOpenUi(PpdReader &reader, std::string_view rest) {
    rest = SkipBlanks(rest);
    if (!rest.starts_with('*')) return;
    rest.remove_prefix(1);
    std::string name(TakeUpTo(rest, "/: \t"));
    rest = SkipBlanks(rest);
    std::string text = TakeText(rest, name);
    rest = SkipBlanks(rest);
    bool flPick = rest.starts_with("PickOne") || rest.starts_with("Boolean");
    if (!IsWord(name, NameMarks) || (!flPick && !rest.starts_with("PickMany"))) return;
    if (!reader.places.try_emplace(name, reader.ppd.options.size()).second) return;
    reader.ppd.options.push_back({name, text, reader.group, "", {}, flPick && name != "PageRegion", -1});
}

// *OpenGroup: NAME/Text
static void ReadOpenGroup(PpdReader &reader, std::string_view rest) {
    if (rest.starts_with(':')) rest.remove_prefix(1);
    rest = SkipBlanks(rest);
    std::string_view name = TakeUpTo(rest, "/:");
    reader.group = TakeText(rest, name);
}

static void ReadCloseGroup(PpdReader &reader, std::string_view) {
    reader.group.clear();
}

// *UIConstraints: *NAME CHOICE *NAME CHOICE, where each choice may be left out
static void ReadRule(PpdReader &reader, std::string_view rest) {
    RuleWords words;
    int side = -1;
    if (rest.starts_with(':')) rest.remove_prefix(1);
    for (rest = SkipBlanks(rest); !rest.empty(); rest = SkipBlanks(rest)) {
        std::string_view word = TakeUpTo(rest, " \t");
        if (word.starts_with('*') && side < 1)
            words.option[++side] = word.substr(1);
        else if (side >= 0 && words.choice[side].empty())
            words.choice[side] = word;
        else
            return;
    }
    if (side == 1) reader.rules.push_back(words);
}

// *ModelName: "TEXT"; the first one counts.
static void ReadModel(PpdReader &reader, std::string_view rest) {
    size_t first = rest.find('"');
    if (first == rest.npos || !reader.ppd.model.empty()) return;
    rest.remove_prefix(first + 1);
    reader.ppd.model = rest.substr(0, rest.find('"'));
}

// *NAME CHOICE/Text: VALUE
static void ReadChoice(PpdReader &reader, const std::string &name, std::string_view rest) {
    auto place = reader.places.find(name);
    if (place == reader.places.end()) return;
    rest = SkipBlanks(rest);
    std::string choice(TakeUpTo(rest, "/: \t"));
    rest = SkipBlanks(rest);
    if (!(rest.starts_with('/') || rest.starts_with(':')) || !IsWord(choice, ChoiceMarks)) return;
    if (!reader.ppd.offered.insert(name + "=" + choice).second) return;
    reader.ppd.options[place->second].choices.push_back({choice, TakeText(rest, choice)});
}

// *DefaultNAME: CHOICE
static void ReadInitial(PpdReader &reader, const std::string &name, std::string_view rest) {
    auto place = reader.places.find(name);
    if (place == reader.places.end() || !rest.starts_with(':')) return;
    rest = SkipBlanks(rest.substr(1));
    reader.ppd.options[place->second].initial = TakeUpTo(rest, "/ \t");
}

static constexpr struct {
    const char *keyword;
    void (*read)(PpdReader &reader, std::string_view rest);
} Statements[] = {
    {"OpenUI", ReadOpenUi},         {"JCLOpenUI", ReadOpenUi},   {"OpenGroup", ReadOpenGroup},
    {"CloseGroup", ReadCloseGroup}, {"UIConstraints", ReadRule}, {"ModelName", ReadModel},
};

static void ReadStatement(PpdReader &reader, std::string_view line) {
    static const std::string Default = "Default";
    if (!line.starts_with('*')) return;
    line.remove_prefix(1);
    std::string keyword(TakeUpTo(line, ": \t"));
    for (const auto &statement : Statements)
        if (keyword == statement.keyword) return statement.read(reader, line);
    if (keyword.starts_with(Default)) ReadInitial(reader, keyword.substr(Default.size()), line);
    ReadChoice(reader, keyword, line);
}

static void FindRuleOptions(PpdReader &reader) {
    for (const RuleWords &words : reader.rules) {
        auto left = reader.places.find(words.option[0]), right = reader.places.find(words.option[1]);
        if (left == reader.places.end() || right == reader.places.end() || left == right) continue;
        reader.ppd.rules.push_back({{left->second, words.choice[0]}, {right->second, words.choice[1]}});
    }
}

void ReadPpdText(std::string_view text, Ppd &ppd) {
    PpdReader reader = {ppd, {}, {}, ""};
    for (std::string_view line; TakePlainLine(text, line);) ReadStatement(reader, line);
    FindRuleOptions(reader);
}

// A file without the mark in its first line is refused, whatever else it may be.
std::string ReadPpd(const std::string &path, Ppd &ppd) {
    std::string text, error = ReadWholeFile(path, PPD_MAX, text);
    if (!error.empty()) return error;
    if (!text.starts_with("*PPD-Adobe")) return path + " is no PPD file";
    ReadPpdText(text, ppd);
    return "";
}

// ---- Rules

// A rule without a choice means that the option is on at all.
static bool IsAt(const Ppd &ppd, const PpdSide &side) {
    const PpdOption &option = ppd.options[side.option];
    if (!option.flPick || option.chosen < 0) return false;
    const std::string &name = option.choices[static_cast<size_t>(option.chosen)].name;
    return side.choice.empty() ? name != "None" && name != "False" : name == side.choice;
}

std::vector<const PpdRule *> BrokenRules(const Ppd &ppd, size_t limit, size_t &count) {
    std::set<std::pair<size_t, size_t>> told;
    std::vector<const PpdRule *> broken;
    for (const PpdRule &rule : ppd.rules) {
        if (!IsAt(ppd, rule.left) || !IsAt(ppd, rule.right)) continue;
        if (!told.insert(std::minmax(rule.left.option, rule.right.option)).second) continue;
        if (broken.size() < limit) broken.push_back(&rule);
    }
    count = told.size();
    return broken;
}

std::string ReadPpdFile(const std::string &name, std::string_view &text) {
    static std::string lastName, lastText;
    if (name.empty() || name != lastName) {
        lastName.clear();
        std::string error = ReadWholeFile("ppd/" + name, PPD_MAX, lastText);
        if (!error.empty()) return error;
        lastName = name;
    }
    text = lastText;
    return "";
}

// Texts of a PPD file as the faces of the dialogue show them.
#include "siblings/prnpnxxtty/Shown.h"

#include "common/NlsUtils.h"
#include "common/Terminal.h"

#include <algorithm>
#include <cctype>
#include <iterator>

// At the terminal label and choice stay in one line.
const Look &TerminalLook() {
    static const Look look = {
        .flLatin = TestUtf8Output(), .flMenu = true, .label = 36, .choice = 29, .model = 60};
    return look;
}
const Look WindowLook = {.flLatin = true, .flMenu = false, .label = 50, .choice = 44, .model = 60};

enum { BROKEN_MAX = 4 };
enum { FIRST_LETTER = 0xC0, FIRST_LATIN = 0xA0, LATIN_END = 0x100 };

std::string FeatureText(int number) {
    return NlsText(pDrvCoreDB, FEATURE_SET, number);
}

// ---- Characters

// Letters of Latin 1 from 0xC0 on in ASCII, which every terminal can show.
static constexpr const char *Letters[] = {
    "A", "A", "A", "A", "Ae", "A", "Ae", "C", "E", "E", "E", "E", "I",  "I", "I",  "I",  //
    "D", "N", "O", "O", "O",  "O", "Oe", "x", "O", "U", "U", "U", "Ue", "Y", "Th", "ss", //
    "a", "a", "a", "a", "ae", "a", "ae", "c", "e", "e", "e", "e", "i",  "i", "i",  "i",  //
    "d", "n", "o", "o", "o",  "o", "oe", "/", "o", "u", "u", "u", "ue", "y", "th", "y",
};
static_assert(std::size(Letters) == 0x100 - FIRST_LETTER);

static unsigned char ByteAt(const std::string &text, size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
}

// The code of the character beyond ASCII that begins at this place, which moves to its last byte; 0 for one
// beyond two bytes. Files say what encoding they have, but not all are right: bytes that are UTF-8 are hardly
// meant as anything else.
static unsigned TakeCode(const std::string &text, size_t &at) {
    unsigned code = ByteAt(text, at);
    size_t first = at;
    while (code >= FIRST_LETTER && (ByteAt(text, at + 1) & 0xC0) == 0x80) at++;
    if (at == first + 1 && code < 0xE0) return (code & 0x1F) << 6 | (ByteAt(text, at) & 0x3F);
    return at > first ? 0 : code;
}

static std::string LetterText(unsigned code, const Look &look) {
    if (look.flLatin && code >= FIRST_LATIN && code < LATIN_END)
        return std::string(1, static_cast<char>(code));
    return !look.flLatin && code >= FIRST_LETTER && code < LATIN_END ? Letters[code - FIRST_LETTER] : "?";
}

// The menu of the terminal reads commas, backslashes and a tilde in front; windows take labels as they are.
static char PlainChar(char ch, const Look &look) {
    unsigned char byte = static_cast<unsigned char>(ch);
    if (byte < ' ' || byte == 127) return ' ';
    if (!look.flMenu) return ch;
    return ch == ',' ? ';' : ch == '\\' ? '/' : ch;
}

std::string CleanText(const std::string &text, size_t limit, const Look &look) {
    std::string clean;
    for (size_t at = 0; at < text.size(); at++) {
        if (ByteAt(text, at) >= 0x80)
            clean += LetterText(TakeCode(text, at), look);
        else
            clean += PlainChar(text[at], look);
    }
    clean.erase(0, std::min(clean.size(), clean.find_first_not_of(' ')));
    clean.resize(std::min(clean.size(), limit));
    clean.erase(clean.find_last_not_of(' ') + 1);
    if (look.flMenu && clean.starts_with('~')) clean[0] = '-';
    return clean;
}

// ---- Options and choices

static std::string ShownText(const std::string &text, const std::string &name, size_t limit,
                             const Look &look) {
    std::string clean = CleanText(text, limit, look);
    return clean.empty() ? CleanText(name, limit, look) : clean;
}

std::string OptionText(const PpdOption &option, const Look &look) {
    return ShownText(option.text, option.name, look.label, look);
}

std::string ChoiceText(const PpdChoice &choice, const Look &look) {
    return ShownText(choice.text, choice.name, look.choice, look);
}

static bool IsBannerOption(const PpdOption &option) {
    std::string name = option.name;
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char ch) { return tolower(ch); });
    return name.find("banner") != name.npos || name.find("separator") != name.npos;
}

bool IsShown(const PpdOption &option, bool flBanner) {
    return option.flPick && !option.choices.empty() && (flBanner || !IsBannerOption(option));
}

// ---- Choices that don't go together

static std::string ChosenText(const PpdOption &option, const Look &look) {
    return ChoiceText(option.choices[static_cast<size_t>(option.chosen)], look);
}

static std::string RuleText(const Ppd &ppd, const PpdRule &rule, const Look &look) {
    const PpdOption &left = ppd.options[rule.left.option], &right = ppd.options[rule.right.option];
    return NlsFmt(FeatureText(TXT_BROKEN).c_str(), "ssss", OptionText(left, look).c_str(),
                  ChosenText(left, look).c_str(), OptionText(right, look).c_str(),
                  ChosenText(right, look).c_str());
}

std::string BrokenText(const Ppd &ppd, const Look &look) {
    size_t count;
    std::string text;
    for (const PpdRule *rule : BrokenRules(ppd, BROKEN_MAX, count)) text += "\n" + RuleText(ppd, *rule, look);
    if (count > BROKEN_MAX)
        text +=
            "\n" + NlsFmt(FeatureText(TXT_MORE_BROKEN).c_str(), "i", static_cast<int>(count) - BROKEN_MAX);
    return text;
}

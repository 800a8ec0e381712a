// The menu of a model's options, made from its PPD file at run time.
#include "siblings/prnpnxxtty/Dialogue.h"

#include "common/NlsUtils.h"
#include "common/utils.h"
#include "menu/Screen.h"
#include "menu/TextMenu.h"
#include "siblings/prnpnxxtty/Settings.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <deque>
#include <iterator>

enum { // texts of set 26
    FEATURE_SET = 26,
    TXT_TITLE = 1,
    TXT_APPLY = 2,
    TXT_CANCEL = 3,
    TXT_LIST = 4,
    TXT_UNSET = 5,
    TXT_LIST_WHICH = 6,
    TXT_NO_OPTIONS = 7,
    TXT_BROKEN = 8,
    TXT_MORE_BROKEN = 9,
    TXT_ALL_THE_SAME = 10,
};
// An item with label and choice stays in one line of the terminal; the list has room for more.
enum { LABEL_MAX = 36, CHOICE_MAX = 29, LISTED_MAX = 70, MODEL_MAX = 60, BROKEN_MAX = 4, LIST_PAGE = 20 };
enum { FIRST_LETTER = 0xC0 };
// Rows of the screen besides the options: four with the title, three of commands, and the prompt.
enum { FRAME_ROWS = 8 };
enum { LAYOUT_WIDE, LAYOUT_NAMES, LAYOUT_DENSE };

struct Dialogue {
    Ppd &ppd;
    const std::string &text; // the settings before
    const std::string &path;
    std::deque<std::string> texts; // of the items, which keep their addresses
    std::vector<TextMenuItem> items;
    std::string title;
    TextMenu menu;
};

static Dialogue *pDialogue; // the one that runs, for the callbacks; writer: RunDialogue

static std::string FeatureText(int number) {
    return NlsText(pDrvCoreDB, FEATURE_SET, number);
}

// ---- Texts of the file, as they may be shown

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

// What stands for the character beyond ASCII that begins at this place, which moves to its last byte. Files
// say what encoding they have, but not all are right: bytes that are UTF-8 are hardly meant as anything else.
static const char *TakeLetter(const std::string &text, size_t &at) {
    unsigned code = ByteAt(text, at);
    size_t first = at;
    while (code >= FIRST_LETTER && (ByteAt(text, at + 1) & 0xC0) == 0x80) at++;
    if (at == first + 1 && code < 0xE0)
        code = (code & 0x1F) << 6 | (ByteAt(text, at) & 0x3F);
    else if (at > first)
        return "?";
    return code >= FIRST_LETTER && code < 0x100 ? Letters[code - FIRST_LETTER] : "?";
}

// Neither control characters, which could drive the terminal, nor what the menu's lists and labels would
// read: commas, backslashes and a tilde in front.
static std::string CleanText(const std::string &text, size_t limit) {
    std::string clean;
    for (size_t at = 0; at < text.size(); at++) {
        unsigned char byte = ByteAt(text, at);
        if (byte >= 0x80)
            clean += TakeLetter(text, at);
        else
            clean += byte < ' ' || byte == 127 ? ' ' : byte == ',' ? ';' : byte == '\\' ? '/' : text[at];
    }
    clean.erase(0, std::min(clean.size(), clean.find_first_not_of(' ')));
    clean.resize(std::min(clean.size(), limit));
    clean.erase(clean.find_last_not_of(' ') + 1);
    if (clean.starts_with('~')) clean[0] = '-';
    return clean;
}

static std::string ShownText(const std::string &text, const std::string &name, size_t limit) {
    std::string clean = CleanText(text, limit);
    return clean.empty() ? CleanText(name, limit) : clean;
}

static std::string OptionText(const PpdOption &option) {
    return ShownText(option.text, option.name, LABEL_MAX);
}

static std::string ChoiceText(const PpdChoice &choice, size_t limit) {
    return ShownText(choice.text, choice.name, limit);
}

// ---- Choices that don't go together

static std::string ChosenText(const PpdOption &option) {
    return ChoiceText(option.choices[static_cast<size_t>(option.chosen)], CHOICE_MAX);
}

static std::string RuleText(const Ppd &ppd, const PpdRule &rule) {
    const PpdOption &left = ppd.options[rule.left.option], &right = ppd.options[rule.right.option];
    return NlsFmt(FeatureText(TXT_BROKEN).c_str(), "ssss", OptionText(left).c_str(), ChosenText(left).c_str(),
                  OptionText(right).c_str(), ChosenText(right).c_str());
}

static std::string BrokenText(const Ppd &ppd) {
    size_t count;
    std::string text;
    for (const PpdRule *rule : BrokenRules(ppd, BROKEN_MAX, count)) text += "\n" + RuleText(ppd, *rule);
    if (count > BROKEN_MAX)
        text +=
            "\n" + NlsFmt(FeatureText(TXT_MORE_BROKEN).c_str(), "i", static_cast<int>(count) - BROKEN_MAX);
    return text;
}

// What is broken stands below the title, where a change of it moves no item.
static void MakeTitle(Dialogue &dialogue) {
    std::string model = CleanText(dialogue.ppd.model, MODEL_MAX), broken = BrokenText(dialogue.ppd);
    dialogue.title = NlsFmt(FeatureText(TXT_TITLE).c_str(), "s", model.c_str());
    if (!broken.empty()) dialogue.title += "\n" + broken;
    dialogue.menu.title = dialogue.title.c_str();
}

// ---- Callbacks

// An option that is at nothing offers that as its first choice, so that it can stay there.
static bool HasUnset(const TextMenuItem &item) {
    const PpdOption *option = static_cast<const PpdOption *>(item.link);
    return static_cast<size_t>(item.count) > option->choices.size();
}

static int ChangeOption(TextMenu *, TextMenuItem *item) {
    PpdOption *option = static_cast<PpdOption *>(item->link);
    option->chosen = static_cast<int>(item->value.i) - HasUnset(*item);
    MakeTitle(*pDialogue);
    return 0;
}

static int ApplyOptions(TextMenu *, TextMenuItem *) {
    Dialogue &dialogue = *pDialogue;
    std::string broken = BrokenText(dialogue.ppd);
    fputs(broken.c_str(), stdout);
    if (!broken.empty() && !PromptYN("%s", FeatureText(TXT_ALL_THE_SAME).c_str())) return 1;
    std::string error = WriteSettings(dialogue.path, MakeSettings(dialogue.ppd, dialogue.text));
    if (!error.empty()) PostMsg("\n%s: %s\n", my_name, error.c_str());
    return !error.empty();
}

static void ListChoices(const TextMenuItem &item) {
    const PpdOption *option = static_cast<const PpdOption *>(item.link);
    int number = 0;
    printf("\n%s\n", item.text);
    if (HasUnset(item)) printf("%4i. %s\n", ++number, FeatureText(TXT_UNSET).c_str());
    for (const PpdChoice &choice : option->choices) {
        if (number > 0 && number % LIST_PAGE == 0) PostMsg("\n");
        printf("%4i. %s\n", ++number, ChoiceText(choice, LISTED_MAX).c_str());
    }
    PostMsg("\n");
}

// "l 3" lists the choices of item 3; "l" asks which.
static int ListOption(TextMenu *menu, TextMenuItem *) {
    char answer[16];
    snprintf(answer, sizeof answer, "%s", pOption);
    if (!answer[0]) PromptUser(FeatureText(TXT_LIST_WHICH).c_str(), answer, sizeof answer);
    for (const TextMenuItem *item = menu->items; item->text; item++)
        if (item->type == ITEM_PICK && item->number == ParseInt(answer)) ListChoices(*item);
    return 1;
}

// ---- The menu

static char *KeepText(Dialogue &dialogue, std::string text) {
    return dialogue.texts.emplace_back(std::move(text)).data();
}

static void AddLine(Dialogue &dialogue, const std::string &text, int type, ItemCall callback) {
    dialogue.items.push_back({.text = KeepText(dialogue, text), .type = type, .callback = callback});
}

static void AddOption(Dialogue &dialogue, PpdOption &option) {
    bool flUnset = option.chosen < 0;
    std::string choices = flUnset ? "_" + FeatureText(TXT_UNSET) : "";
    for (const PpdChoice &choice : option.choices)
        choices += (choices.empty() ? "_" : ",_") + ChoiceText(choice, CHOICE_MAX);
    dialogue.items.push_back({.text = KeepText(dialogue, OptionText(option)),
                              .type = ITEM_PICK,
                              .choices = KeepText(dialogue, choices),
                              .initial = {.i = option.chosen + flUnset},
                              .callback = ChangeOption,
                              .link = &option});
}

static bool IsBannerOption(const PpdOption &option) {
    std::string name = option.name;
    std::transform(name.begin(), name.end(), name.begin(), [](unsigned char ch) { return tolower(ch); });
    return name.find("banner") != name.npos || name.find("separator") != name.npos;
}

// The line between two groups, and the name of the new one.
static void AddGroup(Dialogue &dialogue, const std::string &group, int layout) {
    bool flFirst = dialogue.items.empty();
    if (!flFirst && layout == LAYOUT_WIDE) AddLine(dialogue, "", ITEM_TEXT, nullptr);
    if (!group.empty() && layout != LAYOUT_DENSE)
        AddLine(dialogue, CleanText(group, LABEL_MAX), ITEM_TEXT, nullptr);
}

// The options in the order of the file, with the name of its group above the first of each run.
static void AddOptions(Dialogue &dialogue, bool flBanner, int layout) {
    const std::string *group = nullptr;
    dialogue.items.clear();
    dialogue.texts.clear();
    for (PpdOption &option : dialogue.ppd.options) {
        if (!option.flPick || option.choices.empty() || (IsBannerOption(option) && !flBanner)) continue;
        if (!group || *group != option.group) AddGroup(dialogue, option.group, layout);
        group = &option.group;
        AddOption(dialogue, option);
    }
}

// What would run off the terminal's top can't be read there: then the groups have to do with less.
static void AddWhatFits(Dialogue &dialogue, bool flBanner) {
    int rows = GetTermInfo(nullptr)->height - FRAME_ROWS;
    for (int layout = LAYOUT_WIDE; layout <= LAYOUT_DENSE; layout++) {
        AddOptions(dialogue, flBanner, layout);
        if (static_cast<int>(dialogue.items.size()) <= rows) return;
    }
}

static void AddCommands(Dialogue &dialogue) {
    AddLine(dialogue, "", ITEM_TEXT, nullptr);
    AddLine(dialogue, FeatureText(TXT_LIST), ITEM_ACTION, ListOption);
    AddLine(dialogue, "", ITEM_BAR, nullptr);
    dialogue.items.back().value.i = 2;
    AddLine(dialogue, FeatureText(TXT_APPLY), ITEM_APPLY, ApplyOptions);
    AddLine(dialogue, FeatureText(TXT_CANCEL), ITEM_CANCEL, nullptr);
    dialogue.items.push_back({});
}

void RunDialogue(Ppd &ppd, const std::string &text, const std::string &path, bool flBanner) {
    Dialogue dialogue = {ppd, text, path, {}, {}, "", {}};
    AddWhatFits(dialogue, flBanner);
    if (dialogue.items.empty()) {
        std::string model = CleanText(ppd.model, MODEL_MAX);
        return PostMsg("%s", NlsFmt(FeatureText(TXT_NO_OPTIONS).c_str(), "s", model.c_str()).c_str());
    }
    AddCommands(dialogue);
    dialogue.menu = {.titleMode = TITLE_CENTRE,
                     .items = dialogue.items.data(),
                     .flags = MENU_NO_LEAVE | MENU_HELP | MENU_DENSE};
    pDialogue = &dialogue;
    MakeTitle(dialogue);
    RunMenu(&dialogue.menu, nullptr, 1);
    pDialogue = nullptr;
}

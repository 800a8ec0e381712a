// The menu of a model's options, made from its PPD file at run time.
#include "siblings/prnpnxxtty/Dialogue.h"

#include "common/NlsUtils.h"
#include "common/utils.h"
#include "menu/Screen.h"
#include "menu/TextMenu.h"
#include "siblings/prnpnxxtty/Settings.h"
#include "siblings/prnpnxxtty/Shown.h"

#include <cstdio>
#include <deque>

enum { LISTED_MAX = 70 }; // characters of a choice in the list of them
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

// ---- The title

static std::string ModelText(const Ppd &ppd) {
    return CleanText(ppd.model, TerminalLook().model, TerminalLook());
}

// What is broken stands below the title, where a change of it moves no item.
static void MakeTitle(Dialogue &dialogue) {
    std::string model = ModelText(dialogue.ppd), broken = BrokenText(dialogue.ppd, TerminalLook());
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
    std::string broken = BrokenText(dialogue.ppd, TerminalLook());
    fputs(broken.c_str(), stdout);
    if (!broken.empty() && !PromptYN("%s", FeatureText(TXT_ALL_THE_SAME).c_str())) return 1;
    std::string error = WriteSettings(dialogue.path, MakeSettings(dialogue.ppd, dialogue.text));
    if (!error.empty()) PostMsg("\n%s: %s\n", my_name, error.c_str());
    return !error.empty();
}

static void ListChoices(const TextMenuItem &item) {
    const PpdOption *option = static_cast<const PpdOption *>(item.link);
    Look look = TerminalLook();
    look.choice = LISTED_MAX;
    std::vector<std::string> choices;
    if (HasUnset(item)) choices.push_back(FeatureText(TXT_UNSET));
    for (const PpdChoice &choice : option->choices) choices.push_back(ChoiceText(choice, look));
    ShowChoices(item.text, choices);
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
        choices += (choices.empty() ? "_" : ",_") + ChoiceText(choice, TerminalLook());
    dialogue.items.push_back({.text = KeepText(dialogue, OptionText(option, TerminalLook())),
                              .type = ITEM_PICK,
                              .choices = KeepText(dialogue, choices),
                              .initial = {.i = option.chosen + flUnset},
                              .callback = ChangeOption,
                              .link = &option});
}

// The line between two groups, and the name of the new one.
static void AddGroup(Dialogue &dialogue, const std::string &group, int layout) {
    bool flFirst = dialogue.items.empty();
    if (!flFirst && layout == LAYOUT_WIDE) AddLine(dialogue, "", ITEM_TEXT, nullptr);
    if (!group.empty() && layout != LAYOUT_DENSE)
        AddLine(dialogue, CleanText(group, TerminalLook().label, TerminalLook()), ITEM_TEXT, nullptr);
}

// The options in the order of the file, with the name of its group above the first of each run.
static void AddOptions(Dialogue &dialogue, bool flBanner, int layout) {
    const std::string *group = nullptr;
    dialogue.items.clear();
    dialogue.texts.clear();
    for (PpdOption &option : dialogue.ppd.options) {
        if (!IsShown(option, flBanner)) continue;
        if (!group || *group != option.group) AddGroup(dialogue, option.group, layout);
        group = &option.group;
        AddOption(dialogue, option);
    }
}

// What would run off the terminal's top can't be read there: then the groups have to do with less.
static void AddWhatFits(Dialogue &dialogue, bool flBanner) {
    int rows = GetTermHeight() - FRAME_ROWS;
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
        std::string model = ModelText(ppd);
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

// The choices that settings tell, and the settings that choices make.
#include "siblings/prnpnxxtty/Settings.h"

#include "common/Words.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Queue.h"

#include <algorithm>
#include <unordered_map>

static int FindChoice(const PpdOption &option, const std::string &name) {
    auto at = std::find_if(option.choices.begin(), option.choices.end(),
                           [&](const PpdChoice &choice) { return choice.name == name; });
    return at == option.choices.end() ? -1 : static_cast<int>(at - option.choices.begin());
}

static std::string OptionName(const std::string &line) {
    return line.substr(0, line.find('='));
}

void ChooseSettings(Ppd &ppd, std::string_view text) {
    std::unordered_map<std::string, std::string> told;
    for (std::string_view next; TakePlainLine(text, next);) {
        std::string line(next), name = OptionName(line);
        if (ppd.offered.contains(line)) told[name] = line.substr(name.size() + 1);
    }
    for (PpdOption &option : ppd.options) {
        auto at = told.find(option.name);
        option.chosen = FindChoice(option, at == told.end() ? option.initial : at->second);
    }
}

// What no pick item shows is kept as it was told, but for a page region that would undo the page size.
static std::string OtherSettings(const Ppd &ppd, std::string_view text) {
    std::unordered_set<std::string> others;
    for (const PpdOption &option : ppd.options)
        if (!option.flPick && option.name != "PageRegion") others.insert(option.name);
    std::string settings;
    for (std::string_view next; TakePlainLine(text, next);) {
        std::string line(next);
        if (ppd.offered.contains(line) && others.contains(OptionName(line))) settings += line + "\n";
    }
    return settings;
}

std::string MakeSettings(const Ppd &ppd, std::string_view text) {
    std::string settings;
    for (const PpdOption &option : ppd.options)
        if (option.flPick && option.chosen >= 0)
            settings += option.name + "=" + option.choices[static_cast<size_t>(option.chosen)].name + "\n";
    return settings + OtherSettings(ppd, text);
}

std::string WriteSettings(const std::string &path, const std::string &settings) {
    if (settings.size() > SETTINGS_MAX) return "these are more settings than a queue can keep";
    std::string error = PrepareFile(path, settings, 0644);
    return error.empty() ? CommitFile(path) : error;
}

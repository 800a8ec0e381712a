// The options of a PPD file that a user may choose, read in one pass and without trust in the file.
//
// A setting is a line NAME=CHOICE. So that each can be taken apart again, and be one word of a command line,
// names are words of letters, digits and "_-.", choices may also hold "+"; what has other characters is
// passed over. Texts may hold anything.
#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

enum { PPD_MAX = 4 * 1024 * 1024 };

struct PpdChoice {
    std::string name;
    std::string text; // for the user; the name if the file has none
};

struct PpdOption {
    std::string name;
    std::string text;
    std::string group;   // text of the group it stands in, or empty
    std::string initial; // the model's own choice, as the file tells it
    std::vector<PpdChoice> choices;
    bool flPick = true; // false: takes several choices, or follows another option
    int chosen = -1;    // index of a choice, or -1
};

struct PpdSide { // of a rule: the option is at this choice, or for an empty one switched on
    size_t option;
    std::string choice;
};

struct PpdRule {
    PpdSide left, right; // do not go together
};

struct Ppd {
    std::string model; // as the file spells it, or empty
    std::vector<PpdOption> options;
    std::vector<PpdRule> rules;
    std::unordered_set<std::string> offered; // every NAME=CHOICE
};

// Reads a PPD file of at most PPD_MAX bytes. Empty, or what is wrong with the file in words.
std::string ReadPpd(const std::string &path, Ppd &ppd);
// The same of a text.
void ReadPpdText(std::string_view text, Ppd &ppd);

// The rules that the present choices break, each once although files tell most of them from both sides; at
// most limit of them, and in count how many there are.
std::vector<const PpdRule *> BrokenRules(const Ppd &ppd, size_t limit, size_t &count);

// The text of a file in "ppd", read once in a run: a change asks for it several times. Answers an empty text,
// or what is wrong with the file. The text holds until the next call.
std::string ReadPpdFile(const std::string &name, std::string_view &text);

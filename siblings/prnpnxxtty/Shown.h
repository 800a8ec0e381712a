// What the dialogue shows, at the terminal and in a window: texts of a PPD file, which options are for
// picking, and which choices don't go together.
#pragma once

#include "siblings/lib/Ppd.h"

#include <cstddef>
#include <string>

// Texts of set 26; what begins with WINDOW is for windows alone.
enum {
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
    WINDOW_TITLE = 11,
    WINDOW_NO_OPTIONS = 12,
    WINDOW_ALL_THE_SAME = 13,
    WINDOW_TOO_MANY = 14,
    WINDOW_NO_QUEUES = 15,
    WINDOW_NO_RIGHT = 16,
    WINDOW_STORED = 17,
    WINDOW_NOT_STORED = 18,
    WINDOW_NO_MANUAL = 19,
    WINDOW_NO_QUEUE = 20,
};
std::string FeatureText(int number);

// How a face shows the texts of a file: windows in Latin-1, the terminal without what the menu's lists would
// read, and in ASCII where it may not know more. Limits are in characters.
struct Look {
    bool flLatin;
    bool flMenu;
    size_t label;
    size_t choice;
    size_t model;
};
const Look &TerminalLook(); // of this run's terminal
extern const Look WindowLook;

// No control characters, which could drive the terminal; letters that the face can't show are a '?'.
std::string CleanText(const std::string &text, size_t limit, const Look &look);
std::string OptionText(const PpdOption &option, const Look &look);
std::string ChoiceText(const PpdChoice &choice, const Look &look);

// True if the user may pick the option's choice: those of banner and separator pages with flBanner alone.
bool IsShown(const PpdOption &option, bool flBanner);
// A line for each of the first rules that the choices break, and how many more there are; each behind a line
// feed. Empty for none.
std::string BrokenText(const Ppd &ppd, const Look &look);

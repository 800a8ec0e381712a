// The arguments of objects: each looked up in the reader's own table, its value held against what it wants.
#pragma once

#include "tools/checkwin/Text.h"

#include <map>

extern std::string StageDir;                        // where pictures are looked for
extern std::map<int, Text> MacroTexts;              // bodies
extern int MacroUses;                               // of the description in hand
bool CountMacroUse(const Place &place, int number); // false, and reported, when there are too many

// What of the arguments matters to others. A part that was not there is empty, or its flag clear.
struct Args {
    Text name, label, list, format, callbacks, parent;
    bool flLabel = false, flParent = false, flList = false, flHide = false;
    std::vector<Text> attachments;
    char end = '\0'; // ';', a brace, or NUL for the end of the text
};

enum { ARGS_NO_NAME = 1, ARGS_RAW_LABEL = 2, ARGS_PART = 4 }; // PART: of a compound, whose groups are gone
void ReadArguments(Scan *cursor, int mode, Args *args);

// The arguments of a compound, sorted.
struct Parts {
    Text name, label, list, format;
    Text slots[10]; // 0: the general text
    Place places[10];
    bool flSlot[10] = {};
    bool flLabel = false, flList = false;
    char end = '\0';
};
void CollectParts(Scan *cursor, Parts *parts);
// Reads the text of one widget: general text and a slot (0 for none).
void ReadPart(const Parts &parts, int slot, Args *args);

// Macro calls: the body of N with its parameters replaced. place is the call's.
Text ExpandBody(const Text &body, const Text &arguments, const Place &place, int number);
Text PlainBody(const Text &body, const Place &place, int number); // a call without arguments
// A use among arguments.
Text PlaceBody(const Text &body, const Place &place, int number);

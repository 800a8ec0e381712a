// State formats, conditions and choices: what they do to the items of a menu.
#include "common/MenuState.h"

#include "common/Token.h"
#include "tests/lib/Capture.h"
#include "tests/lib/MenuDump.h"

#include <cstring>
#include <gtest/gtest.h>

// Six items; item 0 is the one that acts. Fresh for each case.
struct StateMenu {
    char choices[32] = "_a,_b,_c";
    char text[MENU_TEXT_SIZE] = "text";
    TextMenuItem items[7] = {
        {.text = "0", .type = ITEM_PICK, .choices = choices},
        {.text = "1", .type = ITEM_PICK, .choices = choices},
        {.text = "2", .type = ITEM_INTEGER, .value = {.i = 7}},
        {.text = "3", .type = ITEM_FLOAT, .value = {.f = 1.5F}},
        {.text = "4", .type = ITEM_REQUIRED, .value = {.s = text}},
        {.text = "5", .type = ITEM_BITS, .choices = choices},
        {},
    };
    TextMenu menu = {.title = "State", .items = items};
};

// States of the items, one digit each, and what differs from the values 7 and 1.5 of items 2 and 3.
static std::string Show(const StateMenu &state) {
    std::string shown;
    for (const TextMenuItem *item = state.items; item->text != nullptr; item++)
        shown += std::to_string(item->state);
    if (state.items[2].value.i != 7) shown += " i" + std::to_string(state.items[2].value.i);
    if (state.items[3].value.f != 1.5F) shown += " f" + std::to_string(state.items[3].value.f).substr(0, 4);
    if (state.items[4].value.s != state.text) shown += " s";
    return shown;
}

struct FormatCase {
    const char *name;
    const char *format;
    const char *values; // that item 0 takes in turn
    const char *states; // behind each
};

static const FormatCase FormatCases[] = {
    {"hide on a hit, show on a miss", "H0{5}", "0 1", "000002|000000"},
    {"several values and targets", "H0|2{1,4.5}", "0 1 2", "020022|000000|020022"},
    {"disable", "N1{4}", "1 0", "000010|000000"},
    {"the last group wins", "H0{4} N*{4}", "0 1", "000010|000010"},
    {"a later miss shows what an earlier hit hid", "H0{4} H1{4}", "0 1", "000000|000020"},
    {"star", "H*{5}", "0 9", "000002|000002"},
    {"a list that does not start with a digit names 0", "H|1{5}", "0 1 2", "000002|000002|000000"},
    {"an unknown letter reads over its targets", "H0{1} Z0{2,x} N0{4}", "0", "020010"},
    {"an empty state list never matches", "H{5}", "0", "000000"},
    {"save and restore", "S1{2.9}", "1 0", "000000 i9|000000"},
    {"the first miss restores the table's 0, the next nothing", "S1{2.9}", "0 1 0",
     "000000 i0|000000 i9|000000 i0"},
    {"pairs, one of a float, one of an address", "S1{2.3,3.2,4.5}", "1 0", "000000 i3 f2.00|000000"},
    {"an index outside the table", "H0{6,99,4}", "0", "000020"},
    {"malformed: no target", "H0{} H0{5}", "0", "000000"},
    {"malformed: no number", "H0{4,x,5} H0{1}", "0", "000020"},
    {"malformed: a pair without its value", "S0{2} N0{4}", "0", "000000 i0"},
    {"cut off", "H0{4,5", "0", "000022"},
    {"only an operation", "H0", "0", "000000"},
    {"no format at all", "", "0", "000000"},
};

TEST(MenuState, AppliesStateFormats) {
    for (const FormatCase &row : FormatCases) {
        StateMenu state;
        state.items[0].format = row.format;
        std::string shown;
        for (const char *at = row.values; *at != '\0'; at += strcspn(at, " "), at += strspn(at, " ")) {
            state.items[0].value.i = atoi(at);
            ProcessStateFormat(&state.menu, 0);
            shown += (shown.empty() ? "" : "|") + Show(state);
        }
        EXPECT_EQ(shown, row.states) << row.name << ": " << row.format;
    }
}

static std::string Called;

// Scans a text of its own, as callbacks do.
static int NoteCall(TextMenu *, TextMenuItem *item) {
    Called += item->text;
    while (GetToken(Called.c_str(), "x") != nullptr && GetToken(nullptr, "x") != nullptr) {
    }
    return 0;
}

struct GroupCase {
    const char *name;
    const char *formats[2]; // of items 0 and 1, whose values are 0
    const char *called;
    const char *states;
};

static const GroupCase GroupCases[] = {
    {"format, callback, then the rest of the outer format", {"P0{1,4} H0{5}", "N0{2}"}, "14", "001002"},
    {"no match", {"P1{1} H0{5}", "N0{2}"}, "", "000002"},
    {"a hidden target runs its callback and not its format", {"H0{1} P0{1}", "N0{2}"}, "1", "020000"},
    {"a target with a format of another language", {"P0{4}", nullptr}, "4", "000000"},
    {"a cycle ends", {"P0{1} H0{5}", "P0{0,1} N0{2}"}, "1", "001002"},
};

TEST(MenuState, RunsGroupsOfTargets) {
    for (const GroupCase &row : GroupCases) {
        StateMenu state;
        for (TextMenuItem &item : state.items) item.callback = NoteCall;
        state.items[0].format = row.formats[0];
        state.items[1].format = row.formats[1];
        state.items[4].format = "H(1,2)H0{2}";
        Called = "";
        ProcessStateFormat(&state.menu, 0);
        EXPECT_EQ(Called, row.called) << row.name;
        EXPECT_EQ(Show(state), row.states) << row.name;
    }
}

TEST(MenuState, LeavesInactiveItemsAlone) {
    StateMenu state;
    state.items[0].format = "H0{5}";
    state.items[0].state = STATE_DISABLED;
    ProcessStateFormat(&state.menu, 0);
    state.items[2].format = "H7{5}"; // not of a pick
    ProcessStateFormat(&state.menu, 2);
    ProcessStateFormat(&state.menu, -1);
    ProcessStateFormat(&state.menu, 6);
    EXPECT_EQ(Show(state), "100000");
}

// ---- conditions

struct ConditionCase {
    const char *condition; // of item 1; items 0 to 3 hold 1, 2, 7, 1.5, and 2 is disabled
    int wanted;
};

static const ConditionCase ConditionCases[] = {
    {"0.1", 1},
    {"0.2", 0},
    {"+1.7", 1},
    {"-1.1", 1},
    {"+0.2", 1},
    {"2.7A", 1},
    {"0.1A", 0},
    {"2.8A", 0},
    {"!0.1", 0},
    {"!!0.1", 1},
    {"!(0.1&2.8)", 1},
    {"0.1&2.7", 1},
    {"0.1&2.8", 0},
    {"0.2|2.7", 1},
    {"0.1|2.7&0.2", 0}, // from left to right
    {"0.1|(2.7&0.2)", 1},
    {"!0.1|2.7", 1}, // ! takes one operand
    {"!0.1&2.7", 0},
    {"0.2&0.1|2.7", 1}, // what is read over ends with its operand
    {"0.1|(0.2&0.2)&2.7A", 1},
    {"((0.1)&(2.7A|0.2))", 1},
    {" 0.1 & 2.7A ", 1},
    {"(0.1", 1},
    {"0.1)&0.2", 1}, // the rest is not read
    {"", 0},
    {"()", 0},
    {"&0.1", 0},
    {"0", 0},
    {"0.", 0},
    {".1", 0},
    {"x.1", 0},
    {"-2.0", 0}, // in front of the table
    {"+5.0", 0}, // behind it
    {"4.0", 0},  // a text holds no value
    {"99999999999.1", 0},
    {"0.99999999999", 0},
};

TEST(MenuState, TestsConditions) {
    for (const ConditionCase &row : ConditionCases) {
        StateMenu state;
        state.items[0].value.i = 1;
        state.items[1].value.i = 2;
        state.items[2].state = STATE_DISABLED;
        EXPECT_EQ(TestStateCondition(&state.menu, row.condition, 1), row.wanted) << row.condition;
    }
    StateMenu state;
    EXPECT_EQ(TestState(&state.menu, "2.7", 0), 1);
    state.items[2].state = STATE_HIDDEN;
    EXPECT_EQ(TestState(&state.menu, "2.7", 0), 2);
    std::string deep = std::string(10000, '(') + "0.0";
    EXPECT_EQ(TestStateCondition(&state.menu, deep.c_str(), 0), 0);
    EXPECT_EQ(TestStateCondition(&state.menu, std::string(10000, '!').append("0.0").c_str(), 0), 1);
}

TEST(MenuState, ChoosesTheSubmenuOfTheFirstCondition) {
    TextMenu menus[3];
    TextMenu *array[] = {&menus[0], &menus[1], &menus[2]};
    StateMenu state;
    state.items[1] = {.text = "Sub", .type = ITEM_SUBMENU, .value = {.ma = array}, .format = "0.0,+1.7,*"};
    EXPECT_EQ(ValidateMenu(&state.menu, 1), &menus[0]);
    state.items[0].value.i = 2;
    EXPECT_EQ(ValidateMenu(&state.menu, 1), &menus[1]);
    state.items[2].value.i = 0;
    EXPECT_EQ(ValidateMenu(&state.menu, 1), nullptr);
    state.items[1].format = "";
    EXPECT_EQ(ValidateMenu(&state.menu, 1), nullptr);
    state.items[1].format = nullptr;
    state.items[1].value.m = &menus[2];
    EXPECT_EQ(ValidateMenu(&state.menu, 1), &menus[2]);
    state.items[1].state = STATE_DISABLED;
    EXPECT_EQ(ValidateMenu(&state.menu, 1), nullptr);
    EXPECT_EQ(ValidateMenu(&state.menu, 0), nullptr);
    EXPECT_EQ(ValidateMenu(&state.menu, 6), nullptr);
}

// ---- choices

struct ChoiceCase {
    const char *name;
    const char *choices;
    int value;
    int hide;
    const char *result; // list, value, current
};

static const ChoiceCase ChoiceCases[] = {
    {"another than the selected", "_a,_b,_c", 0, 1, "_a, b,_c 0 _a"},
    {"the selected moves to the next", "_a,_b,_c", 1, 1, "_a, b,_c 2 _c"},
    {"around the end, past hidden ones", " a,_b,_c", 2, 2, " a,_b, c 1 _b"},
    {"all hidden comes back", " a,_b, c", 1, 1, " a, b, c 1  b"},
    {"outside the list", "_a,_b", 0, 2, "_a,_b 0 none"},
    {"negative", "_a,_b", 0, -1, "_a,_b 0 none"},
    {"value beyond the list", "_a,_b", 5, 0, " a,_b 5 none"},
    {"without markers, empty entries do not count", ",10,,20", 0, 1, ",10,, 0 0 10"},
    {"an escaped comma", "_a\\,b,_c", 0, 1, "_a\\,b, c 0 _a,b"},
};

TEST(MenuState, HidesAndShowsChoices) {
    for (const ChoiceCase &row : ChoiceCases) {
        StateMenu state;
        snprintf(state.choices, sizeof state.choices, "%s", row.choices);
        TextMenuItem *item = &state.items[0];
        item->value.i = row.value;
        HideStateSelection(item, row.hide);
        EXPECT_EQ(std::string(state.choices) + " " + std::to_string(item->value.i) + " " +
                      (item->current ? item->current : "none"),
                  row.result)
            << row.name;
        ShowStateSelection(item, row.hide);
        FreeMenu(&state.menu);
    }
    StateMenu state;
    HideStateSelection(&state.items[0], 1);
    ShowStateSelection(&state.items[0], 1);
    EXPECT_STREQ(state.choices, "_a,_b,_c");
    state.items[5].value.i = 0;
    HideStateSelection(&state.items[5], 0);
    EXPECT_EQ(state.items[5].value.i, 0); // a bit set does not move
    state.items[0].choices = nullptr;
    HideStateSelection(&state.items[0], 0);
    UpdateStateSelection(&state.items[0]);
    EXPECT_EQ(state.items[0].current, nullptr);
}

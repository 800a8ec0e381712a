// State formats, conditions and choices: what they do to the items of a menu.
#include "menu/MenuState.h"

#include "menu/MenuTable.h"
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

TEST(MenuState, AppliesStateFormats) {
    struct Case {
        const char *format, *values, *states; // values: that item 0 takes in turn; states: behind each
    };
    static const Case cases[] = {
        {"H0|2{1,4.5}", "012", "020022|000000|020022"},
        {"N1{4}", "10", "000010|000000"},
        {"H0{4} N*{4}", "01", "000010|000010"}, // the last group wins
        {"H0{4} H1{4}", "01", "000000|000020"}, // a later miss shows what an earlier hit hid
        {"H|1{5}", "012", "000002|000002|000000"},
        {"S1{2.9}", "010", "000000 i0|000000 i9|000000 i0"}, // the table's 0 comes back first
        {"S1{2.3,3.2,4.5}", "10", "000000 i3 f2.00|000000"},
        {"H0{6,99,4}", "0", "000020"},
        {"H0{} H0{5}", "0", "000000"}, // malformed from here on
        {"H0{4,x,5} H0{1}", "0", "000020"},
        {"H0{4,5", "0", "000022"},
    };
    for (const Case &c : cases) {
        StateMenu state;
        state.items[0].format = c.format;
        std::string shown;
        for (const char *at = c.values; *at != '\0'; at++) {
            state.items[0].value.i = *at - '0';
            ProcessStateFormat(&state.menu, 0);
            shown += (shown.empty() ? "" : "|") + Show(state);
        }
        EXPECT_EQ(shown, c.states) << c.format;
    }
}

// ---- conditions

TEST(MenuState, TestsConditions) {
    // Items 0 to 3 hold 1, 2, 7, 1.5, and 2 is disabled; the condition is that of item 1.
    const char *const held[] = {"0.1",          "+1.7",        "-1.1",           "2.7A",
                                "!!0.1",        "!(0.1&2.8)",  "0.2|2.7",        "0.1|(2.7&0.2)",
                                "!0.1|2.7",     "0.2&0.1|2.7", "0.1|(0.2)&2.7A", "((0.1)&(2.7A))",
                                " 0.1 & 2.7A ", "(0.1",        "0.1)&0.2"};
    const char *const others[] = {"0.2",  "0.1A",     "2.8A", "!0.1",          "0.1&2.8",      "0.1|2.7&0.2",
                                  "()",   "!0.1&2.7", "",     "&0.1",          "0.",           ".1",
                                  "-2.0", "+5.0",     "4.0",  "99999999999.1", "0.99999999999"};
    StateMenu state;
    state.items[0].value.i = 1;
    state.items[1].value.i = 2;
    state.items[2].state = STATE_DISABLED;
    for (const char *condition : held)
        EXPECT_EQ(TestStateCondition(&state.menu, condition, 1), 1) << condition;
    for (const char *condition : others)
        EXPECT_EQ(TestStateCondition(&state.menu, condition, 1), 0) << condition;
    std::string deep = std::string(10000, '(') + "0.1", nots = std::string(10000, '!') + "0.1";
    EXPECT_EQ(TestStateCondition(&state.menu, deep.c_str(), 0), 0);
    EXPECT_EQ(TestStateCondition(&state.menu, nots.c_str(), 0), 1);
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
    state.items[1].format = nullptr;
    state.items[1].value.m = &menus[2];
    EXPECT_EQ(ValidateMenu(&state.menu, 1), &menus[2]);
    state.items[1].state = STATE_DISABLED;
    EXPECT_EQ(ValidateMenu(&state.menu, 1), nullptr);
}

// ---- choices

TEST(MenuState, HidesAndShowsChoices) {
    struct Case {
        const char *choices;
        int value, hide;
        const char *result; // list, value, current
    };
    static const Case cases[] = {
        {"_a,_b,_c", 0, 1, "_a, b,_c 0 _a"},
        {"_a,_b,_c", 1, 1, "_a, b,_c 2 _c"}, // the selected one moves to the next
        {" a,_b,_c", 2, 2, " a,_b, c 1 _b"}, // around the end, past hidden ones
        {" a,_b, c", 1, 1, " a, b, c 1  b"}, // all hidden
        {"_a,_b", 0, 2, "_a,_b 0 none"},
        {",10,,20", 0, 1, ",10,, 0 0 10"}, // empty entries do not count
        {"_a\\,b,_c", 0, 1, "_a\\,b, c 0 _a,b"},
    };
    for (const Case &c : cases) {
        StateMenu state;
        snprintf(state.choices, sizeof state.choices, "%s", c.choices);
        TextMenuItem *item = &state.items[0];
        item->value.i = c.value;
        HideStateSelection(item, c.hide);
        std::string shown = std::string(state.choices) + " " + std::to_string(item->value.i) + " ";
        EXPECT_EQ(shown + (item->current ? item->current : "none"), c.result) << c.choices;
        FreeMenu(&state.menu);
    }
    StateMenu state;
    HideStateSelection(&state.items[0], 1);
    ShowStateSelection(&state.items[0], 1);
    EXPECT_STREQ(state.choices, "_a,_b,_c");
    HideStateSelection(&state.items[5], 0);
    EXPECT_EQ(state.items[5].value.i, 0) << "a bit set does not move";
}

TEST(StateText, MakesFormatsFromEnumerators) {
    enum Item { FIRST, SECOND, LAST = 123, END };
    const char *format = StateText<END, HideItems(10, LAST, SECOND), ProcessItems({0, 1, 12}, FIRST)>;
    EXPECT_STREQ(format, "H10{123,1} P0|1|12{0}");
}

// Tables of menus that are held against their keys while they are compiled.
//
// Callbacks, state formats and flows name a row by its enumerator. So each row carries it, and a table with a
// row too many, too few or at another's place does not compile: the message names the first enumerator whose
// row isn't there. The rows are written once, as constants, and the table starts as a copy of them:
//
//     enum NameItem { NAME_FIRST, NAME_LAST, NAME_END };
//     static constexpr TextMenuItem NameRows[] = {{.key = NAME_FIRST, ...}, {.key = NAME_LAST, ...}, {}};
//     constinit MenuTable<NAME_END> NameItems = MakeMenuTable<NAME_END, NameRows>();
//
// State formats name items in the same way: StateText<HideItems(1, NAME_LAST)> is the text "H1{1}".
#pragma once

#include "menu/TextMenu.h"

#include <concepts>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <type_traits>

// The rows of a menu and the empty one behind them, which hold its values at run time.
template <size_t Count>
struct MenuTable {
    TextMenuItem items[Count + 1];

    constexpr operator TextMenuItem *() { return items; }
};

// The first enumerator whose row isn't at its place; End if all are and the table ends behind them.
template <auto End, const auto &Rows>
consteval decltype(End) FindMisplacedRow() {
    constexpr int count = static_cast<int>(std::size(Rows)) - 1;
    for (int row = 0; row < End && row < count; row++)
        if (Rows[row].key != row || !Rows[row].text) return static_cast<decltype(End)>(row);
    return count < End ? static_cast<decltype(End)>(count) : End;
}

template <auto Row, auto End>
struct RowOfMenu {
    static_assert(Row == End, "the row of this enumerator is not at its place in the menu's table");
    static constexpr bool flInPlace = Row == End;
};

template <auto End, const auto &Rows>
consteval MenuTable<End> MakeMenuTable() {
    static_assert(RowOfMenu<FindMisplacedRow<End, Rows>(), End>::flInPlace);
    static_assert(std::size(Rows) <= End + 1, "the table has a row that no enumerator names");
    MenuTable<End> table;
    for (size_t row = 0; row < End; row++) table.items[row] = Rows[row];
    return table;
}

// ---- State formats, see MenuState.h for their language

enum { STATE_GROUP_SIZE = 64, STATE_VALUES_MAX = 4 };

// The values for which a group hits: one, or several in braces.
struct StateValues {
    int values[STATE_VALUES_MAX] = {};
    int count = 0;

    consteval StateValues(int value) : values{value}, count(1) {}
    consteval StateValues(std::initializer_list<int> all) {
        for (int value : all) values[count++] = value;
    }
};

// The text of one group. One that is too long does not compile.
struct StateGroup {
    char text[STATE_GROUP_SIZE] = {};
    int length = 0;

    consteval void Put(char ch) { text[length++] = ch; }
    consteval void PutNumber(int number) {
        if (number > 9) PutNumber(number / 10);
        Put(static_cast<char>('0' + number % 10));
    }
};

// Targets are enumerators of one table.
template <typename Item, typename... Items>
requires std::is_enum_v<Item> &&(std::same_as<Item, Items> &&...) consteval StateGroup
    MakeStateGroup(char operation, const StateValues &states, Item first, Items... more) {
    StateGroup group;
    for (int i = 0; i < states.count; i++) {
        group.Put(i ? '|' : operation);
        group.PutNumber(states.values[i]);
    }
    group.Put('{');
    group.PutNumber(first);
    ((group.Put(','), group.PutNumber(more)), ...);
    group.Put('}');
    return group;
}

// H: the items are hidden for these values of the pick, and shown for all others.
template <typename... Items>
consteval StateGroup HideItems(const StateValues &states, Items... items) {
    return MakeStateGroup('H', states, items...);
}
// P: for these values the items' own formats run, then their callbacks.
template <typename... Items>
consteval StateGroup ProcessItems(const StateValues &states, Items... items) {
    return MakeStateGroup('P', states, items...);
}

template <StateGroup... Groups>
struct StateTextOf {
    char text[(Groups.length + ...) + sizeof...(Groups)] = {};

    consteval StateTextOf() {
        size_t at = 0;
        for (const StateGroup &group : {Groups...}) {
            if (at) text[at++] = ' ';
            for (int i = 0; i < group.length; i++) text[at++] = group.text[i];
        }
    }
};
template <StateGroup... Groups>
inline constexpr StateTextOf<Groups...> StateTexts;
// The format of the groups, as ProcessStateFormat reads it.
template <StateGroup... Groups>
inline constexpr const char *StateText = StateTexts<Groups...>.text;

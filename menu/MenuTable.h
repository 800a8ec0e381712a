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
// State formats name items in the same way: StateText<NAME_END, HideItems(1, NAME_LAST)> is "H1{1}".
#pragma once

#include "menu/TextMenu.h"

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

// The text of one group, whose targets are items of one table. One that is too long does not compile.
template <typename Item>
struct StateGroup {
    char text[STATE_GROUP_SIZE] = {};
    int length = 0;
    int last = 0; // of the targets in the table

    consteval void Put(char ch) { text[length++] = ch; }
    consteval void PutNumber(int number) {
        if (number > 9) PutNumber(number / 10);
        Put(static_cast<char>('0' + number % 10));
    }
    consteval void PutItem(Item item) {
        PutNumber(item);
        if (item > last) last = item;
    }
};

template <typename Item, typename... Items>
consteval StateGroup<Item> MakeStateGroup(char operation, const StateValues &states, Item first,
                                          Items... more) {
    static_assert(std::is_enum_v<Item>, "a state format names its items by their enumerators");
    static_assert((std::is_same_v<Item, Items> && ...), "a state format names items of two tables");
    StateGroup<Item> group;
    for (int i = 0; i < states.count; i++) {
        group.Put(i ? '|' : operation);
        group.PutNumber(states.values[i]);
    }
    group.Put('{');
    group.PutItem(first);
    ((group.Put(','), group.PutItem(more)), ...);
    group.Put('}');
    return group;
}

// H: the items are hidden for these values of the pick, and shown for all others.
template <typename... Items>
consteval auto HideItems(const StateValues &states, Items... items) {
    return MakeStateGroup('H', states, items...);
}
// P: for these values the items' own formats run, then their callbacks.
template <typename... Items>
consteval auto ProcessItems(const StateValues &states, Items... items) {
    return MakeStateGroup('P', states, items...);
}

template <auto End, StateGroup<decltype(End)>... Groups>
struct StateTextOf {
    static_assert(((Groups.last < End) && ...), "a state format names an item that no row has");
    char text[(Groups.length + ...) + sizeof...(Groups)] = {};

    consteval StateTextOf() {
        size_t at = 0;
        for (const auto &group : {Groups...}) {
            if (at) text[at++] = ' ';
            for (int i = 0; i < group.length; i++) text[at++] = group.text[i];
        }
    }
};
template <auto End, StateGroup<decltype(End)>... Groups>
inline constexpr StateTextOf<End, Groups...> StateTexts;
// The format of the groups, as ProcessStateFormat reads it, for the table that ends with this enumerator.
template <auto End, StateGroup<decltype(End)>... Groups>
inline constexpr const char *StateText = StateTexts<End, Groups...>.text;

// State formats of pick items, conditions of submenu items, and the choices they keep visible.
//
// A menu reacts to its own values without code. A pick item carries a state format such as "H0{5} H1{4}":
// value 0 hides item 5 and shows it otherwise, value 1 hides item 4 and shows it otherwise. A submenu item
// may carry a comma list of conditions such as "3.1&!4.0,3.0", one for each submenu of its array. Items are
// named by their index in the table, from 0. Neither language reports a mistake: a malformed format has no
// effect for the rest of its text, an index outside the table none at all.
#pragma once

#include "menu/TextMenu.h"

// Applies the state format of an item of type 9 or 10 for its present value; does nothing for an item that is
// hidden or disabled. An item that a P group leads back to while its own format is being worked on is passed
// over. Runs the callbacks of P groups. Uses: token state; no scan may be in progress but its own.
void ProcessStateFormat(TextMenu *menu, int index);
// 1 if a state list such as "0|2" or "*" names the value. A list that does not start with a digit names 0 as
// well.
int TestFormatState(const char *states, intptr_t value);

// Moves the value of a pick item on to the next visible choice if its own is hidden, and refreshes current.
// With all choices hidden the value ends where it was; a value beyond the choices stays, and current is null.
void UpdateStateSelection(TextMenuItem *item);
// The marker of a choice (from 0) becomes a blank, and the value moves on if it was that one; or it becomes
// _. Both change the table's own text. An index outside the choices does nothing.
void HideStateSelection(TextMenuItem *item, int choice);
void ShowStateSelection(TextMenuItem *item, int choice);
// Choice number index (from 0) with its marker, copied into token (TOKEN_SIZE bytes, at most 127 characters);
// null if there is none. Leaves the token state alone but for chTokenDel.
char *GetChoice(const TextMenuItem *item, intptr_t index, char *token);
// Fetches the choice of the value into current: a managed copy that the next fetch or FreeMenu releases; null
// for none.
const char *FetchCurrentChoice(TextMenuItem *item);

// The submenu that an item of type 8 opens: its value, or with a format the array's entry at the place of the
// first condition that holds. Null if the item is not in the normal state, no condition holds, or it is no
// submenu item.
TextMenu *ValidateMenu(TextMenu *menu, int index);

// Conditions: condition = operand { ('&'|'|') operand }, strictly from left to right;
//             operand   = '!' operand | '(' condition ')' | INDEX '.' VALUE [ 'A' ].
// The text form starts a new evaluation. The mode form goes on at the cursor of the evaluation in progress:
// with a group up to its closing parenthesis and over it, or with one operand. What cannot change the result
// is read over without a test. Uses: the condition cursor, process-wide.
enum { CONDITION_GROUP, CONDITION_OPERAND };
int TestStateCondition(TextMenu *menu, const char *condition, int index);
int TestStateCondition(TextMenu *menu, int mode, int index);
// "INDEX.VALUE": 0 if the item does not hold the value, 1 if it does and its state is normal, else 2. An
// index with a sign counts from the given one. A text never holds a value.
int TestState(TextMenu *menu, const char *operand, int index);

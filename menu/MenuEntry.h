// The entry validation language: checks a finished line of text against a format such as "A(1,14)+-+_".
//
// A format is read from left to right against the entry, element by element, with a read position in the
// entry that starts at its first character. Some elements look at the whole entry wherever the position is.
// Blank, tab and line feed between elements do nothing. The first failure decides, with these two exceptions:
// a bar ends the check and accepts, and a failure of kind character, length or literal in front of a bar does
// not count. So what stands behind the first bar is never read. doc/menus.md has the elements with examples.
//
// Every refusal is told to the user by PostMsg, who sends a line; only a literal that fails before anything
// has matched stays silent. Entry and format are copied first: both may lie in LineBuf, which the answer
// overwrites.
#pragma once

enum { ENTRY_OK, ENTRY_RANGE, ENTRY_LENGTH, ENTRY_CHARACTER, ENTRY_FORBIDDEN }; // results
enum { ENTRY_SET = 79 }; // characters that a plus or minus list holds; further ones are left out

// The characters of a run of pairs "+c" and "-c". Whoever checks text by the letters of this language reads
// the same sets and means the same by a printable character.
struct EntrySet {
    char plus[ENTRY_SET + 1];
    char minus[ENTRY_SET + 1];
};
EntrySet ReadEntrySet(const char **format); // steps over the pairs
int IsEntryPrintable(int ch);               // letter, digit, punctuation, blank

// Range messages of integers, floats and long floats as printf formats; managed; fetched by the first
// ValidateEntry, which is their writer. Never released.
extern char *pErrIntRange;
extern char *pErrFloatRange;
extern char *pErrLongRange;

// A null format accepts, a null entry counts as empty. Result: ENTRY_OK or why not.
// Uses: LineBuf after a refusal, chTokenDel.
int ValidateEntry(const char *entry, const char *format);
// Null if the length lies in the range "(min,max)", else the message. A null range is exactly 4, a max of 0
// any. Buffer: NlsBuf, until its next use.
char *ValidateEntryLen(const char *text, const char *range);
// 0 if all characters are digits, else the first that is not.
int ValidateEntryDigit(const char *text);
// Both checks, told to the user: ENTRY_LENGTH, ENTRY_CHARACTER or ENTRY_OK. Uses: NlsBuf, LineBuf.
int ValidateEntryTty(const char *text, const char *range);
// The maximum of "(min,max)", with or without the parenthesis, and the minimum; both 0 for a null range.
// Numbers beyond an int count as its limits.
int getMinMax(const char *range, int *minimum);
// 1 if the text holds only letters, digits, '-' and '_'; else the user is told and a line is read. Uses:
// LineBuf.
int TestName(const char *text);

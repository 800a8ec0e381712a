// The state of the one reader of descriptions, and its readers of values.
//
// The cursor pNewDesc is moved by every layer; a reader that wants to read another text saves it and puts it
// back (XmtCursor).
#pragma once

#include "xmt/Xmt.h"

#include <string>

extern const char *pNewDesc;    // next character to read; every reader moves it
extern XmtHandler AppCB;        // handler of new objects; writer: XmtNewObject
extern int AppCBValue;          // id of the next object; starts at 1
extern int SpecifiedAppCBValue; // when not 0 the next object's id instead, once
extern int GetDescLen;          // characters that the last GetDesc copied

// Lets a function read another text: the cursor comes back when it goes out of scope.
struct XmtCursor {
    explicit XmtCursor(const char *text) : saved(pNewDesc) { pNewDesc = text; }
    ~XmtCursor() { pNewDesc = saved; }
    XmtCursor(const XmtCursor &) = delete;
    XmtCursor &operator=(const XmtCursor &) = delete;
    const char *saved;
};

// ---- the value readers. They step over one leading '('. With a position: the result is where they stopped.

// One value. A backslash and the character behind it are copied, both. Stops at ',' or ')' or the end, and
// consumes nothing (GetArgValue) or that character (GetValue).
const char *GetArgValue(std::string *out, const char *position);
void GetValue(std::string *out);
// A list, commas included, up to ')'. GetArgValues keeps backslashes and consumes nothing. GetValues drops
// them, copies what follows, and consumes the ')'.
const char *GetArgValues(std::string *out, const char *position);
void GetValues(std::string *out);
// As GetArgValues, into managed memory; GetSavedValues consumes the ')'. Owns: *text.
const char *GetSavedArgValues(char **text, const char *position);
void GetSavedValues(char **text);
// A decimal integer by atoi; the cursor moves over digits only, then over one ',', '(' or ')'.
int GetNumber();
// White space, then a run of letters, digits and '_'. Consumes nothing behind it.
const char *GetWord(std::string *out, const char *position);
// Raw text up to the end character or the end of the text; a backslash protects the next character and stays.
// The end character is consumed; with flKeep it belongs to the copy. Owns: the result.
[[nodiscard]] char *GetDesc(char end, int flKeep);
char GetEscapedValue(char ch); // n, r, t
// Values of a list: 0 for "()", 1 for an empty text, else one more than its unescaped commas up to ')'.
int GetArgCount(const char *position);
// A text taken as arguments, words with or without a parenthesis. The first one of that name, whole, goes to
// out; false, with out emptied, if there is none. StripArg takes it out of text.
bool CopyArg(const char *name, const char *text, std::string *out);
bool StripArg(const char *name, std::string *text, std::string *out);
// White space of descriptions; the first other character.
inline bool XmtIsSpace(char ch) {
    return ch == ' ' || ch == '\t' || ch == '\n' || ch == '\r';
}
const char *XmtSkipSpace(const char *position);
// Steps through a comma list as the argument readers see it; lives in its loop. A null or empty list has no
// value, "a," has two.
struct XmtValues {
    explicit XmtValues(const char *list) : position(list && *list ? list : nullptr) {}
    bool Next(); // false at the end
    const char *position;
    std::string value;
};
// Takes one level of backslashes off; n, r and t behind one become what they stand for if flControl is set.
std::string XmtDropEscapes(const std::string &text, bool flControl);
// Puts a backslash before ( ) , ; < >; an existing one and the character behind it stay.
std::string XmtInsertEscape(const char *text);

// Entry validation on every change of a text field; the masked text object is built on it.
//
// The format of a text object is one of the entry validation language (menu/MenuEntry.h), read for an entry
// that is still being typed: "A0,14+-+_". What is otherwise here:
//
//   bounds     stand without a parenthesis, "d1,60"; those of x are hexadecimal
//   A a p      the minus list counts
//   lengths    typed text plus candidate, if the two differ, against minimum and maximum + 1: right for the
//              usual single character, and one more than the maximum may be pasted into an empty field
//   numbers    are those of the whole candidate; an empty one counts as the minimum
//   !(text)    looks at the typed text
//   &          goes on with the typed text alone
//   bar        an alternative, while these are on: the text starts over behind it when an element in front of
//              it fails, and also when a number, '!', 'l' or 'v' has passed: then what follows must hold too.
//              A number that is out of range or none is refused whatever follows. Met in the ordinary way the
//              bar does nothing
//   `          switches alternatives off and on
//   lN vC      when the candidate has the length N, when the typed text begins with C: moves on. "tNAME"
//              behind it names the text field that gets the focus. The change is vetoed
//   literal    an entry that ends in front of it is accepted: the rest may still be typed
//
// "v.tnext | d0,255" is a field that holds a number up to 255 and from which a typed point leads to the next.
#pragma once

#include "xmt/Xmt.h"

#include <string>

enum { XMT_CANDIDATE = 512 }; // a text field's real limit: no candidate of this length is built
// ENTRY_OK, or ENTRY_RANGE, ENTRY_LENGTH, ENTRY_CHARACTER, ENTRY_FORBIDDEN (MenuEntry.h): the change is
// vetoed. typed: what was typed, null as empty; candidate: what the field would hold. A null format or
// candidate accepts. Refusals are posted, moving on is not.
int XmtValidateEntry(const char *typed, const char *candidate, const char *format);
// Posts the first line of text 25_number with the character as its argument.
void PostValidateErrMsg(int number, char ch);
// What XmtProcessFormat does for XmtText and XmtPasswd: the handler on activation, the check on changes, with
// the text before the change as data->value. A change that would make the text as long as XMT_CANDIDATE is
// checked as if the old text stayed.
void XmtProcessTextFormat(XmtObjectData *object, XmtCallData *data);
// The field shows stars, unless the format begins with an 'S' that is not part of it. The real text is the
// stored value, as long as the field accepts it: a change to XMT_CANDIDATE and more is vetoed. An activation
// has it as its text.
void XmtProcessMaskedFormat(XmtObjectData *object, XmtCallData *data);

// Entry validation on every change of a text field; the masked text object is built on it.
#pragma once

#include "xmt/Xmt.h"

#include <string>

enum { XMT_CANDIDATE = 512 };
// 0 accepted; 1 range, 2 length, 3 character, 4 forbidden: the change is vetoed. typed: what was typed;
// candidate: what the field would hold. Refusals are posted.
int XmtValidateEntry(const char *typed, const char *candidate, const char *format);
// Posts the first line of a catalogue text with the character as its argument.
void PostValidateErrMsg(int number, char ch);
// Puts a backslash before ( ) , ; < >; an existing one and the character behind it stay.
std::string XmtInsertEscape(const char *text);
// What XmtProcessFormat does for XmtText and XmtPasswd.
void XmtProcessTextFormat(XmtObjectData *object, XmtCallData *data);
void XmtProcessMaskedFormat(XmtObjectData *object, XmtCallData *data);

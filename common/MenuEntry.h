// The entry validation language: checks a finished line of text against a format such as "A(1,14)+-+_".
#pragma once

enum { ENTRY_OK, ENTRY_RANGE, ENTRY_LENGTH, ENTRY_CHARACTER, ENTRY_FORBIDDEN };

extern char *pErrIntRange;
extern char *pErrFloatRange;
extern char *pErrLongRange;

int ValidateEntry(const char *entry, const char *format);
char *ValidateEntryLen(const char *text, const char *range);
int ValidateEntryDigit(const char *text);
int ValidateEntryTty(const char *text, const char *range);
int getMinMax(const char *range, int *minimum);
int TestName(const char *text);

// Message catalogues: decides the language, opens the catalogues, fetches, formats and installs texts.
#pragma once

#include "common/DbmT.h"

#include <cstdio>
#include <string>

struct TextMenuItem;

enum { NLS_TTY_SET = 25, NLS_MENU_TEXT = 128, NLS_GUI_TEXT = 1024, NLS_FETCH = 2048 };
enum { NLS_FETCH_NUMBER = 0, NLS_FETCH_KEY = 1, NLS_FETCH_LONG = 3 }; // modes of NlsFetchString

extern DbTHandle *pDrvCoreDB;
extern DbTHandle *pPrtHelpDB;
extern DbTHandle *pPrtCoreDB;
extern char *pNLSLang; // null until decided
extern char NlsBuf[4096];

[[nodiscard]] DbTHandle *NlsOpenDB(const char *catalogue, int flags);
char *GetDesiredNLSLang();
[[nodiscard]] char *ParseTransFile(const char *name);
char *NlsFetchString(DbTHandle *handle, char *out, size_t capacity, int mode, int set, int number);
char *NlsFetchString(DbTHandle *handle, char *out, size_t capacity, int mode, const char *key);
void Nlsfprintf(FILE *out, DbTHandle *handle, int set, int number, ...);
void Nlssprintf(char *buffer, size_t capacity, DbTHandle *handle, int set, int number, ...);
void NlsTtyMenuCvt(char **field, int number);
void NlsTtyMenuItemCvt(TextMenuItem *items, int number, int count);
void NlsTtyMenuItemStateCvt(TextMenuItem *items, int number, int count);
void NlsTtyMenuItemPromptCvt(TextMenuItem *items, int number, int count);
char *NlsGuiStrCvt(const char *text, int set, char *out, size_t size);
char *NlsCalcStrVal(const char *text);
char *FindRedirect(char *text);
char *CheckForRedirect(char *text, size_t capacity);

// A catalogue text as a printf format. The conversions of the text must be those of the signature, in order, one
// letter each ("s", "ii", "c", "L" for %Lg, "f", "x"); fewer at the end are allowed, %n and * never. A text that does
// not fit comes back unformatted. A leading catalogue key is fetched with NlsText.
std::string NlsFmt(const char *text, const char *signature, ...);
// Fetches set_number as a plain C++ text, at most 2047 characters.
std::string NlsText(DbTHandle *handle, int set, int number);

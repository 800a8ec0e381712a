// The state of the whole process and the steps of its start.
#pragma once

#include <climits>
#include <string>

// Writer of all of them: the start-up. They hold for the whole run.
extern char AppDir[PATH_MAX];  // a copy of pToolPath
extern const char PrnOutCFG[]; // value of the environment variable of that name, for the siblings
extern char *pUser;            // login name, or null
extern int flUserIsRoot;
extern int flWiz;     // the word -wiz; nothing depends on it
extern int flDiscOff; // no discovery of its own accord

enum { FACE_ANY, FACE_TTY, FACE_HELP }; // what the words ask for

// Finds the tool directory from the name the program was started with. Sets pToolPath, pLogPath and AppDir.
void InitToolPath(const char *argv0);
// Opens each of the three catalogues that isn't open.
void OpenCatalogues();
// Sets pUser and flUserIsRoot.
void InitUser();
// Acts on the words of the command line, from left to right, up to -help; a word that isn't known is passed
// over. Ends: with -v.
int ScanWords(int count, char **words);
// Lists the models of the directory "ppd" in PpdList and PpdModelList. Uses: Line, which keeps the list of
// models. Ends: without a PPD file, with status 0.
void LoadModels();
// Name of a model number, empty if there is none. Uses: the token state.
std::string GetModelName(int model);
void UpdatePrinters();

// File name of the manual in the language of the run. Owns: the result.
[[nodiscard]] char *GetManualName();

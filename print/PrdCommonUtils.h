// What is known of a printer model: its PPD file, its record in en_US/PrtString, and the match by
// description.
//
// A model is named by the file name of its PPD ("tv_generic.ppd"); its record in the database carries the
// file's base name as key. A record holds items between marker lines:
//
//     .sppditem LprQue
//     raw
//     .eppditem
//
// Nothing here tells the user about a failure: a missing file, record or item is null, and the caller has a
// default.
#pragma once

#include "common/DbmT.h"

#include <cstddef>

enum { PPD_NAME_MAX = 41, PPD_VALUE = 256, PRT_SHARED = 8192, PRT_VALUE = 4096 };
enum {
    PPD_LINE = 512,
    PPD_OPTIONS = 4096
}; // a line of a PPD file, a list of GetPpdOptions, both with their NUL

struct PpdRecord {
    char *file; // PPD file name; null in row 0 while there is no generic model
    char *icon; // image source for the window: "@icon/..."
    char *key;  // how to recognise the model, or null
    char *base; // file name without directory and extension
};

extern char *PpdList;      // blank-separated, sorted; position = model number; writer: main
extern char *PpdModelList; // comma-separated, same order; writer: main
extern PpdRecord
    *pPPDData; // rows 1 to PpdCnt in directory order, row 0 the generic model; writer: InitPpdData
extern int PpdCnt;
extern DbTHandle *pEngPrtStrDB; // opened on first use, never closed

// Value of an item of the model's record. file: a PPD file name or a base name.
// With a buffer: the value in it, cut at capacity. Without: a new text. Owns: the result, if buffer is null.
// Null: an argument is null, no such model, no such item, no end mark behind it.
char *GetPpdKeyValue(const char *file, const char *item, char *buffer, size_t capacity);

// Quoted value of the first line of the PPD file that holds "*key:"; null without file, line or quote.
char *GetPpdKeyValue_Old(const char *file, const char *key, char *buffer, size_t capacity);

// A plain record. Buffer: with a null buffer the shared one of PRT_SHARED bytes, until the next such call.
char *FetchEngPrtStrDBValue(const char *key, char *buffer, size_t capacity);

// 1 if the list record of that key exists and names the model; 0 if it doesn't; -1 if there is no such list.
int TestModelList(const char *key, const char *base);

// File names of the directory "ppd", each led by a blank, with a closing blank; null if there is none.
// Owns: the result.
[[nodiscard]] char *GetPpdFileList();

// Base name and PPD file name of a model number, empty if there is none. A number below 1 means the first
// model. Buffer: a buffer each, until the next call of the same function.
const char *GetModelFile(int model);
const char *GetModelBase(int model);

// Builds pPPDData from the directory "ppd"; a second call replaces the table.
void InitPpdData();

// Row of pPPDData whose key matches the text a printer reports about itself, the lowest if several do; else
// 0.
//
// A key has one of two forms:
//     *****Tarvo X1*Tarvo X2      the text begins with one of the pieces
//     Tarvo,TRV X1 X2             a vendor word stands in the text as a word of its own, and a model word
//     stands
//                                 behind a blank and in front of no digit, so that X1 is not found in X12
int GetPpdData(const char *description);

// Choices of an option: for each line "KEY keyword/text:" of the PPD file both words behind the prefix, in
// two comma lists of less than PPD_OPTIONS bytes (what doesn't fit is left out in both). Both null if the
// file can't be read. Owns: both lists.
void GetPpdOptions(const char *file, const char *key, char **keywords, char **texts, const char *prefix);

// Replaces the first byte of value 182, with which some printers spell an i, by the letter.
void ConvertSNMPCharacters(char *text);

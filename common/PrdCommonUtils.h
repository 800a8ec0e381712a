// What is known of a printer model: its PPD file, its record in en_US/PrtString, and the match by description.
#pragma once

#include "common/DbmT.h"

enum { PPD_NAME_MAX = 41, PPD_VALUE = 256, PRT_SHARED = 8192, PRT_VALUE = 4096 };

struct PpdRecord {
    char *file;
    char *icon; // image source for the window: "@icon/..."
    char *key;  // how to recognise the model, or null
    char *base; // file name without directory and extension
};

extern char *PpdList;      // blank-separated, sorted; position = model number; writer: main
extern char *PpdModelList; // comma-separated, same order; writer: main
extern PpdRecord *pPPDData;
extern int PpdCnt;
extern DbTHandle *pEngPrtStrDB;

char *GetPpdKeyValue(const char *file, const char *item, char *buffer, size_t capacity);
char *GetPpdKeyValue_Old(const char *file, const char *key, char *buffer, size_t capacity);
char *FetchEngPrtStrDBValue(const char *key, char *buffer, size_t capacity);
void InitPpdData();
int GetPpdData(const char *description);
void GetPpdOptions(const char *file, const char *key, char **keywords, char **texts, const char *prefix);
void ConvertSNMPCharacters(char *text);

// Queue records of the database "que", the host's and the family's queue lists, and the marker file of the
// tool directory. The database belongs to prnqtool; this side reads it.
//
// QueFormat.h tells the keys of the records and how they are written.
#pragma once

#include "print/QueType.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

enum { CFG_DIRECT = 1, CFG_NO_DB = 2, CFG_LPRNG = 4, CFG_AIX = 8, CFG_BSD = 16, CFG_V5 = 32, CFG_CUPS = 64 };

// A queue's record in memory. A static one starts all zero; GetQueDbEntry releases the settings it finds in
// it.
struct QueRecord {
    char name[15];
    char printer[256];     // host name or device path
    char serverQueue[256]; // first word of the count record, empty without one
    char lprQueue[15];     // remote queue name
    char ppdFile[42];
    char *settings; // managed, or null
    int32_t type;   // QueueType
    unsigned char banner;
    unsigned char userInterface;
    unsigned char features;
    unsigned char isDefault; // the record " default" names this queue
    unsigned char lpd;
};
static_assert(std::is_trivial_v<QueRecord>);

extern char *pQueListTold; // why the last list isn't whole, in the tool's words, or null; writer: GetQueList
extern int flToolCfg;      // CFG_ bits; writer: SetConfigFlags

// 1 if the queue has a record, read into *record with its settings; else 0, and *record is as it was.
// Fields are cut at their widths and at a token's length, missing numbers are 0. Uses: Line.
int GetQueDbEntry(QueRecord *record, const char *name);

// Writes the main record and, if there is one, the settings record; 1 if all was written.
int GenQueDbEntry(QueRecord *record);

// 1 if the record " default" names the queue.
int TestDefaultQueue(const char *name);

// Text of a record of "que", cut at capacity, always with a NUL: its length, 0 if absent or empty.
size_t GetQueDbText(const char *key, char *buffer, size_t capacity);

// The two words of "PRINTER count" behind its 4-byte field, each cut at capacity; either address may be null.
// 1 if the record holds at least one word; without a second word that text is empty.
int GetQueCountWords(const char *printer, char *first, char *second, size_t capacity);

// Sets flToolCfg from the words of ".pn_cfg", whose first character is their delimiter. Uses: LineBuf.
void SetConfigFlags();
// 1 if the file exists in the tool directory.
int TestConfigFlag(const char *file);

// Why a program of the tool directory can't be started; empty if it can. A shell says so on the terminal,
// where a menu clears it at once and nobody in front of a window looks.
std::string GetToolFault(const char *program);
std::string GetQueToolFault(); // the same of prnqtool
// All queues of the host, from prnqtool: ",q1,q2", sorted; null if there is none. Owns: the result.
// Uses: the token state, pQueListTold.
[[nodiscard]] char *GetQueList();
// The family's queues, " q1 q2": those of the database and of "77yyprinters" that the host knows too; null if
// there is none. Owns: the result. Uses: the token state, pIn, LineBuf.
[[nodiscard]] char *GetQueueList();
// Adds " name" to a list of *length characters, null at first, unless it is there; the list, which may have
// moved.
char *AddQToList(char *list, const char *name, size_t *length);

// Record database, image layer: a whole database file in memory behind a handle.
//
// Reads both formats, the headerless one of the stream layer and the one with a header, and writes a file
// back in the format it came in; a new file gets the header. doc/xdb.md tells both, with a worked example.
//
// Every read first asks for the file's state (one stat) and reloads the image if the file is another one or
// was changed, unless the flags hold DBT_NO_RELOAD. The first search of an image walks it; the second builds
// an index of the keys, and from then on a record costs one look-up, until a write or a reload drops the
// index. A write makes the whole file anew, with the safety that Dbm.h tells, unless the flags hold
// DBT_NO_WRITE: then it waits for DbmTArchiveDb, and a reload before that loses it.
//
// Files are not trusted: a record that runs past the end of the image, or a key past its record, ends the
// walk there, and what lies behind it is cut off the image; before a write replaces such a file, or one that
// could not be read at all, it is kept as NAME.xdb_damaged. A record without a whole key is kept but never
// found.
//
// Null arguments: 0 or null, or nothing done. Sizes and capacities are bytes.
// Uses: one scratch buffer for plain records, shared by all handles. A walked key lies in it: it is good
// until the next call of this layer with whatever handle, but may be handed back to that call. Between two
// steps of a walk nothing may reload or change the image, so read with DBT_NO_RELOAD or take what is needed
// first.
#pragma once

#include "common/Dbm.h"

#include <ctime>

enum { DBT_NONE, DBT_HEADERLESS, DBT_HEADER }; // types: none means there is no file behind the handle yet
enum { DBT_NO_RELOAD = 2, DBT_NO_WRITE = 4 };  // flags; 1 has no effect
enum { DBT_HEADER_SIZE = 16, DBT_COUNT_DIGITS = 9 };

// size bytes of the image are in use; the header, of type DBT_HEADER, is among them.
struct DbTHandle {
    char *name; // managed, as given to DbTOpen
    int swap;   // words of this file have the other byte order than the machine
    int flags;
    char *image; // managed, null before a file was seen
    size_t size;
    time_t fileTime; // modification time of the file that the image came from
    size_t cursor;   // offset of the next read or write of data
    size_t walk;     // offset of the next record of WalkDbTRecords
    long count;      // records, from the header and kept by writes
    int type;
    struct DbTPrivate *priv; // finer file identity and the key index; see DbmT.cpp
};

struct DbTWalk {
    uint16_t L;
    uint16_t K;
    char *key; // headerless: in the scratch buffer, with its NUL if it is a whole key; null in the header
               // format
};

// Owns: DbTClose. Null for a null name and without memory; else a handle, be there a file or not. A name that
// starts with '/' is a path, ".xdb" is appended if it holds no '.'; one that starts with
// '.' is a path as it stands; any other is pToolPath/db/NAME.xdb, and only such a database can be written.
[[nodiscard]] DbTHandle *DbTOpen(const char *name, int flags);
void DbTClose(DbTHandle *handle); // writes nothing
// Reloads the image if the file changed. A missing file leaves the handle as it is. A file that can't be read
// is tried 10 times, a second apart, and not again before it changes: the handle is then empty, of type
// DBT_NONE. The first attempt names it and the reason on standard error.
void DbTUpDate(DbTHandle *handle);
void DbTSetDbType(DbTHandle *handle, int type); // and the swap flag with it
// The next record, null at the end; index 0 starts over. Asks nothing of the file. The cursor stands at the
// key in the header format.
DbTWalk *WalkDbTRecords(DbTHandle *handle, DbTWalk *walked, int index);
// 1 if found, with the cursor at the data in the header format. The first record of a key counts; "" finds
// nothing.
int FindTRecord(DbTHandle *handle, const char *key, DbTWalk *walked);
// Data bytes stored, cut at the capacity; 0 if the key is absent or has no data. No NUL is added.
int DbmTGetRecord(DbTHandle *handle, const char *key, void *buffer, size_t capacity);
// The same uncut: larger data come in a block of their own, which takes the buffer's place. Owns: that block.
int DbmTGetRecordV(DbTHandle *handle, const char *key, char **buffer, size_t capacity);
int DbmTGetRecordSize(DbTHandle *handle, const char *key);
// Owns: as DbmGetRecordList and DbmGetDbLinkList.
[[nodiscard]] char *DbmTGetRecordList(DbTHandle *handle, const char *prefix, const char *suffix);
[[nodiscard]] char *DbmTGetRecordListS(DbTHandle *handle, const char *list, const char *prefix,
                                       const char *suffix);
int TestKeyName(const char *key, const char *list); // 1 if the key starts with an entry of the comma list
[[nodiscard]] DbLink *DbmTGetDbLinkList(DbTHandle *handle, const char *substring);
// 1 if stored and, unless the flags say otherwise, written. A size of 0, and more than 65533 bytes of key and
// data, give 0; so does a failed write, with the write message: the image then holds the record, the file
// does not.
int DbmTPutRecord(DbTHandle *handle, const char *key, const void *data, size_t size);
int DbmTDeleteRecord(DbTHandle *handle, const char *key); // 1 if a record went and the file was written
int DbmTDeleteRecords(DbTHandle *handle,
                      const char *prefix); // 1, also without a match; 0 for an empty prefix
int DbmTCopyRecord(DbTHandle *handle, const char *oldKey, const char *newKey); // as DbmCopyRecord
// Removes the key's records, or those whose key starts with so many of its characters, from the image alone.
int PurgeTRecord(DbTHandle *handle, const char *key, size_t prefixLength);
int DbmTArchiveDb(DbTHandle *handle); // 1 if the image reached the disk
// A run of bytes into or out of the image at the cursor, scrambled there and plain here; both move the
// cursor. Bytes that lie past the image are not written, and read as zero.
void DbmTPutData(DbTHandle *handle, const void *bytes, size_t count);
void DbmTGetData(DbTHandle *handle, void *bytes, size_t count);
void UpdateHeader(DbTHandle *handle); // the magic, the count and new random bytes behind it

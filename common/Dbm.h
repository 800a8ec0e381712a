// Record database, stream layer: every call reads or rewrites a headerless database file on disk.
//
// A database is a flat file of records below the tool directory, pToolPath/db/NAME.xdb; a record is a key and
// a block of bytes. The layer is for files of a few dozen records: a read costs a pass through the file, a
// write a new file and three or four host commands (touch, chmod, mv). doc/xdb.md tells the format, with a
// worked example.
//
// A file is never changed in place. The new contents go to NAME.xdb_new, are checked down to the close, and
// are then renamed over the old file: a reader, and a process that is killed anywhere, leave the old or the
// new file whole. Two writers at once are not guarded against each other: the last rename wins.
//
// Files may be written by anybody and are read with that in mind: a record that runs past the end of the
// file, or whose key runs past the record, ends the file; a record without a whole key is kept but never
// found.
//
// Null arguments: 0 or null from every function. A file with the header of the image layer is never
// overwritten by this layer: it reads as a file without records, and a write to it fails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

enum {
    DBM_BODY_MAX = 65535, // largest body of a record: L is 16 bits
    DBM_BUFFER = 65536,   // holds a body and a NUL; a buffer of this size holds every record's data
    DBM_WORD = 2,         // bytes of L and of K
    DBM_OPEN_TRIES = 10,  // attempts to open or read a file that exists, one second apart
    DBM_FILE_MAX = 16 * 1024 * 1024, // a larger file is none of ours: it isn't read, and no write replaces it
};
// Whether everybody may write databases (666 in a directory of 777) or only their owner (644 in 755), as the
// build option PRN_SHARED_DB has it. Writers: tests.
extern bool flDbmShared;
unsigned DbmMode();
unsigned DbmDirectoryMode();
// False where databases are their owner's and this user is another: what he changes lasts for the run, and
// there is nothing to complain of. True for everybody else, whom a failed write is told.
bool DbmMayWrite();

#define DBM_MAGIC "TXDBAA"   // first bytes of the header format
enum { DBM_MAGIC_TEST = 5 }; // so many of them decide

// A record taken out of a database. Owns: DbmFreeDbLinkList releases the chain.
struct DbLink {
    DbLink *next;
    char *record; // copy: key with its NUL, then data, then a NUL that does not count
    char *data;   // in the copy
    int size;     // of the data
};

// A record in memory: L, then the body, which holds K, the key with its NUL (K bytes) and the data (L - K - 2
// bytes). Words are in the machine's byte order.
struct DbmRecord {
    uint16_t L;
    char body[DBM_BUFFER];
};

// The run of count bytes as it stands in a file, and back; each byte but the last is XORed with the next
// plain one.
void DbScramble(char *bytes, size_t count);
void DbUnscramble(char *bytes, size_t count);

// 1 if the record was written; it replaces the key's record and stands last. 0 for a size of 0, for a key and
// data of together more than 65533 bytes, and, with "ERROR: Can't write to NAME" on standard error, for a
// failed write: the old file then stands. A file that is damaged in the middle is kept as NAME.xdb_damaged.
// Makes ./db first if the current directory has none and can be written.
int DbmPutRecord(const char *db, const char *key, const void *data, size_t size);
// Data bytes stored in the buffer, cut at its capacity; 0 if the key is absent or has no data. No NUL is
// added.
int DbmGetRecord(const char *db, const char *key, void *buffer, size_t capacity);
int DbmGetRecordSize(const char *db, const char *key);
// The data of the next record that has any, in file order; 0 at the end, after which it starts over.
// Uses: one count of calls for the process, whatever the database.
int DbmGetNextRecord(const char *db, void *buffer, size_t capacity);
// 1 if the file was rewritten, also when the key is absent; 0 without a file or after a failed write.
int DbmDeleteRecord(const char *db, const char *key);
// The same for every record whose key starts with the prefix; 0 for an empty prefix.
int DbmDeleteRecords(const char *db, const char *prefix);
// Result of DbmPutRecord under the new key; 0 if the old key is absent or has no data.
int DbmCopyRecord(const char *db, const char *oldKey, const char *newKey);
// Owns: all keys in file order, each led by the prefix text, the suffix text at the end; null without a
// record.
[[nodiscard]] char *DbmGetRecordList(const char *db, const char *prefix, const char *suffix);
// Owns: the records whose key holds the substring, in file order; null if there are none.
[[nodiscard]] DbLink *DbmGetDbLinkList(const char *db, const char *substring);
void DbmFreeDbLinkList(DbLink *chain);
// Owns: the names of the databases in pToolPath/db in directory order, separated by commas, or, with the
// flag, each led by a blank; an empty text if there are none, null if the directory can't be read.
[[nodiscard]] char *DbmGetDbList(int flBlank);

// Keeps other writers of a database out, from the first read of a change to its rename. It lies on the file
// itself, or on the directory while there is none; who may read them may hold it, so it is waited for no
// longer than 10 s, and then standard error tells the file. A lock inside another one of the same database is
// part of it.
class DbmLock {
public:
    explicit DbmLock(const char *db);
    // The same for a caller that waits some seconds, and tells by Fault why it hasn't got it.
    DbmLock(const char *db, int seconds);
    ~DbmLock();
    DbmLock(const DbmLock &) = delete;
    DbmLock &operator=(const DbmLock &) = delete;
    bool IsHeld() const { return flHeld; }
    // Empty if it is held; else the file, and by which process it is locked if the host tells so.
    const std::string &Fault() const { return fault; }

private:
    void Take(int tries);
    std::string name, fault;
    int file;
    DbmLock *outer;
    bool flHeld;
};
enum { DBM_LOCK_PAUSE = 20000, DBM_LOCK_TRIES = 500 }; // microseconds between the attempts
extern int DbmLockTries;                               // tests lower it

// Null without a message if the file is missing; a file that exists is tried 10 times, a second apart.
[[nodiscard]] FILE *OpenDataBase(const char *name, const char *extension, const char *mode, int flQuiet);
// NAME.xdb_new, made with DbmMode() and open for writing. Null, with the write message, if that is not
// possible.
[[nodiscard]] FILE *OpenNewDataBase(const char *name);
// 1 if the file has the new name, and its directory is on the disk.
int RenameDataBase(const char *name, const char *from, const char *to);
// Copies the records with another key, or, with a prefix length above 0, whose key does not start with the
// first so many characters of the key. 0, with the write message for the name, if a write or a read failed.
int PurgeRecord(const char *name, FILE *in, FILE *out, const char *key, size_t prefixLength);
// Scrambles the body in place first. Non-zero if written.
int PutData(FILE *out, DbmRecord *record);
// Non-zero if a record was read; the body is plain and followed by a NUL.
int GetData(FILE *in, DbmRecord *record);
// Prints the records of the file NAME.db on standard output.
void DumpDbm(const char *name);

// ---- Shared with the image layer

// The path of a database file: pToolPath/db/NAME.EXTENSION.
std::string DbmPath(const char *name, const char *extension);
// Writes the new contents by the call and puts them in the file's place, under the lock, synced to the disk.
// 0, with the write message, after a failure.
int DbmReplace(const char *name, int (*write)(FILE *out, const void *context), const void *context);
// "ERROR: Can't write to NAME" on standard error.
void DbmWriteError(const char *name);
// Keeps the file that is about to be replaced as NAME.xdb_damaged, because the new one lacks what could not
// be read of it, with a word in the log. False if that isn't possible: then it must not be replaced.
bool DbmKeepDamaged(const char *name);
// True, and the first time with a warning on standard error, for a file of more than DBM_FILE_MAX bytes.
bool DbmTestHuge(const char *path, long long size);
// Appends a copy of the record at the place *tail; the place of the next one, null if memory is exhausted.
DbLink **DbmAddLink(DbLink **tail, const char *key, size_t keyLength, const void *data, size_t size);

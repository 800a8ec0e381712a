// Record database, stream layer: every call reads or rewrites a headerless database file on disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

enum { DBM_BODY_MAX = 65535, DBM_READ_MAX = 65527, DBM_BUFFER = 65536 };

struct DbLink {
    DbLink *next;
    char *record; // copy: key then data
    char *data;   // in the copy
    int size;     // of the data
};

// A record in memory: L, then the body (K, key, data).
struct DbmRecord {
    uint16_t L;
    char body[DBM_BUFFER];
};

void DbScramble(char *bytes, size_t count);
void DbUnscramble(char *bytes, size_t count);

int DbmPutRecord(const char *db, const char *key, const void *data, size_t size);
int DbmGetRecord(const char *db, const char *key, void *buffer, size_t capacity);
int DbmGetRecordSize(const char *db, const char *key);
int DbmGetNextRecord(const char *db, void *buffer, size_t capacity);
int DbmDeleteRecord(const char *db, const char *key);
int DbmDeleteRecords(const char *db, const char *prefix);
int DbmCopyRecord(const char *db, const char *oldKey, const char *newKey);
[[nodiscard]] char *DbmGetRecordList(const char *db, const char *prefix, const char *suffix);
[[nodiscard]] DbLink *DbmGetDbLinkList(const char *db, const char *substring);
void DbmFreeDbLinkList(DbLink *chain);
[[nodiscard]] char *DbmGetDbList(int flBlank);
FILE *OpenDataBase(const char *name, const char *extension, const char *mode, int flQuiet);
FILE *OpenNewDataBase(const char *name);
void RenameDataBase(const char *name, const char *from, const char *to);
int PurgeRecord(const char *name, FILE *in, FILE *out, const char *key, size_t prefixLength);
int PutData(FILE *out, DbmRecord *record);
int GetData(FILE *in, DbmRecord *record);
void DumpDbm(const char *name);

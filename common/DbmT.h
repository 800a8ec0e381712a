// Record database, image layer: a whole database file in memory behind a handle.
#pragma once

#include "common/Dbm.h"

#include <ctime>

enum { DBT_NONE, DBT_HEADERLESS, DBT_HEADER };            // types
enum { DBT_NO_RELOAD = 2, DBT_NO_WRITE = 4 };             // flags
enum { DBT_HEADER_SIZE = 16 };

struct DbTHandle {
    char *name;
    int swap;
    int flags;
    char *image;
    size_t size;
    time_t fileTime;
    size_t cursor;
    size_t walk;
    long count;
    int type;
    struct DbTPrivate *priv; // finer file identity and the key index; see DbmT.cpp
};

struct DbTWalk {
    uint16_t L;
    uint16_t K;
    char *key; // type 1: in the scratch buffer
};

[[nodiscard]] DbTHandle *DbTOpen(const char *name, int flags);
void DbTClose(DbTHandle *handle);
void DbTUpDate(DbTHandle *handle);
void DbTSetDbType(DbTHandle *handle, int type);
DbTWalk *WalkDbTRecords(DbTHandle *handle, DbTWalk *walked, int index);
int FindTRecord(DbTHandle *handle, const char *key, DbTWalk *walked);
int DbmTGetRecord(DbTHandle *handle, const char *key, void *buffer, size_t capacity);
int DbmTGetRecordV(DbTHandle *handle, const char *key, char **buffer, size_t capacity);
int DbmTGetRecordSize(DbTHandle *handle, const char *key);
[[nodiscard]] char *DbmTGetRecordList(DbTHandle *handle, const char *prefix, const char *suffix);
[[nodiscard]] char *DbmTGetRecordListS(DbTHandle *handle, const char *list, const char *prefix, const char *suffix);
int TestKeyName(const char *key, const char *list);
[[nodiscard]] DbLink *DbmTGetDbLinkList(DbTHandle *handle, const char *substring);
int DbmTPutRecord(DbTHandle *handle, const char *key, const void *data, size_t size);
int DbmTDeleteRecord(DbTHandle *handle, const char *key);
int DbmTDeleteRecords(DbTHandle *handle, const char *prefix);
int DbmTCopyRecord(DbTHandle *handle, const char *oldKey, const char *newKey);
int PurgeTRecord(DbTHandle *handle, const char *key, size_t prefixLength);
int DbmTArchiveDb(DbTHandle *handle);
void DbmTPutData(DbTHandle *handle, const void *bytes, size_t count);
void DbmTGetData(DbTHandle *handle, void *bytes, size_t count);
void UpdateHeader(DbTHandle *handle);

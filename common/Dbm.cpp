// Stream layer of the record database: the scrambling, the walk through a file, and the safe replacement of
// one.
#include "common/Dbm.h"

#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/SysFile.h"
#include "common/utils.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

// ---- Scrambling

void DbScramble(char *bytes, size_t count) {
    for (size_t i = 1; i < count; i++) bytes[i - 1] = static_cast<char>(bytes[i - 1] ^ bytes[i]);
}

void DbUnscramble(char *bytes, size_t count) {
    for (size_t i = count; i > 1; i--) bytes[i - 2] = static_cast<char>(bytes[i - 2] ^ bytes[i - 1]);
}

// ---- A record in memory

static size_t RecordKeyLength(const DbmRecord &record) {
    uint16_t K = 0;
    if (record.L >= DBM_WORD) memcpy(&K, record.body, sizeof(K));
    return K;
}

static const char *RecordKey(const DbmRecord &record) {
    return record.body + DBM_WORD;
}

static const char *RecordData(const DbmRecord &record) {
    return RecordKey(record) + RecordKeyLength(record);
}

static size_t RecordDataSize(const DbmRecord &record) {
    size_t used = DBM_WORD + RecordKeyLength(record);
    return record.L > used ? record.L - used : 0;
}

// The key is a text: its NUL lies inside K.
static bool RecordHasKey(const DbmRecord &record) {
    size_t K = RecordKeyLength(record);
    return K > 0 && RecordKey(record)[K - 1] == '\0';
}

// Compared over the prefix length, or whole with the NUL if that is 0.
static bool RecordMatches(const DbmRecord &record, const char *key, size_t prefixLength) {
    size_t K = RecordKeyLength(record);
    size_t length = strlen(key);
    if (prefixLength == 0) return K == length + 1 && memcmp(RecordKey(record), key, K) == 0;
    prefixLength = std::min(prefixLength, length);
    return K > prefixLength && memcmp(RecordKey(record), key, prefixLength) == 0;
}

// False if the record does not fit the 16 bits of L.
static bool RecordBuild(DbmRecord *record, const char *key, const void *data, size_t size) {
    size_t length = strlen(key) + 1;
    if (size > DBM_BODY_MAX || length + size + DBM_WORD > DBM_BODY_MAX) return false;
    auto K = static_cast<uint16_t>(length);
    record->L = static_cast<uint16_t>(length + size + DBM_WORD);
    memcpy(record->body, &K, sizeof(K));
    memcpy(record->body + DBM_WORD, key, length);
    memcpy(record->body + DBM_WORD + length, data, size);
    return true;
}

// ---- Files

std::string DbmPath(const char *name, const char *extension) {
    return std::string(pToolPath ? pToolPath : ".") + "/db/" + name + "." + extension;
}

void DbmWriteError(const char *name) {
    fflush(stdout);
    fprintf(stderr, "ERROR: Can't write to %s", name);
}

FILE *OpenDataBase(const char *name, const char *extension, const char *mode, int flQuiet) {
    if (!name || !extension || !mode) return nullptr;
    std::string path = DbmPath(name, extension);
    if (!FindFile(nullptr, path.c_str())) return nullptr;
    for (int i = 0; i < DBM_OPEN_TRIES; i++) {
        if (FILE *file = OpenFile(nullptr, path.c_str(), mode, flQuiet ? ERR_SILENT : ERR_WARN)) return file;
        pSleep(1);
    }
    return nullptr;
}

// The directory of the path can take a new file, or the nearest one above it that exists a new directory.
static bool DirectoryWritable(const std::string &path) {
    std::string wanted = StripFn(path.c_str());
    int flWhole = 0;
    char *directory = FindExistingPath(wanted.c_str(), &flWhole);
    bool flWritable = directory && access(directory, W_OK) == 0;
    PutMem(directory);
    return flWritable && (flWhole || GetFileType(wanted.c_str()) == TYPE_MISSING);
}

// A temporary file that a killed process left is simply written again. One that is no plain file of our own,
// a link above all, goes first: touch, chmod and the opening would follow it. False if it stays.
static bool DropForeignFile(const std::string &path) {
    struct stat info;
    if (lstat(path.c_str(), &info) != 0) return true;
    if (S_ISREG(info.st_mode) && info.st_nlink == 1 && info.st_uid == geteuid()) return true;
    return unlink(path.c_str()) == 0; // no command: one that fails, on a directory, would end the process
}

FILE *OpenNewDataBase(const char *name) {
    if (!name) return nullptr;
    std::string path = DbmPath(name, "xdb_new");
    FILE *out = nullptr;
    // Asked first: a touch that fails would end the process.
    if (DirectoryWritable(path) && DropForeignFile(path)) {
        std::string directory = StripFn(path.c_str());
        std::string file = StripPath(path.c_str());
        CreateFile(directory.c_str(), file.c_str(), "666", nullptr, nullptr);
        out = OpenDataBase(name, "xdb_new", "wb", 1);
    }
    if (!out) DbmWriteError(name);
    return out;
}

void RenameDataBase(const char *name, const char *from, const char *to) {
    if (!name || !from || !to) return;
    std::string directory = std::string(pToolPath ? pToolPath : ".") + "/db";
    std::string source = std::string(name) + "." + from;
    std::string target = std::string(name) + "." + to;
    RenameFile(directory.c_str(), source.c_str(), target.c_str());
}

static void MakeLocalDirectory() {
    if (FindFile(".", "db") || access(".", W_OK) != 0) return;
    CreateFile("./db", nullptr, "777", nullptr, nullptr);
}

// A full disk may show at the flush or at the close only.
static bool CloseChecked(FILE *out) {
    bool flGood = fflush(out) == 0 && !ferror(out);
    return fclose(out) == 0 && flGood;
}

int DbmReplace(const char *name, int (*write)(FILE *out, const void *context), const void *context) {
    MakeLocalDirectory();
    FILE *out = OpenNewDataBase(name);
    if (!out) return 0;
    std::string path = DbmPath(name, "xdb_new");
    bool flWritten = write(out, context) != 0;
    if (!CloseChecked(out)) flWritten = false;
    if (flWritten) {
        RenameDataBase(name, "xdb_new", "xdb");
        flWritten = GetFileType(path.c_str()) == TYPE_MISSING;
    }
    if (flWritten) return 1;
    DbmWriteError(name);
    DeleteFile_(path.c_str(), nullptr); // a full disk needs the room
    return 0;
}

// ---- Records in files

int PutData(FILE *out, DbmRecord *record) {
    if (!out || !record) return 0;
    DbScramble(record->body, record->L);
    return fwrite(&record->L, sizeof(record->L), 1, out) == 1 &&
           fwrite(record->body, 1, record->L, out) == record->L;
}

int GetData(FILE *in, DbmRecord *record) {
    if (!in || !record) return 0;
    if (fread(&record->L, sizeof(record->L), 1, in) != 1) return 0;
    // All of it, however long: the scrambling runs from the end of the run.
    if (fread(record->body, 1, record->L, in) != record->L) return 0;
    DbUnscramble(record->body, record->L);
    record->body[record->L] = '\0';
    return record->L < DBM_WORD || RecordKeyLength(*record) + DBM_WORD <= record->L;
}

// The copy without the message.
static int CopyRecords(FILE *in, FILE *out, const char *key, size_t prefixLength) {
    DbmRecord record;
    while (GetData(in, &record))
        if (!RecordMatches(record, key, prefixLength) && !PutData(out, &record)) return 0;
    return !ferror(in); // what could not be read must not get lost
}

int PurgeRecord(const char *name, FILE *in, FILE *out, const char *key, size_t prefixLength) {
    if (!name || !in || !out || !key) return 0;
    int flCopied = CopyRecords(in, out, key, prefixLength);
    if (!flCopied) DbmWriteError(name);
    return flCopied;
}

static bool HasHeader(FILE *in) {
    char magic[DBM_MAGIC_TEST];
    bool flHeader = fread(magic, sizeof(magic), 1, in) == 1 && memcmp(magic, DBM_MAGIC, sizeof(magic)) == 0;
    rewind(in);
    return flHeader;
}

// Anybody may have put a pipe there, which would be waited for.
static bool IsOddFile(const char *db) {
    struct stat info;
    return stat(DbmPath(db, "xdb").c_str(), &info) == 0 && !S_ISREG(info.st_mode);
}

// The database for reading: null if it is missing, can't be opened or is no headerless file.
static FILE *OpenRecords(const char *db) {
    FILE *in = IsOddFile(db) ? nullptr : OpenDataBase(db, "xdb", "rb", 0);
    if (!in || !HasHeader(in)) return in;
    fclose(in);
    return nullptr;
}

// What a rewrite does: the old records less a key, then perhaps a new one.
struct DbmRewrite {
    FILE *in; // null without an old file
    const char *key;
    size_t prefixLength;
    DbmRecord *add; // null for a deletion
};

static int WriteRecords(FILE *out, const void *context) {
    auto rewrite = static_cast<const DbmRewrite *>(context);
    if (rewrite->in && !CopyRecords(rewrite->in, out, rewrite->key, rewrite->prefixLength)) return 0;
    return !rewrite->add || PutData(out, rewrite->add);
}

static int RewriteRecords(const char *db, const char *key, size_t prefixLength, DbmRecord *add) {
    FILE *in = OpenRecords(db);
    if (!in && FindFile_(DbmPath(db, "xdb").c_str(), nullptr)) {
        DbmWriteError(db); // it holds something that would get lost
        return 0;
    }
    if (!in && !add) return 0;
    DbmRewrite rewrite = {in, key, prefixLength, add};
    int flWritten = DbmReplace(db, WriteRecords, &rewrite);
    if (in) fclose(in);
    return flWritten;
}

int DbmPutRecord(const char *db, const char *key, const void *data, size_t size) {
    DbmRecord record;
    if (!db || !key || !data || size == 0 || !RecordBuild(&record, key, data, size)) return 0;
    return RewriteRecords(db, key, 0, &record);
}

int DbmDeleteRecord(const char *db, const char *key) {
    return db && key ? RewriteRecords(db, key, 0, nullptr) : 0;
}

int DbmDeleteRecords(const char *db, const char *prefix) {
    return db && prefix && *prefix ? RewriteRecords(db, prefix, strlen(prefix), nullptr) : 0;
}

// ---- Reading

static bool FindRecord(const char *db, const char *key, DbmRecord *record) {
    FILE *in = db && key ? OpenRecords(db) : nullptr;
    if (!in) return false;
    bool flFound = false;
    while (!flFound && GetData(in, record)) flFound = RecordMatches(*record, key, 0);
    fclose(in);
    return flFound;
}

static int CopyData(const DbmRecord &record, void *buffer, size_t capacity) {
    size_t size = std::min(RecordDataSize(record), capacity);
    memcpy(buffer, RecordData(record), size);
    return static_cast<int>(size);
}

int DbmGetRecord(const char *db, const char *key, void *buffer, size_t capacity) {
    DbmRecord record;
    return buffer && FindRecord(db, key, &record) ? CopyData(record, buffer, capacity) : 0;
}

int DbmGetRecordSize(const char *db, const char *key) {
    DbmRecord record;
    return FindRecord(db, key, &record) ? static_cast<int>(RecordDataSize(record)) : 0;
}

int DbmGetNextRecord(const char *db, void *buffer, size_t capacity) {
    static long count;
    FILE *in = db && buffer ? OpenRecords(db) : nullptr;
    DbmRecord record;
    long index = 0;
    bool flFound = false;
    while (in && !flFound && GetData(in, &record))
        if (RecordDataSize(record) > 0) flFound = index++ == count;
    if (in) fclose(in);
    count = flFound ? count + 1 : 0;
    return flFound ? CopyData(record, buffer, capacity) : 0;
}

int DbmCopyRecord(const char *db, const char *oldKey, const char *newKey) {
    DbmRecord record;
    if (!newKey || !FindRecord(db, oldKey, &record)) return 0;
    return DbmPutRecord(db, newKey, RecordData(record), RecordDataSize(record));
}

char *DbmGetRecordList(const char *db, const char *prefix, const char *suffix) {
    FILE *in = db && prefix && suffix ? OpenRecords(db) : nullptr;
    if (!in) return nullptr;
    DbmRecord record;
    std::string list;
    bool flAny = false;
    while (GetData(in, &record)) {
        if (!RecordHasKey(record)) continue;
        list.append(prefix).append(RecordKey(record));
        flAny = true;
    }
    fclose(in);
    return flAny ? SaveStr_((list + suffix).c_str()) : nullptr;
}

DbLink **DbmAddLink(DbLink **tail, const char *key, size_t keyLength, const void *data, size_t size) {
    auto link = static_cast<DbLink *>(GetMem(sizeof(DbLink)));
    auto copy = static_cast<char *>(GetMem(keyLength + size + 1));
    if (!link || !copy) {
        PutMem(link);
        PutMem(copy);
        return nullptr;
    }
    memcpy(copy, key, keyLength);
    memcpy(copy + keyLength, data, size);
    *link = {nullptr, copy, copy + keyLength, static_cast<int>(size)};
    *tail = link;
    return &link->next;
}

DbLink *DbmGetDbLinkList(const char *db, const char *substring) {
    FILE *in = db && substring ? OpenRecords(db) : nullptr;
    DbLink *chain = nullptr;
    DbLink **tail = &chain;
    DbmRecord record;
    while (in && tail && GetData(in, &record))
        if (RecordHasKey(record) && strstr(RecordKey(record), substring))
            tail = DbmAddLink(tail, RecordKey(record), RecordKeyLength(record), RecordData(record),
                              RecordDataSize(record));
    if (in) fclose(in);
    return chain;
}

void DbmFreeDbLinkList(DbLink *chain) {
    while (chain) {
        DbLink *next = chain->next;
        PutMem(chain->record);
        PutMem(chain);
        chain = next;
    }
}

// Packs the names in the listing to the front: a name without its extension and with one separator is never
// longer than its place in the listing.
char *DbmGetDbList(int flBlank) {
    std::string directory = std::string(pToolPath ? pToolPath : ".") + "/db";
    char *list = GetDirFileList(directory.c_str());
    if (!list) return nullptr;
    char *out = list;
    for (char *name = list + strspn(list, " "); *name;) {
        size_t length = strcspn(name, " ");
        char *next = name + length + strspn(name + length, " ");
        if (length > 4 && memcmp(name + length - 4, ".xdb", 4) == 0) {
            if (flBlank || out != list) *out++ = flBlank ? ' ' : ',';
            memmove(out, name, length - 4);
            out += length - 4;
        }
        name = next;
    }
    *out = '\0';
    return list;
}

void DumpDbm(const char *name) {
    if (!name) return;
    FILE *in = OpenFile(nullptr, (std::string(name) + ".db").c_str(), "rb", ERR_WARN);
    DbmRecord record;
    while (in && GetData(in, &record)) {
        printf("%i %i ==>{", static_cast<int>(record.L), static_cast<int>(RecordKeyLength(record)));
        for (size_t i = 0; i < record.L; i++)
            putchar(isprint(static_cast<unsigned char>(record.body[i])) ? record.body[i] : '.');
        printf("}\n");
    }
    if (in) fclose(in);
}

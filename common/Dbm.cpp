// Stream layer of the record database: the scrambling, the walk through a file, and the safe replacement of
// one.
#include "common/Dbm.h"

#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/SysFile.h"
#include "common/utils.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

static constexpr int TriesPerSecond = 1000000 / static_cast<int>(DBM_LOCK_PAUSE);

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

// ---- The lock of a database

static DbmLock *pHeldLock; // the outermost one; writer: DbmLock

static std::string DbmDirectory() {
    return std::string(pToolPath ? pToolPath : ".") + "/db";
}

#ifndef PRN_SHARED_DB
#define PRN_SHARED_DB 1
#endif
bool flDbmShared = PRN_SHARED_DB;

enum { SHARED_MODE = 0666, CLOSED_MODE = 0644, SHARED_DIRECTORY_MODE = 0777, CLOSED_DIRECTORY_MODE = 0755 };

unsigned DbmMode() {
    return flDbmShared ? SHARED_MODE : CLOSED_MODE;
}

unsigned DbmDirectoryMode() {
    return flDbmShared ? SHARED_DIRECTORY_MODE : CLOSED_DIRECTORY_MODE;
}

bool DbmMayWrite() {
    return flDbmShared || geteuid() == 0 || eaccess(DbmDirectory().c_str(), W_OK) == 0;
}

static void MakeLocalDirectory() {
    bool flMissing = access("db", F_OK) != 0 && errno == ENOENT;
    if (!flMissing || access(".", W_OK) != 0) return;
    CreateFile("./db", nullptr, flDbmShared ? "777" : "755", nullptr, nullptr);
}

// The database file itself; the directory while there is none, or something else is in its place.
static int OpenLockFile(const std::string &path) {
    int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file >= 0) return file;
    std::string directory = DbmDirectory();
    if (access(directory.c_str(), F_OK) != 0 && errno == ENOENT) mkdir(directory.c_str(), DbmDirectoryMode());
    return open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

// A rename puts another file in its place: a lock on the old one keeps nobody out.
static bool IsLockFile(int file, const std::string &path) {
    struct stat held, named;
    if (fstat(file, &held) != 0) return false;
    if (S_ISDIR(held.st_mode)) return lstat(path.c_str(), &named) != 0 || !S_ISREG(named.st_mode);
    return lstat(path.c_str(), &named) == 0 && held.st_ino == named.st_ino && held.st_dev == named.st_dev;
}

int DbmLockTries = DBM_LOCK_TRIES;

// The process that holds a lock on the file, by the kernel's list; 0 if that doesn't tell.
static int FindHolder(int file) {
    struct stat held;
    char line[LINEBUF_SIZE];
    FILE *locks = fstat(file, &held) == 0 ? fopen("/proc/locks", "re") : nullptr;
    int holder = 0;
    while (locks && holder == 0 && fgets(line, sizeof line, locks)) {
        unsigned upper, lower;
        unsigned long inode;
        int process;
        // "1: FLOCK  ADVISORY  WRITE 123 08:01:4711 0 EOF"
        bool flLock = sscanf(line, "%*d: FLOCK %*s %*s %d %x:%x:%lu", &process, &upper, &lower, &inode) == 4;
        if (flLock && inode == held.st_ino && makedev(upper, lower) == held.st_dev) holder = process;
    }
    if (locks) fclose(locks);
    return holder;
}

static std::string LockFault(const std::string &path, int file) {
    int holder = FindHolder(file);
    return path + " is locked by " + (holder > 0 ? "process " + std::to_string(holder) : "another program");
}

// The descriptor with the lock, or -1 and why.
static int TakeLockFile(const std::string &path, int tries, std::string &fault) {
    for (int i = 0; i < tries; i++) {
        int file = OpenLockFile(path);
        if (file < 0) {
            fault = "can't open " + path + ": " + strerror(errno);
            return -1;
        }
        bool flLocked = flock(file, LOCK_EX | LOCK_NB) == 0;
        if (flLocked && IsLockFile(file, path)) return file;
        if (!flLocked && i + 1 == tries) fault = LockFault(path, file);
        close(file);
        if (!flLocked) usleep(DBM_LOCK_PAUSE);
    }
    if (fault.empty()) fault = path + " is replaced over and over";
    return -1;
}

void DbmLock::Take(int tries) {
    flHeld = outer && outer->name == name;
    if (flHeld) return;
    MakeLocalDirectory();
    file = TakeLockFile(DbmPath(name.c_str(), "xdb"), tries, fault);
    flHeld = file >= 0;
    if (flHeld) pHeldLock = this;
}

DbmLock::DbmLock(const char *db) : name(db ? db : ""), file(-1), outer(pHeldLock) {
    Take(DbmLockTries);
    if (flHeld) return;
    fflush(stdout);
    fprintf(stderr, "ERROR: %s\n", fault.c_str());
}

DbmLock::DbmLock(const char *db, int seconds) : name(db ? db : ""), file(-1), outer(pHeldLock) {
    Take(std::max(seconds, 1) * TriesPerSecond);
}

DbmLock::~DbmLock() {
    if (file < 0) return;
    pHeldLock = outer;
    close(file);
}

// ---- Replacing a file

// What a killed writer left, and whatever anybody put there, goes first: nothing of it is followed or written
// to.
FILE *OpenNewDataBase(const char *name) {
    if (!name) return nullptr;
    std::string path = DbmPath(name, "xdb_new");
    unlink(path.c_str());
    int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, DbmMode());
    FILE *out = file >= 0 && fchmod(file, DbmMode()) == 0 ? fdopen(file, "wb") : nullptr;
    if (!out && file >= 0) close(file);
    if (!out) DbmWriteError(name);
    return out;
}

// A new name lasts when its directory has reached the disk.
static bool SyncDirectory() {
    int directory = open(DbmDirectory().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory < 0) return false;
    bool flSynced = fsync(directory) == 0 || errno == EINVAL;
    close(directory);
    return flSynced;
}

int RenameDataBase(const char *name, const char *from, const char *to) {
    if (!name || !from || !to) return 0;
    return rename(DbmPath(name, from).c_str(), DbmPath(name, to).c_str()) == 0 && SyncDirectory();
}

// A full disk may show at the flush, the sync or the close only.
static bool CloseChecked(FILE *out) {
    bool flGood = fflush(out) == 0 && !ferror(out) && fsync(fileno(out)) == 0;
    return fclose(out) == 0 && flGood;
}

bool DbmKeepDamaged(const char *name) {
    std::string kept = DbmPath(name, "xdb_damaged");
    PutLogMsg("database %s is damaged; kept as %s\n", name, kept.c_str());
    unlink(kept.c_str());
    return link(DbmPath(name, "xdb").c_str(), kept.c_str()) == 0 || errno == ENOENT;
}

int DbmReplace(const char *name, int (*write)(FILE *out, const void *context), const void *context) {
    DbmLock lock(name);
    if (!lock.IsHeld()) {
        DbmWriteError(name);
        return 0;
    }
    FILE *out = OpenNewDataBase(name);
    if (!out) return 0;
    bool flWritten = write(out, context) != 0;
    if (!CloseChecked(out)) flWritten = false;
    if (flWritten && RenameDataBase(name, "xdb_new", "xdb")) return 1;
    DbmWriteError(name);
    unlink(DbmPath(name, "xdb_new").c_str()); // a full disk needs the room
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

// The copy without the message. *read: the bytes of the records that could be read.
static int CopyRecords(FILE *in, FILE *out, const char *key, size_t prefixLength, long *read) {
    DbmRecord record;
    for (*read = 0; GetData(in, &record); *read = ftell(in))
        if (!RecordMatches(record, key, prefixLength) && !PutData(out, &record)) return 0;
    return !ferror(in); // what could not be read must not get lost
}

int PurgeRecord(const char *name, FILE *in, FILE *out, const char *key, size_t prefixLength) {
    if (!name || !in || !out || !key) return 0;
    long read;
    int flCopied = CopyRecords(in, out, key, prefixLength, &read);
    if (!flCopied) DbmWriteError(name);
    return flCopied;
}

static bool HasHeader(FILE *in) {
    char magic[DBM_MAGIC_TEST];
    bool flHeader = fread(magic, sizeof(magic), 1, in) == 1 && memcmp(magic, DBM_MAGIC, sizeof(magic)) == 0;
    rewind(in);
    return flHeader;
}

bool DbmTestHuge(const char *path, long long size) {
    static bool flTold;
    if (size <= DBM_FILE_MAX) return false;
    if (!flTold) ErrorMsg(ERR_WARN, 0, "%s is larger than %d MB: not read", path, DBM_FILE_MAX >> 20);
    flTold = true;
    return true;
}

// Anybody may have put a pipe there, which would be waited for, or bytes that take minutes to read.
static bool IsOddFile(const char *db) {
    struct stat info;
    std::string path = DbmPath(db, "xdb");
    if (stat(path.c_str(), &info) != 0) return false;
    return !S_ISREG(info.st_mode) || DbmTestHuge(path.c_str(), info.st_size);
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
    const char *db;
    FILE *in; // null without an old file
    const char *key;
    size_t prefixLength;
    DbmRecord *add; // null for a deletion
};

static bool CopyOldRecords(const DbmRewrite *rewrite, FILE *out) {
    long read;
    if (!CopyRecords(rewrite->in, out, rewrite->key, rewrite->prefixLength, &read)) return false;
    struct stat info;
    bool flWhole = fstat(fileno(rewrite->in), &info) == 0 && info.st_size == read;
    return flWhole || DbmKeepDamaged(rewrite->db);
}

static int WriteRecords(FILE *out, const void *context) {
    auto rewrite = static_cast<const DbmRewrite *>(context);
    if (rewrite->in && !CopyOldRecords(rewrite, out)) return 0;
    return !rewrite->add || PutData(out, rewrite->add);
}

static int RewriteRecords(const char *db, const char *key, size_t prefixLength, DbmRecord *add) {
    if (!add && !FindFile_(DbmPath(db, "xdb").c_str(), nullptr)) return 0;
    DbmLock lock(db); // from the first read on: another writer's record would get lost
    if (!lock.IsHeld()) {
        DbmWriteError(db);
        return 0;
    }
    FILE *in = OpenRecords(db);
    if (!in && FindFile_(DbmPath(db, "xdb").c_str(), nullptr)) {
        DbmWriteError(db); // it holds something that would get lost
        return 0;
    }
    DbmRewrite rewrite = {db, in, key, prefixLength, add};
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

// Image layer of the record database: load and reload, walk and search, change in memory, write back.
#include "common/DbmT.h"

#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/utils.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

// A file as it was found. Two renames within one second differ in nothing but inode and nanoseconds.
struct FileIdentity {
    struct timespec changed;
    off_t size;
    ino_t inode;
};

struct IndexSlot {
    uint64_t hash;
    uint32_t place;  // offset of the key's first record, plus 1; 0 for a free slot
    uint32_t shared; // further records have this hash
};

// The index holds for exactly one state of the image, the one that it remembers.
struct DbTPrivate {
    size_t room; // bytes allocated for the image
    FileIdentity file;
    struct timespec inodeChanged; // looked at after a failed read only: a chmod is worth another try
    int flKnown;                  // file tells what the image came from
    int flUnread;                 // that file could not be read
    int flCut;                    // the image lacks something of it
    IndexSlot *slots;
    size_t slotCount; // a power of 2, 0 without an index
    int flSearched;   // this image was searched before: an index will pay
    const char *indexImage;
    size_t indexSize;
    int indexType;
};

// A plain record of the headerless format, or a plain key of the header format.
static char Scratch[DBM_BUFFER];

static bool IsSet(const DbTHandle *h, int flag) {
    return (h->flags & flag) != 0;
}

// ---- Bytes of the image

static uint16_t GetWord(const DbTHandle *h, size_t place) {
    uint16_t word;
    memcpy(&word, h->image + place, sizeof(word));
    return h->swap ? static_cast<uint16_t>(word << 8 | word >> 8) : word;
}

static void PutWord(DbTHandle *h, size_t place, size_t value) {
    auto word = static_cast<uint16_t>(value);
    if (h->swap) word = static_cast<uint16_t>(word << 8 | word >> 8);
    memcpy(h->image + place, &word, sizeof(word));
}

// Bytes from the cursor that lie in the first limit bytes of the image.
static size_t ClipCount(const DbTHandle *h, size_t count, size_t limit) {
    if (!h->image || h->cursor >= limit) return 0;
    return std::min(count, limit - h->cursor);
}

static void DropIndex(DbTHandle *h) {
    PutMem(h->priv->slots);
    h->priv->slots = nullptr;
    h->priv->slotCount = 0;
    h->priv->flSearched = 0;
}

void DbmTPutData(DbTHandle *handle, const void *bytes, size_t count) {
    if (!handle || !bytes) return;
    size_t fits = ClipCount(handle, count, handle->priv->room);
    if (fits > 0) {
        memcpy(handle->image + handle->cursor, bytes, fits);
        DbScramble(handle->image + handle->cursor, fits);
    }
    handle->cursor += count;
    DropIndex(handle);
}

void DbmTGetData(DbTHandle *handle, void *bytes, size_t count) {
    if (!handle || !bytes) return;
    auto out = static_cast<char *>(bytes);
    size_t there = ClipCount(handle, count, handle->size);
    if (there > 0) memcpy(out, handle->image + handle->cursor, there);
    DbUnscramble(out, there);
    memset(out + there, 0, count - there);
    handle->cursor += count;
}

// ---- The header

void DbTSetDbType(DbTHandle *handle, int type) {
    if (!handle) return;
    handle->type = type;
    handle->swap = type == DBT_HEADER && std::endian::native != std::endian::big;
}

static char RandomByte() {
    static bool flSeeded;
    if (!flSeeded) srand(static_cast<unsigned>(time(nullptr)) ^ static_cast<unsigned>(getpid()));
    flSeeded = true;
    return static_cast<char>(rand() % 256);
}

void UpdateHeader(DbTHandle *handle) {
    if (!handle || !handle->image || handle->priv->room < DBT_HEADER_SIZE) return;
    char *header = handle->image;
    std::string digits = std::to_string(handle->count).substr(0, DBT_COUNT_DIGITS);
    std::string text = DBM_MAGIC + digits;
    memcpy(header, text.c_str(), text.length() + 1);
    for (size_t i = text.length() + 1; i < DBT_HEADER_SIZE; i++) header[i] = RandomByte();
}

static bool HasHeader(const DbTHandle *h) {
    return h->size >= DBM_MAGIC_TEST && memcmp(h->image, DBM_MAGIC, DBM_MAGIC_TEST) == 0;
}

// The digits behind the magic; there may be fewer bytes than a header has.
static long HeaderCount(const DbTHandle *h) {
    char digits[DBT_COUNT_DIGITS + 1] = "";
    size_t start = sizeof(DBM_MAGIC) - 1;
    if (h->size > start)
        memcpy(digits, h->image + start, std::min<size_t>(DBT_COUNT_DIGITS, h->size - start));
    return std::max(strtol(digits, nullptr, 10), 0L);
}

// ---- Load and reload

static std::string DbTPath(const char *name) {
    if (*name == '.') return name;
    if (*name != '/') return DbmPath(name, "xdb");
    return strchr(name, '.') ? std::string(name) : std::string(name) + ".xdb";
}

static bool SameTime(const struct timespec &a, const struct timespec &b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

static bool SameFile(const DbTHandle *h, const struct stat &info) {
    const DbTPrivate *p = h->priv;
    if (!p->flKnown || p->file.size != info.st_size || p->file.inode != info.st_ino) return false;
    if (p->flUnread && !SameTime(p->inodeChanged, info.st_ctim)) return false;
    return SameTime(p->file.changed, info.st_mtim);
}

static void KeepIdentity(DbTHandle *h, const struct stat &info, bool flUnread) {
    h->priv->file = {info.st_mtim, info.st_size, info.st_ino};
    h->priv->inodeChanged = info.st_ctim;
    h->priv->flKnown = 1;
    h->priv->flUnread = flUnread;
}

static void SetImage(DbTHandle *h, char *image, size_t size) {
    if (image != h->image) PutMem(h->image);
    h->image = image;
    h->size = size;
    h->priv->room = size;
    h->cursor = h->walk = 0;
    h->priv->flCut = 0;
    DropIndex(h);
}

// Whoever waits reads why.
static void TellUnreadable(const std::string &path) {
    int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (file < 0) ErrorMsg(ERR_WARN, 0, "can't read %s: %s", path.c_str(), strerror(errno));
    if (file >= 0) close(file);
}

// A file that is being written, or not readable for a moment, gets time. Owns: the contents.
static char *ReadPatiently(const std::string &path) {
    for (int i = 0; i < DBM_OPEN_TRIES; i++) {
        if (char *content = GetSavedFileContent(path.c_str(), nullptr)) return content;
        if (GetFileSize(path.c_str()) == 0) break;
        if (i == 0) TellUnreadable(path);
        pSleep(1);
    }
    return nullptr;
}

// For a file that isn't read: it is kept if it is written over.
static void SetEmptyImage(DbTHandle *h) {
    auto image = static_cast<char *>(GetMem(DBT_HEADER_SIZE));
    SetImage(h, image, image ? DBT_HEADER_SIZE : 0);
    h->priv->flCut = h->priv->flUnread;
    h->fileTime = 0;
    h->count = 0;
    DbTSetDbType(h, DBT_NONE);
    UpdateHeader(h);
}

void DbTUpDate(DbTHandle *handle) {
    if (!handle) return;
    std::string path = DbTPath(handle->name);
    struct stat info;
    if (stat(path.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return;
    if (handle->image && SameFile(handle, info)) return;
    SetImage(handle, nullptr, 0);
    char *content = DbmTestHuge(path.c_str(), info.st_size) ? nullptr : ReadPatiently(path);
    KeepIdentity(handle, info, !content && info.st_size > 0);
    if (!content) return SetEmptyImage(handle);
    SetImage(handle, content, static_cast<size_t>(SavedFileSize));
    handle->fileTime = info.st_mtime;
    bool flHeader = HasHeader(handle);
    DbTSetDbType(handle, flHeader ? DBT_HEADER : DBT_HEADERLESS);
    handle->count = flHeader ? HeaderCount(handle) : 0;
}

static void Refresh(DbTHandle *h) {
    if (!IsSet(h, DBT_NO_RELOAD)) DbTUpDate(h);
}

DbTHandle *DbTOpen(const char *name, int flags) {
    if (!name) return nullptr;
    auto handle = static_cast<DbTHandle *>(GetMem(sizeof(DbTHandle)));
    auto priv = static_cast<DbTPrivate *>(GetMem(sizeof(DbTPrivate)));
    if (!handle || !priv) {
        PutMem(handle);
        PutMem(priv);
        return nullptr;
    }
    handle->name = SaveStr_(name);
    handle->flags = flags;
    handle->priv = priv;
    DbTUpDate(handle);
    return handle;
}

void DbTClose(DbTHandle *handle) {
    if (!handle) return;
    SetImage(handle, nullptr, 0);
    PutMem(handle->priv);
    PutMem(handle->name);
    PutMem(handle);
}

// ---- Walk

static size_t FirstRecord(const DbTHandle *h) {
    return h->type == DBT_HEADERLESS ? 0 : DBT_HEADER_SIZE;
}

// A plain record comes to stand in the scratch buffer; false if its key runs past it.
static bool ReadPlainRecord(DbTHandle *h, DbTWalk *walked, size_t start) {
    memcpy(Scratch, h->image + start + DBM_WORD, walked->L);
    DbUnscramble(Scratch, walked->L);
    Scratch[walked->L] = '\0';
    if (walked->L >= DBM_WORD) memcpy(&walked->K, Scratch, sizeof(walked->K));
    walked->key = Scratch + DBM_WORD;
    h->cursor = start + DBM_WORD;
    return walked->L < DBM_WORD || walked->K + DBM_WORD <= walked->L;
}

static bool ReadKeyLength(DbTHandle *h, DbTWalk *walked, size_t start) {
    if (walked->L >= DBM_WORD) walked->K = GetWord(h, start + DBM_WORD);
    h->cursor = start + 2 * DBM_WORD;
    return walked->L < DBM_WORD || walked->K + DBM_WORD <= walked->L;
}

static bool ReadRecord(DbTHandle *h, DbTWalk *walked, size_t start) {
    *walked = {};
    if (h->size - start < DBM_WORD) return false;
    walked->L = GetWord(h, start);
    if (h->size - start - DBM_WORD < walked->L) return false;
    return h->type == DBT_HEADERLESS ? ReadPlainRecord(h, walked, start) : ReadKeyLength(h, walked, start);
}

DbTWalk *WalkDbTRecords(DbTHandle *handle, DbTWalk *walked, int index) {
    if (!handle || !walked) return nullptr;
    if (index == 0) handle->walk = FirstRecord(handle);
    size_t start = handle->walk;
    if (!handle->image || start >= handle->size) return nullptr;
    if (!ReadRecord(handle, walked, start)) {
        handle->size = start; // damaged from here on
        handle->priv->flCut = 1;
        return nullptr;
    }
    handle->walk = start + walked->L + DBM_WORD;
    return walked;
}

static size_t WalkedDataSize(const DbTWalk &walked) {
    size_t used = DBM_WORD + walked.K;
    return walked.L > used ? walked.L - used : 0;
}

// The key of the record just walked, in the scratch buffer, with the cursor at the data; null if it is no
// text.
static const char *WalkedKey(DbTHandle *h, const DbTWalk &walked) {
    char *key = walked.key;
    if (!key) {
        key = Scratch;
        DbmTGetData(h, key, walked.K);
    }
    return walked.K > 0 && key[walked.K - 1] == '\0' ? key : nullptr;
}

static void CopyWalkedData(DbTHandle *h, const DbTWalk &walked, void *data, size_t size) {
    if (walked.key) {
        memcpy(data, walked.key + walked.K, size);
        return;
    }
    if (size == WalkedDataSize(walked)) return DbmTGetData(h, data, size);
    DbmTGetData(h, Scratch, WalkedDataSize(walked)); // a run is plain from its end only
    memcpy(data, Scratch, size);
}

// ---- The index of the keys

static uint64_t HashKey(const char *key, size_t length) {
    uint64_t hash = 14695981039346656037u; // FNV-1a
    for (size_t i = 0; i < length; i++) hash = (hash ^ static_cast<unsigned char>(key[i])) * 1099511628211u;
    return hash;
}

static IndexSlot *FindSlot(const DbTPrivate *p, uint64_t hash) {
    size_t mask = p->slotCount - 1;
    size_t i = hash & mask;
    while (p->slots[i].place != 0 && p->slots[i].hash != hash) i = (i + 1) & mask;
    return &p->slots[i];
}

// At least as many as a walk will find.
static size_t CountRecords(const DbTHandle *h) {
    size_t count = 0;
    for (size_t place = FirstRecord(h); place + DBM_WORD <= h->size; place += GetWord(h, place) + DBM_WORD)
        count++;
    return count;
}

static void FillIndex(DbTHandle *h) {
    DbTWalk walked;
    for (int i = 0; WalkDbTRecords(h, &walked, i); i = 1) {
        size_t start = h->walk - walked.L - DBM_WORD;
        const char *key = WalkedKey(h, walked);
        if (!key) continue;
        uint64_t hash = HashKey(key, walked.K);
        IndexSlot *slot = FindSlot(h->priv, hash);
        if (slot->place != 0)
            slot->shared = 1;
        else
            *slot = {hash, static_cast<uint32_t>(start + 1), 0};
    }
}

static bool IndexHolds(const DbTHandle *h) {
    const DbTPrivate *p = h->priv;
    return p->slots && p->indexImage == h->image && p->indexSize == h->size && p->indexType == h->type;
}

// False for the first search of an image, and if there is no memory for an index; the search then walks.
static bool BuildIndex(DbTHandle *h) {
    DbTPrivate *p = h->priv;
    if (IndexHolds(h)) return true;
    bool flPays = p->flSearched != 0;
    DropIndex(h);
    p->flSearched = 1;
    if (!flPays || !h->image || h->size >= UINT32_MAX) return false;
    p->slotCount = std::bit_ceil(2 * CountRecords(h) + 2);
    p->slots = static_cast<IndexSlot *>(GetMem(p->slotCount * sizeof(IndexSlot)));
    if (!p->slots) return false;
    FillIndex(h);
    p->indexImage = h->image;
    p->indexSize = h->size;
    p->indexType = h->type;
    return true;
}

// ---- Search and read

static bool WalkedIs(DbTHandle *h, const DbTWalk &walked, const char *key, size_t K) {
    if (walked.K != K) return false;
    const char *there = WalkedKey(h, walked);
    return there && memcmp(there, key, K) == 0;
}

static int FindByWalk(DbTHandle *h, const char *key, size_t K, DbTWalk *walked) {
    for (int i = 0; WalkDbTRecords(h, walked, i); i = 1)
        if (WalkedIs(h, *walked, key, K)) return 1;
    return 0;
}

int FindTRecord(DbTHandle *handle, const char *key, DbTWalk *walked) {
    if (!handle || !key || !*key || !walked) return 0;
    size_t K = strlen(key) + 1;
    if (!BuildIndex(handle)) return FindByWalk(handle, key, K, walked);
    const IndexSlot *slot = FindSlot(handle->priv, HashKey(key, K));
    if (slot->place == 0) return 0;
    handle->walk = slot->place - 1;
    if (WalkDbTRecords(handle, walked, 1) && WalkedIs(handle, *walked, key, K)) return 1;
    return slot->shared ? FindByWalk(handle, key, K, walked) : 0; // two keys of one hash
}

static bool FindFresh(DbTHandle *h, const char *key, DbTWalk *walked) {
    if (!h || !key) return false;
    Refresh(h);
    return FindTRecord(h, key, walked) != 0;
}

int DbmTGetRecord(DbTHandle *handle, const char *key, void *buffer, size_t capacity) {
    DbTWalk walked;
    if (!buffer || !FindFresh(handle, key, &walked)) return 0;
    size_t size = std::min(WalkedDataSize(walked), capacity);
    CopyWalkedData(handle, walked, buffer, size);
    return static_cast<int>(size);
}

int DbmTGetRecordV(DbTHandle *handle, const char *key, char **buffer, size_t capacity) {
    DbTWalk walked;
    if (!buffer || !FindFresh(handle, key, &walked)) return 0;
    size_t size = WalkedDataSize(walked);
    if (size > capacity || !*buffer) {
        auto block = static_cast<char *>(GetMem(size));
        if (!block) return 0;
        *buffer = block;
    }
    CopyWalkedData(handle, walked, *buffer, size);
    return static_cast<int>(size);
}

int DbmTGetRecordSize(DbTHandle *handle, const char *key) {
    DbTWalk walked;
    return FindFresh(handle, key, &walked) ? static_cast<int>(WalkedDataSize(walked)) : 0;
}

int TestKeyName(const char *key, const char *list) {
    if (!key || !list) return 0;
    while (*list) {
        size_t length = strcspn(list, ",");
        if (length > 0 && strncmp(key, list, length) == 0) return 1;
        list += length;
        if (*list) list++;
    }
    return 0;
}

// Without a list of prefixes, all keys.
static char *ListKeys(DbTHandle *h, const char *list, const char *prefix, const char *suffix) {
    Refresh(h);
    std::string text;
    bool flAny = false;
    DbTWalk walked;
    for (int i = 0; WalkDbTRecords(h, &walked, i); i = 1) {
        const char *key = WalkedKey(h, walked);
        if (!key || (list && !TestKeyName(key, list))) continue;
        text.append(prefix).append(key);
        flAny = true;
    }
    return flAny ? SaveStr_((text + suffix).c_str()) : nullptr;
}

char *DbmTGetRecordList(DbTHandle *handle, const char *prefix, const char *suffix) {
    return handle && prefix && suffix ? ListKeys(handle, nullptr, prefix, suffix) : nullptr;
}

char *DbmTGetRecordListS(DbTHandle *handle, const char *list, const char *prefix, const char *suffix) {
    return handle && list && prefix && suffix ? ListKeys(handle, list, prefix, suffix) : nullptr;
}

// The data of the header format are fetched into the link's copy, behind the key.
static DbLink **AddWalked(DbTHandle *h, const DbTWalk &walked, const char *key, DbLink **tail) {
    size_t size = WalkedDataSize(walked);
    if (walked.key) return DbmAddLink(tail, key, walked.K, key + walked.K, size);
    std::string data(size, '\0');
    DbmTGetData(h, data.data(), size);
    return DbmAddLink(tail, key, walked.K, data.data(), size);
}

DbLink *DbmTGetDbLinkList(DbTHandle *handle, const char *substring) {
    if (!handle || !substring) return nullptr;
    Refresh(handle);
    DbLink *chain = nullptr;
    DbLink **tail = &chain;
    DbTWalk walked;
    for (int i = 0; tail && WalkDbTRecords(handle, &walked, i); i = 1) {
        const char *key = WalkedKey(handle, walked);
        if (key && strstr(key, substring)) tail = AddWalked(handle, walked, key, tail);
    }
    return chain;
}

// ---- Change

// Changes of an image that are written at once hold the lock from the refresh on; others have nothing to keep
// apart.
class DbTWriteLock {
public:
    explicit DbTWriteLock(const DbTHandle *handle) {
        if (!handle || IsSet(handle, DBT_NO_WRITE) || *handle->name == '/' || *handle->name == '.') return;
        lock.emplace(handle->name);
        if (!lock->IsHeld()) DbmWriteError(handle->name);
    }
    bool IsHeld() const { return !lock || lock->IsHeld(); }

private:
    std::optional<DbmLock> lock;
};

static bool PurgeMatches(DbTHandle *h, const DbTWalk &walked, const char *key, size_t prefixLength) {
    if (prefixLength == 0) return WalkedIs(h, walked, key, strlen(key) + 1);
    const char *there = WalkedKey(h, walked);
    return there && walked.K >= prefixLength && memcmp(there, key, prefixLength) == 0;
}

// Moves the records that stay down over those that go, in one walk. Records removed.
static int PurgeImage(DbTHandle *h, const std::string &own, size_t prefixLength) {
    const char *key = own.c_str();
    int removed = 0;
    size_t kept = FirstRecord(h);
    DbTWalk walked;
    for (int i = 0; WalkDbTRecords(h, &walked, i); i = 1) {
        size_t length = walked.L + DBM_WORD;
        if (PurgeMatches(h, walked, key, prefixLength)) {
            removed++;
            if (h->count > 0) h->count--;
            continue;
        }
        if (removed > 0) memmove(h->image + kept, h->image + h->walk - length, length);
        kept += length;
    }
    if (removed == 0) return 0;
    // At least a byte: an image that is null would be loaded again.
    if (char *image = static_cast<char *>(AdjustMem(h->image, std::max<size_t>(kept, 1)))) h->image = image;
    h->size = h->priv->room = kept;
    h->walk = FirstRecord(h);
    DropIndex(h);
    return removed;
}

int PurgeTRecord(DbTHandle *handle, const char *key, size_t prefixLength) {
    if (!handle || !key) return 0;
    std::string own(key); // it may be a walked one, which the next step of a walk overwrites
    Refresh(handle);
    return PurgeImage(handle, own, std::min(prefixLength, own.size() + 1)) > 0;
}

// Room for a record behind the last one, and for a header in front of the first; false leaves the image as it
// is.
static bool GrowImage(DbTHandle *h, size_t length) {
    size_t size = h->type == DBT_HEADERLESS ? h->size : std::max<size_t>(h->size, DBT_HEADER_SIZE);
    auto image = static_cast<char *>(AdjustMem(h->image, size + length));
    if (!image) return false;
    memset(image + h->size, 0, size + length - h->size);
    h->image = image;
    h->size = size;
    h->priv->room = size + length;
    DropIndex(h);
    return true;
}

static void AppendRecord(DbTHandle *h, const char *key, size_t K, const void *data, size_t size) {
    size_t L = K + size + DBM_WORD;
    PutWord(h, h->size, L);
    if (h->type == DBT_HEADERLESS) {
        auto word = static_cast<uint16_t>(K);
        memcpy(Scratch, &word, sizeof(word));
        memcpy(Scratch + DBM_WORD, key, K);
        memcpy(Scratch + DBM_WORD + K, data, size);
        h->cursor = h->size + DBM_WORD;
        DbmTPutData(h, Scratch, L);
    } else {
        PutWord(h, h->size + DBM_WORD, K);
        h->cursor = h->size + 2 * DBM_WORD;
        DbmTPutData(h, key, K);
        DbmTPutData(h, data, size);
        h->count++;
    }
    h->size += L + DBM_WORD;
}

int DbmTPutRecord(DbTHandle *handle, const char *key, const void *data, size_t size) {
    if (!handle || !key || !data || size == 0 || size > DBM_BODY_MAX) return 0;
    size_t K = strlen(key) + 1;
    if (K + size + DBM_WORD > DBM_BODY_MAX) return 0;
    std::string own(key), bytes(static_cast<const char *>(data), size); // they may lie in the image
    DbTWriteLock lock(handle);
    if (!lock.IsHeld()) return 0;
    Refresh(handle);
    if (handle->type == DBT_NONE) DbTSetDbType(handle, DBT_HEADER);
    PurgeImage(handle, own, 0);
    if (!GrowImage(handle, K + size + 2 * DBM_WORD)) return 0;
    AppendRecord(handle, own.c_str(), K, bytes.data(), size);
    return IsSet(handle, DBT_NO_WRITE) || DbmTArchiveDb(handle);
}

int DbmTDeleteRecord(DbTHandle *handle, const char *key) {
    DbTWriteLock lock(handle);
    if (!lock.IsHeld()) return 0;
    if (!PurgeTRecord(handle, key, 0)) return 0;
    return IsSet(handle, DBT_NO_WRITE) || DbmTArchiveDb(handle);
}

int DbmTDeleteRecords(DbTHandle *handle, const char *prefix) {
    if (!handle || !prefix || !*prefix) return 0;
    DbTWriteLock lock(handle);
    if (!lock.IsHeld()) return 0;
    if (!PurgeTRecord(handle, prefix, strlen(prefix))) return 1;
    return IsSet(handle, DBT_NO_WRITE) || DbmTArchiveDb(handle);
}

int DbmTCopyRecord(DbTHandle *handle, const char *oldKey, const char *newKey) {
    DbTWalk walked;
    if (!newKey || !FindFresh(handle, oldKey, &walked)) return 0;
    std::string data(WalkedDataSize(walked), '\0');
    CopyWalkedData(handle, walked, data.data(), data.size());
    return DbmTPutRecord(handle, newKey, data.data(), data.size());
}

// ---- Write back

static int WriteImage(FILE *out, const void *context) {
    auto handle = static_cast<const DbTHandle *>(context);
    if (handle->priv->flCut && !DbmKeepDamaged(handle->name)) return 0;
    handle->priv->flCut = 0;
    return handle->size == 0 || fwrite(handle->image, 1, handle->size, out) == handle->size;
}

int DbmTArchiveDb(DbTHandle *handle) {
    if (!handle || !handle->image) return 0;
    if (handle->type == DBT_HEADER) UpdateHeader(handle);
    if (*handle->name != '/' && *handle->name != '.') return DbmReplace(handle->name, WriteImage, handle);
    DbmWriteError(handle->name); // a path is no name below the database directory
    return 0;
}

// The spool store: job list, lock and mailbox.
#include "print/prnoutbase.h"

#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/SysFile.h"
#include "common/Words.h"
#include "common/utils.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

enum { LOCK_STATE_SIZE = 2, LOCK_MODE = 0666, LOCK_LEAST = 3 };
enum { HOLD_STEP_MS = 5, HOLD_STEPS = 1000, RETRY_SECONDS = 3, QUE_FIRST_LINE = 512 };

static constexpr char LockName[] = ".qlock";
static constexpr char QueName[] = ".q";
static constexpr char White[] = " \t\r\n\v\f";

char *pQueCmd;
char *pQueCmdResponse;

static std::string SpoolName(const char *directory, const char *name) {
    return std::string(directory) + "/" + name;
}

// ---- Mapped files

static size_t MapSize(size_t size) {
    auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return (size / page + 1) * page;
}

void *MapMemFile(const char *path, int, size_t size, int flClose) {
    int file = open(path, O_RDWR | O_CLOEXEC);
    if (file < 0) {
        printf("unable to open %s\n", path);
        return nullptr;
    }
    size = MapSize(size);
    int status = ftruncate(file, static_cast<off_t>(size));
    if (status != 0) perror("ftruncate");
    void *address =
        status == 0 ? mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0) : MAP_FAILED;
    if (address == MAP_FAILED || flClose) close(file);
    return address == MAP_FAILED ? nullptr : address;
}

// ---- The lock, mapped style

// The file need only be made once: touching and opening it up to everybody costs two commands.
static void CreateLockFile(const char *directory) {
    struct stat info;
    if (stat(SpoolName(directory, LockName).c_str(), &info) == 0 && (info.st_mode & LOCK_MODE) == LOCK_MODE)
        return;
    CreateFile(directory, LockName, "666", nullptr, nullptr);
}

static char *MapLock(const char *directory) {
    CreateLockFile(directory);
    return static_cast<char *>(MapMemFile(SpoolName(directory, LockName).c_str(), 0, QUE_LOCK_SIZE, 1));
}

static void WriteLock(char *lock, char state) {
    char text[QUE_LOCK_SIZE] = {};
    snprintf(text, sizeof text, "%c %.*s", state, QUE_LOCK_NAME, my_name);
    memcpy(lock, text, sizeof text);
}

// Nobody terminates the text, and a name of ours that is longer than the record was cut when it was written.
static bool TestLockedByOther(const char *lock) {
    size_t length = std::min<size_t>(strlen(my_name), QUE_LOCK_NAME);
    return lock[0] == 'L' && strncmp(lock + LOCK_STATE_SIZE, my_name, length) != 0;
}

char *CreateQueLock(const char *directory, char *lock) {
    FreeQueLock(lock);
    lock = MapLock(directory);
    if (lock) WriteLock(lock, 'U');
    return lock;
}

// The plain style may have left the file shorter than the text that is to be written; bytes of a mapping
// behind the end of a file reach nobody.
static void StretchLock(const char *directory) {
    std::string path = SpoolName(directory, LockName);
    if (GetFileSize(path.c_str()) >= QUE_LOCK_SIZE) return;
    if (truncate(path.c_str(), static_cast<off_t>(MapSize(QUE_LOCK_SIZE))) != 0) perror("truncate");
}

char *LockQue(const char *directory, char *lock) {
    if (!lock) lock = MapLock(directory);
    if (!lock) return nullptr;
    for (int i = 0; i < QUE_LOCK_TRIES && TestLockedByOther(lock); i++) pSleep(1);
    StretchLock(directory);
    WriteLock(lock, 'L');
    return lock;
}

void UnlockQue(char *lock) {
    if (lock) WriteLock(lock, 'U');
}

void FreeQueLock(char *lock) {
    if (lock) munmap(lock, MapSize(QUE_LOCK_SIZE));
}

// ---- The lock, plain style

// All of the text at an offset, or at the end of a file that is open for appending.
static bool WriteAll(int file, std::string_view text) {
    while (!text.empty()) {
        ssize_t count = write(file, text.data(), text.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        text.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

// In place, and cut afterwards: a process that has the file mapped is killed by a look at it while it is
// empty.
static bool WriteLockFile(const std::string &path, const std::string &text) {
    int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, LOCK_MODE);
    if (file < 0) return false;
    bool flWritten = WriteAll(file, text) && ftruncate(file, static_cast<off_t>(text.size())) == 0;
    return close(file) == 0 && flWritten;
}

int SetQueLockState(const char *directory, int flLock) {
    std::string text = std::string(flLock ? "L " : "U ") + my_name;
    if (text.size() < LOCK_LEAST) text.resize(LOCK_LEAST);
    for (int i = 0; i < QUE_LOCK_TRIES; i++) {
        if (i > 0) pSleep(1);
        if (WriteLockFile(SpoolName(directory, LockName), text)) return 1;
    }
    return 0;
}

// ---- One writer at a time

static bool TestSameFile(int file, const std::string &path) {
    struct stat open, named;
    return fstat(file, &open) == 0 && stat(path.c_str(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

// The kernel's lock on a file, held while this lives. A holder that is stopped blocks the others for five
// seconds, as a crashed one does in the mapped style; they then go on without. A lock file that was replaced
// while we waited is opened anew.
class QueHold {
public:
    explicit QueHold(const std::string &path, int create = O_CREAT) {
        for (int i = 0; i < HOLD_STEPS; i++) {
            if (file < 0) file = open(path.c_str(), O_RDWR | create | O_CLOEXEC, LOCK_MODE);
            if (file < 0) return;
            if (flock(file, LOCK_EX | LOCK_NB) != 0) {
                usleep(HOLD_STEP_MS * 1000);
                continue;
            }
            if (TestSameFile(file, path)) return;
            close(file);
            file = -1;
        }
    }
    ~QueHold() {
        if (file >= 0) close(file);
    }
    QueHold(const QueHold &) = delete;
    QueHold &operator=(const QueHold &) = delete;

private:
    int file = -1;
};

// ---- The list

static std::string ReadQue(const char *directory) {
    char *content = GetSavedFileContent(directory, QueName);
    std::string text(content ? content : "", content ? static_cast<size_t>(SavedFileSize) : 0);
    PutMem(content);
    return text;
}

// The name of a new file beside the list that takes after it, with the text in it; empty if that is not to be
// had. It is on the disk before it is renamed: after a power cut an empty list would hide its jobs.
static std::string WriteNewQue(const std::string &path, std::string_view text) {
    std::string name = path + ".XXXXXX";
    int file = mkostemp(name.data(), O_CLOEXEC);
    if (file < 0) return "";
    struct stat info;
    bool flWritten = stat(path.c_str(), &info) == 0 && WriteAll(file, text) && fsync(file) == 0 &&
                     fchown(file, info.st_uid, info.st_gid) == 0 && fchmod(file, info.st_mode & 07777) == 0;
    if (close(file) == 0 && flWritten) return name;
    unlink(name.c_str());
    return "";
}

static void RewriteInPlace(const std::string &path, std::string_view text) {
    FILE *out = OpenFile(nullptr, path.c_str(), "r+", ERR_WARN);
    if (!out) return;
    if (!WriteAll(fileno(out), text) || ftruncate(fileno(out), static_cast<off_t>(text.size())) != 0)
        ErrorMsg(ERR_WARN, 0, "can't write file, %s", path.c_str());
    fclose(out);
}

// A reader takes no lock, so the list is renamed into place. A user who may write the list but not the
// directory rewrites it.
static void RewriteQue(const char *directory, std::string_view text) {
    std::string path = SpoolName(directory, QueName);
    std::string name = WriteNewQue(path, text);
    if (name.empty()) return RewriteInPlace(path, text);
    if (rename(name.c_str(), path.c_str()) == 0) return;
    unlink(name.c_str());
    RewriteInPlace(path, text);
}

// One write, at the end of the file whatever that is by then. What could not be written whole is taken back.
static bool AppendLine(const std::string &path, const std::string &line) {
    int file = open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, LOCK_MODE);
    if (file < 0) return false;
    off_t end = lseek(file, 0, SEEK_END);
    bool flWritten = WriteAll(file, line);
    if (!flWritten && ftruncate(file, end) != 0) perror("ftruncate");
    close(file);
    return flWritten;
}

// A write over the end of a page reaches a reader in two parts: then the list goes into a new file instead.
static bool AddLine(const char *directory, std::string line) {
    std::string path = SpoolName(directory, QueName);
    std::string text = ReadQue(directory);
    // What somebody left without a line end must not run into this job.
    if (!text.empty() && text.back() != '\n') line.insert(line.begin(), '\n');
    if (MapSize(text.size()) == MapSize(text.size() + line.size() - 1)) return AppendLine(path, line);
    std::string name = WriteNewQue(path, text + line);
    if (!name.empty() && rename(name.c_str(), path.c_str()) == 0) return true;
    if (!name.empty()) unlink(name.c_str());
    return AppendLine(path, line);
}

static bool TestJobName(const char *name) {
    if (!name || !*name) return false;
    if (!strpbrk(name, White)) return true;
    ErrorMsg(ERR_WARN, 0, "can't queue file, %s", name);
    return false;
}

// True if there is no such directory and it can't be made; made by the host's command, but quietly, for a
// failure must not end the program.
static bool TestHopeless(const char *directory) {
    struct stat info;
    auto missing = [&] { return stat(directory, &info) != 0 && (errno == ENOENT || errno == ENOTDIR); };
    if (!missing()) return false;
    SysCmd(CMD_MKDIR, 0, "%s", ShArg(directory).c_str());
    return missing();
}

static bool WaitForQue(const char *directory) {
    while (!SetQueLockState(directory, 1)) {
        pSleep(static_cast<unsigned>(rand() % RETRY_SECONDS + 1));
        if (TestHopeless(directory)) return false;
    }
    return true;
}

void AddJobToQue(const char *directory, const char *first, const char *second) {
    if (!directory || !*directory || !TestJobName(first) || !TestJobName(second)) return;
    std::string path = SpoolName(directory, QueName);
    if (TestHopeless(directory)) return ErrorMsg(ERR_WARN, 0, "can't open file, %s", path.c_str());
    QueHold hold(SpoolName(directory, LockName));
    if (!WaitForQue(directory)) return ErrorMsg(ERR_WARN, 0, "can't open file, %s", path.c_str());
    if (!AddLine(directory, std::string(first) + " " + second + "\n"))
        ErrorMsg(ERR_WARN, 0, "can't write file, %s", path.c_str());
    SetQueLockState(directory, 0);
}

// The bounds of the first whole line whose first field is the name; an empty range without one.
static void FindJobLine(std::string_view text, std::string_view name, size_t *start, size_t *end) {
    for (size_t at = 0, next; (next = text.find('\n', at)) != std::string_view::npos; at = next + 1) {
        std::string_view line = text.substr(at, next - at), word;
        TakeWord(line, White, word);
        if (word != name) continue;
        *start = at;
        *end = next + 1;
        return;
    }
    *start = *end = 0;
}

void DeleteJobFromQue(const char *directory, const char *first, int) {
    if (!directory || !first || !*first) return;
    QueHold hold(SpoolName(directory, LockName));
    int flLocked = SetQueLockState(directory, 1);
    std::string text = ReadQue(directory);
    size_t start, end;
    FindJobLine(text, first, &start, &end);
    if (end > start) RewriteQue(directory, text.erase(start, end - start));
    if (flLocked) SetQueLockState(directory, 0);
}

static bool TestControlName(std::string_view word) {
    return word[0] == 'c' || word[0] == 'C';
}

// The offset of the first word with 'c' or 'C', or npos.
static size_t FindJob(std::string_view text) {
    std::string_view rest(text);
    for (std::string_view word; TakeWord(rest, White, word);)
        if (TestControlName(word)) return static_cast<size_t>(word.data() - text.data());
    return text.npos;
}

// Copies the next word, cut at the capacity; empty without one.
static void CopyWord(char *buffer, size_t capacity, std::string_view &text) {
    std::string_view word;
    TakeWord(text, White, word);
    buffer[word.copy(buffer, capacity - 1)] = '\0';
}

static void CopyJob(std::string_view text, char *first, char *second, size_t capacity) {
    std::string_view line = text.substr(0, text.find('\n'));
    CopyWord(first, capacity, line);
    CopyWord(second, capacity, line);
}

// False without room for a text.
static bool ClearNames(char *first, char *second, size_t capacity) {
    if (!first || !second || capacity == 0) return false;
    *first = *second = '\0';
    return true;
}

void GetJobFromQue(const char *directory, char *first, char *second, size_t capacity) {
    if (!ClearNames(first, second, capacity) || !directory) return;
    QueHold hold(SpoolName(directory, LockName));
    int flLocked = SetQueLockState(directory, 1);
    std::string text = ReadQue(directory);
    size_t start = FindJob(text);
    if (start != std::string::npos) {
        if (start > 0) RewriteQue(directory, text.erase(0, start));
        CopyJob(text, first, second, capacity);
    }
    if (flLocked) SetQueLockState(directory, 0);
}

void GetJobFromQue____(const char *directory, char *first, char *second, size_t capacity) {
    if (!ClearNames(first, second, capacity) || !directory) return;
    FILE *in = OpenFile(nullptr, SpoolName(directory, QueName).c_str(), "r", ERR_SILENT);
    char line[QUE_FIRST_LINE];
    if (in && fgets(line, sizeof line, in)) {
        std::string_view text(line);
        size_t start = FindJob(text);
        if (start != std::string_view::npos) CopyJob(text.substr(start), first, second, capacity);
    }
    if (in) fclose(in);
}

// ---- The mailbox

static bool MapQueCmd(const std::string &path) {
    if (pQueCmd) return true;
    pQueCmd = static_cast<char *>(MapMemFile(path.c_str(), 0, QUE_CMD_SIZE, 1));
    pQueCmdResponse = pQueCmd ? pQueCmd + QUE_CMD_TEXT : nullptr;
    return pQueCmd != nullptr;
}

// False if the line finds no room, with its NUL, behind the commands that nobody has taken yet.
static bool AppendQueCmd(std::string_view command) {
    size_t used = strnlen(pQueCmd, QUE_CMD_TEXT);
    if (used + command.size() + 2 > QUE_CMD_TEXT) return false;
    char *end = pQueCmd + used;
    // The NUL in front last: until then the old text ends where it did.
    memcpy(end + 1, command.data() + 1, command.size() - 1);
    end[command.size()] = '\n';
    end[command.size() + 1] = '\0';
    *end = command[0];
    return true;
}

const char *AddCmdToQue(const char *command, int flWait) {
    std::string path = std::string(pSpoolRoot) + "/" + SPOOL_FAMILY + "/.cmd";
    if (!command || !*command || !MapQueCmd(path)) return "";
    *pQueCmdResponse = '\0';
    {
        QueHold hold(path, 0);
        if (!AppendQueCmd(command)) return pQueCmdResponse;
    }
    if (flWait && !*pQueCmdResponse) pSleep(1);
    pQueCmd[MapSize(QUE_CMD_SIZE) - 1] = '\0'; // whatever the daemon wrote, the caller's text ends
    return pQueCmdResponse;
}

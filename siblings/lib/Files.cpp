// Whole-file reads and replacements, and the lock of a change.
#include "siblings/lib/Files.h"

#include "siblings/lib/Say.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

enum { LOCK_POLL_NS = 20000000, SHOWN_MAX = 120 };

static std::string Failed(const Sentence &sentence, const std::string &path) {
    return Say(sentence, path.substr(0, SHOWN_MAX), std::string(strerror(errno)));
}

static bool ReadAll(int file, size_t limit, std::string &content) {
    char buffer[8192];
    ssize_t count;
    content.clear();
    while ((count = read(file, buffer, sizeof buffer)) > 0) {
        content.append(buffer, static_cast<size_t>(count));
        if (content.size() > limit) {
            errno = EFBIG;
            return false;
        }
    }
    return count == 0;
}

bool ReadOwnFile(const std::string &path, size_t limit, std::string &content) {
    struct stat status;
    int file = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return false;
    bool flOwn = !fstat(file, &status) && S_ISREG(status.st_mode) && status.st_uid == geteuid() &&
                 !(status.st_mode & (S_IWGRP | S_IWOTH)) && ReadAll(file, limit, content);
    close(file);
    return flOwn;
}

std::string ReadWholeFile(const std::string &path, size_t limit, std::string &content) {
    struct stat status;
    int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (file < 0) return Failed(SayCantOpen, path);
    std::string error;
    if (fstat(file, &status) || !S_ISREG(status.st_mode))
        error = Say(SayNoRegularFile, path);
    else if (!ReadAll(file, limit, content))
        error = Failed(SayCantRead, path);
    close(file);
    return error;
}

bool WriteAll(int file, std::string_view content) {
    while (!content.empty()) {
        ssize_t count = write(file, content.data(), content.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        content.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

std::string PrepareFile(const std::string &path, std::string_view content, unsigned mode) {
    std::string name = path + "_new", error;
    unlink(name.c_str());
    int file = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
    if (file < 0) return Failed(SayCantWrite, name);
    // fchmod: the mode is meant as it stands, whatever the caller's umask.
    bool flWritten = WriteAll(file, content) && !fchmod(file, mode) && !fsync(file);
    if (!flWritten) error = Failed(SayCantWrite, name);
    if (close(file) && flWritten) error = Failed(SayCantWrite, name);
    if (!error.empty()) unlink(name.c_str());
    return error;
}

// A new name lasts when its directory has reached the disk. A file system that can't sync a directory says
// EINVAL.
static bool SyncDirectoryOf(const std::string &path) {
    size_t slash = path.rfind('/');
    std::string directory = slash == path.npos ? "." : path.substr(0, slash + 1);
    int file = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0) return false;
    bool flSynced = !fsync(file) || errno == EINVAL;
    close(file);
    return flSynced;
}

std::string CommitFile(const std::string &path) {
    if (!rename((path + "_new").c_str(), path.c_str()) && SyncDirectoryOf(path)) return "";
    std::string error = Failed(SayCantReplace, path);
    DropFile(path);
    return error;
}

void DropFile(const std::string &path) {
    unlink((path + "_new").c_str());
}

std::string ReplaceFile(const std::string &path, std::string_view content, unsigned mode) {
    std::string name = path + ".XXXXXX", error;
    int file = mkostemp(name.data(), O_CLOEXEC);
    if (file < 0) return Failed(SayCantWrite, path);
    bool flWritten = WriteAll(file, content) && !fchmod(file, mode);
    if (!flWritten) error = Failed(SayCantWrite, path);
    if (close(file) && flWritten) error = Failed(SayCantWrite, path);
    if (error.empty() && rename(name.c_str(), path.c_str())) error = Failed(SayCantReplace, path);
    if (!error.empty()) unlink(name.c_str());
    return error;
}

// Answers 0 once the lock is held, or the reason.
static int WaitForLock(int file, int seconds) {
    struct timespec pause = {0, LOCK_POLL_NS};
    time_t end = time(nullptr) + seconds;
    while (flock(file, LOCK_EX | LOCK_NB)) {
        if (errno != EWOULDBLOCK && errno != EINTR) return errno;
        if (!seconds || time(nullptr) > end) return EWOULDBLOCK;
        nanosleep(&pause, nullptr);
    }
    return 0;
}

FileLock::FileLock(const std::string &path, int seconds, unsigned mode)
    : file(open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, mode)) {
    int status = file < 0 ? errno : WaitForLock(file, seconds);
    if (file < 0 || !status) return;
    close(file);
    file = -1;
    errno = status;
}

FileLock::~FileLock() {
    if (file >= 0) close(file);
}

std::string TakeLock(const char *path, int seconds) {
    // Only root and the owner may open it: anybody else who could would hold up every change.
    int file = open(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600);
    if (file < 0) return Failed(SayCantWrite, path);
    int status = WaitForLock(file, seconds);
    errno = status;
    if (status) close(file);
    if (status == EWOULDBLOCK) return Say(SayChangeUnderWay);
    return status ? Failed(SayCantLock, path)
                  : ""; // the descriptor stays open: the lock ends with the process
}

// Small files of the tool: read with a limit, replaced as a whole, and the lock that keeps two runs apart.
#pragma once

#include <string>
#include <string_view>

// Reads a regular file of at most limit bytes. Answers an empty text, or what is wrong. Never waits on a pipe
// or device.
std::string ReadWholeFile(const std::string &path, size_t limit, std::string &content);
// The same for a note to oneself in a directory where others may write: false for a file that somebody else
// made or may change, for a link, and for one that can't be read.
bool ReadOwnFile(const std::string &path, size_t limit, std::string &content);

// Replacing a file in two steps, so that a full or read-only disk is known before anything else changes:
// PrepareFile writes "PATH_new" to the disk, CommitFile puts it in place, DropFile forgets it. A reader sees
// the whole old file or the whole new one. An existing "PATH_new", whatever it is, is removed first and never
// followed.
std::string PrepareFile(const std::string &path, std::string_view content, unsigned mode);
std::string CommitFile(const std::string &path);
void DropFile(const std::string &path);

// Replaces a small file by a new one of its own name, so that several processes may do so at once.
std::string ReplaceFile(const std::string &path, std::string_view content, unsigned mode);

// All of the bytes; false with errno set.
bool WriteAll(int file, std::string_view content);

// A lock of the kernel on a file, which is made if need be. It is held from the constructor, which waits some
// seconds for another holder, until this ends or the process does. If it isn't held errno tells why:
// EWOULDBLOCK for another holder.
class FileLock {
public:
    FileLock(const std::string &path, int seconds, unsigned mode = 0600);
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;
    bool IsHeld() const { return file >= 0; }

private:
    int file;
};

// Takes the lock for a change, and holds it until the process ends; waits for another run for some seconds.
std::string TakeLock(const char *path, int seconds);

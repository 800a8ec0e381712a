// Small files of the tool: read with a limit, replaced as a whole, and the lock that keeps two runs apart.
#pragma once

#include <string>
#include <string_view>

// Reads a regular file of at most limit bytes. Answers an empty text, or what is wrong. Never waits on a pipe
// or device.
std::string ReadWholeFile(const std::string &path, size_t limit, std::string &content);

// Replacing a file in two steps, so that a full or read-only disk is known before anything else changes:
// PrepareFile writes "PATH_new" to the disk, CommitFile puts it in place, DropFile forgets it. A reader sees
// the whole old file or the whole new one. An existing "PATH_new", whatever it is, is removed first and never
// followed.
std::string PrepareFile(const std::string &path, std::string_view content, unsigned mode);
std::string CommitFile(const std::string &path);
void DropFile(const std::string &path);

// Takes the lock for a change, and holds it until the process ends; waits for another run for some seconds.
std::string TakeLock(const char *path, int seconds);

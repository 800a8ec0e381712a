// What unit tests need around a function: a directory of their own, its output, its end, and what it would
// start.
#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

// A fresh directory, removed with all it holds.
class Scratch {
public:
    Scratch();
    ~Scratch();
    Scratch(const Scratch &) = delete;
    Scratch &operator=(const Scratch &) = delete;

    const std::string &Path() const { return path; }
    std::string Path(const std::string &name) const { return path + "/" + name; }
    // Writes a file, making the directories in its name; its full path.
    std::string Write(const std::string &name, const std::string &text) const;
    std::string MakeDir(const std::string &name) const;

private:
    std::string path;
};

// The whole file as it stands, empty if it can't be read.
std::string ReadWhole(const std::string &path);

// Takes a managed text over: its contents, or "(null)".
std::string TakeText(char *managed);

// Catches descriptors 1 and 2 while it lives, of this process and of its children.
class Capture {
public:
    Capture();
    ~Capture();
    Capture(const Capture &) = delete;
    Capture &operator=(const Capture &) = delete;

    std::string Out(); // all so far
    std::string Err();

private:
    int saved[2];
    int caught[2];
};

struct ChildEnd {
    int status; // of exit, or 256 plus the signal that ended it
    std::string out;
    std::string err;
};

// Runs the function in a child process, with the text as its standard input; returning counts as status 0.
// A child that hangs is ended by SIGALRM.
ChildEnd RunForked(const std::function<void()> &function, const std::string &input = "");

// Stands in for system, popen and sleep while it lives: nothing is started, everything is noted.
class SystemSpy {
public:
    SystemSpy();
    ~SystemSpy();
    SystemSpy(const SystemSpy &) = delete;
    SystemSpy &operator=(const SystemSpy &) = delete;

    std::vector<std::string> lines; // as handed to system
    std::vector<std::string> asked; // as handed to popen
    unsigned slept = 0;             // seconds in all
    int result = 0;                 // what system returns ...
    int error = 0;                  // ... and leaves in errno, unless 0
    // Answer of popen: that of the first pair whose first text stands in the line, else nothing.
    std::vector<std::pair<std::string, std::string>> answers;

private:
    int (*savedSystem)(const char *);
    FILE *(*savedPopen)(const char *, const char *);
    int (*savedPclose)(FILE *);
    unsigned (*savedSleep)(unsigned);
};

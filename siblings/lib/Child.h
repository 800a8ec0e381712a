// Runs the host's commands: no shell, no terminal, a limit on their time, and a line in the log for each.
#pragma once

#include <string>
#include <string_view>
#include <vector>

enum {
    CHILD_LIMIT = 30, // seconds for one command
    RUN_LIMIT = 120,  // seconds for all commands of one run
};

struct Ran {
    bool flStarted = false; // the program was found and started
    bool flTimedOut = false;
    int status = -1;    // exit status, 128 + signal, -1 if it never ran
    std::string output; // standard output
    std::string errors; // standard error, without the notes that something is deprecated
};

// It ran to its end and answered 0.
bool Succeeded(const Ran &ran);

bool IsProgram(const std::string &path); // a file that may be run
// Path of a host program in PATH, or in the usual directories, or empty.
std::string FindProgram(const std::string &name);

// Runs words[0] with the words as arguments. The child has a session of its own, so that it can't ask on the
// terminal; reads nothing; speaks English; and doesn't see the caller's choice of a printer. At its limit its
// group is killed.
Ran RunChild(const std::vector<std::string> &words);

// The limit of one command in seconds: CHILD_LIMIT, or less if PRNQ_LIMIT tells so.
int ChildLimit();
// Starts the limit for all commands anew: for a run that goes on for as long as there is work.
void RestartRunLimit();

// First line of what a command complained about, in words for the user; never empty.
std::string ComplaintOf(const Ran &ran);

// The log of this run is /tmp/NAME.log; nothing is written until a name is told. A link, another user's
// file (but root's), or anything but a regular file with one name, is left alone. Answers an empty text, or
// what is wrong with the name.
std::string SetLogName(std::string_view name);
void PutLog(std::string_view line);

// A line "PROGRAM: TEXT" on standard error and in the log; the text alone goes to the caller that listens
// (Told.h). Control characters become "?": a value in the text must not steer the terminal, nor forge a line
// of the log.
void TellUser(std::string text);

// What the queue tool and its siblings tell the person in front of the screen, when their output goes
// elsewhere.
//
// A flow runs prnqtool with its output thrown away. So the caller opens an ear for the time of the call: a
// file without a name, whose descriptor the child inherits and whose number stands in the environment. The
// child writes each complaint and each warning there as a line; the caller shows them in its own way. A child
// that is started by others, from a script, finds no number and tells standard error alone.
#pragma once

#include <string>
#include <string_view>

inline constexpr char ToldVariable[] = "PRN_TOLD";

// Lives around one call. Without a descriptor left it hears nothing, and the call goes on as before.
class ToldEar {
public:
    ToldEar();
    ~ToldEar();
    ToldEar(const ToldEar &) = delete;
    ToldEar &operator=(const ToldEar &) = delete;
    // What was told, a line each, at most TOLD_MAX bytes; empty for nothing.
    std::string Text() const;

private:
    int file;
};
enum { TOLD_MAX = 8192 };

// The child's side. The first step is at the program's start: the ear is the program's own from then on, and
// no child of its own hears of it. A number that isn't a file without a name counts as none.
void FindToldEar();
void TellCaller(std::string_view line); // nothing without an ear

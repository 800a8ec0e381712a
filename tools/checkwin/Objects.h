// The objects that the descriptions make, and the names by which they speak of each other.
#pragma once

#include "tools/checkwin/Text.h"

struct WinObject {
    std::string name, source;
    int type;
    int parent; // index of another, -1 for none
    int id;     // its number in events
    Place place;
    int tabs; // of a tab form
    bool flList;
    int items;           // choices, 0 if their number is not known
    bool flHeard;        // the program hears its number
    const void *handler; // that of its description
};

// Numbers of objects: the next of the counter, unless one is given for the next object alone (0: none is).
extern int NextId, GivenId;

// The index of the new object, which takes its number; one with XMT_AUX in its type leaves the counter. A
// name that is taken is reported, and leads to the new one from then on.
int AddObject(const std::string &name, const Place &place, int type, int parent);
// Reports an object that is not there, or that has another number; with 0 any will do.
void CheckId(const char *name, int id);
int FindObject(const std::string &name); // -1 for none, and for an empty name
WinObject *ObjectOf(int index);
void ForgetObjects();
extern const void *SourceHandler; // of the description in hand
// A name out of a format: it may come in a later description, so that CheckWanted looks for it.
void WantObject(const Text &name);
void WantCalled(const Text &name); // of C: the program hears the number of the target
// "name.value", with the dot's place: a number has to be one of the object's items, counted from 1 or from 0.
void WantItem(const Text &target, size_t dot, bool flFromOne);
void CheckWanted();
void CheckNumbers(); // behind CheckWanted: no handler hears one number of two objects

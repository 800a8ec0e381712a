// The objects that the descriptions make, and the names by which they speak of each other.
#pragma once

#include "tools/checkwin/Text.h"

struct WinObject {
    std::string name, source;
    int type;
    int parent; // number of another, -1 for none
    int tabs;   // of a tab form
    bool flList;
};

// The number of the new object. A name that is taken is reported, and leads to the new one from then on.
int AddObject(const std::string &name, const Place &place, int type, int parent);
int FindObject(const std::string &name); // -1 for none, and for an empty name
WinObject *ObjectOf(int number);
void ForgetObjects();
// A name out of a format: it may come in a later description, so that CheckWanted looks for it.
void WantObject(const Text &name);
void CheckWanted();

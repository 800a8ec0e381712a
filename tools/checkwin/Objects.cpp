#include "tools/checkwin/Objects.h"

#include "tools/checkwin/Report.h"

#include <map>

struct Wanted {
    std::string source, name;
    Place place;
};

static std::vector<WinObject> Objects;
static std::map<std::string, int> Names;
static std::vector<Wanted> WantedNames;

int AddObject(const std::string &name, const Place &place, int type, int parent) {
    int number = static_cast<int>(Objects.size());
    int old = FindObject(name);
    if (old >= 0)
        Report(place, "\"%s\" is the name of an object of %s", name.c_str(), Objects[old].source.c_str());
    Objects.push_back({name, SourceName(), type, parent, 0, false});
    Names[name] = number;
    return number;
}

int FindObject(const std::string &name) {
    auto found = Names.find(name);
    return name.empty() || found == Names.end() ? -1 : found->second;
}

WinObject *ObjectOf(int number) {
    return number < 0 ? nullptr : &Objects[number];
}

void ForgetObjects() {
    Objects.clear();
    Names.clear();
    WantedNames.clear();
}

void WantObject(const Text &name) {
    if (name.empty())
        Report(name.place(0), "a target without a name");
    else
        WantedNames.push_back({SourceName(), name.chars, name.place(0)});
}

void CheckWanted() {
    for (const Wanted &wanted : WantedNames)
        if (FindObject(wanted.name) < 0)
            ReportOf(wanted.source, wanted.place, "the target \"" + wanted.name + "\" is no object");
}

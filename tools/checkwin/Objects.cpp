#include "tools/checkwin/Objects.h"

#include "tools/checkwin/Report.h"
#include "xmt/XmtNewBuild.h"

#include <map>

struct Wanted {
    std::string source, name;
    Place place;
};

int NextId = 1, GivenId;

static std::vector<WinObject> Objects;
static std::map<std::string, int> Names;
static std::vector<Wanted> WantedNames;

int AddObject(const std::string &name, const Place &place, int type, int parent) {
    int number = static_cast<int>(Objects.size());
    int old = FindObject(name);
    if (old >= 0)
        Report(place, "\"%s\" is the name of an object of %s", name.c_str(), Objects[old].source.c_str());
    int id = GivenId ? GivenId : NextId;
    if (!GivenId && !(type & XMT_AUX)) NextId++;
    GivenId = 0;
    Objects.push_back({name, SourceName(), type & XMT_TYPE_MASK, parent, id, place, 0, false});
    Names[name] = number;
    return number;
}

int FindObject(const std::string &name) {
    auto found = Names.find(name);
    return name.empty() || found == Names.end() ? -1 : found->second;
}

WinObject *ObjectOf(int index) {
    return index < 0 ? nullptr : &Objects[index];
}

void CheckId(const char *name, int id) {
    const WinObject *object = ObjectOf(FindObject(name));
    std::string known = "\"" + std::string(name) + "\"";
    if (!object)
        ReportOf("PrdGuiIds", {}, known + " is no object");
    else if (id && object->id != id)
        ReportOf(object->source, object->place,
                 known + " has the number " + std::to_string(object->id) + ", in PrdGuiIds it has " +
                     std::to_string(id));
}

void ForgetObjects() {
    Objects.clear();
    NextId = 1;
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

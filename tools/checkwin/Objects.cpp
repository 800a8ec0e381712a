#include "tools/checkwin/Objects.h"

#include "tools/checkwin/Report.h"
#include "xmt/XmtNewBuild.h"

#include <cstdlib>
#include <map>

struct Wanted {
    std::string source, name;
    Place place;
    bool flCalled;
    int item; // from 0, -1 for none
};

int NextId = 1, GivenId;
const void *SourceHandler;

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
    Objects.push_back(
        {name, SourceName(), type & XMT_TYPE_MASK, parent, id, place, 0, false, 0, false, SourceHandler});
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

static void Want(const Text &name, bool flCalled, int item) {
    if (name.empty())
        Report(name.place(0), "a target without a name");
    else
        WantedNames.push_back({SourceName(), name.chars, name.place(0), flCalled, item});
}

void WantObject(const Text &name) {
    Want(name, false, -1);
}

void WantCalled(const Text &name) {
    Want(name, true, -1);
}

void WantItem(const Text &target, size_t dot, bool flFromOne) {
    std::string value = dot == std::string::npos ? "" : target.chars.substr(dot + 1);
    bool flNumber = !value.empty() && value.find_first_not_of("0123456789") == std::string::npos;
    if (flNumber && flFromOne && atoi(value.c_str()) < 1)
        Report(target.place(0), "\"%s\": items count from 1", target.chars.c_str());
    Want(target.part(0, dot), false, flNumber ? atoi(value.c_str()) - flFromOne : -1);
}

void CheckWanted() {
    for (const Wanted &wanted : WantedNames) {
        WinObject *object = ObjectOf(FindObject(wanted.name));
        if (!object)
            ReportOf(wanted.source, wanted.place, "the target \"" + wanted.name + "\" is no object");
        else if (object->items && wanted.item >= object->items)
            ReportOf(wanted.source, wanted.place,
                     "the target \"" + wanted.name + "\" has " + std::to_string(object->items) + " items");
        else
            object->flHeard |= wanted.flCalled;
    }
}

void CheckNumbers() {
    std::map<std::pair<const void *, int>, const WinObject *> heard;
    for (const WinObject &object : Objects) {
        if (!object.flHeard) continue;
        auto [first, flNew] = heard.try_emplace({object.handler, object.id}, &object);
        if (!flNew)
            ReportOf(object.source, object.place,
                     "\"" + object.name + "\" has the number " + std::to_string(object.id) + " of \"" +
                         first->second->name + "\"");
    }
}

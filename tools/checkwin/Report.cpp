#include "tools/checkwin/Report.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <set>
#include <vector>

struct Fault {
    std::string source, message;
    Place place;
};

static std::vector<Fault> Faults;
static std::set<std::string> Seen;
static std::vector<std::string> Sources; // in the order of their reading
static std::string Source;
int Muted;

void BeginSource(const std::string &name) {
    Source = name;
    if (std::find(Sources.begin(), Sources.end(), name) == Sources.end()) Sources.push_back(name);
}

const std::string &SourceName() {
    return Source;
}

// Both languages give the same faults, and a compound's general text is read for each of its parts.
void ReportOf(const std::string &source, const Place &place, const std::string &message) {
    std::string text = place.macro < 0 ? message : "in macro " + std::to_string(place.macro) + ": " + message;
    std::string key = source + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) + text;
    if (Seen.insert(key).second) Faults.push_back({source, text, place});
}

void Report(const Place &place, const char *format, ...) {
    char message[512];
    if (Muted) return;
    va_list args;
    va_start(args, format);
    vsnprintf(message, sizeof message, format, args);
    va_end(args);
    ReportOf(Source, place, message);
}

// A '*' at the end stands for the rest.
static bool IsKnownMessage(const char *known, const std::string &message) {
    size_t length = strlen(known);
    bool flRest = length && known[length - 1] == '*';
    return flRest ? message.compare(0, length - 1, known, length - 1) == 0 : message == known;
}

static const KnownFault *FindKnown(const Fault &fault) {
    for (const KnownFault *known = KnownFaults; known->message; known++)
        if ((*known->source == '*' || fault.source == known->source) &&
            IsKnownMessage(known->message, fault.message))
            return known;
    return nullptr;
}

static bool IsBefore(const Fault &a, const Fault &b) {
    if (a.source != b.source)
        return std::find(Sources.begin(), Sources.end(), a.source) <
               std::find(Sources.begin(), Sources.end(), b.source);
    if (a.place.line != b.place.line) return a.place.line < b.place.line;
    return a.place.column < b.place.column;
}

int PrintReport(bool flStale) {
    std::stable_sort(Faults.begin(), Faults.end(), IsBefore);
    int count = 0;
    std::set<const KnownFault *> used;
    for (const Fault &fault : Faults) {
        if (const KnownFault *known = FindKnown(fault)) {
            used.insert(known);
            continue;
        }
        printf("%s:%d:%d: %s\n", fault.source.c_str(), fault.place.line, fault.place.column,
               fault.message.c_str());
        count++;
    }
    for (const KnownFault *known = KnownFaults; flStale && known->message; known++) {
        if (used.count(known) || *known->source == '*') continue;
        printf("%s: a known fault that is there no more: %s (%s)\n", known->source, known->message,
               known->reason);
        count++;
    }
    return count;
}

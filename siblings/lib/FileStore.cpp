// The lines of "db/hostq".
#include "siblings/lib/FileStore.h"

#include "common/Words.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Spool.h"

#include <algorithm>
#include <unistd.h>
#include <unordered_map>

enum { HOSTQ_MAX = 4 * 1024 * 1024, HOSTQ_MODE = 0644 };

static const char HostQueues[] = "db/hostq";

// In the order in which they were read and added, without their newline; a line that is gone is empty.
static std::vector<std::string> Lines;
static std::unordered_map<std::string, size_t> Places; // of a queue's line
static std::string Loaded;                             // the file as it was read

struct Edit {
    size_t place;
    std::string before;
};
static std::vector<Edit> Edits; // since the last mark

static std::string Joined() {
    std::string text;
    for (const std::string &line : Lines)
        if (!line.empty()) text += line + "\n";
    return text;
}

static std::string NameOf(const std::string &line) {
    return line.substr(0, line.find(':'));
}

std::string FileStoreOpen() {
    Lines.clear();
    Places.clear();
    Edits.clear();
    Loaded.clear();
    if (access(HostQueues, F_OK)) return "";
    std::string error = ReadWholeFile(HostQueues, HOSTQ_MAX, Loaded);
    std::string_view text(Loaded);
    for (std::string_view line; TakeLine(text, line);) {
        std::string name = NameOf(std::string(line));
        if (CheckHostQueueName(name).empty() && Places.emplace(name, Lines.size()).second)
            Lines.emplace_back(line);
    }
    Loaded = Joined();
    return error;
}

std::vector<std::string> FileStoreQueues() {
    std::vector<std::string> names;
    for (const std::string &line : Lines)
        if (!line.empty()) names.push_back(NameOf(line));
    return names;
}

// Null without one.
static const std::string *FindLine(const std::string &name) {
    auto found = Places.find(name);
    return found == Places.end() ? nullptr : &Lines[found->second];
}

bool FileStoreHas(const std::string &name) {
    return FindLine(name);
}

// The URI of a line, and its spool directory, which may hold blanks.
static void SplitLine(std::string_view line, std::string_view &uri, std::string_view &directory) {
    TakeUpTo(line, " ");
    line.remove_prefix(std::min<size_t>(line.size(), 1));
    uri = TakeUpTo(line, " ");
    line.remove_prefix(std::min<size_t>(line.size(), 1));
    directory = line;
}

std::string FileStoreCheck(const Queue &queue) {
    const std::string *found = FindLine(queue.name);
    std::string_view uri, directory;
    if (!found) return "";
    SplitLine(*found, uri, directory);
    // Above the printer's part it is the environment's and the tool directory's affair.
    bool flSame = uri == QueueUri(queue) && directory.ends_with(SpoolPrinter(queue));
    return flSame ? "" : Say(SayRecordChanged, queue.name);
}

std::string FileStoreSpool(const Queue &queue) {
    const std::string *found = FindLine(queue.name);
    std::string_view uri, directory;
    bool flSound = CheckQueueTarget(queue).empty() && FileStoreCheck(queue).empty();
    if (flSound || !found) return SpoolDirectory(queue);
    SplitLine(*found, uri, directory);
    return std::string(directory);
}

// An empty line removes the queue.
static void SetLine(const std::string &name, size_t place, const std::string &line) {
    Lines[place] = line;
    if (line.empty())
        Places.erase(name);
    else
        Places[name] = place;
}

static void EditLine(const std::string &name, size_t place, const std::string &line) {
    Edits.push_back({place, Lines[place]});
    SetLine(name, place, line);
}

void FileStorePut(const Queue &queue) {
    auto found = Places.find(queue.name);
    size_t place = found == Places.end() ? Lines.size() : found->second;
    if (place == Lines.size()) Lines.emplace_back();
    EditLine(queue.name, place, queue.name + ": " + QueueUri(queue) + " " + SpoolDirectory(queue));
}

void FileStoreDelete(const std::string &name) {
    auto found = Places.find(name);
    if (found != Places.end()) EditLine(name, found->second, "");
}

void FileStoreMark() {
    Edits.clear();
}

void FileStoreRevert() {
    for (; !Edits.empty(); Edits.pop_back()) {
        const Edit &edit = Edits.back();
        const std::string &now = Lines[edit.place];
        SetLine(NameOf(now.empty() ? edit.before : now), edit.place, edit.before);
    }
}

std::string FileStorePrepare() {
    return Joined() == Loaded ? "" : PrepareFile(HostQueues, Joined(), HOSTQ_MODE);
}

std::string FileStoreCommit() {
    return Joined() == Loaded ? "" : CommitFile(HostQueues);
}

void FileStoreDrop() {
    if (Joined() != Loaded) DropFile(HostQueues);
}

// The lines of "db/hostq".
#include "siblings/lib/FileStore.h"

#include "common/Words.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Spool.h"

#include <algorithm>
#include <unistd.h>

enum { HOSTQ_MAX = 4 * 1024 * 1024, HOSTQ_MODE = 0644 };

static const char HostQueues[] = "db/hostq";

static std::vector<std::string> Lines; // without their newline
static std::string Loaded;             // the file as it was read

static std::string Joined() {
    std::string text;
    for (const std::string &line : Lines) text += line + "\n";
    return text;
}

static std::string NameOf(const std::string &line) {
    return line.substr(0, line.find(':'));
}

std::string FileStoreOpen() {
    Lines.clear();
    Loaded.clear();
    if (access(HostQueues, F_OK)) return "";
    std::string error = ReadWholeFile(HostQueues, HOSTQ_MAX, Loaded);
    std::string_view text(Loaded);
    for (std::string_view line; TakeLine(text, line);)
        if (CheckHostQueueName(NameOf(std::string(line))).empty()) Lines.emplace_back(line);
    Loaded = Joined();
    return error;
}

std::vector<std::string> FileStoreQueues() {
    std::vector<std::string> names;
    for (const std::string &line : Lines) names.push_back(NameOf(line));
    return names;
}

static std::vector<std::string>::iterator FindLine(const std::string &name) {
    return std::find_if(Lines.begin(), Lines.end(),
                        [&](const std::string &line) { return NameOf(line) == name; });
}

bool FileStoreHas(const std::string &name) {
    return FindLine(name) != Lines.end();
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
    auto found = FindLine(queue.name);
    std::string_view uri, directory;
    if (found == Lines.end()) return "";
    SplitLine(*found, uri, directory);
    // Above the printer's part it is the environment's and the tool directory's affair.
    bool flSame = uri == QueueUri(queue) && directory.ends_with(SpoolPrinter(queue));
    return flSame ? "" : Say(SayRecordChanged, queue.name);
}

std::string FileStoreSpool(const Queue &queue) {
    auto found = FindLine(queue.name);
    std::string_view uri, directory;
    bool flSound = CheckQueueTarget(queue).empty() && FileStoreCheck(queue).empty();
    if (flSound || found == Lines.end()) return SpoolDirectory(queue);
    SplitLine(*found, uri, directory);
    return std::string(directory);
}

void FileStorePut(const Queue &queue) {
    std::string line = queue.name + ": " + QueueUri(queue) + " " + SpoolDirectory(queue);
    auto found = FindLine(queue.name);
    if (found == Lines.end())
        Lines.push_back(line);
    else
        *found = line;
}

void FileStoreDelete(const std::string &name) {
    auto found = FindLine(name);
    if (found != Lines.end()) Lines.erase(found);
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

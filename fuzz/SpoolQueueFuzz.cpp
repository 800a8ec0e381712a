// Any text as a job list: nothing but junk in front, and the job that is deleted, ever leaves it.
#include "common/MemMgr.h"
#include "common/utils.h"
#include "fuzz/FuzzDir.h"
#include "print/prnoutbase.h"

#include <cstdint>
#include <cstring>

enum { NAME_SIZE = 64 };
static const char White[] = " \t\r\n\v\f";

static bool EndsWith(const std::string &text, const std::string &end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

// The line of the job was taken out, and only that.
static void CheckDeleted(const std::string &before, const std::string &after, const std::string &name) {
    size_t at = 0;
    while (at < after.size() && before[at] == after[at]) at++;
    if (before == after) return;
    size_t count = before.size() - after.size();
    Require(after.size() < before.size() && before.substr(at + count) == after.substr(at));
    // Equal lines may meet at the cut: the line starts at one of the places that give the same result.
    for (size_t start = at + 1; start-- > 0;) {
        if (before.substr(0, start) + before.substr(start + count) != after) break;
        std::string line = before.substr(start, count);
        size_t word = line.find_first_not_of(White);
        if (line.find('\n') == count - 1 && word != line.npos && line.compare(word, name.size(), name) == 0)
            return;
    }
    abort();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string text(reinterpret_cast<const char *>(data), size);
    const char *directory = FuzzDirectory().c_str();
    char first[NAME_SIZE], second[NAME_SIZE], again[NAME_SIZE];
    WriteFuzzFile(".q", text);
    GetJobFromQue____(directory, again, second, NAME_SIZE);
    Require(ReadFuzzFile(".q") == text);

    GetJobFromQue(directory, first, second, NAME_SIZE);
    std::string kept = ReadFuzzFile(".q");
    Require(EndsWith(text, kept) && !strpbrk(first, White) && !strpbrk(second, White));
    Require(*first ? (*first == 'c' || *first == 'C') : kept == text && !*second);
    GetJobFromQue(directory, again, second, NAME_SIZE);
    // A file of a single byte reads as an empty one.
    Require(ReadFuzzFile(".q") == kept && (kept.size() == 1 || strcmp(first, again) == 0));

    DeleteJobFromQue(directory, first, 0);
    std::string left = ReadFuzzFile(".q");
    CheckDeleted(kept, left, first);
    AddJobToQue(directory, "cLast", "dLast");
    std::string added = ReadFuzzFile(".q");
    Require(added.compare(0, left.size(), left) == 0 && EndsWith(added, "cLast dLast\n"));
    Require(added.size() - left.size() <= strlen("\ncLast dLast\n"));
    Require(ReadFuzzFile(".qlock") == "U prndeck" && CheckMem() == nullptr);
    return 0;
}

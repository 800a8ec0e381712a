// Waiting jobs: where the family's queues spool, and what stands there.
#include "prndeck/core/PrdJobs.h"

#include "common/MemMgr.h"
#include "common/Words.h"
#include "common/utils.h"
#include "print/prnoutbase.h"
#include "prndeck/core/PrdQueList.h"

#include <algorithm>
#include <ctime>
#include <string_view>
#include <sys/stat.h>

static constexpr char ListFile[] = ".q";
static constexpr char AskedFile[] = ".refresh"; // as old as the last answer of the scheduler
static constexpr char Blanks[] = " \t\n";
enum { OWNER_WORD = 4 }; // of a control file

std::vector<std::string> pJobPath;
std::vector<size_t> pIndex;
std::vector<std::string> JobQueues;

// ---- Places

static std::string TakeText(char *text) {
    std::string out = text ? text : "";
    PutMem(text);
    return out;
}

static std::vector<std::string> SplitQueues(const char *list) {
    std::vector<std::string> queues;
    std::string_view text = list ? list : "";
    for (std::string_view queue; TakeWord(text, ",", queue);) queues.emplace_back(queue);
    return queues;
}

static size_t FindPlace(const std::string &queue) {
    if (!FindPrinter(queue.c_str())) return 0;
    std::string path = TakeText(GetSpoolPath(pPPDFile, pPrinterPath));
    size_t place = static_cast<size_t>(std::find(pJobPath.begin(), pJobPath.end(), path) - pJobPath.begin());
    if (place == pJobPath.size()) pJobPath.push_back(path);
    return place;
}

void UpdateJobPaths() {
    static std::string list;
    std::string now = pTarvoQueList ? pTarvoQueList : "";
    if (now == list) return;
    list = now;
    pJobPath.clear();
    pIndex.clear();
    JobQueues = SplitQueues(list.c_str());
    for (const std::string &queue : JobQueues) pIndex.push_back(FindPlace(queue));
}

const std::string *FindJobPath(const std::string &queue) {
    size_t place =
        static_cast<size_t>(std::find(JobQueues.begin(), JobQueues.end(), queue) - JobQueues.begin());
    if (place == JobQueues.size() || pIndex[place] >= pJobPath.size()) return nullptr;
    return &pJobPath[pIndex[place]];
}

// ---- Jobs

int CountJobs(const std::string &path) {
    std::string list = TakeText(GetSavedFileContent(path.c_str(), ListFile));
    std::string_view text = list;
    int count = 0;
    for (std::string_view line; TakeWord(text, "\n", line);) count++;
    return count;
}

int GetJobListAge(const std::string &path) {
    struct stat info;
    if (stat((path + "/" + AskedFile).c_str(), &info) == 0)
        return static_cast<int>(std::max<time_t>(time(nullptr) - info.st_mtime, 0));
    return stat((path + "/" + ListFile).c_str(), &info) == 0 ? 0 : -1;
}

// The bytes of a file of the directory, or -1. A name that leads elsewhere is no job's.
static long GetJobFileSize(const std::string &path, const std::string &name) {
    struct stat info;
    if (name.empty() || name.find('/') != name.npos) return -1;
    if (lstat((path + "/" + name).c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return -1;
    return static_cast<long>(info.st_size);
}

static std::string ReadOwner(const std::string &path, const std::string &name) {
    std::string control = TakeText(GetSavedFileContent(path.c_str(), name.c_str()));
    std::string_view text = control, word;
    for (int n = 0; n < OWNER_WORD; n++)
        if (!TakeWord(text, Blanks, word)) return "";
    return std::string(word);
}

std::vector<PrintJob> ReadJobs(const std::string &path) {
    std::vector<PrintJob> jobs;
    std::string list = TakeText(GetSavedFileContent(path.c_str(), ListFile));
    std::string_view text = list;
    for (std::string_view line; TakeLine(text, line);) {
        std::string_view first, second;
        if (!TakeWord(line, Blanks, first) || !TakeWord(line, Blanks, second)) continue;
        long control = GetJobFileSize(path, std::string(first));
        long data = GetJobFileSize(path, std::string(second));
        if (control < 0 || data < 0) continue; // sent meanwhile
        jobs.push_back({ReadOwner(path, std::string(first)), std::string(first.substr(1)), control + data});
    }
    return jobs;
}

// ---- Rows

static std::string Padded(const std::string &text, size_t width) {
    return text + std::string(width - std::min(width, text.size()), ' ');
}

std::string MakeCountRow(int count, const std::string &queue) {
    enum { COUNT_WIDTH = 3, WIDTH = 17 };
    std::string text = std::to_string(count);
    return Padded(std::string(COUNT_WIDTH - std::min<size_t>(COUNT_WIDTH, text.size()), ' ') + text, WIDTH) +
           " " + queue;
}

std::string MakeJobRow(const PrintJob &job) {
    enum { OWNER_WIDTH = 20, NAME_WIDTH = 30 };
    return Padded(job.owner, OWNER_WIDTH) + "  " + Padded(job.name, NAME_WIDTH) + "  " +
           std::to_string(job.size);
}

// A row without an owner begins with a blank, and the job's name is its first word.
std::string GetRowJob(const std::string &row) {
    std::string_view text = row, word;
    TakeWord(text, " \t", word);
    if (!row.starts_with(' ')) TakeWord(text, " \t", word);
    return std::string(word);
}

// The file of queues, written and read.
#include "siblings/prnqtool/Export.h"

#include "common/Words.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Ppd.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Say.h"
#include "siblings/prnqtool/Batch.h"
#include "siblings/prnqtool/Change.h"
#include "siblings/prnqtool/Commands.h"
#include "siblings/prnqtool/Outcome.h"
#include "siblings/prnqtool/Put.h"

#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <unistd.h>

enum { EXPORT_MODE = 0600 };

static constexpr std::string_view FirstLine = "prnqtool-export 1\n";
static constexpr std::string_view LastLead = "end ";

struct Exported {
    std::string titles; // the system's
    std::vector<Queue> queues;
};

struct FlagRow {
    const char *word;
    bool Queue::*flag;
};
static constexpr FlagRow Flags[] = {
    {"default", &Queue::flDefault}, {"lpd", &Queue::flLpd},          {"features", &Queue::flFeatures},
    {"banner", &Queue::flBanner},   {"ui", &Queue::flUserInterface},
};

struct ValueRow {
    const char *word;
    std::string Queue::*value;
    bool flLines; // of a text: each occurrence adds one
};
static constexpr ValueRow Values[] = {
    {"ppd", &Queue::ppd, false},       {"printer", &Queue::printer, false},
    {"remote", &Queue::remote, false}, {"setting", &Queue::settings, true},
    {"title", &Queue::banner, true},
};

// FNV-1a: it shall notice damage, not intent.
static std::string Checksum(std::string_view text) {
    uint64_t sum = 0xcbf29ce484222325u;
    char digits[20];
    for (char byte : text) sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001b3u;
    snprintf(digits, sizeof digits, "%016" PRIx64, sum);
    return digits;
}

// ---- Writing

static std::string Lines(const char *word, std::string_view text) {
    std::string lines;
    for (std::string_view line; TakeLine(text, line);)
        lines += " " + std::string(word) + " " + std::string(line) + "\n";
    return lines;
}

static std::string QueueText(const Queue &queue) {
    std::string text = "queue " + queue.name + "\n type " + std::to_string(queue.type) + "\n";
    for (const ValueRow &row : Values) text += Lines(row.word, queue.*row.value);
    for (const FlagRow &row : Flags)
        if (queue.*row.flag) text += std::string(" flag ") + row.word + "\n";
    return text;
}

static std::string ExportText(size_t &leftOut) {
    std::string text(FirstLine);
    Queue queue;
    text += "titles\n" + Lines("title", RecordsBanner());
    for (const std::string &name : HostQueues(TheHost)) {
        bool flSound = RecordsRead(name, queue) && IsSound(queue) && CheckQueueName(name).empty() &&
                       FileStoreCheck(queue).empty();
        if (flSound)
            text += QueueText(queue);
        else
            TellUser(Say(SayNotExported, name));
        leftOut += !flSound;
    }
    return text + std::string(LastLead) + Checksum(text) + "\n";
}

std::string ExportQueues(const std::string &path) {
    size_t leftOut = 0;
    std::string error = HostOpen(TheHost);
    if (error.empty()) error = RecordsOpen();
    if (!error.empty()) return error;
    if (TheHost.state == CUPS_DOWN && !TheHost.flStandAlone) return TheHost.error;
    std::string text = ExportText(leftOut);
    if (path == "-")
        fwrite(text.data(), 1, text.size(), stdout);
    else
        error = ReplaceFile(path, text, EXPORT_MODE);
    return error.empty() && leftOut ? Say(SayExportPart, std::to_string(leftOut)) : error;
}

// ---- Reading

static bool SetFlag(Queue &queue, std::string_view word) {
    for (const FlagRow &row : Flags)
        if (word == row.word) return queue.*row.flag = true;
    return false;
}

// A line that is led by a blank.
static bool ReadValueLine(Queue &queue, std::string_view line) {
    std::string_view word = TakeUpTo(line, " ");
    if (!line.empty()) line.remove_prefix(1);
    if (word == "flag") return SetFlag(queue, line);
    if (word == "type") {
        bool flDigit = line.size() == 1 && line[0] >= '0' && line[0] <= '9';
        queue.type = flDigit ? line[0] - '0' : -1;
        return flDigit;
    }
    for (const ValueRow &row : Values) {
        if (word != row.word) continue;
        (queue.*row.value) += std::string(line) + (row.flLines ? "\n" : "");
        return true;
    }
    return false;
}

static bool ReadBody(std::string_view body, Exported &exported) {
    static constexpr std::string_view QueueLead = "queue ";
    Queue titles;
    Queue *now = nullptr;
    for (std::string_view line; TakeLine(body, line);) {
        if (line == "titles") {
            now = &titles;
        } else if (line.starts_with(QueueLead)) {
            exported.queues.emplace_back().name = line.substr(QueueLead.size());
            now = &exported.queues.back();
        } else if (!now || !line.starts_with(' ') || !ReadValueLine(*now, line.substr(1))) {
            return false;
        }
    }
    exported.titles = titles.banner;
    return true;
}

static bool ReadExport(std::string_view text, Exported &exported) {
    size_t last = text.rfind("\n" + std::string(LastLead));
    if (!text.starts_with(FirstLine) || last == text.npos) return false;
    std::string_view body = text.substr(0, last + 1), end = text.substr(last + 1);
    if (end != std::string(LastLead) + Checksum(body) + "\n") return false;
    return ReadBody(body.substr(FirstLine.size()), exported);
}

// ---- Import

static std::string ImportQueue(const Queue &queue) {
    std::string_view ppd;
    std::string error = CheckQueueName(queue.name);
    if (error.empty()) error = CheckQueueTarget(queue);
    if (error.empty()) error = ReadPpdFile(queue.ppd, ppd);
    if (error.empty() && queue.settings.size() > SETTINGS_MAX) error = Say(SayNotWhole, queue.name);
    if (error.empty() && queue.banner.size() > BANNER_MAX) error = Say(SayNotWhole, queue.name);
    return error.empty() ? EnsureQueue(queue) : error;
}

static std::string ImportTitles(const std::string &titles) {
    if (titles != RecordsBanner()) return SetSystemBanner(titles);
    Report("", OUTCOME_UNCHANGED);
    return "";
}

std::string ImportQueues(const std::string &path) {
    Exported exported;
    std::string text, error = ReadBatchFile(path, text);
    std::vector<std::string> names;
    size_t refused = 0;
    if (!error.empty()) return error;
    if (!ReadExport(text, exported) || exported.titles.size() > BANNER_MAX) return Say(SayNotWhole, path);
    for (const Queue &queue : exported.queues) names.push_back(queue.name);
    BeginBatch(names);
    error = BeginChange();
    if (!error.empty()) return error;
    auto tell = [&](const std::string &name, const std::string &told) {
        if (!told.empty()) TellUser(name + ": " + told);
        refused += !told.empty();
    };
    tell(Say(SayBannerTitles), ImportTitles(exported.titles));
    for (const Queue &queue : exported.queues) tell(queue.name, ImportQueue(queue));
    error = EndBatch();
    if (!error.empty()) return Say(SayBatchLost, error);
    ReportSum(refused);
    return refused ? Say(SayBatchRefused, std::to_string(refused)) : "";
}

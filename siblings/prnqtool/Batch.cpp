// The lines of a batch, one after the other.
#include "siblings/prnqtool/Batch.h"

#include "common/Words.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/Frame.h"
#include "siblings/lib/Say.h"
#include "siblings/prnqtool/Change.h"
#include "siblings/prnqtool/Commands.h"
#include "siblings/prnqtool/Outcome.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

struct BatchLine {
    size_t number; // in the file, from 1
    Options options;
    std::string error; // what is wrong with its words
};

// ---- Reading

// A pipe serves as well as a file: the batch may come from a program.
static std::string ReadAll(int file, std::string &text) {
    char buffer[65536];
    ssize_t count;
    while ((count = read(file, buffer, sizeof buffer)) > 0 || (count < 0 && errno == EINTR)) {
        if (count > 0) text.append(buffer, static_cast<size_t>(count));
        if (text.size() > BATCH_FILE_MAX) return strerror(EFBIG);
    }
    return count < 0 ? strerror(errno) : "";
}

std::string ReadBatchFile(const std::string &path, std::string &text) {
    int file = path == "-" ? 0 : open(path.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC);
    alarm(0); // a batch may come as slowly as it is made
    std::string reason = file < 0 ? strerror(errno) : ReadAll(file, text);
    LimitRun();
    if (file > 0) close(file);
    if (!reason.empty()) return Say(SayCantRead, path, reason);
    return text.find('\0') != text.npos ? Say(SayFileNoText, path) : "";
}

// One word from its first byte on; at moves behind it.
static std::string ReadWord(std::string_view line, size_t &at, std::string &word) {
    char quote = 0;
    for (; at < line.size(); at++) {
        char byte = line[at];
        bool flEscape = byte == '\\' && quote == '"' && at + 1 < line.size() && strchr("\"\\", line[at + 1]);
        if (flEscape)
            word += line[++at];
        else if (quote ? byte == quote : byte == '"' || byte == '\'')
            quote = quote ? 0 : byte;
        else if (!quote && strchr(" \t\r", byte))
            return "";
        else
            word += byte;
    }
    return quote ? Say(SayQuoteOpen) : "";
}

std::string SplitWords(std::string_view line, std::vector<std::string> &words) {
    for (size_t at = 0;;) {
        at = line.find_first_not_of(" \t\r", at);
        if (at == line.npos || line[at] == '#') return "";
        words.emplace_back();
        std::string error = ReadWord(line, at, words.back());
        if (!error.empty()) return error;
    }
}

// Only what changes queues, and nothing that is the whole run's.
static std::string CheckLine(const Options &line) {
    bool flChange = line.command <= COMMAND_CLEAR_BANNER;
    return flChange && line.log.empty() && !line.flDryRun ? "" : Say(SayNoBatchLine);
}

static std::vector<BatchLine> ReadLines(std::string_view text, const Options &options) {
    std::vector<BatchLine> lines;
    size_t number = 0;
    for (std::string_view line; TakeLine(text, line);) {
        BatchLine read = {++number, {}, ""};
        std::vector<std::string> words;
        read.error = SplitWords(line, words);
        if (words.empty() && read.error.empty()) continue;
        if (read.error.empty()) read.error = ReadOptions(words, read.options);
        if (read.error.empty()) read.error = CheckLine(read.options);
        if (options.flEnsure && read.options.command == COMMAND_ADD) read.options.flEnsure = true;
        lines.push_back(read);
    }
    return lines;
}

// ---- Running

// They are held while a change is under way; between two lines a batch may well end.
static bool IsStopped() {
    sigset_t pending;
    if (sigpending(&pending)) return false;
    return sigismember(&pending, SIGINT) || sigismember(&pending, SIGTERM) || sigismember(&pending, SIGHUP);
}

static std::string WhyStop(bool flRefused) {
    if (IsStopped()) return Say(SayStoppedBySignal);
    // Each further line would wait for its limit.
    if (flRefused && TheHost.state == CUPS_UP && !CupsAnswers()) TheHost.state = CUPS_DOWN;
    return TheHost.state == CUPS_DOWN && flRefused ? Say(SayNoAnswer) : "";
}

static size_t RunLines(const std::vector<BatchLine> &lines) {
    size_t refused = 0;
    bool flRefused = false;
    for (const BatchLine &line : lines) {
        std::string reason = WhyStop(flRefused), number = std::to_string(line.number);
        if (!reason.empty()) {
            TellUser(Say(SayBatchStopped, number, reason));
            return refused + 1;
        }
        std::string error = line.error.empty() ? ChangeBy(line.options) : line.error;
        flRefused = !error.empty();
        if (flRefused) TellUser(Say(SayBatchLine, number, error));
        refused += flRefused;
    }
    return refused;
}

std::string RunBatch(const Options &options) {
    std::string text, error = ReadBatchFile(options.file, text);
    if (!error.empty()) return error;
    std::vector<BatchLine> lines = ReadLines(text, options);
    std::vector<std::string> names;
    for (const BatchLine &line : lines)
        names.insert(names.end(), line.options.queues.begin(), line.options.queues.end());
    BeginBatch(names);
    error = BeginChange();
    if (!error.empty()) return error;
    size_t refused = RunLines(lines);
    error = EndBatch();
    if (!error.empty()) return Say(SayBatchLost, error);
    ReportSum(refused);
    return refused ? Say(SayBatchRefused, std::to_string(refused)) : "";
}

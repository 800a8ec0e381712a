// CUPS by lpadmin and lpstat: each change of a queue is one request to the scheduler, so that it is whole or
// not at all.
#include "siblings/lib/CupsStore.h"

#include "common/Words.h"
#include "common/utils.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/CupsBanner.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Ppd.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Utf8.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <strings.h>
#include <unistd.h>

enum { TITLE_MAX = 240 }; // a name at the scheduler holds 255 bytes

using Words = std::vector<std::string>;

static const char ProbeQueue[] = "_prnq_probe";
static const char NoDefaultQueue[] = "_prnq_nodef";
static const char BannerLetters[] = "abc"; // the scheduler's templates take no digit in a name

static bool flPretend;

void CupsPretend() {
    flPretend = true;
}

static std::string RunAdmin(Words words) {
    if (flPretend) return "";
    words.insert(words.begin(), "lpadmin");
    Ran ran = RunChild(words);
    return Succeeded(ran) ? "" : ComplaintOf(ran);
}

// ---- Lists

static CupsState WithoutAnswer(const Ran &ran, std::string &error) {
    bool flInstalled = !FindProgram("cupsd").empty() || getenv("CUPS_SERVER");
    error = ran.flTimedOut ? ComplaintOf(ran) : Say(SaySchedulerDown);
    return flInstalled || ran.flTimedOut ? CUPS_DOWN : CUPS_ABSENT;
}

CupsState CupsList(Words &queues, Words &leftovers, std::string &error) {
    if (FindProgram("lpadmin").empty()) return CUPS_ABSENT;
    Ran ran = RunChild({"lpstat", "-a"});
    bool flNone = ran.status == 1 && ran.errors.find("No destinations added") != ran.errors.npos;
    if (!ran.flStarted || ran.flTimedOut || (ran.status && !flNone)) return WithoutAnswer(ran, error);
    std::string_view text(ran.output);
    for (std::string_view line; TakeLine(text, line);) {
        std::string name(TakeUpTo(line, " \t"));
        // A line led by a blank goes on about the queue of the line before.
        if (name == ProbeQueue || name == NoDefaultQueue)
            leftovers.push_back(name);
        else if (!name.empty())
            queues.push_back(name);
    }
    return CUPS_UP;
}

// One that hangs still takes the connection, which is all that is looked at behind "-r".
bool CupsAnswers() {
    if (RunChild({"lpstat", "-d"}).flTimedOut) return false;
    Ran ran = RunChild({"lpstat", "-r"});
    return Succeeded(ran) && ran.output.find("is running") != ran.output.npos;
}

void CupsDevices(std::map<std::string, std::string> &devices) {
    static constexpr std::string_view Lead = "device for ";
    Ran ran = RunChild({"lpstat", "-v"});
    std::string_view text(ran.output);
    for (std::string_view line; TakeLine(text, line);) {
        size_t colon = line.find(": ");
        if (!line.starts_with(Lead) || colon == line.npos) continue;
        devices[std::string(line.substr(Lead.size(), colon - Lead.size()))] = line.substr(colon + 2);
    }
}

// ---- Words of one lpadmin call

// One option; in double quotes, so that no byte of the value can end it or begin another.
static void AddOption(Words &words, const std::string &option, const std::string &value) {
    std::string quoted;
    for (char byte : value) {
        if (byte == '"' || byte == '\\') quoted += '\\';
        quoted += static_cast<unsigned char>(byte) < ' ' || byte == 127 ? ' ' : byte;
    }
    words.insert(words.end(), {"-o", option + "=\"" + quoted + "\""});
}

// The scheduler would take a value in braces for a collection, of which nothing reaches the page, and these
// two words for a yes or no, which it prints as 1 or 0. A blank that can't be broken leaves them texts.
static std::string TitleValue(const std::string &title) {
    static constexpr char HardBlank[] = "\u00a0";
    std::string value = CleanUtf8(title, TITLE_MAX);
    bool flRead =
        value.starts_with('{') || !strcasecmp(value.c_str(), "true") || !strcasecmp(value.c_str(), "false");
    return flRead ? HardBlank + value : value;
}

// All in one request, and an absent title as one without a size: to remove an option is a request of its own,
// which would also make a queue of an unknown name, and an empty value is a line that the scheduler can't
// read back.
static void AddBanner(Words &words, const Queue &queue, const Titles &titles) {
    bool flBanner = queue.flBanner && !flPretend && CupsBannerReady(true);
    words.insert(words.end(),
                 {"-o", flBanner ? "job-sheets-default=prnq,none" : "job-sheets-default=none,none"});
    for (size_t row = 0; flBanner && row < titles.size(); row++) {
        bool flTitle = !titles[row].text.empty();
        std::string letter(1, BannerLetters[row]);
        AddOption(words, "prnq-h" + letter + "-default", flTitle ? TitleValue(titles[row].text) : "-");
        AddOption(words, "prnq-s" + letter + "-default", std::to_string(flTitle ? titles[row].size : 0));
    }
}

static std::string PpdPath(const Queue &queue) {
    return std::string(pToolPath) + "/ppd/" + queue.ppd;
}

static void AddPpd(Words &words, const Queue &queue) {
    std::string_view ppdText;
    words.insert(words.end(), {"-P", PpdPath(queue)});
    if (!queue.flFeatures || !ReadPpdFile(queue.ppd, ppdText).empty()) return;
    for (const std::string &setting : OfferedSettings(queue.settings, ppdText))
        words.insert(words.end(), {"-o", setting});
}

// The model's name as the list of printers shows it.
static std::string ModelOf(const Queue &queue) {
    std::string_view ppdText;
    std::string model;
    if (ReadPpdFile(queue.ppd, ppdText).empty()) model = PpdText(ppdText, "ModelName");
    return CleanUtf8(model.empty() ? queue.ppd : model, 127);
}

std::string CupsUri(const Queue &queue) {
    std::string uri = QueueUri(queue);
    // The backends would else ask the printer by SNMP for its supplies, which holds up each job for seconds.
    if (!IsDeviceType(queue.type)) uri += uri.starts_with("socket:") ? "/?snmp=false" : "?snmp=false";
    return uri;
}

static Words TargetWords(const Queue &queue, const std::string &name) {
    return {"-p", name,
            "-v", CupsUri(queue),
            "-D", ModelOf(queue),
            "-L", CleanUtf8(queue.printer, 255),
            "-o", "printer-is-shared=false",
            "-o", "printer-error-policy=retry-job"};
}

static Words PutWords(const Queue &queue, const std::string &name, const Titles &titles, bool flPpd) {
    Words words = TargetWords(queue, name);
    if (flPpd) AddPpd(words, queue);
    AddBanner(words, queue, titles);
    return words;
}

static bool IsPpdComplaint(const std::string &error) {
    return error.find("PPD") != error.npos;
}

static void WarnWithoutPpd(const Queue &queue, const std::string &error) {
    TellUser(Say(SayGoesWithoutPpd, queue.name, error));
}

// ---- Operations

std::string CupsAdd(const Queue &queue, const Titles &titles) {
    Words words = PutWords(queue, queue.name, titles, true);
    words.push_back("-E"); // last: in front it means encryption
    std::string error = RunAdmin(words);
    if (IsPpdComplaint(error)) {
        WarnWithoutPpd(queue, error);
        words = PutWords(queue, queue.name, titles, false);
        words.push_back("-E");
        error = RunAdmin(words);
    }
    if (!error.empty()) CupsDelete(queue.name);
    return error;
}

std::string CupsReplace(const Queue &queue, const Titles &titles, bool &flTouched) {
    std::string error = RunAdmin(PutWords(queue, ProbeQueue, titles, true));
    CupsDelete(ProbeQueue);
    if (!error.empty()) return error;
    Words words = PutWords(queue, queue.name, titles, true);
    words.insert(words.end(), {"-u", "allow:all", "-E"});
    flTouched = true;
    return RunAdmin(words);
}

std::string CupsModify(const Queue &queue, const Titles &titles, bool flPpd) {
    Words words = {"-p", queue.name}, plain = words;
    // The whole PPD file again: a setting that is no longer told goes back to the model's own.
    if (flPpd && !access(PpdPath(queue).c_str(), R_OK)) AddPpd(words, queue);
    AddBanner(words, queue, titles);
    std::string error = RunAdmin(words);
    if (!IsPpdComplaint(error)) return error;
    WarnWithoutPpd(queue, error);
    AddBanner(plain, queue, titles);
    return RunAdmin(plain);
}

std::string CupsSetBanner(const Queue &queue, const Titles &titles) {
    Words words = {"-p", queue.name};
    AddBanner(words, queue, titles);
    return RunAdmin(words);
}

std::string CupsDelete(const std::string &name) {
    return RunAdmin({"-x", name});
}

std::string CupsSetDefault(const std::string &name) {
    return RunAdmin({"-d", name});
}

std::string CupsDefault() {
    static constexpr std::string_view Lead = "system default destination: ";
    Ran ran = RunChild({"lpstat", "-d"});
    std::string_view line(ran.output);
    if (!Succeeded(ran) || !line.starts_with(Lead)) return "";
    line.remove_prefix(Lead.size());
    return std::string(TakeUpTo(line, "\n"));
}

std::string CupsCancelAll(const std::string &name) {
    if (flPretend) return "";
    Ran ran = RunChild({"cancel", "-a", name});
    return Succeeded(ran) ? "" : ComplaintOf(ran);
}

// No command clears the default, but a default queue that is deleted takes it along.
std::string CupsClearDefault() {
    std::string error = RunAdmin({"-p", NoDefaultQueue, "-v", "file:/dev/null"});
    if (error.empty()) error = CupsSetDefault(NoDefaultQueue);
    std::string left = CupsDelete(NoDefaultQueue);
    return error.empty() ? left : error;
}

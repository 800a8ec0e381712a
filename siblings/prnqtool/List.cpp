// What is known of each queue, in the order of -LQ.
#include "siblings/prnqtool/List.h"

#include "common/Words.h"
#include "print/QueType.h"
#include "siblings/lib/FileStore.h"
#include "siblings/lib/JobList.h"
#include "siblings/lib/Json.h"
#include "siblings/lib/Ppd.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Table.h"
#include "siblings/lib/Utf8.h"

#include <cstdio>
#include <map>
#include <set>

struct Listed {
    Queue queue;
    bool flRecord = false; // else the host alone knows it
    bool flSound = true;   // the record could have been made by us
    Place place = PLACE_NONE;
    std::string model; // the PPD file's name for it
    size_t jobs = 0;
    bool flJobs = true; // all of its waiting jobs could be seen
};

struct JobCounts {
    std::map<std::pair<Place, std::string>, size_t> counts; // by queue
    std::set<std::string> hidden; // directories with jobs of whom only their owner may know the queue
};

static constexpr const char *PlaceWords[] = {"", "file", "cups", ""}; // ORDER Place

// ---- What is known

// Many queues have the same model: each PPD file is read once.
static std::string ModelOf(const std::string &ppd) {
    static std::map<std::string, std::string> models;
    auto found = models.find(ppd);
    if (found != models.end()) return found->second;
    std::string_view text;
    return models[ppd] = ReadPpdFile(ppd, text).empty() ? PpdText(text, "ModelName") : "";
}

static JobCounts CountJobs(const std::vector<WaitingJob> &jobs) {
    JobCounts counted;
    for (const WaitingJob &job : jobs) {
        counted.counts[{job.place, job.queue}]++;
        if (job.queue.empty()) counted.hidden.insert(job.directory);
    }
    return counted;
}

static Listed Describe(const Host &host, const std::string &name, const JobCounts &jobs) {
    Listed listed;
    listed.flRecord = RecordsRead(name, listed.queue);
    listed.queue.name = name;
    listed.queue.flDefault = RecordsDefault() == name;
    listed.flSound = listed.flRecord && CheckQueueTarget(listed.queue).empty();
    listed.place = HostFind(host, name);
    if (listed.flSound) listed.model = ModelOf(listed.queue.ppd);
    auto found = jobs.counts.find({listed.place, name});
    if (found != jobs.counts.end()) listed.jobs = found->second;
    bool flFile = listed.place == PLACE_FILE && !jobs.hidden.empty();
    listed.flJobs = !flFile || !jobs.hidden.contains(FileStoreSpool(listed.queue));
    return listed;
}

static std::string Collect(std::vector<Listed> &all) {
    Host host;
    std::vector<WaitingJob> jobs;
    std::string error = HostOpen(host);
    if (error.empty()) error = RecordsOpen();
    if (!error.empty()) return error;
    error = ListJobs(host, jobs);
    JobCounts counted = CountJobs(jobs);
    for (const std::string &name : HostQueues(host)) all.push_back(Describe(host, name, counted));
    return error;
}

// ---- Table

static const char *TypeWord(const Queue &queue) {
    return PMs[GetQueChoice(queue.type).printingModel];
}

static std::string OptionWords(const Queue &queue) {
    std::string words;
    auto add = [&](bool flOn, const char *word) {
        words += flOn ? (words.empty() ? "" : " ") + std::string(word) : "";
    };
    add(queue.flDefault, "default");
    add(queue.flLpd, "lpd");
    add(queue.flFeatures, "features");
    add(queue.flBanner, "banner");
    add(queue.flUserInterface, "ui");
    return words;
}

static TableRow RowOf(const Listed &listed) {
    const Queue &queue = listed.queue;
    std::string jobs = listed.flJobs ? std::to_string(listed.jobs) : "?";
    if (!listed.flSound)
        return {queue.name, "", "", "", "", OptionWords(queue), PlaceWords[listed.place], jobs};
    return {queue.name,
            listed.model.empty() ? queue.ppd : CleanUtf8(listed.model, PPD_MAX),
            TypeWord(queue),
            queue.printer,
            queue.remote,
            OptionWords(queue),
            PlaceWords[listed.place],
            jobs};
}

std::string ListTable() {
    std::vector<Listed> all;
    std::vector<TableRow> rows;
    std::string error = Collect(all);
    for (const Listed &listed : all) rows.push_back(RowOf(listed));
    printf("%s", TableText(TableHeads(Say(SayQueueHeads)), rows).c_str());
    return error;
}

// ---- JSON

static std::string SettingsJson(std::string_view settings) {
    std::map<std::string, std::string> values; // of an option that is told twice the last one counts
    JsonObject object;
    for (std::string_view line; TakePlainLine(settings, line);)
        if (size_t sign = line.find('='); sign != line.npos)
            values[std::string(line.substr(0, sign))] = line.substr(sign + 1);
    for (const auto &[option, value] : values) {
        std::string key = JsonText(option);
        object.Raw(key.substr(1, key.size() - 2).c_str(), JsonText(value));
    }
    return object.End();
}

static std::string TitlesJson(const std::string &banner) {
    std::vector<std::string> titles;
    for (const Title &title : ReadTitles(banner))
        titles.push_back(title.text.empty()
                             ? "null"
                             : JsonObject().Number("size", title.size).Text("text", title.text).End());
    return banner.empty() ? "null" : JsonArray(titles);
}

static std::string JsonOf(const Listed &listed) {
    const Queue &queue = listed.queue;
    JsonObject object;
    object.Text("queue", queue.name).Text("store", PlaceWords[listed.place]);
    object.Flag("default", queue.flDefault).Flag("record", listed.flSound);
    if (listed.flJobs)
        object.Number("jobs", static_cast<long long>(listed.jobs));
    else
        object.Raw("jobs", "null");
    if (!listed.flSound) return object.End();
    bool flDevice = IsDeviceType(queue.type);
    object.TextOrNull("model", listed.model).Text("ppd", queue.ppd).Text("type", TypeWord(queue));
    object.TextOrNull("host", flDevice ? "" : queue.printer)
        .TextOrNull("device", flDevice ? queue.printer : "");
    object.Text("remote", queue.remote).Flag("lpd", queue.flLpd).Flag("features", queue.flFeatures);
    object.Flag("banner", queue.flBanner).Flag("interface", queue.flUserInterface);
    object.Raw("settings", SettingsJson(queue.settings)).Raw("titles", TitlesJson(queue.banner));
    return object.End();
}

std::string ListJson() {
    std::vector<Listed> all;
    std::vector<std::string> objects;
    std::string error = Collect(all);
    for (const Listed &listed : all) objects.push_back(JsonOf(listed));
    printf("%s", JsonLines(objects).c_str());
    return error;
}

// Lines and objects of jobs.
#include "siblings/prnout/JobTable.h"

#include "siblings/lib/JobList.h"
#include "siblings/lib/Json.h"
#include "siblings/lib/Records.h"
#include "siblings/lib/Say.h"
#include "siblings/lib/Table.h"

#include <cstdio>

static std::string Collect(const std::string &queue, std::vector<WaitingJob> &jobs) {
    Host host;
    std::string error = queue.empty() ? "" : CheckHostQueueName(queue);
    if (error.empty()) error = HostOpen(host);
    if (error.empty()) error = RecordsOpen();
    if (!error.empty()) return error;
    Place place = queue.empty() ? PLACE_FILE : HostFind(host, queue);
    if (place == PLACE_UNKNOWN) return host.error;
    if (place == PLACE_NONE) return Say(SayQueueUnknown, queue);
    error = ListJobs(host, jobs);
    std::erase_if(jobs, [&](const WaitingJob &job) { return !queue.empty() && job.queue != queue; });
    return error;
}

static std::string JsonOf(const WaitingJob &job) {
    JsonObject object;
    object.TextOrNull("queue", job.queue).Text("job", job.name).TextOrNull("user", job.user);
    object.TextOrNull("title", job.title).Number("bytes", job.size);
    return object.Text("store", job.place == PLACE_FILE ? "file" : "cups").End();
}

std::string PrintJobs(const std::string &queue, bool flJson) {
    std::vector<WaitingJob> jobs;
    std::vector<TableRow> rows;
    std::vector<std::string> objects;
    std::string error = Collect(queue, jobs);
    for (const WaitingJob &job : jobs) {
        rows.push_back({job.queue, job.name, job.user, std::to_string(job.size), job.title});
        objects.push_back(JsonOf(job));
    }
    std::string text = flJson ? JsonLines(objects) : TableText(TableHeads(Say(SayJobHeads)), rows);
    return fputs(text.c_str(), stdout) < 0 || fflush(stdout) ? "can't write the list" : error;
}

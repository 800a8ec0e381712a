// The list of queues that wait for their banner page.
#include "siblings/prnqtool/Banners.h"

#include "common/Words.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/CupsBanner.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Records.h"

#include <algorithm>
#include <string_view>
#include <unistd.h>

enum { WAITING_MAX = 1024 * 1024, WAITING_MODE = 0600 };

static const char WaitingPath[] = "db/.prnq_banner";

using Names = std::vector<std::string>;

// The queue's record, if the scheduler should put a banner page in front of its jobs.
static bool ReadBannerQueue(const Host &host, const std::string &name, Queue &queue) {
    return HostFind(host, name) == PLACE_CUPS && RecordsRead(name, queue) && queue.flBanner;
}

static bool GiveBanner(const Queue &queue) {
    Titles titles = ReadTitles(queue.banner.empty() ? RecordsBanner() : queue.banner);
    std::string error = CupsSetBanner(queue, titles);
    if (!error.empty()) TellUser("warning: no banner page yet for queue \"" + queue.name + "\": " + error);
    return error.empty();
}

static Names ReadWaiting() {
    std::string text;
    Names names;
    if (access(WaitingPath, F_OK)) return names;
    ReadWholeFile(WaitingPath, WAITING_MAX, text); // one that can't be read is an empty one
    std::string_view rest(text);
    for (std::string_view line; TakePlainLine(rest, line);) names.emplace_back(line);
    return names;
}

static void WriteWaiting(const Names &names) {
    std::string text;
    for (const std::string &name : names) text += name + "\n";
    std::string error = text.empty() ? "" : PrepareFile(WaitingPath, text, WAITING_MODE);
    if (text.empty())
        unlink(WaitingPath);
    else if (error.empty())
        error = CommitFile(WaitingPath);
    if (!error.empty()) TellUser("warning: " + error);
}

void SettleBanners(const Host &host, const Names &changed) {
    Names waiting = ReadWaiting(), left;
    Queue queue;
    if (host.state != CUPS_UP) return;
    bool flWanted = !waiting.empty();
    for (const std::string &name : changed) flWanted |= ReadBannerQueue(host, name, queue);
    if (!flWanted) return;
    bool flReady = CupsBannerReady(false);
    for (const std::string &name : waiting)
        if (ReadBannerQueue(host, name, queue) && !(flReady && GiveBanner(queue))) left.push_back(name);
    for (const std::string &name : changed)
        if (!flReady && ReadBannerQueue(host, name, queue) && !std::count(left.begin(), left.end(), name))
            left.push_back(name);
    if (left != waiting) WriteWaiting(left);
}

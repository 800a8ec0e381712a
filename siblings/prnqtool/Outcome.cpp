// Lines and counts of outcomes.
#include "siblings/prnqtool/Outcome.h"

#include "siblings/lib/Say.h"

#include <cstdio>
#include <iterator>

static const Sentence OutcomeSentences[][2] = {
    // ORDER Outcome; done, only pretended
    {SayQueueAdded, SayQueueWouldAdd},
    {SayQueueChanged, SayQueueWouldChange},
    {SayQueueRemoved, SayQueueWouldRemove},
    {SayQueueUnchanged, SayQueueUnchanged},
};
static_assert(std::size(OutcomeSentences) == OUTCOME_COUNT);

static bool flTelling, flPretending;
static size_t Counts[OUTCOME_COUNT];

void BeginReport(bool flTell, bool flDry) {
    flTelling = flTell || flDry;
    flPretending = flDry;
}

void Report(const std::string &name, Outcome outcome) {
    Counts[outcome]++;
    if (!flTelling) return;
    std::string shown = name.empty() ? Say(SayBannerTitles) : Say(SayQueueNamed, name);
    printf("%s\n", Say(OutcomeSentences[outcome][flPretending], shown).c_str());
}

void ReportSum(size_t refused) {
    auto count = [](size_t number) { return std::to_string(number); };
    if (!flTelling) return;
    printf("%s\n", Say(SayBatchSum, count(Counts[OUTCOME_ADDED]), count(Counts[OUTCOME_CHANGED]),
                       count(Counts[OUTCOME_REMOVED]), count(Counts[OUTCOME_UNCHANGED]), count(refused))
                       .c_str());
}

int EndReport(int status) {
    bool flChanged = Counts[OUTCOME_ADDED] || Counts[OUTCOME_CHANGED] || Counts[OUTCOME_REMOVED];
    return status || !flTelling || !flChanged ? status : static_cast<int>(STATUS_CHANGED);
}

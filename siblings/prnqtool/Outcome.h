// What became of each queue, for runs that are asked to tell: --ensure, --dry-run and their like.
#pragma once

#include <string>

enum Outcome { // ORDER Outcome
    OUTCOME_ADDED,
    OUTCOME_CHANGED,
    OUTCOME_REMOVED,
    OUTCOME_UNCHANGED,
    OUTCOME_COUNT,
};

enum { STATUS_CHANGED = 2 }; // exit status of such a run that has changed something, or would

// flTell: of each queue a line on standard output. flDry: it only would come so.
void BeginReport(bool flTell, bool flDry);
// A line "queue "NAME" changed"; the empty name stands for the system's banner titles.
void Report(const std::string &name, Outcome outcome);
// The counts of a batch in one line, with the lines that were refused.
void ReportSum(size_t refused);
// The exit status for the commands' own one: 0 becomes STATUS_CHANGED where changes are told.
int EndReport(int status);

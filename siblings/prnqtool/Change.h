// The frame of every change: the lock, one look at the host, and one write of the records.
//
// The order keeps what was there: values are checked first; the records are made ready on the disk, so that a
// full or read-only one is known; then the host changes; then the records come into place; then the jobs
// follow. If a step is refused the ones before it are undone.
//
// A batch is many changes in one frame. BeginChange looks at the host once, CommitChange keeps a change in
// memory and DropChange takes back the last one alone; EndBatch writes all that were kept. Meanwhile the file
// "db/.prnq_batch" tells which queues of the scheduler the batch has in hand, lines "new QUEUE" and "old
// QUEUE". If the run is killed, the scheduler no longer
// answers, or the records can't be written, they go back to what the records say.
#pragma once

#include "siblings/lib/Host.h"
#include "siblings/prnqtool/JobNotes.h"

#include <string>
#include <vector>

extern Host TheHost; // what the host told at the start of this run, and what changed since

// What follows once the records are in place.
struct Sequel {
    std::vector<JobNote> spooled;       // jobs of the tool's own store
    std::vector<std::string> cancelled; // queues of the scheduler whose jobs go
    std::vector<std::string> banners;   // queues that got their banner page, or would have
};

// Takes the lock, looks at the host and loads the records; in a batch the first one does it for all.
std::string BeginChange();
// The edits are made; these queues change on the host next. After an error here or later, DropChange.
std::string PrepareChange(const std::vector<std::string> &queues, const Sequel &sequel);
std::string CommitChange();
void DropChange();
// From now on changes are made in memory alone, one upon the other: nothing is locked, written or asked of
// the host but its lists.
void OnlyPretend();

// Names: all queues that the batch's lines name.
void BeginBatch(const std::vector<std::string> &names);
// Empty, or why nothing of the batch was kept.
std::string EndBatch();

// ---- Values of one queue

Titles TitlesOf(const Queue &queue, const std::string &systemBanner);
// The database is open to everybody: a queue read from it goes back to the host only if it could have been
// made so.
bool IsSound(const Queue &queue);
// The host's default follows the record: it names the queue, or nothing if the queue is none of the
// scheduler's. If the user asks for it, flAsked, the host is told even if the record says so already:
// somebody else may have changed it.
std::string FollowDefault(const std::string &before, const std::string &now, bool flAsked);

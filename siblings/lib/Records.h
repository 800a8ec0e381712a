// The records of the database "que" during one change: loaded once, edited in memory, put in place as a
// whole.
//
// A change of a queue touches up to six records. They reach the disk together by one rename, so that a run
// that is killed leaves all of the old ones or all of the new ones. RecordsOpen comes first; then reads and
// edits in any order; then RecordsPrepare, which proves that the disk takes the new file; then RecordsCommit
// or RecordsDrop. A change begins with RecordsLock: others write to the database by common/Dbm.h, and the
// lock is theirs.
#pragma once

#include "siblings/lib/Queue.h"

#include <string>
#include <vector>

// Keeps all other writers out until the process ends; waits some seconds for them. Empty, or who has the
// lock.
std::string RecordsLock(int seconds);

// Loads the database; a missing one is empty. Answers an empty text, or why it can't be worked on. Drops all
// edits of an earlier call.
std::string RecordsOpen();

bool RecordsHave(const std::string &name);
// Fills the queue from its records; false without a main record. What it holds was written by others: check
// it.
bool RecordsRead(const std::string &name, Queue &queue);
std::vector<std::string> RecordsQueues();
std::string RecordsDefault(); // name of the default queue, or empty
std::string RecordsBanner();  // the system's default titles, or empty

// Writes all records of a queue, in place of those it had; the count records of the printers follow as
// the change is prepared.
void RecordsPut(const Queue &queue);
// Removes all records of a queue, also " default" if it names the queue.
void RecordsDelete(const std::string &name);
void RecordsSetDefault(const std::string &name);  // empty: none
void RecordsSetBanner(const std::string &banner); // empty: none

// Edits behind the last mark can be taken back; RecordsOpen sets the first one. Printers are counted anew all
// the same.
void RecordsMark();
void RecordsRevert();

std::string RecordsPrepare();
std::string RecordsCommit();
void RecordsDrop();

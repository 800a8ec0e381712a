// What becomes of the waiting jobs of the tool's own store when their queue goes, is replaced or gets another
// spool directory. That comes last, behind the change of the records; the file "db/.prnq_jobs" tells of it
// meanwhile, lines "drop QUEUE DIRECTORY" or "move QUEUE DIRECTORY", so that the next change does what a
// killed one left undone. The records are open already at all calls.
#pragma once

#include <string>
#include <vector>

struct JobNote {
    std::string queue, directory; // where its jobs wait before the change
    bool flMove;                  // they follow the queue; else they go
};

// In front of the commit. Empty, or why the note can't be kept: then nothing may be changed.
std::string NoteJobs(const std::vector<JobNote> &notes);
// Once it is done, or the change was refused. Nothing where something of it failed.
void ForgetJobs();
// As a change begins: what is noted still, where the queue is gone or has its jobs elsewhere now. Else the
// noted change never came about, and they stay.
void SettleLeftJobs();

// Each with a warning where it fails: the change itself stands, so that is no reason to refuse it. What is
// noted stays noted then.
void DropSpooled(const std::string &queue, const std::string &directory);
void MoveSpooled(const std::string &queue, const std::string &from, const std::string &to);

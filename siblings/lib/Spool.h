// Spool directories: the waiting jobs of one printer, as the whole family of tools reads them.
//
// A directory "ROOT/TOOLDIR/PRINTER" holds the list ".q" (print/prnoutbase.h), a line "cNAME dNAME" a job,
// oldest first; both files of each job; and ".status", a text for the user. The name tells whose job it is:
//   c00062   digits: a job of the host's scheduler. The files are stubs that show it: owner, title and size
//   cA00001  "A" and digits: a job of the tool's own store
// and anything else belongs to others and is left as it is, but for removal. A control file has the lines
//   H HOST, P USER, J TITLE, fDATAFILE, Q QUEUE, and R if the data goes as it is, without a banner page.
//
// All errors are texts for the user, empty for none.
#pragma once

#include "siblings/lib/Queue.h"

#include <string>
#include <string_view>
#include <vector>

enum { SPOOL_LOCK_SECONDS = 5, SPOOL_LIST_MODE = 0644, SPOOL_JOB_MODE = 0600, SPOOL_TEXT_MAX = 4095 };

struct SpoolJob {
    std::string name; // what stands behind the "c" of the control file's name
    std::string control, data;
};

struct JobTicket {
    std::string host, user, title, queue;
    bool flRaw = false;
};

// "ROOT/TOOLDIR/PRINTER" of a queue that passed its check, empty if its printer has no sound path. ROOT is
// /var/spool/Tarvo, or what PRNQ_SPOOL tells.
std::string SpoolDirectory(const Queue &queue);
std::string SpoolPrinter(const Queue &queue); // the last part of it, "/PRINTER"; empty as well

// Comes first. Makes the directory and those above, from ROOT on, with flMake; errno is set after an error.
// It and each of those above must be a directory, no link, that nobody else but root may write: then no name
// in it can lead anywhere else.
std::string SpoolOpen(const std::string &directory, bool flMake);

// True if the caller may change what the directory shows: on a host with CUPS everybody prints, but the
// directories are root's.
bool MayWriteSpool(const std::string &directory);

// The jobs of the list; a line with an odd name is passed over.
std::vector<SpoolJob> SpoolJobs(const std::string &directory);
bool IsHostJob(std::string_view name);
bool IsOwnJob(std::string_view name);
// True if a file of this name may belong to a job: a plain name without a leading dot.
bool IsJobName(std::string_view name);

// One job more in the tool's own store, with a copy of the open file; name is the job's.
std::string SpoolAdd(const std::string &directory, const JobTicket &ticket, int file, std::string &name);
// Takes the job's files and its line away. Without the files the line counts for nothing, so they go first.
std::string SpoolRemove(const std::string &directory, const SpoolJob &job);

// Removes the waiting jobs of one queue of the tool's own store; a directory that isn't there has none.
std::string SpoolRemoveQueue(const std::string &directory, const std::string &queue);

// True while the sender of the directory has a job at the printer.
bool IsSpoolPrinting(const std::string &directory);
// Moves the waiting jobs of such a queue to another directory, where they get new names.
std::string SpoolMoveQueue(const std::string &from, const std::string &to, const std::string &queue);

// Removes what programs left that were killed: data files half copied, and, once they are a minute old, new
// files that were not renamed yet. A job whose line is missing gets it back, behind the others.
void SpoolSweep(const std::string &directory);

std::string TicketText(const JobTicket &ticket, std::string_view data);
// False without a control file of ours.
bool ReadTicket(const std::string &path, JobTicket &ticket);

// Replaces the lines of the scheduler's jobs by these, and leaves all others.
std::string SpoolShow(const std::string &directory, const std::vector<SpoolJob> &jobs);
std::string SpoolStatus(const std::string &directory, std::string_view text);

std::string UserName(); // of the caller
std::string HostName();

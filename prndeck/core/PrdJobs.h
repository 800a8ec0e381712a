// Jobs that wait in the spool directories of the family's queues, as the print tools keep them there.
#pragma once

#include <string>
#include <vector>

struct PrintJob {
    std::string owner; // empty if the control file does not tell
    std::string name;  // of the control file, without its first letter: what prnrm takes
    long size;         // bytes of both files
};

// The spool directories of the family's queues. Queues that print at one place share one.
extern std::vector<std::string> pJobPath; // each once; writer: UpdateJobPaths
extern std::vector<size_t> pIndex; // of each queue of the family's list, the place of its path; likewise
extern std::vector<std::string> JobQueues; // the queues in that order; likewise

// Finds them anew if the family's list is another than at the last call. A queue whose printer isn't found
// counts with the first path. Uses: the printer globals. Ends: as FindPrinter.
void UpdateJobPaths();
// The directory of a queue of the list; null for other names, and where no printer was found at all.
const std::string *FindJobPath(const std::string &queue);
// Lines of the list of jobs in the directory.
int CountJobs(const std::string &path);
// How old the list is, in seconds: the scheduler's jobs stand there since the tools asked last, those of the
// own store at once, which is 0. -1 if there has been no list yet.
int GetJobListAge(const std::string &path);
// The jobs whose two files stand in the directory.
std::vector<PrintJob> ReadJobs(const std::string &path);

// A row of the list of queues, and of the list of jobs.
std::string MakeCountRow(int count, const std::string &queue);
std::string MakeJobRow(const PrintJob &job);
// The job's name in such a row; empty if there is none.
std::string GetRowJob(const std::string &row);

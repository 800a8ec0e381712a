// Jobs of the host's scheduler, and their picture in a spool directory.
//
// Errors are texts for the user, empty for none.
#pragma once

#include "siblings/lib/Host.h"

#include <string>
#include <vector>

struct CupsJob {
    std::string queue, user;
    long number = 0;
    long long size = 0; // bytes, rounded up by the scheduler
};

std::string CupsJobName(long number); // as lists show it and prnrm takes it: five digits or more

// All jobs that aren't printed yet, oldest first.
std::string CupsJobs(std::vector<CupsJob> &jobs);

// Hands a file to a queue. Raw: as it is, without filter and banner page. Number: the job's, 0 if it isn't
// told. A banner of our own goes in front where the scheduler has none for the queue; null for none.
struct CupsPrint {
    std::string queue, path, title;
    const char *bannerPath = nullptr;
    bool flRaw = false;
};
std::string CupsSend(const CupsPrint &print, long &number);
// True if the scheduler puts its own banner page in front of the queue's jobs.
bool CupsHasBanner(const std::string &queue);

// The scheduler looks at a job's number alone: the caller has made sure whose it is.
std::string CupsCancel(const std::vector<CupsJob> &jobs);

// The scheduler's queues, among those that have records, whose jobs wait in the spool directory.
std::vector<std::string> CupsSharers(const Host &host, const std::string &directory);
bool IsQueueOf(const std::vector<std::string> &queues, const CupsJob &job);

// Shows the jobs of these queues in the directory: list, stubs and status; jobs that are gone go. The title
// is that of the job with this number; other titles stay as they are. Waiting: how many there are. Runs that
// refresh the same directory take turns.
std::string CupsRefresh(const std::string &directory, const std::vector<std::string> &queues, long number,
                        const std::string &title, size_t &waiting);

// The windows of waiting jobs: how many there are in each queue of the family, and those of one queue. Both
// look again by themselves while they are open.
#pragma once

#include "xmt/Xmt.h"

#include <string>
#include <vector>

extern int JobTimerInterval, JobCountTimerInterval; // seconds
extern int JobTimer, JobCountTimer;                 // writer: StartJobTimers
extern std::string JobQue;                          // the queue chosen last, or empty
extern int JobQueIndex;                             // its place in the list, from 1
extern std::vector<std::string> pJobText;           // the chosen rows of the list of jobs

void PrepareJobs();    // the step behind the windows' text
void StartJobTimers(); // both wait until their window opens

// Counts of all queues; the jobs and the status of the chosen one.
void UpdateJobCount();
void UpdateJobList();

// Events.
void OpenJobCounts();
void ChooseJobQue(int place, const char *row);
void CloseJobCounts();
void RefreshJobCounts();
void SetJobInterval(const char *text);
void ChooseJobs(const char *selection);
void CloseJobs();
void DeleteJobs();
void DeleteAllJobs();

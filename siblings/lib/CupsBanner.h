// The banner page of CUPS queues: one template file in the scheduler's data directory; each queue's titles
// are its options.
#pragma once

#include <string>

// True if the scheduler knows the banner "prnq". If its file is missing it is written and the scheduler told
// to read its files again, but only while no job waits, since a job that prints would hold everybody up.
// Otherwise, with flTell, the first call warns; the answer holds for the whole run.
bool CupsBannerReady(bool flTell);
// The file as it is written, for an installation that brings it.
std::string CupsBannerPage();

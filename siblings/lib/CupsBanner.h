// The banner page of CUPS queues: one template file in the scheduler's data directory; each queue's titles
// are its options.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// True if the scheduler knows the banner "prnq". If its file is missing it is written and the scheduler told
// to read its files again, but only while no job waits, since a job that prints would hold everybody up.
// Otherwise warns once.
bool CupsBannerReady();

// The text as the scheduler takes it: UTF-8, no control characters, at most limit bytes.
std::string CupsText(std::string_view text, size_t limit);

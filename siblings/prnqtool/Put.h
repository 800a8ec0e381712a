// One queue made, changed, or brought to a wanted state, on the host and in the records. BeginChange came
// first, and the values passed their checks.
//
// Every operation answers an empty text, or why all is as it was.
#pragma once

#include "siblings/lib/Host.h"

#include <string>

// Where the jobs of a queue of the tool's own store wait.
std::string SpoolOf(const std::string &name);

// Makes the queue, or replaces the one of its name.
std::string PutQueue(const Queue &queue);
// From old, as its record has it, to a queue that prints to the same place. Waiting jobs stay.
std::string ModifyQueueTo(const Queue &queue, const Queue &old, Place place);
// Nothing if the queue is like that already, in the records and, as far as its lists tell, on the host.
// Else the least of the two above that makes it so.
std::string EnsureQueue(const Queue &queue);

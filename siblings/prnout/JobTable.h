// The waiting jobs as a table for people and as JSON for programs.
#pragma once

#include <string>

// Prints the jobs of one queue, or of all for an empty name, with names that prnrm takes. Answers an empty
// text, or what is wrong; what could be learned is printed all the same.
std::string PrintJobs(const std::string &queue, bool flJson);

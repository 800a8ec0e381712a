// The queues of the host as a table for people and as JSON for programs.
#pragma once

#include <string>

// Prints one of them on standard output, all that the host, the records, the models and the spool tell of
// each queue. Answers an empty text, or what is wrong; what could be learned is printed all the same.
std::string ListTable();
std::string ListJson();

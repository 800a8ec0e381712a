// Many command lines in one run: one look at the host, one write of the records.
//
// A line of the file holds the words of one command that changes queues, split at blanks; '...' and "..."
// keep blanks together, with \" and \\ inside the latter, and a word that begins with # ends the line. Each
// line is done or refused for itself, in the order of the file.
#pragma once

#include "siblings/prnqtool/Options.h"

#include <string>
#include <vector>

enum { BATCH_FILE_MAX = 16 * 1024 * 1024 };

// The whole file, or standard input for "-". Answers an empty text, or what is wrong.
std::string ReadBatchFile(const std::string &path, std::string &text);
// The words of a line. Answers an empty text, or what is wrong.
std::string SplitWords(std::string_view line, std::vector<std::string> &words);

// Reads and runs the file. Lines that are refused are told with their number; then the text says how many.
std::string RunBatch(const Options &options);

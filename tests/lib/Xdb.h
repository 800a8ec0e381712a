// Databases for tests: a tool directory of their own, and the independent reader and writer xdb.py.
#pragma once

#include "tests/lib/Capture.h"

#include <string>
#include <utility>
#include <vector>

typedef std::vector<std::pair<std::string, std::string>> Records; // key, data

// The records as xdb.py reads them; {{"error", what it said}} for a file that it refuses.
Records ReadXdb(const std::string &path);
void WriteXdb(const std::string &path, bool flHeader, const Records &records);
std::string ShowRecords(const Records &records); // "key=data key=data", with dots for bytes that don't print

// A tool directory with an empty db, which is the current directory too while it lives.
class ToolDir : public Scratch {
public:
    ToolDir();
    ~ToolDir();
    std::string Db(const std::string &name) const { return Path("db/" + name + ".xdb"); }

private:
    std::string savedDirectory;
    char *savedToolPath;
    std::string tool;
};

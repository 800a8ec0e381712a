// A tool directory with what the application reads: databases, PPD files, records of queues.
#pragma once

#include "tests/lib/Xdb.h"

#include <string>
#include <vector>

// The log is off while it lives.
class AppTool : public ToolDir {
public:
    AppTool();
    ~AppTool();

    // A headerless database.
    void WriteDb(const std::string &name, const Records &records) const;
    // Writes PPD files of the given names with model names made of them, and loads the lists of models.
    void WriteModels(const std::vector<std::string> &files) const;

private:
    int savedUseLog;
};

// A main record of the database "que", and a count record's data.
std::string QueData(const std::string &fields);
std::string CountData(const std::string &words);

// The tool's command line: which of its commands is meant, and the values for it.
#pragma once

#include <string>
#include <vector>

enum Command { // ORDER Command; those up to COMMAND_CLEAR_BANNER change queues
    COMMAND_ADD,
    COMMAND_COPY,
    COMMAND_MODIFY,
    COMMAND_DELETE, // -x behind a name, -x NAME, -xl NAME ...
    COMMAND_DELETE_ALL,
    COMMAND_SET_BANNER,
    COMMAND_CLEAR_BANNER,
    COMMAND_LIST,
    COMMAND_TABLE,
    COMMAND_JSON,
    COMMAND_BATCH,
    COMMAND_EXPORT,
    COMMAND_IMPORT,
    COMMAND_HELP,
    COMMAND_VERSION,
    COMMAND_COUNT,
};

struct Options {
    Command command = COMMAND_ADD;
    std::vector<std::string> queues; // one, but for a deletion
    std::string source;              // -cl
    std::string file;                // --batch, --export, --import
    std::string log, settings, ppd, model, host, device, remote, banner;
    bool flHost = false, flDevice = false, flRemote = false;
    bool flDefault = false, flLpd = false, flFeatures = false, flBanner = false, flUserInterface = false;
    bool flEnsure = false, flDryRun = false;
};

extern const char UsageText[];

// Reads the words behind the program's name. Answers an empty text, or what is wrong with them.
std::string ReadOptions(const std::vector<std::string> &words, Options &options);

// The lines for prnout and prnrm.
#include "prndeck/core/PrdSend.h"

#include "common/SysCmd.h"
#include "common/Words.h"
#include "common/utils.h"
#include "print/MainUtils.h"
#include "print/Told.h"

#include <cerrno>
#include <cstring>

static constexpr char SendProgram[] = "prnout";
static constexpr char RemoveProgram[] = "prnrm";
static constexpr char AllJobs[] = "-";
static constexpr char NoDialogue[] = "-oNoUi";
static constexpr char Download[] = "-DL";

// ---- Lines

// A name that looks like an option is made a path.
static std::string FileArg(const char *file) {
    return ShArg(*file == '-' ? std::string("./") + file : file);
}

std::string MakeSendLine(int operation, const char *queue, const char *file) {
    return std::string(SendProgram) + " -d" + ShArg(queue) + " " +
           (operation == SEND_UPGRADE ? Download : "") + " " + (operation == SEND_FILE ? "" : NoDialogue) +
           " " + FileArg(file) + "\n";
}

static std::string RemoveLine(const char *queue, const std::string &jobs) {
    return ShArg(pToolPath) + "/" + RemoveProgram + " " + ShArg(queue) + " " + jobs;
}

std::string MakeRemoveLine(const char *queue, std::string_view jobs) {
    std::string words;
    for (std::string_view job; TakeWord(jobs, " ", job);)
        if (job != AllJobs) words += (words.empty() ? "" : " ") + ShArg(job);
    return words.empty() ? "" : RemoveLine(queue, words);
}

std::string MakeRemoveAllLine(const char *queue) {
    return RemoveLine(queue, AllJobs);
}

// ---- Running

std::string RunSendLine(const std::string &line) {
    if (!FindInPath(SendProgram)) return std::string(SendProgram) + ": " + strerror(ENOENT);
    ToldEar ear;
    SysCmd(CMD_LINE, 0, "%s", line.c_str());
    return ear.Text();
}

std::string RunRemoveLine(const std::string &line) {
    std::string fault = GetToolFault(RemoveProgram);
    if (!fault.empty()) return fault;
    ToldEar ear;
    FreeResponseList(GetCmdResponse(CMD_QUIET, nullptr, "%s", line.c_str()));
    return ear.Text();
}

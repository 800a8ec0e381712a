// prnqtool: adds, copies, changes, removes and lists print queues, on the host's print system or in a store
// of its own.
#include "siblings/lib/Child.h"
#include "siblings/lib/Frame.h"
#include "siblings/prnqtool/Commands.h"

#include <climits>
#include <cstdio>
#include <unistd.h>

// Files of the tool directory are told by their names there, but a batch lies where its author is.
static std::string CallersPath(const std::string &file) {
    char current[PATH_MAX];
    if (file == "-" || file.starts_with('/') || !getcwd(current, sizeof current)) return file;
    return std::string(current) + "/" + file;
}

int main(int argc, char **argv) {
    Options options;
    BeginProgram("prnqtool");
    std::string error = ReadOptions(std::vector<std::string>(argv + 1, argv + argc), options);
    if (error.empty() && !options.log.empty()) error = SetLogName(options.log);
    if (!error.empty()) return Complain(error);
    if (options.command == COMMAND_HELP) return fputs(UsageText, stdout) < 0;
    if (options.command == COMMAND_VERSION) return printf("prnqtool %s\n", ToolVersion) < 0;
    if (!options.file.empty()) options.file = CallersPath(options.file);
    if (!EnterToolDirectory(argv[0])) return 1;
    LimitRun();
    int status = RunCommand(options);
    return fflush(stdout) || ferror(stdout) ? Complain("can't write the list") : status;
}

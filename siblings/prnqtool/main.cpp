// prnqtool: adds, copies, changes, removes and lists print queues, on the host's print system or in a store
// of its own.
#include "siblings/lib/Child.h"
#include "siblings/lib/Frame.h"
#include "siblings/prnqtool/Commands.h"

#include <cstdio>

int main(int argc, char **argv) {
    Options options;
    BeginProgram("prnqtool");
    std::string error = ReadOptions(std::vector<std::string>(argv + 1, argv + argc), options);
    if (error.empty() && !options.log.empty()) error = SetLogName(options.log);
    if (!error.empty()) return Complain(error);
    if (options.command == COMMAND_HELP) return fputs(UsageText, stdout) < 0;
    if (options.command == COMMAND_VERSION) return printf("prnqtool %s\n", ToolVersion) < 0;
    if (!EnterToolDirectory(argv[0])) return 1;
    LimitRun();
    int status = RunCommand(options);
    return fflush(stdout) ? Complain("can't write the list") : status;
}

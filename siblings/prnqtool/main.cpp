// prnqtool: adds, copies, changes, removes and lists print queues, on the host's print system or in a store
// of its own.
#include "common/MemMgr.h"
#include "common/utils.h"
#include "siblings/lib/Child.h"
#include "siblings/prnqtool/Commands.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

enum { BACKSTOP = 30 }; // seconds that a run may last beyond the limit for its commands

static const char Version[] = "prnqtool 4.50.29\n";

static int Refuse(const char *text) {
    TellUser(text);
    return 1;
}

// The children's pipes must not take the numbers of the standard streams.
static void OpenStandardStreams() {
    int file;
    do file = open("/dev/null", O_RDWR);
    while (file >= 0 && file <= 2);
    if (file > 2) close(file);
}

// The last resort against anything that blocks outside of a command's limit, such as a dead file server.
static void EndRun(int) {
    static const char text[] = "prnqtool: gave up: the host doesn't answer\n";
    if (write(2, text, sizeof text - 1) < 0) _exit(2);
    _exit(1);
}

// The program's own directory, whatever link or PATH it was started by.
static bool EnterToolDirectory() {
    char *path = realpath("/proc/self/exe", nullptr);
    char *slash = path ? strrchr(path, '/') : nullptr;
    if (slash) slash[slash == path] = '\0';
    if (slash) pToolPath = SaveStr_(path);
    bool flEntered = slash && !chdir(path);
    free(path);
    return flEntered;
}

int main(int argc, char **argv) {
    Options options;
    OpenStandardStreams();
    signal(SIGPIPE, SIG_IGN);
    signal(SIGCHLD, SIG_DFL); // where a parent left it ignored no child could be waited for
    signal(SIGALRM, EndRun);
    my_name = "prnqtool";
    std::string error = ReadOptions(std::vector<std::string>(argv + 1, argv + argc), options);
    if (error.empty() && !options.log.empty()) error = SetLogName(options.log);
    if (!error.empty()) return Refuse(error.c_str());
    if (options.command == COMMAND_HELP || options.command == COMMAND_VERSION)
        return fputs(options.command == COMMAND_HELP ? UsageText : Version, stdout) < 0;
    if (!EnterToolDirectory()) return Refuse("can't enter the tool's directory");
    umask(022);
    alarm((unsigned)RUN_LIMIT + (unsigned)BACKSTOP);
    int status = RunCommand(options);
    return fflush(stdout) ? Refuse("can't write the list") : status;
}

// Standard streams, signals, working directory, complaints.
#include "siblings/lib/Frame.h"

#include "common/MemMgr.h"
#include "common/Version.h"
#include "common/utils.h"
#include "print/Told.h"
#include "siblings/lib/Child.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

enum { BACKSTOP = 30 }; // seconds that a run may last beyond the limit for its commands

const char ToolVersion[] = PRN_VERSION;

static void EndRun(int) {
    static const char text[] = ": gave up: the host doesn't answer\n";
    if (write(2, my_name, strlen(my_name)) < 0 || write(2, text, sizeof text - 1) < 0) _exit(2);
    _exit(1);
}

void BeginProgram(const char *name) {
    my_name = name;
    InitProcess();
    FindToldEar();
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN); // a file that may not grow is a write that fails, and is told
    umask(022);
}

bool FindToolDirectory() {
    char *path = realpath("/proc/self/exe", nullptr);
    char *slash = path ? strrchr(path, '/') : nullptr;
    if (slash) slash[slash == path] = '\0';
    pToolPath = SaveStr_(slash ? path : ".");
    free(path);
    return slash;
}

bool EnterToolDirectory() {
    return FindToolDirectory() && !chdir(pToolPath);
}

void LimitRun() {
    signal(SIGALRM, EndRun);
    alarm(static_cast<unsigned>(RUN_LIMIT) + static_cast<unsigned>(BACKSTOP));
}

int Complain(const std::string &error) {
    if (error.empty()) return 0;
    TellUser(error);
    return 1;
}

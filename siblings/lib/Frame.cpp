// Standard streams, signals, working directory, complaints.
#include "siblings/lib/Frame.h"

#include "common/MemMgr.h"
#include "common/Terminal.h"
#include "common/Version.h"
#include "common/utils.h"
#include "print/Told.h"
#include "siblings/lib/Child.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>

enum { BACKSTOP = 30 }; // seconds that a run may last beyond the limit for its commands

const char ToolVersion[] = PRN_VERSION;

static void EndRun(int) {
    static const char text[] = ": gave up: the host doesn't answer\n";
    if (write(2, my_name, strlen(my_name)) < 0 || write(2, text, sizeof text - 1) < 0) _exit(2);
    _exit(1);
}

// As a kill at that moment: nothing is half done, and the caller reads why.
static void EndWithoutMemory() {
    static const char text[] = ": out of memory\n";
    if (write(2, my_name, strlen(my_name)) < 0 || write(2, text, sizeof text - 1) < 0) _exit(2);
    _exit(1);
}

void BeginProgram(const char *name) {
    my_name = name;
    std::set_new_handler(EndWithoutMemory);
    InitProcess();
    InitTerminal();
    FindToldEar();
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN); // a file that may not grow is a write that fails, and is told
    umask(022);
}

// The path that a bare name was started by. PATH may hold relative directories, and the empty one is the
// current.
static std::string PathOfName(const std::string &name) {
    const char *search = getenv("PATH");
    std::string paths = std::string(search ? search : "") + ":";
    for (size_t at = 0, end; !name.empty() && (end = paths.find(':', at)) != paths.npos; at = end + 1) {
        std::string directory = end == at ? "." : paths.substr(at, end - at);
        if (IsProgram(directory + "/" + name)) return directory + "/" + name;
    }
    return name;
}

static bool HasModels(const char *directory) {
    struct stat status;
    return !stat((std::string(directory) + "/ppd").c_str(), &status) && S_ISDIR(status.st_mode);
}

bool FindToolDirectory(const char *argv0) {
    std::string name = argv0 ? argv0 : "";
    bool flBare = name.find('/') == name.npos;
    pToolPath = GetToolPath((flBare ? PathOfName(name) : name).c_str());
    if (HasModels(pToolPath)) return true;
    const char *named = getenv(ToolDirVariable);
    if (!named || *named != '/' || !HasModels(named)) return false;
    PutMem(pToolPath);
    std::string path = named;
    while (path.size() > 1 && path.ends_with('/'))
        path.pop_back(); // spool directories bear the last part's name
    pToolPath = SaveStr_(path.c_str());
    return true;
}

bool EnterToolDirectory(const char *argv0) {
    if (FindToolDirectory(argv0) && !chdir(pToolPath)) return true;
    TellUser(std::string(pToolPath) +
             " is no tool directory: start the program by its path there, or name it in " + ToolDirVariable);
    return false;
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

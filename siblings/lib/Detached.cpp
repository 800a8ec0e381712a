// Processes that stay behind a call.
#include "siblings/lib/Detached.h"

#include "common/utils.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

[[noreturn]] static void BecomeDetached(const char *program, const std::string &name, const char *mode,
                                        const std::string &directory) {
    sigset_t none;
    setsid();
    pid_t worker = fork();
    if (worker) _exit(worker < 0 ? errno : 0);
    int null = open("/dev/null", O_RDWR);
    for (int stream = 0; stream < 3 && null >= 0; stream++) dup2(null, stream);
    close_range(3, ~0u, 0);
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execl(program, name.c_str(), mode, directory.c_str(), nullptr);
    _exit(1);
}

std::string StartDetached(const char *program, const char *mode, const std::string &directory) {
    std::string name = std::string(pToolPath) + "/prnout"; // which tells it the tool directory
    int status = 0;
    pid_t child = fork();
    if (!child) BecomeDetached(program, name, mode, directory);
    if (child < 0) return std::string("can't start the sender: ") + strerror(errno);
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    int reason = WIFEXITED(status) ? WEXITSTATUS(status) : EINTR;
    return reason ? std::string("can't start the sender: ") + strerror(reason) : "";
}

// A virtual X server for benches of windows.
#pragma once

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

inline pid_t Server;

// DISPLAY names it then; false without an Xvfb.
inline bool StartServer() {
    int pipes[2];
    if (pipe(pipes) != 0) return false;
    Server = fork();
    if (Server == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        std::string number = std::to_string(pipes[1]);
        if (!freopen("/dev/null", "w", stderr)) _exit(1);
        execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", "1280x1024x24", "-nolisten",
               "tcp", "-noreset", nullptr);
        _exit(1);
    }
    close(pipes[1]);
    std::string display = ":";
    for (char ch; read(pipes[0], &ch, 1) == 1 && ch != '\n';) display += ch;
    close(pipes[0]);
    setenv("DISPLAY", display.c_str(), 1);
    return display.size() > 1;
}

inline void StopServer() {
    kill(Server, SIGTERM);
    waitpid(Server, nullptr, 0);
}

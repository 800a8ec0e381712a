// Takes the terminal away while it lives: standard input is at its end, standard output goes nowhere.
#pragma once

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

class Quiet {
public:
    Quiet() {
        fflush(stdout);
        int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
        for (int fd = 0; fd < 2; fd++) {
            saved[fd] = dup(fd);
            dup2(nowhere, fd);
        }
        close(nowhere);
    }
    ~Quiet() {
        fflush(stdout);
        for (int fd = 0; fd < 2; fd++) {
            dup2(saved[fd], fd);
            close(saved[fd]);
        }
    }
    Quiet(const Quiet &) = delete;
    Quiet &operator=(const Quiet &) = delete;

private:
    int saved[2];
};

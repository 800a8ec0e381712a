#include "tests/lib/WindowRig.h"

#include "xmt/XmtEvent.h"
#include "xmt/XmtNewWin.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

static pid_t Server;

static void StopServer() {
    if (Server <= 0) return;
    kill(Server, SIGTERM);
    waitpid(Server, nullptr, 0);
    Server = 0;
}

// The child tells its display number through the pipe when it is ready; end of input means that it is gone.
static std::string StartServer(const char *screen) {
    int pipes[2];
    if (pipe(pipes) != 0) return "";
    Server = fork();
    if (Server == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        close(pipes[0]);
        std::string fd = std::to_string(pipes[1]);
        if (!freopen("/dev/null", "w", stderr)) _exit(126);
        execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", screen, "-nolisten", "tcp",
               "-noreset", nullptr);
        _exit(127);
    }
    close(pipes[1]);
    std::string number;
    for (char ch; read(pipes[0], &ch, 1) == 1 && ch != '\n';) number += ch;
    close(pipes[0]);
    return number;
}

// A warning of the toolkits is a fault of a description or of what was made of it.
static void FailOnWarning(String text) {
    ADD_FAILURE() << "warning: " << text;
}

static int FailOnXError(Display *display, XErrorEvent *event) {
    char text[256];
    XGetErrorText(display, event->error_code, text, sizeof text);
    ADD_FAILURE() << "X error: " << text << " of request " << int{event->request_code};
    return 0;
}

pid_t StartXvfb(const char *screen, std::string *reason) {
    std::string number = StartServer(screen);
    if (number.empty()) {
        *reason = "there is no Xvfb that starts here";
        StopServer();
        return 0;
    }
    atexit(StopServer);
    setenv("DISPLAY", (":" + number).c_str(), 1);
    return Server;
}

bool StartWindowRig(const char *screen, std::string *reason) {
    if (!StartXvfb(screen, reason)) return false;
    if (!XmtInitApp("prndeck", "prndeck", nullptr, nullptr)) {
        *reason = "the display " + std::string(getenv("DISPLAY")) + " can't be opened";
        return false;
    }
    XtAppSetWarningHandler(AppContext, FailOnWarning);
    XSetErrorHandler(FailOnXError);
    return true;
}

bool RunOnScreen(const char *screen, void (*checks)(), bool *flSkipped) {
    enum { SKIPPED = 77 };
    fflush(nullptr);
    pid_t child = fork();
    if (child == 0) {
        std::string reason;
        if (!StartWindowRig(screen, &reason)) {
            printf("%s\n", reason.c_str());
            exit(SKIPPED);
        }
        checks();
        exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    *flSkipped = WIFEXITED(status) && WEXITSTATUS(status) == SKIPPED;
    return *flSkipped || (WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

void DispatchWaiting() {
    for (int quiet = 0; quiet < 3;) {
        XSync(AppDisplay, 0);
        if (XtAppPending(AppContext) == 0) {
            quiet++;
            continue;
        }
        quiet = 0;
        XtAppProcessEvent(AppContext, XtIMAll);
    }
}

void RealizeWindows() {
    XtRealizeWidget(AppShell);
    flInEventLoop = 1;
    DispatchWaiting();
}

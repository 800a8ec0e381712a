// A display of the test's own: a virtual X server that goes with the test.
#pragma once

#include "xmt/Xmt.h"

#include <string>
#include <sys/types.h>

// Starts a server and opens it with XmtInitApp; DISPLAY names it from then on. False, with the reason in
// reason, if there is no Xvfb here. screen: as "1280x1024x24". Called once a process; a test program that
// can't have it skips. A warning of Xt or Motif and an error of the server fail the test.
bool StartWindowRig(const char *screen, std::string *reason);
// Starts a server for the process, to which DISPLAY then leads, and opens nothing: its process id, or 0 with
// the reason.
pid_t StartXvfb(const char *screen, std::string *reason);
// Runs checks in a child process on a screen of its own, so that one program can look at several. False if
// they failed, leaked or ended early; true, and flSkipped set, if there is no Xvfb here.
bool RunOnScreen(const char *screen, void (*checks)(), bool *flSkipped);
// Dispatches what is waiting, until the server has nothing more to tell.
void DispatchWaiting();
// The main window's shell realized and the loop taken as running: what the accessors test for.
void RealizeWindows();

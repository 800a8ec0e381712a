// The driver front end, of which three programs are made: prnpnxxtty, which can talk to the user, and
// v5driver and driver, which serve the windows for models that ask for them and never do.
#pragma once

#include "siblings/lib/Ppd.h"

#include <string>

// The features of one model, to be chosen and kept.
struct FeatureTask {
    Ppd ppd;              // at the present choices
    std::string source;   // path of its PPD file
    std::string settings; // that the choices were taken from
    std::string target;   // path of the file for those that are chosen
    std::string queue;    // whose stored features they are, or empty
    bool flBanner = false;
};

// The windows of a program that can talk to the user; what stands on no display must not link them.
struct WindowFace {
    bool (*open)();                        // the display; false, behind a warning, without one
    bool (*chooseFeatures)(FeatureTask &); // true if the user applied them, and they are written
    int (*chooseQueue)();                  // -FP: the program's status
};

// The whole program: its status. Sets my_name, which error messages begin with, and pToolPath. face: null for
// a program that never talks. Ends: the process, see RunDialogue.
int RunFrontEnd(int argc, char **argv, const char *name, const WindowFace *face);

// The window face, in a build without windows: there is never a display.
#include "prndeck/PrdGui.h"

#include "common/utils.h"
#include "prndeck/Prd.h"

#include <cstdio>

int OpenWindowFace() {
    fprintf(stderr, "%s: WARNING: can't open display\n", my_name);
    return 0;
}

int RunGui() {
    return OpenWindowFace();
}

void RunHelpOnly() {
    flHelpOnly = 1;
    exit_app(OpenWindowFace() ? 0 : 1);
}

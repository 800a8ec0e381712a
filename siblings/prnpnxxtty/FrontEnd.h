// The driver front end, of which three programs are made: prnpnxxtty, which can talk to the user, and
// v5driver and driver, which serve the windows for models that ask for them and never do.
#pragma once

enum { FACE_SILENT, FACE_DIALOGUE }; // whether -tty opens the dialogue

// The whole program: its status. Sets my_name, which error messages begin with, and pToolPath. Ends: the
// process, see RunDialogue.
int RunFrontEnd(int argc, char **argv, const char *name, int face);

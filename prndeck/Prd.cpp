// prndeck: administers the print queues of a family of network printers, in windows or in menus on a
// terminal.
#include "prndeck/core/Prd.h"

#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/Terminal.h"
#include "common/utils.h"
#include "prndeck/gui/PrdGui.h"
#include "prndeck/tty/PrdTty.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char **argv) {
    InitProcess();
    InitTerminal();
    // A program started from a menu reads on where the menu stopped: nothing may be read ahead.
    setvbuf(stdin, nullptr, _IONBF, 0);
    flUseLog = 1;
    InitToolPath(argc > 0 ? argv[0] : nullptr);
    OpenCatalogues();
    my_name = SaveStr("%sdeck", "prn");
    setenv("PrnOutCFG", PrnOutCFG, 1);
    InitSysCmdList();
    setenv("PrnOutFileSourceDir", ".", 1);
    InitUser();
    int face = ScanWords(argc - 1, argv + 1);
    if (face == FACE_HELP) RunHelpOnly();
    LoadModels();
    if (face != FACE_TTY) RunGui();
    RunTty();
    exit_app(0);
}

// Sets of the catalogue CoreString that the program reads, for both faces. The texts of a window are a set of
// their own, from number 1 on.
#pragma once

#include "common/NlsUtils.h"

enum {
    SET_MAIN = 1,
    SET_ABOUT = 2,
    SET_DISPLAY = 3,
    SET_DISC = 14,
    SET_SHEET = 15,
    SET_MESSAGES = 20, // what both faces say
    SET_RESET = 21,
    SET_MACROS = 22,       // what the windows' macros hold
    SET_TTY = NLS_TTY_SET, // menus of the terminal
    SET_WEB = 80,          // messages of discovery and browser
};

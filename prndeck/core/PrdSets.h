// Sets of the catalogue CoreString that the program reads, for both faces. The texts of a window are a set of
// their own, from number 1 on.
#pragma once

#include "common/NlsUtils.h"

enum {
    SET_MAIN = 1,
    SET_ABOUT = 2,
    SET_DISPLAY = 3,
    SET_MODIFY_LIST = 4,
    SET_DELETE = 5,
    SET_COPY_LIST = 6,
    SET_ADD = 7,
    SET_COPY = 8,
    SET_BANNER = 10,
    SET_MODIFY = 11,
    SET_JOBS = 12,
    SET_SEND = 13,
    SET_DISC = 14,
    SET_SHEET = 15,
    SET_MESSAGES = 20, // what both faces say
    SET_RESET = 21,
    SET_MACROS = 22,       // what the windows' macros hold
    SET_TTY = NLS_TTY_SET, // menus of the terminal
    SET_WORDS = 36,        // of message box and file dialog
    SET_WEB = 80,          // messages of discovery and browser
};

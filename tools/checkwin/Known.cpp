// Faults that are meant: how the windows are told, or what comes with a window that is not there yet.
#include "tools/checkwin/Report.h"

static const char frame[] = "the callers of the dialog frames name their work area, which has no name";
static const char octet[] = "the last field of an address goes nowhere";
static const char margin[] = "the frames' margins hold a second number that nothing reads";
static const char twice[] = "each frame and hint makes one, and nothing speaks of it";
static const char version[] = "the program puts its version there";
static const char sizes[] = "Motif sizes the messages itself";
static const char models[] = "the program puts the models there";
static const char hint[] = "hints of the tool buttons: not every look has them";

const KnownFault KnownFaults[] = {
    {"*", "macro 80 takes 5 arguments, not 6", frame},
    {"*", "in macro 80: macro 90 takes 2 arguments, not 1", frame},
    {"*", "in macro 90: unknown argument \"0)\"", margin},
    {"*", "in macro 90: \"sp1\" is the name of an object of *", twice},
    {"*", "in macro 72: \"Logo\" is the name of an object of *", twice},
    {"*", "in macro 94: unknown argument \"0)\"", margin},
    {"*", "in macro 91: m wants a value in parentheses", margin},
    {"*", "in macro 91: a wants a value in parentheses", margin},
    {"*", "in macro 91: unknown argument \"0)\"", margin},
    {"*", "in macro 76: \"dot\" is the name of an object of *", twice},
    {"*", "in macro 79: \"info\" is the name of an object of *", twice},
    {"*", "in macro 78: macro 75 takes 2 arguments, not 1", octet},
    {"*", "in macro 96: macro 75 takes 2 arguments, not 1", octet},
    {"MainWinDesc", "unknown argument \"-1)\"", "the height stays as it is"},
    {"MainWinDesc", "\"mwap\" is no object so far", "the button stays in the box of the others"},
    {"MainWinDesc", "the format \"l[PrinterPicture]\" never runs", "it is kept for a form that has one"},
    {"MainWinDesc", "this '}' closes nothing: the description ends here", "it is the last one"},
    {"MainWinDesc", "the target \"tb1L\" is no object", hint},
    {"MainWinDesc", "the target \"tb3iL\" is no object", hint},
    {"MainWinDesc", "the target \"tb3L\" is no object", hint},
    {"MainWinDesc", "\"tb6\" has the number 117 of \"printer_menu_5_d_1\"", "both open the manual"},
    {"IPDiscoveryDesc", "unknown argument \"S\"", sizes},
    {"IPDiscoveryDesc", "unknown argument \"r\"", sizes},
    {"AboutDesc", "text 2/3 of en_US holds a '%'", version},
    {"AboutDesc", "text 2/3 of de_DE holds a '%'", version},
    {"AddQueDesc", "text 7/4 of en_US holds a '%'", models},
    {"AddQueDesc", "text 7/4 of de_DE holds a '%'", models},
    {"AddQueDesc", "\"wqb2\" is the name of an object of AddQueDesc",
     "nothing speaks of the box and its spacer"},
    {nullptr, nullptr, nullptr},
};

// The windows of the front end as texts, in the language of xmt/XmtNew.h, with the macros of the
// application's windows (prndeck/gui/PrdGuiMacros.h). Each "%s" of a window stands for a text of its set,
// from number 1 on. Nothing of a PPD file or of a queue goes into such a text: it is put on the objects
// later.
#pragma once

enum { SET_FEATURES = 27, SET_QUEUES = 28 };

// Numbers of the objects. ORDER FrontIds
enum {
    FRONT_APPLY = 21,
    FRONT_CANCEL = 22,
    FRONT_HELP = 23,
    FRONT_FEATURES = 31,
    FRONT_CLOSE = 32,
    FRONT_QUEUES_HELP = 33,
    FRONT_QUEUE = 34,        // one that is lit is no choice yet
    FRONT_ALL_THE_SAME = 41, // the answer to a question, which no object bears
};
extern const char FeaturesDesc[]; // few: rows in a scrolled box feb, and the buttons
extern const char QueuesDesc[];   // qfw: a list of queues, and the buttons

// What is changed in the selected printer (pCurPrnData): single values, and its reset.
//
// A change counts when the printer answers it with the very value that was sent: there are printers that take
// a value and store a part of it.
#pragma once

enum { SET_ATTEMPTS = 6 };  // with each of the two communities
enum { RESET_ROUNDS = 5 };  // of sets
enum { RESET_QUERIES = 3 }; // that all must find the printer down

// True if the printer confirmed the value: up to six attempts with the community that reads, then up to six
// with the one that writes. A silent printer takes 36 seconds. False without a printer.
bool SNMPSetStringValue(const char *name, const char *text);
bool SNMPSetIntValue(const char *name, int value);

// How a model is reset, by the item SNMPResetMode of its record; a number is a position in SNMPResetModes
// less 1.
enum {
    RESET_NORMAL,            // each round with the community that writes, then with the one that reads
    RESET_PRIVATE,           // with the one that writes alone
    RESET_PUBLIC,            // with the one that reads alone
    RESET_CUSTOM_COMM,       // as RESET_PRIVATE: there is no community of the user's own
    RESET_SEND_PRIVATE_ONCE, // one set, and no look at what came of it
    RESET_SEND_PUBLIC_ONCE,
};
extern const char SNMPResetModes[]; // ",SNMPResetNormal,..."; ORDER RESET_

// True while the printer reports that it runs, runs with a warning, or does not know. A printer that is down,
// failed, tested or silent gives false.
bool QueryForSNMPStatus(const char *address);
// Sets the number by the mode of the printer's model; true if the printer went down then. One that isn't
// running is not reset.
bool SNMPSendReset(const char *name, int value);

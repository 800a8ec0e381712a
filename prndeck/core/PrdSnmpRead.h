// What one printer is asked, and what the record of its model says.
#pragma once

#include "SnmpPkg/Pkg.h"
#include "prndeck/core/PrdDisc.h"

// How a list of names is asked for.
struct PrinterRead {
    int Pdu = PDU_GET; // PDU_TABLE: row by row, the names are those of the first row
    PkgCallback Callback = nullptr;
    void *UserData = nullptr;
};

// Makes a package of the names, which end with a null; empty ones make no variable. 0, or the code of the
// set-up.
int SetupPrinterRead(SnmpPackage *package, const char *const *names, const PrinterRead &how = {});
// Sends it to the printer. What came is told by the Status of each variable, not by the result. Blocks for
// three seconds for each variable that does not come.
int SendPrinterRead(SnmpPackage *package, const char *address, const PrinterRead &how = {});
// Both; the code of the first that failed.
int ReadPrinter(SnmpPackage *package, const char *address, const char *const *names,
                const PrinterRead &how = {});

// The item of the record of the printer's model, cut at the capacity; null without entry, model or item.
const char *GetPrnModelItem(const PrnEntry *entry, const char *item, char *value, size_t capacity);

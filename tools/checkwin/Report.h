// What is found: each fault once, those that are meant taken out.
#pragma once

#include "tools/checkwin/Text.h"

// The description that faults are reported of from here on.
void BeginSource(const std::string &name);
const std::string &SourceName();
extern int Muted; // Report says nothing while it is not 0
[[gnu::format(printf, 2, 3)]] void Report(const Place &place, const char *format, ...);
// Of a description read before.
void ReportOf(const std::string &source, const Place &place, const std::string &message);
// Prints the faults. With flStale also those known ones of a description that no longer
// occur. The number printed.
int PrintReport(bool flStale);

// A fault that is meant, with the reason. source: a description or "*"; message: as it is
// printed, or its start and a '*'.
struct KnownFault {
    const char *source, *message, *reason;
};
extern const KnownFault KnownFaults[]; // ends with null texts

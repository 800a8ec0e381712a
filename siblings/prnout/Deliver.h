// Takes one job to its printer: by port 9100, by the line printer protocol (RFC 1179) or over a local device.
#pragma once

#include "siblings/lib/Queue.h"

#include <string>
#include <string_view>

enum {
    CONNECT_SECONDS = 30,
    ANSWER_SECONDS = 300, // an LPD that doesn't acknowledge
    CLOSE_SECONDS = 30,   // a printer that has all bytes but keeps the connection
};

extern const char Cancelled[]; // the error of a job whose control file vanished on the way

struct Delivery {
    Target target;
    std::string user, title;
    int number = 0;                // of the job
    std::string banner;            // goes in front, or empty
    int data = -1;                 // open file
    long long size = 0;            // of the data
    std::string control;           // path of the control file; while it is there the job is wanted
    std::string directory, status; // what the spool directory's status says once the printer takes the job
};

// Empty if the printer has all of it. Else why not, led by the name of host or device: then it may have some.
// Lasts for as long as the printer takes data slowly, but not when the job is cancelled.
std::string Deliver(const Delivery &job);

// A queue as the tool handles it, and the rules for every value that goes into one.
//
// All names, hosts and files come from a command line or from a database that others may have written, so
// each passes its rule before the host or the records see it. Checks answer an empty text, or what is wrong
// in words for the user.
#pragma once

#include "print/BannerText.h"
#include "print/MainUtils.h"

#include <array>
#include <string>
#include <string_view>
#include <vector>

enum { // Widths of the queue records, without the final NUL.
    QUEUE_NAME_MAX = 14,
    QUEUE_REMOTE_MAX = 14,
    QUEUE_PRINTER_MAX = 255,
    QUEUE_PPD_MAX = 41,
    SETTINGS_MAX = 60000, // a record holds 65533 bytes of key and data
    BANNER_MAX = 4095,
};

struct Queue {
    std::string name;
    std::string printer; // host name or device path
    std::string remote;  // name at the print server or at the printer's LPD
    std::string ppd;     // file name in "ppd"
    int type = QUEUE_PRINTER_HOST;
    bool flBanner = false;
    bool flUserInterface = false;
    bool flFeatures = false;
    bool flDefault = false;
    bool flLpd = false;
    std::string settings; // lines OPT=VAL, or empty
    std::string banner;   // lines ".hN SIZE TITLE", or empty for the system's default titles
};

struct Title {
    std::string text; // empty: no line
    int size = 0;     // points
};
using Titles = std::array<Title, BANNER_ROWS>;

// A new queue's name: letters, digits, "_" and "-", not led by "-", and not one that the tool needs for
// itself.
std::string CheckQueueName(std::string_view name);
// Any name that a print system may know: no blank, no control character, no "/" and no leading "-".
std::string CheckHostQueueName(std::string_view name);
// Printer, remote name, PPD file and type of a queue; what CheckQueueName tells is not repeated.
std::string CheckQueueTarget(const Queue &queue);
// True if the two names are one and the same to a print system that ignores case, but not byte for byte.
bool DiffersByCase(std::string_view left, std::string_view right);

enum TargetKind { TARGET_SOCKET, TARGET_LPD, TARGET_DEVICE };
struct Target {
    TargetKind kind = TARGET_SOCKET;
    std::string host; // name or address, without brackets
    std::string port; // empty: the protocol's own
    std::string path; // device, or queue at the host's LPD
};
Target QueueTarget(const Queue &queue); // the queue passed its check
// Where jobs go: lpd://HOST/REMOTE, socket://HOST:9100, serial: or parallel:DEVICE. The queue passed its
// check.
std::string QueueUri(const Queue &queue);

// The titles of a banner text. A line with another key, without a size or without a title is passed over.
Titles ReadTitles(std::string_view banner);
bool HasTitle(std::string_view banner);

// Options OPT=VAL of the settings that the PPD text offers with that value; all other lines are left out.
std::vector<std::string> OfferedSettings(std::string_view settings, std::string_view ppdText);
// The quoted value of a PPD keyword, or empty.
std::string PpdText(std::string_view ppdText, std::string_view keyword);

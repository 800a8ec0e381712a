// The records of the database "que" as text: their keys, and the fields of a main record. prnqtool writes
// them, everybody reads them.
//
//     q1               "q1 host lp tv_generic.ppd 0 1 1 1 0 1 " and a NUL
//     q1 **            the queue's feature settings, without a NUL
//     q1 **banner      the queue's banner lines
//     host count       a 4-byte field, then "host lp": host or device, and the name on the print server
//      default         name of the default queue
//      banner          the system's default banner lines
// A key with a blank is no queue.
#pragma once

#include <string>
#include <string_view>

inline constexpr char QueDb[] = "que";
inline constexpr char QueDefaultKey[] = " default";
inline constexpr char QueBannerKey[] = " banner"; // the system's
enum { QUE_COUNT_FIELD = 4 };                     // bytes in front of the words of a count record

std::string QueSettingsKey(std::string_view queue);
std::string QueOwnBannerKey(std::string_view queue);
std::string QueCountKey(std::string_view printer);
bool IsQueKey(std::string_view key); // of a main record

// A main record, its fields in their order.
struct QueFields {
    std::string name;
    std::string printer; // host name or device path
    std::string remote;  // name at the print server or at the printer's LPD
    std::string ppd;     // file name in "ppd"
    int type = 0;        // QueueType
    int banner = 0;
    int userInterface = 0;
    int features = 0;
    int isDefault = 0; // as it was written: the record " default" is what counts
    int lpd = 0;
};

// The fields of a text without its NUL, split at single blanks; missing ones are empty or 0, and what is no
// number is 0.
QueFields ReadQueFields(std::string_view text);
// The text, without the NUL that ends the record.
std::string MakeQueText(const QueFields &fields);

// The sentences of the queue tool, prnout and prnrm in the user's language.
//
// A sentence stands here in English beside its number in the catalogue's set SAY_SET, which holds the others.
// Where the language is English, or its catalogue can't be read, the English text is said; so it is before
// the tool directory is known. A sentence that begins with a quotation mark can't stand in a catalogue.
#pragma once

#include "common/NlsUtils.h"

#include <string>

enum { SAY_SET = 40 };

struct Sentence {
    int nlsText;
    const char *text;
};

inline constexpr Sentence SayNameEmpty = {1, "the queue name is empty"};
inline constexpr Sentence SayNameLong = {2, "queue name \"%s\" has more than 14 characters"};
inline constexpr Sentence SayNameLetters = {
    3, "queue name \"%s\" may hold letters, digits, \"_\" and \"-\" only, and no \"-\" first"};
inline constexpr Sentence SayNameKept = {4, "queue name \"%s\" is kept for the tool itself"};
inline constexpr Sentence SayNameOfNone = {5, "queue name \"%s\" can't be the name of a queue"};
inline constexpr Sentence SayHostEmpty = {6, "the host name is empty"};
inline constexpr Sentence SayHostLong = {7, "host name \"%s\" has more than 255 characters"};
inline constexpr Sentence SayHostOfNone = {8, "host \"%s\" is no printer's address"};
inline constexpr Sentence SayHostUnread = {9, "host name \"%s\" can't be read"};
inline constexpr Sentence SayHostLetters = {10, "host name \"%s\" holds a character that no host name has"};
inline constexpr Sentence SayHostPort = {11, "host name \"%s\" has no port from 1 to 65535"};
inline constexpr Sentence SayDeviceEmpty = {12, "the device name is empty"};
inline constexpr Sentence SayDeviceLong = {13, "device \"%s\" has more than 255 characters"};
inline constexpr Sentence SayDeviceRelative = {14, "device \"%s\" is no absolute path"};
inline constexpr Sentence SayDeviceBlank = {15, "device \"%s\" holds a blank"};
inline constexpr Sentence SayDeviceUpwards = {16, "device \"%s\" leads through \"..\""};
inline constexpr Sentence SayDeviceFile = {17, "device \"%s\" is a file or directory, no device"};
inline constexpr Sentence SayDeviceDisk = {18, "device \"%s\" is a disk, no printer"};
inline constexpr Sentence SayPpdEmpty = {19, "the PPD file name is empty"};
inline constexpr Sentence SayPpdLong = {20, "PPD file name \"%s\" has more than 41 characters"};
inline constexpr Sentence SayPpdName = {
    21, "PPD file name \"%s\" must be a file name in \"ppd\", without a blank"};
inline constexpr Sentence SayPpdDirectory = {22, "PPD file name \"%s\" is a directory"};
inline constexpr Sentence SayTypeUnknown = {23, "the queue type is unknown"};
inline constexpr Sentence SayRemoteEmpty = {24, "the name at the print server is empty"};
inline constexpr Sentence SayRemoteLong = {25, "print server queue \"%s\" has more than 14 characters"};
inline constexpr Sentence SayRemoteLetters = {
    26, "print server queue \"%s\" may hold letters, digits, \"_\", \"-\" and \".\" only"};
inline constexpr Sentence SayFileNoTitle = {27, "%s holds no title"};
inline constexpr Sentence SayFileNoText = {28, "%s is no text"};
inline constexpr Sentence SayModelUnknown = {29, "printing model \"%s\" is none of wp, wps, psp"};
inline constexpr Sentence SayServerByHost = {30, "a print server is told by -hn"};
inline constexpr Sentence SayServerNoQueue = {31, "option -psqn is needed for a print server"};
inline constexpr Sentence SayNameByCase = {
    32, "queue name \"%s\" differs from queue \"%s\" by upper and lower case only"};
inline constexpr Sentence SayQueueNotReplaced = {33, "queue \"%s\" not replaced: %s"};
inline constexpr Sentence SayQueueNotMade = {34, "queue \"%s\" not made: %s"};
inline constexpr Sentence SayQueueNotChanged = {35, "queue \"%s\" not changed: %s"};
inline constexpr Sentence SayQueueNotRemoved = {36, "queue \"%s\" not removed: %s"};
inline constexpr Sentence SayQueuesNotRemoved = {37, "not all queues were removed"};
inline constexpr Sentence SayQueueUnknown = {38, "queue \"%s\" does not exist"};
inline constexpr Sentence SayQueueNoCopy = {39, "queue \"%s\" has no record to copy"};
inline constexpr Sentence SayRecordMissing = {40, "queue \"%s\" has no record; add it anew"};
inline constexpr Sentence SayRecordDamaged = {41, "the record of queue \"%s\" is damaged; add it anew"};
inline constexpr Sentence SayRecordChanged = {
    42, "the record of queue \"%s\" was changed by others; add it anew"};
inline constexpr Sentence SayJobPrints = {43, "a job is being printed; try again when it is done"};
inline constexpr Sentence SayJobsStay = {44, "warning: jobs of queue \"%s\" still wait: %s"};
inline constexpr Sentence SayGoesWithoutPpd = {45, "warning: queue \"%s\" goes without its PPD file: %s"};
inline constexpr Sentence SayNoBannerYet = {46,
                                            "warning: no banner page yet, its file can't be installed: %s"};
inline constexpr Sentence SaySchedulerDown = {47, "the scheduler isn't running"};
inline constexpr Sentence SayNoAnswer = {48, "the scheduler doesn't answer"};
inline constexpr Sentence SayChangeUnderWay = {49, "another queue change is still under way"};
inline constexpr Sentence SayCommandFailed = {50, "the command failed with status %s"};
inline constexpr Sentence SayProgramMissing = {51, "%s is missing"};
inline constexpr Sentence SayCantOpen = {52, "can't open %s: %s"};
inline constexpr Sentence SayCantRead = {53, "can't read %s: %s"};
inline constexpr Sentence SayCantWrite = {54, "can't write %s: %s"};
inline constexpr Sentence SayCantReplace = {55, "can't replace %s: %s"};
inline constexpr Sentence SayCantLock = {56, "can't lock %s: %s"};
inline constexpr Sentence SayCantRemove = {57, "can't remove %s: %s"};
inline constexpr Sentence SayNoRegularFile = {58, "%s is no regular file"};
inline constexpr Sentence SaySpoolNoDirectory = {59, "%s is no spool directory"};
inline constexpr Sentence SaySpoolOpenToOthers = {
    60, "the spool directory %s may be written by others, from \"%s\" on"};
inline constexpr Sentence SaySpoolCantOpen = {61, "can't open the spool directory %s: %s"};
inline constexpr Sentence SaySpoolCantList = {62, "can't write the list of jobs in %s"};
inline constexpr Sentence SayNoDefaultQueue = {63, "no queue is told by -d, and there is no default queue"};
inline constexpr Sentence SayQueueNoPrinter = {64, "queue \"%s\" has no printer"};
inline constexpr Sentence SayBannerUnwritten = {65, "warning: no banner page, it can't be written to /tmp"};
inline constexpr Sentence SayListStale = {66, "warning: the list of jobs isn't up to date: %s"};
inline constexpr Sentence SayJobWaitsForCall = {67, "warning: job %s waits for the next call: %s"};
inline constexpr Sentence SayJobName = {68, "the name \"%s\" can't be that of a job"};
inline constexpr Sentence SayJobUnknown = {69, "job \"%s\" doesn't wait for queue \"%s\""};
inline constexpr Sentence SayJobsUnknown = {70, "not all jobs were there to be removed"};
inline constexpr Sentence SayRecordLost = {71,
                                           "the record of queue \"%s\" is missing or damaged; add it anew"};
inline constexpr Sentence SayQueueHeads = {72, "Queue,Model,Type,Printer,Remote,Options,Store,Jobs"};
inline constexpr Sentence SayJobHeads = {73, "Queue,Job,User,Bytes,Title"};
inline constexpr Sentence SayBatchRestored = {
    74, "warning: a batch that was broken off has been taken back; run it again"};
inline constexpr Sentence SayQueueNamed = {75, "queue \"%s\""};
inline constexpr Sentence SayBannerTitles = {76, "banner titles"};
inline constexpr Sentence SayQueueAdded = {77, "%s: added"};
inline constexpr Sentence SayQueueChanged = {78, "%s: changed"};
inline constexpr Sentence SayQueueRemoved = {79, "%s: removed"};
inline constexpr Sentence SayQueueUnchanged = {80, "%s: unchanged"};
inline constexpr Sentence SayQueueWouldAdd = {81, "%s: would be added"};
inline constexpr Sentence SayQueueWouldChange = {82, "%s: would be changed"};
inline constexpr Sentence SayQueueWouldRemove = {83, "%s: would be removed"};
inline constexpr Sentence SayBatchSum = {84, "%s added, %s changed, %s removed, %s unchanged, %s refused"};
inline constexpr Sentence SayBatchLine = {85, "line %s: %s"};
inline constexpr Sentence SayBatchRefused = {86, "lines refused: %s"};
inline constexpr Sentence SayBatchStopped = {87, "stopped in front of line %s: %s"};
inline constexpr Sentence SayBatchLost = {88, "nothing of the batch was kept: %s"};
inline constexpr Sentence SayQuoteOpen = {89, "a quotation mark has no partner"};
inline constexpr Sentence SayNoBatchLine = {90, "this can't stand in a batch"};
inline constexpr Sentence SayNotWhole = {91, "%s is no whole export of queues"};
inline constexpr Sentence SayNotExported = {92, "queue \"%s\" has no sound record and is left out"};
inline constexpr Sentence SayExportPart = {93, "queues left out: %s"};
inline constexpr Sentence SayStoppedBySignal = {94, "ended by a signal"};

// The sentence in the user's language, a printf format; the English text where there is none. errno stays as
// it is. Uses: pToolPath.
std::string SentenceText(const Sentence &sentence);

// The sentence with its values, texts without a NUL.
inline std::string Say(const Sentence &sentence) {
    return SentenceText(sentence);
}
template <typename... Values>
std::string Say(const Sentence &sentence, const Values &...values) {
    static constexpr char signature[] = {NlsLetter<decltype(values.c_str())>()..., '\0'};
    return NlsFmt(SentenceText(sentence).c_str(), signature, values.c_str()...);
}

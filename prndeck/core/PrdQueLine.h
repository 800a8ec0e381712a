// The command lines for prnqtool and the driver front end: both faces hand every queue change over as one
// line. Every value is quoted here, once; callers pass plain values.
#pragma once

#include "print/MainUtils.h"

#include <string>

enum { STATUS_LPSCHED = 16 }; // of RunQueLine: lpsched failed to stop

// What both faces say of a target, in the set of messages.
enum { MSG_NO_ADDRESS = 126, MSG_NO_REMOTE = 129 };

// Where a queue prints. No text may be null.
struct QueTarget {
    int type;            // QueueType
    const char *name;    // the queue
    const char *address; // host name, or device path for types 2 and 4
    const char *remote;  // the printer's name on the print server for type 1, else the remote queue name
};

// The choices of the menus and windows; any value but 0 is yes.
struct QueOptions {
    int features;
    int banner;
    int userInterface;
    int isDefault;
};

// Remote queue name of a model, "lp" if its record has none.
std::string GetLprQueue(const char *ppdFile);

std::string MakeAddLine(const QueTarget &target, const char *ppdFile, int printingModel,
                        const QueOptions &options);
std::string MakeCopyLine(const QueTarget &target, const char *source, int printingModel);
// With flLog the line names the log, as the terminal does.
std::string MakeModifyLine(const char *name, const QueOptions &options, int flLog);
// The same from files of the caller's own: paths; without banner titles an empty one. The working files of
// the flows, which may be in use, are left alone.
std::string MakeModifyLineOf(const char *name, const QueOptions &options, const std::string &settings,
                             const std::string &banner);
std::string MakeDeleteLine(const char *name);
// names: one or more queues with blanks between them.
std::string MakeDeleteListLine(const char *names);
std::string MakeDeleteAllLine();
// Makes ".bsettings" the system's default banner, or clears the default.
std::string MakeDefaultBannerLine(int flSet);
extern const char FrontEndProgram[]; // the driver front end, which talks to the user
// The front end's own dialogue on the terminal, for the features of a model.
std::string MakeFeatureLine(const char *ppdFile, int flBanner);

// The same where a display is: the program that sets the features of the model. For a queue that is stored
// flStored has it asked for by its name; else it is the name of the queue in the making, which may be empty.
struct FeatureCall {
    const char *ppdFile;
    const char *queue;
    int flStored;
    int flBanner;
};
const char *GetFeatureProgram(const char *ppdFile); // the one of the line
std::string MakeFeatureWindowLine(const FeatureCall &call);

// Runs a line with its output thrown away: 0, or a number of errno. *told is what prnqtool complained or
// warned of, a line each, for the face to show; empty if it did as it was told.
int RunQueLine(const std::string &line, std::string *told);
// Behind STATUS_LPSCHED; a host without lpsched would end the program.
void StartLpsched();

// Where a stored queue prints, as it is shown. A queue is of one kind: with a remote queue (a print server's,
// or through LPD), else on a local device or at a host.
enum { PLACE_REMOTE, PLACE_HOST, PLACE_DEVICE };
enum { PLACE_WORD = 256 };
struct QuePlace {
    int kind;                 // PLACE_
    int counted;              // the printer has a count record, whose words follow
    char address[PLACE_WORD]; // host name or device path, empty without the record
    char remote[PLACE_WORD];  // remote queue, or the printer's name on the print server; empty without it;
                              // the queue's own word for PLACE_REMOTE, else the record's
};
QuePlace GetQuePlace(const QueRecord *record);

// The working files of the flows, in the tool directory.
extern const char SettingsFile[]; // the feature settings of the queue at hand
extern const char BannerFile[];   // its banner lines
int TestToolFile(const char *name);
int DeleteWorkFile(const char *name); // 1 if it is gone
void DeleteWorkFiles();
// Moves the settings of a record to ".settings", if it has any; 0 if they can't be written, behind a message
// on standard error.
int PutSettingsFile(QueRecord *record);

// The base layer of the family's print tools: where a queue prints, what a spool directory holds.
//
// Two halves. The printer configuration (prnoutbase.cpp) finds a queue in the database "que" or in the older
// flat file "77yyprinters" and loads the answer into the printer globals; the job functions beside it read
// what the host's print system tells a print tool about its job. The spool store (prnoutbaseSpool.cpp) keeps
// the list of waiting jobs, its lock, and the mailbox of the spool daemon, which several processes share.
// doc/spool.md shows every file with an example.
//
// All text globals are managed copies with one writer, named below; a new value releases the old one.
#pragma once

#include <cstddef>

// ---- Printer globals. Writers: FindPrinter, GetConfig and the two functions that they hand a queue to.
extern char *pPrinterQueue;        // queue name; null means: the default queue
extern char *pDefaultPrinterQueue; // null if there is none
extern char *pPrinterName;         // host name or device path
extern char *pPSName;              // its name on the print server
extern char *pPrinterPath;         // last part of the spool path
extern char *pPPDFile;             // full path
extern char *pPpdToolPath;         // directory above the directory ppd
extern char *pConnType;            // "NIS", "SERVER" or "DIRECT"
extern char *pLprQueName;          // remote queue name
extern char *pSettings;            // feature settings of the first queue that had any
extern int flUseLpd;               // the queue goes through lpd
extern int flUserInterface;        // on unless the configuration says otherwise
extern int flFeatures;
extern int flTray2;
extern int flDefaultPrinter;
extern int flBannerPage;
extern int flBegBannerPage;
extern int flEndBannerPage;

// ---- Job globals. Writers: GetFileInfo, GetRequestHost, GetInterfaceEnvArgs.
extern char *pControlFile;
extern char **pFiles; // FilesCnt managed paths; an empty one can't be printed
extern int FilesCnt;
extern char *pJobName;
extern char *pHostName;
extern char *pPerson;
extern char *pJobTitle;
extern int CopyCnt;
extern int flLpdCopyCnt; // copies were asked for
extern char *pInterface;
extern char *pReqId;
extern char *pOptions;
extern char *pSourceDir; // directory that relative file names refer to, null for the current one; set by the
                         // tool

enum { CONFIG_READ = 1, CONFIG_NO_EXIT = 2 }; // flags of GetConfig
enum { CONTROL_LINE = 512, LINK_STEPS = 40 };

extern const char *pSpoolRoot; // "/var/spool"; a seam for tests
#define SPOOL_FAMILY "Tarvo"

// ---- The printer of a queue

// 1 if the queue (null: the default one) was found: in the database, else in 77yyprinters in the directory
// above the tool directory. There the last line of the queue counts. A value that the source does not tell is
// null or 0, but pSettings stays. Keeps the position of the token scanner.
// Uses: Line, LineBuf, pIn. Ends: with status 0, after a message, if 77yyprinters exists and can't be opened
// or the queue's line has fewer than four fields.
int FindPrinter(const char *queue);
// 1 if pPrinterQueue (null: the queue of the record " default") has a record. Uses: Line, the token state.
int ProcessDbmQue();
// Loads the line in LineBuf: QUEUE PRINTER[,PATH] PPD TYPE [OPTION...]. pPrinterQueue is set if it is null.
// Ends: with status 0, after a message, if one of the first four fields is missing. Uses: LineBuf.
void ProcessConfigEntry();
// One option word of such a line; other words do nothing.
void SetPrinterOption(const char *word);
// The print tools' start: 0 when a printer was found, 1 otherwise. CONFIG_READ takes queue and tool directory
// from the first line of ./.config; without it, and without a marker file, the current directory is the tool
// directory. A queue that neither source knows falls back on the default queue.
// Uses: as FindPrinter, pToolPath. Ends: with status 0, after a message, on a bad ./.config and, without
// CONFIG_NO_EXIT, if no printer was found.
int GetConfig(int flags);
// "/var/spool/Tarvo/TOOLDIR/PATH"; TOOLDIR is the name of the directory above the PPD's directory ppd, and a
// null path is left out with its slash. Owns: the result.
[[nodiscard]] char *GetSpoolPath(const char *ppd, const char *path);
// The path with each '/' as '_'. Buffer: static, of PATH_MAX bytes, until the next call.
char *GenDirName(const char *path);
// Position from 1 of the value in a table that a negative number ends, 1 also if it is not there; 0 for a
// negative value.
int FindOption(int value, const int *table);

// ---- The job at hand

// The job of the spool directory that is the current one: its control file, named by the second line of
// ./lock. Lines count up to 511 characters. Ends: with status 1 without ./lock, with status 0 without a
// control file.
void GetFileInfo();
// pHostName, unless it is set: from the request file beside the first data file, else this host.
void GetRequestHost();
// The job as the environment tells it to an interface script.
void GetInterfaceEnvArgs();

// ---- File names

// The path of a data file: "/x" as it stands, "~/x" in HOME, any other below pSourceDir. Owns: the result.
// Ends: with status 1 on a '~' without HOME, without '/' or without a name.
[[nodiscard]] char *LocatePath(const char *path);
// The target of a link from its line of ls: what follows the last '>', below the link's directory unless it
// is absolute; the path itself without one. A leading "./" or "../" of the target is dropped. Owns: the
// result.
[[nodiscard]] char *LocateLink(const char *path, const char *line);
// The path behind all links; empty, with a message on standard error, for a missing file, a directory, and
// after LINK_STEPS links. Owns: the result. Ends: as LocatePath, and without ls.
[[nodiscard]] char *GenFullName(const char *path);
// Writes the text, as it stands, to a file that stays open from call to call as long as path and mode are the
// same. Non-zero if it was written. FileStatus tells whether the last open worked.
int PutFileLine(const char *path, const char *text, const char *mode);
void CloseOutputFile(); // FileStatus becomes FILE_ENDED

// ---- The spool store
//
// ".q" holds a job a line, "cfA1host dfA1host\n", oldest first. Readers take no lock and never see half a
// list: a job is appended in one write, and any other change is a new file renamed over the old one. (Where
// the directory can't be written the file is rewritten in place.)
//
// ".qlock" holds "L NAME" or "U NAME" with the NAME of a program. Both styles of access below see and leave
// the same text. The marker of SetQueLockState stops nobody, so the three job functions hold, beside it, a
// lock of the kernel (flock) on ".qlock" while they read and write ".q": of the processes that use this layer
// one at a time changes a list. It leaves no trace in the file, and the kernel takes it from a process that
// dies.

enum {
    QUE_LOCK_SIZE = 40,    // of the mapped record
    QUE_LOCK_NAME = 37,    // longest name in it
    QUE_LOCK_TRIES = 5,    // seconds that LockQue waits, and tries of SetQueLockState
    QUE_CMD_SIZE = 131072, // of the mailbox ".cmd"
    QUE_CMD_TEXT = 65536,  // of its first half, the commands; the response starts behind it
};
extern char *pQueCmd;         // the mailbox, null until it could be mapped; writer: AddCmdToQue
extern char *pQueCmdResponse; // the daemon's answer; writer: AddCmdToQue

// A shared mapping of the file, which must exist and is sized to size / page + 1 pages; null if that fails,
// with a message. The second argument is 0. With flClose the descriptor is closed; else it stays open.
// Owns: munmap.
[[nodiscard]] void *MapMemFile(const char *path, int reserved, size_t size, int flClose);

// The mapped style. A lock is the address of its 40 bytes. The file is made, with mode 666, and its directory
// too. Owns: FreeQueLock. Ends: with status 1 if they can't be made. Null if the file can't be mapped.
[[nodiscard]] char *CreateQueLock(const char *directory, char *lock); // releases the old one; state: free
// Waits up to 5 seconds for a holder of another name, then takes the lock whoever has it. Null as lock: makes
// one first.
[[nodiscard]] char *LockQue(const char *directory, char *lock);
void UnlockQue(char *lock);
void FreeQueLock(char *lock);
// The plain style: 1 if "L NAME" (flLock) or "U NAME" was written; 0 after 5 tries, a second apart. Does not
// look at the holder. A file that is mapped elsewhere never shrinks to nothing in between.
int SetQueLockState(const char *directory, int flLock);

// Appends a job; does nothing if an argument is null or empty, or if a name holds white space, which is
// reported. Waits for as long as the lock file can't be written, but gives up, with a message, if the
// directory is not there and can't be made, or if the line can't be written.
void AddJobToQue(const char *directory, const char *first, const char *second);
// Takes the first job of that name out. A line without its line feed is no job yet.
void DeleteJobFromQue(const char *directory, const char *first, int reserved);
// The oldest job, which stays in the list; both empty if there is none, cut at the capacity. What stands in
// front of the first word with 'c' or 'C' is dropped from the file. The second form looks at the first line
// only, without lock or change.
void GetJobFromQue(const char *directory, char *first, char *second, size_t capacity);
void GetJobFromQue____(const char *directory, char *first, char *second, size_t capacity);
// Adds a line to the pending commands of the spool daemon, and empties the response; with the flag gives the
// daemon a second to answer. The response, empty without an answer, without a mailbox, and for a command that
// finds no room.
const char *AddCmdToQue(const char *command, int flWait);

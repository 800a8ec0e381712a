// The table of host commands and the only two roads by which a process is started.
//
// SysCmd runs a command for its effect, GetCmdResponse for its lines. A command is named by its row; a row
// whose command this host lacks is harmless until it is used, which ends the program with status 0 and
// "ERROR: unable to locate system command 'NAME'". Rows 0 and 1 stand for a complete line of the caller's.
// Every value in a line goes through ShArg once, whatever the row: the second layer of quotes that the shell
// wrapper of SysCmd needs is its own affair. A line is text, never a format: SysCmd(1, 0, "%s", line).
//
// Neither road tells whether a command that ran did its work: a failed one leaves 0 or no lines, as one does
// that had nothing to say. Who must know lets mode 2 end the program, looks at what the command should have
// done, or lets the line speak: GetCmdResponse(CMD_QUIET, "done", "%s && echo done", line). prnqtool speaks
// through Told.h. Times are in seconds. A format must not be null; other nulls are told where they may stand.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <netdb.h>
#include <string>
#include <string_view>

// Rows of ComList, in their order.
enum CommandKey {
    CMD_QUIET, // a complete line of the caller's, logging off
    CMD_LINE,  // the same with logging on
    CMD_CANCEL,
    CMD_CAT,
    CMD_CHGRP,
    CMD_CHMOD,
    CMD_CHOWN,
    CMD_CLEAR,
    CMD_COMPRESS,
    CMD_CP,
    CMD_CP_R,
    CMD_CUPSD,
    CMD_ID,
    CMD_ECHO,
    CMD_EJECT_F,
    CMD_EJECT_Q,
    CMD_FILE,
    CMD_LN,
    CMD_LP,
    CMD_LPC,
    CMD_LPR,
    CMD_LPRM,
    CMD_LPSTAT,
    CMD_LS,
    CMD_KILL,
    CMD_MV,
    CMD_MKDIR,
    CMD_MORE,
    CMD_PING,
    CMD_RM,
    CMD_RM_R,
    CMD_SH,
    CMD_SLEEP,
    CMD_TAR_C,
    CMD_TAR_X,
    CMD_TOUCH,
    CMD_UNCOMPRESS,
    CMD_WHOAMI,
    CMD_ZCAT,
    CMD_UNAME,
    CMD_SED,
    CMD_DU,
    CMD_CHECKPC,
    CMD_LPD,
    CMD_PKGADD,
    CMD_PKGINFO,
    CMD_PKGRM,
    CMD_ACCEPT,
    CMD_DISABLE,
    CMD_CUPSDISABLE,
    CMD_ENABLE,
    CMD_CUPSENABLE,
    CMD_LPADMIN,
    CMD_LPFILTER,
    CMD_LPSCHED,
    CMD_LPSHUT,
    CMD_LPSYSTEM,
    CMD_PS,
    CMD_BAR,
    CMD_DF,
    CMD_LPQ,
    CMD_YPCAT,
    CMD_REJECT,
    CMD_PMADM,
    CMD_SACADM,
    CMD_VOLCHECK,
    CMD_CAPTURE,
    CMD_LPSET,
    CMD_INSTNETPR,
    CMD_PIOMKPQ,
    CMD_PIOMISC_EXT,
    CMD_PIOMISC_BASE,
    CMD_LSALLQ,
    CMD_MKQUE,
    CMD_MKQUEDEV,
    CMD_RMQUE,
    CMD_RMQUEDEV,
    CMD_PIOCHDFQ,
    CMD_ENQ,
    CMD_LSQUEDEV,
    CMD_LSQUE,
    CMD_STARTSRC,
    CMD_STOPSRC,
    CMD_LSSRC,
    CMD_END
};

struct SysCommand {
    const char *name;
    const char *flags;
    const char *path; // directory where it was found, null until then
    int32_t delay;    // seconds to sleep after SysCmd has run it; -1 waits for the process to show up
};

struct ResponseNode {
    ResponseNode *next;
    char *text; // keeps its newline
};

struct DiskRecord {
    char line[512];
    double available;
};

using CommandTable = std::array<SysCommand, CMD_END + 1>; // the last row is empty
extern CommandTable ComList; // writers of the path column: FillCmdPaths, FillCmdPath
extern char SearchPaths[];   // colon list; InitSysCmdList cuts it up, the rows keep the pieces
extern char *FullSearchPath; // SearchPaths, a colon and PATH
extern int flInitSysCmd;     // a row is looked up at its first use; writer: InitSysCmdList
extern int flSysCmdLog;      // SysCmd logs; writer: InitSysCmdList

// Test seams; the libc functions by default.
extern int (*pSystem)(const char *line);
extern FILE *(*pPopen)(const char *line, const char *mode);
extern int (*pPclose)(FILE *stream);
extern unsigned (*pSleep)(unsigned seconds);
extern struct hostent *(*pGethostbyname)(const char *name);

// ---- The search

// Fills the path column from SearchPaths and PATH, sets SHELL in the environment (with a blank at its end)
// and starts the log. Called once, by main. Each directory is read once, whatever the number of rows. Uses:
// token state, the disposition of SIGCHLD.
void InitSysCmdList();
// Gives the directory to every row that lies in it and has no path yet; keeps the text. 1 while some row is
// without a path or if the directory can't be read.
int FillCmdPaths(const char *directory);
// Looks for one row in FullSearchPath; 1 if found. Serves the time before InitSysCmdList only.
int FillCmdPath(int row);
int TestCmd(int row); // 1 for a row of 2 or more with a known path

// ---- Running

// "path/name flags" and "path/name" as they go into a shell line; null without a path. Owns: the result.
[[nodiscard]] char *GetCmd(int row);
[[nodiscard]] char *GetCmdNoFlags(int row);
// Runs a row with the formatted text behind it. A negative row or row 0 keeps it out of the log; then modes 1
// and 2 leave the command the program's terminal, and it is ended (SIGHUP) if the program dies.
//   mode 0  output thrown away, never logged
//   mode 1  output into the log, a dot on standard output, a failure noted in the log
//   mode 2  the same, but a failure is printed and ends the program
// Returns 0, or the errno that kept the shell from being started; a command that ran and failed gives 0, too.
// Sleeps the row's delay.
// Ends: without the command (status 0); in mode 2 on failure (status 1).
[[gnu::format(printf, 3, 4)]] int SysCmd(int row, int mode, const char *format, ...);
// The lines of a command that hold the filter, or all for a null or empty one, in order; null for none or if
// it can't be started. A line of more than 4095 bytes comes in pieces. Owns: the list, see FreeResponseList.
// Ends: without the command, with status 0.
[[nodiscard, gnu::format(printf, 3, 4)]] ResponseNode *GetCmdResponse(int row, const char *filter,
                                                                      const char *format, ...);
// The same as one text, which ends in a line feed. Owns: the result.
[[nodiscard, gnu::format(printf, 3, 4)]] char *GetCmdResponseStr(int row, const char *filter,
                                                                 const char *format, ...);
void FreeResponseList(ResponseNode *list); // null is fine

// A value as one word of a shell line: unchanged if it is empty or holds only [A-Za-z0-9_./:@%+=,-], else in
// single quotes.
std::string ShArg(std::string_view value);

// ---- Processes, packages, disks
// Owns: the texts; null where nothing was found. A null or empty name or path finds nothing. All end the
// program, with status 0, where ps, pkginfo, df or du are missing.
[[nodiscard]] char *GetSysPsIdList(const char *name); // " 12 345 " of the processes of exactly that name
[[nodiscard]] char *
CheckProcTableForExecs(const char *names); // "a,b": a line "a ( 12 345 )" for each that runs
int KillProcessByName(const char *name);   // SIGKILL to each; sleeps a second, returns 0
[[nodiscard]] char *
GetSysPkgList(const char *filter); // " a b " of the packages with the filter in their line
// 1 with the amount under the heading of df that begins with "avail", in the units of df; 0 without one, as
// for every df that does not know the option -b. The record must not be null.
int GetDiskSpace(const char *path, DiskRecord *record);
// 1 if the directory, or the nearest parent that df answers for, has room; a file that is to be replaced
// there (may be null) counts as room.
int AvailSpace(const char *directory, const char *file, double needed);
double DUPath(const char *path); // in the units of du, 0 if it does not answer

// ---- The process and its host

// By whoami; empty for a user without a name, null if whoami can't be started. Owns: the result.
[[nodiscard]] char *GetUserName();
// Runs a line as it stands, then sleeps a second. Modes 1 and 2 print it first and report a failure, but not
// exit code 2. Ends: in mode 2 after a report, with status 1.
[[gnu::format(printf, 2, 3)]] void SysCmdP(int mode, const char *format, ...);
// 1 if the print daemon calls itself LPRng, if a cupsd runs. 0 where lpd or ps is missing.
int SniffLprng();
int SniffCUPS();

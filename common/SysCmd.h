// The table of host commands and the only two roads by which a process is started.
#pragma once

#include <cstdint>
#include <cstdio>
#include <netdb.h>
#include <string>
#include <string_view>

// Rows of ComList that the program names.
enum {
    CMD_QUIET = 0, // a complete line of the caller's, logging off
    CMD_LINE = 1,  // the same with logging on
    CMD_CHGRP = 4,
    CMD_CHMOD = 5,
    CMD_CHOWN = 6,
    CMD_CLEAR = 7,
    CMD_LS = 23,
    CMD_MV = 25,
    CMD_MKDIR = 26,
    CMD_RM = 29,
    CMD_RM_R = 30,
    CMD_SH = 31,
    CMD_TOUCH = 35,
    CMD_WHOAMI = 37,
    CMD_DU = 41,
    CMD_LPD = 43,
    CMD_PKGINFO = 45,
    CMD_LPSCHED = 54,
    CMD_PS = 57,
    CMD_DF = 59,
    CMD_YPCAT = 61,
    CMD_END = 84,
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

extern SysCommand ComList[CMD_END + 1];
extern char SearchPaths[];
extern char *FullSearchPath;
extern int flInitSysCmd;
extern int flSysCmdLog;

// Test seams; the libc functions by default.
extern int (*pSystem)(const char *line);
extern FILE *(*pPopen)(const char *line, const char *mode);
extern int (*pPclose)(FILE *stream);
extern unsigned (*pSleep)(unsigned seconds);
extern struct hostent *(*pGethostbyname)(const char *name);

void InitSysCmdList();
int FillCmdPaths(const char *directory);
int FillCmdPath(int row);
int TestCmd(int row);
[[nodiscard]] char *GetCmd(int row);
[[nodiscard]] char *GetCmdNoFlags(int row);
[[gnu::format(printf, 3, 4)]] int SysCmd(int row, int mode, const char *format, ...);
[[nodiscard, gnu::format(printf, 3, 4)]] ResponseNode *GetCmdResponse(int row, const char *filter,
                                                                      const char *format, ...);
[[nodiscard, gnu::format(printf, 3, 4)]] char *GetCmdResponseStr(int row, const char *filter,
                                                                 const char *format, ...);
void FreeResponseList(ResponseNode *list);
[[nodiscard]] char *GetSysPsIdList(const char *name);
[[nodiscard]] char *CheckProcTableForExecs(const char *names);
int KillProcessByName(const char *name);
[[nodiscard]] char *GetSysPkgList(const char *filter);
int GetDiskSpace(const char *path, DiskRecord *record);
int AvailSpace(const char *directory, const char *file, double needed);
double DUPath(const char *path);

// A value as one word of a shell line: unchanged if it is empty or holds only [A-Za-z0-9_./:@%+=,-], else in
// single quotes. Every value from outside goes through it once, where the line is built.
std::string ShArg(std::string_view value);

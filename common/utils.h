// Files, paths and error reports: the system's thin layer over the host's file system and process.
#pragma once

#include <climits>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <dirent.h>
#include <string>
#include <sys/types.h>

enum { LINEBUF_SIZE = 4096, LINE_SIZE = 262143, INPUT_LINE = 512 };
enum { FILE_OPEN, FILE_ENDED, FILE_FAILED };                  // FileStatus
enum { ERR_SILENT, ERR_WARN, ERR_FATAL };                     // error levels of the open functions
enum { TYPE_MISSING, TYPE_DIRECTORY, TYPE_LINK, TYPE_OTHER }; // GetFileType

extern FILE *pIn;
extern FILE *pOut;
extern char InputFileName[PATH_MAX];
extern int FileStatus;
extern char LineBuf[LINEBUF_SIZE]; // line buffer, shared with the terminal menus
extern int LineLen;
extern char Line[LINE_SIZE + 1]; // scratch, and the line of GetLine
extern char *const pLine;
extern int LineCnt;
extern long InPos;
extern int flInputFilterState;
extern long SavedFileSize;
extern const char *my_name;
extern int flUseLog;
extern FILE *pLog;
extern const char *pLogPath;
extern char *pToolPath; // absolute tool directory; writer: main

char *StripExt(const char *path);
char *StripPath(const char *path);
char *StripPathExt(const char *path);
char *StripFn(const char *path);
char *GenName(const char *text);
[[nodiscard]] char *GetToolPath(const char *argv0);
[[nodiscard]] char *FindExistingPath(const char *path, int *flWhole);

int FindFile(const char *directory, const char *name);
int FindFile_(const char *directory, const char *name);
[[nodiscard]] char *GetDirFileList(const char *directory);
[[nodiscard]] char *SearchDirFileList(const char *directory, const char *extension);
char *ReadDir(DIR *stream, char *buffer, size_t capacity);
long GetFileSize(const char *path);
time_t GetFileTime(const char *path);
int GetFileType(const char *path);
char *FileSearch(const char *path, const char *text, int level);

FILE *OpenFile(FILE *close, const char *path, const char *mode, int level);
[[gnu::format(printf, 4, 5)]] FILE *OpenFileF(FILE *close, const char *mode, int level, const char *format,
                                              ...);
int OpenRawFile(const char *path, int flags);
int OpenInputFile(const char *path, int level);
[[gnu::format(printf, 2, 3)]] int OpenInputFileF(int level, const char *format, ...);
void CloseInputFile();

int GetFileLine();
int GetFileTextLine(const char *delims);
int GetLine();
int GetLineN(int n);
int GetLinePos(long offset);
char *fgetsp(char *buffer, int size, FILE *in, long offset);
int GetFileContent(const char *path, const char *name);
int GetFileContentR(const char *path, const char *name, char *buffer, size_t size); // buffer: size + 1 bytes
[[nodiscard]] char *GetSavedFileContent(const char *path, const char *name);

void CreateFile(const char *directory, const char *name, const char *mode, const char *owner,
                const char *group);
[[gnu::format(printf, 4, 5)]] int CreateTextFile(const char *path, const char *mode, int fileMode,
                                                 const char *format, ...);
void DeleteFile(const char *directory, const char *name);
void DeleteFile_(const char *path, const char *name);
void RenameFile(const char *directory, const char *from, const char *to);

[[noreturn, gnu::format(printf, 1, 2)]] void SysError(const char *format, ...);
[[gnu::format(printf, 3, 4)]] void ErrorMsg(int level, int status, const char *format, ...);
[[gnu::format(printf, 1, 2)]] void errormsg(const char *format, ...);
[[gnu::format(printf, 1, 2)]] void PutLogMsg(const char *format, ...);
[[noreturn]] void exit_app(int status);
[[nodiscard]] char *GetEnv(const char *name);
[[nodiscard]] char *GetUserName();
[[nodiscard]] char *GetHostname();
[[gnu::format(printf, 2, 3)]] void SysCmdP(int mode, const char *format, ...);
int SniffLprng();
int SniffCUPS();
// True if a log file at this path may be appended to: a regular file or none, no link, writable.
bool TestLogFile(const char *path);
// The formatted text, of any length.
[[gnu::format(printf, 1, 0)]] std::string FormatV(const char *format, va_list args);

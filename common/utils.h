// Files, paths and the log: the system's thin layer over the host's file system.
//
// One file is read at a time (pIn), into one line buffer (LineBuf or Line); opening a second one ends the
// first. What runs the host's commands to change a file is in SysFile.h.
#pragma once

#include "common/Report.h"

#include <climits>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <dirent.h>
#include <string>
#include <sys/stat.h>
#include <sys/types.h>

// No text at all, or an empty one.
inline bool IsEmpty(const char *text) {
    return !text || !*text;
}

enum { LINEBUF_SIZE = 4096, LINE_SIZE = 262143, INPUT_LINE = 512 };
enum { FILE_OPEN, FILE_ENDED, FILE_FAILED };                  // FileStatus
enum { TYPE_MISSING, TYPE_DIRECTORY, TYPE_LINK, TYPE_OTHER }; // GetFileType

extern FILE *pIn;  // current input file; writers: OpenInputFile, CloseInputFile, GetFileLine
extern FILE *pOut; // current output file; its writers open and close it
extern char InputFileName[PATH_MAX]; // last name given to OpenInputFile
extern int FileStatus;
extern char LineBuf[LINEBUF_SIZE];           // line buffer, shared with the terminal menus
extern int LineLen;                          // bytes in front of the last continuation line in LineBuf
extern char Line[LINE_SIZE + 1];             // scratch, and the line of GetLine
extern char *const pLine;                    // Line
extern int LineCnt;                          // physical lines that the last GetLine used
extern long InPos;                           // offset in pIn of the last physical line of GetLine
extern int flInputFilterState;               // GetLine takes comments out
extern long SavedFileSize;                   // bytes found by the last GetSavedFileContent
extern int flUseLog;                         // PutLogMsg writes; writer: main
extern FILE *pLog;                           // open only while a message is written
extern const char *pLogPath;                 // directory of the log; "/tmp" from the first message on
extern void (*pOpenUpLog)(const char *path); // touch and chmod for a log just made; writer: InitSysCmdList
extern char *pToolPath;                      // absolute tool directory; writer: main

// ---- Paths
// Buffer: each function has a static one of its own of PATH_MAX bytes, valid until its next call. The
// argument may lie in that buffer. A null path counts as an empty one.
char *StripExt(const char *path);     // up to the first '.' of the whole path: empty for "./a"
char *StripPath(const char *path);    // the last component, empty behind a trailing '/'
char *StripPathExt(const char *path); // the last component up to its first '.'
char *StripFn(const char *path);      // up to the last '/'; "/" in the root, "." without a '/'
char *GenName(const char *text); // "big color-4" gives "BigColor4"; what precedes the first letter is dropped

// The absolute directory of the program. A name without '/' counts as lying in the current directory: PATH is
// not searched. Leading "./" and "../" are taken off. Owns: the result.
[[nodiscard]] char *GetToolPath(const char *argv0);
// The deepest existing directory on the path, links followed; *flWhole (may be null) tells if it is the path
// itself. Null if not even "/" or "." can be asked. Owns: the result.
[[nodiscard]] char *FindExistingPath(const char *path, int *flWhole);

// "directory/name"; one alone if the other is null or empty.
std::string JoinPath(const char *directory, const char *name);

// ---- Finding and listing

// 1 if the listing of the directory holds the name, 0 otherwise. Null directory: the name is the whole path;
// null or empty name: the directory is. A name with a '/' is split at its last one. Reads the whole
// directory; a name with a blank is never found, because the blank separates the names of a listing.
int FindFile(const char *directory, const char *name);
// 1 if stat works on the joined path (directory may be null).
int FindFile_(const char *directory, const char *name);
// Whether PATH leads to a program of this name.
bool FindInPath(const std::string &name);
// " a b c " in the order of readdir, "." and ".." among them; null if the directory can't be opened.
// Owns: the result.
[[nodiscard]] char *GetDirFileList(const char *directory);
// The same of the names whose last extension is the given one, or, for null, of all but "." and ".."; null
// also if there is none. Owns: the result.
[[nodiscard]] char *SearchDirFileList(const char *directory, const char *extension);
// The next name, cut at the capacity, or null.
char *ReadDir(DIR *stream, char *buffer, size_t capacity);
// Bytes, seconds; 0 if stat fails.
long GetFileSize(const char *path);
time_t GetFileTime(const char *path);
// By lstat: a link to a directory is TYPE_LINK.
int GetFileType(const char *path);
// The first line that holds the text (null: the first line), with its line feed, or null. Lines longer than
// 511 bytes count in pieces. Level as in OpenFile. Buffer: static, valid until the next call.
char *FileSearch(const char *path, const char *text, int level);

// ---- Opening
// No stream or descriptor made here is inherited by a child. A pipe can't be opened, so that none is waited
// for; but OpenRawFile takes one.

// Closes the first argument, unless null, and opens the path; null on failure, then ERR_WARN prints
// "ERROR: can't open file, PATH". Ends: on ERR_FATAL, through SysError.
FILE *OpenFile(FILE *close, const char *path, const char *mode, int level);
[[gnu::format(printf, 4, 5)]] FILE *OpenFileF(FILE *close, const char *mode, int level, const char *format,
                                              ...);
// The descriptor, or -1 with a message on standard output. A file made by O_CREAT gets 0666 less the umask.
int OpenRawFile(const char *path, int flags);
// 1 with pIn open. On failure 0, FileStatus FILE_FAILED, LineBuf emptied, and ErrorMsg of the level.
// Ends: on ERR_FATAL, with status 0.
int OpenInputFile(const char *path, int level);
[[gnu::format(printf, 2, 3)]] int OpenInputFileF(int level, const char *format, ...);
void CloseInputFile();

// ---- Reading

// A line of at most 510 bytes, longer ones in pieces, into LineBuf, with its line feed; 1, or 0 at the end,
// where pIn is closed. A line that ends in a backslash draws the next one in behind it, up to 4095 bytes in
// all; backslash and line feed stay. Without pIn 0. Uses: pIn, LineBuf, LineLen.
int GetFileLine();
// The first token of the next line that has one and doesn't start with '#', into LineBuf; 0 at the end.
// Uses: as GetFileLine, and strtok's state.
int GetFileTextLine(const char *delims);
// The number of physical lines used, 0 at the end; the line is in Line, the rest of 512 bytes is cleared.
// Unless flInputFilterState is off it comes without leading white space, line end, "//" and "/* */" comments.
// A comment that nothing closes ends with the file. pIn stays open. Uses: pIn, Line, LineCnt, InPos.
int GetLine();
int GetLineN(int n);         // the n-th from here on
int GetLinePos(long offset); // the one at the offset
// fgets at the offset; null if it can't be reached.
char *fgetsp(char *buffer, int size, FILE *in, long offset);
// Path and name are joined by '/' (name may be null). 1 with up to 4095 bytes in LineBuf, terminated; 0 if it
// can't be read.
int GetFileContent(const char *path, const char *name);
int GetFileContentR(const char *path, const char *name, char *buffer, size_t size); // buffer: size + 1 bytes
// The whole file with a NUL behind it; null if it is empty or can't be read. A file of one byte reads as an
// empty text. SavedFileSize tells the bytes, which may hold NULs. Owns: the result.
[[nodiscard]] char *GetSavedFileContent(const char *path, const char *name);

// ---- Writing

// 1 if the text was written and, unless 0, the file mode set; else 0 with a message on standard error.
[[gnu::format(printf, 4, 5)]] int CreateTextFile(const char *path, const char *mode, int fileMode,
                                                 const char *format, ...);
// Appends the text, by ShowPlain, to /tmp/NAME.log while flUseLog is set; the first message of the process
// empties it. A log that is a link, no regular file, another user's (but root's) or not writable is left
// alone, with a message on standard error; so is any in a directory where others may put another one in its
// place.
[[gnu::format(printf, 1, 2)]] void PutLogMsg(const char *format, ...);
// True if a log at this path may be appended to; it is made if it is missing. The command road asks this
// before it names the log in a redirection.
bool TestLogFile(const char *path);
// True for what an open log must be: a regular file of one name, root's or our own.
bool IsOwnLog(const struct stat &info);

// ---- The process and its host

// Makes good what the parent left: closed standard streams, an ignored SIGCHLD. The first step of every
// program.
void InitProcess();
// Owns: the result; null if there is no such variable, no name.
[[nodiscard]] char *GetEnv(const char *name);
[[nodiscard]] char *GetHostname();

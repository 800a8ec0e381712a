// Paths, files, the one input file, and the ways in which an error is reported.
#include "common/utils.h"

#include "common/MemMgr.h"
#include "common/Token.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

enum {
    PIECE = INPUT_LINE - 1, // fgets capacity of a physical line: 510 bytes and the terminator
    SEARCH_LINE = 512,      // FileSearch: 511 bytes and the terminator
    FILE_CONTENT = LINEBUF_SIZE - 1,
    LOG_MODE = 0666,
};

FILE *pIn;
FILE *pOut;
char InputFileName[PATH_MAX];
int FileStatus = FILE_ENDED;
char LineBuf[LINEBUF_SIZE];
int LineLen;
char Line[LINE_SIZE + 1];
char *const pLine = Line;
int LineCnt;
long InPos;
int flInputFilterState = 1;
long SavedFileSize;
int flUseLog;
FILE *pLog;
const char *pLogPath;
void (*pOpenUpLog)(const char *path);
char *pToolPath;

std::string JoinPath(const char *directory, const char *name) {
    if (IsEmpty(directory)) return name ? name : "";
    if (IsEmpty(name)) return directory;
    return std::string(directory) + "/" + name;
}

// ---- Paths

// The argument may lie in the buffer itself: callers take a path apart in steps.
static char *KeepPath(char (&buffer)[PATH_MAX], const char *text, size_t length) {
    length = std::min(length, sizeof(buffer) - 1);
    memmove(buffer, text, length);
    buffer[length] = '\0';
    return buffer;
}

static const char *LastComponent(const char *path) {
    if (!path) return "";
    const char *slash = strrchr(path, '/');
    return slash ? slash + 1 : path;
}

char *StripExt(const char *path) {
    static char buffer[PATH_MAX];
    if (!path) path = "";
    return KeepPath(buffer, path, strcspn(path, "."));
}

char *StripPath(const char *path) {
    static char buffer[PATH_MAX];
    const char *name = LastComponent(path);
    return KeepPath(buffer, name, strlen(name));
}

char *StripPathExt(const char *path) {
    static char buffer[PATH_MAX];
    const char *name = LastComponent(path);
    return KeepPath(buffer, name, strcspn(name, "."));
}

char *StripFn(const char *path) {
    static char buffer[PATH_MAX];
    const char *slash = path ? strrchr(path, '/') : nullptr;
    if (!slash) return KeepPath(buffer, ".", 1);
    if (slash == path) return KeepPath(buffer, "/", 1);
    return KeepPath(buffer, path, static_cast<size_t>(slash - path));
}

char *GenName(const char *text) {
    static char buffer[PATH_MAX];
    char *out = buffer;
    bool flStart = true;
    if (!text) text = "";
    while (*text && !isalpha(static_cast<unsigned char>(*text))) text++;
    for (; *text && out < buffer + sizeof(buffer) - 1; text++) {
        int ch = static_cast<unsigned char>(*text);
        if (isalnum(ch)) *out++ = static_cast<char>(flStart ? toupper(ch) : tolower(ch));
        flStart = !isalnum(ch);
    }
    *out = '\0';
    return buffer;
}

// Takes a leading "../" or "./", or the whole of ".." or ".", off the path; false if there is none.
static bool TakeDots(const char *&path, std::string_view dots) {
    if (strncmp(path, dots.data(), dots.length()) != 0) return false;
    const char *rest = path + dots.length();
    if (*rest && *rest != '/') return false;
    path = *rest ? rest + 1 : rest;
    return true;
}

char *GetToolPath(const char *argv0) {
    if (!argv0) argv0 = "";
    std::string tool = StripFn(argv0);
    if (*argv0 == '/') return SaveStr_(tool.c_str());
    char cwd[PATH_MAX];
    std::string base = getcwd(cwd, sizeof(cwd)) ? cwd : ".";
    const char *rest = tool.c_str();
    bool flUp = TakeDots(rest, "..");
    if (flUp) {
        do base = StripFn(base.c_str());
        while (TakeDots(rest, ".."));
    } else {
        while (TakeDots(rest, ".")) {
        }
    }
    if (!*rest) return SaveStr_(base.c_str());
    return SaveStr_((base + (base == "/" ? "" : "/") + rest).c_str());
}

char *FindExistingPath(const char *path, int *flWhole) {
    std::string place = path ? path : "";
    struct stat info;
    int steps = 0;
    if (flWhole) *flWhole = 0;
    while (stat(place.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        std::string parent = StripFn(place.c_str());
        if (parent == place) return nullptr; // "/" and "." are their own parents
        place = parent;
        steps++;
    }
    if (flWhole) *flWhole = steps == 0;
    return SaveStr_(place.c_str());
}

// ---- Finding and listing

int FindFile(const char *directory, const char *name) {
    std::string path = IsEmpty(directory) ? (name ? name : "") : directory;
    std::string entry = IsEmpty(directory) || !name ? "" : name;
    if (entry.find('/') != std::string::npos) {
        path += "/" + entry;
        entry.clear();
    }
    if (path.empty()) return 0;
    if (entry.empty()) {
        entry = StripPath(path.c_str());
        path = StripFn(path.c_str());
    }
    if (entry.find(' ') != std::string::npos) return 0; // the blank separates the names of the listing
    char *list = GetDirFileList(path.c_str());
    int flFound = FindToken(entry.c_str(), list) != 0;
    PutMem(list);
    return flFound;
}

int FindFile_(const char *directory, const char *name) {
    struct stat info;
    return stat(JoinPath(directory, name).c_str(), &info) == 0;
}

bool FindInPath(const std::string &name) {
    const char *path = getenv("PATH");
    for (const char *from = path; from; from = strchr(from, ':')) {
        if (*from == ':') from++;
        std::string directory(from, strcspn(from, ":"));
        if (access((directory + "/" + name).c_str(), X_OK) == 0) return true;
    }
    return false;
}

// Owns: " a b c " of the names that the test accepts; null if the directory can't be opened.
template <typename Test>
static char *ListDir(const char *directory, Test test) {
    DIR *stream = directory ? opendir(directory) : nullptr;
    if (!stream) return nullptr;
    std::string list;
    while (const dirent *entry = readdir(stream))
        if (test(entry->d_name)) list.append(" ").append(entry->d_name);
    closedir(stream);
    return list.empty() ? SaveStr_("") : SaveStr_((list + " ").c_str());
}

char *GetDirFileList(const char *directory) {
    return ListDir(directory, [](const char *) { return true; });
}

char *SearchDirFileList(const char *directory, const char *extension) {
    char *list = ListDir(directory, [extension](const char *name) {
        if (!extension) return strcmp(name, ".") != 0 && strcmp(name, "..") != 0;
        const char *dot = strrchr(name, '.');
        return dot && strcmp(dot + 1, extension) == 0;
    });
    if (!list || *list) return list;
    PutMem(list);
    return nullptr;
}

char *ReadDir(DIR *stream, char *buffer, size_t capacity) {
    const dirent *entry = stream ? readdir(stream) : nullptr;
    if (!entry || capacity == 0) return nullptr;
    snprintf(buffer, capacity, "%s", entry->d_name);
    return buffer;
}

long GetFileSize(const char *path) {
    struct stat info;
    return path && stat(path, &info) == 0 ? static_cast<long>(info.st_size) : 0;
}

time_t GetFileTime(const char *path) {
    struct stat info;
    return path && stat(path, &info) == 0 ? info.st_mtime : 0;
}

int GetFileType(const char *path) {
    struct stat info;
    if (!path || lstat(path, &info) != 0) return TYPE_MISSING;
    if (S_ISDIR(info.st_mode)) return TYPE_DIRECTORY;
    return S_ISLNK(info.st_mode) ? TYPE_LINK : TYPE_OTHER;
}

char *FileSearch(const char *path, const char *text, int level) {
    static char buffer[SEARCH_LINE];
    FILE *in = OpenFile(nullptr, path, "r", level);
    if (!in) return nullptr;
    char *line;
    do line = fgets(buffer, sizeof(buffer), in);
    while (line && text && !strstr(line, text));
    fclose(in);
    return line;
}

// ---- Opening

// The descriptor, or -1; a pipe, which anybody may have put there, isn't waited for.
static int OpenPlain(const char *path, int flags) {
    struct stat info;
    int descriptor = open(path, flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
    if (descriptor < 0) return -1;
    bool flPlain = fstat(descriptor, &info) == 0 && !S_ISFIFO(info.st_mode);
    if (flPlain && fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK) == 0)
        return descriptor;
    close(descriptor);
    errno = ENXIO;
    return -1;
}

static int StreamFlags(const char *mode) {
    int flags = strchr(mode, '+') ? O_RDWR : *mode == 'r' ? O_RDONLY : O_WRONLY;
    if (*mode == 'w') flags |= O_CREAT | O_TRUNC;
    if (*mode == 'a') flags |= O_CREAT | O_APPEND;
    return flags;
}

static FILE *OpenStream(const char *path, const char *mode) {
    int descriptor = path ? OpenPlain(path, StreamFlags(mode)) : -1;
    FILE *stream = descriptor >= 0 ? fdopen(descriptor, mode) : nullptr;
    if (!stream && descriptor >= 0) close(descriptor);
    return stream;
}

FILE *OpenFile(FILE *close, const char *path, const char *mode, int level) {
    if (close) fclose(close);
    FILE *stream = OpenStream(path, mode);
    if (stream) return stream;
    if (level == ERR_WARN) {
        fflush(stdout);
        fprintf(stderr, "ERROR: can't open file, %s\n", ShowPlain(path ? path : "").c_str());
    }
    if (level == ERR_FATAL) SysError("can't open file, %s", path ? path : "");
    return nullptr;
}

FILE *OpenFileF(FILE *close, const char *mode, int level, const char *format, ...) {
    va_list args;
    va_start(args, format);
    std::string path = FormatV(format, args);
    va_end(args);
    return OpenFile(close, path.c_str(), mode, level);
}

int OpenRawFile(const char *path, int flags) {
    if (!path) path = "";
    int descriptor = open(path, flags | O_CLOEXEC, 0666);
    if (descriptor < 0) printf("ERROR: can't open file, %s", path);
    return descriptor;
}

int OpenInputFile(const char *path, int level) {
    if (!path) path = "";
    KeepPath(InputFileName, path, strlen(path));
    if (pIn) fclose(pIn);
    pIn = OpenStream(path, "rt");
    if (pIn) {
        FileStatus = FILE_OPEN;
        return 1;
    }
    ErrorMsg(level, 0, "can't open file, %s", path);
    FileStatus = FILE_FAILED;
    LineBuf[0] = '\0';
    LineLen = 0;
    return 0;
}

int OpenInputFileF(int level, const char *format, ...) {
    va_list args;
    va_start(args, format);
    std::string path = FormatV(format, args);
    va_end(args);
    return OpenInputFile(path.c_str(), level);
}

void CloseInputFile() {
    if (pIn) fclose(pIn);
    pIn = nullptr;
    FileStatus = FILE_ENDED;
}

// ---- Reading

int GetFileLine() {
    LineLen = 0;
    if (!pIn) return 0;
    if (!fgets(LineBuf, PIECE, pIn)) {
        CloseInputFile();
        return 0;
    }
    while (strstr(LineBuf + LineLen, "\\\n")) {
        LineLen += static_cast<int>(strlen(LineBuf + LineLen));
        int room = std::min<int>(PIECE, LINEBUF_SIZE - LineLen);
        if (room < 2 || !fgets(LineBuf + LineLen, room, pIn)) break;
    }
    return 1;
}

int GetFileTextLine(const char *delims) {
    while (GetFileLine()) {
        char *token = LineBuf[0] == '#' ? nullptr : strtok(LineBuf, delims);
        if (!token) continue;
        memmove(LineBuf, token, strlen(token) + 1);
        return 1;
    }
    return 0;
}

// One physical line into a buffer of INPUT_LINE bytes.
static bool GetPhysLine(char *buffer) {
    long position = ftell(pIn);
    if (!fgets(buffer, PIECE, pIn)) return false;
    InPos = position;
    LineCnt++;
    return true;
}

// Skips the rest of a comment over the following lines; the text behind its end comes to stand in the buffer.
static bool SkipComment(char *buffer) {
    while (GetPhysLine(buffer)) {
        char *end = strstr(buffer, "*/");
        if (!end) continue;
        memmove(buffer, end + 2, strlen(end + 2) + 1);
        return true;
    }
    buffer[0] = '\0';
    return false;
}

static void CutLine(char *line, const char *mark) {
    if (char *at = strstr(line, mark)) *at = '\0';
}

// Takes comments out of the text, which may pull further lines in behind it; false for one that nothing
// closes.
static bool StripComments(std::string &text) {
    char buffer[INPUT_LINE];
    size_t start = 0;
    while ((start = text.find("/*", start)) != std::string::npos) {
        size_t end = text.find("*/", start + 2);
        if (end != std::string::npos) {
            text.erase(start, end + 2 - start);
            continue;
        }
        text.erase(start);
        if (!SkipComment(buffer)) return false;
        CutLine(buffer, "//");
        text += buffer;
    }
    return true;
}

// False if the file ends in a comment with nothing in front of it.
static bool FilterLine(char *buffer, std::string &text) {
    CutLine(buffer, "//");
    text = SkipSpace(buffer);
    bool flClosed = StripComments(text);
    text.erase(std::min(text.find_first_of("\r\n"), text.length()));
    return flClosed || !text.empty();
}

int GetLine() {
    char buffer[INPUT_LINE];
    LineCnt = 0;
    if (!pIn || !GetPhysLine(buffer)) return 0;
    std::string text = buffer;
    bool flLine = !flInputFilterState || FilterLine(buffer, text);
    size_t length = std::min<size_t>(text.length(), LINE_SIZE);
    memcpy(Line, text.data(), length);
    size_t clear = length < INPUT_LINE ? INPUT_LINE - length : 1;
    memset(Line + length, 0, std::min<size_t>(clear, LINE_SIZE + 1 - length));
    return flLine ? LineCnt : 0;
}

int GetLineN(int n) {
    int lines = 0;
    for (; n > 0; n--)
        if ((lines = GetLine()) == 0) break;
    return lines;
}

int GetLinePos(long offset) {
    if (!pIn || fseek(pIn, offset, SEEK_SET) != 0) return 0;
    return GetLine();
}

char *fgetsp(char *buffer, int size, FILE *in, long offset) {
    if (!in || fseek(in, offset, SEEK_SET) != 0) return nullptr;
    return fgets(buffer, size, in);
}

int GetFileContent(const char *path, const char *name) {
    return GetFileContentR(path, name, LineBuf, FILE_CONTENT);
}

int GetFileContentR(const char *path, const char *name, char *buffer, size_t size) {
    FILE *in = OpenStream(JoinPath(path, name).c_str(), "r");
    if (!in) return 0;
    size_t length = fread(buffer, 1, size, in);
    bool flFailed = length == 0 && ferror(in);
    buffer[length] = '\0';
    fclose(in);
    return flFailed ? 0 : 1;
}

// Reads to the end of the file, whatever its size was a moment ago. Null when memory is exhausted.
static char *ReadAll(int descriptor, size_t guess, size_t *size) {
    size_t capacity = guess + 1;
    auto *content = static_cast<char *>(GetMem(capacity));
    *size = 0;
    while (content) {
        ssize_t count = read(descriptor, content + *size, capacity - *size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) *size = 0;
        if (count <= 0) break;
        *size += static_cast<size_t>(count);
        if (*size < capacity) continue;
        auto *grown = static_cast<char *>(AdjustMem(content, capacity *= 2));
        if (!grown) PutMem(content);
        content = grown;
    }
    return content;
}

char *GetSavedFileContent(const char *path, const char *name) {
    SavedFileSize = 0;
    int descriptor = OpenPlain(JoinPath(path, name).c_str(), O_RDONLY);
    if (descriptor < 0) return nullptr;
    struct stat info;
    size_t guess = fstat(descriptor, &info) == 0 && info.st_size > 0 ? static_cast<size_t>(info.st_size) : 0;
    size_t size;
    char *content = ReadAll(descriptor, guess, &size);
    close(descriptor);
    if (!content || size == 0) {
        PutMem(content);
        return nullptr;
    }
    SavedFileSize = static_cast<long>(size);
    content[size == 1 ? 0 : size] = '\0'; // a single byte is the line end of an empty text
    return content;
}

// ---- Writing

int CreateTextFile(const char *path, const char *mode, int fileMode, const char *format, ...) {
    bool flWritten = false;
    if (FILE *out = OpenStream(path, mode)) {
        va_list args;
        va_start(args, format);
        flWritten = vfprintf(out, format, args) >= 0;
        va_end(args);
        if (fileMode && fchmod(fileno(out), static_cast<mode_t>(fileMode)) != 0) flWritten = false;
        if (fclose(out) != 0) flWritten = false; // a full disk shows only here
    }
    if (!flWritten) {
        fflush(stdout);
        fprintf(stderr, "ERROR: couldn't open %s\n", path ? path : "");
    }
    return flWritten;
}

// A file of root or of our own in a sticky directory stays what it is: nobody else can remove or rename it.
static bool IsFirmPlace(const char *path) {
    struct stat info;
    std::string directory(path, static_cast<size_t>(LastComponent(path) - path));
    if (stat(directory.c_str(), &info) != 0) return false;
    return (info.st_mode & S_ISVTX) || !(info.st_mode & (S_IWGRP | S_IWOTH));
}

bool IsOwnLog(const struct stat &info) {
    return S_ISREG(info.st_mode) && info.st_nlink == 1 && (info.st_uid == 0 || info.st_uid == geteuid());
}

// Opens the log for appending, never through a link, a pipe or a second name of a foreign file, and never one
// that somebody else could swap before the shell opens it by its name. O_CREAT stands here because the
// shell's ">>" has it too, and some hosts refuse just that in a world-writable directory.
static int OpenLogFile(const char *path) {
    int flags = O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    int descriptor = IsFirmPlace(path) ? open(path, flags, LOG_MODE) : -1;
    struct stat info;
    if (descriptor < 0) return -1;
    if (fstat(descriptor, &info) == 0 && IsOwnLog(info)) return descriptor;
    close(descriptor);
    return -1;
}

bool TestLogFile(const char *path) {
    int descriptor = OpenLogFile(path);
    if (descriptor >= 0) close(descriptor);
    return descriptor >= 0;
}

// The name is taken first: touch and chmod would follow a link that somebody sets up in between.
static void CreateLogFile(const char *path) {
    if (!IsFirmPlace(path)) return;
    int descriptor = open(path, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, LOG_MODE);
    if (descriptor < 0) return;
    close(descriptor);
    if (pOpenUpLog) pOpenUpLog(path);
}

static void WriteLog(const char *path, const std::string &text) {
    static bool flStarted;
    if (GetFileType(path) == TYPE_MISSING) CreateLogFile(path);
    int descriptor = OpenLogFile(path);
    if (descriptor >= 0 && !flStarted && ftruncate(descriptor, 0) != 0) {
        close(descriptor);
        descriptor = -1;
    }
    pLog = descriptor >= 0 ? fdopen(descriptor, "a") : nullptr;
    if (!pLog) {
        fprintf(stderr, "ERROR: couldn't open %s\n", path);
        return;
    }
    flStarted = true;
    fputs(text.c_str(), pLog);
    fclose(pLog);
    pLog = nullptr;
}

void PutLogMsg(const char *format, ...) {
    static bool flInside;
    if (!flUseLog || flInside) return;
    flInside = true;
    va_list args;
    va_start(args, format);
    std::string text = FormatV(format, args);
    va_end(args);
    pLogPath = "/tmp";
    WriteLog((std::string(pLogPath) + "/" + my_name + ".log").c_str(), ShowPlain(text));
    flInside = false;
}

// ---- The process and its host

// The next file that is opened takes the number of a closed standard stream: screens would be written into
// it, and lines read from it. An ignored SIGCHLD, which is inherited, would make each command look failed.
void InitProcess() {
    int file;
    do file = open("/dev/null", O_RDWR);
    while (file >= 0 && file <= STDERR_FILENO);
    if (file > STDERR_FILENO) close(file);
    signal(SIGCHLD, SIG_DFL);
}

char *GetEnv(const char *name) {
    const char *value = name ? getenv(name) : nullptr;
    return value ? SaveStr_(value) : nullptr;
}

char *GetHostname() {
    char buffer[HOST_NAME_MAX + 1];
    if (gethostname(buffer, sizeof(buffer)) != 0) return nullptr;
    buffer[sizeof(buffer) - 1] = '\0';
    return SaveStr_(buffer);
}

// The printer of a queue, and the job that the host's print system hands to a print tool.
#include "print/prnoutbase.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/Token.h"
#include "common/utils.h"
#include "print/MainUtils.h"
#include "print/QueFormat.h"

#include <climits>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <unistd.h>

enum {
    CONFIG_SET = 20,
    CONFIG_ENTRY = 112,
    CONFIG_OPEN = 113,
    CONFIG_NO_PRINTER = 114,
    CONFIG_UNKNOWN = 115
};
// ORDER OPTION_
enum { OPTION_TRAY2 = 1, OPTION_NO_GUI, OPTION_BEG_BANNER, OPTION_END_BANNER, OPTION_DEFAULT };

static constexpr char PrinterFile[] = "77yyprinters";
static constexpr char PrinterDelims[] = " \t\r\n";
static constexpr char ConfigDelims[] = " \t\n";
static constexpr char OptionWords[] =
    ",Tray2,NoGui,BannerPageAtBeginning,BannerPageAtEnd,Default,Tty,"; // ORDER OPTION_

char *pPrinterQueue;
char *pDefaultPrinterQueue;
char *pPrinterName;
char *pPSName;
char *pPrinterPath;
char *pPPDFile;
char *pPpdToolPath;
char *pConnType;
char *pLprQueName;
char *pSettings;
int flUseLpd;
int flUserInterface = 1;
int flFeatures;
int flTray2;
int flDefaultPrinter;
int flBannerPage;
int flBegBannerPage;
int flEndBannerPage;

char *pControlFile;
char **pFiles;
int FilesCnt;
char *pJobName;
char *pHostName;
char *pPerson;
char *pJobTitle;
int CopyCnt = 1;
int flLpdCopyCnt;
char *pInterface;
char *pReqId;
char *pOptions;
char *pSourceDir;

const char *pSpoolRoot = "/var/spool";

// Null is a value. The value may be the old text or lie in it.
static void SetText(char **text, const char *value) {
    char *old = *text;
    *text = value ? SaveStr_(value) : nullptr;
    PutMem(old);
}

static bool TestText(const char *text, const char *other) {
    return text && other && strcmp(text, other) == 0;
}

// Takes the next word off the line, by the rules of the token scanner but of any length; empty at the end.
static std::string TakeField(const char *&line, const char *delims) {
    char word[LINEBUF_SIZE];
    TokenScan scan = {line, word, sizeof word, '\0', false};
    if (ScanToken(&scan, delims) != SCAN_TOKEN) word[0] = '\0';
    line = scan.position;
    return word;
}

// ---- The database

static void ReadDefaultQueue() {
    char name[LINEBUF_SIZE];
    if (!GetQueDbText(QueDefaultKey, name, sizeof name)) return;
    SetText(&pDefaultPrinterQueue, name);
    if (!pPrinterQueue) SetText(&pPrinterQueue, name);
}

// Connection and spool path by QueueType; a type from a damaged record has neither.
static void SetConnection(const QueRecord *record) {
    const char *connection = nullptr;
    const char *path = record->printer;
    switch (record->type) {
    case QUEUE_PRINTER_HOST:
    case QUEUE_SERVER_HOST: connection = "NIS"; break;
    case QUEUE_SERVER: connection = flUseLpd ? "SERVER" : "NIS"; break;
    case QUEUE_PRINTER_DEVICE:
    case QUEUE_SERVER_DEVICE:
        connection = "DIRECT";
        if (!flUseLpd) path = GenDirName(path); // a device path holds slashes
        break;
    default: path = nullptr; break;
    }
    SetText(&pConnType, connection);
    SetText(&pPrinterPath, path);
}

// The record's settings become pSettings, which then owns them, unless an earlier queue had some.
static void TakeSettings(QueRecord *record) {
    if (pSettings)
        PutMem(record->settings);
    else
        pSettings = record->settings;
    record->settings = nullptr;
}

int ProcessDbmQue() {
    static QueRecord Record;
    ReadDefaultQueue();
    if (!pPrinterQueue || !GetQueDbEntry(&Record, pPrinterQueue)) return 0;
    TakeSettings(&Record);
    flUseLpd = Record.userInterface || Record.type == QUEUE_SERVER;
    SetText(&pPrinterName, Record.printer);
    SetText(&pPSName, Record.serverQueue);
    const char *tool = pToolPath ? pToolPath : "";
    SetText(&pPPDFile, (std::string(tool) + "/ppd/" + Record.ppdFile).c_str());
    SetText(&pPpdToolPath, tool);
    SetConnection(&Record);
    flUserInterface = Record.userInterface;
    flFeatures = Record.features;
    flBannerPage = flBegBannerPage = Record.banner;
    flEndBannerPage = flTray2 = 0;
    flDefaultPrinter = Record.isDefault;
    SetText(&pLprQueName, Record.lprQueue);
    return 1;
}

// ---- 77yyprinters

void SetPrinterOption(const char *word) {
    switch (FindToken(word, OptionWords)) { // Tty and unknown words do nothing
    case OPTION_TRAY2: flTray2 = 1; break;
    case OPTION_NO_GUI: flUserInterface = 0; break;
    case OPTION_BEG_BANNER: flBannerPage = flBegBannerPage = 1; break;
    case OPTION_END_BANNER: flBannerPage = flEndBannerPage = 1; break;
    case OPTION_DEFAULT: flDefaultPrinter = 1; break;
    default: break;
    }
}

// What an entry sets by its options, or can't tell at all.
static void ClearPrinterOptions() {
    flUseLpd = flFeatures = flTray2 = flDefaultPrinter = 0;
    flBannerPage = flBegBannerPage = flEndBannerPage = 0;
    flUserInterface = 1;
    SetText(&pPSName, nullptr);
    SetText(&pLprQueName, nullptr);
}

// The tool directory of a PPD: the one it lies in, or the one above if that is called ppd.
static std::string PpdToolDir(const char *ppd) {
    std::string directory = StripFn(ppd);
    if (strcmp(StripPath(directory.c_str()), "ppd") == 0) directory = StripFn(directory.c_str());
    return directory;
}

static void SetPrinterField(std::string printer) {
    size_t comma = printer.find(',');
    std::string path = comma == std::string::npos ? printer : printer.substr(comma + 1);
    printer.resize(comma == std::string::npos ? printer.size() : comma);
    SetText(&pPrinterName, printer.c_str());
    SetText(&pPrinterPath, path.empty() ? printer.c_str() : path.c_str());
}

// 0 if one of the fields is missing.
static int ReadConfigEntry() {
    const char *line = LineBuf;
    std::string queue = TakeField(line, PrinterDelims);
    std::string printer = TakeField(line, PrinterDelims);
    std::string ppd = TakeField(line, PrinterDelims);
    std::string type = TakeField(line, PrinterDelims);
    if (type.empty()) return 0;
    ClearPrinterOptions();
    if (!pPrinterQueue) SetText(&pPrinterQueue, queue.c_str());
    SetPrinterField(printer);
    SetText(&pPPDFile, ppd.c_str());
    SetText(&pPpdToolPath, PpdToolDir(ppd.c_str()).c_str());
    SetText(&pConnType, type.c_str());
    for (std::string word; !(word = TakeField(line, PrinterDelims)).empty();) SetPrinterOption(word.c_str());
    return 1;
}

[[noreturn]] static void FailConfig(const char *message) {
    fflush(stdout);
    fputs(message, stderr);
    exit_app(0);
}

void ProcessConfigEntry() {
    if (!ReadConfigEntry()) FailConfig("Error: invalid printer configuration file entry\n");
}

// 1 if the line in LineBuf is the queue's; it may tell the default queue before.
static int ReadPrinterLine() {
    const char *line = LineBuf;
    std::string name = TakeField(line, PrinterDelims);
    if (name.empty()) return 0;
    if (strstr(LineBuf, " Default")) {
        SetText(&pDefaultPrinterQueue, name.c_str());
        if (!pPrinterQueue) SetText(&pPrinterQueue, name.c_str());
    }
    return TestText(pPrinterQueue, name.c_str());
}

// 1 with pIn open; 0 without such a file, -1 if it can't be opened.
static int OpenPrinterFile() {
    std::string parent = StripFn(pToolPath);
    std::string path = parent + (parent == "/" ? "" : "/") + PrinterFile;
    if (!FindFile(parent.c_str(), PrinterFile)) return 0;
    return OpenInputFile(path.c_str(), ERR_SILENT) ? 1 : -1;
}

static int SearchPrinterFile() {
    int opened = OpenPrinterFile();
    if (opened < 0) FailConfig("Error: couldn't open printer config file 77yyprinters\n");
    int flFound = 0;
    while (opened && GetFileLine()) {
        if (!ReadPrinterLine()) continue;
        ProcessConfigEntry();
        flFound = 1;
    }
    return flFound;
}

int FindPrinter(const char *queue) {
    const char *position = GetTokenBufInput();
    char del = chTokenDel;
    SetText(&pPrinterQueue, queue); // first: the name may be the default queue's own
    SetText(&pDefaultPrinterQueue, nullptr);
    int flFound = ProcessDbmQue() || SearchPrinterFile();
    SetTokenBuf(position);
    chTokenDel = del;
    return flFound;
}

// ---- The print tools' configuration

[[noreturn]] static void FailConfigText(int number) {
    fflush(stdout);
    Nlsfprintf(stderr, pDrvCoreDB, CONFIG_SET, number);
    exit_app(0);
}

// The old text is left alone: the program may have pieces of it elsewhere.
static void SetToolPath(const char *path) {
    pToolPath = SaveStr_(path);
}

static int OpenConfig() {
    if (!OpenInputFile("./.config", ERR_SILENT) || !GetFileLine()) return 0;
    CloseInputFile();
    return 1;
}

static int ReadConfig() {
    const char *line = LineBuf;
    std::string queue = TakeField(line, ConfigDelims);
    std::string tool = TakeField(line, ConfigDelims);
    if (tool.empty()) return 0;
    SetText(&pPrinterQueue, queue.c_str());
    SetToolPath(tool.c_str());
    return 1;
}

static void InitConfig(int flags) {
    if (flags & CONFIG_READ) {
        if (!OpenConfig()) FailConfigText(CONFIG_OPEN);
        if (!ReadConfig()) FailConfigText(CONFIG_ENTRY);
        return;
    }
    char directory[PATH_MAX];
    if (flToolCfg == 0 && getcwd(directory, sizeof directory)) SetToolPath(directory);
}

// The named queue in both sources, then the default queue. 1 if found; else pPrinterQueue names what was
// looked for, so that the message can.
static int FindConfigPrinter() {
    if (ProcessDbmQue()) return 1;
    char *queue = pPrinterQueue ? SaveStr_(pPrinterQueue) : nullptr;
    int flFound = (queue && FindPrinter(queue)) || FindPrinter(nullptr);
    if (!flFound && queue) SetText(&pPrinterQueue, queue);
    PutMem(queue);
    return flFound;
}

int GetConfig(int flags) {
    InitConfig(flags);
    SetText(&pDefaultPrinterQueue, nullptr);
    constexpr int silent = CFG_DIRECT | CFG_NO_DB;
    if ((flToolCfg & silent) == silent) return 1;
    if (FindConfigPrinter()) return 0;
    fflush(stdout);
    if (!pPrinterQueue && !pDefaultPrinterQueue)
        Nlsfprintf(stderr, pDrvCoreDB, CONFIG_SET, CONFIG_NO_PRINTER);
    else
        Nlsfprintf(stderr, pDrvCoreDB, CONFIG_SET, CONFIG_UNKNOWN,
                   static_cast<const char *>(pPrinterQueue ? pPrinterQueue : ""));
    if (!(flags & CONFIG_NO_EXIT)) exit_app(0);
    return 1;
}

char *GetSpoolPath(const char *ppd, const char *path) {
    std::string tool = PpdToolDir(ppd);
    return SaveStr("%s/%s/%s%s%s", pSpoolRoot, SPOOL_FAMILY, StripPath(tool.c_str()), path ? "/" : "",
                   path ? path : "");
}

char *GenDirName(const char *path) {
    static char buffer[PATH_MAX];
    snprintf(buffer, sizeof buffer, "%s", path ? path : "");
    for (char *at = buffer; (at = strchr(at, '/')) != nullptr;) *at = '_';
    return buffer;
}

int FindOption(int value, const int *table) {
    if (value < 0) return 0;
    for (int i = 0; table && table[i] >= 0; i++)
        if (table[i] == value) return i + 1;
    return 1;
}

// ---- The control file

static void SetCopyCnt(const char *text) {
    long count = strtol(text, nullptr, 10);
    if (count <= 1) return;
    CopyCnt = count > INT_MAX ? INT_MAX : static_cast<int>(count);
    flLpdCopyCnt = 1;
}

static void ClearJob() {
    for (char **text : {&pJobName, &pHostName, &pPerson, &pJobTitle}) SetText(text, nullptr);
    for (int i = 0; i < FilesCnt; i++) PutMem(pFiles[i]);
    PutMem(pFiles);
    pFiles = nullptr;
    FilesCnt = 0;
    CopyCnt = 1;
    flLpdCopyCnt = 0;
}

// A line without its line end; what is too long for the buffer is read over, for it is no line of its own.
static bool ReadControlLine(FILE *in, char (&line)[CONTROL_LINE]) {
    size_t length = 0;
    int ch = getc(in);
    if (ch == EOF) return false;
    for (; ch != EOF && ch != '\n'; ch = getc(in))
        if (length < sizeof line - 1) line[length++] = static_cast<char>(ch);
    line[length] = '\0';
    line[strcspn(line, "\r")] = '\0';
    return true;
}

static char **FindControlText(char letter) {
    switch (letter) { // other lines are none of ours
    case 'H': return &pHostName;
    case 'P': return &pPerson;
    case 'J': return &pJobName;
    case 'T': return &pJobTitle;
    default: return nullptr;
    }
}

static void ProcessControlLine(const char *line) {
    const char *value = *line ? SkipSpace(line + 1) : line;
    char **text = FindControlText(*line);
    if (text && !*text) SetText(text, value);
    if (*line == '#') SetCopyCnt(value);
    if (*line == 'f') pFiles[FilesCnt++] = GenFullName(value);
}

static void ReadControlFile(FILE *in) {
    char line[CONTROL_LINE];
    size_t count = 0;
    while (ReadControlLine(in, line)) count += *line == 'f';
    pFiles = static_cast<char **>(GetMem((count + 1) * sizeof *pFiles));
    if (!pFiles) SysError("%s", OutOfMem);
    rewind(in);
    while (ReadControlLine(in, line))
        if (*line != 'f' || static_cast<size_t>(FilesCnt) < count) ProcessControlLine(line);
}

[[noreturn, gnu::format(printf, 2, 3)]] static void FailJob(int status, const char *format, ...) {
    va_list args;
    va_start(args, format);
    fflush(stdout);
    vfprintf(stderr, format, args);
    va_end(args);
    exit_app(status);
}

// The second line of ./lock; 0 without one.
static int ReadLockFile(FILE *in) {
    char line[CONTROL_LINE];
    if (!ReadControlLine(in, line) || !ReadControlLine(in, line) || !*line) return 0;
    SetText(&pControlFile, line);
    return 1;
}

void GetFileInfo() {
    FILE *in = OpenFile(nullptr, "./lock", "r", ERR_SILENT);
    if (!in) FailJob(1, "Error: couldn't open lock file\n");
    int flName = ReadLockFile(in);
    fclose(in);
    if (!flName) FailJob(0, "Error: no filename in lock file\n");
    in = OpenFile(nullptr, pControlFile, "r", ERR_SILENT);
    if (!in) FailJob(0, "Error: couldn't open print control file '%s'\n", pControlFile);
    ClearJob();
    ReadControlFile(in);
    fclose(in);
}

// ---- The job's host and environment

// "dir/123-1" and "dir/1234" give "dir/r-1" and "dir/r".
static std::string GenRequestName(const char *file) {
    std::string name = StripPath(file);
    size_t dash = name.find('-');
    size_t place = dash == std::string::npos ? name.size() : dash;
    std::string rest = dash == std::string::npos ? "" : name.substr(place);
    return std::string(StripFn(file)) + "/r" + rest;
}

void GetRequestHost() {
    if (pHostName) return;
    std::string request = FilesCnt > 0 ? GenRequestName(pFiles[0]) : "";
    char *text = request.empty() ? nullptr : GetSavedFileContent(request.c_str(), nullptr);
    if (const char *host = text ? strstr(text, "\nH ") : nullptr) {
        host += 3;
        SetText(&pHostName, std::string(host, strcspn(host, "\r\n")).c_str());
    }
    PutMem(text);
    if (!pHostName) pHostName = GetHostname();
}

// "person@host", "host!person", or a person.
static void SetUserName(const char *user) {
    SetText(&pPerson, user);
    SetText(&pHostName, nullptr);
    const char *at = user ? strchr(user, '@') : nullptr;
    const char *mark = user && !at ? strchr(user, '!') : nullptr;
    if (at) {
        SetText(&pPerson, std::string(user, at).c_str());
        SetText(&pHostName, at + 1);
    } else if (mark) {
        SetText(&pHostName, std::string(user, mark).c_str());
        SetText(&pPerson, mark + 1);
    }
}

void GetInterfaceEnvArgs() {
    SetText(&pInterface, getenv("PrnOutPrinter"));
    if (pInterface) SetText(&pPrinterQueue, StripPath(pInterface));
    SetText(&pReqId, getenv("PrnOutRequest_id"));
    SetUserName(getenv("PrnOutUser_name"));
    SetText(&pJobTitle, getenv("PrnOutTitle"));
    const char *copies = getenv("PrnOutCopies");
    if (copies) SetCopyCnt(copies);
    SetText(&pOptions, getenv("PrnOutOption_list"));
}

// ---- File names

static char *LocateHome(const char *path) {
    const char *home = getenv("HOME");
    if (!home) ErrorMsg(ERR_FATAL, 1, "Environment variable HOME has not been defined.\n");
    if (path[1] != '/') ErrorMsg(ERR_FATAL, 1, "'/' was expected after'~' in %s\n", path);
    if (!path[2]) ErrorMsg(ERR_FATAL, 1, "a filename was expected after\"~/\" in %s\n", path);
    return SaveStr("%s/%s", home, path + 2);
}

char *LocatePath(const char *path) {
    if (*path == '/') return SaveStr_(path);
    if (*path == '~') return LocateHome(path);
    const char *source = pSourceDir ? pSourceDir : ".";
    return SaveStr("%s/%s", source, strncmp(path, "./", 2) == 0 ? path + 2 : path);
}

char *LocateLink(const char *path, const char *line) {
    const char *arrow = strrchr(line, '>');
    if (!arrow) return SaveStr_(path);
    arrow = SkipSpace(arrow + 1);
    std::string target(arrow, strcspn(arrow, "\r\n"));
    if (target.compare(0, 1, "/") == 0) return SaveStr_(target.c_str());
    if (target.compare(0, 2, "./") == 0)
        target.erase(0, 2);
    else if (target.compare(0, 3, "../") == 0)
        target.erase(0, 3);
    if (!strchr(path, '/')) return SaveStr_(target.c_str());
    std::string directory = StripFn(path);
    return SaveStr_((directory + (directory == "/" ? "" : "/") + target).c_str());
}

// The line of ls for the file, or null if there is none. Some hosts print the error with the lines.
static char *ListFile(const char *path) {
    char *line = GetCmdResponseStr(CMD_LS, nullptr, "-lda %s 2>/dev/null", ShArg(path).c_str());
    if (!line || strncmp(line, "ls:", 3) != 0 || !strstr(line, "No such file")) return line;
    PutMem(line);
    return nullptr;
}

// Takes the name over. Owns: an empty text.
static char *RefuseName(const char *problem, char *name) {
    fflush(stdout);
    fprintf(stderr, "%s %s\n", problem, name);
    PutMem(name);
    return SaveStr_("");
}

char *GenFullName(const char *path) {
    char *name = LocatePath(path);
    for (int step = 0; step <= LINK_STEPS; step++) {
        char *line = ListFile(name);
        char type = line ? *line : '\0';
        char *target = type == 'l' ? LocateLink(name, line) : nullptr;
        PutMem(line);
        if (type == '\0') break;
        if (type == 'd') return RefuseName("Can't print directory", name);
        if (type != 'l') return name;
        PutMem(name);
        name = target;
    }
    return RefuseName("Can't locate", name);
}

// ---- The output file

static FILE *pOutput;
static char *pOutputName; // managed: mode and path of the open file

void CloseOutputFile() {
    if (pOutput) fclose(pOutput);
    pOutput = nullptr;
    SetText(&pOutputName, nullptr);
    FileStatus = FILE_ENDED;
}

static int OpenOutputFile(const char *path, const char *mode) {
    std::string name = std::string(mode) + " " + path;
    if (pOutput && name == pOutputName) return 1;
    CloseOutputFile();
    pOutput = OpenFile(nullptr, path, mode, ERR_SILENT);
    FileStatus = pOutput ? FILE_OPEN : FILE_FAILED;
    if (pOutput) SetText(&pOutputName, name.c_str());
    return pOutput != nullptr;
}

// Flushed, so that the result is true of the file.
int PutFileLine(const char *path, const char *text, const char *mode) {
    if (!path || !text || !mode || !OpenOutputFile(path, mode)) return 0;
    return fputs(text, pOutput) >= 0 && fflush(pOutput) == 0;
}

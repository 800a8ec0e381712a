// What the host's ps, pkginfo, df, du, whoami and lpd tell: processes, packages, room on disk, the user.
#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/utils.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <strings.h>

static const char aBlanks[] = " \t\n";

// The n-th field of a line, counted from 1; empty if there are fewer. Leaves the token state alone.
static std::string_view GetField(const char *line, int n) {
    const char *p = line + strspn(line, aBlanks);
    while (--n > 0) {
        p += strcspn(p, aBlanks);
        p += strspn(p, aBlanks);
    }
    return {p, strcspn(p, aBlanks)};
}

// Owns: " a b c " of the fields, or null for none.
static char *CloseIdList(const std::string &list) {
    return list.empty() ? nullptr : SaveStr_((list + " ").c_str());
}

char *GetSysPsIdList(const char *name) {
    if (IsEmpty(name)) return nullptr;
    std::string list;
    ResponseNode *lines = GetCmdResponse(CMD_PS, name, "%s", "");
    for (ResponseNode *node = lines; node; node = node->next)
        if (GetField(node->text, 4) == name) list.append(" ").append(GetField(node->text, 1));
    FreeResponseList(lines);
    return CloseIdList(list);
}

char *CheckProcTableForExecs(const char *names) {
    if (!names) return nullptr;
    std::string running;
    for (const char *p = names + strspn(names, ","); *p; p += strspn(p, ",")) {
        std::string name(p, strcspn(p, ","));
        if (char *list = GetSysPsIdList(name.c_str())) {
            running += name + " (" + list + ")\n";
            PutMem(list);
        }
        p += name.length();
    }
    return running.empty() ? nullptr : SaveStr_(running.c_str());
}

int KillProcessByName(const char *name) {
    char *list = GetSysPsIdList(name);
    char *p = list;
    while (p && *(p += strspn(p, " "))) {
        long id = strtol(p, nullptr, 10);
        // The heading line of ps yields 0 for its own words: that would be the caller's process group.
        if (id > 1 && kill(static_cast<pid_t>(id), SIGKILL) != 0 && errno == EPERM) break;
        p += strcspn(p, " ");
    }
    PutMem(list);
    pSleep(1);
    return 0;
}

char *GetSysPkgList(const char *filter) {
    std::string list;
    ResponseNode *lines = GetCmdResponse(CMD_PKGINFO, filter, "%s", "");
    for (ResponseNode *node = lines; node; node = node->next) {
        std::string_view package = GetField(node->text, 2);
        if (!package.empty()) list.append(" ").append(package);
    }
    FreeResponseList(lines);
    return CloseIdList(list);
}

// Column of the heading that begins with "avail", counted from 1; 0 if there is none.
static int FindAvailColumn(const char *heading) {
    for (int column = 1;; column++) {
        std::string_view field = GetField(heading, column);
        if (field.empty()) return 0;
        if (field.length() >= 5 && strncasecmp(field.data(), "avail", 5) == 0) return column;
    }
}

static int ReadDiskRecord(const ResponseNode *lines, DiskRecord *record) {
    int column = lines ? FindAvailColumn(lines->text) : 0;
    if (column == 0 || !lines->next) return 0;
    snprintf(record->line, sizeof(record->line), "%s", lines->next->text);
    std::string_view field = GetField(lines->next->text, column);
    if (field.empty()) return 0;
    record->available = strtod(std::string(field).c_str(), nullptr);
    return 1;
}

int GetDiskSpace(const char *path, DiskRecord *record) {
    record->available = 0;
    if (IsEmpty(path)) return 0;
    ResponseNode *lines = GetCmdResponse(CMD_DF, nullptr, "%s", ShArg(path).c_str());
    int result = ReadDiskRecord(lines, record);
    FreeResponseList(lines);
    return result;
}

int AvailSpace(const char *directory, const char *file, double needed) {
    DiskRecord record = {};
    if (IsEmpty(directory)) return 0;
    if (file && *file && FindFile(directory, file)) {
        GetDiskSpace(directory, &record);
        return record.available + DUPath((std::string(directory) + "/" + file).c_str()) >= needed;
    }
    std::string place = directory;
    while (!GetDiskSpace(place.c_str(), &record)) {
        std::string parent = StripFn(place.c_str());
        if (parent == place) return 0; // "/" and "." are their own parents
        place = parent;
    }
    return record.available >= needed;
}

double DUPath(const char *path) {
    if (IsEmpty(path)) return 0;
    ResponseNode *lines = GetCmdResponse(CMD_DU, nullptr, "%s", ShArg(path).c_str());
    double size = lines ? strtod(lines->text, nullptr) : 0;
    FreeResponseList(lines);
    return size;
}

// ---- The process and its host

static char *AskWhoami(const char *command) {
    char buffer[LINEBUF_SIZE];
    fflush(stdout);
    FILE *stream = pPopen(command, "re");
    if (!stream) return nullptr;
    if (!fgets(buffer, sizeof(buffer), stream)) buffer[0] = '\0';
    pPclose(stream);
    buffer[strcspn(buffer, "\r\n")] = '\0';
    return SaveStr_(buffer);
}

char *GetUserName() {
    if (char *command = GetCmd(CMD_WHOAMI)) {
        char *user = AskWhoami(command);
        PutMem(command);
        return user;
    }
    uid_t id = getuid();
    return id == 0 ? SaveStr_("root") : SaveStr("User ID:  %d", static_cast<int>(id));
}

void SysCmdP(int mode, const char *format, ...) {
    va_list args;
    va_start(args, format);
    std::string line = FormatV(format, args);
    va_end(args);
    bool flReport = mode == 1 || mode == 2;
    if (flReport) printf("%s\n", line.c_str());
    fflush(stdout);
    errno = 0;
    int status = pSystem(line.c_str());
    if (flReport && status != 0 && status >> 7 != 4) { // 4: the shell's exit code 2
        if (errno == 0) errno = EIO;
        perror(my_name);
        if (mode == 2) exit_app(1);
    }
    pSystem("/usr/bin/sleep 1");
}

int SniffLprng() {
    if (!TestCmd(CMD_LPD)) return 0;
    ResponseNode *answer = GetCmdResponse(CMD_LPD, "LPRng", " -V 2>&1");
    FreeResponseList(answer);
    return answer != nullptr;
}

int SniffCUPS() {
    if (!TestCmd(CMD_PS)) return 0;
    char *running = CheckProcTableForExecs("cupsd");
    PutMem(running);
    return running != nullptr;
}

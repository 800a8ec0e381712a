// Queue records, queue lists and the marker file.
#include "print/MainUtils.h"

#include "common/Dbm.h"
#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/Token.h"
#include "common/Words.h"
#include "common/utils.h"
#include "print/QueFormat.h"
#include "print/Told.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <unistd.h>
#include <unordered_set>

static constexpr char OldConfig[] = "77yyprinters";
static constexpr char QueWordDelims[] = " :\t\n";
static constexpr char ConfigDelims[] = " \t\r\n";

int flToolCfg;
char *pQueListTold;

static void SetField(char *field, size_t width, std::string_view value) {
    size_t count = value.copy(field, width - 1);
    field[count] = '\0';
}

// ---- Records

// Data of a record with a NUL behind it, in a buffer that the next call overwrites; null if absent or empty.
static char *GetQueDbData(const std::string &key, size_t *size) {
    static char Data[DBM_BUFFER + 1];
    int count = DbmGetRecord(QueDb, key.c_str(), Data, DBM_BUFFER);
    if (count <= 0) return nullptr;
    *size = std::min<size_t>(static_cast<size_t>(count), DBM_BUFFER);
    Data[*size] = '\0';
    return Data;
}

size_t GetQueDbText(const char *key, char *buffer, size_t capacity) {
    size_t size;
    const char *data = GetQueDbData(key, &size);
    SetField(buffer, capacity, data ? data : "");
    return strlen(buffer);
}

int TestDefaultQueue(const char *name) {
    size_t size;
    const char *data = GetQueDbData(QueDefaultKey, &size);
    return data && *name && strcmp(data, name) == 0;
}

// A field beyond a token's length is cut there, as by all who read the records.
static void CopyQueField(char *field, size_t width, const std::string &value) {
    SetField(field, std::min<size_t>(width, TOKEN_SIZE), value);
}

static void CopyQueFields(QueRecord *record, const QueFields &fields) {
    CopyQueField(record->name, sizeof record->name, fields.name);
    CopyQueField(record->printer, sizeof record->printer, fields.printer);
    CopyQueField(record->lprQueue, sizeof record->lprQueue, fields.remote);
    CopyQueField(record->ppdFile, sizeof record->ppdFile, fields.ppd);
    record->type = fields.type;
    record->banner = static_cast<unsigned char>(fields.banner);
    record->userInterface = static_cast<unsigned char>(fields.userInterface);
    record->features = static_cast<unsigned char>(fields.features);
    record->lpd = static_cast<unsigned char>(fields.lpd);
}

int GetQueDbEntry(QueRecord *record, const char *name) {
    if (!record || !name || strchr(name, ' ')) return 0;
    memset(Line, 0, sizeof Line);
    if (DbmGetRecord(QueDb, name, Line, LINE_SIZE) <= 0) return 0;
    PutMem(record->settings);
    memset(record, 0, sizeof *record);
    CopyQueFields(record, ReadQueFields(Line));
    size_t size;
    if (const char *data = GetQueDbData(QueSettingsKey(name), &size)) {
        record->settings = static_cast<char *>(GetMem(size + 1));
        if (!record->settings) SysError("%s", OutOfMem);
        memcpy(record->settings, data, size);
    }
    GetQueCountWords(record->printer, record->serverQueue, nullptr, sizeof record->serverQueue);
    record->isDefault = static_cast<unsigned char>(TestDefaultQueue(record->name));
    return 1;
}

int GenQueDbEntry(QueRecord *record) {
    std::string text = MakeQueText({.name = record->name,
                                    .printer = record->printer,
                                    .remote = record->lprQueue,
                                    .ppd = record->ppdFile,
                                    .type = record->type,
                                    .banner = record->banner,
                                    .userInterface = record->userInterface,
                                    .features = record->features,
                                    .isDefault = record->isDefault,
                                    .lpd = record->lpd});
    int done = DbmPutRecord(QueDb, record->name, text.c_str(), text.size() + 1);
    if (!done || !record->settings || !*record->settings) return done;
    return DbmPutRecord(QueDb, QueSettingsKey(record->name).c_str(), record->settings,
                        strlen(record->settings));
}

int GetQueCountWords(const char *printer, char *first, char *second, size_t capacity) {
    size_t size = 0;
    const char *data = GetQueDbData(QueCountKey(printer), &size);
    std::string_view words(data && size > QUE_COUNT_FIELD ? data + QUE_COUNT_FIELD : "");
    std::string_view one, two;
    TakeWord(words, " ", one);
    TakeWord(words, " ", two);
    if (first) SetField(first, capacity, one);
    if (second) SetField(second, capacity, two);
    return !one.empty();
}

// ---- Marker file

static int GetHostKind(const char *words) {
    if (FindToken("LPRng", words)) return CFG_LPRNG;
    if (FindToken("AIX", words)) return CFG_AIX;
    if (FindToken("BSD", words)) return CFG_BSD;
    return FindToken("V5", words) || !FindToken("CUPS", words) ? CFG_V5 : CFG_CUPS;
}

void SetConfigFlags() {
    if (!GetFileContent(pToolPath, ".pn_cfg")) {
        flToolCfg = CFG_V5 | (SniffLprng() ? CFG_LPRNG : 0);
        return;
    }
    size_t length = strlen(LineBuf);
    while (length > 1 && strchr("\r\n", LineBuf[length - 1]))
        LineBuf[--length] = '\0'; // an editor's final line feed
    flToolCfg = GetHostKind(LineBuf);
    if (FindToken("Direct", LineBuf) || FindToken("StandAlone", LineBuf)) flToolCfg |= CFG_DIRECT;
    if (FindToken("NoDb", LineBuf)) flToolCfg |= CFG_NO_DB;
}

int TestConfigFlag(const char *file) {
    return file && *file ? FindFile(pToolPath, file) : 0;
}

// ---- Queue lists

static void SetQueListTold(const std::string &told) {
    PutMem(pQueListTold);
    pQueListTold = told.empty() ? nullptr : SaveStr_(told.c_str());
}

std::string GetToolFault(const char *program) {
    std::string path = std::string(pToolPath) + "/" + program;
    if (access(path.c_str(), X_OK) == 0) return "";
    const char *reason = strerror(errno);
    return path + ": " + reason;
}

std::string GetQueToolFault() {
    return GetToolFault("prnqtool");
}

char *GetQueList() {
    std::string fault = GetQueToolFault();
    ToldEar ear;
    ResponseNode *lines = GetCmdResponse(CMD_QUIET, nullptr, "%s/prnqtool -LQ", ShArg(pToolPath).c_str());
    std::string names;
    for (ResponseNode *line = lines; line; line = line->next)
        if (const char *name = GetToken(line->text, QueWordDelims)) names += std::string(",") + name;
    FreeResponseList(lines);
    SetQueListTold(fault.empty() ? ear.Text() : fault);
    if (names.empty()) return nullptr;
    char *list = SaveStr_(names.c_str());
    SortTokens(list, ',', 1);
    return list;
}

char *AddQToList(char *list, const char *name, size_t *length) {
    if (list && FindToken(name, list)) return list;
    size_t count = strlen(name); // a blank comes on top, a NUL, and the byte that sorting may take
    list = static_cast<char *>(AdjustMem(list, *length + count + 2));
    if (!list) SysError("%s", OutOfMem);
    list[*length] = ' ';
    memcpy(list + *length + 1, name, count + 1);
    *length += count + 1;
    return list;
}

typedef std::unordered_set<std::string> QueNames;

static char *AddDbQueues(char *list, const QueNames &host, size_t *length) {
    char *keys = DbmGetRecordList(QueDb, ",", "");
    std::string_view rest(keys ? keys : "");
    for (std::string_view word; TakeWord(rest, ",", word);) {
        std::string key(word);
        if (IsQueKey(key) && host.count(key)) list = AddQToList(list, key.c_str(), length);
    }
    PutMem(keys);
    return list;
}

static char *AddConfigQueues(char *list, const QueNames &host, size_t *length) {
    std::string parent = StripFn(pToolPath);
    if (!FindFile(parent.c_str(), OldConfig)) return list;
    if (!OpenInputFileF(ERR_SILENT, "%s/%s", parent.c_str(), OldConfig)) {
        fprintf(stderr, "Error: couldn't open printer config file %s\n", OldConfig);
        return list;
    }
    while (GetFileLine()) {
        std::string_view line(LineBuf), word;
        TakeWord(line, ConfigDelims, word);
        std::string name(word);
        if (host.count(name)) list = AddQToList(list, name.c_str(), length);
    }
    return list;
}

char *GetQueueList() {
    char *all = GetQueList();
    if (!all) return nullptr;
    QueNames host;
    std::string_view rest(all);
    for (std::string_view name; TakeWord(rest, ",", name);) host.emplace(name);
    PutMem(all);
    size_t length = 0;
    char *list = AddDbQueues(nullptr, host, &length);
    return AddConfigQueues(list, host, &length);
}

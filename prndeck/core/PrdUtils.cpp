// The state of the whole process and the steps of its start.
#include "prndeck/core/Prd.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/Token.h"
#include "common/Version.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <string>
#include <unistd.h>

// How the catalogues are opened: the program's texts follow a new file, the large ones don't.
enum { DB_LIVE = 1 | DBT_NO_WRITE, DB_FIXED = DB_LIVE | DBT_NO_RELOAD };

char AppDir[PATH_MAX];
const char PrnOutCFG[] = "prnout";
char *pUser;
int flUserIsRoot;
int flWiz;
int flDiscOff;

void InitToolPath(const char *argv0) {
    pToolPath = GetToolPath(argv0);
    if (!pToolPath) pToolPath = SaveStr_("."); // the current directory has gone
    pLogPath = pToolPath;
    snprintf(AppDir, sizeof AppDir, "%s", pToolPath);
}

void OpenCatalogues() {
    if (!pDrvCoreDB) pDrvCoreDB = NlsOpenDB("CoreString", DB_LIVE);
    if (!pPrtHelpDB) pPrtHelpDB = NlsOpenDB("PrtHelp", DB_FIXED);
    if (!pPrtCoreDB) pPrtCoreDB = NlsOpenDB("PrtString", DB_FIXED);
}

void InitUser() {
    pUser = GetUserName();
    flUserIsRoot = pUser && strcmp(pUser, "root") == 0;
}

// ---- Words

// The enum counts the positions of the list.
static constexpr char Words[] = ",update,-tty,-wiz,-nd,-help,-d,-v,";
enum { WORD_UPDATE = 1, WORD_TTY, WORD_WIZ, WORD_ND, WORD_HELP, WORD_D, WORD_V };

void UpdatePrinters() {}

[[noreturn]] static void PrintVersion() {
    fprintf(stderr, "%s %s\n", my_name, PRN_VERSION);
    exit_app(0);
}

int ScanWords(int count, char **words) {
    int face = FACE_ANY;
    for (int i = 0; i < count; i++) {
        switch (FindToken(words[i], Words)) {
        case WORD_UPDATE: UpdatePrinters(); break;
        case WORD_TTY: face = FACE_TTY; break;
        case WORD_WIZ: flWiz = 1; break;
        case WORD_ND: flDiscOff = 1; break;
        case WORD_HELP: return FACE_HELP;
        case WORD_V: PrintVersion();
        default: break; // -d, and any word that isn't in the list
        }
    }
    return face;
}

char *GetManualName() {
    return SaveStr("%s/help/QBguide-%s.html", pToolPath, pNLSLang ? pNLSLang : "en_US");
}

// ---- Models

// A model's name as it stands in PpdModelList: a comma or backslash of its own must not split the list.
static std::string EscapeModel(const char *name) {
    std::string text;
    for (; *name; name++) {
        if (strchr(",\\", *name)) text += '\\';
        text += *name;
    }
    return text;
}

static std::string GetModelNames() {
    std::string models;
    char name[PPD_VALUE], file[NAME_MAX + 1];
    char *place = nullptr;
    for (char *in = PpdList; GetTokenD(in, " ", &place, file); in = nullptr) {
        if (!GetPpdKeyValue_Old(file, "ModelName", name, sizeof name)) continue;
        if (!models.empty()) models += ',';
        models += EscapeModel(name);
    }
    return models;
}

void LoadModels() {
    PpdList = GetPpdFileList();
    if (!PpdList) ErrorMsg(ERR_FATAL, 0, "\nUnable to locate ppd files ppd/* \n");
    SortTokens(PpdList, ' ', 1);
    std::string models = GetModelNames();
    snprintf(Line, sizeof Line, "%s", models.c_str());
    PpdModelList = SaveStr_(Line);
}

std::string GetModelName(int model) {
    const char *name = PpdModelList ? GetTokenN(PpdModelList, ",", model) : nullptr;
    return name ? name : "";
}

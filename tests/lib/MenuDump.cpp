#include "tests/lib/MenuDump.h"

#include "common/MenuState.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/Token.h"

#include <cstdio>
#include <cstring>
#include <stdexcept>

static const char *const TypeNames[] = {"text",   "1",        "2",        "bar",     "apply",
                                        "cancel", "exit",     "action",   "submenu", "pick",
                                        "bits",   "required", "optional", "integer", "float"};
static const char *const StateNames[] = {"", " disabled", " hidden"};

static std::string DumpValue(const TextMenuItem *item) {
    char number[64 + TOKEN_SIZE];
    char token[TOKEN_SIZE];
    const char *choice = GetChoice(item, item->value.i, token);
    switch (item->type) {
    case ITEM_PICK:
        snprintf(number, sizeof number, " %ld of %d '%s'", static_cast<long>(item->value.i), item->count,
                 choice ? choice : "");
        return number;
    case ITEM_BAR:
    case ITEM_BITS:
    case ITEM_INTEGER: return " " + std::to_string(item->value.i);
    case ITEM_FLOAT:
        snprintf(number, sizeof number, " %g", static_cast<double>(item->value.f));
        return number;
    case ITEM_REQUIRED:
    case ITEM_OPTIONAL: return item->value.s ? std::string(" '") + item->value.s + "'" : " none";
    default: return "";
    }
}

std::string DumpMenu(const TextMenu *menu) {
    std::string dump;
    for (int i = 0; menu->items[i].text != nullptr; i++) {
        const TextMenuItem *item = &menu->items[i];
        bool flLetter = item->text[0] == '~' && item->type > ITEM_BAR;
        std::string key =
            flLetter ? std::string(1, static_cast<char>(item->number)) : std::to_string(item->number);
        dump += std::to_string(i) + ": " + key + " " + TypeNames[item->type] + StateNames[item->state] +
                DumpValue(item) + "\n";
    }
    return dump;
}

static const struct {
    const char *key;
    const char *text;
} MenuTexts[] = {
    {"25_230", " or s for store settings in a file"},
    {"25_231", " or h for help"},
    {"25_232", " or <Return> to exit"},
    {"25_270", " ["},
    {"25_271", "default"},
    {"25_510", "Enter a selection%s%s%s: "},
    {"25_1000", "\nPress <Return> to continue "},
    {"25_1001", "Press <Return> to continue"},
    {"25_1002", "\n'%c' is not a valid name character. \n"
                "Only alphanumeric character, '-', and '_' are valid: \n"},
    {"25_1003", "This number must be between %i to %i."},
    {"25_1004", "This number must be between %x to %x."},
    {"25_1006", "Invalid character '%c'\nThis text may contain \"0123456789.\""},
    {"25_1007", "Invalid character '%c'\nThis text may contain \"abc..zABC..Z012..9%s\""},
    {"25_1008", "Invalid character '%c'\nThis text may contain \"abc..zABC..Z%s\""},
    {"25_1009", "Invalid entry \"%s\""},
    {"25_1010", "Invalid character %c\n%c was expected after \"%s\""},
    {"25_1011", "\nAll names must be set before applying setup.\nPress <Return> to continue"},
    {"25_1016", "reading from standard input"},
    {"25_1017", "\nDo you want to return to %s menu"},
    {"25_1018", "\nDo you want to exit %s"},
    {"25_1019", "This number must be between %f to %f."},
    {"25_1020", "Only one '.' may be entered."},
    {"25_1024", "This number must be between %Lg to %Lg."},
    {"30_42", "This entry must have %i to %i characters."},
    {"30_44", "This entry must have %i characters."},
};

void OpenMenuTexts() {
    pDrvCoreDB = DbTOpen("MenuTexts", DBT_NO_RELOAD | DBT_NO_WRITE);
    if (!pDrvCoreDB) throw std::runtime_error("no catalogue");
    for (const auto &row : MenuTexts)
        if (!DbmTPutRecord(pDrvCoreDB, row.key, row.text, strlen(row.text) + 1))
            throw std::runtime_error(row.key);
}

static int PrintClearMark(const char *) {
    fputs(ClearMark, stdout);
    return 0;
}

void CatchClear() {
    flInitSysCmd = 0;
    ComList[CMD_CLEAR].path = "/bin";
    ComList[CMD_SH].path = "/bin";
    pSystem = PrintClearMark;
}

std::string FoldScreens(const std::string &transcript) {
    static const std::string footer = "Enter a selection";
    std::string folded;
    size_t at = 0;
    for (size_t start; (start = transcript.find(ClearMark, at)) != std::string::npos;) {
        folded += transcript.substr(at, start - at) + "#";
        size_t end = transcript.find(footer, start);
        end = end == std::string::npos ? end : transcript.find(": ", end);
        at = end == std::string::npos ? transcript.size() : end + 2;
    }
    return folded + transcript.substr(at);
}

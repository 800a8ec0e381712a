#include "tests/lib/MenuDump.h"

#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/Token.h"
#include "menu/MenuState.h"

#include <cstdio>
#include <cstring>
#include <fstream>
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

// The text of a catalogue line behind its number, as the compiler of the catalogues takes it.
static std::string ReadText(std::string text) {
    if (text[0] == '"') text = text.substr(1, text.size() - 2);
    for (size_t at; (at = text.find("\\n")) != std::string::npos;) text.replace(at, 2, "\n");
    return text;
}

void OpenMenuTexts() {
    std::ifstream in(TESTS_LIB "/../../data/catalogue/en_US/CoreString.msg");
    pDrvCoreDB = DbTOpen("MenuTexts", DBT_NO_RELOAD | DBT_NO_WRITE);
    if (!in || !pDrvCoreDB) throw std::runtime_error("no catalogue");
    std::string set;
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with("$set ")) set = line.substr(5) + "_";
        size_t blank = line.find(' ');
        if ((set != "25_" && set != "30_") || blank == 0 || strspn(line.c_str(), "0123456789") != blank)
            continue;
        std::string key = set + line.substr(0, blank), text = ReadText(line.substr(blank + 1));
        if (!DbmTPutRecord(pDrvCoreDB, key.c_str(), text.c_str(), text.size() + 1))
            throw std::runtime_error(key);
    }
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

// Delete queues at the terminal.
#include "prndeck/tty/PrdTty.h"

#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/Words.h"
#include "common/utils.h"
#include "print/MainUtils.h"

#include <cstring>
#include <string>
#include <string_view>

enum { DELETE_PAUSE = 2 }; // seconds for the print system to settle

static constexpr char NameDelims[] = " \t,\n";

static void DeleteQueueTty(const std::string &name) {
    if (!pExistingPrinterList || !strstr(pExistingPrinterList, name.c_str())) {
        if (pQueListTold) return ShowToldTty(pQueListTold);
        PostMsg("\"%s\" is not an existing queue.", name.c_str());
        return;
    }
    PutLogMsg("\nRemoving Existing Printers \n");
    RunQueLineTty(MakeDeleteLine(name.c_str()));
}

// The shown list itself is the answer for all queues, behind its heading line.
static std::string GetAllQueues() {
    const char *list = pExistingPrinterList ? pExistingPrinterList : "";
    const char *heading = strchr(list, '\n');
    return heading ? heading + 1 : list;
}

static int ConfirmDelete(const std::string &names) {
    std::string question = NlsText(pDrvCoreDB, SET_TTY, TTY_DELETE_QUESTION);
    return PromptYN("%s", NlsFmt(question.c_str(), "s", names.c_str()).c_str());
}

static void DeleteQueuesTty() {
    std::string names = AskTty(TTY_DELETE_PROMPT);
    if (names[0] == '-') names = GetAllQueues();
    if (names.empty() || !ConfirmDelete(names)) return;
    std::string_view rest(names);
    for (std::string_view name; TakeWord(rest, NameDelims, name);) DeleteQueueTty(std::string(name));
    pSleep(DELETE_PAUSE);
    DropQueList();
}

int RemoveExistingPrinter(TextMenu *, TextMenuItem *) {
    DeleteQueuesTty();
    InitMainMenu(&MainMenu);
    return 0;
}

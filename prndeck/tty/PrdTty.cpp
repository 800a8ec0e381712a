// What the terminal's flows share: the questions for a queue, the run of a line, the state of the queue at
// hand.
#include "prndeck/tty/PrdTty.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/Report.h"
#include "common/SysCmd.h"
#include "common/Token.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "print/QueHost.h"

#include <arpa/inet.h>
#include <cstdio>
#include <cstring>
#include <unistd.h>

QueRecord MPS_tty;
char pModifyQueName[QUE_NAME];
char pCloneQueName[QUE_NAME];
int PrinterModelTty;

std::string AskTty(int prompt) {
    char answer[TTY_ANSWER] = "";
    PromptUser(NlsText(pDrvCoreDB, SET_TTY, prompt).c_str(), answer, sizeof answer);
    return answer;
}

int AskQueueTty(int prompt, const char *what, char *name) {
    if (ExistingTarvoPrinterCnt == 0 && pQueListTold) {
        ShowToldTty(pQueListTold);
        return 0;
    }
    if (ExistingTarvoPrinterCnt == 0) {
        PostMsg("There have been no queues created yet. Use the Add queue menu selection first.\n");
        return 0;
    }
    fputs(ShowPlain(pExistingTarvoPrinterList).c_str(), stdout);
    std::string answer = AskTty(prompt);
    if (answer.empty()) return 0;
    const char *text = answer.c_str();
    if (!pQueList || !strstr(pQueList, text)) {
        PostMsg("Queue \"%s\" does not exist\nRecreate %s using Add queue.\n", text, text);
        return 0;
    }
    // A name that doesn't fit would be cut to that of another queue.
    if (answer.size() >= QUE_NAME || !GetQueDbEntry(&MPS_tty, text)) {
        PostMsg("%s is not supported for this queue!!!!!\nRecreate %s using Add queue.\n", what, text);
        return 0;
    }
    snprintf(name, QUE_NAME, "%s", text);
    return 1;
}

// An IPv6 address needs no look-up, and what stands behind the host is the port.
static bool IsKnownHost(const char *host) {
    std::string name, port;
    if (!SplitQueHost(host, name, port)) return false;
    struct in6_addr address;
    if (name.front() == '[')
        return inet_pton(AF_INET6, name.substr(1, name.size() - 2).c_str(), &address) == 1;
    return pGethostbyname(name.c_str()) != nullptr;
}

int TestHostTty(const char *host) {
    if (IsKnownHost(host)) return 1;
    PostMsg("Unknown hostname %s", host);
    return 0;
}

void ShowToldTty(const std::string &told) {
    if (told.empty()) return;
    if (isatty(STDIN_FILENO))
        PostMsg("%s\n", told.c_str());
    else
        printf("%s\n", ShowPlain(told).c_str());
}

void ShowUnwrittenTty(const char *file) {
    std::string path = std::string(pToolPath) + "/" + file;
    std::string text = NlsText(pDrvCoreDB, SET_MESSAGES, MSG_UNWRITTEN);
    ShowToldTty(NlsFmt(text.c_str(), "s", path.c_str()));
}

// Without a redirection: the front end talks to the user on this terminal.
void RunFeaturesTty(const std::string &line) {
    std::string fault = GetToolFault(FrontEndProgram);
    SysCmd(CMD_QUIET, 1, "%s", line.c_str());
    ShowToldTty(fault);
}

void RunQueLineTty(const std::string &line) {
    std::string told;
    int status = RunQueLine(line, &told);
    ShowToldTty(told);
    if (status != STATUS_LPSCHED) return;
    PutMem(PromptUser("Error stopping lpsched.  See README for details.", nullptr, 0));
    StartLpsched();
}

const char *GetItemText(const TextMenuItem *items, int index) {
    return items[index].value.s ? items[index].value.s : "";
}

int GetItemChoice(const TextMenuItem *items, int index) {
    return static_cast<int>(items[index].value.i);
}

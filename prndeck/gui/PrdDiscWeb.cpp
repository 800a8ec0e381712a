// Web pages of printers.
#include "prndeck/gui/PrdDiscWeb.h"

#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "prndeck/core/Prd.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdDiscNets.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtUtils.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <netinet/in.h>
#include <poll.h>
#include <string>
#include <sys/socket.h>
#include <unistd.h>

enum { MSG_NO_BROWSER = 32, MSG_NO_COMMAND = 33, MSG_DOUBTFUL = 34, MSG_NOT_STORED = 24 };
static constexpr char WarningTitle[] = "Quillbrook Warning";

int flConnectTimedOut;
uint16_t BrowserPort = 80;

// ---- The web port

// No resolver for a dotted address.
static bool FindHost(const char *host, in_addr *address) {
    if (inet_aton(host, address)) return true;
    const hostent *found = pGethostbyname(host);
    if (!found || found->h_addrtype != AF_INET) return false;
    memcpy(address, found->h_addr_list[0], sizeof *address);
    return true;
}

static int MillisecondsUntil(const timespec &end) {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    long left = (end.tv_sec - now.tv_sec) * 1000 + (end.tv_nsec - now.tv_nsec) / 1000000;
    return left > 0 ? static_cast<int>(left) : 0;
}

// A timer's signal is no answer.
static bool WaitConnected(int file) {
    timespec end;
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += BROWSER_SECONDS;
    pollfd wait = {file, POLLOUT, 0};
    int ready;
    do ready = poll(&wait, 1, MillisecondsUntil(end));
    while (ready < 0 && errno == EINTR);
    flConnectTimedOut = ready == 0;
    int error = 0;
    socklen_t size = sizeof error;
    return ready > 0 && getsockopt(file, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

bool TestBrowser(const char *address) {
    flConnectTimedOut = 0;
    sockaddr_in peer = {};
    peer.sin_family = AF_INET;
    peer.sin_port = htons(BrowserPort);
    if (!FindHost(address, &peer.sin_addr)) return false;
    int file = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (file < 0) return false;
    bool flConnected = connect(file, reinterpret_cast<sockaddr *>(&peer), sizeof peer) == 0 ||
                       (errno == EINPROGRESS && WaitConnected(file));
    close(file);
    return flConnected;
}

// ---- The browser

// The shell starts the command in the background and says nothing of one that is not there. A word that only
// the shell understands is left to it.
static bool TestBrowserCommand(const std::string &command) {
    size_t start = command.find_first_not_of(" \t");
    if (start == command.npos) return false;
    std::string word = command.substr(start, command.find_first_of(" \t", start) - start);
    if (word.find_first_of("=\"'$`~(){}\\;&|<>*?[]!#") != word.npos) return true;
    return word.find('/') != word.npos ? access(word.c_str(), X_OK) == 0 : FindInPath(word);
}

bool InvokeWebBrowser(const char *address, const char *path) {
    in_addr word;
    if (!pPreferredWB || !inet_aton(address, &word) || !TestBrowserCommand(pPreferredWB)) return false;
    std::string line = std::string(pPreferredWB) + " http://" + address + path + " &";
    return pSystem(line.c_str()) == 0;
}

// What another user may have stored is not run by root before root has seen it.
static bool AskForBrowser() {
    if (!flUserIsRoot || !flBrowserDoubtful) return false;
    XmtPostMsg_(nullptr, NlsText(pDrvCoreDB, SET_WEB, MSG_DOUBTFUL).c_str());
    OpenBrowserChoice();
    return true;
}

void OpenWebPage() {
    if (!pCurPrnData || AskForBrowser()) return;
    BusyCursor busy("prndeck");
    if (InvokeWebBrowser(pCurPrnData->Address, "")) return;
    XmtPostMsg_(WarningTitle, NlsText(pDrvCoreDB, SET_WEB, MSG_NO_BROWSER).c_str());
    OpenBrowserChoice();
}

void GetProfile() {
    if (pCurPrnData && pCurPrnData->Flags & PRN_WEB) OpenWebPage();
}

void OpenBrowserChoice() {
    XmtSetText("brp", pPreferredWB);
    XmtShow("brw");
}

void SetBrowser() {
    char *command = XmtGetText("brp");
    if (!command || !*command)
        XmtPostMsg_(nullptr, NlsText(pDrvCoreDB, SET_WEB, MSG_NO_COMMAND).c_str());
    else if (!WriteBrowser(command))
        XmtPostMsg_(nullptr, NlsText(pDrvCoreDB, SET_WEB, MSG_NOT_STORED).c_str());
    XtFree(command);
}

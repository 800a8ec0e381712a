// Pages of the property sheet whose printer answers after 5 ms, beside the same questions asked by a bare
// loop over one socket.
#include "SnmpPkg/Encode.h"
#include "SnmpPkg/Pkg.h"
#include "bench/BenchDisplay.h"
#include "common/MemMgr.h"
#include "common/utils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/gui/PrdDiscWin.h"
#include "prndeck/gui/PrdGui.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiPanel.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtNewTab.h"
#include "xmt/XmtNewWin.h"

#include <algorithm>
#include <arpa/inet.h>
#include <chrono>
#include <fstream>
#include <sstream>
#include <sys/socket.h>
#include <vector>

enum { PORT = 21616, ROUNDS = 5 };
static const char Address[] = "127.71.1.11";
static const char Log[] = "/tmp/SheetBench.log";

using Clock = std::chrono::steady_clock;

static double Since(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// ---- the printer

static pid_t StartPrinter() {
    int pipes[2];
    char line[64];
    if (pipe(pipes) != 0) return 0;
    pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(pipes[1], STDOUT_FILENO);
        execl(BUILD_DIR "/tools/prnsim/prnsim", "prnsim", "-m", "10.71=127.71", "-p", "21616", "-k",
              "delay 5", "-l", Log, BENCH_DIR "/sheet.fleet", nullptr);
        _exit(1);
    }
    close(pipes[1]);
    ssize_t size = read(pipes[0], line, sizeof line);
    close(pipes[0]);
    return size > 0 ? child : 0;
}

// What it was asked so far.
static std::vector<std::string> ReadLog() {
    std::vector<std::string> names;
    std::ifstream in(Log);
    for (std::string line; std::getline(in, line);) {
        std::istringstream fields(line);
        std::string field;
        for (int i = 0; i < 7; i++) fields >> field;
        names.push_back(field);
    }
    return names;
}

// ---- both sides

static void Dispatch() {
    XSync(AppDisplay, 0);
    while (XtAppPending(AppContext)) {
        XtAppProcessEvent(AppContext, XtIMAll);
        XSync(AppDisplay, 0);
    }
}

static bool OpenSheet() {
    if (chdir(BUILD_DIR "/stage") != 0) return false;
    my_name = "prndeck";
    pToolPath = SaveStr_(BUILD_DIR "/stage");
    if (!XmtInitApp("prndeck", "prndeck", nullptr, nullptr)) return false;
    GenGui();
    XtRealizeWidget(AppShell);
    flInEventLoop = 1;
    PrnEntry *entry = ClaimPrnEntry();
    entry->Address = SaveStr_(Address);
    entry->Description = SaveStr_("Tarvo C650");
    SetPrinterSelectionData(0);
    XmtCallData data = {};
    data.id = SHEET_WINDOW;
    data.reason = XmtCR_DEFAULT;
    IPDiscoveryEventHandler(&data);
    Dispatch();
    return true;
}

static double TurnTo(const char *form, int tab) {
    auto start = Clock::now();
    XmtSelectTab(form, tab);
    Dispatch();
    return Since(start);
}

static double AskBare(const std::vector<std::string> &names) {
    char answer[2048];
    sockaddr_in to = {};
    to.sin_family = AF_INET;
    to.sin_port = htons(PORT);
    inet_aton(Address, &to.sin_addr);
    int fd = socket(AF_INET, SOCK_DGRAM, 0);
    auto start = Clock::now();
    for (const std::string &name : names) {
        PkgPacket packet;
        PkgVar var = {};
        var.Name = const_cast<char *>(name.c_str());
        PkgStartPacket(&packet);
        PkgEncodeGetVar(&packet, &var);
        PkgEncodePacketProlog(&packet, "rdcomm", 1, PDU_GET);
        sendto(fd, packet.Data + packet.Pos, static_cast<size_t>(packet.Len), 0,
               reinterpret_cast<sockaddr *>(&to), sizeof to);
        if (recv(fd, answer, sizeof answer, 0) <= 0) break;
    }
    double spent = Since(start);
    close(fd);
    return spent;
}

// The best of the rounds; another page is shown in between.
static void PageRow(const char *what, const char *form, int tab) {
    double ours = 1e9, bare = 1e9;
    size_t count = 0;
    for (int round = 0; round < ROUNDS; round++) {
        TurnTo(form, tab == 3 ? 2 : 3);
        size_t before = ReadLog().size();
        ours = std::min(ours, TurnTo(form, tab));
        std::vector<std::string> names = ReadLog();
        names.erase(names.begin(), names.begin() + static_cast<long>(before));
        bare = std::min(bare, AskBare(names));
        count = names.size();
    }
    printf("%-44s %9.1f ms %9.1f ms %7.2f   of %zu reads\n", what, ours, bare, ours / bare, count);
    fflush(stdout);
}

int main() {
    SnmpAgentPort = PORT;
    pid_t printer = StartPrinter();
    if (!printer || !StartServer() || !OpenSheet()) {
        printf("sheet: skipped, there is no Xvfb or simulator here\n");
        return 0;
    }
    PageRow("sheet: the console, answers after 5 ms", "sdbt2", 1);
    PageRow("sheet: eight input trays", "sdbt2", 2);
    PageRow("sheet: nine supplies", "sdbt2", 3);
    TurnTo("sdbt2", 6);
    PageRow("sheet: SNMP statistics", "ssntab", 4);
    kill(printer, SIGTERM);
    waitpid(printer, nullptr, 0);
    unlink(Log);
    StopServer();
    return 0;
}

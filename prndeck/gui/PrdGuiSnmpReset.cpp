// The reset of the selected printer.
#include "prndeck/gui/PrdGuiSnmpReset.h"

#include "common/NlsUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdGuiSnmpText.h"
#include "prndeck/core/PrdOids.h"
#include "prndeck/core/PrdSnmpRead.h"
#include "prndeck/core/PrdSnmpSet.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <iterator>

enum { POWER_CYCLE = 4 }; // prtGeneralReset
enum { LIGHT_PLACES = 10, LIGHT_SWEEP = 2 * LIGHT_PLACES };

const char *const ResetLight[] = {
    "#.........", ".#........", "..#.......", "...#......", "....#.....", ".....#....",
    "......#...", ".......#..", "........#.", ".........#", "..........",
};
time_t ResetStart;
int ResetTimerID = -1;
int ResetStatusCheckCount;

static void StopResetTimer() {
    if (ResetTimerID != -1) XmtStopTimer(ResetTimerID);
    ResetTimerID = -1;
}

void SetResetWaitLabelsForWaiting(int light) {
    enum { SECONDS = 60 };
    int elapsed = static_cast<int>(time(nullptr) - ResetStart);
    XmtSetLabelRaw("rwmsg", NlsFmt(pWaitMsg1, "ii", elapsed / SECONDS, elapsed % SECONDS).c_str());
    if (light >= 0 && light < RESET_LIGHTS) XmtSetLabelRaw("rwstat", ResetLight[light]);
}

static void EndResetWait(const char *message, const char *status) {
    StopResetTimer();
    XmtSetLabelRaw("rwmsg", message);
    XmtSetLabelRaw("rwstat", status);
}

// The light sweeps to the right and back, and stays for two looks at each end.
static int GetSweepLight(int count) {
    int place = count % LIGHT_SWEEP;
    return place < LIGHT_PLACES ? place : LIGHT_SWEEP - 1 - place;
}

static void WaitOn() {
    SetResetWaitLabelsForWaiting(GetSweepLight(++ResetStatusCheckCount));
}

int ResetStatusCheck(int, intptr_t, int, int, SnmpPackage *package, PkgSource *) {
    const PkgVar *console = &package->Vars[0];
    if (console->Status == SUCCESS && *console->RecText)
        EndResetWait(pWaitMsg2, BreakLines(GetPrinterText(console->RecText)).c_str());
    else
        WaitOn();
    return 0;
}

void ResetDeviceCheck(intptr_t) {
    static constexpr const char *Oids[] = {OidConsoleText, nullptr};
    if (ResetStatusCheckCount >= RESET_TICKS || !pCurPrnData) return EndResetWait(pWaitErr1, pWaitErr2);
    SnmpPackage package;
    if (ReadPrinter(&package, pCurPrnData->Address, Oids, {PDU_GET, ResetStatusCheck, nullptr}) != SUCCESS)
        WaitOn();
}

static void StartResetWait() {
    StopResetTimer();
    ResetStatusCheckCount = 0;
    ResetTimerID = XmtStartTimer(XMT_TIMER_REPEAT, RESET_TICK, ResetDeviceCheck, 0);
    SetResetWaitLabelsForWaiting(0);
    XmtShow("resetwait");
}

void ResetPrinter() {
    BusyCursor busy("nobtnDialog,prndeck");
    if (!GetPrnEntry(Cur_Product_Index)) return;
    ResetStart = time(nullptr);
    if (SNMPSendReset(OidGeneralReset, POWER_CYCLE)) return StartResetWait();
    XmtPostMsg_(pResetFail, pResetFail);
}

void ConfirmReset(intptr_t reason) {
    if (reason == XmtCR_OK) ResetPrinter();
}

void CloseResetWait() {
    StopResetTimer();
    XmtHide("resetwait");
}

static void StopWithWindow(Widget, XtPointer, XtPointer) {
    StopResetTimer();
}

void PrepareResetWait() {
    XmtSetDialogButtons("resetwait", "rwb1", "rwb1");
    if (Widget window = XmtGetWidget("resetwait"))
        XtAddCallback(window, XmNunmapCallback, StopWithWindow, nullptr);
}

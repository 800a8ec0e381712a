// The reset of the selected printer, and the window that waits until it is back.
#pragma once

#include "SnmpPkg/Pkg.h"

#include <cstdint>
#include <ctime>

enum { RESET_TICK = 7, RESET_TICKS = 61 }; // seconds between two looks, looks before it is given up
enum { RESET_LIGHTS = 11 };

extern const char *const ResetLight[RESET_LIGHTS]; // a light at each place of ten, and none
extern time_t ResetStart;                          // writer: ResetPrinter
extern int ResetTimerID;                           // -1 while no timer runs
extern int ResetStatusCheckCount;                  // looks so far

void PrepareResetWait(); // once, when the window has been made
// The answer to the question whether the printer shall be reset; XmtCR_OK resets it.
void ConfirmReset(intptr_t reason);
// Resets the printer and opens the window, or tells that it could not. Blocks for up to a minute.
void ResetPrinter();
void ResetDeviceCheck(intptr_t unused); // timer: one look
int ResetStatusCheck(int error, intptr_t userData, int errorStatus, int errorIndex, SnmpPackage *package,
                     PkgSource *source);
void SetResetWaitLabelsForWaiting(int light); // a row of ResetLight
void CloseResetWait();                        // the printer goes on

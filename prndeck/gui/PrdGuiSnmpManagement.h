// The property sheet of the selected printer: its pages, the timer that reads the visible one again, and what
// is set.
//
// A page is read when it is shown. The timer runs while the sheet is open, however it is closed.
#pragma once

#include "xmt/Xmt.h"

#include <cstdint>

enum { REFRESH_SECONDS = 30, REFRESH_MIN = 1, REFRESH_MAX = 1000 };

enum { // pages; ORDER TabNames
    TAB_NONE,
    TAB_SHEET,
    TAB_CONSOLE,
    TAB_INPUT,
    TAB_CONSUMABLES,
    TAB_OUTPUT,
    TAB_GENERAL,
    TAB_NETWORK, // holds the pages of statistics
    TAB_INTERFACE,
    TAB_IP,
    TAB_UDP,
    TAB_SNMP_IN,
    TAB_SNMP_OUT,
    TAB_CONTACT,
    TAB_CHANNELS,
    TAB_STATUS,   // holds the console and what follows up to the statistics
    TAB_SETTINGS, // holds contact and channels
};
extern const char TabNames[]; // ",snmp,sdbt2_1,..."
extern int CurTab;            // the page that is read again; writer: FillSnmpData
extern int SNMPRefreshTime;   // seconds; writers: ReadSNMPRefreshTime, SetSNMPRefreshTime
extern int
    SNMPRefreshTimerID; // 0 while the sheet is closed; writers: SetupSNMPRefreshTimer, StopSNMPRefreshTimer

// What the windows of the sheet and of the reset report; the handler of other windows may hand its events on.
void SnmpEventHandler(XmtCallData *data);
void PrepareSheet(); // once, when the sheet has been made

// Opens the sheet for the selected printer; nothing without one. A printer that is silent or has no console
// gets a message in its place.
void OpenPropertySheet();
// Selects the page of that name and reads it. A holder stands for the page that it shows.
void FillSnmpData(const char *page);
void DoSNMPRefresh(intptr_t unused = 0); // timer: reads CurTab

void SetupSNMPRefreshTimer();
void ResetSNMPRefreshTimer();
void StopSNMPRefreshTimer();
void ResumeSNMPRefreshTimer(); // with the present interval; an interval of 0 does nothing
// The interval: from the field; the field's into the record "SNMPRefresh" of IPDisc, a failure is posted;
// from that record, which gets REFRESH_SECONDS if it is missing or damaged.
void SetSNMPRefreshTime();
void SaveSNMPRefreshTime();
void ReadSNMPRefreshTime();

// Set what differs from what the printer reported last. A value that it does not confirm is told and the next
// one is set; the text stays as the user wrote it, the choice goes back.
void SetChangedValues();
void SetChangedContactValues();
void SetChangedPrintChannels();

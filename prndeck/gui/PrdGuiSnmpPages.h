// The pages of the property sheet: which variables they show, and where. All are of the selected printer
// (pCurPrnData); nothing is read without one.
#pragma once

#include "prndeck/gui/PrdGuiSnmpTable.h"

enum { CONTACT_FIELDS = 5, CHANNEL_ROWS = 18 };
enum { NETWORK_PAGES = 5 }; // interface, IP, UDP, SNMP in, SNMP out

extern const char *const ContactOID[];  // of "spcrt1" to "spcrt5", and a null
extern const char *const ProtocolOID[]; // of row 1: name, state and type of a channel, and a null
extern const char *const NetStatInterfaceOIDs[], *const NetStatIpOIDs[], *const NetStatUdpOIDs[];
extern const char *const NetStatSnmpInboundOIDs[], *const NetStatSnmpOutboundOIDs[];

void RefreshConsole(); // text and lights
void GetConsoleText(const char *address);
void GetLedValues(const char *address);
void GetInputTrayInformation();
void GetOutputTrayInformation();
void GetConsumableInformation();
void GetGeneralTab();
void GetNetworkStatTab();       // all its pages
void FillNetworkPage(int page); // one of them, from 1
void GetPropContact();          // and takes the values as those that edits are held against
void GetPropPrintChannel();     // likewise
// Empties what keeps its value when a printer does not answer, so that no printer shows another one's, and
// nothing that was typed for one is set in the next.
void ClearPages();

// Rows of the special pages, and how their rows are hidden.
int ConsoleCB(int error, intptr_t userData, int errorStatus, int errorIndex, SnmpPackage *package,
              PkgSource *source);
int GeneralCB(int error, intptr_t userData, int errorStatus, int errorIndex, SnmpPackage *package,
              PkgSource *source);
int LEDNameCB(int error, intptr_t userData, int errorStatus, int errorIndex, SnmpPackage *package,
              PkgSource *source);
int PrintChannelCB(int error, intptr_t userData, int errorStatus, int errorIndex, SnmpPackage *package,
                   PkgSource *source);
void HideUnusedLeds(const SnmpTableDesc *table);
void HideUnusedPrintChannels(const SnmpTableDesc *table);

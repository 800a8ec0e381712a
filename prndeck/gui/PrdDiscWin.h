// The dialog of where printers are looked for: its fields and lists. Changes of the subnets are in force at
// once, changes of the addresses with OK or Apply, which store both.
#pragma once

#include "xmt/Xmt.h"

extern int SelSubnet; // position of the selected subnet, from 1; 0 for none
extern int SelIp;     // likewise of the selected address
extern char *pSelIp;  // its text, managed, or null

// Handler of the windows of IPDiscoveryDesc; reason XmtCR_CREATE is ignored.
void IPDiscoveryEventHandler(XmtCallData *data);
void PrepareDiscovery(); // the step behind their text
void StartDiscovery();   // InitPkgDisc, with its failures and results on the windows

void OpenDiscovery();
void SetDiscoveryTab(int tab); // Return adds on the tab that is shown
void CloseDiscovery();         // behind OK

// ---- Subnets
void DisplaySNList();
void SetupSubnetSelection(int position);
void AddSubnetEntry();     // from the fields; what is wrong with them is posted
void RemoveSubnetEntry();  // of the selected one, as the next
void DisableSubnetEntry(); // enables one that is disabled
void ScanInterfaces();     // those of the interfaces anew
void ClearComponentFields();

// ---- Addresses
void DisplayIPList(); // those in force
void SetupIPSelection(const XmtCallData *data);
// Whether the four fields hold an address, which out then holds: the first number from 1 to 255, the others
// from 0, which an empty field is.
bool GetIpAddr(const char *const fields[4], char *out, size_t capacity);
void AddIPaddr();
void RemoveIPaddr();
void ClearIPFields();

void ApplyDiscChanges();

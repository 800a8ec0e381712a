// The table of printers that a discovery found, and reads of single values from one of them.
//
// A printer is known by its address. Entries stay where they are for the whole run; a new discovery starts at
// the front again and takes them over, so nobody keeps an entry across one but through pCurPrnData.
#pragma once

#include "SnmpPkg/Pkg.h"

#include <cstddef>
#include <cstdint>

enum { PRN_HWADR = 20, PRN_GROW = 100 };
enum { PRN_DISCOVERED = 2, PRN_WEB = 4 }; // Flags: found by a discovery; answers on its web port

struct PrnEntry {
    char *Name;                // managed; empty if the printer has not been asked for it
    char *HostName;            // managed
    char *Address;             // managed, dotted
    char HwAddress[PRN_HWADR]; // "00:00:5e:00:53:07"; empty if the printer has not been asked for it
    char *Description;         // managed; in the printer's words
    int32_t PpdIndex;          // row of pPPDData, 0 for no model
    uint32_t Flags;            // PRN_...
};

// Writers: ClaimPrnEntry, and the discovery that empties the table.
extern PrnEntry **prnData; // in the order found
extern int DevCount;       // printers in it
extern int prnDataCnt;     // printers it has room for

// Writer: SetPrinterSelectionData.
extern int Cur_Product_Index; // of the selected printer, -1 for none
extern PrnEntry *pCurPrnData; // the selected printer; without one a copy of the last, null before the first

// The next entry, counted, with empty texts and no flags; what an earlier discovery left in it is released.
PrnEntry *ClaimPrnEntry();
PrnEntry *GetPrnEntry(int index);                        // null outside the table
int DuplicateDiscoveredPrinterTest(const char *address); // 1 if the table has a printer of that address
// Of a discovery: enters the host that was read, unless its address is there already. Texts are the printer's
// bytes; a description of more than 127 characters ends in "...".
int PrdSnmpPkgCB(int error, intptr_t userData, int errorStatus, int errorIndex, SnmpPackage *package,
                 PkgSource *source);
// A copy of its own of an entry, replacing an earlier copy's texts.
void CopyPrnEntry(PrnEntry *to, const PrnEntry *from);

enum { SNMP_READ_TEXT = 1, SNMP_READ_HARDWARE = 2 };
// Reads one variable of a printer into out: its text, or in mode SNMP_READ_HARDWARE six bytes in the form of
// DecodeHwAdr, and zeros in that form for anything else. 0, or the code of SnmpSendPkg or of the variable;
// then out is empty, or the zeros. Blocks as long as a silent printer takes.
int GetSnmpPkgStrVar(const char *address, const char *name, char *out, size_t capacity, int mode);
// Fill the entry's Name (with its address if there is nothing better), and its HwAddress, if it is empty.
void GetSysName(int index);
void GetHwAdr(int index);
void DecodeHwAdr(char *out, size_t capacity, const unsigned char *bytes); // 6 bytes as "%02x:..."

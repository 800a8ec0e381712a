// Where printers are looked for: the subnets, which are asked by broadcast, and the single addresses, which
// are asked one by one. Both lists are records of the database IPDisc, so is the command of the web browser.
//
// Changes of the subnets are made in SubnetList at once, changes of the addresses in a copy; neither is
// stored before its write; where only root may store them, another user's last for the run. doc/xdb.md tells
// the records.
#pragma once

#include <cstdint>
#include <string>

enum { NET_TEXT = 20, NET_GROW = 10 };

// Two entries are the same if both texts are equal.
struct SubnetEntry {
    char Address[NET_TEXT]; // dotted; an interface's own address if it was found there
    char Mask[NET_TEXT];    // dotted
    int32_t Enabled;        // it is asked
    int32_t UserAdded;      // by the user; 0: found on an interface of this host
};

// Writers: the functions below.
extern SubnetEntry *SubnetList;
extern int SubnetCount;       // entries
extern int SubnetBuffer;      // room for entries
extern char *pIpList;         // ",10.0.0.7,10.0.0.8,", managed; null: none stored
extern char *pIpListMod;      // a changed copy, managed; null: unchanged
extern char *pPreferredWB;    // command of the web browser, managed; writers: ReadBrowser, WriteBrowser
extern int flBrowserDoubtful; // it was stored where others may write, and nobody has said yes to it; likewise

// ---- Subnets
// Reads the stored list; a record of an older release counts where there is none. What is no address with a
// mask is left out.
void ReadSubnetList();
// 1 if the list is stored as it is. An unchanged one is not written again.
int WriteSNListToDatabase();
std::string BuildSNList();        // as items of a list, "," first and behind each
std::string BuildDiscoveryList(); // the enabled ones as targets of a broadcast
int NotInSubnetList(const SubnetEntry *entry);
enum { SUBNET_APPEND, SUBNET_IF_NEW, SUBNET_REPLACE };
// Appends the entry: in any case, if it is new, or in the place of the one with the same texts.
void UpdateSubnetList(const SubnetEntry *entry, int mode);
void UpdateSubnetListEntry(const SubnetEntry *entry); // nothing if it is not there
void DeleteSubnetListEntry(const SubnetEntry *entry); // nothing for one of an interface
void ClearScannedSubnets();                           // drops those of the interfaces
void ClearSubnetList();
const SubnetEntry *GetSubnet(int position); // from 1; null outside the list
// Adds what this host's interfaces are on, without the loopback. 1 after a failure, told on standard error;
// one to read an address is told by pDiscReport too, or not at all without flReport.
int SniffInterfaces(int flReport);

// ---- Addresses
void ReadIPList();           // the stored ones; changed ones come into force, stored or not
int WriteIPListToDatabase(); // 1 if what there is to store is stored
const char *GetIpList();     // with the changes; "," for an empty one
enum { IP_ADDED, IP_REFUSED, IP_KNOWN };
// Adds an address in its normal form. Refused: what is none of a host, or a loopback, multicast or reserved
// one.
int AddToIpList(const char *address);
void RemoveFromIpList(const char *address); // null and what is not there change nothing

// ---- The browser
void ReadBrowser();                    // the stored command, or the default
int WriteBrowser(const char *command); // takes it over; 1 if it is stored

// How a failure is shown to the user; null for not at all. Writer: the face.
extern void (*pDiscReport)(const char *title, const char *text);
// Seam for tests.
extern int (*pDiscIoctl)(int socket, unsigned long request, void *argument);

// Queue records of the database "que", the family's queue list, and the marker file of the tool directory.
#pragma once

#include <cstddef>
#include <cstdint>

enum { // QueueType
    QUEUE_PRINTER_HOST,   // workstation to printer over TCP/IP
    QUEUE_SERVER,         // workstation to print server
    QUEUE_PRINTER_DEVICE, // workstation to printer on a local device
    QUEUE_SERVER_HOST,    // print server to printer over TCP/IP
    QUEUE_SERVER_DEVICE,  // print server to printer on a local device
};
enum { CFG_DIRECT = 1, CFG_NO_DB = 2, CFG_LPRNG = 4, CFG_AIX = 8, CFG_BSD = 16, CFG_V5 = 32, CFG_CUPS = 64 };

struct QueRecord {
    char name[15];
    char printer[256]; // host name or device path
    char serverQueue[256];
    char lprQueue[15];
    char ppdFile[42];
    char *settings; // managed, or null
    int32_t type;
    unsigned char banner;
    unsigned char userInterface;
    unsigned char features;
    unsigned char isDefault;
    unsigned char lpd;
};

extern int flToolCfg;

int GetQueDbEntry(QueRecord *record, const char *name);
int GenQueDbEntry(QueRecord *record);
void SetConfigFlags();
int TestConfigFlag(const char *file);
[[nodiscard]] char *GetQueueList();
char *AddQToList(char *list, const char *name, size_t *length);
// The two words of "PRINTER count" behind its 4-byte field; 1 if the record holds at least one word.
int GetQueCountWords(const char *printer, char *first, char *second, size_t capacity);

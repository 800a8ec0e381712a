// The types of queues: a printing model and a connection make one.
#pragma once

enum {                    // ORDER QueueType
    QUEUE_PRINTER_HOST,   // workstation to printer over TCP/IP
    QUEUE_SERVER,         // workstation to print server
    QUEUE_PRINTER_DEVICE, // workstation to printer on a local device
    QUEUE_SERVER_HOST,    // print server to printer over TCP/IP
    QUEUE_SERVER_DEVICE,  // print server to printer on a local device
};
enum { PM_HOST, PM_SERVER, PM_SERVER_PRINTER, PM_COUNT }; // printing models, index into PMs
enum { CONNECTION_TCP, CONNECTION_DEVICE };               // connections

extern const char *const PMs[PM_COUNT]; // word of prnqtool's option -pm

// Printing model and connection of a queue.
struct QueChoice {
    int printingModel;
    int connection;
};

// An unknown printing model counts as the first; a print server has one type for both connections.
int GetQueueType(int printingModel, int connection);
// An unknown type counts as the first.
QueChoice GetQueChoice(int type);

constexpr bool IsDeviceType(int type) {
    return type == QUEUE_PRINTER_DEVICE || type == QUEUE_SERVER_DEVICE;
}

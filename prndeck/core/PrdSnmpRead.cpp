// What one printer is asked.
#include "prndeck/core/PrdSnmpRead.h"

#include "print/PrdCommonUtils.h"

int SetupPrinterRead(SnmpPackage *package, const char *const *names, const PrinterRead &how) {
    int command = how.Pdu == PDU_TABLE ? PKG_TABLE_NAME : PKG_EMPTY;
    int code = SnmpSetup(package, PKG_INIT, PKG_USERDATA, how.UserData);
    for (; *names && code == SUCCESS; names++)
        if (**names) code = SnmpSetup(package, command, *names);
    return code;
}

int SendPrinterRead(SnmpPackage *package, const char *address, const PrinterRead &how) {
    return SnmpSend(package, PKG_SENDMODE, PKG_MODE_GET, PKG_PDU, how.Pdu, PKG_CALLBACK, how.Callback,
                    PKG_ADDRESSES, address);
}

int ReadPrinter(SnmpPackage *package, const char *address, const char *const *names, const PrinterRead &how) {
    int code = SetupPrinterRead(package, names, how);
    return code == SUCCESS ? SendPrinterRead(package, address, how) : code;
}

const char *GetPrnModelItem(const PrnEntry *entry, const char *item, char *value, size_t capacity) {
    if (!entry || !pPPDData || entry->PpdIndex < 0 || entry->PpdIndex > PpdCnt) return nullptr;
    return GetPpdKeyValue(pPPDData[entry->PpdIndex].base, item, value, capacity);
}

// The match of a printer's text against a model's key, and the item that the key is: the input is a record of
// a model and, behind its first zero byte, the text.
#include "common/MemMgr.h"
#include "print/PrdCommonUtils.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

static constexpr char ItemHead[] = ".sppditem Key\n";

// Puts the record in front of the handle's image, as if it had been read from disk.
static void SetRecord(const std::string &record) {
    DbTClose(pEngPrtStrDB);
    pEngPrtStrDB = DbTOpen("/nonexistent/PrtString", DBT_NO_RELOAD | DBT_NO_WRITE);
    DbmTPutRecord(pEngPrtStrDB, "m", record.c_str(), record.size() + 1);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size > 16384) return 0;
    std::string record = ItemHead;
    record.append(reinterpret_cast<const char *>(data), strnlen(reinterpret_cast<const char *>(data), size));
    size_t length = record.size() - strlen(ItemHead);
    std::string text;
    if (length < size) text.assign(reinterpret_cast<const char *>(data) + length + 1, size - length - 1);

    SetRecord(record);
    PpdRecord rows[2] = {};
    rows[1].key = GetPpdKeyValue("m.ppd", "Key", nullptr, 0);
    if (rows[1].key && strlen(rows[1].key) >= record.size()) abort();
    char small[16];
    const char *cut = GetPpdKeyValue("m.ppd", "Key", small, sizeof(small));
    if (!cut != !rows[1].key || (cut && strncmp(cut, rows[1].key, sizeof(small) - 1) != 0)) abort();

    pPPDData = rows;
    PpdCnt = 1;
    int row = GetPpdData(text.c_str());
    if (row != 0 && (row != 1 || !rows[1].key || !*text.c_str())) abort();
    pPPDData = nullptr;
    PpdCnt = 0;
    PutMem(rows[1].key);

    ConvertSNMPCharacters(text.data());
    return 0;
}

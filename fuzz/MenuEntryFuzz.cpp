// Entry validation: the first line is the format, the rest the entry. The result is a code, and the same from
// LineBuf.
#include "menu/MenuEntry.h"

#include "common/utils.h"
#include "fuzz/Quiet.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string text(reinterpret_cast<const char *>(data), size);
    size_t end = text.find('\n');
    std::string format = text.substr(0, end);
    std::string entry = end == std::string::npos ? "" : text.substr(end + 1);
    Quiet quiet;
    int code = ValidateEntry(entry.c_str(), format.c_str());
    if (code < ENTRY_OK || code > ENTRY_FORBIDDEN) abort();
    snprintf(LineBuf, LINEBUF_SIZE, "%s", entry.c_str());
    if (entry.size() < LINEBUF_SIZE && ValidateEntry(LineBuf, format.c_str()) != code) abort();
    ValidateEntryTty(entry.c_str(), format.c_str());
    TestName(entry.c_str());
    return 0;
}

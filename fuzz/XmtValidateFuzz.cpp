// Entry validation of text fields: a line of format, a line typed, the rest is the text before; the first
// three bytes are the places of the change. Checked as what it is and as a change of a plain and of a masked
// field.
#include "xmt/XmtValidate.h"

#include "common/MemMgr.h"
#include "menu/MenuEntry.h"
#include "xmt/XmtValue.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

// Without windows refusals go to standard error.
static FILE *Silent = stderr = fopen("/dev/null", "w");

static std::string TakeLine(std::string *text) {
    size_t end = text->find('\n');
    std::string line = text->substr(0, end);
    *text = end == std::string::npos ? "" : text->substr(end + 1);
    return line.c_str(); // up to a NUL
}

static void ChangeFields(XmtObjectData *object, XmtCallData data, const char *old) {
    Boolean doit = 1;
    data.reason = XmtCR_CHANGED;
    data.doit = &doit;
    data.value = reinterpret_cast<intptr_t>(old);
    XmtProcessTextFormat(object, &data);
    object->stored = reinterpret_cast<intptr_t>(SaveStr_(old));
    XmtProcessMaskedFormat(object, &data);
    PutMem(XmtTextOf(object->stored));
    PutMem(object->format);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    if (size < 3) return 0;
    std::string rest(reinterpret_cast<const char *>(bytes + 3), size - 3);
    std::string format = TakeLine(&rest), typed = TakeLine(&rest), old = rest.c_str();
    int code = XmtValidateEntry(typed.c_str(), old.c_str(), format.c_str());
    if (code < ENTRY_OK || code > ENTRY_FORBIDDEN) abort();
    std::string escaped = XmtInsertEscape(old.c_str());
    if (XmtInsertEscape(escaped.c_str()) != escaped) abort();
    XmtObjectData object = {};
    object.format = SaveStr_(format.c_str());
    XmtCallData data = {};
    data.text = typed.c_str();
    data.start = static_cast<int8_t>(bytes[0]);
    data.end = static_cast<int8_t>(bytes[1]);
    data.newInsert = static_cast<int8_t>(bytes[2]);
    ChangeFields(&object, data, old.c_str());
    return Silent == nullptr;
}

// Any text as one that a printer reports: what the property sheet shows of it, and what goes back when it is
// set again.
#include "fuzz/FuzzDir.h"
#include "prndeck/core/PrdGuiSnmpText.h"

#include <algorithm>
#include <cctype>
#include <cstdint>

static std::string WithoutLineFeeds(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
    return text;
}

static void CheckLines(const std::string &text) {
    std::string lines = BreakLines(text);
    for (size_t at = 0, end; at < lines.size(); at = end + 1) {
        end = std::min(lines.find('\n', at), lines.size());
        Require(end - at <= TEXT_LINE);
    }
    Require(WithoutLineFeeds(lines) == WithoutLineFeeds(text));
    if (text.find('\n') == text.npos)
        Require(JoinLines(lines, true) == text && JoinLines(lines, false) == text);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string whole(reinterpret_cast<const char *>(data), size), text = whole.c_str();
    const std::string shown = GetPrinterText(text.c_str());
    const std::string edit = GetEditText(text.c_str());
    Require(PutPrinterText(edit, edit != text) == text);
    Require(shown.size() <= text.size() && (IsUtf8Text(text.c_str()) || shown == text));
    CheckLines(shown);
    for (char ch : CleanPrinterText(shown.c_str())) Require(isprint(static_cast<unsigned char>(ch)) != 0);
    for (int type : {-1, 0, 1, PROTOCOLS - 2, PROTOCOLS - 1})
        Require(GetChannelLabel(text.c_str(), type).size() == CHANNEL_LABEL);
    pSome = pOther = pUnknown = pNA = "";
    Require(*CovertSnmpCapacityToValue(text.c_str()) == '\0' ||
            CovertSnmpCapacityToValue(text.c_str()) == text);
    CovertSnmpUnitToName(text.c_str());
    CovertSnmpMaximumToValue(text.c_str());
    return 0;
}

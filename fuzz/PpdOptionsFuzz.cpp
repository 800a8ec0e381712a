// The options of a PPD file and the settings that they make: the input is a settings file and, behind its
// first zero byte, a PPD file.
#include "siblings/lib/Queue.h"
#include "siblings/prnpnxxtty/Settings.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    std::string_view input(reinterpret_cast<const char *>(data), size);
    std::string_view settings = input.substr(0, input.find('\0'));
    std::string_view text = input.substr(std::min(size, settings.size() + 1));
    Ppd ppd;
    ReadPpdText(text, ppd);
    ChooseSettings(ppd, settings);
    std::string made = MakeSettings(ppd, settings);
    size_t count, lines = static_cast<size_t>(std::count(made.begin(), made.end(), '\n'));
    if (BrokenRules(ppd, 2, count).size() > 2 || count > ppd.rules.size()) abort();

    // The queue tool takes every line, and settings that were made once are made again.
    if (OfferedSettings(made, text).size() != lines) abort();
    ChooseSettings(ppd, made);
    if (MakeSettings(ppd, made) != made) abort();
    return 0;
}

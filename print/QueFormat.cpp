// Keys and fields of queue records.
#include "print/QueFormat.h"

#include "common/Words.h"

#include <algorithm>
#include <cstdlib>

std::string QueSettingsKey(std::string_view queue) {
    return std::string(queue) + " **";
}

std::string QueOwnBannerKey(std::string_view queue) {
    return std::string(queue) + " **banner";
}

std::string QueCountKey(std::string_view printer) {
    return std::string(printer) + " count";
}

bool IsQueKey(std::string_view key) {
    return !key.empty() && key.find(' ') == key.npos;
}

// The order of the fields, for reader and writer.
static constexpr std::string QueFields::*Texts[] = {&QueFields::name, &QueFields::printer, &QueFields::remote,
                                                    &QueFields::ppd};
static constexpr int QueFields::*Numbers[] = {&QueFields::type,          &QueFields::banner,
                                              &QueFields::userInterface, &QueFields::features,
                                              &QueFields::isDefault,     &QueFields::lpd};

static std::string TakeField(std::string_view &text) {
    std::string field(TakeUpTo(text, " "));
    text.remove_prefix(std::min<size_t>(text.size(), 1));
    return field;
}

QueFields ReadQueFields(std::string_view text) {
    QueFields fields;
    for (auto field : Texts) fields.*field = TakeField(text);
    for (auto field : Numbers) fields.*field = atoi(TakeField(text).c_str());
    return fields;
}

std::string MakeQueText(const QueFields &fields) {
    std::string text;
    for (auto field : Texts) text += fields.*field + " ";
    for (auto field : Numbers) text += std::to_string(fields.*field) + " ";
    return text;
}

// Texts, objects and arrays of JSON.
#include "siblings/lib/Json.h"

#include "siblings/lib/Utf8.h"

#include <cstdio>

std::string JsonText(std::string_view text) {
    std::string quoted = "\"", run;
    char escape[8];
    // Control characters come first: the cleaning would make blanks of them.
    auto flush = [&] {
        quoted += CleanUtf8(run, run.size() * 2);
        run.clear();
    };
    for (char byte : text) {
        bool flControl = static_cast<unsigned char>(byte) < ' ' || byte == 127;
        if (!flControl && byte != '"' && byte != '\\') {
            run += byte;
            continue;
        }
        flush();
        snprintf(escape, sizeof escape, flControl ? "\\u%04x" : "\\%c", static_cast<unsigned char>(byte));
        quoted += escape;
    }
    flush();
    return quoted + "\"";
}

JsonObject &JsonObject::Raw(const char *key, const std::string &json) {
    members += (members.empty() ? "\"" : ", \"") + std::string(key) + "\": " + json;
    return *this;
}

JsonObject &JsonObject::Text(const char *key, std::string_view value) {
    return Raw(key, JsonText(value));
}

JsonObject &JsonObject::TextOrNull(const char *key, std::string_view value) {
    return Raw(key, value.empty() ? "null" : JsonText(value));
}

JsonObject &JsonObject::Number(const char *key, long long value) {
    return Raw(key, std::to_string(value));
}

JsonObject &JsonObject::Flag(const char *key, bool flValue) {
    return Raw(key, flValue ? "true" : "false");
}

static std::string Joined(const std::vector<std::string> &values, const char *between) {
    std::string text;
    for (const std::string &value : values) text += (text.empty() ? "" : between) + value;
    return text;
}

std::string JsonLines(const std::vector<std::string> &values) {
    return values.empty() ? "[]\n" : "[\n" + Joined(values, ",\n") + "\n]\n";
}

std::string JsonArray(const std::vector<std::string> &values) {
    return "[" + Joined(values, ", ") + "]";
}

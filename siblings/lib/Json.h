// JSON for programs that read our lists: objects on one line each, texts in UTF-8 whatever bytes they had.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The text in quotation marks. Control characters are escaped; a byte that is no UTF-8 counts as Latin 1.
std::string JsonText(std::string_view text);

// An object, its members in the order of the calls. Keys are plain words of ours.
class JsonObject {
public:
    JsonObject &Text(const char *key, std::string_view value);
    JsonObject &TextOrNull(const char *key, std::string_view value); // null for an empty text
    JsonObject &Number(const char *key, long long value);
    JsonObject &Flag(const char *key, bool flValue);
    JsonObject &Raw(const char *key, const std::string &json); // a value made already
    std::string End() const { return "{" + members + "}"; }

private:
    std::string members;
};

// The values as an array, a line each.
std::string JsonLines(const std::vector<std::string> &values);
// The same on one line.
std::string JsonArray(const std::vector<std::string> &values);

// Runs xdb.py for the unit tests, and gives them a tool directory.
#include "tests/lib/Xdb.h"

#include "common/utils.h"

#include <cctype>
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>

namespace fs = std::filesystem;

static std::string RunXdb(const std::string &arguments) {
    FILE *stream = popen(("python3 -B '" TESTS_LIB "/xdb.py' " + arguments + " 2>&1").c_str(), "r");
    if (!stream) throw std::runtime_error("popen");
    std::string text;
    for (int ch; (ch = getc(stream)) != EOF;) text += static_cast<char>(ch);
    return pclose(stream) == 0 ? text : "error " + text;
}

static std::string ToHex(const std::string &bytes) {
    std::string hex;
    char digits[3];
    for (char ch : bytes) {
        snprintf(digits, sizeof(digits), "%02x", static_cast<unsigned>(static_cast<unsigned char>(ch)));
        hex += digits;
    }
    return hex.empty() ? "-" : hex;
}

static std::string FromHex(const std::string &hex) {
    std::string bytes;
    for (size_t i = 0; hex != "-" && i + 1 < hex.length(); i += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return bytes;
}

Records ReadXdb(const std::string &path) {
    std::string text = RunXdb("list '" + path + "'");
    if (text.compare(0, 5, "error") == 0) return {{"error", text}};
    Records records;
    std::istringstream in(text);
    for (std::string key, data; in >> key >> data;) records.emplace_back(FromHex(key), FromHex(data));
    return records;
}

void WriteXdb(const std::string &path, bool flHeader, const Records &records) {
    std::string arguments = "make '" + path + "' " + (flHeader ? "header" : "plain");
    for (const auto &[key, data] : records) arguments += " " + ToHex(key) + " " + ToHex(data);
    std::string said = RunXdb(arguments);
    if (!said.empty()) throw std::runtime_error(said);
}

std::string ShowRecords(const Records &records) {
    std::string text;
    for (const auto &[key, data] : records) {
        text += (text.empty() ? "" : " ") + key + "=";
        for (char ch : data) text += isprint(static_cast<unsigned char>(ch)) ? ch : '.';
    }
    return text;
}

ToolDir::ToolDir() : savedDirectory(fs::current_path()), savedToolPath(pToolPath), tool(Path()) {
    MakeDir("db");
    fs::current_path(tool);
    pToolPath = tool.data();
}

ToolDir::~ToolDir() {
    pToolPath = savedToolPath;
    fs::current_path(savedDirectory);
}

#include "tools/checkwin/Look.h"

#include "xmt/XmtColor.h"

#include <cctype>
#include <filesystem>
#include <fnmatch.h>
#include <fstream>
#include <set>
#include <string_view>

static constexpr char FontRoot[] = "/usr/share/fonts/X11";

// ---- colours

static std::string Normal(const std::string &name) {
    std::string out;
    for (char ch : name)
        if (ch != ' ') out += static_cast<char>(tolower(static_cast<unsigned char>(ch)));
    return out;
}

static bool IsHex(std::string_view text) {
    return text.find_first_not_of("0123456789abcdef") == text.npos;
}

// "rgb:" and three numbers of one to four digits
static bool IsRgb(std::string_view text) {
    if (!text.starts_with("rgb:")) return false;
    text.remove_prefix(4);
    for (int left = 3; left > 0; left--) {
        size_t end = left == 1 ? text.size() : text.find('/');
        if (end == text.npos || end < 1 || end > 4 || !IsHex(text.substr(0, end))) return false;
        text.remove_prefix(left == 1 ? end : end + 1);
    }
    return true;
}

bool IsColour(const std::string &name) {
    static std::set<std::string> names;
    if (names.empty())
        for (const XmtColorRow *row = pColor; *row->name; row++) names.insert(Normal(row->name));
    std::string normal = Normal(name);
    if (normal[0] == '#') return IsHex(normal.substr(1)) && (normal.size() == 7 || normal.size() == 13);
    return IsRgb(normal) || names.count(normal);
}

// ---- fonts

// The word of a line of fonts.alias, or what stands behind the file's name in one of fonts.dir.
static std::string FontOfLine(const std::string &line, bool flAlias) {
    size_t blank = line.find_first_of(" \t");
    if (line.empty() || line[0] == '!' || blank == line.npos) return "";
    std::string name = flAlias ? line.substr(0, blank) : line.substr(line.find_first_not_of(" \t", blank));
    if (name.size() > 1 && name[0] == '"') name = name.substr(1, name.size() - 2);
    return name;
}

static void ReadFonts(const std::filesystem::path &path, std::set<std::string> *fonts) {
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        std::string name = FontOfLine(line, path.filename() == "fonts.alias");
        if (!name.empty()) fonts->insert(name);
    }
}

static std::set<std::string> ReadAllFonts() {
    std::set<std::string> fonts;
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator(FontRoot, error))
        for (const char *file : {"fonts.dir", "fonts.alias"}) ReadFonts(entry.path() / file, &fonts);
    return fonts;
}

bool IsFont(const std::string &name) {
    static const std::set<std::string> fonts = ReadAllFonts();
    if (fonts.empty()) return true;
    for (const std::string &font : fonts)
        if (fnmatch(name.c_str(), font.c_str(), FNM_CASEFOLD) == 0) return true;
    return false;
}

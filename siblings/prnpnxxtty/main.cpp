// prnpnxxtty: leaves the feature settings of a printer model for the queue tool, in ".settings" of the tool
// directory.
//
// A line OPTION=CHOICE for each option of the PPD file that takes one choice. With -GS the choices are the
// model's own; with -MS what ".settings" already says stands, as far as the model offers it.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

enum { PPD_MAX = 4 * 1024 * 1024 };

struct Arguments {
    std::string ppd;       // path
    bool flModify = false; // -MS: settings of a queue, not of a model
};

struct PpdOption {
    std::string name;
    std::string initial;              // the model's own choice, or empty
    std::vector<std::string> choices; // as far as the file lists them
};

static const char SettingsFile[] = ".settings";
static const char Usage[] = "usage: prnpnxxtty [-tty] [QUEUE|-dQUEUE] [-SBP] -GS PPDFILE|-MS PPDFILE\n";

static int Refuse(const std::string &text) {
    fprintf(stderr, "prnpnxxtty: %s\n", text.c_str());
    return 1;
}

// ---- Arguments

// "-GSPATH" and "-GS PATH" are the same, and so are those of -MS.
static std::string ReadSource(int argc, char **argv, int &at, Arguments &arguments) {
    std::string word = argv[at];
    arguments.flModify = word.starts_with("-MS");
    if (word.size() > 3)
        arguments.ppd = word.substr(3);
    else if (at + 1 < argc)
        arguments.ppd = argv[++at];
    return arguments.ppd.empty() || arguments.ppd[0] == '-'
               ? "option " + word.substr(0, 3) + " needs a PPD file"
               : "";
}

// The queue's name and whether it prints a banner page don't matter to the settings of its features.
static std::string ReadArguments(int argc, char **argv, Arguments &arguments) {
    for (int at = 1; at < argc; at++) {
        std::string word = argv[at], error;
        if (word.starts_with("-GS") || word.starts_with("-MS"))
            error = ReadSource(argc, argv, at, arguments);
        else if (word.starts_with("-") && !word.starts_with("-d") && word != "-tty" && word != "-SBP")
            error = "option " + word.substr(0, 80) + " is unknown";
        if (!error.empty()) return error;
    }
    return arguments.ppd.empty() ? "no PPD file told; -GS or -MS is needed" : "";
}

// ---- PPD file

static std::string ReadPpd(const std::string &path, std::string &text) {
    struct stat status;
    if (stat(path.c_str(), &status)) return "can't read " + path + ": " + strerror(errno);
    if (!S_ISREG(status.st_mode)) return path + " is no regular file";
    if (status.st_size > PPD_MAX) return path + " is too large";
    std::ifstream in(path, std::ios::binary);
    std::stringstream content;
    content << in.rdbuf();
    text = content.str();
    if (!in || text.empty()) return "can't read " + path;
    return text.starts_with("*PPD-Adobe") ? "" : path + " is no PPD file";
}

static bool IsWord(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char byte) {
        return byte < 128 && (isalnum(byte) || strchr("_-.+", byte));
    });
}

// The text of a line behind a lead, up to one of the ends; empty if the line has another lead.
static std::string Behind(const std::string &line, const std::string &lead, const char *ends) {
    if (!line.starts_with(lead)) return "";
    size_t first = line.find_first_not_of(" \t", lead.size());
    if (first == line.npos) return "";
    std::string word = line.substr(first, line.find_first_of(ends, first) - first);
    word.erase(word.find_last_not_of(" \t\r") + 1);
    return IsWord(word) ? word : "";
}

// "*OpenUI *NAME/Text: PickOne" opens an option. One that takes several choices has no place in a line
// NAME=CHOICE, and the page region always follows the page size.
static std::string OpenedOption(const std::string &line) {
    std::string name = Behind(line, "*OpenUI *", "/: \t");
    if (name.empty()) name = Behind(line, "*JCLOpenUI *", "/: \t");
    bool flOneChoice = line.find("PickOne") != line.npos || line.find("Boolean") != line.npos;
    return flOneChoice && name != "PageRegion" ? name : "";
}

static std::vector<PpdOption> ReadPpdOptions(const std::string &text) {
    std::vector<PpdOption> options;
    std::istringstream lines(text);
    std::string line;
    bool flOpen = false;
    while (std::getline(lines, line)) {
        std::string name = OpenedOption(line);
        if (!name.empty()) options.push_back({name, "", {}});
        flOpen =
            !name.empty() || (flOpen && !line.starts_with("*CloseUI") && !line.starts_with("*JCLCloseUI"));
        if (!flOpen) continue;
        PpdOption &option = options.back();
        std::string initial = Behind(line, "*Default" + option.name + ":", "/ \t");
        std::string choice = Behind(line, "*" + option.name + " ", "/:");
        if (!initial.empty()) option.initial = initial;
        if (!choice.empty()) option.choices.push_back(choice);
    }
    return options;
}

static bool Offers(const PpdOption &option, const std::string &choice) {
    return std::find(option.choices.begin(), option.choices.end(), choice) != option.choices.end();
}

// ---- Settings

static std::string KeptChoice(const std::string &settings, const std::string &name) {
    std::istringstream lines(settings);
    std::string line;
    while (std::getline(lines, line))
        if (line.starts_with(name + "=")) return line.substr(name.size() + 1);
    return "";
}

static std::string MakeSettings(const std::vector<PpdOption> &options, const std::string &old, int &count) {
    std::string settings;
    for (const PpdOption &option : options) {
        std::string kept = KeptChoice(old, option.name);
        const std::string &choice = Offers(option, kept) ? kept : option.initial;
        if (!Offers(option, choice)) continue;
        settings += option.name + "=" + choice + "\n";
        count++;
    }
    return settings;
}

// A new file in place of the old one: the queue tool never reads half of it.
static std::string WriteSettings(const std::string &path, const std::string &settings) {
    std::string name = path + "_new";
    unlink(name.c_str());
    FILE *out = fopen(name.c_str(), "wxe");
    bool flWritten = out && fwrite(settings.data(), 1, settings.size(), out) == settings.size();
    if (out && fclose(out)) flWritten = false;
    if (flWritten && !rename(name.c_str(), path.c_str())) return "";
    std::string error = "can't write " + path + ": " + strerror(errno);
    unlink(name.c_str());
    return error;
}

static std::string ToolDirectory() {
    char *path = realpath("/proc/self/exe", nullptr);
    std::string directory = path ? path : "./";
    free(path);
    return directory.substr(0, directory.rfind('/') + 1);
}

int main(int argc, char **argv) {
    Arguments arguments;
    std::string text, old, error = ReadArguments(argc, argv, arguments);
    if (!error.empty()) {
        Refuse(error);
        fputs(Usage, stderr);
        return 1;
    }
    error = ReadPpd(arguments.ppd, text);
    if (!error.empty()) return Refuse(error);
    std::string path = ToolDirectory() + SettingsFile;
    struct stat status;
    if (arguments.flModify && !stat(path.c_str(), &status) && S_ISREG(status.st_mode)) {
        std::ifstream in(path);
        std::getline(in, old, '\0');
    }
    int count = 0;
    error = WriteSettings(path, MakeSettings(ReadPpdOptions(text), old, count));
    if (!error.empty()) return Refuse(error);
    std::string file = arguments.ppd.substr(arguments.ppd.rfind('/') + 1);
    printf("prnpnxxtty: %d settings of %s kept in %s\n", count, file.c_str(), path.c_str());
    return fflush(stdout) ? 1 : 0;
}

// Words, the model or queue that they name, and where the settings go.
#include "siblings/prnpnxxtty/FrontEnd.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "help/HelpTty.h"
#include "menu/TextMenu.h"
#include "print/MainUtils.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/Files.h"
#include "siblings/lib/Frame.h"
#include "siblings/lib/Ppd.h"
#include "siblings/lib/Queue.h"
#include "siblings/prnpnxxtty/Dialogue.h"
#include "siblings/prnpnxxtty/Settings.h"

#include <algorithm>
#include <cstdio>
#include <string>

struct Arguments {
    std::string ppd;      // of -GS: path, or file name in "ppd"
    std::string queue;    // of -MS, else the one named in passing, or empty
    std::string target;   // of -fs: path, or file name in the tool directory
    bool flQueue = false; // -MS
    bool flTty = false;
    bool flBanner = false;
    bool flBackground = false; // -FP
};

static const char SettingsName[] = ".settings";

static void PrintUsage(FILE *out, bool flTalks) {
    if (flTalks)
        fprintf(out,
                "usage: %s [-tty] [QUEUE|-dQUEUE] [-SBP] [-fs FILE] -GS PPDFILE\n"
                "       %s [-tty] [-SBP] [-fs FILE] -MS QUEUE\n       %s -FP\n",
                my_name, my_name, my_name);
    else
        fprintf(out, "usage: %s -GS PPDFILE|-MS QUEUE\n", my_name);
}

static const char HelpText[] = "       %s --help | --version\n"
                               "\n"
                               "  -GS PPDFILE  the features of a model, a file in \"ppd\": leaves the "
                               "settings in the file \".settings\"\n"
                               "  -MS QUEUE    the same for a queue, with its settings to begin with\n";
static const char TalksText[] = "  -tty         ask on the terminal, also where there is a window\n"
                                "  -fs FILE     leaves the settings in that file\n"
                                "  -SBP         with the options of banner pages\n"
                                "  -FP          choose a queue first, in a window\n";

// True if that was all that was asked for.
static bool AnswerWord(const std::string &word, bool flTalks) {
    if (word == "--version") printf("%s %s\n", my_name, ToolVersion);
    if (word != "--help") return word == "--version";
    PrintUsage(stdout, flTalks);
    printf(HelpText, my_name);
    if (flTalks) printf("%s", TalksText);
    return true;
}

// ---- Arguments

// "-GSPATH" and "-GS PATH" are the same, and so are those of -MS.
static std::string ReadSource(int argc, char **argv, int &at, Arguments &arguments) {
    std::string word = argv[at], value = word.substr(3);
    word.resize(3);
    if (value.empty() && at + 1 < argc) value = argv[++at];
    arguments.flQueue = word == "-MS";
    if (value.empty() || value[0] == '-')
        return "option " + word + (arguments.flQueue ? " needs a queue" : " needs a PPD file");
    (arguments.flQueue ? arguments.queue : arguments.ppd) = value;
    return "";
}

static std::string ReadTarget(int argc, char **argv, int &at, Arguments &arguments) {
    if (at + 1 >= argc || !*argv[at + 1] || argv[at + 1][0] == '-') return "option -fs needs a file";
    arguments.target = argv[++at];
    return "";
}

static std::string ReadWord(const std::string &word, bool flTalks, Arguments &arguments) {
    if (word == "-tty" && flTalks)
        arguments.flTty = true;
    else if (word == "-SBP" && flTalks)
        arguments.flBanner = true;
    else if (word == "-FP" && flTalks)
        arguments.flBackground = true;
    else if (word.starts_with("-") && !word.starts_with("-d"))
        return "option " + word.substr(0, 80) + " is unknown";
    else if (!arguments.flQueue && word != "-d" && !word.empty())
        arguments.queue = word.starts_with("-") ? word.substr(2) : word;
    return "";
}

static std::string ReadArguments(int argc, char **argv, bool flTalks, Arguments &arguments) {
    for (int at = 1; at < argc; at++) {
        std::string word = argv[at];
        bool flSource = word.starts_with("-GS") || word.starts_with("-MS");
        std::string error = flSource                   ? ReadSource(argc, argv, at, arguments)
                            : word == "-fs" && flTalks ? ReadTarget(argc, argv, at, arguments)
                                                       : ReadWord(word, flTalks, arguments);
        if (!error.empty()) return error;
    }
    if (arguments.flBackground) return "";
    return arguments.ppd.empty() && !arguments.flQueue ? "no PPD file told; -GS or -MS is needed" : "";
}

// ---- Model and queue

static std::string PpdPath(const std::string &name) {
    return std::string(pToolPath) + "/ppd/" + name;
}

static std::string FileName(const std::string &path) {
    return path.substr(path.rfind('/') + 1);
}

// The path of the PPD file and the settings that the queue keeps. A record may come from anybody: its PPD is
// a file name or nothing.
static std::string ReadQueue(const std::string &queue, std::string &path, std::string &settings) {
    static QueRecord record;
    if (!GetQueDbEntry(&record, queue.c_str())) return "there is no queue \"" + queue.substr(0, 80) + "\"";
    std::string file = record.ppdFile;
    if (file.empty() || file.find('/') != file.npos)
        return "the record of queue \"" + queue.substr(0, 80) + "\" names no PPD file";
    path = PpdPath(file);
    if (record.settings) settings = record.settings;
    return "";
}

// With -GS a queue may be named that is still to be made, or one that has another model now: its settings
// count only if they are this model's.
static std::string FindModel(const Arguments &arguments, std::string &path, std::string &settings) {
    if (arguments.flQueue) return ReadQueue(arguments.queue, path, settings);
    path = arguments.ppd.find('/') == arguments.ppd.npos ? PpdPath(arguments.ppd) : arguments.ppd;
    std::string kept, keptPath;
    if (arguments.queue.empty() || !ReadQueue(arguments.queue, keptPath, kept).empty()) return "";
    if (FileName(path) == FileName(keptPath)) settings = kept;
    return "";
}

// ---- The program

// The menu that called clears the screen as soon as this program ends, so the user is asked to have read.
static int Refuse(const std::string &error, bool flTty) {
    if (!flTty) return Complain(error);
    errormsg("%s", error.c_str());
    PostMsg("\n");
    return 1;
}

static void OpenTerminal() {
    InitSysCmdList();
    pDrvCoreDB = NlsOpenDB("CoreString", DBT_NO_WRITE | DBT_NO_RELOAD);
    pTtyHelp = TtyHtmlHelp;
    pTtyHtmlName = SaveStr("%s/help/QBguide-%s.html#features", pToolPath, pNLSLang ? pNLSLang : "en_US");
    pTtyHtmlTitle = "Tarvo Administration Help"; // until the page's own stands
}

// ".settings" holds what was chosen before in the same flow, so the dialogue goes on from there; those of a
// queue that was asked for by name are its record's.
static void TakeChosen(const Arguments &arguments, FeatureTask &task) {
    std::string before;
    bool flFlow = !arguments.flQueue && ReadWholeFile(task.target, SETTINGS_MAX, before).empty();
    if (flFlow) task.settings = before;
    ChooseSettings(task.ppd, task.settings);
}

static std::string PrintStored(const FeatureTask &task) {
    std::string made = MakeSettings(task.ppd, task.settings);
    printf("%s: %d settings of %s kept in %s\n", my_name,
           static_cast<int>(std::count(made.begin(), made.end(), '\n')), FileName(task.source).c_str(),
           task.target.c_str());
    return fflush(stdout) ? "can't tell so on standard output" : "";
}

// Nobody is asked: the choices of the settings, else the model's own.
static std::string Store(FeatureTask &task) {
    ChooseSettings(task.ppd, task.settings);
    std::string error = WriteSettings(task.target, MakeSettings(task.ppd, task.settings));
    return error.empty() ? PrintStored(task) : error;
}

static std::string OpenTask(const Arguments &arguments, FeatureTask &task) {
    std::string error = FindModel(arguments, task.source, task.settings);
    if (error.empty()) error = ReadPpd(task.source, task.ppd);
    task.target = arguments.target.empty() ? SettingsName : arguments.target;
    if (task.target[0] != '/') task.target = std::string(pToolPath) + "/" + task.target;
    task.flBanner = arguments.flBanner;
    if (arguments.flQueue) task.queue = arguments.queue;
    if (task.ppd.model.empty()) task.ppd.model = FileName(task.source);
    return error;
}

static std::string TalkInWindow(const Arguments &arguments, const WindowFace *face, FeatureTask &task) {
    if (!face->open()) {
        std::string error = Store(task);
        if (error.empty()) TellUser("warning: nobody could be asked: the features are kept as they are");
        return error;
    }
    TakeChosen(arguments, task);
    return face->chooseFeatures(task) ? PrintStored(task) : "";
}

static std::string Run(const Arguments &arguments, const WindowFace *face, FeatureTask &task) {
    if (!face) return Store(task);
    if (!arguments.flTty) return TalkInWindow(arguments, face, task);
    TakeChosen(arguments, task);
    RunDialogue(task.ppd, task.settings, task.target, task.flBanner);
    return "";
}

int RunFrontEnd(int argc, char **argv, const char *name, const WindowFace *face) {
    Arguments arguments;
    FeatureTask task;
    BeginProgram(name);
    if (argc == 2 && AnswerWord(argv[1], face)) return fflush(stdout) ? 1 : 0;
    FindToolDirectory(argv[0]);
    std::string error = ReadArguments(argc, argv, face != nullptr, arguments);
    if (arguments.flTty) OpenTerminal();
    if (!error.empty()) {
        PrintUsage(stderr, face != nullptr);
        return Refuse(error, arguments.flTty);
    }
    if (arguments.flBackground) return face->open() ? face->chooseQueue() : 1;
    error = OpenTask(arguments, task);
    if (error.empty()) error = Run(arguments, face, task);
    return error.empty() ? 0 : Refuse(error, arguments.flTty);
}

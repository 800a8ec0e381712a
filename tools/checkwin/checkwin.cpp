// Checks the descriptions of windows, about which the reader itself is silent.
//
//   checkwin STAGE             all windows of the program, in every language
//   checkwin STAGE FILE [SET]  a description of yours, its holes filled from that set
//
// STAGE is a tool directory, for texts and pictures. Each fault is a line "description:line:column: what";
// the line and column are those of the description's text, of a macro call for what comes out of the macro.
// Status 0 if there is none, 1 if there is, 2 if it could not be looked for.
#include "common/DbmT.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiMacros.h"
#include "prndeck/gui/PrdGuiWindows.h"
#include "siblings/prnpnxxtty/window/Window.h"
#include "tools/checkwin/Args.h"
#include "tools/checkwin/Objects.h"
#include "tools/checkwin/Reader.h"
#include "tools/checkwin/Report.h"
#include "xmt/XmtHelp.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

enum { TEXT_SIZE = 2048 };

// ---- holes

struct Catalogue {
    std::string language;
    DbTHandle *handle;
};

// False if there is no such text: its key stands for it, as in the windows.
static bool FetchText(const Catalogue &catalogue, int set, int number, std::string *text) {
    char buffer[TEXT_SIZE] = "";
    std::string key = std::to_string(set) + "_" + std::to_string(number);
    int size = DbmTGetRecord(catalogue.handle, key.c_str(), buffer, sizeof buffer - 1);
    *text = size > 0 ? buffer : key;
    return size > 0;
}

// The letter of the argument whose parenthesis is open at the end of the text, NUL for none.
static char OpenArgument(const std::string &text) {
    size_t open = text.rfind('('), close = text.rfind(')');
    if (open == text.npos || open == 0 || (close != text.npos && close > open)) return '\0';
    return text[open - 1];
}

// A text of the catalogue must not be read as anything but text.
static void CheckText(const Catalogue &catalogue, int set, int number, const std::string &text, char argument,
                      const Place &place) {
    const char *bad = argument == 'L' ? ")\\;<>{}%" : ",)\\;<>{}%";
    for (; *bad; bad++)
        if (text.find(*bad) != text.npos)
            Report(place, "text %d/%d of %s holds a '%c'", set, number, catalogue.language.c_str(), *bad);
}

struct Hole {
    int set, number;  // set 0: any text will do
    const char *font; // or the name of a font that stands in the catalogue of models
};

// They are those of the English catalogue in every language.
static std::string FetchFont(const char *key) {
    char buffer[TEXT_SIZE] = "";
    DbTHandle *handle = DbTOpen((StageDir + "/db/en_US/PrtString.xdb").c_str(), 0);
    if (handle) DbmTGetRecord(handle, key, buffer, sizeof buffer - 1);
    if (handle) DbTClose(handle);
    return *buffer ? buffer : "fixed";
}

static void FillHole(const Catalogue &catalogue, const Hole &hole, Text *out, const Place &place) {
    std::string text = hole.font ? FetchFont(hole.font) : AnyText;
    if (hole.set && !FetchText(catalogue, hole.set, hole.number, &text))
        Report(place, "text %d/%d of %s is missing", hole.set, hole.number, catalogue.language.c_str());
    if (hole.set) CheckText(catalogue, hole.set, hole.number, text, OpenArgument(out->chars), place);
    for (char ch : text) out->add(ch, place);
}

static Text FillHoles(const Catalogue &catalogue, const std::string &chars, const Hole *holes, int set) {
    Text from = PlaceText(chars), out;
    int number = 0;
    for (size_t at = 0; at < chars.size(); at++) {
        if (chars.compare(at, 2, "%s") != 0) {
            if (chars[at] == '%') Report(from.place(at), "'%%' that is no hole");
            out.add(chars[at], from.place(at));
            continue;
        }
        Hole hole = holes ? holes[number] : Hole{set, number + 1, nullptr};
        FillHole(catalogue, hole, &out, from.place(at++));
        number++;
    }
    std::string text;
    if (!holes && set && FetchText(catalogue, set, number + 1, &text))
        Report(from.place(chars.size()), "%d holes, but there is a text %d/%d in %s", number, set, number + 1,
               catalogue.language.c_str());
    return out;
}

// ---- descriptions

static void CheckText(const std::string &name, const Text &text) {
    std::string own = ReadDescription(text), reader = AskReader(text.chars);
    if (own == reader) return;
    size_t at = 0, line = 0;
    while (at < own.size() && own[at] == reader[at]) line += own[at++] == '\n';
    ReportOf(name, {}, "object " + std::to_string(line + 1) + " is read in another way by the program");
}

static void CheckDescription(const Catalogue &catalogue, const char *name, const std::string &chars,
                             const Hole *holes, int set) {
    BeginSource(name);
    CheckText(name, FillHoles(catalogue, chars, holes, set));
}

static const Hole HelpHoles[] = {
    {}, {NLS_HELP_SET, 1, nullptr}, {NLS_HELP_SET, 2, nullptr}, {NLS_HELP_SET, 3, nullptr}};

static const Hole MacroHoles[] = {
    {0, 0, "PrdGuiFontDef1"}, {0, 0, "PrdGuiFontDef2"}, {0, 0, "PrdGuiFontDef3"},
    {0, 0, "PrdGuiFontDef4"}, {0, 0, "PrdGuiFontDef5"}, {0, 0, "PrndeckMainFontDef"},
    {SET_MACROS, 1, nullptr}, {SET_MACROS, 2, nullptr}, {}};

// It hears of its own objects, whatever stands beside it.
static void CheckHelp(const Catalogue &catalogue) {
    SourceHandler = reinterpret_cast<const void *>(XmtHtmlEventHandler);
    CheckDescription(catalogue, "XmtHtmlHelpDesc", XmtHtmlHelpDesc, HelpHoles, 0);
    SourceHandler = nullptr;
}

static void ForgetAll() {
    CheckWanted();
    CheckNumbers();
    ForgetObjects();
    MacroTexts.clear();
}

// Windows that nothing else is made beside: the manual's own, and those of the front end.
static void CheckAlone(const Catalogue &catalogue) {
    ForgetAll();
    CheckDescription(catalogue, "XmtHelpMWDesc", XmtHelpMWDesc, HelpHoles, 0);
    ForgetAll();
    for (const FrontWindow &window : FrontWindows) {
        CheckDescription(catalogue, "MainMacroDesc", MainMacroDesc, MacroHoles, 0);
        CheckDescription(catalogue, window.name, window.text, nullptr, window.set);
        CheckHelp(catalogue);
        ForgetAll();
    }
}

static void CheckShipped(const Catalogue &catalogue) {
    CheckDescription(catalogue, "MainMacroDesc", MainMacroDesc, MacroHoles, 0);
    for (const GuiDesc *desc = GuiDescs; desc->name; desc++) {
        SourceHandler = reinterpret_cast<const void *>(desc->handler);
        CheckDescription(catalogue, desc->name, desc->text, nullptr, desc->set);
    }
    CheckHelp(catalogue);
}

// What the program hears by number.
static void CheckIds() {
    for (const GuiId &id : GuiIds) CheckId(id.object, id.id);
}

struct Job {
    const char *stage, *file; // file null: the shipped ones alone
    std::string text;         // of the file
    int set;
};

static bool CheckLanguage(const Job &job, const std::filesystem::path &directory) {
    std::string path = (directory / "CoreString.xdb").string();
    Catalogue catalogue = {directory.filename().string(), DbTOpen(path.c_str(), 0)};
    if (!catalogue.handle) {
        fprintf(stderr, "checkwin: can't read %s\n", path.c_str());
        return false;
    }
    CheckAlone(catalogue);
    CheckShipped(catalogue);
    if (job.file) CheckDescription(catalogue, job.file, job.text, nullptr, job.set);
    CheckWanted();
    CheckNumbers();
    CheckIds();
    DbTClose(catalogue.handle);
    return true;
}

static bool CheckLanguages(const Job &job) {
    int count = 0;
    std::error_code error;
    StageDir = std::filesystem::absolute(job.stage).string();
    for (const auto &entry : std::filesystem::directory_iterator(StageDir + "/db", error)) {
        if (!entry.is_directory()) continue;
        if (!CheckLanguage(job, entry.path())) return false;
        count++;
    }
    if (count == 0) fprintf(stderr, "checkwin: no texts in %s/db\n", job.stage);
    return count > 0;
}

static bool ReadFile(Job *job) {
    std::ifstream file(job->file);
    job->text.assign(std::istreambuf_iterator<char>(file), {});
    job->text.resize(strlen(job->text.c_str())); // a NUL ends a description
    if (!file.is_open()) fprintf(stderr, "checkwin: can't read %s\n", job->file);
    return file.is_open();
}

int main(int argc, char **argv) {
    if (argc < 2 || argc > 4) {
        fprintf(stderr, "usage: checkwin STAGE [FILE [SET]]\n");
        return 2;
    }
    Job job = {argv[1], argv[2], "", argc > 3 ? atoi(argv[3]) : 0};
    if (job.file && !ReadFile(&job)) return 2;
    if (!CheckLanguages(job)) return 2;
    int count = PrintReport(!job.file);
    if (count) printf("%d faults\n", count);
    return count ? 1 : 0;
}

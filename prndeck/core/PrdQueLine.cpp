// The command lines for prnqtool and the driver front end.
#include "prndeck/core/PrdQueLine.h"

#include "common/MemMgr.h"
#include "common/SysCmd.h"
#include "common/SysFile.h"
#include "common/Words.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "print/Told.h"

#include <cstdio>
#include <string_view>
#include <unistd.h>

const char FrontEndProgram[] = "prnpnxxtty";
const char SettingsFile[] = ".settings";
const char BannerFile[] = ".bsettings";

std::string GetLprQueue(const char *ppdFile) {
    char value[PPD_VALUE];
    return GetPpdKeyValue(ppdFile, "LprQue", value, sizeof value) ? value : "lp";
}

static std::string ToolProgram(const char *name) {
    return ShArg(pToolPath) + "/" + name;
}

static std::string LogOption() {
    return " -log prndeck";
}

static const char *ModelWord(int printingModel) {
    return PMs[printingModel >= 0 && printingModel < PM_COUNT ? printingModel : 0];
}

static std::string AddressOption(const QueTarget &target) {
    return (IsDeviceType(target.type) ? " -dn " : " -hn ") + ShArg(target.address);
}

static std::string RemoteOption(const QueTarget &target) {
    return " -psqn " + ShArg(target.remote);
}

static std::string WorkFileOption(const char *option, const char *file) {
    return TestToolFile(file) ? std::string(" ") + option + " " + file : "";
}

// What follows the part that all types share. An option that isn't chosen leaves its blank behind.
static std::string AddTail(const QueTarget &target, const QueOptions &options) {
    switch (target.type) {
    case QUEUE_SERVER_HOST: return AddressOption(target) + " ";
    case QUEUE_SERVER_DEVICE: return AddressOption(target);
    default:
        return AddressOption(target) + RemoteOption(target) + " " + (options.features ? "-fe" : "") + " " +
               (options.banner ? "-bp" : "") + " " + (options.userInterface ? "-ui" : "");
    }
}

std::string MakeAddLine(const QueTarget &target, const char *ppdFile, int printingModel,
                        const QueOptions &options) {
    return ToolProgram("prnqtool ") + ShArg(target.name) + LogOption() + " -fs " + SettingsFile + " -ppd " +
           ShArg(ppdFile) + " -pm " + ModelWord(printingModel) + " " + (options.isDefault ? "-d" : "") +
           " -lpd" + AddTail(target, options) + WorkFileOption("-bps", BannerFile);
}

std::string MakeCopyLine(const QueTarget &target, const char *source, int printingModel) {
    return ToolProgram("prnqtool ") + ShArg(target.name) + LogOption() + " -cl " + ShArg(source) + " -pm " +
           ModelWord(printingModel) + AddressOption(target) + RemoteOption(target);
}

static std::string ModifyLine(const char *name, const QueOptions &options, int flLog) {
    std::string line = ToolProgram("prnqtool ") + ShArg(name) + " -mq";
    if (flLog) line += LogOption();
    if (options.userInterface) line += " -ui";
    if (options.features) line += " -fe";
    if (options.banner) line += " -bp";
    if (options.isDefault) line += " -d";
    return line;
}

std::string MakeModifyLine(const char *name, const QueOptions &options, int flLog) {
    return ModifyLine(name, options, flLog) + WorkFileOption("-fs", SettingsFile) +
           WorkFileOption("-bps", BannerFile);
}

std::string MakeModifyLineOf(const char *name, const QueOptions &options, const std::string &settings,
                             const std::string &banner) {
    return ModifyLine(name, options, 0) + " -fs " + ShArg(settings) +
           (banner.empty() ? "" : " -bps " + ShArg(banner));
}

std::string MakeDeleteLine(const char *name) {
    return ToolProgram("prnqtool ") + ShArg(name) + " -x" + LogOption();
}

std::string MakeDeleteListLine(const char *names) {
    std::string line = ToolProgram("prnqtool") + LogOption() + " -xl";
    std::string_view rest(names);
    for (std::string_view name; TakeWord(rest, " ", name);) line += " " + ShArg(name);
    return line;
}

std::string MakeDeleteAllLine() {
    return ToolProgram("prnqtool") + LogOption() + " -x all";
}

std::string MakeDefaultBannerLine(int flSet) {
    return ToolProgram("prnqtool") + (flSet ? std::string(" -dbps ") + BannerFile : " -xdbps");
}

std::string MakeFeatureLine(const char *ppdFile, int flBanner) {
    return ToolProgram(FrontEndProgram) + " -tty " + (flBanner ? "-SBP" : "") + " -GS" +
           ShArg(std::string(pToolPath) + "/ppd/" + ppdFile);
}

static bool HasModelItem(const char *ppdFile, const char *item) {
    char value[PPD_VALUE];
    return GetPpdKeyValue(ppdFile, item, value, sizeof value) != nullptr;
}

const char *GetFeatureProgram(const char *ppdFile) {
    if (HasModelItem(ppdFile, "v5ModelName")) return "v5driver";
    return HasModelItem(ppdFile, "v4DriverPluginFilename") ? "driver" : FrontEndProgram;
}

static std::string MakeDriverLine(const char *program, const FeatureCall &call) {
    std::string source = call.flStored ? " -MS " + ShArg(call.queue) : " -GS " + ShArg(call.ppdFile);
    return ToolProgram(program) + source + " 1>>/dev/null 2>>/dev/null";
}

std::string MakeFeatureWindowLine(const FeatureCall &call) {
    const char *program = GetFeatureProgram(call.ppdFile);
    if (program != FrontEndProgram) return MakeDriverLine(program, call);
    return ToolProgram(program) + " " + (*call.queue ? "-d" + ShArg(call.queue) : "") + " " +
           (call.flBanner ? "-SBP" : "") + " -GS" + ShArg(std::string(pToolPath) + "/ppd/" + call.ppdFile);
}

int RunQueLine(const std::string &line, std::string *told) {
    std::string fault = GetQueToolFault();
    ToldEar ear;
    int status = SysCmd(CMD_LINE, 0, "%s", line.c_str());
    *told = fault.empty() ? ear.Text() : fault;
    return status;
}

static int GetPlaceKind(const QueRecord *record) {
    if (record->lpd || record->type == QUEUE_SERVER) return PLACE_REMOTE;
    return IsDeviceType(record->type) ? PLACE_DEVICE : PLACE_HOST;
}

QuePlace GetQuePlace(const QueRecord *record) {
    QuePlace place = {.kind = GetPlaceKind(record), .counted = 0, .address = "", .remote = ""};
    place.counted = GetQueCountWords(record->printer, place.address, place.remote, PLACE_WORD);
    // All queues of a printer share its count record, which holds the name of the one made last.
    if (place.counted && place.kind == PLACE_REMOTE && *record->lprQueue)
        snprintf(place.remote, PLACE_WORD, "%s", record->lprQueue);
    return place;
}

void StartLpsched() {
    if (TestCmd(CMD_LPSCHED)) SysCmd(CMD_LPSCHED, 1, "%s", "");
}

int TestToolFile(const char *name) {
    return FindFile(pToolPath, name);
}

int DeleteWorkFile(const char *name) {
    // The host's command would end the program where it can't remove the file.
    if (access(pToolPath, W_OK) == 0) DeleteFile(pToolPath, name);
    return !TestToolFile(name);
}

void DeleteWorkFiles() {
    DeleteWorkFile(SettingsFile);
    DeleteWorkFile(BannerFile);
}

int PutSettingsFile(QueRecord *record) {
    if (!record->settings) return 1;
    std::string path = std::string(pToolPath) + "/" + SettingsFile;
    int written = CreateTextFile(path.c_str(), "wt", 0, "%s", record->settings);
    PutMem(record->settings);
    record->settings = nullptr;
    return written;
}

// The setup wizard: changes of a queue.
#include "prndeck/core/Prd.h"

#include "common/NlsUtils.h"
#include "common/Token.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdQueLine.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/gui/PrdGuiBanner.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "prndeck/gui/PrdGuiTold.h"
#include "prndeck/gui/PrdWizard.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <iterator>

enum { MSG_NO_MODIFY = 3, MSG_COUNT = 166 };

void PrepareModifyQue() {
    XmtSetDialogButtons("wmqw", "wmqap", "wmqca");
}

// ---- The queue as it stands

// In the order of the messages from MSG_KIND on.
enum { KIND_SERVER, KIND_PRINTER, KIND_TCP, KIND_DEVICE, KIND_COUNT };

static const char *GetKindText(int kind) {
    enum { MSG_KIND = 84 };
    static std::string Texts[KIND_COUNT];
    for (int i = 0; i < KIND_COUNT; i++)
        if (Texts[i].empty()) Texts[i] = NlsText(pDrvCoreDB, SET_MESSAGES, MSG_KIND + i);
    return Texts[kind].c_str();
}

// A label shows a text, or with null it is hidden.
static void SetRow(const char *label, const char *text) {
    if (text) XmtSetLabelText(label, text);
    XmtSetItemState(label, text ? XMT_SHOW : XMT_HIDE);
}

static std::string GetCountText(const QuePlace &place) {
    std::string text = NlsText(pDrvCoreDB, SET_MESSAGES, MSG_COUNT);
    return NlsFmt(text.c_str(), "ss", place.address, place.remote);
}

// With a count record two rows show where the queue prints, without one the printer stands alone.
static void SetPlaceRows(const QuePlace &place) {
    std::string counted = GetCountText(place);
    bool device = place.kind == PLACE_DEVICE, host = place.kind == PLACE_HOST;
    const char *where = place.counted ? counted.c_str() : host ? MPS.printer : nullptr;
    const char *path = place.counted ? place.address : MPS.printer;
    SetRow("wmqhn", device ? nullptr : where);
    SetRow("wmqdn", device ? path : nullptr);
    SetRow("wmqtn", place.counted || place.kind == PLACE_REMOTE ? MPS.printer : nullptr);
}

static void SetQueRows(const char *name) {
    XmtSetLabelText("wmqn", name);
    XmtSetLabelText("wmqpm", PrinterModel ? GetModelName(PrinterModel).c_str() : MPS.ppdFile);
    XmtSetLabelText("wmqcm", GetKindText(MPS.type == QUEUE_SERVER ? KIND_SERVER : KIND_PRINTER));
    XmtSetLabelText("wmqc", GetKindText(IsDeviceType(MPS.type) ? KIND_DEVICE : KIND_TCP));
    XmtSetLabelText("wmqd", MPS.lpd ? "lpd" : "PrnOutD");
    SetPlaceRows(GetQuePlace(&MPS));
}

// Sets a choice and what is kept of it. The features' format brings the other rows along.
static void SetChoice(const char *name, int *kept, int flOn) {
    *kept = flOn != 0;
    XmtSetValuePF(name, *kept + 1, 1);
}

int SetQueSettings(const char *name) {
    if (!name || !GetQueDbEntry(&MPS, name)) {
        PostQueText(MSG_NO_MODIFY, name ? name : "");
        return 0;
    }
    if (!PutSettingsFile(&MPS)) {
        PostUnwritten(SettingsFile);
        return 0;
    }
    PrinterModel = PpdList ? FindToken(MPS.ppdFile, PpdList) : 0;
    PrintingModel = GetQueChoice(MPS.type).printingModel;
    SetQueRows(name);
    SetChoice("wmqbp", &BannerPage, MPS.banner);
    SetChoice("wmqgt", &GuiType, MPS.userInterface);
    SetChoice("wmqf", &UseFeatures, MPS.features);
    SetChoice("wmqdp", &DefaultPrinter, TestDefaultQueue(name));
    return 1;
}

static int LoadModifyQue() {
    DeleteWorkFiles();
    if (!SetQueSettings(MQueName)) return 0;
    if (!GetBannerInfo(MQueName)) {
        PostUnwritten(BannerFile);
        return 0;
    }
    DisableCustomBannerCheck(PrintingModel, PrinterModel, 1);
    return 1;
}

void OpenModifyQue() {
    if (!LoadModifyQue()) RefuseWindow("wmqw");
}

// ---- Changes

void SetUpQueFeatures() {
    BusyCursor busy("prndeck,wmqw");
    if (MQueName) RunFeatures(MPS.ppdFile, MQueName, 1);
}

void ApplyModifySettings() {
    if (!MQueName) return;
    BusyCursor busy("prndeck,wmqw");
    MPS.banner = static_cast<unsigned char>(BannerPage);
    MPS.features = static_cast<unsigned char>(UseFeatures);
    MPS.userInterface = static_cast<unsigned char>(GuiType);
    MPS.isDefault = static_cast<unsigned char>(DefaultPrinter);
    QueOptions options = {UseFeatures, BannerPage, GuiType, DefaultPrinter};
    std::string told;
    RunQueLine(MakeModifyLine(MQueName, options, 0), &told);
    PostTold(told);
}

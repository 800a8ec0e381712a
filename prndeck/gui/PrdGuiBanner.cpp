// The banner window.
#include "prndeck/gui/PrdGuiBanner.h"

#include "print/MainUtils.h"
#include "print/PrdCommonUtils.h"
#include "print/QueFormat.h"
#include "prndeck/core/PrdBanner.h"
#include "prndeck/core/PrdQueLine.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "prndeck/gui/PrdGuiTold.h"
#include "prndeck/gui/PrdWizard.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <iterator>
#include <string>

static constexpr char Fields[] = "cbph1,cbps1,cbph2,cbps2,cbph3,cbps3";
enum { TOGGLE_OFF = 1, OPTION_OFF = 1, OPTION_ON = 2 }; // items from 1

// As the rows of a banner text.
static constexpr struct {
    const char *title;
    const char *size;
} Rows[] = {{"cbph1", "cbps1"}, {"cbph2", "cbps2"}, {"cbph3", "cbps3"}};
static_assert(std::size(Rows) == BANNER_ROWS);

char *pCBannerInfo;
char *pSysDefBanInfo;

void PrepareBanner() {
    XmtSetDialogButtons("cbpw", nullptr, "cbpca");
}

// ---- The window

void OpenBanner() {
    XmtResetToStoredValue(Fields);
    CancelBanner();
}

void CancelBanner() {
    XmtSetValuePF("cbpd", TOGGLE_OFF, 0);
}

void SetBannerInfo(const char *text, int flStore) {
    BannerRow rows[BANNER_ROWS];
    ReadBannerText(text, rows);
    for (int i = 0; i < BANNER_ROWS; i++) {
        XmtSetValuePF(Rows[i].title, rows[i].title, 0);
        XmtSetValuePF(Rows[i].size, rows[i].size + 1, 0);
    }
    if (flStore) XmtStoreValue(Fields);
    XmtSetValuePF("cbpd", TOGGLE_OFF, 0);
}

static std::string GetStoredBanner() {
    BannerRow rows[BANNER_ROWS];
    for (int i = 0; i < BANNER_ROWS; i++) {
        const char *title = XmtTextOf(XmtGetStoredValue(Rows[i].title));
        SetBannerRow(&rows[i], title ? title : "", static_cast<int>(XmtGetStoredValue(Rows[i].size)));
    }
    return MakeBannerText(rows);
}

static void ReadDefaultBanner() {
    char text[BANNER_TEXT];
    GetQueDbText(QueBannerKey, text, sizeof text);
    KeepName(&pSysDefBanInfo, text);
}

static void SetDefaultBanner(const char *text) {
    BusyCursor busy("prndeck,wqw,wmqw");
    PostTold(PutDefaultBanner(text));
    ReadDefaultBanner();
    XmtSetValuePF("cbpd", TOGGLE_OFF, 0);
}

void SaveBannerInfo() {
    std::string text = GetStoredBanner();
    if (!PutBannerFile(text.c_str())) PostUnwritten(BannerFile);
    if (XmtGetStoredValue("cbpd")) SetDefaultBanner(text.c_str());
}

int GetBannerInfo(const char *queue) {
    char text[BANNER_TEXT] = "";
    if (queue) GetQueDbText(QueOwnBannerKey(queue).c_str(), text, sizeof text);
    KeepName(&pCBannerInfo, text);
    ReadDefaultBanner();
    SetBannerInfo(pCBannerInfo ? pCBannerInfo : pSysDefBanInfo, 1);
    return !pCBannerInfo || PutBannerFile(pCBannerInfo);
}

// ---- What a model allows

static void SetBannerChoice(int flOn, int flKeep) {
    BannerPage = flOn;
    XmtSetValuePF("wqbp", flOn ? OPTION_ON : OPTION_OFF, 0);
    if (flKeep) XmtSetValuePF("wmqbp", flOn ? OPTION_ON : OPTION_OFF, 0);
}

static void EnableBy(int flAllowed, const char *objects) {
    if (flAllowed == BANNER_UNSAID) return;
    XmtSetItemState(objects, flAllowed ? XMT_ENABLE : XMT_DISABLE);
}

void DisableCustomBannerCheck(int printingModel, int model, int flKeep) {
    BannerRule rule = GetBannerRule(GetModelBase(model), printingModel);
    EnableBy(rule.allowed, "wqbp_B1,wqcbp,wmqbp,wmqcbp");
    EnableBy(rule.setup, "wqcbp,wmqcbp");
    if (rule.value == 0 || (rule.value == 1 && !flKeep)) SetBannerChoice(rule.value, flKeep);
}

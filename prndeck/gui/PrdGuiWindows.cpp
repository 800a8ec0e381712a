// The table of all windows.
#include "prndeck/gui/PrdGuiWindows.h"

#include "common/Version.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/gui/PrdDiscDesc.h"
#include "prndeck/gui/PrdDiscWin.h"
#include "prndeck/gui/PrdGuiBanner.h"
#include "prndeck/gui/PrdGuiDesc.h"
#include "prndeck/gui/PrdGuiDisplay.h"
#include "prndeck/gui/PrdGuiEvent.h"
#include "prndeck/gui/PrdGuiJobs.h"
#include "prndeck/gui/PrdGuiJobsDesc.h"
#include "prndeck/gui/PrdGuiList.h"
#include "prndeck/gui/PrdGuiSend.h"
#include "prndeck/gui/PrdGuiSendDesc.h"
#include "prndeck/gui/PrdGuiSnmpDesc.h"
#include "prndeck/gui/PrdGuiSnmpManagement.h"
#include "prndeck/gui/PrdGuiSnmpReset.h"
#include "prndeck/gui/PrdWizard.h"
#include "prndeck/gui/PrdWizardDesc.h"
#include "xmt/XmtNewWin.h"

static std::string FillVersion() {
    return PRN_VERSION;
}

static void PrepareAbout() {
    XmtSetDialogButtons("aw", "awo", "awo");
}

// Dialogs belong to the main window, which is the first. A step speaks of windows up to its own.
const GuiDesc GuiDescs[] = {
    {"MainWinDesc", MainWinDesc, SET_MAIN, WizEventHandler, nullptr, PrepareMainWindow},
    {"DisplaySetupDesc", DisplaySetupDesc, SET_DISPLAY, WizEventHandler, nullptr, PrepareDisplaySetup},
    {"AboutDesc", AboutDesc, SET_ABOUT, WizEventHandler, FillVersion, PrepareAbout},
    {"IPDiscoveryDesc", IPDiscoveryDesc, SET_DISC, IPDiscoveryEventHandler, nullptr, PrepareDiscovery},
    {"SystemPropertyDesc", SystemPropertyDesc, SET_SHEET, IPDiscoveryEventHandler, nullptr, PrepareSheet},
    {"SNMPResetWaitDialog", SNMPResetWaitDialog, SET_RESET, IPDiscoveryEventHandler, nullptr,
     PrepareResetWait},
    {"ModifyQueDesc", ModifyQueDesc, SET_MODIFY_LIST, WizardEventHandler, nullptr, PrepareModifyList},
    {"ModifyQueWinDesc", ModifyQueWinDesc, SET_MODIFY, WizardEventHandler, nullptr, PrepareModifyQue},
    {"DeleteQueDesc", DeleteQueDesc, SET_DELETE, WizardEventHandler, nullptr, PrepareDeleteQue},
    {"CopyQueSelectionDesc", CopyQueSelectionDesc, SET_COPY_LIST, WizardEventHandler, nullptr,
     PrepareCopyList},
    {"CopyQueDesc", CopyQueDesc, SET_COPY, WizardEventHandler, nullptr, PrepareCopyQue},
    {"ConfigureBannerDesc", ConfigureBannerDesc, SET_BANNER, WizardEventHandler, nullptr, PrepareBanner},
    {"AddQueDesc", AddQueDesc, SET_ADD, WizardEventHandler, FillModels, PrepareAddQue},
    {"SetupSendFileDesc", SetupSendFileDesc, SET_SEND, WizEventHandler, nullptr, PrepareSend},
    {"JobWinDesc", JobWinDesc, SET_JOBS, WizardEventHandler, nullptr, PrepareJobs},
    {},
};

std::string GenGuiText(const GuiDesc *desc) {
    std::string text = GenGuiDesc(desc->text, desc->set);
    if (!desc->fill) return text;
    std::string value = desc->fill();
    const char *values[] = {value.c_str()};
    return FillGuiDesc(text, values, 1);
}

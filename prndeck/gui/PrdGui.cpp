// The window face: its start.
#include "prndeck/gui/PrdGui.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/Prd.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdGuiSnmpText.h"
#include "prndeck/gui/PrdDiscWin.h"
#include "prndeck/gui/PrdGuiEvent.h"
#include "prndeck/gui/PrdGuiHelp.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiMacros.h"
#include "prndeck/gui/PrdGuiPanel.h"
#include "prndeck/gui/PrdGuiWindows.h"
#include "prndeck/gui/PrdWizard.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtHelp.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

enum { FIRST_DISCOVERY_SECONDS = 2 };

// What the descriptions leave to resources. A user's own resources win.
static constexpr char DefaultLook[] = "*enableToggleVisual: True\n"; // a toggle that is on has a check mark

static void RefuseKey(Widget widget, XEvent *, String *, Cardinal *) {
    XBell(XtDisplay(widget), 0);
}

// Motif would put letters with Ctrl into a field as control characters, which nobody sees.
static std::string GetFieldKeys() {
    std::string keys = "*XmTextField.translations: #override";
    for (char letter = 'a'; letter <= 'z'; letter++) {
        const char *action = letter == 'a'   ? "select-all"
                             : letter == 'c' ? "copy-clipboard"
                             : letter == 'v' ? "paste-clipboard"
                             : letter == 'x' ? "cut-clipboard"
                                             : "refuse-key";
        keys += std::string("\\n Ctrl<Key>") + letter + ": " + action + "()";
    }
    return keys + "\n";
}

static void SetDefaultLook() {
    static char Refuse[] = "refuse-key";
    static XtActionsRec Actions[] = {{Refuse, RefuseKey}};
    XtAppAddActions(AppContext, Actions, std::size(Actions));
    XrmDatabase look = XrmGetStringDatabase((DefaultLook + GetFieldKeys()).c_str());
    XrmDatabase all = XtScreenDatabase(AppScreen);
    XrmCombineDatabase(look, &all, 0);
}

int OpenWindowFace() {
    if (!XmtInitApp(my_name, my_name, nullptr, nullptr)) return 0;
    SetDefaultLook();
    return 1;
}

// Queues are root's affair. What belongs to a printer comes back with its selection, for everybody.
static void GreyoutNotRoot() {
    XmtDisable(MENU_QUEUES "," MENU_DISCOVERY ",tb1," MENU_UPGRADE "," MENU_RESET "," MENU_PROPERTIES
                           "," MENU_WEB);
}

void GenGui() {
    OpenCatalogues();
    flCreateCallback = 0;
    flNoBarMenuTraversal = 1;
    GenMacros();
    SetDialogWords();
    for (const GuiDesc *desc = GuiDescs; desc->name; desc++) {
        XmtNewObject(nullptr, desc->handler, 0, GenGuiText(desc).c_str());
        if (desc->step) desc->step();
    }
    GenWizardGui();
    InitPpdData();
    StartDiscovery();
    TranslateSNMPMessages();
    XmtDisable(MENU_SPACER_LEFT "," MENU_SPACER_RIGHT);
    XmtDisable(MENU_RESET);
    XmtSetPostMsgHelpWidget("tb6");
    XmtHide("tb2,tb2L," MENU_JOBS ",wqd_B1,wmqd,dqa");
    GreyoutSNMP(SNMP_NO_PRINTER);
    if (!flUserIsRoot) GreyoutNotRoot();
}

void InitGui(intptr_t) {
    UpdateQueList();
    DoRefresh();
}

int RunGui() {
    if (!OpenWindowFace()) return 0;
    GenGui();
    if (!flDiscOff) XmtStartTimer(XMT_TIMER_ONCE, FIRST_DISCOVERY_SECONDS, InitGui, 0);
    Cur_Product_Index = -1;
    XmtMainEventLoop();
    return 1;
}

void RunHelpOnly() {
    flHelpOnly = 1;
    if (!OpenWindowFace()) exit_app(1);
    ShowManual();
    exit_app(0);
}

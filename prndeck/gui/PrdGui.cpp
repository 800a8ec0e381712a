// The window face: its start and the handler of its events.
#include "prndeck/gui/PrdGui.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/Version.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/Prd.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/gui/PrdGuiDesc.h"
#include "prndeck/gui/PrdGuiMacros.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewBuild.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <cstdio>
#include <cstring>
#include <iterator>

enum { FIRST_DISCOVERY_SECONDS = 2 };
enum { LIST_INDENT = 3 }; // pixels that a list's frame shifts its rows against the title

// ---- Start

// What the descriptions leave to resources. A user's own resources win.
static constexpr char DefaultLook[] = "*enableToggleVisual: True\n"; // a toggle that is on has a check mark

static void SetDefaultLook() {
    XrmDatabase look = XrmGetStringDatabase(DefaultLook);
    XrmDatabase all = XtScreenDatabase(AppScreen);
    XrmCombineDatabase(look, &all, 0);
}

int OpenWindowFace() {
    if (!XmtInitApp(my_name, my_name, nullptr, nullptr)) return 0;
    SetDefaultLook();
    return 1;
}

void GenMacros() {
    static constexpr const char *FontKeys[] = {"PrdGuiFontDef1", "PrdGuiFontDef2", "PrdGuiFontDef3",
                                               "PrdGuiFontDef4", "PrdGuiFontDef5", "PrndeckMainFontDef"};
    std::string texts[std::size(FontKeys) + 2];
    const char *values[std::size(texts)];
    for (size_t i = 0; i < std::size(FontKeys); i++) {
        const char *font = FetchEngPrtStrDBValue(FontKeys[i], nullptr, 0);
        texts[i] = font ? font : "fixed";
    }
    texts[std::size(FontKeys)] = NlsText(pDrvCoreDB, 22, 1);
    texts[std::size(FontKeys) + 1] = NlsText(pDrvCoreDB, 22, 2);
    for (size_t i = 0; i < std::size(texts); i++) values[i] = texts[i].c_str();
    XmtNewObject(nullptr, WizEventHandler, 0, FillGuiDesc(MainMacroDesc, values, std::size(texts)).c_str());
}

static void GenAbout() {
    const char *version = PRN_VERSION;
    std::string text = FillGuiDesc(GenGuiDesc(AboutDesc, GUI_SET_ABOUT), &version, 1);
    XmtNewObject(nullptr, WizEventHandler, 0, text.c_str());
}

// Queues are root's affair. What belongs to a printer comes back with its selection, for everybody.
static void GreyoutNotRoot() {
    XmtDisable("printer_menu_2_b_1_pd,printer_menu_2_b_3,tb1,printer_menu_3_c_3,printer_menu_3_c_5,"
               "printer_menu_3_c_6,printer_menu_3_c_7");
}

void GenGui() {
    OpenCatalogues();
    flCreateCallback = 0;
    flNoBarMenuTraversal = 1;
    GenMacros();
    XmtNewObject(nullptr, WizEventHandler, 0, GenGuiDesc(MainWinDesc, GUI_SET_MAIN).c_str());
    XmtAddMenuKeys("printer_menu");
    XmtSetXmValue("scrolList_L", XmNmarginLeft, LIST_INDENT);
    SetupPrnListDisplay();
    XmtNewObject(nullptr, WizEventHandler, 0, GenGuiDesc(DisplaySetupDesc, GUI_SET_DISPLAY).c_str());
    XmtSetValuePF("d_ip", 2, 0);
    XmtSetValuePF("d_dt", 2, 0);
    XmtSetDialogButtons("dsw", "do", "dc");
    GenAbout();
    XmtSetDialogButtons("aw", "awo", "awo");
    InitPpdData();
    XmtDisable("printer_menu_1,printer_menu_6");
    XmtDisable("printer_menu_3_c_5");
    XmtSetPostMsgHelpWidget("tb6");
    XmtHide("tb2,tb2L,printer_menu_2_b_2,wqd_B1,wmqd,dqa");
    GreyoutSNMP(SNMP_NO_PRINTER);
    if (!flUserIsRoot) GreyoutNotRoot();
}

void InitGui(intptr_t) {
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

// There is no window for the manual yet.
void RunHelpOnly() {
    flHelpOnly = 1;
    if (OpenWindowFace())
        fprintf(stderr, "%s: WARNING: no window for the manual; \"h\" shows it in the terminal menus\n",
                my_name);
    exit_app(1);
}

// ---- Events

// Ids of the descriptions. The entries of the menu are counted from 102 on, in their order.
enum {
    WIZ_DRIVER = 115,
    WIZ_EXIT = 120,
    WIZ_LIST = 130,
    WIZ_REFRESH = 131,
    WIZ_DISPLAY = 200,
    WIZ_DISPLAY_NAME = 201,
    WIZ_DISPLAY_ADDRESS = 202,
    WIZ_DISPLAY_HWADR = 203,
    WIZ_DISPLAY_DESCRIPTION = 204,
    WIZ_DISPLAY_OK = 205,
    WIZ_DISPLAY_APPLY = 207,
};

// Keeps the busy cursor on the main window while it lives.
struct BusyCursor {
    BusyCursor() { XmtSetCursor("prndeck", XC_watch); }
    ~BusyCursor() { XmtClearCursor("prndeck"); }
    BusyCursor(const BusyCursor &) = delete;
    BusyCursor &operator=(const BusyCursor &) = delete;
};

// The selection goes first: the model of a printer that is still selected would decide what is enabled.
static void DeselectPrinter() {
    SetPrinterSelectionData(-1);
    GreyoutSNMP(SNMP_NO_PRINTER);
    ClearPrinterPanel();
}

void DoRefresh() {
    BusyCursor busy;
    DeselectPrinter();
    SetupPrnListDisplay();
}

// n: position in the list, from 1; 0 for no printer.
static void SelectPrinter(int n) {
    const PrnEntry *entry = GetPrnEntry(n - 1);
    if (!entry) return DeselectPrinter();
    BusyCursor busy;
    SetPrinterSelectionData(n - 1);
    GreyoutSNMP(entry->Flags & PRN_WEB ? SNMP_WEB : SNMP_NO_WEB);
    DiscProcessPrinterSelection(n - 1);
    GreyoutReset();
}

static void OpenDisplaySetup() {
    DisStyle = DisplayStyle;
    XmtSetValuePF("d_dn", DisStyle & DISPLAY_NAME ? 1 : 2, 0);
    XmtSetValuePF("d_ip", DisStyle & DISPLAY_ADDRESS ? 2 : 1, 0);
    XmtSetValuePF("d_ea", DisStyle & DISPLAY_HWADR ? 2 : 1, 0);
    XmtSetValuePF("d_dt", DisStyle & DISPLAY_DESCRIPTION ? 2 : 1, 0);
}

static void SetDisStyle(int bits, int flOn) {
    DisStyle = flOn ? DisStyle | bits : DisStyle & ~bits;
}

static void SetDisName(intptr_t item) {
    SetDisStyle(DISPLAY_NAME | DISPLAY_HOST, 0);
    SetDisStyle(item == 0 ? DISPLAY_NAME : DISPLAY_HOST, 1);
}

static void ApplyDisplaySetup() {
    if (DevCount == 0) return;
    DisplayStyle = DisStyle;
    UpdatePrListDisplay();
}

void WizEventHandler(XmtCallData *data) {
    if (data->reason == XmtCR_CREATE) return;
    switch (data->id) {
    case WIZ_DRIVER: pSystem("./prnpnxxtty -FP &\n"); break;
    case WIZ_EXIT: exit_app(0);
    case WIZ_LIST: SelectPrinter(static_cast<int>(data->value)); break;
    case WIZ_REFRESH: DoRefresh(); break;
    case WIZ_DISPLAY: OpenDisplaySetup(); break;
    case WIZ_DISPLAY_NAME: SetDisName(data->value); break;
    case WIZ_DISPLAY_ADDRESS: SetDisStyle(DISPLAY_ADDRESS, data->value); break;
    case WIZ_DISPLAY_HWADR: SetDisStyle(DISPLAY_HWADR, data->value); break;
    case WIZ_DISPLAY_DESCRIPTION: SetDisStyle(DISPLAY_DESCRIPTION, data->value); break;
    case WIZ_DISPLAY_OK:
        ApplyDisplaySetup();
        XmtHide("dsw");
        break;
    case WIZ_DISPLAY_APPLY: ApplyDisplaySetup(); break;
    default: break; // whatever has no reaction, and what opens windows that are not there yet
    }
}

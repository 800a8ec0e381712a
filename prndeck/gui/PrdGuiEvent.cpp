// The handler of the main window's events.
#include "prndeck/gui/PrdGuiEvent.h"

#include "common/SysCmd.h"
#include "common/utils.h"
#include "print/MainUtils.h"
#include "prndeck/core/DiscPkg.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdQueLine.h"
#include "prndeck/gui/PrdDiscWeb.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "prndeck/gui/PrdGuiDisplay.h"
#include "prndeck/gui/PrdGuiHelp.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiList.h"
#include "prndeck/gui/PrdGuiPanel.h"
#include "prndeck/gui/PrdGuiSend.h"
#include "prndeck/gui/PrdGuiTold.h"
#include "prndeck/gui/PrdWizard.h"

// The selection goes first: the model of a printer that is still selected would decide what is enabled.
static void DeselectPrinter() {
    SetPrinterSelectionData(-1);
    GreyoutSNMP(SNMP_NO_PRINTER);
    ClearPrinterPanel();
}

// Nobody holds an entry of the table when it is filled anew.
void DoRefresh() {
    BusyCursor busy("prndeck");
    DeselectPrinter();
    DoPkgDiscovery();
    SetupPrnListDisplay();
}

// n: position in the list, from 1; 0 for no printer.
static void SelectPrinter(int n) {
    const PrnEntry *entry = GetPrnEntry(n - 1);
    if (!entry) return DeselectPrinter();
    BusyCursor busy("prndeck");
    SetPrinterSelectionData(n - 1);
    GreyoutSNMP(entry->Flags & PRN_WEB ? SNMP_WEB : SNMP_NO_WEB);
    DiscProcessPrinterSelection(n - 1);
    GreyoutReset();
}

// Numbers without a reaction, and what opens windows that are not there yet, pass by.
void WizEventHandler(XmtCallData *data) {
    if (data->reason == XmtCR_CREATE) return;
    int value = static_cast<int>(data->value);
    switch (data->id) {
    case WIZ_MAIN:
        if (data->reason == XmtCR_HELP) ShowManual();
        break;
    case WIZ_ADD: ReopenAddQue(); break;
    case WIZ_TEST_PAGE: OpenSend(SEND_TEST_PAGE); break;
    case WIZ_SEND_FILE: OpenSend(SEND_FILE); break;
    case WIZ_UPGRADE: OpenSend(SEND_UPGRADE); break;
    case WIZ_BROWSER: OpenBrowserChoice(); break;
    case WIZ_WEB_ENTRY:
    case WIZ_WEB: OpenWebPage(); break;
    case WIZ_PROFILE: GetProfile(); break;
    case WIZ_DRIVER:
        PostTold(GetToolFault(FrontEndProgram));
        pSystem("./prnpnxxtty -FP &\n");
        break;
    case WIZ_HELP:
    case WIZ_CONTENTS: ShowManual(); break;
    case WIZ_EXIT: exit_app(0);
    case WIZ_LIST: SelectPrinter(value); break;
    case WIZ_REFRESH: DoRefresh(); break;
    case WIZ_DISPLAY: OpenDisplaySetup(); break;
    case WIZ_DISPLAY_NAME: SetDisName(value); break;
    case WIZ_DISPLAY_ADDRESS: SetDisStyle(DISPLAY_ADDRESS, value); break;
    case WIZ_DISPLAY_HWADR: SetDisStyle(DISPLAY_HWADR, value); break;
    case WIZ_DISPLAY_DESCRIPTION: SetDisStyle(DISPLAY_DESCRIPTION, value); break;
    case WIZ_DISPLAY_OK: CloseDisplaySetup(); break;
    case WIZ_DISPLAY_APPLY: ApplyDisplaySetup(); break;
    case WIZ_SEND_QUEUE: ChooseSendQue(value, data->text); break;
    case WIZ_SEND_APPLY: ApplySend(); break;
    case WIZ_FILE: ChooseSendFile(data->text); break;
    default: break;
    }
}

// Shows the manual.
#include "prndeck/gui/PrdGuiHelp.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "prndeck/core/Prd.h"
#include "prndeck/core/PrdSets.h"
#include "xmt/XmtHelp.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtUtils.h"

enum { HELP_FAILED = 167 };
static const char Title[] = "prndeck Help";

// Not upon the button of a message, which comes back: another one would wait behind it at each press.
static void PostNoManual(const char *name) {
    if (flPostMsgIsHidden)
        XmtPostMsg_(Title, NlsFmt(NlsText(pDrvCoreDB, SET_MESSAGES, HELP_FAILED).c_str(), "s", name).c_str());
}

void ShowManual() {
    char *name = GetManualName();
    bool flShown = XmtHtmlHelp(name, nullptr, Title) != 0;
    if (!flShown && !flHelpOnly) PostNoManual(name);
    if (flShown) XmtSetFocus("xmtbw");
    PutMem(name);
}

// Start, manual and messages of the front end's windows.
#include "siblings/prnpnxxtty/window/Window.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/gui/PrdGuiDesc.h"
#include "prndeck/gui/PrdGuiMacros.h"
#include "siblings/lib/Child.h"
#include "siblings/lib/Frame.h"
#include "siblings/prnpnxxtty/Shown.h"
#include "siblings/prnpnxxtty/window/WindowDesc.h"
#include "xmt/XmtDisplay.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtHelp.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNew.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <Xm/Protocols.h>
#include <sys/stat.h>
#include <unistd.h>

const FrontWindow FrontWindows[FRONT_WINDOWS] = {
    {"few", FeaturesDesc, SET_FEATURES, "fec", "feh"},
    {"qfw", QueuesDesc, SET_QUEUES, "qfc", "qfh"},
};

static const char ManualTitle[] = "prndeck Help";

bool OpenWindows() {
    if (!XmtInitApp(my_name, AppClass, nullptr, nullptr)) return false;
    // Pictures are found from there.
    if (chdir(pToolPath)) TellUser(std::string("warning: can't enter ") + pToolPath);
    InitSysCmdList();
    pDrvCoreDB = NlsOpenDB("CoreString", DBT_NO_WRITE | DBT_NO_RELOAD);
    pPrtCoreDB = NlsOpenDB("PrtString", DBT_NO_WRITE | DBT_NO_RELOAD);
    GenMacros();
    SetDialogWords();
    return true;
}

// Presses a button, told by its name, for what is none.
static void PressButton(Widget, XtPointer name, XtPointer call) {
    XmtObjectData *button = XmtFindObject(static_cast<const char *>(name));
    if (!button || !XmtIsEnabled(button->name)) return;
    XmtCallData data = XmtNewCallData(button, XmtCR_DEFAULT);
    data.callData = call;
    button->handler(&data);
}

void MakeWindow(const FrontWindow &window, XmtHandler handler) {
    XmtNewObject(nullptr, handler, 0, GenGuiDesc(window.text, window.set).c_str());
}

void FinishWindow(const FrontWindow &window) {
    XtVaSetValues(AppShell, XmNdeleteResponse, XmDO_NOTHING, nullptr);
    Atom closed = XInternAtom(AppDisplay, "WM_DELETE_WINDOW", 0);
    XmAddWMProtocolCallback(AppShell, closed, PressButton, const_cast<char *>(window.cancel));
    XtAddCallback(AppWin, XmNhelpCallback, PressButton, const_cast<char *>(window.help));
    XmtSetPostMsgHelpWidget(window.help);
    XmtSetDialogButtons(window.name, nullptr, window.cancel);
}

static void LeaveCaller(XtPointer, int *, XtInputId *input) {
    XtRemoveInput(*input);
    flExitMainLoop = 1;
    XmtWakeMainLoop();
}

// A pipe to write to has nothing to read, only its end to tell.
void WatchCaller() {
    struct stat status;
    if (fstat(STDOUT_FILENO, &status) || !S_ISFIFO(status.st_mode)) return;
    XtAppAddInput(AppContext, STDOUT_FILENO, reinterpret_cast<XtPointer>(XtInputReadMask), LeaveCaller,
                  nullptr);
}

void ShowFeatureHelp() {
    char *name = SaveStr("%s/help/QBguide-%s.html#features", pToolPath, pNLSLang ? pNLSLang : "en_US");
    // The button of a message would post another one at each press.
    if (!XmtHtmlHelp(name, nullptr, ManualTitle) && flPostMsgIsHidden)
        PostNote(FillText(WINDOW_NO_MANUAL, name));
    PutMem(name);
}

void PostNote(const std::string &text) {
    if (!text.empty()) XmtPostMsg_(nullptr, text.c_str());
}

std::string FillText(int number, const std::string &name) {
    return NlsFmt(FeatureText(number).c_str(), "s", name.c_str());
}

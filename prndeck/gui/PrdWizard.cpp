// The setup wizard: its handler, the lists, Delete, and what the flows share.
#include "prndeck/gui/PrdWizard.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/utils.h"
#include "print/Told.h"
#include "prndeck/core/PrdQueLine.h"
#include "prndeck/core/PrdQueList.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/gui/PrdGuiBanner.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiJobs.h"
#include "prndeck/gui/PrdGuiTold.h"
#include "xmt/XmtEvent.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <cctype>
#include <cstring>
#include <map>

enum { TTY_BAD_FIRST = 1021 }; // of the menus' set
enum { MSG_REPLACE = 2, MSG_UNWRITTEN = 131 };

int PrinterModel, PrintingModel, Connection;
int BannerPage, UseFeatures, GuiType, DefaultPrinter, Daemon;
int MQue, CQue;
char *MQueName, *CQueName, *DQueName;
QueRecord MPS;
char *pprnqtoolCmd;
static char *pSettings; // managed: what the front end for features answered, or null

// ---- Lists

static void ShowQueLists() {
    for (const char *list : {"mql", "sfql", "cql"}) XmtReplaceAllListItems(list, pTarvoQueList);
    XmtReplaceAllListItems("dql", pQueList);
}

// The stamp is taken first: what is written while the lists are read shows at the next opening.
void UpdateQueList() {
    TestQueDbChange();
    ReadQueLists();
    ShowQueLists();
}

void CheckDbState() {
    if (TestQueDbChange() || pQueListTold) UpdateQueList();
    if (pQueListTold) PostTold(pQueListTold);
}

// A host without queues shows none; until they are read there are two to see how a list looks.
void GenWizardGui() {
    static constexpr char Unread[] = "one,two";
    DropQueList();
    PutMem(pTarvoQueList);
    pQueList = SaveStr_(Unread);
    pTarvoQueList = SaveStr_(Unread);
    InitQueSettings(nullptr, 0);
    UpdateQueList();
    StartJobTimers();
}

// ---- What the flows share

std::string GetField(const char *name) {
    char *text = XmtGetText(name);
    std::string out = text ? text : "";
    XtFree(text);
    return out;
}

// Programs' values pass a field's check as what is typed does: one that is refused leaves the field empty,
// behind a message on something that nobody typed.
void FillField(const char *name, const char *text) {
    static std::map<std::string, std::string> checks; // as the windows' texts have them
    const XmtObjectData *field = XmtFindObject(name);
    if (!field) return;
    std::string check = checks.try_emplace(name, field->format ? field->format : "").first->second;
    for (const char *at = text; *at; at++) {
        std::string member = {'+', *at};
        if (!isalnum(static_cast<unsigned char>(*at)) && check.find(member) == check.npos) check += member;
    }
    XmtReplaceFormat(name, check.c_str());
    XmtSetText(name, text);
}

void KeepName(char **field, const char *name) {
    char *copy = name && *name ? SaveStr_(name) : nullptr;
    PutMem(*field);
    *field = copy;
}

void PostText(int number) {
    XmtPostMsg_(nullptr, NlsText(pDrvCoreDB, SET_MESSAGES, number).c_str());
}

void PostQueText(int number, const char *name) {
    std::string text = NlsText(pDrvCoreDB, SET_MESSAGES, number);
    XmtPostMsg_(nullptr, NlsFmt(text.c_str(), "ss", name, name).c_str());
}

void PostUnwritten(const char *file) {
    PostQueText(MSG_UNWRITTEN, (std::string(pToolPath) + "/" + file).c_str());
}

int TestNewName(const std::string &name, int flTest, int question) {
    if (name[0] == '-') {
        std::string text = NlsText(pDrvCoreDB, SET_TTY, TTY_BAD_FIRST);
        XmtPostMsg_(nullptr, NlsFmt(text.c_str(), "c", name[0]).c_str());
        return 1;
    }
    if (!flTest || name.empty() || !TestHostQueue(name.c_str())) return 0;
    XmtSetPostMsgWidget(WizardEventHandler, question);
    PostQueText(MSG_REPLACE, name.c_str());
    return 1;
}

void RunFeatures(const char *ppdFile, const char *queue, int flStored) {
    std::string line = MakeFeatureWindowLine({ppdFile, queue, flStored, BannerPage});
    std::string fault = GetToolFault(GetFeatureProgram(ppdFile));
    ToldEar ear;
    PutMem(pSettings);
    pSettings = GetCmdResponseStr(CMD_QUIET, nullptr, "%s", line.c_str());
    PostTold(fault.empty() ? ear.Text() : fault);
}

void DropSettings() {
    KeepName(&pSettings, nullptr);
}

static const char *RefusedWindow;

static void HideRefused() {
    XmtHide(RefusedWindow);
}

void RefuseWindow(const char *name) {
    RefusedWindow = name;
    EventLoopCBF = HideRefused;
}

// ---- Delete

// Return in the list must not delete what is selected there.
void PrepareDeleteQue() {
    XmtSetDialogButtons("dqw", "dqe", "dqe");
}

static void OpenDeleteQue() {
    CheckDbState();
    XmtDisable("dqd,dqo");
    XmtClearAllListItems("dql");
    KeepName(&DQueName, nullptr);
}

static void ChooseDeleteQue(const char *selection) {
    std::string names;
    for (const char *name = selection; name && *name; name += strlen(name) + 1)
        names += (names.empty() ? "" : " ") + std::string(name);
    KeepName(&DQueName, names.c_str());
    XmtSetItemState("dqd,dqo", DQueName ? XMT_ENABLE : XMT_DISABLE);
}

static void RunDelete(const std::string &line) {
    BusyCursor busy("prndeck,dqw");
    std::string told;
    RunQueLine(line, &told);
    PostTold(told);
    UpdateQueList();
    XmtDisable("dqo,dqd");
    KeepName(&DQueName, nullptr);
}

static void DeleteChosen() {
    if (DQueName) RunDelete(MakeDeleteListLine(DQueName));
}

// ---- Lists of Modify and Copy

void PrepareModifyList() {
    XmtSetDialogButtons("mqw", "mq", "mqe");
}

static void OpenModifyList() {
    CheckDbState();
    XmtDisable("mq");
    XmtClearAllListItems("mql");
    MQue = 0;
}

// place: in the list, 0 when the selection was taken back; the name is then that of the row.
static void ChooseModifyQue(int place, const char *name) {
    XmtSetItemState("mq", place ? XMT_ENABLE : XMT_DISABLE);
    MQue = place;
    KeepName(&MQueName, place ? name : nullptr);
}

void PrepareCopyList() {
    XmtSetDialogButtons("cqw", "cq", "cqe");
}

static void OpenCopyList() {
    CheckDbState();
    XmtClearAllListItems("cql");
    CQue = 0;
    KeepName(&CQueName, nullptr);
}

// Likewise. The list's format enables the button for every event.
static void ChooseCopyQue(int place, const char *name) {
    CQue = place + 1;
    KeepName(&CQueName, place ? name : nullptr);
    if (!CQueName) XmtDisable("cq");
}

// ---- The handler

// A field wants no button to be pressed by Return: the next one is to be filled in.
static void GoOn(const XmtCallData *data) {
    if (data->reason == XmtCR_DEFAULT && data->widget)
        XmProcessTraversal(data->widget, XmTRAVERSE_NEXT_TAB_GROUP);
}

static bool IsReplacing(const XmtCallData *data) {
    return data->reason == XmtCR_OK || data->reason == XmtCR_APPLY;
}

// Numbers without a reaction pass by.
void WizardEventHandler(XmtCallData *data) {
    if (data->reason == XmtCR_CREATE) return;
    int value = static_cast<int>(data->value);
    switch (data->id) {
    case WIZARD_MODIFY_LIST: OpenModifyList(); break;
    case WIZARD_MODIFY_CHOICE: ChooseModifyQue(value, data->text); break;
    case WIZARD_MODIFY: OpenModifyQue(); break;
    case WIZARD_DELETE: OpenDeleteQue(); break;
    case WIZARD_DELETE_CHOICE: ChooseDeleteQue(data->selection); break;
    case WIZARD_DELETE_OK:
    case WIZARD_DELETE_APPLY: DeleteChosen(); break;
    case WIZARD_DELETE_ALL: RunDelete(MakeDeleteAllLine()); break;
    case WIZARD_COPY_LIST: OpenCopyList(); break;
    case WIZARD_COPY_CHOICE: ChooseCopyQue(value, data->text); break;
    case WIZARD_COPY: OpenCopyQue(); break;
    case WIZARD_ADD: OpenAddQue(); break;
    case WIZARD_ADD_MODEL: SetPrinterModel(value + 1); break;
    case WIZARD_ADD_PRINTING_MODEL: SetPrintingModel(value); break;
    case WIZARD_ADD_CONNECTION: SetConnection(value); break;
    case WIZARD_ADD_DEFAULT:
    case WIZARD_MOD_DEFAULT: DefaultPrinter = value; break;
    case WIZARD_ADD_FEATURES:
    case WIZARD_MOD_FEATURES: UseFeatures = value; break;
    case WIZARD_ADD_INTERFACE:
    case WIZARD_MOD_INTERFACE: GuiType = value; break;
    case WIZARD_ADD_BANNER:
    case WIZARD_MOD_BANNER: BannerPage = value; break;
    case WIZARD_ADD_DAEMON: Daemon = value; break;
    case WIZARD_ADD_SETUP: SetUpFeatures(); break;
    case WIZARD_ADD_TITLES:
    case WIZARD_MOD_TITLES: OpenBanner(); break;
    case WIZARD_ADD_APPLY: RunAddQue(1); break;
    case WIZARD_BANNER_APPLY: SaveBannerInfo(); break;
    case WIZARD_BANNER_CANCEL: CancelBanner(); break;
    case WIZARD_BANNER_DEFAULTS: SetBannerInfo(pSysDefBanInfo, 0); break;
    case WIZARD_NEW_PRINTING_MODEL: SetCopyPrintingModel(value); break;
    case WIZARD_NEW_CONNECTION: SetCopyConnection(value); break;
    case WIZARD_NEW_APPLY: RunCopyQue(1); break;
    case WIZARD_MOD_SETUP: SetUpQueFeatures(); break;
    case WIZARD_MOD_APPLY: ApplyModifySettings(); break;
    case WIZARD_JOB_COUNTS: OpenJobCounts(); break;
    case WIZARD_JOB_QUEUE: ChooseJobQue(value, data->text); break;
    case WIZARD_JOB_COUNTS_CLOSE: CloseJobCounts(); break;
    case WIZARD_JOB_COUNTS_REFRESH: RefreshJobCounts(); break;
    case WIZARD_JOB_INTERVAL: SetJobInterval(data->text); break;
    case WIZARD_JOB_CHOICE: ChooseJobs(data->selection); break;
    case WIZARD_JOB_CLOSE: CloseJobs(); break;
    case WIZARD_JOB_DELETE: DeleteJobs(); break;
    case WIZARD_JOB_DELETE_ALL: DeleteAllJobs(); break;
    case WIZARD_RETRY:
        if (data->reason == XmtCR_OK) RetryAddQue();
        break;
    case WIZARD_REPLACE_ADD:
        if (IsReplacing(data)) RunAddQue(0);
        break;
    case WIZARD_REPLACE_COPY:
        if (IsReplacing(data)) RunCopyQue(0);
        break;
    case WIZARD_ADD_NAME:
    case WIZARD_ADD_HOST:
    case WIZARD_ADD_REMOTE:
    case WIZARD_ADD_DEVICE:
    case WIZARD_BANNER_TITLE_1:
    case WIZARD_BANNER_TITLE_2:
    case WIZARD_BANNER_TITLE_3:
    case WIZARD_NEW_NAME:
    case WIZARD_NEW_HOST:
    case WIZARD_NEW_REMOTE:
    case WIZARD_NEW_DEVICE: GoOn(data); break;
    default: break;
    }
}

// The setup wizard: a new queue.
#include "prndeck/gui/PrdWizard.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysFile.h"
#include "common/Token.h"
#include "common/utils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdDisc.h"
#include "prndeck/core/PrdQueLine.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/gui/PrdGuiBanner.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiTold.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

enum { ADD_TITLE = 1 };                         // of the window's set
enum { MSG_ADD_TITLE = 26, MSG_NO_NAME = 123 }; // of the messages
enum { FIRST_ITEM = 1, SECOND_ITEM = 2 };

static constexpr char GenericFile[] = "tv_generic.ppd";
static constexpr char LpschedText[] = "Failed shutting down lpsched.\nSee README for details.";

// Without a default button: Return in a field must not apply what is half filled in.
void PrepareAddQue() {
    XmtSetDialogButtons("wqw", nullptr, "wqca");
}

// The list comes with a backslash in front of what separates its items; what means something to the reader of
// windows needs one as well.
std::string FillModels() {
    std::string out;
    for (const char *at = PpdModelList ? PpdModelList : ""; *at; at++) {
        if (strchr("();<>", *at)) out += '\\';
        out += *at;
        if (*at == '\\' && at[1]) out += *++at;
    }
    return out;
}

// ---- Opening

static int FindModel(const char *file) {
    return std::max(1, file && PpdList ? FindToken(file, PpdList) : 0);
}

static const char *GetPrinterFile(const PrnEntry *entry) {
    return pPPDData && entry->PpdIndex >= 0 && entry->PpdIndex <= PpdCnt ? pPPDData[entry->PpdIndex].file
                                                                         : nullptr;
}

void OpenAddQue() {
    XmtSetTitle("wqw", NlsText(pDrvCoreDB, SET_ADD, ADD_TITLE).c_str());
    DeleteWorkFiles();
    const PrnEntry *entry = GetPrnEntry(Cur_Product_Index);
    if (entry)
        InitQueSettings(*entry->HostName ? entry->HostName : entry->Address,
                        FindModel(GetPrinterFile(entry)));
    else
        InitQueSettings(nullptr, FindModel(GenericFile));
    XmtShow("wqw");
    XmtSetFocus("wqn");
}

void ReopenAddQue() {
    XmtSetTitle("wqw", NlsText(pDrvCoreDB, SET_MESSAGES, MSG_ADD_TITLE).c_str());
    XmtSetText("wqn", "");
    DeleteWorkFiles();
    GetBannerInfo(nullptr);
    DropSettings();
    XmtShow("wqw");
    XmtSetFocus("wqn");
}

// The choices bring their rows along by their formats, which also set what the handler keeps of them: first
// the printing model, whose format the connection's runs once more.
static void InitAddress(const char *host) {
    FillField("wqhn", host ? host : "");
    for (const char *field : {"wqrpn", "wqdn", "wqn"}) XmtSetText(field, "");
    XmtSetValuePF("wqcm", FIRST_ITEM, 1);
    XmtSetValuePF("wqc", FIRST_ITEM, 1);
}

void InitQueSettings(const char *host, int model) {
    PrinterModel = model;
    PrintingModel = PM_HOST;
    Connection = CONNECTION_TCP;
    XmtEnable("wqpm");
    XmtSetValuePF("wqpm", model, 0);
    InitAddress(host);
    XmtSetValuePF("wqgt", SECOND_ITEM, 0);
    GuiType = 1;
    XmtSetValuePF("wqbp", BannerPage + 1, 0); // it may be that of another queue, and the model may not say
    DisableCustomBannerCheck(PrintingModel, PrinterModel, 0);
    XmtSetValuePF("wqf", SECOND_ITEM, 1);
    UseFeatures = 1;
    XmtSetValuePF("wqdp", FIRST_ITEM, 0);
    DefaultPrinter = 0;
    XmtSetValuePF("wqd", FIRST_ITEM, 0);
    Daemon = 0;
    GetBannerInfo(nullptr);
    KeepName(&pCBannerInfo, pSysDefBanInfo);
}

// ---- Choices

void SetPrinterModel(int model) {
    PrinterModel = model;
    DisableCustomBannerCheck(PrintingModel, PrinterModel, 0);
}

void SetPrintingModel(int model) {
    PrintingModel = model;
    if (model == PM_SERVER && Connection != CONNECTION_TCP) XmtSetValuePF("wqc", FIRST_ITEM, 1);
    DisableCustomBannerCheck(PrintingModel, PrinterModel, 0);
}

void SetConnection(int connection) {
    Connection = connection;
    if (connection != CONNECTION_TCP && PrintingModel == PM_SERVER) XmtSetValuePF("wqcm", FIRST_ITEM, 1);
}

void SetUpFeatures() {
    static int LastModel;
    BusyCursor busy("prndeck,wqw");
    if (PrinterModel != LastModel) DeleteWorkFile(SettingsFile);
    RunFeatures(GetModelFile(PrinterModel), GetField("wqn").c_str(), 0);
    LastModel = PrinterModel;
}

// ---- Apply

struct AddFields {
    std::string name, address, remote;
};

static AddFields ReadAddFields(int type, const char *ppdFile) {
    AddFields fields;
    fields.name = GetField("wqn");
    fields.address = GetField(IsDeviceType(type) ? "wqdn" : "wqhn");
    fields.remote = type == QUEUE_SERVER ? GetField("wqrpn") : GetLprQueue(ppdFile);
    return fields;
}

// Each thing that is missing has a message of its own; 1 if anything is.
static int TestAddFields(const AddFields &fields, int type) {
    bool lacksRemote = type == QUEUE_SERVER && fields.remote.empty();
    if (fields.name.empty()) PostText(MSG_NO_NAME);
    if (fields.address.empty()) PostText(MSG_NO_ADDRESS);
    if (lacksRemote) PostText(MSG_NO_REMOTE);
    bool missing = fields.name.empty() || fields.address.empty() || lacksRemote;
    if (missing) XmtShow("wqw");
    return missing;
}

// The line is kept for the answer; the scheduler is started again in the meantime.
static void PostLpsched(const char *title) {
    XmtSetPostMsgWidget(WizardEventHandler, WIZARD_RETRY);
    XmtPostMsg_(title, LpschedText);
    fprintf(stderr, "Error:  Could not stop lpsched\n");
    StartLpsched();
}

static void RunAddLine(const std::string &line, const char *title) {
    std::string told;
    int status = RunQueLine(line, &told);
    PostTold(told);
    if (status != STATUS_LPSCHED) return;
    KeepName(&pprnqtoolCmd, std::string(line).c_str());
    PostLpsched(title);
}

int ApplyQueSettings(int flTest) {
    int type = GetQueueType(PrintingModel, Connection);
    std::string file = GetModelFile(PrinterModel);
    AddFields fields = ReadAddFields(type, file.c_str());
    if (TestNewName(fields.name, flTest, WIZARD_REPLACE_ADD)) return 1;
    Daemon = 1;
    DropSettings();
    if (TestAddFields(fields, type)) return 1;
    BusyCursor busy("wqw");
    QueTarget target = {type, fields.name.c_str(), fields.address.c_str(), fields.remote.c_str()};
    QueOptions options = {UseFeatures, BannerPage, GuiType, DefaultPrinter};
    RunAddLine(MakeAddLine(target, file.c_str(), PrintingModel, options), "Error creation problem");
    return 0;
}

void RunAddQue(int flTest) {
    BusyCursor busy("prndeck,wqw");
    if (ApplyQueSettings(flTest)) return;
    UpdateQueList();
    XmtHide("wqw");
}

void RetryAddQue() {
    if (!pprnqtoolCmd) return;
    BusyCursor busy("prndeck");
    RunAddLine(pprnqtoolCmd, "Error stopping lpsched");
    UpdateQueList();
}

// The setup wizard: a copy of a queue.
#include "prndeck/core/Prd.h"

#include "common/Token.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/PrdQueLine.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiTold.h"
#include "prndeck/gui/PrdWizard.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <cstdio>

enum { MSG_NO_COPY = 4, MSG_NO_NAME = 123 };
enum { FIRST_ITEM = 1 };

// Without a default button, as the window of a new queue.
void PrepareCopyQue() {
    XmtSetDialogButtons("clqw", nullptr, "clqca");
}

// ---- The queue to copy

// The connection's format shows the rows that the choices want, and sets what is kept of both.
static void SetCopyChoices(const QueChoice &choice) {
    PrintingModel = choice.printingModel;
    Connection = choice.connection;
    XmtSetValuePF("clcm", choice.printingModel + 1, 0);
    XmtSetValuePF("clc", choice.connection + 1, 1);
    if (choice.connection != CONNECTION_TCP) XmtHide("clrpn_B1");
}

int SetupCopySettings() {
    for (const char *field : {"clqn", "clhn", "cldn", "clrpn"}) FillField(field, "");
    if (!CQueName || !GetQueDbEntry(&MPS, CQueName)) {
        PostQueText(MSG_NO_COPY, CQueName ? CQueName : "");
        return 0;
    }
    int model = PpdList ? FindToken(MPS.ppdFile, PpdList) : 0;
    XmtSetLabelText("clpm", model ? GetModelName(model).c_str() : MPS.ppdFile);
    QuePlace place = GetQuePlace(&MPS);
    FillField(IsDeviceType(MPS.type) ? "cldn" : "clhn", place.address);
    if (MPS.type == QUEUE_SERVER) FillField("clrpn", place.remote);
    SetCopyChoices(GetQueChoice(MPS.type));
    return 1;
}

void OpenCopyQue() {
    if (!SetupCopySettings()) RefuseWindow("clqw");
}

// ---- Choices

void SetCopyPrintingModel(int model) {
    PrintingModel = model;
    if (model == PM_SERVER && Connection != CONNECTION_TCP) XmtSetValuePF("clc", FIRST_ITEM, 1);
}

void SetCopyConnection(int connection) {
    Connection = connection;
    if (connection != CONNECTION_TCP && PrintingModel == PM_SERVER) XmtSetValuePF("clcm", FIRST_ITEM, 1);
}

// ---- Apply

static int RefuseCopy(int message) {
    PostText(message);
    XmtShow("clqw");
    return 1;
}

static void RunCopyLine(const std::string &line) {
    BusyCursor busy("clqw");
    std::string told;
    int status = RunQueLine(line, &told);
    PostTold(told);
    if (status == STATUS_LPSCHED) fprintf(stderr, "Error:  Could not stop lpsched\n");
}

int ApplyCQSettings(int flTest) {
    int type = GetQueueType(PrintingModel, Connection);
    std::string name = GetField("clqn"), address = GetField(IsDeviceType(type) ? "cldn" : "clhn");
    std::string remote = type == QUEUE_SERVER ? GetField("clrpn") : GetLprQueue(MPS.ppdFile);
    if (name.empty()) return RefuseCopy(MSG_NO_NAME);
    if (TestNewName(name, flTest, WIZARD_REPLACE_COPY)) return 1;
    if (address.empty()) return RefuseCopy(MSG_NO_ADDRESS);
    if (type == QUEUE_SERVER && remote.empty()) return RefuseCopy(MSG_NO_REMOTE);
    QueTarget target = {type, name.c_str(), address.c_str(), remote.c_str()};
    RunCopyLine(MakeCopyLine(target, CQueName ? CQueName : "", PrintingModel));
    return 0;
}

void RunCopyQue(int flTest) {
    BusyCursor busy("prndeck,clqw");
    if (ApplyCQSettings(flTest)) return;
    UpdateQueList();
    XmtHide("clqw");
}

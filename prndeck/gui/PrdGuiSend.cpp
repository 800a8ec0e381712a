// What is sent to a queue.
#include "prndeck/gui/PrdGuiSend.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/utils.h"
#include "print/MainUtils.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/Prd.h"
#include "prndeck/core/PrdQueList.h"
#include "prndeck/core/PrdSets.h"
#include "prndeck/core/PrdUpgrade.h"
#include "prndeck/gui/PrdGuiBusy.h"
#include "prndeck/gui/PrdGuiEvent.h"
#include "prndeck/gui/PrdGuiIds.h"
#include "prndeck/gui/PrdGuiTold.h"
#include "prndeck/gui/PrdWizard.h"
#include "xmt/XmtMsg.h"
#include "xmt/XmtNewWin.h"
#include "xmt/XmtUtils.h"

#include <cstring>
#include <iterator>

enum { MSG_SELECT_FILE = 7, MSG_NO_FILE = 8, MSG_FILE_TITLE = 22, MSG_UNREADABLE = 171 };

struct SendKind {
    int title;
    int noQueue; // what is said where there is none
};
// ORDER SendKinds
static constexpr SendKind SendKinds[] = {
    {.title = 23, .noQueue = 9},
    {.title = 24, .noQueue = 5},
    {.title = 25, .noQueue = 6},
};
static_assert(std::size(SendKinds) == SEND_UPGRADE + 1);

struct DownLoadMsg {
    int text;
};
// ORDER paDownLoadMsg
static constexpr DownLoadMsg paDownLoadMsg[] = {{.text = 168}, {.text = 169}, {.text = 170}};
static_assert(std::size(paDownLoadMsg) == UPGRADE_FITS);

static constexpr char TestPage[] = "TestPage.ps"; // in the current directory

int flSendFileOperation;
char *pSendFn;
char SFQue[TOKEN_SIZE];
int SFQueNum;

// ---- Opening

void PrepareSend() {
    XmtSetDialogButtons("sfw", "sfap", "sfca");
}

void OpenSend(int operation) {
    CheckDbState();
    const SendKind &kind = SendKinds[operation];
    if (IsEmpty(pTarvoQueList)) {
        if (!pQueListTold) PostText(kind.noQueue); // else the user knows why no queue is seen
        return;
    }
    flSendFileOperation = operation;
    std::string title = NlsText(pDrvCoreDB, SET_MESSAGES, kind.title);
    XmtSetTitle("sfw", title.c_str());
    XmtSetIconName("sfw", title.c_str());
    if (operation == SEND_TEST_PAGE) return InitSendFile(TestPage);
    XmtSelectFile(WizEventHandler, WIZ_FILE, NlsText(pDrvCoreDB, SET_MESSAGES, MSG_FILE_TITLE).c_str());
}

void ChooseSendFile(const char *file) {
    int type = IsEmpty(file) ? TYPE_DIRECTORY : GetFileType(file);
    switch (type) {
    case TYPE_DIRECTORY: PostText(MSG_SELECT_FILE); break;
    case TYPE_MISSING: PostQueText(MSG_NO_FILE, file); break;
    default: InitSendFile(file);
    }
}

void InitSendFile(const char *file) {
    char *copy = SaveStr_(file);
    PutMem(pSendFn);
    pSendFn = copy;
    XmtDisable("sfap");
    XmtClearAllListItems("sfql");
    XmtShow("sfw");
}

// ---- The queue

static int RefuseDownLoad(UpgradeResult reason, const char *queue) {
    const DownLoadMsg &row = paDownLoadMsg[reason];
    PostQueText(row.text, queue);
    return 0;
}

int TestDownLoad(const char *queue) {
    static QueRecord record; // its settings are released with the next one's
    char item[PPD_VALUE], head[UPGRADE_HEAD];
    if (!pSendFn) return 0;
    if (!GetQueDbEntry(&record, queue)) return RefuseDownLoad(UPGRADE_UNSUPPORTED, queue);
    if (!GetPpdKeyValue(record.ppdFile, "PRDUpgrade", item, sizeof item)) return 1;
    int size = ReadUpgradeHead(pSendFn, head);
    if (size < 0) {
        PostQueText(MSG_UNREADABLE, pSendFn);
        return 0;
    }
    UpgradeResult result = TestUpgrade(item, {head, static_cast<size_t>(size)});
    return result == UPGRADE_FITS ? 1 : RefuseDownLoad(result, queue);
}

// A row that was refused stays lit, but nothing can be sent to it, nor to the one before.
void ChooseSendQue(int place, const char *queue) {
    bool flTest = flUserIsRoot && flSendFileOperation == SEND_UPGRADE;
    if (place < 1 || IsEmpty(queue) || strlen(queue) >= sizeof SFQue || (flTest && !TestDownLoad(queue)))
        return XmtDisable("sfap");
    strcpy(SFQue, queue);
    XmtEnable("sfap");
    SFQueNum = place + 1;
}

// ---- Sending

void SendFile(const char *file) {
    if (IsEmpty(file) || !*SFQue) return;
    BusyCursor busy("prndeck");
    PostTold(RunSendLine(MakeSendLine(flSendFileOperation, SFQue, file)));
}

void ApplySend() {
    SendFile(pSendFn);
    XmtHide("sfw");
}

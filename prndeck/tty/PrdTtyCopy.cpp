// Copy a queue at the terminal.
#include "prndeck/tty/PrdTty.h"

#include "common/NlsUtils.h"
#include "common/Token.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/Prd.h"

#include <cstdio>
#include <iterator>
#include <string>

static char PrintingModels[] = "_workstation to printer,_workstation to print server";
static char Connections[] = "_TCP/IP,_local device";
static char ModelLabel[MENU_TEXT_SIZE];
static char HostDefault[MENU_TEXT_SIZE];
static char DeviceDefault[MENU_TEXT_SIZE];
static char ServerPrinterDefault[MENU_TEXT_SIZE];

// The first label and the defaults are those of the queue to copy, set by InitCloneQueMenu.
static constexpr TextMenuItem CloneQueRows[] = {
    {.key = COPY_MODEL, .text = ModelLabel, .type = ITEM_TEXT},
    {.key = COPY_NAME,
     .text = "Queue name: ",
     .type = ITEM_REQUIRED,
     .prompt = "\nEnter the name of the queue: ",
     .format = TTY_NAME_FORMAT},
    {.key = COPY_PRINTING_MODEL,
     .text = "Printing model: ",
     .nlsText = 102,
     .type = ITEM_PICK,
     .choices = PrintingModels,
     .format = StateText<COPY_END, HideItems(PM_HOST, COPY_SERVER_PRINTER)>},
    {.key = COPY_CONNECTION,
     .text = "Printer connection: ",
     .nlsText = 103,
     .type = ITEM_PICK,
     .choices = Connections,
     .format = StateText<COPY_END, HideItems(CONNECTION_TCP, COPY_DEVICE),
                         HideItems(CONNECTION_DEVICE, COPY_HOST)>},
    {.key = COPY_HOST,
     .text = "Printer host name: ",
     .nlsText = 104,
     .type = ITEM_REQUIRED,
     .prompt = "Enter the host name",
     .initial = {.s = HostDefault},
     .format = TTY_HOST_FORMAT},
    {.key = COPY_DEVICE,
     .text = "Local Device name: ",
     .nlsText = 105,
     .type = ITEM_REQUIRED,
     .prompt = "Enter the device name",
     .initial = {.s = DeviceDefault},
     .format = "t(1,255)"},
    {.key = COPY_SERVER_PRINTER,
     .text = "Printer server queue name",
     .nlsText = 106,
     .type = ITEM_REQUIRED,
     .prompt = "Enter the print server printer name\n(name used to invoke LP/LPR on the server)",
     .initial = {.s = ServerPrinterDefault},
     .format = TTY_NAME_FORMAT},
    {.key = COPY_BLANK, .text = "", .type = ITEM_TEXT},
    {.key = COPY_BAR, .text = "", .type = ITEM_BAR, .value = {.i = 2}},
    {.key = COPY_APPLY, .text = "Apply", .nlsText = 65, .type = ITEM_APPLY, .callback = ApplyCQSettingsTty},
    {.key = COPY_CANCEL, .text = "Cancel", .nlsText = 66, .type = ITEM_CANCEL},
    {},
};
constinit MenuTable<COPY_END> CloneQueMenuItems = MakeMenuTable<COPY_END, CloneQueRows>();

TextMenu CloneQueMenu = {.title = "Copy Queue",
                         .nlsTitle = 82,
                         .titleMode = TITLE_CENTRE,
                         .parent = &MainMenu,
                         .initCallback = InitCloneQueMenu,
                         .items = CloneQueMenuItems,
                         .flags = MENU_NO_LEAVE | MENU_HELP};

int CloneQueTty(TextMenu *, TextMenuItem *) {
    if (!AskQueueTty(TTY_COPY_PROMPT, "Copy", pCloneQueName)) return 0;
    RunMenu(&CloneQueMenu, nullptr, 1);
    InitMainMenu(&MainMenu);
    return 0;
}

int InitCloneQueMenu(TextMenu *menu) {
    PrinterModelTty = FindToken(MPS_tty.ppdFile, PpdList);
    snprintf(ModelLabel, sizeof ModelLabel, "%s%s", NlsText(pDrvCoreDB, SET_TTY, TTY_COPY_MODEL).c_str(),
             PrinterModelTty ? GetModelName(PrinterModelTty).c_str() : MPS_tty.ppdFile);
    QueChoice choice = GetQueChoice(MPS_tty.type);
    menu->items[COPY_PRINTING_MODEL].initial.i = choice.printingModel;
    menu->items[COPY_CONNECTION].initial.i = choice.connection;
    QuePlace place = GetQuePlace(&MPS_tty);
    bool device = IsDeviceType(MPS_tty.type);
    snprintf(HostDefault, MENU_TEXT_SIZE, "%s", device ? "" : place.address);
    snprintf(DeviceDefault, MENU_TEXT_SIZE, "%s", device ? place.address : "");
    snprintf(ServerPrinterDefault, MENU_TEXT_SIZE, "%s", place.remote);
    return 0;
}

// ---- Apply

static int ConfirmCopyName(const char *name) {
    if (!TestHostQueue(name)) return 1;
    return PromptYN(
        "%s is a previously defined queue!!!!!\nUsing this queue name will destroy your current queue "
        "\"%s\"",
        name, name);
}

static int PostText(int number) {
    PostMsg("%s", NlsText(pDrvCoreDB, SET_MESSAGES, number).c_str());
    return 0;
}

static int TestCopyAddress(const QueTarget &target) {
    if (!*target.address) return PostText(MSG_NO_ADDRESS);
    return IsDeviceType(target.type) || TestHostTty(target.address);
}

static int TestCopyTarget(const QueTarget &target) {
    int known = TestCopyAddress(target);
    if (target.type == QUEUE_SERVER && !*target.remote) return PostText(MSG_NO_REMOTE);
    return known;
}

int ApplyCQSettingsTty(TextMenu *menu, TextMenuItem *) {
    TextMenuItem *items = menu->items;
    int printingModel = GetItemChoice(items, COPY_PRINTING_MODEL);
    int type = GetQueueType(printingModel, GetItemChoice(items, COPY_CONNECTION));
    const char *name = GetItemText(items, COPY_NAME);
    if (!ConfirmCopyName(name)) return 1;
    std::string lprQueue = GetLprQueue(MPS_tty.ppdFile);
    QueTarget target = {type, name, GetItemText(items, IsDeviceType(type) ? COPY_DEVICE : COPY_HOST),
                        type == QUEUE_SERVER ? GetItemText(items, COPY_SERVER_PRINTER) : lprQueue.c_str()};
    if (!TestCopyTarget(target)) return 1;
    RunQueLineTty(MakeCopyLine(target, pCloneQueName, printingModel));
    DropQueList();
    return 0;
}

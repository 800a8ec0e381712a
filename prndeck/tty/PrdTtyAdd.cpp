// Add a queue at the terminal.
#include "prndeck/tty/PrdTty.h"

#include "common/SysCmd.h"
#include "menu/MenuState.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/tty/PrdTtyBanner.h"

#include <initializer_list>
#include <string>

static char PrintingModels[] = "_workstation to printer,_workstation to print server";
static char Connections[] = "_TCP/IP,_local device";
static char OnOffInterface[] = "_disabled,_enabled";
static char OnOffFeatures[] = "_disabled,_enabled";
static char OnOffBanner[] = "_disabled,_enabled";
static char NoYes[] = "_No,_Yes";

// Values are set at run time, texts by InitMainMenu, the choices of the model by RunTty.
static constexpr TextMenuItem AddPrinterRows[] = {
    {.key = ADD_NAME,
     .text = "Setup the printer name (queue name)",
     .nlsText = 36,
     .type = ITEM_REQUIRED,
     .prompt = "Enter the printer name",
     .nlsPrompt = 1100,
     .format = TTY_NAME_FORMAT},
    {.key = ADD_MODEL,
     .text = "Setup printer Type",
     .nlsText = 37,
     .type = ITEM_PICK,
     .callback = PrinterModelChangeCB},
    {.key = ADD_PRINTING_MODEL,
     .text = "Setup printing model",
     .nlsText = 38,
     .type = ITEM_PICK,
     .choices = PrintingModels,
     .nlsChoices = 252,
     .callback = PrintingModelChangeCB},
    {.key = ADD_CONNECTION,
     .text = "Setup printer connection",
     .nlsText = 39,
     .type = ITEM_PICK,
     .choices = Connections,
     .nlsChoices = 253,
     .format =
         StateText<ADD_END, HideItems(CONNECTION_TCP, ADD_DEVICE), HideItems(CONNECTION_DEVICE, ADD_HOST)>},
    {.key = ADD_HOST,
     .text = "Setup the printer's host name",
     .nlsText = 40,
     .type = ITEM_REQUIRED,
     .prompt = "Enter the host name",
     .nlsPrompt = 1101,
     .format = TTY_HOST_FORMAT},
    {.key = ADD_DEVICE,
     .text = "Setup the device name",
     .nlsText = 41,
     .type = ITEM_REQUIRED,
     .prompt = "Enter the device name",
     .nlsPrompt = 1102,
     .format = "t(1,255)"},
    {.key = ADD_SERVER,
     .text = "Setup the print server's host name",
     .nlsText = 42,
     .type = ITEM_REQUIRED,
     .prompt = "Enter the host name",
     .nlsPrompt = 30,
     .format = TTY_HOST_FORMAT},
    {.key = ADD_SERVER_PRINTER,
     .text = "Setup the print server printer name",
     .nlsText = 43,
     .type = ITEM_REQUIRED,
     .prompt = "Enter the print server printer name\n(name used to invoke LP/LPR on the server)",
     .nlsPrompt = 32,
     .format = TTY_NAME_FORMAT},
    {.key = ADD_INTERFACE,
     .text = "Setup user interface",
     .nlsText = 44,
     .type = ITEM_PICK,
     .choices = OnOffInterface,
     .nlsChoices = 258,
     .initial = {.i = 1}},
    {.key = ADD_FEATURES,
     .text = "Setup features",
     .nlsText = 45,
     .type = ITEM_PICK,
     .choices = OnOffFeatures,
     .nlsChoices = 259,
     .initial = {.i = 1},
     .format = StateText<ADD_END, HideItems(PICK_OFF, ADD_BANNER, ADD_SETUP, ADD_BANNER_SETUP, ADD_INTERFACE),
                         ProcessItems({PICK_OFF, PICK_ON}, ADD_BANNER)>},
    {.key = ADD_BANNER,
     .text = "Setup banner page printing",
     .nlsText = 46,
     .type = ITEM_PICK,
     .choices = OnOffBanner,
     .nlsChoices = 260,
     .initial = {.i = 1},
     .format = StateText<ADD_END, HideItems(PICK_OFF, ADD_BANNER_SETUP)>},
    {.key = ADD_SETUP,
     .text = "Configure Printer Features",
     .nlsText = 47,
     .type = ITEM_ACTION,
     .callback = SetupTty},
    {.key = ADD_BANNER_SETUP,
     .text = "Configure Banner Page",
     .nlsText = 48,
     .type = ITEM_ACTION,
     .callback = BannerInfoSetupTty},
    {.key = ADD_DEFAULT,
     .text = "Set as default printer",
     .nlsText = 49,
     .type = ITEM_PICK,
     .choices = NoYes,
     .nlsChoices = 261},
    {.key = ADD_BLANK, .text = "", .type = ITEM_TEXT},
    {.key = ADD_BAR, .text = "", .type = ITEM_BAR, .value = {.i = 2}},
    {.key = ADD_APPLY, .text = "Apply", .nlsText = 50, .type = ITEM_APPLY, .callback = SavePrinter},
    {.key = ADD_CANCEL, .text = "Cancel", .nlsText = 51, .type = ITEM_CANCEL},
    {},
};
constinit MenuTable<ADD_END> AddPrinterMenuItems = MakeMenuTable<ADD_END, AddPrinterRows>();

TextMenu AddPrinterMenu = {.title = "Add Queue",
                           .nlsTitle = 35,
                           .titleMode = TITLE_CENTRE,
                           .exitCallback = AddDbmPrinter,
                           .parent = &MainMenu,
                           .initCallback = InitAddMenu,
                           .items = AddPrinterMenuItems,
                           .flags = MENU_NO_LEAVE | MENU_HELP | MENU_DENSE | MENU_LIST};

int AddDbmPrinter(TextMenu *) {
    return 0;
}

static void SetStates(TextMenu *menu, int state, std::initializer_list<int> items) {
    for (int item : items) menu->items[item].state = state;
}

int InitAddMenu(TextMenu *menu) {
    DeleteWorkFiles();
    GetBannerInfoTty(nullptr);
    SetStates(menu, STATE_HIDDEN, {ADD_DEVICE, ADD_SERVER, ADD_SERVER_PRINTER});
    SetStates(menu, STATE_NORMAL, {ADD_CONNECTION, ADD_BANNER});
    return 0;
}

// ---- Changes of the model and the printing model

static int GetAddModel(TextMenu *menu) {
    return GetItemChoice(menu->items, ADD_MODEL) + 1;
}

// The banner item alone: its own state format does not run, so the setup item keeps its state.
static void SetBannerItem(TextMenu *menu, const BannerRule &rule) {
    if (rule.allowed == BANNER_UNSAID) return;
    menu->items[ADD_BANNER].value.i = rule.value;
    menu->items[ADD_BANNER].state = rule.allowed ? STATE_NORMAL : STATE_HIDDEN;
}

int PrinterModelChangeCB(TextMenu *menu, TextMenuItem *) {
    DeleteWorkFiles();
    std::string base = GetModelBase(GetAddModel(menu));
    char value[PPD_VALUE];
    bool plugin = GetPpdKeyValue(base.c_str(), "v4DriverPluginFilename", value, sizeof value);
    SetStates(menu, plugin ? STATE_HIDDEN : STATE_NORMAL, {ADD_BANNER, ADD_SETUP, ADD_BANNER_SETUP});
    SetBannerItem(menu, GetBannerRule(base.c_str(), PM_HOST)); // whatever printing model is chosen
    return 0;
}

static void ShowAddressItems(TextMenu *menu) {
    if (GetItemChoice(menu->items, ADD_PRINTING_MODEL) == PM_SERVER) {
        SetStates(menu, STATE_HIDDEN, {ADD_CONNECTION, ADD_HOST, ADD_DEVICE});
        SetStates(menu, STATE_NORMAL, {ADD_SERVER, ADD_SERVER_PRINTER});
        return;
    }
    SetStates(menu, STATE_HIDDEN, {ADD_DEVICE, ADD_SERVER, ADD_SERVER_PRINTER});
    SetStates(menu, STATE_NORMAL, {ADD_CONNECTION, ADD_HOST, ADD_BANNER});
    // With a local device still chosen it is the device that is asked for, not the host.
    if (GetItemChoice(menu->items, ADD_CONNECTION) != CONNECTION_TCP)
        ProcessStateFormat(menu, ADD_CONNECTION);
}

int PrintingModelChangeCB(TextMenu *menu, TextMenuItem *) {
    ShowAddressItems(menu);
    // The type is that of the queue last modified or copied.
    SetBannerItem(menu, GetTypeBannerRule(GetModelBase(GetAddModel(menu)), MPS_tty.type));
    return 0;
}

int SetupTty(TextMenu *menu, TextMenuItem *) {
    std::string line =
        MakeFeatureLine(GetModelFile(GetAddModel(menu)), GetItemChoice(menu->items, ADD_BANNER));
    RunFeaturesTty(line);
    return 0;
}

// ---- Apply

static int ConfirmName(const char *name) {
    if (!TestHostQueue(name)) return 1;
    return PromptYN(
        "%s is a previously defined queue!!!!!\nUsing this queue name will destroy your current queue "
        "\"%s\"\nReplace %s",
        name, name, name);
}

// Where the queue prints, by its type; lprQueue must outlive the result.
static QueTarget GetAddTarget(const TextMenuItem *items, const char *lprQueue) {
    int type = GetQueueType(GetItemChoice(items, ADD_PRINTING_MODEL), GetItemChoice(items, ADD_CONNECTION));
    QueTarget target = {type, GetItemText(items, ADD_NAME), GetItemText(items, ADD_HOST), lprQueue};
    if (IsDeviceType(type)) target.address = GetItemText(items, ADD_DEVICE);
    if (type == QUEUE_SERVER) {
        target.address = GetItemText(items, ADD_SERVER);
        target.remote = GetItemText(items, ADD_SERVER_PRINTER);
    }
    return target;
}

static QueOptions GetAddOptions(const TextMenuItem *items) {
    return {.features = GetItemChoice(items, ADD_FEATURES),
            .banner = GetItemChoice(items, ADD_BANNER),
            .userInterface = GetItemChoice(items, ADD_INTERFACE),
            .isDefault = GetItemChoice(items, ADD_DEFAULT)};
}

int SavePrinter(TextMenu *menu, TextMenuItem *) {
    TextMenuItem *items = menu->items;
    if (!ConfirmName(GetItemText(items, ADD_NAME))) return 1;
    std::string file = GetModelFile(GetAddModel(menu));
    std::string lprQueue = GetLprQueue(file.c_str());
    QueTarget target = GetAddTarget(items, lprQueue.c_str());
    bool byHost = target.type == QUEUE_PRINTER_HOST || target.type == QUEUE_SERVER;
    if (byHost && !TestHostTty(target.address)) return 1;
    RunQueLineTty(
        MakeAddLine(target, file.c_str(), GetItemChoice(items, ADD_PRINTING_MODEL), GetAddOptions(items)));
    DropQueList();
    return 0;
}

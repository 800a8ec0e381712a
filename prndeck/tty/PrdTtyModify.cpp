// Modify a queue at the terminal.
#include "prndeck/tty/PrdTty.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/SysCmd.h"
#include "common/Token.h"
#include "common/utils.h"
#include "menu/Screen.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/Prd.h"
#include "prndeck/tty/PrdTtyBanner.h"

#include <cstdio>
#include <string>
#include <unistd.h>

enum { SPACED_ROWS = 28 }; // of a terminal that shows the whole menu with blank lines

static char OnOffInterface[] = "_disabled,_enabled";
static char OnOffFeatures[] = "_disabled,_enabled";
static char OnOffBanner[] = "_disabled,_enabled";
static char NoYes[] = "_No,_Yes";
static char QueLabels[MOD_INTERFACE][MENU_TEXT_SIZE];

// The first six labels and the defaults are the queue's, set by SetQueSettingsTty.
static constexpr TextMenuItem ModifyQueRows[] = {
    {.key = MOD_NAME, .text = QueLabels[MOD_NAME], .type = ITEM_TEXT},
    {.key = MOD_MODEL, .text = QueLabels[MOD_MODEL], .type = ITEM_TEXT},
    {.key = MOD_PRINTING_MODEL, .text = QueLabels[MOD_PRINTING_MODEL], .type = ITEM_TEXT},
    {.key = MOD_CONNECTION, .text = QueLabels[MOD_CONNECTION], .type = ITEM_TEXT},
    {.key = MOD_HOST, .text = QueLabels[MOD_HOST], .type = ITEM_TEXT},
    {.key = MOD_PRINTER, .text = QueLabels[MOD_PRINTER], .type = ITEM_TEXT},
    {.key = MOD_INTERFACE,
     .text = "User interface: ",
     .nlsText = 59,
     .type = ITEM_PICK,
     .choices = OnOffInterface,
     .nlsChoices = 258,
     .initial = {.i = 1}},
    {.key = MOD_FEATURES,
     .text = "Features: ",
     .nlsText = 60,
     .type = ITEM_PICK,
     .choices = OnOffFeatures,
     .nlsChoices = 259,
     .initial = {.i = 1},
     .format = StateText<MOD_END, HideItems(PICK_OFF, MOD_INTERFACE, MOD_BANNER, MOD_SETUP, MOD_BANNER_SETUP),
                         ProcessItems({PICK_OFF, PICK_ON}, MOD_BANNER)>},
    {.key = MOD_BANNER,
     .text = "Banner page printing: ",
     .nlsText = 61,
     .type = ITEM_PICK,
     .choices = OnOffBanner,
     .nlsChoices = 260,
     .initial = {.i = 1},
     .format = StateText<MOD_END, HideItems(PICK_OFF, MOD_BANNER_SETUP)>},
    {.key = MOD_SETUP,
     .text = "Configure Printer Features",
     .nlsText = 62,
     .type = ITEM_ACTION,
     .callback = ModifySetupTty},
    {.key = MOD_BANNER_SETUP,
     .text = "Configure Banner Page",
     .nlsText = 63,
     .type = ITEM_ACTION,
     .callback = BannerInfoSetupTty},
    {.key = MOD_DEFAULT,
     .text = "Set as default printer",
     .type = ITEM_PICK,
     .choices = NoYes,
     .nlsChoices = 261},
    {.key = MOD_BLANK, .text = "", .type = ITEM_TEXT},
    {.key = MOD_BAR, .text = "", .type = ITEM_BAR, .value = {.i = 2}},
    {.key = MOD_APPLY,
     .text = "Apply",
     .nlsText = 65,
     .type = ITEM_APPLY,
     .callback = ApplyModifySettingsTty},
    {.key = MOD_CANCEL, .text = "Cancel", .nlsText = 66, .type = ITEM_CANCEL},
    {},
};
constinit MenuTable<MOD_END> ModifyQueMenuItems = MakeMenuTable<MOD_END, ModifyQueRows>();

TextMenu ModifyQueMenu = {.title = "Modify Queue",
                          .nlsTitle = 52,
                          .titleMode = TITLE_CENTRE,
                          .parent = &MainMenu,
                          .items = ModifyQueMenuItems,
                          .flags = MENU_NO_LEAVE | MENU_HELP};

// With blank lines between the items the queue's own lines run off the top of a small terminal.
static void FitModifyMenu() {
    bool fits = !isatty(STDOUT_FILENO) || GetTermHeight() >= SPACED_ROWS;
    ModifyQueMenu.flags = MENU_NO_LEAVE | MENU_HELP | (fits ? 0 : MENU_DENSE);
}

int ModifyQueTty(TextMenu *, TextMenuItem *) {
    if (!AskQueueTty(TTY_MODIFY_PROMPT, "Modification", pModifyQueName)) return 0;
    FitModifyMenu();
    if (InitModifyQueMenu(&ModifyQueMenu) == 0) RunMenu(&ModifyQueMenu, nullptr, 1);
    InitMainMenu(&MainMenu);
    return 0;
}

// Apply takes a work file that isn't there for titles or settings that were removed: without them the menu
// doesn't open.
int InitModifyQueMenu(TextMenu *) {
    const char *unwritten = nullptr;
    if (!DeleteWorkFile(SettingsFile) || !SetQueSettingsTty(pModifyQueName)) unwritten = SettingsFile;
    if (!DeleteWorkFile(BannerFile) || !GetBannerInfoTty(pModifyQueName)) unwritten = BannerFile;
    if (!unwritten) return 0;
    DeleteWorkFiles(); // one may hold a part
    ShowUnwrittenTty(unwritten);
    return 1;
}

// ---- The queue as it stands

static void SetQueLabel(int item, int leadIn, const char *value) {
    snprintf(QueLabels[item], MENU_TEXT_SIZE, "%s%s", NlsText(pDrvCoreDB, SET_TTY, leadIn).c_str(), value);
    ModifyQueMenuItems[item].state = STATE_NORMAL;
}

// Without a count record the printer stands alone, behind the words for a host if it is a device.
static void SetPlaceLabels(const QuePlace &place) {
    std::string where = place.address;
    if (place.kind == PLACE_REMOTE) where += std::string(" using ") + place.remote;
    ModifyQueMenuItems[MOD_HOST].state = STATE_HIDDEN;
    if (place.counted)
        SetQueLabel(MOD_HOST, place.kind == PLACE_REMOTE ? TTY_HOST_AND_QUEUE : TTY_HOST, where.c_str());
    bool alone = !place.counted && place.kind == PLACE_DEVICE;
    SetQueLabel(MOD_PRINTER, alone ? TTY_HOST : TTY_PRINTER, MPS_tty.printer);
}

static void SetQueLabels(const char *name) {
    bool server = MPS_tty.type == QUEUE_SERVER;
    SetQueLabel(MOD_NAME, TTY_QUEUE, name);
    SetQueLabel(MOD_MODEL, TTY_MODEL,
                PrinterModelTty ? GetModelName(PrinterModelTty).c_str() : MPS_tty.ppdFile);
    SetQueLabel(MOD_PRINTING_MODEL, TTY_PRINTING_MODEL,
                server ? "workstation to print server" : "workstation to printer");
    SetQueLabel(MOD_CONNECTION, TTY_CONNECTION, IsDeviceType(MPS_tty.type) ? "local device" : "TCP/IP");
    SetPlaceLabels(GetQuePlace(&MPS_tty));
}

int SetQueSettingsTty(const char *name) {
    GetQueDbEntry(&MPS_tty, name);
    int written = PutSettingsFile(&MPS_tty);
    TextMenuItem *items = ModifyQueMenuItems;
    items[MOD_DEFAULT].initial.i = TestDefaultQueue(name);
    items[MOD_INTERFACE].initial.i = MPS_tty.userInterface != 0;
    items[MOD_FEATURES].initial.i = MPS_tty.features != 0;
    items[MOD_BANNER].initial.i = MPS_tty.banner != 0;
    PrinterModelTty = FindToken(MPS_tty.ppdFile, PpdList);
    SetQueLabels(name);
    return written;
}

// ---- Callbacks

int ModifySetupTty(TextMenu *menu, TextMenuItem *) {
    std::string line = MakeFeatureLine(MPS_tty.ppdFile, GetItemChoice(menu->items, MOD_BANNER));
    RunFeaturesTty(line);
    return 0;
}

int ApplyModifySettingsTty(TextMenu *menu, TextMenuItem *) {
    if (flTitlesLostTty) {
        ShowUnwrittenTty(BannerFile);
        return 1;
    }
    MPS_tty.userInterface = static_cast<unsigned char>(GetItemChoice(menu->items, MOD_INTERFACE));
    MPS_tty.features = static_cast<unsigned char>(GetItemChoice(menu->items, MOD_FEATURES));
    MPS_tty.banner = static_cast<unsigned char>(GetItemChoice(menu->items, MOD_BANNER));
    MPS_tty.isDefault = static_cast<unsigned char>(GetItemChoice(menu->items, MOD_DEFAULT));
    QueOptions options = {MPS_tty.features, MPS_tty.banner, MPS_tty.userInterface, MPS_tty.isDefault};
    std::string told;
    RunQueLine(MakeModifyLine(pModifyQueName, options, 1), &told);
    ShowToldTty(told);
    if (!told.empty()) DropQueList(); // the queue may be gone
    return 0;
}

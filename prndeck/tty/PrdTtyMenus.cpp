// The main menu: its table, the texts of all menus, and the queue lists that it shows.
#include "prndeck/tty/PrdTty.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/Version.h"
#include "common/Words.h"
#include "common/utils.h"
#include "help/HelpTty.h"
#include "menu/MenuText.h"
#include "print/PrdCommonUtils.h"
#include "prndeck/core/Prd.h"
#include "prndeck/core/PrdSets.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

static int DumpMemTty(TextMenu *, TextMenuItem *) {
    DumpMem();
    return 0;
}

// Titles, labels and the list of queues are filled by InitMainMenu.
static constexpr TextMenuItem MainRows[] = {
    {.key = MAIN_ADD,
     .text = "Add Queue",
     .nlsText = 80,
     .type = ITEM_SUBMENU,
     .value = {.m = &AddPrinterMenu}},
    {.key = MAIN_MODIFY,
     .text = "Modify Queue",
     .nlsText = 81,
     .type = ITEM_ACTION,
     .callback = ModifyQueTty},
    {.key = MAIN_COPY, .text = "Copy Queue", .nlsText = 82, .type = ITEM_ACTION, .callback = CloneQueTty},
    {.key = MAIN_DELETE,
     .text = "Delete Queue",
     .nlsText = 83,
     .type = ITEM_ACTION,
     .callback = RemoveExistingPrinter},
    {.key = MAIN_DUMP,
     .text = "Dump Memory",
     .nlsText = 84,
     .type = ITEM_ACTION,
     .state = STATE_HIDDEN,
     .callback = DumpMemTty},
    {.key = MAIN_EXIT, .text = "Exit", .nlsText = 85, .type = ITEM_EXIT},
    {.key = MAIN_QUEUES, .text = "", .type = ITEM_TEXT},
    {},
};
constinit MenuTable<MAIN_END> MainMenuItems = MakeMenuTable<MAIN_END, MainRows>();

TextMenu MainMenu = {.title = "",
                     .titleMode = TITLE_CENTRE,
                     .initCallback = InitMainMenu,
                     .items = MainMenuItems,
                     .flags = MENU_NO_LEAVE | MENU_HELP};

char *pExistingPrinterList;
char *pExistingTarvoPrinterList;
int ExistingPrinterCnt;
int ExistingTarvoPrinterCnt;

// ---- Texts of the tables

static std::string FamilyText(int number) {
    return NlsFmt(NlsText(pDrvCoreDB, SET_TTY, number).c_str(), "s", PRN_FAMILY);
}

static void InitTables() {
    static bool done;
    if (done) return;
    done = true;
    pTtyHelp = TtyHtmlHelp;
    pTtyHtmlName = GetManualName();
    pTtyHtmlTitle = PRN_FAMILY " Administration Help";
    for (TextMenu *menu : {&MainMenu, &AddPrinterMenu, &ModifyQueMenu, &CloneQueMenu}) FillMenuTexts(menu);
    MainMenuItems[MAIN_DUMP].state = STATE_HIDDEN;
}

// ---- Queue lists

char *FormatQueList(const char *list, const char *heading, int width, int *count) {
    std::string text = heading;
    std::string_view rest(list ? list : "");
    size_t column = 0;
    *count = 0;
    for (std::string_view name; TakeWord(rest, ",", name); ++*count) {
        bool full = column + name.size() >= static_cast<size_t>(width);
        if (full) column = 0;
        column += name.size() + 1;
        text.append(full ? "\n " : " ").append(name);
    }
    return SaveStr_(text.c_str());
}

static void FreeShownLists() {
    MainMenuItems[MAIN_QUEUES].text = "";
    PutMem(pExistingPrinterList);
    PutMem(pExistingTarvoPrinterList);
    pExistingPrinterList = pExistingTarvoPrinterList = nullptr;
    ExistingPrinterCnt = ExistingTarvoPrinterCnt = 0;
}

static void RefreshLists() {
    FreeShownLists();
    std::string heading = NlsText(pDrvCoreDB, SET_TTY, TTY_ALL_QUEUES);
    ReadQueLists();
    pExistingPrinterList = FormatQueList(pQueList, heading.c_str(), QUE_LIST_WIDTH, &ExistingPrinterCnt);
    if (!pQueList) return;
    pExistingTarvoPrinterList = FormatQueList(pTarvoQueList, FamilyText(TTY_FAMILY_QUEUES).c_str(),
                                              QUE_LIST_WIDTH, &ExistingTarvoPrinterCnt);
}

static void TestRoot() {
    if (flUserIsRoot) return;
    fprintf(stderr, "%s is logged in\nYou must become root to run %s\n", pUser ? pUser : "", my_name);
    exit_app(1);
}

// Behind the name and the version: why the lists below aren't whole.
static void SetMainTitle() {
    static char *title;
    PutMem(title);
    std::string name = FamilyText(TTY_TITLE) + " " + PRN_VERSION;
    title = pQueListTold ? SaveStr("%s\n%s", name.c_str(), pQueListTold) : SaveStr_(name.c_str());
    MainMenu.title = title;
}

int InitMainMenu(TextMenu *) {
    TestRoot();
    if (!pQueList) RefreshLists();
    MainMenuItems[MAIN_QUEUES].text = pExistingPrinterList ? pExistingPrinterList : "";
    InitTables();
    SetMainTitle();
    return 0;
}

void RunTty() {
    DropQueList(); // the windows may have left one
    TextMenuItem *model = &AddPrinterMenuItems[ADD_MODEL];
    PutMem(model->choices);
    model->choices = SaveStr_(PpdModelList);
    model->value.i = 0;
    RunMenu(&MainMenu, nullptr, 1);
}

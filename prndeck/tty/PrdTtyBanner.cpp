// The banner menu of the terminal.
#include "prndeck/tty/PrdTtyBanner.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/utils.h"
#include "menu/MenuText.h"
#include "print/MainUtils.h"
#include "print/QueFormat.h"
#include "prndeck/tty/PrdTty.h"

#include <cstdio>
#include <cstring>

char BannerLine[BANNER_TEXT];
int flTitlesLostTty;

// Three times a title and its size: items of one of them.
enum { BM_TITLE = BM_TITLE_1, BM_SIZE = BM_SIZE_1, BM_ROW = BM_TITLE_2 - BM_TITLE_1 };

static char Sizes1[] = "8,10,12,14,16,18,20,22,24,26,28,30,32,34,36,38,40";
static char Sizes2[] = "8,10,12,14,16,18,20,22,24,26,28,30,32,34,36,38,40";
static char Sizes3[] = "8,10,12,14,16,18,20,22,24,26,28,30,32,34,36,38,40";
static char NoYes[] = "_No,_Yes";
static char TitleDefaults[BANNER_ROWS][MENU_TEXT_SIZE];

// Values and defaults are filled at run time, labels and prompts whenever the menu is made.
static constexpr TextMenuItem ConfigureBannerPageRows[] = {
    {.key = BM_TITLE_1,
     .text = "Title 1",
     .nlsText = 211,
     .type = ITEM_OPTIONAL,
     .prompt = "Enter description for title 1",
     .nlsPrompt = 1111,
     .format = "t(1,80)"},
    {.key = BM_SIZE_1,
     .text = "Font Size for Title 1",
     .nlsText = 212,
     .type = ITEM_PICK,
     .choices = Sizes1,
     .initial = {.i = BANNER_DEFAULT_SIZE}},
    {.key = BM_TITLE_2,
     .text = "Title 2",
     .nlsText = 213,
     .type = ITEM_OPTIONAL,
     .prompt = "Enter description for title 2",
     .nlsPrompt = 1112,
     .format = "t(1,80)"},
    {.key = BM_SIZE_2,
     .text = "Font Size for Title 2",
     .nlsText = 214,
     .type = ITEM_PICK,
     .choices = Sizes2,
     .initial = {.i = BANNER_DEFAULT_SIZE}},
    {.key = BM_TITLE_3,
     .text = "Title 3",
     .nlsText = 215,
     .type = ITEM_OPTIONAL,
     .prompt = "Enter description for title 3",
     .nlsPrompt = 1113,
     .format = "t(1,80)"},
    {.key = BM_SIZE_3,
     .text = "Font Size for Title 3",
     .nlsText = 216,
     .type = ITEM_PICK,
     .choices = Sizes3,
     .initial = {.i = BANNER_DEFAULT_SIZE}},
    {.key = BM_AS_DEFAULT,
     .text = "Use as default title",
     .nlsText = 217,
     .type = ITEM_PICK,
     .choices = NoYes},
    {.key = BM_BLANK, .text = "", .type = ITEM_TEXT},
    {.key = BM_BAR, .text = "", .type = ITEM_BAR, .value = {.i = 3}},
    {.key = BM_SAVE, .text = "Apply", .nlsText = 9, .type = ITEM_APPLY, .callback = SaveBannerInfoTty},
    {.key = BM_RESTORE,
     .text = "Restore titles",
     .nlsText = 12,
     .type = ITEM_ACTION,
     .callback = RestoreBannerInfoTty},
    {.key = BM_LEAVE, .text = "Cancel", .nlsText = 10, .type = ITEM_CANCEL},
    {},
};
constinit MenuTable<BM_END> ConfigureBannerPageMenuItems = MakeMenuTable<BM_END, ConfigureBannerPageRows>();

static TextMenu BannerMenu = {.title = "Configure Banner Page",
                              .nlsTitle = 210,
                              .titleMode = TITLE_CENTRE,
                              .initCallback = InitBannerInfoMenu,
                              .items = ConfigureBannerPageMenuItems,
                              .flags = MENU_HELP};

// Takes the texts of the catalogue as it is now, and gives up those of the last visit.
int BannerInfoSetupTty(TextMenu *menu, TextMenuItem *) {
    FillMenuTexts(&BannerMenu);
    BannerMenu.parent = menu;
    RunMenu(&BannerMenu, nullptr, 1);
    return 0;
}

static void SetTitleItem(TextMenuItem *item, char *initial, const char *title) {
    snprintf(initial, MENU_TEXT_SIZE, "%s", title);
    item->initial.s = initial;
    if (!item->value.s) item->value.s = static_cast<char *>(GetMem(MENU_TEXT_SIZE));
    if (!item->value.s) SysError("%s", OutOfMem);
    snprintf(item->value.s, MENU_TEXT_SIZE, "%s", title);
}

// Runs again when the user chose to stay: what was typed since gives way to the text of the last apply.
int InitBannerInfoMenu(TextMenu *menu) {
    BannerRow rows[BANNER_ROWS];
    ReadBannerText(BannerLine, rows);
    for (int i = 0; i < BANNER_ROWS; i++) {
        TextMenuItem *row = &menu->items[i * BM_ROW];
        SetTitleItem(&row[BM_TITLE], TitleDefaults[i], rows[i].title);
        row[BM_SIZE].initial.i = row[BM_SIZE].value.i = rows[i].size;
    }
    menu->items[BM_AS_DEFAULT].initial.i = menu->items[BM_AS_DEFAULT].value.i = 0;
    return 0;
}

// An empty entry leaves a title as it is, so that one of blanks is how to be rid of it.
static const char *GetTitleItem(const TextMenuItem *item) {
    const char *title = item->value.s ? item->value.s : "";
    return title[strspn(title, " \t\r\n")] ? title : "";
}

static std::string GetBannerItems(const TextMenuItem *items) {
    BannerRow rows[BANNER_ROWS];
    for (int i = 0; i < BANNER_ROWS; i++) {
        const TextMenuItem *row = &items[i * BM_ROW];
        SetBannerRow(&rows[i], GetTitleItem(&row[BM_TITLE]), static_cast<int>(row[BM_SIZE].value.i));
    }
    return MakeBannerText(rows);
}

int SaveBannerInfoTty(TextMenu *menu, TextMenuItem *) {
    std::string text = GetBannerItems(menu->items);
    snprintf(BannerLine, sizeof BannerLine, "%s", text.c_str());
    flTitlesLostTty = !PutBannerFile(BannerLine);
    if (flTitlesLostTty) {
        ShowUnwrittenTty(BannerFile);
        return 1;
    }
    if (menu->items[BM_AS_DEFAULT].value.i) ShowToldTty(PutDefaultBanner(BannerLine));
    return 0;
}

int RestoreBannerInfoTty(TextMenu *menu, TextMenuItem *) {
    for (int i = 0; i < BANNER_ROWS; i++) {
        TextMenuItem *row = &menu->items[i * BM_ROW];
        SetTitleItem(&row[BM_TITLE], TitleDefaults[i], std::string(TitleDefaults[i]).c_str());
        row[BM_SIZE].value.i = row[BM_SIZE].initial.i;
    }
    menu->items[BM_AS_DEFAULT].value.i = menu->items[BM_AS_DEFAULT].initial.i;
    return 0;
}

int GetBannerInfoTty(const char *queue) {
    flTitlesLostTty = 0;
    if (queue && GetQueDbText(QueOwnBannerKey(queue).c_str(), BannerLine, sizeof BannerLine))
        return PutBannerFile(BannerLine);
    GetQueDbText(QueBannerKey, BannerLine, sizeof BannerLine);
    return 1;
}

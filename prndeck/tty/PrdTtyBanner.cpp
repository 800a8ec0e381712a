// The banner menu of the terminal.
#include "prndeck/tty/PrdTtyBanner.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/utils.h"
#include "menu/MenuText.h"
#include "print/MainUtils.h"

#include <cstdio>
#include <iterator>

char BannerLine[BANNER_TEXT];

// Three rows of a title and its size, then the rest.
enum { BM_TITLE = 0, BM_SIZE = 1, BM_ROW = 2, BM_AS_DEFAULT = 6, BM_SAVE = 9, BM_RESTORE, BM_LEAVE };
enum {
    TEXT_APPLY = 9,
    TEXT_CANCEL = 10,
    TEXT_RESTORE = 12,
    TEXT_TITLE = 210,
    TEXT_LABELS = 211,
    TEXT_PROMPTS = 1111
};

static char Sizes1[] = "8,10,12,14,16,18,20,22,24,26,28,30,32,34,36,38,40";
static char Sizes2[] = "8,10,12,14,16,18,20,22,24,26,28,30,32,34,36,38,40";
static char Sizes3[] = "8,10,12,14,16,18,20,22,24,26,28,30,32,34,36,38,40";
static char NoYes[] = "_No,_Yes";
static char TitleDefaults[BANNER_ROWS][MENU_TEXT_SIZE];

// Values and defaults are filled at run time, labels and prompts whenever the menu is made.
TextMenuItem ConfigureBannerPageMenuItems[] = {
    {.text = "Title 1",
     .type = ITEM_OPTIONAL,
     .prompt = "Enter description for title 1",
     .format = "t(1,80)"},
    {.text = "Font Size for Title 1",
     .type = ITEM_PICK,
     .choices = Sizes1,
     .initial = {.i = BANNER_DEFAULT_SIZE}},
    {.text = "Title 2",
     .type = ITEM_OPTIONAL,
     .prompt = "Enter description for title 2",
     .format = "t(1,80)"},
    {.text = "Font Size for Title 2",
     .type = ITEM_PICK,
     .choices = Sizes2,
     .initial = {.i = BANNER_DEFAULT_SIZE}},
    {.text = "Title 3",
     .type = ITEM_OPTIONAL,
     .prompt = "Enter description for title 3",
     .format = "t(1,80)"},
    {.text = "Font Size for Title 3",
     .type = ITEM_PICK,
     .choices = Sizes3,
     .initial = {.i = BANNER_DEFAULT_SIZE}},
    {.text = "Use as default title", .type = ITEM_PICK, .choices = NoYes},
    {.text = "", .type = ITEM_TEXT},
    {.text = "", .type = ITEM_BAR, .value = {.i = 3}},
    {.text = "Apply", .type = ITEM_APPLY, .callback = SaveBannerInfoTty},
    {.text = "Restore titles", .type = ITEM_ACTION, .callback = RestoreBannerInfoTty},
    {.text = "Cancel", .type = ITEM_CANCEL},
    {},
};
static_assert(std::size(ConfigureBannerPageMenuItems) == BM_LEAVE + 2);

// Takes the texts of the catalogue as it is now, and gives up those of the last visit.
static void ConvertBannerItems() {
    TextMenuItem *items = ConfigureBannerPageMenuItems;
    for (int i = 0; items[i].text; i++) {
        PutMem(items[i].text);
        PutMem(items[i].prompt);
    }
    NlsTtyMenuItemCvt(&items[BM_TITLE], TEXT_LABELS, BM_AS_DEFAULT + 1);
    NlsTtyMenuItemCvt(&items[BM_SAVE], TEXT_APPLY, 1);
    NlsTtyMenuItemCvt(&items[BM_RESTORE], TEXT_RESTORE, 1);
    NlsTtyMenuItemCvt(&items[BM_LEAVE], TEXT_CANCEL, 1);
    for (int i = 0; i < BANNER_ROWS; i++) NlsTtyMenuItemPromptCvt(&items[i * BM_ROW], TEXT_PROMPTS + i, 1);
}

int BannerInfoSetupTty(TextMenu *menu, TextMenuItem *) {
    char *title = nullptr;
    NlsTtyMenuCvt(&title, TEXT_TITLE);
    ConvertBannerItems();
    TextMenu banner = {.title = title,
                       .titleMode = TITLE_CENTRE,
                       .parent = menu,
                       .initCallback = InitBannerInfoMenu,
                       .items = ConfigureBannerPageMenuItems,
                       .flags = MENU_HELP};
    RunMenu(&banner, nullptr, 1);
    PutMem(title);
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

static std::string GetBannerItems(const TextMenuItem *items) {
    BannerRow rows[BANNER_ROWS];
    for (int i = 0; i < BANNER_ROWS; i++) {
        const TextMenuItem *row = &items[i * BM_ROW];
        SetBannerRow(&rows[i], row[BM_TITLE].value.s ? row[BM_TITLE].value.s : "",
                     static_cast<int>(row[BM_SIZE].value.i));
    }
    return MakeBannerText(rows);
}

int SaveBannerInfoTty(TextMenu *menu, TextMenuItem *) {
    std::string text = GetBannerItems(menu->items);
    snprintf(BannerLine, sizeof BannerLine, "%s", text.c_str());
    PutBannerFile(BannerLine);
    if (menu->items[BM_AS_DEFAULT].value.i) PutDefaultBanner(BannerLine);
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

void GetBannerInfoTty(const char *queue) {
    if (queue && GetQueDbText((std::string(queue) + " **banner").c_str(), BannerLine, sizeof BannerLine))
        PutBannerFile(BannerLine);
    else
        GetQueDbText(" banner", BannerLine, sizeof BannerLine);
}

// Texts of the catalogue put into the tables of menus.
#include "menu/MenuText.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"

static char *CopyMenuText(int number) {
    char text[NLS_MENU_TEXT];
    return SaveStr_(NlsFetchString(pDrvCoreDB, text, sizeof(text), NLS_FETCH_NUMBER, NLS_TTY_SET, number));
}

void NlsTtyMenuCvt(char **field, int number) {
    if (field) *field = CopyMenuText(number);
}

void NlsTtyMenuItemCvt(TextMenuItem *items, int number, int count) {
    for (int i = 0; items && i < count; i++) items[i].text = CopyMenuText(number + i);
}

void NlsTtyMenuItemStateCvt(TextMenuItem *items, int number, int count) {
    for (int i = 0; items && i < count; i++) items[i].choices = CopyMenuText(number + i);
}

void NlsTtyMenuItemPromptCvt(TextMenuItem *items, int number, int count) {
    for (int i = 0; items && i < count; i++) items[i].prompt = CopyMenuText(number + i);
}

static void FillItemTexts(TextMenuItem *item) {
    if (item->nlsText) {
        PutMem(item->text);
        NlsTtyMenuItemCvt(item, item->nlsText, 1);
    }
    if (item->nlsPrompt) {
        PutMem(item->prompt);
        NlsTtyMenuItemPromptCvt(item, item->nlsPrompt, 1);
    }
    if (item->nlsChoices) {
        PutMem(item->choices);
        NlsTtyMenuItemStateCvt(item, item->nlsChoices, 1);
    }
}

void FillMenuTexts(TextMenu *menu) {
    if (menu->nlsTitle) {
        PutMem(menu->title);
        char *title = nullptr;
        NlsTtyMenuCvt(&title, menu->nlsTitle);
        menu->title = title;
    }
    for (TextMenuItem *item = menu->items; item->text; item++) FillItemTexts(item);
}

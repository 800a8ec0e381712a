// Shows the pages of the manual as menus: the links are numbered items, three common items end every page.
#include "help/HelpTty.h"

#include "common/MemMgr.h"
#include "common/NlsUtils.h"
#include "common/utils.h"
#include "help/html.h"

#include <algorithm>
#include <cstring>
#include <iterator>

enum { HELP_SET = 20, HELP_EXIT_TEXT = 150, HELP_TITLE_SET = 30, HELP_TITLE = 22, HELP_TITLE_SIZE = 2048 };
enum { HELP_COMMON = 6, HELP_LABELS = 2, HELP_SPARE = 7 };

TextMenu HelpMenu = {.titleMode = TITLE_CENTRE,
                     .flags = MENU_NO_LEAVE | MENU_REINIT | MENU_OLD_TYPE | MENU_DENSE};
TextMenuItem *HelpMenuItems = nullptr;
int HelpMenuItemCnt = 0;

// The labels are replaced by the catalogue's at each build.
TextMenuItem HelpCommonItems[HELP_COMMON] = {
    {.text = "", .type = ITEM_BAR, .value = {.i = 1}},
    {.text = "", .type = ITEM_BAR, .value = {.i = 3}},
    {.text = "~e Exit Help", .type = ITEM_EXIT, .number = 'e'},
    {.text = "~c Contents", .type = ITEM_ACTION, .callback = TtyHelpContents, .number = 'c'},
    {.text = "~b Back", .type = ITEM_ACTION, .callback = TtyHelpBack, .number = 'b'},
    {},
};

// Texts of the menu now shown, released when the next one is made.
static char *pHelpTitle = nullptr;
static char *aHelpLabel[3];
static int LinkItemCnt = 0;

static void GrowHelpItems(int count) {
    if (count <= HelpMenuItemCnt) return;
    void *items = AdjustMem(HelpMenuItems, static_cast<size_t>(count) * sizeof(TextMenuItem));
    if (!items) SysError("%s", OutOfMem);
    HelpMenuItems = static_cast<TextMenuItem *>(items);
    HelpMenuItemCnt = count;
}

static void FreeLinkItems() {
    for (int i = 1; i <= LinkItemCnt; i++) PutMem(HelpMenuItems[i].text);
    LinkItemCnt = 0;
}

// Links to elsewhere that show a text; the anchor that only names its own page is none.
static bool IsHelpItem(const HtmlLink *link) {
    if (link->Size <= 0 || !link->Target) return false;
    return link->Kind == LINK_HREF || strcmp(link->Target, pCurrentPage->Name) != 0;
}

// The text on the screen without the "<" and ">" around it. Owns: the result.
static char *LinkText(const HtmlLink *link) {
    int length = std::max(0, link->End - link->Start - 2);
    return SaveStr("%.*s", length, length > 0 ? pCurrentPage->TextImage + link->Start + 1 : "");
}

static void AddLinkItems() {
    for (int i = 0; i < pCurrentPage->AnchorCount; i++) {
        HtmlLink *link = pCurrentPage->Anchors[i];
        if (!IsHelpItem(link)) continue;
        LinkItemCnt++;
        HelpMenuItems[LinkItemCnt] = {.text = LinkText(link),
                                      .type = ITEM_ACTION,
                                      .callback = TtyHelpGotoLink,
                                      .link = link,
                                      .number = LinkItemCnt};
    }
}

static void AddCommonItems() {
    for (int i = 0; i < static_cast<int>(std::size(aHelpLabel)); i++) {
        PutMem(aHelpLabel[i]);
        aHelpLabel[i] =
            NlsFetchString(pDrvCoreDB, nullptr, 0, NLS_FETCH_NUMBER, HELP_SET, HELP_EXIT_TEXT + i);
        HelpCommonItems[HELP_LABELS + i].text = aHelpLabel[i];
        HelpCommonItems[HELP_LABELS + i].number = aHelpLabel[i][0] ? aHelpLabel[i][1] : 0;
    }
    std::copy(std::begin(HelpCommonItems), std::end(HelpCommonItems), HelpMenuItems + 1 + LinkItemCnt);
}

static void SetHelpTitle(char *title) {
    PutMem(pHelpTitle);
    pHelpTitle = title;
    HelpMenu.title = title;
}

void TtyHelpBuildMenuItems() {
    static char contents[] = "contents";
    FreeLinkItems();
    GrowHelpItems(pCurrentPage->AnchorCount + HELP_SPARE);
    HelpMenuItems[0] = {.text = pCurrentPage->TextImage, .type = ITEM_TEXT};
    if (!pCurrentPage->Name) pCurrentPage->Name = contents;
    AddLinkItems();
    AddCommonItems();
    HelpMenu.items = HelpMenuItems;
    char title[HELP_TITLE_SIZE];
    Nlssprintf(title, sizeof title, pDrvCoreDB, HELP_TITLE_SET, HELP_TITLE, "Tarvo");
    SetHelpTitle(SaveStr_(title));
}

int TtyHelpGotoLink(TextMenu *, TextMenuItem *item) {
    ProcessLink(static_cast<HtmlLink *>(item->link));
    TtyHelpBuildMenuItems();
    return 0;
}

int TtyHelpContents(TextMenu *, TextMenuItem *) {
    if (HtmlSetHistory(0)) TtyHelpBuildMenuItems();
    return 0;
}

int TtyHelpBack(TextMenu *, TextMenuItem *) {
    if (HtmlSetHistory(-1)) TtyHelpBuildMenuItems();
    return 0;
}

void TtyHtmlHelp(const char *name, const char *data, const char *title) {
    if (!name || !title || !HtmlHelp(name, data)) return;
    SetHelpTitle(SaveStr_(title));
    TtyHelpBuildMenuItems();
    RunMenu(&HelpMenu, nullptr, 1);
}

// The banner menu of the terminal: titles and sizes, kept as a banner text (PrdBanner.h).
#pragma once

#include "menu/MenuTable.h"
#include "prndeck/core/PrdBanner.h"

extern char BannerLine[BANNER_TEXT]; // the terminal's banner text; writers: the functions below

// The last titles couldn't be written to their work file: a change would take them for removed. Writers:
// SaveBannerInfoTty, GetBannerInfoTty.
extern int flTitlesLostTty;

enum BannerItem {
    BM_TITLE_1,
    BM_SIZE_1,
    BM_TITLE_2,
    BM_SIZE_2,
    BM_TITLE_3,
    BM_SIZE_3,
    BM_AS_DEFAULT,
    BM_BLANK,
    BM_BAR,
    BM_SAVE,
    BM_RESTORE,
    BM_LEAVE,
    BM_END
};
extern MenuTable<BM_END> ConfigureBannerPageMenuItems;

int BannerInfoSetupTty(TextMenu *menu, TextMenuItem *item);
int InitBannerInfoMenu(TextMenu *menu);
int SaveBannerInfoTty(TextMenu *menu, TextMenuItem *item); // 1, with the message, if they can't be written
int RestoreBannerInfoTty(TextMenu *menu, TextMenuItem *item);
// Loads BannerLine: the queue's own text, which also goes to ".bsettings", else the system's default, else
// none. 0 if ".bsettings" can't be written.
int GetBannerInfoTty(const char *queue);

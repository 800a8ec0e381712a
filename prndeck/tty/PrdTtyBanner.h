// The banner menu of the terminal: titles and sizes, kept as a banner text (PrdBanner.h).
#pragma once

#include "menu/TextMenu.h"
#include "prndeck/core/PrdBanner.h"

extern char BannerLine[BANNER_TEXT]; // the terminal's banner text; writers: the functions below
extern TextMenuItem ConfigureBannerPageMenuItems[];

int BannerInfoSetupTty(TextMenu *menu, TextMenuItem *item);
int InitBannerInfoMenu(TextMenu *menu);
int SaveBannerInfoTty(TextMenu *menu, TextMenuItem *item);
int RestoreBannerInfoTty(TextMenu *menu, TextMenuItem *item);
// Loads BannerLine: the queue's own text, which also goes to ".bsettings", else the system's default, else
// none.
void GetBannerInfoTty(const char *queue);

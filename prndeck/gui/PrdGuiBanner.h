// The banner window: titles and sizes, kept as a banner text (PrdBanner.h), and what a model allows of them.
//
// The objects' stored values are what was applied or loaded last; what is shown may be ahead of them.
#pragma once

// managed: the text of the queue at hand, for a new one the system's default, or null; writers:
// GetBannerInfo, InitQueSettings
extern char *pCBannerInfo;
extern char *pSysDefBanInfo; // managed: the system's default, or null; writers: GetBannerInfo, SaveBannerInfo

void PrepareBanner(); // the step behind the window's text
// Shows what was applied last, however the window was left before.
void OpenBanner();
void CancelBanner();
// Takes over the stored values: into ".bsettings", or as the system's default if that is wanted.
void SaveBannerInfo();
// Fills the window from a text, or empties it with null; with flStore its Cancel comes back to that.
void SetBannerInfo(const char *text, int flStore);
// Fills the window with the titles of a queue, which also go to ".bsettings", else with the system's default.
// A null queue has none. 0 if ".bsettings" can't be written.
int GetBannerInfo(const char *queue);
// Sets what the model allows for a printing model, and the choice that a new queue starts with; with flKeep
// the choice of a stored queue stays, unless the model bars it. Uses: BannerPage.
void DisableCustomBannerCheck(int printingModel, int model, int flKeep);

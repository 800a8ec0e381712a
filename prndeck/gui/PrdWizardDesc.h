// The windows of the setup wizard as texts, in the language of xmt/XmtNew.h.
#pragma once

extern const char ModifyQueDesc[];        // mqw: which queue to modify
extern const char ModifyQueWinDesc[];     // wmqw: what can be changed of it
extern const char DeleteQueDesc[];        // dqw
extern const char CopyQueSelectionDesc[]; // cqw: which queue to copy
extern const char CopyQueDesc[];          // clqw: the new queue
extern const char ConfigureBannerDesc[];  // cbpw: banner titles
extern const char AddQueDesc[];           // wqw; the catalogue leaves one hole for the models

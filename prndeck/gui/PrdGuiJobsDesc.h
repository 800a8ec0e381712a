// The windows of waiting jobs, in the language of xmt/XmtNew.h.
#pragma once

extern const char JobWinDesc[];

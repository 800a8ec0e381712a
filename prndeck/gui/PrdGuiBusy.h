// The cursor of windows that are at work.
#pragma once

#include "xmt/XmtUtils.h"

// Keeps the busy cursor on the windows of a list ("prndeck,wqw") while it lives; the list must outlive it.
struct BusyCursor {
    explicit BusyCursor(const char *list) : windows(list) { XmtSetCursor(windows, XC_watch); }
    ~BusyCursor() { XmtClearCursor(windows); }
    BusyCursor(const BusyCursor &) = delete;
    BusyCursor &operator=(const BusyCursor &) = delete;
    const char *windows;
};

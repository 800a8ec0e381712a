// Connects objects to the one function at which their events arrive, by resource or by callback key.
#pragma once

#include "xmt/Xmt.h"

extern const char pCBKeys[]; // ",me,ml,..."
extern const int CBR[];      // reason of each key, from 1

// resource: the widget's, as XmNactivateCallback.
void XmtConnect(XmtObjectData *object, const char *resource);
// Connects the object by callback keys "a,c"; a key that is unknown, or whose callback the widget does not
// have, is passed over.
void SetCallBack(XmtObjectData *object, const char *keys);

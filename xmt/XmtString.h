// Compound strings.
#pragma once

#include "xmt/Xmt.h"

// The plain text, a separator as a line feed, a tab as a tab. Owns: the result; an empty text for null.
[[nodiscard]] char *XmtDecodeString(XmString string);
XmString XmtMakeString(const char *text); // XmStringFree; the twin in the other direction, nothing is markup

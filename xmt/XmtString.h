// Compound strings from and to plain text. Nothing in a text is markup; a byte above 127 stays the byte it
// is.
#pragma once

#include "xmt/Xmt.h"

// The plain text: a separator is a line feed, a tab a tab, what else a string may hold (fonts, directions)
// has no text. An empty text for null. Owns: the result, which is null only when memory is exhausted.
[[nodiscard]] char *XmtDecodeString(XmString string);
// The twin in the other direction; null counts as empty. The caller releases it with XmStringFree.
XmString XmtMakeString(const char *text);

// The windows of discovery and browser as a text, in the language of xmt/XmtNew.h.
#pragma once

// brw: command of the web browser; ipDisc: where printers are looked for. Also the question and the notes of
// a reset: warndialog, resetconf, nobtnDialog.
extern const char IPDiscoveryDesc[];

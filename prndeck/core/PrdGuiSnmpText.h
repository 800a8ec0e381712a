// What a printer's values look like on the property sheet.
#pragma once

#include "SnmpPkg/Pkg.h"

#include <cstdint>
#include <string>

enum { // prtInputCapacityUnit and its kin
    UNIT_TEN_THOUSANDTHS = 3,
    UNIT_MICROMETERS = 4,
    UNIT_SHEETS = 8,
    UNIT_THOUSANDTHS_OUNCES = 12,
    UNIT_TENTHS_GRAMS = 13,
    UNIT_HUNDREDTHS_OUNCES = 14,
    UNIT_TENTHS_MILLILITERS = 15,
    UNIT_FEET = 16,
    UNIT_METERS = 17,
};
enum { TEXT_LINE = 119 };                      // characters of a line of text on the sheet
enum { CHANNEL_LABEL = 36, CHANNEL_CUT = 33 }; // characters of a channel's label, and of one that is cut
enum { PROTOCOLS = 36, PROTOCOL_NAME = 48 };

// Words of the catalogue. Writer: TranslateSNMPMessages; null before.
extern const char *pCommFail, *pNA, *pSome, *pOther, *pUnknown, *pUnavailable;
extern const char *pTenThousandths, *pMicrometers, *pSheets, *pFeet, *pMeters;
extern const char *pThousandthsOunces, *pTenthsGrams, *pHundredthsOunces, *pTenthsMilliliters;
extern const char *pSetErr, *pSetErr1, *pSetErr2, *pEnabled, *pDisabled;       // formats "s" and "ss": NlsFmt
extern const char *pWaitMsg1, *pWaitMsg2, *pWaitErr1, *pWaitErr2, *pResetFail; // pWaitMsg1: format "ii"
extern int flTranslatedSNMP;
void TranslateSNMPMessages(); // once; the catalogues must be open

// prtChannelType, from 1; rows 0 and 35 are empty.
extern const char ProtocolType[PROTOCOLS][PROTOCOL_NAME];

// One page of the sheet: rows and columns of objects, and the variables that fill them.
struct SnmpTableDesc {
    const char *Prefix;      // of the objects
    const char *const *Oids; // of row 1, one a column, a null behind them; "" for a column without variable
    int Columns;
    int MaxRows;                               // that the window has
    const char *Formats;                       // a letter a column, see ProcessDataFormat
    const char *Defaults = "";                 // what a column shows whose value did not arrive
    int PaperX = 0, PaperY = 0, PaperUnit = 0; // variables of the format p
    char Kind = 't';                           // of FillColumn's objects: 'l' labels, 't' texts
    int Row = 0;                               // rows filled so far; goes on counting beyond MaxRows
};

// The variable of a column counted from 0, or null for one without.
PkgVar *GetColumnVar(const SnmpTableDesc *table, SnmpPackage *package, int column);
// The display text of a column: c a level, m a maximum, u a unit, p a paper size, s a text without what can't
// be printed, t a text to edit, any other letter the text.
std::string ProcessDataFormat(char format, SnmpPackage *package, const SnmpTableDesc *table, int column);

// Printers' numbers with a meaning as words, others as they are.
const char *CovertSnmpUnitToName(const char *value);
const char *CovertSnmpCapacityToValue(const char *value);
const char *CovertSnmpMaximumToValue(const char *value);
// The name of a paper size in either direction, within 49 units; pUnknown for none. UNIT_TEN_THOUSANDTHS
// means inches, any other unit micrometres.
const char *FindPaperSize(intptr_t x, intptr_t y, intptr_t unit);

// A printer's text as the windows' fonts show it: in Latin-1 if it came as UTF-8, with "?" for letters that
// Latin-1 lacks.
std::string GetPrinterText(const char *text);
bool IsUtf8Text(const char *text);
// A text that may be edited and set again: one with a letter that Latin-1 lacks stays as it came.
// PutPrinterText leads back; flUtf8 tells that the text was changed.
std::string GetEditText(const char *text);
std::string PutPrinterText(const std::string &text, bool flUtf8);
// The same without characters that can't be printed, line ends among them.
std::string CleanPrinterText(const char *text);
// A line feed behind each TEXT_LINE characters of a longer line; and without those again. flOneLine: there
// was none before, so that all go, also those that an edit has moved.
std::string BreakLines(const std::string &text);
std::string JoinLines(const std::string &text, bool flOneLine);
// The label of a channel: its protocol in its own words, or by its type if it has none.
std::string GetChannelLabel(const char *version, intptr_t type);

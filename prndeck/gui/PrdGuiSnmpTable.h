// The two engines of the property sheet: rows of a table, and one column of single values.
//
// Objects are named by a prefix, a column and a row: "sic2t3". Reads block as long as the printer takes; a
// cell that came is on the screen before the next one is asked for.
#pragma once

#include "prndeck/core/PrdGuiSnmpText.h"

using SnmpHide = void (*)(const SnmpTableDesc *table); // hides what shows the table's Row

// Walks the table of the printer and calls back for each row, TableCB for a null callback; then hides the
// rows that the printer does not have, by their cells without a function for it.
void FillTable(const char *address, SnmpTableDesc *table, PkgCallback callback, SnmpHide hide);
// Shows one row in the cells "%s%it%i" of prefix, column and row.
int TableCB(int error, intptr_t userData, int errorStatus, int errorIndex, SnmpPackage *package,
            PkgSource *source);
// The table of a package's user data, its Row counted up; null for a row that has no first value, or no place
// in the window.
SnmpTableDesc *CountRow(intptr_t userData, const SnmpPackage *package);

// Reads the identifiers, up to a null, into the objects "%s%i" of prefix and number. Without the first value
// all stay as they are; others that did not arrive show the default.
void FillColumn(const char *address, const char *prefix, const char *const *oids, const char *defaults,
                char kind);
enum { TEXT_UTF8 = 1, TEXT_ONE_LINE = 2 }; // how a text came, in the application data of its object
// Shows the values.
int ColumnCB(int error, intptr_t userData, int errorStatus, int errorIndex, SnmpPackage *package,
             PkgSource *source);

enum { COLUMN_TEXT = 255 }; // characters that a text of a column admits; what is longer is cut
// Kind 'l': the value of a label, 't': a text. Long lines are broken. A null text does nothing.
void SetColumnValue(const char *name, const char *text, char kind);
// Shows a text without the characters that can't be printed. Nulls do nothing.
void SetSNMPWidgetStringText(const char *name, const char *text);

std::string GetCellName(const char *prefix, int number);          // "%s%i"
std::string GetCellName(const char *prefix, int column, int row); // "%s%it%i"

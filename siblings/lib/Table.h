// Lists for people: columns as wide as their widest value, two blanks between them.
#pragma once

#include <string>
#include <vector>

using TableRow = std::vector<std::string>;

// The headings of a text "ONE,TWO,...".
TableRow TableHeads(const std::string &heads);
// The lines of the table. Widths are counted in characters, and a control character in a value is shown as
// "?"; an empty value as "-", so that the columns of a line can be counted.
std::string TableText(const TableRow &heads, const std::vector<TableRow> &rows);

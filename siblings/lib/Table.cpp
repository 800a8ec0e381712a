// Widths and lines of a table.
#include "siblings/lib/Table.h"

#include <algorithm>
#include <cstddef>

enum { COLUMN_GAP = 2 };

TableRow TableHeads(const std::string &heads) {
    TableRow row;
    for (size_t at = 0, end = 0; end != heads.npos; at = end + 1) {
        end = heads.find(',', at);
        row.push_back(heads.substr(at, end == heads.npos ? end : end - at));
    }
    return row;
}

// Bytes that go on with a character of UTF-8 take no column.
static size_t Width(const std::string &text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xc0) != 0x80;
    }));
}

static std::string Plain(std::string value) {
    for (char &byte : value)
        if (static_cast<unsigned char>(byte) < ' ' || byte == 127) byte = '?';
    return value.empty() ? "-" : value;
}

static std::string Line(const TableRow &row, const std::vector<size_t> &widths) {
    std::string line;
    size_t gap = 0;
    for (size_t column = 0; column < row.size(); column++) {
        line.append(gap, ' ');
        std::string value = Plain(row[column]);
        line += value;
        gap = widths[column] - Width(value) + COLUMN_GAP;
    }
    return line + "\n";
}

std::string TableText(const TableRow &heads, const std::vector<TableRow> &rows) {
    std::vector<size_t> widths(heads.size());
    auto widen = [&](const TableRow &row) {
        for (size_t column = 0; column < row.size(); column++)
            widths[column] = std::max(widths[column], Width(Plain(row[column])));
    };
    widen(heads);
    for (const TableRow &row : rows) widen(row);
    std::string text = Line(heads, widths);
    for (const TableRow &row : rows) text += Line(row, widths);
    return text;
}

// The two engines of the property sheet.
#include "prndeck/gui/PrdGuiSnmpTable.h"

#include "prndeck/core/PrdSnmpRead.h"
#include "xmt/XmtUtils.h"

#include <cstring>

// ---- Objects

std::string GetCellName(const char *prefix, int number) {
    return prefix + std::to_string(number);
}

std::string GetCellName(const char *prefix, int column, int row) {
    return GetCellName(prefix, column) + "t" + std::to_string(row);
}

void SetColumnValue(const char *name, const char *text, char kind) {
    if (!text) return;
    std::string lines = BreakLines(text);
    if (kind == 'l') return XmtSetLabelText(name, lines.c_str());
    XmtSetText(name, lines.substr(0, COLUMN_TEXT).c_str());
}

void SetSNMPWidgetStringText(const char *name, const char *text) {
    if (name && text) XmtSetText(name, CleanPrinterText(text).c_str());
}

// ---- Rows

// A column without a variable has nothing that could fail.
static std::string GetColumnText(const SnmpTableDesc *table, SnmpPackage *package, int column) {
    const PkgVar *var = GetColumnVar(table, package, column);
    if (var && var->Status != SUCCESS) return table->Defaults;
    return ProcessDataFormat(table->Formats[column], package, table, column);
}

SnmpTableDesc *CountRow(intptr_t userData, const SnmpPackage *package) {
    auto *table = reinterpret_cast<SnmpTableDesc *>(userData);
    if (!table || package->Vars[0].Status != SUCCESS) return nullptr;
    return ++table->Row <= table->MaxRows ? table : nullptr;
}

int TableCB(int, intptr_t userData, int, int, SnmpPackage *package, PkgSource *) {
    const SnmpTableDesc *table = CountRow(userData, package);
    if (!table) return 0;
    for (int i = 0; i < table->Columns; i++) {
        std::string name = GetCellName(table->Prefix, i + 1, table->Row);
        XmtSetText(name.c_str(), GetColumnText(table, package, i).c_str());
        XmtShow(name.c_str());
    }
    return 0;
}

static void HideCells(const SnmpTableDesc *table) {
    for (int i = 1; i <= table->Columns; i++) XmtHide(GetCellName(table->Prefix, i, table->Row).c_str());
}

void FillTable(const char *address, SnmpTableDesc *table, PkgCallback callback, SnmpHide hide) {
    SnmpPackage package;
    table->Row = 0;
    ReadPrinter(&package, address, table->Oids, {PDU_TABLE, callback ? callback : TableCB, table});
    for (table->Row++; table->Row <= table->MaxRows; table->Row++) hide ? hide(table) : HideCells(table);
}

// ---- A column

static intptr_t GetTextFlags(const PkgVar *var) {
    if (!var) return TEXT_ONE_LINE;
    return (GetEditText(var->RecText) != var->RecText ? TEXT_UTF8 : 0) |
           (strchr(var->RecText, '\n') ? 0 : TEXT_ONE_LINE);
}

// The formats of a column are its kind, which changes nothing.
int ColumnCB(int, intptr_t userData, int, int, SnmpPackage *package, PkgSource *) {
    const auto *table = reinterpret_cast<const SnmpTableDesc *>(userData);
    if (!table || package->Vars[0].Status != SUCCESS) return 0;
    for (int i = 0; i < table->Columns; i++) {
        std::string name = GetCellName(table->Prefix, i + 1);
        const PkgVar *var = GetColumnVar(table, package, i);
        if (table->Kind == 't') XmtSetAppData(name.c_str(), GetTextFlags(var));
        SetColumnValue(name.c_str(), GetColumnText(table, package, i).c_str(), table->Kind);
        XmtShow(name.c_str());
    }
    return 0;
}

static void ShowDefaults(const SnmpTableDesc *table) {
    for (int i = 1; i <= table->Columns; i++) {
        std::string name = GetCellName(table->Prefix, i);
        SetColumnValue(name.c_str(), table->Defaults, table->Kind);
        XmtShow(name.c_str());
    }
}

void FillColumn(const char *address, const char *prefix, const char *const *oids, const char *defaults,
                char kind) {
    SnmpPackage package;
    int columns = 0;
    while (oids[columns]) columns++;
    std::string formats(static_cast<size_t>(columns), kind);
    SnmpTableDesc table = {
        .Prefix = prefix, .Oids = oids, .Columns = columns, .MaxRows = 1, .Formats = formats.c_str()};
    table.Defaults = defaults;
    table.Kind = kind;
    PrinterRead how = {PDU_GET, ColumnCB, &table};
    if (SetupPrinterRead(&package, oids, how) != SUCCESS) return ShowDefaults(&table);
    SendPrinterRead(&package, address, how);
}

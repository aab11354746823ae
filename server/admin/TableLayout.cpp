#include "server/admin/TableLayout.h"

#include <algorithm>
#include <stdexcept>

namespace clockwell::server {

namespace {

std::string quotedText(const std::string &text)
{
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? std::string{"''"} : std::string{c};
    return quoted + "'";
}

std::string quotedNames(const std::vector<std::string> &names)
{
    std::string list;
    for (const std::string &name : names)
        list += (list.empty() ? "" : ", ") + quotedName(name);
    return list;
}

std::string sortedRows(const TableLayout &table, const std::string &from)
{
    return "SELECT " + quotedNames(table.columns) + " FROM " + from + " ORDER BY " + quotedNames(table.key);
}

struct ReferringTable
{
    TableLayout layout;
    std::vector<std::string> references; // the other tables
};

ReferringTable readLayout(SqliteFile &file, const std::string &name)
{
    const std::string info = "SELECT name FROM pragma_table_info(" + quotedText(name) + ") ";
    ReferringTable table;
    table.layout = {name, file.column(info + "ORDER BY cid"), file.column(info + "WHERE pk > 0 ORDER BY pk")};
    if (table.layout.key.empty())
        table.layout.key = table.layout.columns;
    table.references =
        file.column("SELECT DISTINCT \"table\" FROM pragma_foreign_key_list(" + quotedText(name) + ")");
    std::erase(table.references, name);
    return table;
}

} // namespace

std::vector<TableLayout> tableLayouts(SqliteFile &file)
{
    std::vector<ReferringTable> waiting;
    for (const std::string &name : file.column("SELECT name FROM sqlite_master WHERE type = 'table'"
                                               " AND name NOT LIKE 'sqlite^_%' ESCAPE '^' ORDER BY name"))
        waiting.push_back(readLayout(file, name));
    std::vector<TableLayout> ordered;
    while (!waiting.empty()) {
        const auto next = std::ranges::find_if(
            waiting, [](const ReferringTable &table) { return table.references.empty(); });
        if (next == waiting.end())
            throw std::runtime_error{"The tables refer to each other in a circle."};
        ordered.push_back(std::move(next->layout));
        waiting.erase(next);
        for (ReferringTable &table : waiting)
            std::erase(table.references, ordered.back().name);
    }
    return ordered;
}

std::string quotedName(const std::string &name)
{
    std::string quoted = "\"";
    for (const char c : name)
        quoted += c == '"' ? std::string{"\"\""} : std::string{c};
    return quoted + "\"";
}

std::string tableWithColumns(const TableLayout &table)
{
    return quotedName(table.name) + " (" + quotedNames(table.columns) + ")";
}

std::string sortedSqliteRows(const TableLayout &table)
{
    return sortedRows(table, quotedName(table.name) + " NOT INDEXED");
}

std::string sortedPostgresRows(const TableLayout &table)
{
    return sortedRows(table, quotedName(table.name));
}

} // namespace clockwell::server

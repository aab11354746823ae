#include "server/admin/TableLayout.h"

#include <boost/algorithm/string/replace.hpp>

#include <algorithm>
#include <stdexcept>

namespace clockwell::server {

namespace {

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

ReferringTable readLayout(Connection &sqlite, const std::string &name)
{
    ReferringTable table;
    table.layout.name = name;
    table.layout.columns =
        sqlite.column<std::string>("SELECT name FROM pragma_table_info(:table) ORDER BY cid", name);
    table.layout.key = sqlite.column<std::string>(
        "SELECT name FROM pragma_table_info(:table) WHERE pk > 0 ORDER BY pk", name);
    if (table.layout.key.empty())
        table.layout.key = table.layout.columns;
    table.references =
        sqlite.column<std::string>("SELECT DISTINCT \"table\" FROM pragma_foreign_key_list(:table)", name);
    std::erase(table.references, name);
    return table;
}

} // namespace

std::vector<TableLayout> tableLayouts(Connection &sqlite)
{
    std::vector<ReferringTable> waiting;
    for (const std::string &name :
         sqlite.column<std::string>("SELECT name FROM sqlite_master WHERE type = 'table'"
                                    " AND name NOT LIKE 'sqlite^_%' ESCAPE '^' ORDER BY name"))
        waiting.push_back(readLayout(sqlite, name));
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
    return '"' + boost::replace_all_copy(name, "\"", "\"\"") + '"';
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

#include "server/admin/RowValidation.h"

#include "server/admin/AdminError.h"
#include "server/admin/Printable.h"
#include "server/http/Utf8.h"

#include <algorithm>

namespace clockwell::server {

namespace {

std::string textProblem(std::string_view text, const PostgresColumn &column)
{
    if (text.find('\0') != std::string_view::npos)
        return "holds a NUL character, which PostgreSQL cannot store";
    if (!isUtf8(text))
        return "holds a text that is not UTF-8";
    if (const auto length = static_cast<long long>(characterCount(text));
        column.longest && length > *column.longest)
        return "holds a text of " + std::to_string(length) + " characters, and " +
               std::to_string(*column.longest) + " are allowed";
    return {};
}

/// What is wrong; nothing when it is all right.
std::string problemOf(const StoredValue &value, const PostgresColumn &column)
{
    using Kind = PostgresColumn::Kind;
    if (std::holds_alternative<std::monostate>(value))
        return {};
    switch (column.kind) {
    case Kind::Integer:
        return std::holds_alternative<long long>(value) ? "" : "holds something else than a whole number";
    case Kind::Real:
        return std::holds_alternative<double>(value) ? "" : "holds something else than a number";
    default:
        const auto *text = std::get_if<std::string_view>(&value);
        return text == nullptr ? "holds something else than a text" : textProblem(*text, column);
    }
}

struct KeyText
{
    std::string operator()(std::monostate) const { return "NULL"; }
    std::string operator()(long long value) const { return std::to_string(value); }
    std::string operator()(double value) const { return std::to_string(value); }
    std::string operator()(std::string_view value) const { return "\"" + printable(value) + "\""; }
    std::string operator()(const StoredBytes &value) const { return (*this)(value.bytes); }
};

/// "office_id "o-1", day "2026-05-01""
std::string keyOf(const StoredRow &row, const TableLayout &table)
{
    std::string text;
    for (const std::string &name : table.key) {
        const auto column = std::ranges::find(table.columns, name) - table.columns.begin();
        text += (text.empty() ? "" : ", ") + name + " " +
                std::visit(KeyText{}, row[static_cast<std::size_t>(column)]);
    }
    return text;
}

} // namespace

void validateRow(const StoredRow &row, const TableLayout &table, const std::vector<PostgresColumn> &columns)
{
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (const std::string problem = problemOf(row[i], columns[i]); !problem.empty())
            throw refused("In the table " + table.name + ", the row with " + keyOf(row, table) + " " +
                          problem + " (column " + columns[i].name +
                          "). Correct that first. Nothing was moved.");
}

} // namespace clockwell::server

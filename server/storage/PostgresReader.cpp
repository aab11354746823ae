#include "server/storage/PostgresReader.h"

#include "server/storage/DatabaseError.h"

#include <variant>

namespace clockwell::server {

namespace {

constexpr int rowsAtOnce = 500; // few enough to hold, and enough that the round trips cost little

/// What SOCI reads each row into.
class RowBuffer
{
public:
    explicit RowBuffer(const std::vector<PostgresColumn> &columns)
    {
        for (const PostgresColumn &column : columns)
            m_cells.push_back({emptyValue(column.kind)});
    }
    void bind(soci::statement &statement)
    {
        for (Cell &cell : m_cells)
            std::visit([&](auto &value) { statement.exchange(soci::into(value, cell.state)); }, cell.value);
    }
    const StoredRow &row()
    {
        m_row.clear();
        for (const Cell &cell : m_cells)
            m_row.push_back(stored(cell));
        return m_row;
    }

private:
    using Value = std::variant<long long, double, std::string>;
    struct Cell
    {
        Value value;
        soci::indicator state = soci::i_null;
    };

    static Value emptyValue(PostgresColumn::Kind kind)
    {
        switch (kind) {
        case PostgresColumn::Kind::Integer:
            return 0LL;
        case PostgresColumn::Kind::Real:
            return 0.0;
        default:
            return std::string{};
        }
    }
    static StoredValue stored(const Cell &cell)
    {
        if (cell.state == soci::i_null)
            return {};
        return std::visit([](const auto &value) { return StoredValue{value}; }, cell.value);
    }

    std::vector<Cell> m_cells;
    StoredRow m_row;
};

struct CatalogueColumn
{
    std::string name;
    std::string type;
    std::optional<long long> longest;

    auto columns() { return std::tie(name, type, longest); }
};

PostgresColumn::Kind kindOfType(const std::string &type)
{
    using Kind = PostgresColumn::Kind;
    if (type == "bigint" || type == "integer")
        return Kind::Integer;
    if (type == "double precision")
        return Kind::Real;
    if (type == "text" || type == "character varying")
        return Kind::Text;
    throw DatabaseError{DatabaseError::Kind::Unusable, "a column is of the type " + type};
}

} // namespace

std::vector<PostgresColumn> postgresColumns(Connection &connection, const std::string &table)
{
    std::vector<PostgresColumn> columns;
    for (const auto &found : connection.all<CatalogueColumn>(
             "SELECT column_name, data_type, character_maximum_length FROM information_schema.columns"
             " WHERE table_schema = current_schema() AND table_name = :table ORDER BY ordinal_position",
             table))
        columns.push_back({found.name, kindOfType(found.type), found.longest});
    return columns;
}

void forEachPostgresRow(Connection &connection, const std::string &query,
                        const std::vector<PostgresColumn> &columns,
                        const std::function<void(const StoredRow &)> &onRow)
{
    // SOCI takes the whole result of a statement at once.
    connection.execute("DECLARE all_rows NO SCROLL CURSOR FOR " + query);
    const std::string fetch = "FETCH " + std::to_string(rowsAtOnce) + " FROM all_rows";
    RowBuffer buffer{columns};
    int fetched = 0;
    do {
        fetched = 0;
        connection.forEach(fetch, buffer, [&] {
            onRow(buffer.row());
            ++fetched;
        });
    } while (fetched == rowsAtOnce);
    connection.execute("CLOSE all_rows");
}

} // namespace clockwell::server

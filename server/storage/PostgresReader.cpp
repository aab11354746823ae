#include "server/storage/PostgresReader.h"

#include "server/storage/PostgresError.h"
#include "server/storage/PostgresResult.h"

#include <boost/endian/conversion.hpp>

#include <bit>
#include <utility>

namespace clockwell::server {

namespace {

/// The binary format of COPY, as PostgreSQL's manual describes it.
class BinaryRow
{
public:
    explicit BinaryRow(std::string_view rest) : m_rest(rest) {}

    /// It stands before the first row; no row begins like it.
    void skipHeader()
    {
        constexpr std::string_view signature{"PGCOPY\n\377\r\n\0", 11};
        if (!m_rest.starts_with(signature))
            return;
        bytes(signature.size() + sizeof(std::int32_t)); // and the flags
        bytes(static_cast<std::size_t>(number<std::int32_t>()));
    }
    /// Whether no row follows; else the number of its columns has been read.
    bool isEnd() { return m_rest.empty() || number<std::int16_t>() < 0; }
    StoredValue value(PostgresColumn::Kind kind)
    {
        const auto size = number<std::int32_t>();
        if (size < 0)
            return {};
        switch (kind) {
        case PostgresColumn::Kind::Integer:
            return size == sizeof(std::int32_t) ? static_cast<long long>(number<std::int32_t>())
                                                : static_cast<long long>(number<std::int64_t>());
        case PostgresColumn::Kind::Real:
            return std::bit_cast<double>(number<std::int64_t>());
        default:
            return bytes(static_cast<std::size_t>(size));
        }
    }

private:
    std::string_view bytes(std::size_t count)
    {
        if (count > m_rest.size())
            throw DatabaseError{DatabaseError::Kind::Unusable, "a row was cut off"};
        const std::string_view taken = m_rest.substr(0, count);
        m_rest.remove_prefix(count);
        return taken;
    }
    template <class Number>
    Number number()
    {
        using Unsigned = std::make_unsigned_t<Number>;
        const std::string_view taken = bytes(sizeof(Number));
        return static_cast<Number>(
            boost::endian::endian_load<Unsigned, sizeof(Number), boost::endian::order::big>(
                reinterpret_cast<const unsigned char *>(taken.data())));
    }

    std::string_view m_rest;
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
    PGconn *handle = handleOf(connection.session());
    const std::string sql = "COPY (" + query + ") TO STDOUT (FORMAT binary)";
    requireStatus(handle, PostgresResult{::PQexec(handle, sql.c_str())}, PGRES_COPY_OUT);
    StoredRow row(columns.size());
    char *received = nullptr;
    while (true) { // libpq gives one row each time
        const int size = ::PQgetCopyData(handle, &received, 0);
        const std::unique_ptr<char, decltype(&::PQfreemem)> buffer{std::exchange(received, nullptr),
                                                                   ::PQfreemem};
        if (size < 0)
            break;
        BinaryRow binary{{buffer.get(), static_cast<std::size_t>(size)}};
        binary.skipHeader();
        if (binary.isEnd())
            continue;
        for (std::size_t i = 0; i < columns.size(); ++i)
            row[i] = binary.value(columns[i].kind);
        onRow(row);
    }
    requireCopied(handle);
}

} // namespace clockwell::server

#pragma once

#include "server/storage/Driver.h"
#include "server/storage/SqlBinding.h"

#include <soci/soci.h>

#include <chrono>
#include <optional>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

namespace clockwell::server {

/// One connection to the database, with its prepared statements. Used by one thread at a time.
///
/// Parameters are written `:name` in the SQL, each once, and are bound in the order of the arguments; values
/// never become part of the SQL text. A row type lists its members, in the order of the columns, in `auto
/// columns()` returning `std::tie(...)`; members are std::string, long long, double or std::optional of
/// these. On PostgreSQL a text never holds a NUL, which it cannot store. All operations throw DatabaseError.
class Connection
{
public:
    enum class Access {
        Full,    ///< makes the file when it is not there
        ReadOnly ///< throws when the file is not there
    };

    /// To a SQLite file. `busySeconds`: how long a statement waits for another process's lock.
    Connection(const std::string &file, int busySeconds, Access access = Access::Full);
    /// `connectText`: as the driver's library reads it. The driver outlives this.
    Connection(const Driver &driver, const std::string &connectText);

    const Driver &driver() const { return m_driver; }

    /// Runs a statement without a result; returns how many rows it changed.
    template <class... Arguments>
    long long execute(const std::string &sql, const Arguments &...arguments)
    {
        std::tuple<> nothing;
        long long changed = 0;
        run(
            sql, nothing, [] {}, changed, arguments...);
        return changed;
    }

    template <class Row, class... Arguments>
    std::vector<Row> all(const std::string &sql, const Arguments &...arguments)
    {
        std::vector<Row> rows;
        Row row;
        long long changed = 0;
        auto into = sqlColumns(row);
        run(
            sql, into,
            [&] {
                storeColumns(into);
                rows.push_back(row);
            },
            changed, arguments...);
        return rows;
    }

    template <class Row, class... Arguments>
    std::optional<Row> first(const std::string &sql, const Arguments &...arguments)
    {
        auto rows = all<Row>(sql, arguments...);
        return rows.empty() ? std::nullopt : std::optional<Row>{std::move(rows.front())};
    }

    /// The one column of a query.
    template <class Value, class... Arguments>
    std::vector<Value> column(const std::string &sql, const Arguments &...arguments)
    {
        std::vector<Value> values;
        for (auto &row : all<SingleColumn<Value>>(sql, arguments...))
            values.push_back(std::move(row.value));
        return values;
    }

    /// The one column of the one row of a query.
    template <class Value, class... Arguments>
    Value value(const std::string &sql, const Arguments &...arguments)
    {
        return std::move(first<SingleColumn<Value>>(sql, arguments...).value().value);
    }

    /// For rows whose columns are known only while the program runs: `row.bind(soci::statement &)` says what
    /// they are read into, and `onRow` is called after each.
    template <class Row, class OnRow>
    void forEach(const std::string &sql, Row &row, OnRow onRow)
    {
        auto into = std::tie(row);
        long long changed = 0;
        run(sql, into, onRow, changed);
    }

    /// For what SOCI does not offer.
    soci::session &session() { return m_session; }

    /// Ends the transaction. Throws DatabaseError: of kind Unconfirmed when the connection broke meanwhile,
    /// or had to be given up because there was no answer until `until`; otherwise nothing of it was recorded.
    void commit(std::chrono::steady_clock::time_point until = std::chrono::steady_clock::time_point::max());
    void rollBack() noexcept;
    /// Whether a transaction can begin; if not, this connection is of no more use. Asks nobody.
    bool isReady();

private:
    template <class Into, class OnRow, class... Arguments>
    void run(const std::string &sql, Into &into, OnRow onRow, long long &changed,
             const Arguments &...arguments)
    {
        try {
            soci::statement &statement = prepared(sql);
            auto parameters = std::make_tuple(SqlParameter<Arguments>{arguments}...);
            if (!m_driver.takesNul())
                std::apply([](const auto &...parameter) { (parameter.requireNoNul(), ...); }, parameters);
            std::apply([&](auto &...column) { (column.bind(statement), ...); }, into);
            std::apply([&](auto &...parameter) { (parameter.bind(statement), ...); }, parameters);
            statement.define_and_bind();
            // Reading to the end also lets SQLite drop the statement's hold on its snapshot.
            for (bool more = statement.execute(true); more; more = statement.fetch())
                onRow();
            changed = statement.get_affected_rows();
            statement.bind_clean_up();
        } catch (...) {
            giveUp(sql);
            rethrow();
        }
    }

    using Statements = std::unordered_map<std::string, soci::statement>;

    soci::statement &prepared(const std::string &sql);
    void giveUp(const std::string &sql);
    [[noreturn]] void rethrow();

    const Driver &m_driver;
    bool m_isLost = false;
    soci::session m_session;
    Statements m_statements;
    std::vector<Statements::node_type> m_failed; // until their transaction is over
};

} // namespace clockwell::server

#pragma once

#include "server/storage/Database.h"

#include <concepts>
#include <stdexcept>
#include <string>

namespace clockwell::server {

/// A database that is there already, for administration, also beside a running server.
class AdminDatabase
{
public:
    /// Throws std::runtime_error when the file or the URL's database is not there or is not one of this
    /// program's: a mistyped name must not make a new, empty database.
    explicit AdminDatabase(const std::string &database);

    /// One transaction. An error of the database says that nothing was changed.
    template <std::invocable<Connection &> Work>
    auto write(Work work)
    {
        try {
            return m_database.write(std::move(work));
        } catch (const DatabaseError &error) {
            if (error.kind() == DatabaseError::Kind::Unconfirmed)
                throw std::runtime_error{std::string{"Whether this was changed is not known; please look: "} +
                                         error.what() + "."};
            throw std::runtime_error{std::string{"Nothing was changed: "} + error.what() + "."};
        }
    }

    Database &database() { return m_database; }

private:
    Database m_database;
};

/// Returns its argument, the name of a file or a URL. Throws std::runtime_error when it is not there, is not
/// a database of this program, or is a file that can be read by others.
const std::string &requireDatabase(const std::string &database);

/// Throws AdminError Refused when `file` is the database or one of the files that SQLite keeps beside it:
/// what commands write must never hit these.
void requireNoPartOf(const std::string &database, const std::string &file);

} // namespace clockwell::server

#pragma once

#include <stdexcept>
#include <string>

namespace clockwell::server {

/// The database did not do what it was asked to; but for the kind Unconfirmed, nothing of the transaction was
/// recorded.
class DatabaseError : public std::runtime_error
{
public:
    enum class Kind {
        Busy,        ///< another process or request held it for too long; trying again may help
        Conflict,    ///< like Busy, but trying again at once may help: other transactions came in between
        Locked,      ///< like Busy, after one of several tries to get a lock
        Lost,        ///< the connection broke before the transaction's end; another one may work
        Unreachable, ///< no connection can be made
        Unconfirmed, ///< the connection broke while the transaction was ended: it may be recorded or not
        Full,        ///< no room on the disk, or the configured limit of the file is reached
        ReadOnly,    ///< the file or its folder, or the database, cannot be written
        Damaged,     ///< not a database, or a damaged one
        Constraint,  ///< a row breaks a rule of the schema, or a value does not fit
        Newer,       ///< written by a newer version of this program
        Exposed,     ///< others than the owner may read or write the file
        Unusable     ///< anything else: the file cannot be opened, an input/output error
    };

    DatabaseError(Kind kind, const std::string &text, std::string sqlstate = {})
        : std::runtime_error(text), m_kind(kind), m_sqlstate(std::move(sqlstate))
    {}
    Kind kind() const { return m_kind; }
    const std::string &sqlstate() const { return m_sqlstate; } ///< of PostgreSQL; empty when it gave none

private:
    Kind m_kind;
    std::string m_sqlstate;
};

} // namespace clockwell::server

#pragma once

#include <stdexcept>
#include <string>

namespace clockwell::server {

/// The database did not do what it was asked to; nothing of the transaction was recorded.
class DatabaseError : public std::runtime_error
{
public:
    enum class Kind {
        Busy,       ///< another process or request held it for too long; trying again may help
        Full,       ///< no room on the disk, or the configured limit of the file is reached
        ReadOnly,   ///< the file or its folder cannot be written
        Damaged,    ///< not a database, or a damaged one
        Constraint, ///< a row breaks a rule of the schema
        Newer,      ///< written by a newer version of this program
        Exposed,    ///< others than the owner may read or write the file
        Unusable    ///< anything else: the file cannot be opened, an input/output error
    };

    DatabaseError(Kind kind, const std::string &text) : std::runtime_error(text), m_kind(kind) {}
    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

} // namespace clockwell::server

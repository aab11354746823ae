#pragma once

#include <stdexcept>
#include <string>

namespace clockwell::server {

/// An administration command that was refused; nothing was changed. The text is for the administrator.
class AdminError : public std::runtime_error
{
public:
    enum class Kind {
        Refused, ///< it cannot be done as things are
        NotFound ///< there is nothing of that name
    };

    AdminError(Kind kind, const std::string &text) : std::runtime_error(text), m_kind(kind) {}
    Kind kind() const { return m_kind; }

private:
    Kind m_kind;
};

// To be thrown.

inline AdminError refused(const std::string &text)
{
    return {AdminError::Kind::Refused, text};
}

inline AdminError notFound(const std::string &text)
{
    return {AdminError::Kind::NotFound, text};
}

} // namespace clockwell::server

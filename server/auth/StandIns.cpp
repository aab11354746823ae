#include "server/auth/StandIns.h"

#include "server/auth/Tokens.h"

namespace clockwell::server {

StandIns::StandIns(std::string nobodysHash) : m_nobodysHash(std::move(nobodysHash)), m_key(newToken()) {}

std::string StandIns::hashFor(Connection &connection, const std::string &account) const
{
    // Identifiers of accounts are random hexadecimal digits, as these are.
    for (const std::string &from : {tokenHash(m_key + account), std::string{}}) {
        const auto hash = connection.first<SingleColumn<std::string>>(
            "SELECT password_hash FROM employees WHERE id >= :from ORDER BY id LIMIT 1", from);
        if (hash)
            return hash->value;
    }
    return m_nobodysHash;
}

} // namespace clockwell::server

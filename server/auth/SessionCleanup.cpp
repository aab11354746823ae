#include "server/auth/SessionCleanup.h"

#include <string>

namespace clockwell::server {

namespace {

constexpr int tokensAtOnce = 10; // of either kind, that have expired or belong to one session
constexpr int sessionsAtOnce = 2;

/// `condition` has the parameter :value.
template <class Value>
void removeSomeTokens(Connection &connection, const std::string &condition, const Value &value)
{
    for (const char *table : {"access_tokens", "refresh_tokens"}) {
        const std::string from = std::string{" FROM "} + table;
        connection.execute("DELETE" + from + " WHERE hash IN (SELECT hash" + from + " WHERE " + condition +
                               " LIMIT :count)",
                           value, tokensAtOnce);
    }
}

/// The session goes with its last token.
void removeSession(Connection &connection, const std::string &id)
{
    removeSomeTokens(connection, "family_id = :value", id);
    connection.execute(
        "DELETE FROM token_families WHERE id = :id"
        " AND NOT EXISTS (SELECT 1 FROM access_tokens a WHERE a.family_id = token_families.id)"
        " AND NOT EXISTS (SELECT 1 FROM refresh_tokens r WHERE r.family_id = token_families.id)",
        id);
}

} // namespace

bool hasEndedSessions(Connection &connection, Instant now)
{
    for (const char *ended : {"SELECT expires_at FROM access_tokens WHERE expires_at <= :now LIMIT 1",
                              "SELECT expires_at FROM refresh_tokens WHERE expires_at <= :now LIMIT 1",
                              "SELECT ends_at FROM token_families WHERE ends_at <= :now LIMIT 1"})
        if (connection.first<SingleColumn<long long>>(ended, toMillis(now)))
            return true;
    return false;
}

void removeSomeEndedSessions(Connection &connection, Instant now)
{
    removeSomeTokens(connection, "expires_at <= :value ORDER BY expires_at", toMillis(now));
    const auto ended = connection.all<SingleColumn<std::string>>(
        "SELECT id FROM token_families WHERE ends_at <= :now ORDER BY ends_at LIMIT :count", toMillis(now),
        sessionsAtOnce);
    for (const auto &session : ended)
        removeSession(connection, session.value);
}

} // namespace clockwell::server

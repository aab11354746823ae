#include "server/auth/Sessions.h"

#include "server/auth/SessionCleanup.h"
#include "server/auth/Tokens.h"
#include "server/auth/TooManyAttempts.h"
#include "server/storage/RowType.h"

#include <spdlog/spdlog.h>

#include <utility>

namespace clockwell::server {

namespace {

ApiError sessionEnded()
{
    return {401, "SESSION_EXPIRED", "Your session has ended. Please sign in again."};
}

ApiError tooManyRequests(std::chrono::milliseconds wait)
{
    return tooMany("TOO_MANY_REQUESTS", "Too many requests.", std::chrono::ceil<std::chrono::seconds>(wait));
}

} // namespace

struct Sessions::PresentedToken
{
    std::string familyId;
    long long generation = 0;
    long long expiresAt = 0;
    std::string employeeId;
    long long newestUsed = 0; // generation of the family's newest used token
    std::optional<std::string> usedHash;
    std::optional<long long> usedAt;
    std::optional<long long> revokedAt;

    auto columns()
    {
        return std::tie(familyId, generation, expiresAt, employeeId, newestUsed, usedHash, usedAt, revokedAt);
    }
};

std::optional<TokenPair> Sessions::start(const Employee &checked, const std::string &deviceId)
{
    bool tidy = hasLeftovers();
    return m_database.write(
        [&](Connection &connection) { return start(connection, checked, deviceId, tidy); });
}

bool Sessions::hasLeftovers() const
{
    return m_database.read([&](Connection &connection) { return hasEndedSessions(connection, m_clock()); });
}

std::optional<TokenPair> Sessions::start(Connection &connection, const Employee &checked,
                                         const std::string &deviceId, bool &tidy) const
{
    const auto employee = findEmployeeById(connection, checked.id);
    if (!employee || employee->passwordHash != checked.passwordHash)
        return std::nullopt;
    const Instant now = m_clock();
    requireUsable(connection, *employee, now);
    if (std::exchange(tidy, false))
        removeSomeEndedSessions(connection, now);
    const std::string familyId = newId();
    connection.execute(
        "INSERT INTO token_families (id, employee_id, device_id, created_at, generation, ends_at)"
        " VALUES (:id, :employee, :device, :now, 0, :end)",
        familyId, checked.id, deviceId, toMillis(now), endOf(now));
    return issue(connection, familyId, 1, now);
}

TokenPair Sessions::refresh(const std::string &refreshToken)
{
    const std::string hash = tokenHash(refreshToken);
    const auto began = Wait::Clock::now();
    Wait wait = renewalWait(began);
    // Reading first: whoever guesses tokens must not hold up those who write.
    bool tidy = false;
    const PresentedToken found = m_database.read(wait, [&](Connection &connection) {
        PresentedToken presented = requirePresented(connection, hash);
        tidy = hasEndedSessions(connection, m_clock());
        return presented;
    });
    wait.first = m_limit.take(found.employeeId, began) == std::chrono::milliseconds{0};
    const auto work = [&](Connection &connection) {
        const PresentedToken token = requirePresented(connection, hash);
        const Instant now = m_clock();
        requireUsable(connection, findEmployeeById(connection, token.employeeId).value(), now);
        if (std::exchange(tidy, false)) // not when this runs again, perhaps because of it
            removeSomeEndedSessions(connection, now);
        return exchange(connection, token, hash);
    };
    try {
        const auto pair = m_database.write(wait, work);
        m_patience.succeeded();
        if (!pair) {
            spdlog::warn("event=sessionRevoked reason=replay employee={} session={}", found.employeeId,
                         found.familyId);
            throw sessionEnded();
        }
        return *pair;
    } catch (const DatabaseError &error) {
        if (error.kind() == DatabaseError::Kind::Busy)
            m_patience.gaveUp(began, Wait::Clock::now());
        throw;
    }
}

/// What the database knows of a token that may still be good.
Sessions::PresentedToken Sessions::requirePresented(Connection &connection, const std::string &hash) const
{
    const auto token = connection.first<PresentedToken>(
        "SELECT r.family_id, r.generation, r.expires_at, f.employee_id, f.generation, f.used_hash, f.used_at,"
        " f.revoked_at FROM refresh_tokens r JOIN token_families f ON f.id = r.family_id WHERE r.hash = "
        ":hash",
        hash);
    if (!token || token->revokedAt || token->expiresAt <= toMillis(m_clock()))
        throw sessionEnded();
    return *token;
}

/// Nothing when the token is replayed: then the family was ended, which has to be committed.
std::optional<TokenPair> Sessions::exchange(Connection &connection, const PresentedToken &token,
                                            const std::string &hash) const
{
    const Instant now = m_clock();
    const auto millis = toMillis(now);
    const bool inGrace = std::chrono::abs(now - fromMillis(token.usedAt.value_or(0))) <= m_lifetimes.grace;
    if (token.generation == token.newestUsed + 1)
        connection.execute("UPDATE token_families SET generation = :generation, used_hash = :hash,"
                           " used_at = :now, ends_at = :end WHERE id = :id",
                           token.generation, hash, millis, endOf(now), token.familyId);
    else if (token.usedHash == hash && inGrace)
        connection.execute("UPDATE token_families SET ends_at = :end WHERE id = :id", endOf(now),
                           token.familyId);
    else {
        connection.execute("UPDATE token_families SET revoked_at = :now, ends_at = :end WHERE id = :id",
                           millis, millis, token.familyId);
        return std::nullopt;
    }
    return issue(connection, token.familyId, token.generation + 1, now);
}

SignedIn Sessions::signedIn(const std::string &accessToken)
{
    auto caller =
        m_database.read([&](Connection &connection) { return requireSignedIn(connection, accessToken); });
    const auto wait = m_limit.take(caller.employee.id, TokenBuckets::Clock::now());
    if (wait > std::chrono::milliseconds{0})
        throw tooManyRequests(wait);
    return caller;
}

SignedIn Sessions::signedInFirst(const std::string &accessToken)
{
    return m_database.read(
        Wait{Wait::Clock::now() + m_lifetimes.patience, true},
        [&](Connection &connection) { return requireSignedIn(connection, accessToken); });
}

SignedIn Sessions::requireSignedIn(Connection &connection, const std::string &accessToken) const
{
    static const std::string sql = "SELECT f.id, " + columnsOf<Employee>("e") +
                                   " FROM access_tokens a JOIN token_families f ON f.id = a.family_id"
                                   " JOIN employees e ON e.id = f.employee_id"
                                   " WHERE a.hash = :hash AND a.expires_at > :now AND f.revoked_at IS NULL";
    const Instant now = m_clock();
    auto caller = connection.first<SignedIn>(sql, tokenHash(accessToken), toMillis(now));
    if (!caller)
        throw ApiError{401, "INVALID_TOKEN", "Please sign in again."};
    try {
        requireUsable(connection, caller->employee, now);
    } catch (const ApiError &refusal) {
        // 401 and not 403: the app then asks for a refresh, is refused that too, and goes back to its sign-in
        // screen.
        throw ApiError{401, refusal.error(), refusal.messages()};
    }
    return std::move(*caller);
}

void Sessions::endAll(Connection &connection, const std::string &employeeId,
                      const std::string &exceptFamily) const
{
    const auto now = toMillis(m_clock());
    connection.execute("UPDATE token_families SET revoked_at = :now, ends_at = :end"
                       " WHERE employee_id = :employee AND id <> :kept AND revoked_at IS NULL",
                       now, now, employeeId, exceptFamily);
}

void Sessions::requireLive(Connection &connection, const std::string &familyId)
{
    if (connection.value<long long>(
            "SELECT COUNT(*) FROM token_families WHERE id = :id AND revoked_at IS NULL", familyId) == 0)
        throw ApiError{401, "INVALID_TOKEN", "Please sign in again."};
}

TokenPair Sessions::issue(Connection &connection, const std::string &familyId, long long generation,
                          Instant now) const
{
    TokenPair pair{newToken(), newToken()};
    connection.execute(
        "INSERT INTO access_tokens (hash, family_id, expires_at) VALUES (:hash, :family, :expires)",
        tokenHash(pair.accessToken), familyId, toMillis(now + m_lifetimes.access));
    connection.execute("INSERT INTO refresh_tokens (hash, family_id, generation, expires_at)"
                       " VALUES (:hash, :family, :generation, :expires)",
                       tokenHash(pair.refreshToken), familyId, generation, endOf(now));
    return pair;
}

} // namespace clockwell::server

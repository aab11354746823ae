#include "server/auth/Sessions.h"

#include "server/auth/Tokens.h"
#include "server/http/ApiError.h"

#include <spdlog/spdlog.h>

#include <cstdlib>
#include <variant>

namespace clockwell::server {

namespace {

struct PresentedToken
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

const char *const presentedSql =
    "SELECT r.family_id, r.generation, r.expires_at, f.employee_id, f.generation, f.used_hash, f.used_at,"
    " f.revoked_at FROM refresh_tokens r JOIN token_families f ON f.id = r.family_id WHERE r.hash = :hash";

ApiError sessionEnded()
{
    return {401, "SESSION_EXPIRED", "Your session has ended. Please sign in again."};
}

} // namespace

std::optional<TokenPair> Sessions::start(const Employee &checked, const std::string &deviceId)
{
    return m_database.write([&](Connection &connection) -> std::optional<TokenPair> {
        const auto now = findEmployeeById(connection, checked.id);
        if (!now || now->passwordHash != checked.passwordHash)
            return std::nullopt;
        requireUsable(*now);
        forgetExpired(connection);
        const std::string familyId = newId();
        connection.execute("INSERT INTO token_families (id, employee_id, device_id, created_at, generation)"
                           " VALUES (:id, :employee, :device, :now, 0)",
                           familyId, checked.id, deviceId, toMillis(m_clock()));
        return issue(connection, familyId, 1);
    });
}

TokenPair Sessions::refresh(const std::string &refreshToken)
{
    const std::string hash = tokenHash(refreshToken);
    using Outcome =
        std::variant<TokenPair, ApiError>; // a refusal is returned, for a revocation has to be committed
    auto outcome = m_database.write([&](Connection &connection) -> Outcome {
        forgetExpired(connection);
        const auto now = toMillis(m_clock());
        const auto token = connection.first<PresentedToken>(presentedSql, hash);
        if (!token || token->revokedAt || token->expiresAt <= now)
            return sessionEnded();
        requireUsable(findEmployeeById(connection, token->employeeId).value());
        if (token->generation == token->newestUsed + 1) {
            connection.execute("UPDATE token_families SET generation = :generation, used_hash = :hash,"
                               " used_at = :now WHERE id = :id",
                               token->generation, hash, now, token->familyId);
            return issue(connection, token->familyId, token->generation + 1);
        }
        const auto grace = std::chrono::duration_cast<std::chrono::milliseconds>(m_lifetimes.grace).count();
        if (token->usedHash == hash && std::abs(now - token->usedAt.value_or(0)) <= grace)
            return issue(connection, token->familyId, token->generation + 1);
        connection.execute("UPDATE token_families SET revoked_at = :now WHERE id = :id", now,
                           token->familyId);
        spdlog::warn("event=sessionRevoked reason=replay employee={} session={}", token->employeeId,
                     token->familyId);
        return sessionEnded();
    });
    if (auto *refusal = std::get_if<ApiError>(&outcome))
        throw *refusal;
    return std::get<TokenPair>(std::move(outcome));
}

SignedIn Sessions::signedIn(const std::string &accessToken)
{
    static const std::string sql = "SELECT f.id, " + employeeColumns() +
                                   " FROM access_tokens a JOIN token_families f ON f.id = a.family_id"
                                   " JOIN employees e ON e.id = f.employee_id"
                                   " WHERE a.hash = :hash AND a.expires_at > :now AND f.revoked_at IS NULL";
    auto caller = m_database.read([&](Connection &connection) {
        return connection.first<SignedIn>(sql, tokenHash(accessToken), toMillis(m_clock()));
    });
    if (!caller)
        throw ApiError{401, "INVALID_TOKEN", "Please sign in again."};
    try {
        requireUsable(caller->employee);
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
    connection.execute("UPDATE token_families SET revoked_at = :now"
                       " WHERE employee_id = :employee AND id <> :kept AND revoked_at IS NULL",
                       toMillis(m_clock()), employeeId, exceptFamily);
}

void Sessions::requireLive(Connection &connection, const std::string &familyId)
{
    if (connection.value<long long>(
            "SELECT COUNT(*) FROM token_families WHERE id = :id AND revoked_at IS NULL", familyId) == 0)
        throw ApiError{401, "INVALID_TOKEN", "Please sign in again."};
}

TokenPair Sessions::issue(Connection &connection, const std::string &familyId, long long generation)
{
    const Instant now = m_clock();
    TokenPair pair{newToken(), newToken()};
    connection.execute(
        "INSERT INTO access_tokens (hash, family_id, expires_at) VALUES (:hash, :family, :expires)",
        tokenHash(pair.accessToken), familyId, toMillis(now + m_lifetimes.access));
    connection.execute("INSERT INTO refresh_tokens (hash, family_id, generation, expires_at)"
                       " VALUES (:hash, :family, :generation, :expires)",
                       tokenHash(pair.refreshToken), familyId, generation,
                       toMillis(now + m_lifetimes.refresh));
    return pair;
}

void Sessions::forgetExpired(Connection &connection)
{
    const auto now = toMillis(m_clock());
    connection.execute("DELETE FROM access_tokens WHERE expires_at <= :now", now);
    connection.execute("DELETE FROM refresh_tokens WHERE expires_at <= :now", now);
}

} // namespace clockwell::server

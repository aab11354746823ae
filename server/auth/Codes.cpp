#include "server/auth/Codes.h"

#include "server/auth/Sodium.h"
#include "server/http/NumberText.h"
#include "server/http/PeerAddress.h"

#include <sodium.h>

#include <algorithm>

namespace clockwell::server {

namespace {

constexpr std::size_t codeDigits = 6;
constexpr std::uint32_t codeCount = 1'000'000;

const char *nameOf(CodePurpose purpose)
{
    return purpose == CodePurpose::Verify ? "VERIFY" : "RESET";
}

CodePurpose purposeOf(const std::string &name)
{
    return name == "VERIFY" ? CodePurpose::Verify : CodePurpose::Reset;
}

/// `wait`: until there may be a new code.
ApiError deadCode(std::chrono::seconds wait)
{
    const std::string text = "Too many wrong codes. This code no longer works; you can ask for a new one ";
    if (wait == std::chrono::seconds{0})
        return {429, "TOO_MANY_ATTEMPTS", text + "at once."};
    return ApiError{429, "TOO_MANY_ATTEMPTS", text + "in " + waitText(wait) + "."}.retryAfter(wait);
}

} // namespace

struct Codes::Stored
{
    std::string purpose;
    std::string hash;
    long long expiresAt = 0;
    long long tries = 0;
    auto columns() { return std::tie(purpose, hash, expiresAt, tries); }
};

Codes::Codes(Database &database, Passwords &passwords, const Clock &clock, CodeLimits limits)
    : m_database(database),
      m_passwords(passwords),
      m_clock(clock),
      m_limits(limits),
      m_perAddress(limits.perAddress, clock),
      m_perNetwork(limits.perNetwork, clock),
      m_wrongCodes(limits.wrongCodes, clock)
{}

void Codes::countRequest(const std::string &emailKey, const std::string &remoteAddress)
{
    m_perNetwork.take(networkOf(remoteAddress), "Too many codes were asked for.");
    m_perAddress.take(emailKey, "Too many codes were asked for.");
}

Codes::Fresh Codes::make()
{
    requireSodium();
    std::string code = std::to_string(randombytes_uniform(codeCount));
    code.insert(0, codeDigits - code.size(), '0');
    std::string hash = m_passwords.hash(code);
    return {std::move(code), std::move(hash)};
}

void Codes::store(Connection &connection, const std::string &emailKey, CodePurpose purpose,
                  const Fresh &fresh) const
{
    removeOld(connection);
    revoke(connection, emailKey);
    connection.execute("INSERT INTO codes (email_key, purpose, hash, expires_at, tries)"
                       " VALUES (:key, :purpose, :hash, :expires, 0)",
                       emailKey, nameOf(purpose), fresh.hash, toMillis(m_clock() + m_limits.lifetime));
}

std::optional<CodePurpose> Codes::lastPurpose(Connection &connection, const std::string &emailKey) const
{
    const auto purpose = connection.first<SingleColumn<std::string>>(
        "SELECT purpose FROM codes WHERE email_key = :key AND expires_at > :end", emailKey,
        toMillis(m_clock() - m_limits.memory));
    return purpose ? std::optional{purposeOf(purpose->value)} : std::nullopt;
}

void Codes::revoke(Connection &connection, const std::string &emailKey)
{
    connection.execute("DELETE FROM codes WHERE email_key = :key", emailKey);
}

void Codes::removeOld(Connection &connection) const
{
    connection.execute("DELETE FROM codes WHERE expires_at <= :end", toMillis(m_clock() - m_limits.memory));
}

/// In a transaction of its own: a try counts, whatever becomes of its request.
std::optional<Codes::Stored> Codes::countTry(const std::string &emailKey)
{
    return m_database.write([&](Connection &connection) {
        removeOld(connection);
        auto stored = connection.first<Stored>("SELECT purpose, hash, expires_at, tries FROM codes"
                                               " WHERE email_key = :key AND expires_at > :now",
                                               emailKey, toMillis(m_clock()));
        connection.execute("UPDATE codes SET tries = tries + 1 WHERE email_key = :key AND tries < :most",
                           emailKey, m_limits.tries);
        return stored;
    });
}

Codes::Match Codes::judge(const std::string &emailKey, std::string_view code)
{
    const std::string digits = withAsciiDigits(code); // keyboards of many languages have their own
    const auto stored = countTry(emailKey);
    if (stored && stored->tries >= m_limits.tries)
        throw deadCode(m_perAddress.waitFor(emailKey));
    if (stored)
        m_wrongCodes.take(emailKey, "Too many wrong codes.");
    const bool matches =
        stored ? m_passwords.matches(stored->hash, digits) : m_passwords.matchesNobody(digits);
    if (!matches)
        throw invalidCode();
    return {purposeOf(stored->purpose), stored->hash};
}

void Codes::consume(Connection &connection, const std::string &emailKey, const Match &match) const
{
    if (connection.execute("DELETE FROM codes WHERE email_key = :key AND hash = :hash AND expires_at > :now",
                           emailKey, match.hash, toMillis(m_clock())) != 1)
        throw invalidCode();
}

ApiError invalidCode()
{
    return {400, "INVALID_CODE", "The code is wrong or has expired."};
}

} // namespace clockwell::server

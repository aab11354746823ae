#include "server/auth/Codes.h"

#include "server/auth/CodeHash.h"
#include "server/auth/Sodium.h"
#include "server/auth/Tokens.h"
#include "server/http/NumberText.h"
#include "server/http/PeerAddress.h"

#include <sodium.h>

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace clockwell::server {

namespace {

constexpr std::size_t codeDigits = 6;
constexpr std::uint32_t codeCount = 1'000'000;
constexpr long long fewExpiredCodes = 20;

const char *nameOf(CodePurpose purpose)
{
    return purpose == CodePurpose::Verify ? "VERIFY" : "RESET";
}

CodePurpose purposeOf(const std::string &name)
{
    return name == "VERIFY" ? CodePurpose::Verify : CodePurpose::Reset;
}

std::string newDigits()
{
    requireSodium();
    std::string digits = std::to_string(randombytes_uniform(codeCount));
    digits.insert(0, codeDigits - digits.size(), '0');
    return digits;
}

/// Without the cost of the first code's: whoever has it still lacks the first.
std::string secondHash(const std::string &digits, const std::string &salt)
{
    return tokenHash(salt + digits);
}

/// The same after a first code that was right, so that the two have to be guessed together.
ApiError bothCodesNeeded()
{
    return {
        400, "SECOND_CODE_NEEDED",
        "Many wrong codes were entered, so both codes of the e-mail are needed. Please enter the second one"
        " if you have just entered the first, and else the first."};
}

} // namespace

struct Codes::UnderWay
{
    std::string id;
    std::string purpose;
    std::optional<std::string> signUpId;
    std::string salt;
    std::string hash;
    std::string secondHash;
    auto columns() { return std::tie(id, purpose, signUpId, salt, hash, secondHash); }
};

struct Codes::Try
{
    std::vector<UnderWay> codes;
    bool single = false; ///< the first code alone is enough
};

/// Positions in a list of codes.
struct Codes::Hits
{
    std::vector<std::size_t> first;
    std::vector<std::size_t> second;
};

Codes::Codes(Database &database, PasswordCost cost, const Clock &clock, const CodeLimits &limits)
    : m_database(database),
      m_cost(cost),
      m_clock(clock),
      m_lifetime(limits.lifetime),
      m_wrongCodes(limits.wrongCodes),
      m_wrongPerNetwork(limits.wrongPerNetwork, clock),
      m_triesPerNetwork(limits.triesPerNetwork, clock),
      m_lastEntered(limits.triesPerNetwork.entries)
{}

Codes::Fresh Codes::make(const std::string &emailKey)
{
    const auto shared = m_database.read([&](Connection &connection) {
        return connection.first<SingleColumn<std::string>>(
            "SELECT salt FROM codes WHERE email_key = :key AND expires_at > :now", emailKey,
            toMillis(m_clock()));
    });
    Fresh fresh{newDigits(), newDigits(), shared ? shared->value : newToken(), {}};
    fresh.hash = codeHash(fresh.first, fresh.salt, m_cost);
    return fresh;
}

void Codes::store(Connection &connection, const Asked &asked, const Fresh &fresh) const
{
    const Instant now = m_clock();
    connection.execute("DELETE FROM codes WHERE id IN"
                       " (SELECT id FROM codes WHERE expires_at <= :now ORDER BY expires_at LIMIT :few)",
                       toMillis(now), fewExpiredCodes);
    m_wrongCodes.removeSome(connection, now);
    connection.execute(
        "INSERT INTO codes (id, email_key, network, purpose, sign_up_id, salt, hash,"
        " second_hash, expires_at) VALUES (:id, :key, :network, :purpose, :signUp, :salt, :hash,"
        " :second, :expires)",
        newId(), asked.emailKey, asked.network, nameOf(asked.purpose), asked.signUpId, fresh.salt, fresh.hash,
        secondHash(fresh.second, fresh.salt), toMillis(now + m_lifetime));
}

void Codes::endNewest(Connection &connection, const std::string &emailKey, const std::string &network) const
{
    connection.execute("DELETE FROM codes WHERE id IN (SELECT id FROM codes WHERE email_key = :key"
                       " AND network = :network AND expires_at > :now ORDER BY expires_at DESC LIMIT 1)",
                       emailKey, network, toMillis(m_clock()));
}

bool Codes::touch(Connection &connection, const std::string &emailKey, const std::string &network) const
{
    return connection.execute("UPDATE codes SET network = network WHERE email_key = :key"
                              " AND network = :network AND expires_at > :now",
                              emailKey, network, toMillis(m_clock())) > 0;
}

void Codes::revoke(Connection &connection, const std::string &emailKey)
{
    connection.execute("DELETE FROM codes WHERE email_key = :key", emailKey);
}

/// In a transaction of its own: a try counts, whatever becomes of its request.
Codes::Try Codes::begin(const std::string &emailKey, bool networkMayTrySingle)
{
    return m_database.write([&](Connection &connection) {
        const Instant now = m_clock();
        Try attempt;
        attempt.codes = connection.all<UnderWay>(
            "SELECT id, purpose, sign_up_id, salt, hash, second_hash FROM codes WHERE email_key = :key"
            " AND expires_at > :now",
            emailKey, toMillis(now));
        // Without a code there is nothing to guess, and nobody can fill the table with addresses.
        const auto hits = static_cast<double>(attempt.codes.size());
        attempt.single = networkMayTrySingle &&
                         (attempt.codes.empty() || m_wrongCodes.spend(connection, emailKey, hits, now));
        return attempt;
    });
}

Codes::Hits Codes::compare(const std::vector<UnderWay> &codes, std::string_view code) const
{
    const std::string digits = withAsciiDigits(code); // keyboards of many languages have their own
    std::map<std::string, std::string> hashes; // by salt: more than one only if codes were made at once
    for (const UnderWay &underWay : codes)
        hashes.try_emplace(underWay.salt);
    if (hashes.empty())
        hashes.try_emplace("nobody's");
    for (auto &[salt, hash] : hashes)
        hash = codeHash(digits, salt, m_cost);
    Hits hits;
    for (std::size_t i = 0; i < codes.size(); ++i) {
        if (hashes.at(codes[i].salt) == codes[i].hash)
            hits.first.push_back(i);
        if (secondHash(digits, codes[i].salt) == codes[i].secondHash)
            hits.second.push_back(i);
    }
    return hits;
}

/// The code whose first part was this network's last entry for the address and whose second part is this one.
std::optional<std::size_t> Codes::secondStep(const std::string &key, const std::vector<UnderWay> &codes,
                                             const Hits &hits)
{
    std::vector<std::string> last;
    last.reserve(hits.first.size());
    for (const std::size_t i : hits.first)
        last.push_back(codes[i].id);
    {
        const std::lock_guard lock{m_lock};
        std::swap(last, m_lastEntered.write(key));
    }
    const auto both = std::ranges::find_if(
        hits.second, [&](std::size_t i) { return std::ranges::find(last, codes[i].id) != last.end(); });
    return both == hits.second.end() ? std::nullopt : std::optional{*both};
}

Codes::Match Codes::judge(const std::string &emailKey, std::string_view code,
                          const std::string &remoteAddress)
{
    const std::string network = networkOf(remoteAddress);
    m_triesPerNetwork.take(network, "Too many wrong codes came from this network.");
    const Try attempt = begin(emailKey, !m_wrongPerNetwork.isSpent(network));
    const auto mayHit = static_cast<double>(attempt.codes.size());
    if (attempt.single)
        m_wrongPerNetwork.spend(network, std::max(1.0, mayHit));
    const Hits hits = compare(attempt.codes, code);
    std::optional<std::size_t> match;
    if (!attempt.single)
        match = secondStep(network + ' ' + emailKey, attempt.codes, hits);
    else if (!hits.first.empty())
        match = hits.first.front();
    if (!match)
        throw attempt.single ? invalidCode() : bothCodesNeeded();
    m_triesPerNetwork.giveBack(network);
    if (attempt.single)
        m_wrongPerNetwork.giveBack(network, std::max(1.0, mayHit));
    const UnderWay &right = attempt.codes[*match];
    return {right.id, purposeOf(right.purpose), right.signUpId, attempt.single ? mayHit : 0};
}

void Codes::consume(Connection &connection, const std::string &emailKey, const Match &match) const
{
    const Instant now = m_clock();
    if (connection.execute("DELETE FROM codes WHERE id = :id AND expires_at > :now", match.id,
                           toMillis(now)) != 1)
        throw invalidCode();
    if (match.spent > 0)
        m_wrongCodes.giveBack(connection, emailKey, match.spent, now);
}

ApiError invalidCode()
{
    return {400, "INVALID_CODE", "The code is wrong or has expired."};
}

} // namespace clockwell::server

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

namespace clockwell::server {

namespace {

constexpr std::size_t codeDigits = 6;
constexpr std::uint32_t codeCount = 1'000'000;
constexpr long long fewExpiredCodes = 20;
constexpr long long fewEntries = 4;
constexpr const char *triesComplaint = "Too many wrong codes came from this network.";

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
    bool single = false;                     ///< the first code alone is enough
    std::string spentTry;                    ///< of the network's allowance
    std::optional<std::string> spentGuesses; ///< likewise, when the first code alone is enough

    double mayHit() const { return static_cast<double>(codes.size()); }
    /// Of the network's allowance: also where there is nothing to guess, for that must not show.
    double guesses() const { return std::max(1.0, mayHit()); }
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
      m_wrongPerNetwork("CODE_GUESS", limits.wrongPerNetwork),
      m_triesPerNetwork("CODE_TRY", limits.triesPerNetwork)
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

/// In a transaction of its own: a try counts, whatever becomes of its request. Reading first: refused tries
/// must not hold up those who write.
Codes::Try Codes::begin(const std::string &emailKey, const std::string &network)
{
    const Instant now = m_clock();
    Allowance::State tries;
    Allowance::State guesses;
    const auto look = [&](Connection &connection) {
        tries = m_triesPerNetwork.look(connection, network, now);
        guesses = m_wrongPerNetwork.look(connection, network, now);
    };
    m_database.read(look);
    if (tries.isAhead || guesses.isAhead)
        m_database.write([&](Connection &connection) {
            m_triesPerNetwork.settle(connection, network, now);
            m_wrongPerNetwork.settle(connection, network, now);
            look(connection);
        });
    m_triesPerNetwork.require(tries, triesComplaint);
    return m_database.write([&](Connection &connection) {
        Try attempt;
        if (m_triesPerNetwork.isSpent(connection, network, tries, now))
            m_triesPerNetwork.require(tries, triesComplaint);
        attempt.spentTry = m_triesPerNetwork.spend(connection, network, tries, 1, now);
        attempt.codes = connection.all<UnderWay>(
            "SELECT id, purpose, sign_up_id, salt, hash, second_hash FROM codes WHERE email_key = :key"
            " AND expires_at > :now",
            emailKey, toMillis(now));
        // Without a code there is nothing to guess, and nobody can fill the table with addresses.
        attempt.single =
            !m_wrongPerNetwork.isSpent(connection, network, guesses, now) &&
            (attempt.codes.empty() || m_wrongCodes.spend(connection, emailKey, attempt.mayHit(), now));
        if (attempt.single)
            attempt.spentGuesses =
                m_wrongPerNetwork.spend(connection, network, guesses, attempt.guesses(), now);
        m_triesPerNetwork.tidy(connection, network, tries, now);
        m_wrongPerNetwork.tidy(connection, network, guesses, now);
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

/// The code that was entered, if it was the right one: then the network gets back what the try has spent.
std::optional<std::size_t> Codes::conclude(const std::string &emailKey, const std::string &network,
                                           const Try &attempt, const Hits &hits) const
{
    if (attempt.single && hits.first.empty())
        return {};
    return m_database.write([&](Connection &connection) {
        std::optional<std::size_t> match;
        if (attempt.single)
            match = hits.first.front();
        else
            match = secondStep(connection, emailKey, network, attempt, hits);
        const Instant now = m_clock();
        if (match)
            m_triesPerNetwork.giveBack(connection, network, attempt.spentTry, 1, now);
        if (match && attempt.spentGuesses)
            m_wrongPerNetwork.giveBack(connection, network, *attempt.spentGuesses, attempt.guesses(), now);
        return match;
    });
}

/// The code whose first part was this network's last entry for the address and whose second part is this one.
std::optional<std::size_t> Codes::secondStep(Connection &connection, const std::string &emailKey,
                                             const std::string &network, const Try &attempt,
                                             const Hits &hits) const
{
    std::string entered; // an identifier has no blank
    for (const std::size_t i : hits.first)
        entered += attempt.codes[i].id + ' ';
    const std::string last = exchangeEntered(connection, emailKey, network, entered);
    const auto both = std::ranges::find_if(hits.second, [&](std::size_t i) {
        return last.find(attempt.codes[i].id + ' ') != std::string::npos;
    });
    return both == hits.second.end() ? std::nullopt : std::optional{*both};
}

/// What was the last entry so far. Stores that there was no right one, too: both take the same time.
std::string Codes::exchangeEntered(Connection &connection, const std::string &emailKey,
                                   const std::string &network, const std::string &codeIds) const
{
    const Instant now = m_clock();
    const auto last = connection.first<SingleColumn<std::string>>(
        "SELECT code_ids FROM entered_codes WHERE email_key = :key AND network = :network", emailKey,
        network);
    connection.execute("DELETE FROM entered_codes WHERE (email_key, network) IN (SELECT email_key, network"
                       " FROM entered_codes WHERE ends_at <= :now ORDER BY ends_at LIMIT :few)",
                       toMillis(now), fewEntries);
    connection.execute("INSERT INTO entered_codes (email_key, network, code_ids, ends_at)"
                       " VALUES (:key, :network, :ids, :end) ON CONFLICT (email_key, network)"
                       " DO UPDATE SET code_ids = excluded.code_ids, ends_at = excluded.ends_at",
                       emailKey, network, codeIds, toMillis(now + m_lifetime));
    return last ? last->value : std::string{};
}

Codes::Match Codes::judge(const std::string &emailKey, std::string_view code,
                          const std::string &remoteAddress)
{
    const std::string network = networkOf(remoteAddress);
    const Try attempt = begin(emailKey, network);
    const Hits hits = compare(attempt.codes, code);
    const auto match = conclude(emailKey, network, attempt, hits);
    if (!match)
        throw attempt.single ? invalidCode() : bothCodesNeeded();
    const UnderWay &right = attempt.codes[*match];
    return {right.id, purposeOf(right.purpose), right.signUpId, attempt.single ? attempt.mayHit() : 0};
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

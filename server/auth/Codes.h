#pragma once

#include "server/auth/Passwords.h"
#include "server/auth/RateLimit.h"
#include "server/http/ApiError.h"
#include "server/storage/Database.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace clockwell::server {

struct CodeLimits
{
    std::chrono::minutes lifetime{10};
    std::chrono::minutes memory{60};                         ///< after its end, of what a code was for
    long long tries = 5;                                     ///< of one code
    ThrottleLimits perAddress{5, std::chrono::hours{1}};     ///< codes for one e-mail address
    ThrottleLimits perNetwork{30, std::chrono::minutes{15}}; ///< codes asked for from one network address
    ThrottleLimits wrongCodes{50, std::chrono::hours{24}};   ///< for one e-mail address, over all its codes
};

enum class CodePurpose { Verify, Reset };

/// The six-digit codes that prove who reads an address's e-mail. There is at most one for an address: a new
/// one replaces the old. An address without an account gets codes too, which nobody is told: so everything
/// that can be seen from outside depends on the requests alone. Kept as argon2id hashes, for six digits have
/// no other protection. Safe on several threads.
class Codes
{
public:
    Codes(Database &database, Passwords &passwords, const Clock &clock, CodeLimits limits);

    struct Fresh
    {
        std::string code;
        std::string hash;
    };

    /// Counts a request for a code. Throws ApiError 429 when there were too many.
    void countRequest(const std::string &emailKey, const std::string &remoteAddress);

    /// Makes a code; takes as long as the check of a password. Throws ApiError 503.
    Fresh make();

    /// Stores a code in place of the address's old one, as part of the caller's transaction.
    void store(Connection &connection, const std::string &emailKey, CodePurpose purpose,
               const Fresh &fresh) const;

    /// For what the address's last code was, unless it was used or is long over.
    std::optional<CodePurpose> lastPurpose(Connection &connection, const std::string &emailKey) const;

    /// Ends the address's code, as part of the caller's transaction.
    static void revoke(Connection &connection, const std::string &emailKey);

    struct Match
    {
        CodePurpose purpose;
        std::string hash;
    };

    /// Counts a try, then compares. Throws ApiError 400 INVALID_CODE, and 429 after too many tries.
    Match judge(const std::string &emailKey, std::string_view code);

    /// Uses a matching code up, as part of the caller's transaction. Throws ApiError 400 INVALID_CODE when it
    /// was used or replaced meanwhile.
    void consume(Connection &connection, const std::string &emailKey, const Match &match) const;

    /// The owner of the address has shown who they are.
    void forgetWrongCodes(const std::string &emailKey) { m_wrongCodes.forget(emailKey); }

private:
    struct Stored;
    std::optional<Stored> countTry(const std::string &emailKey);
    void removeOld(Connection &connection) const;

    Database &m_database;
    Passwords &m_passwords;
    Clock m_clock;
    CodeLimits m_limits;
    RateLimit m_perAddress;
    RateLimit m_perNetwork;
    RateLimit m_wrongCodes;
};

/// The one refusal of every code that is wrong, expired, used, replaced or was never sent.
ApiError invalidCode();

} // namespace clockwell::server

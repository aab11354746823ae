#pragma once

#include "server/auth/Allowance.h"
#include "server/auth/Passwords.h"
#include "server/auth/WrongCodes.h"
#include "server/http/ApiError.h"
#include "server/storage/Database.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace clockwell::server {

struct CodeLimits
{
    std::chrono::minutes lifetime{10};
    /// Guesses at one address's single codes, each as often as there are codes that it may hit; beyond that,
    /// both codes of a message are needed. See docs/server.md for the arithmetic of all three.
    AllowanceLimits wrongCodes{15, std::chrono::hours{24}};
    AllowanceLimits wrongPerNetwork{450, std::chrono::hours{24}};   ///< likewise, from one network address
    AllowanceLimits triesPerNetwork{300, std::chrono::minutes{15}}; ///< wrong ones, refused beyond that
};

enum class CodePurpose { Verify, Reset };

/// The codes that prove who reads an address's e-mail: six digits, and six more that are only asked for after
/// many wrong codes, so that guessers can never use up what the owner needs. An address without an account
/// gets codes too, which nobody is told: so everything that can be seen from outside depends on the requests
/// alone. The first code is kept as an argon2id hash, for six digits have no other protection. Safe on
/// several threads.
class Codes
{
public:
    Codes(Database &database, PasswordCost cost, const Clock &clock, const CodeLimits &limits);

    struct Fresh
    {
        std::string first;
        std::string second;
        std::string salt;
        std::string hash; ///< of the first
    };

    struct Asked
    {
        std::string emailKey;
        std::string network; ///< from where, as networkOf() has it
        CodePurpose purpose = CodePurpose::Verify;
        std::optional<std::string> signUpId; ///< the sign-up that it belongs to
    };

    /// Makes a code; takes as long as the check of a password.
    Fresh make(const std::string &emailKey);

    /// Stores a code beside those that are under way, as part of the caller's transaction.
    void store(Connection &connection, const Asked &asked, const Fresh &fresh) const;

    /// Ends the newest code of the address that was asked for from this network, as part of the caller's
    /// transaction.
    void endNewest(Connection &connection, const std::string &emailKey, const std::string &network) const;

    /// Whether such a code is under way; takes the time of a change, but changes nothing.
    bool touch(Connection &connection, const std::string &emailKey, const std::string &network) const;

    /// Ends all of the address's codes, as part of the caller's transaction.
    static void revoke(Connection &connection, const std::string &emailKey);

    struct Match
    {
        std::string id;
        CodePurpose purpose = CodePurpose::Verify;
        std::optional<std::string> signUpId;
        double spent = 0; ///< of the address's allowance, to be given back
    };

    /// Counts a try, then compares. Throws ApiError 400 INVALID_CODE; 400 SECOND_CODE_NEEDED, right or wrong,
    /// when both codes are needed and this was not the second after the first; 429 after too many tries from
    /// this network address.
    Match judge(const std::string &emailKey, std::string_view code, const std::string &remoteAddress);

    /// Uses a matching code up, as part of the caller's transaction. Throws ApiError 400 INVALID_CODE when it
    /// was used or ended meanwhile.
    void consume(Connection &connection, const std::string &emailKey, const Match &match) const;

private:
    struct UnderWay;
    struct Try;
    struct Hits;
    Try begin(const std::string &emailKey, const std::string &network);
    Hits compare(const std::vector<UnderWay> &codes, std::string_view code) const;
    std::optional<std::size_t> conclude(const std::string &emailKey, const std::string &network,
                                        const Try &attempt, const Hits &hits) const;
    std::optional<std::size_t> secondStep(Connection &connection, const std::string &emailKey,
                                          const std::string &network, const Try &attempt,
                                          const Hits &hits) const;
    std::string exchangeEntered(Connection &connection, const std::string &emailKey,
                                const std::string &network, const std::string &codeIds) const;

    Database &m_database;
    PasswordCost m_cost;
    Clock m_clock;
    std::chrono::minutes m_lifetime;
    WrongCodes m_wrongCodes;
    Allowance m_wrongPerNetwork;
    Allowance m_triesPerNetwork;
};

/// The one refusal of every code that is wrong, expired, used, ended or was never sent.
ApiError invalidCode();

} // namespace clockwell::server

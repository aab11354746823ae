#pragma once

#include "server/auth/Accounts.h"
#include "server/storage/Connection.h"
#include "server/storage/Instant.h"

#include <chrono>
#include <optional>
#include <string>
#include <tuple>

namespace clockwell::server {

/// What somebody typed who signs up.
struct Applicant
{
    std::string fullName;
    std::string email;
    std::optional<std::string> phone;
    std::optional<std::string> companyId;
};

/// One row of the table of sign-ups.
struct SignUp
{
    std::string id;
    Applicant applicant;
    std::string passwordHash;

    static constexpr const char *columnNames = "id full_name email phone company_id password_hash";
    auto columns()
    {
        return std::tie(id, applicant.fullName, applicant.email, applicant.phone, applicant.companyId,
                        passwordHash);
    }
};

/// The sign-ups with an address that nobody has verified yet. The first one makes the account, in whose row
/// it stands for administrators to see; others wait beside it, for each may be its owner's. The owner decides
/// by entering the code of one. Everything is part of the caller's transaction. Safe on several threads.
class SignUps
{
public:
    /// `life`: of an account that nobody verified.
    SignUps(Clock clock, std::chrono::hours life) : m_clock(std::move(clock)), m_life(life) {}

    /// The sign-up with this address that a further one from this network most likely repeats. Nothing when
    /// the address is free or verified.
    static std::optional<SignUp> latest(Connection &connection, const std::string &emailKey,
                                        const std::string &network);

    /// The newest sign-up with this account's address from this network; nothing when there is none.
    static std::optional<std::string> newestFrom(Connection &connection, const std::string &employeeId,
                                                 const std::string &network);

    struct Recorded
    {
        std::string id;
        bool contested = false; ///< people with different passwords signed up with the address
    };

    /// `same`: the sign-up whose password this one has; it takes the new details. Nothing, and nothing
    /// changed, when the address belongs to a verified account.
    std::optional<Recorded> record(Connection &connection, const Applicant &applicant,
                                   const std::string &passwordHash, const std::string &network,
                                   const std::optional<SignUp> &same) const;

    /// The owner of the address has entered a code: makes the sign-up that it belongs to the account's, and
    /// the address verified. What an administrator decided stays, but who was approved may have been somebody
    /// else. The account has no password when people with different ones signed up: its hash is then
    /// `nobodysHash`. True in that case.
    static bool settle(Connection &connection, const Employee &employee,
                       const std::optional<std::string> &signUpId, const std::string &nobodysHash);

private:
    std::string open(Connection &connection, const Applicant &applicant, const std::string &passwordHash,
                     const std::string &network) const;
    void add(Connection &connection, const std::string &id, const std::string &employeeId,
             const Applicant &applicant, const std::string &passwordHash, const std::string &network) const;
    void adopt(Connection &connection, const Employee &employee) const;
    void removeSome(Connection &connection, const std::string &emailKey) const;

    Clock m_clock;
    std::chrono::hours m_life;
};

} // namespace clockwell::server

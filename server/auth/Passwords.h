#pragma once

#include <cstddef>
#include <string>

namespace clockwell::server {

/// What one argon2id computation costs. The default is the first of the settings that OWASP's "Password
/// Storage Cheat Sheet" lists as equally strong; docs/server.md compares them.
struct PasswordCost
{
    unsigned long long passes = 2;
    std::size_t bytes = 19ULL * 1024 * 1024;
};

/// Hashes and checks passwords with argon2id. Safe on several threads; as many computations run at once, each
/// with the memory of its cost. Passwords are valid UTF-8; ways to write the same characters are the same
/// password.
class Passwords
{
public:
    static constexpr std::size_t longestPassword = 1024; ///< bytes

    explicit Passwords(PasswordCost cost = {});

    /// The text to store; it names its own salt and cost. Throws std::bad_alloc.
    std::string hash(const std::string &password);

    /// Takes the same time for every `storedHash` of the same cost.
    bool matches(const std::string &storedHash, const std::string &password);

    /// Whether a stored hash has another cost than those that are made now.
    bool hasOtherCost(const std::string &storedHash) const;

    /// Of a random password that nobody knows, at the cost of those that are made now: for an account without
    /// a password, and to spend the time of a check on when there is no account.
    const std::string &nobodysHash() const { return m_nobodysHash; }

private:
    PasswordCost m_cost;
    std::string m_nobodysHash; // of a random password
};

} // namespace clockwell::server

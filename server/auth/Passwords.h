#pragma once

#include <chrono>
#include <cstddef>
#include <semaphore>
#include <string>

namespace clockwell::server {

/// What one argon2id computation costs. The default is the first of the settings that OWASP's "Password
/// Storage Cheat Sheet" lists as equally strong; docs/server.md compares them.
struct PasswordCost
{
    unsigned long long passes = 2;
    std::size_t bytes = 19ULL * 1024 * 1024;
};

/// Hashes and checks passwords with argon2id. Safe on several threads; only a few computations run at once,
/// so that a burst of sign-ins cannot exhaust the machine's memory. Passwords are valid UTF-8; ways to write
/// the same characters are the same password.
class Passwords
{
public:
    static constexpr std::size_t longestPassword = 1024; ///< bytes

    explicit Passwords(PasswordCost cost = {}, std::ptrdiff_t atOnce = 2);

    /// The text to store; it names its own salt and cost. Throws ApiError 503 when the queue is too long.
    std::string hash(const std::string &password);

    /// Takes the same time for every `storedHash` of the same cost. Throws ApiError 503 when the queue is too
    /// long.
    bool matches(const std::string &storedHash, const std::string &password);

    /// Whether a stored hash has another cost than those that are made now.
    bool hasOtherCost(const std::string &storedHash) const;

    /// Of a random password, at the cost of those that are made now.
    const std::string &nobodysHash() const { return m_nobodysHash; }

    /// Spends the time of a check for an account that does not exist; always false.
    bool matchesNobody(const std::string &password) { return matches(m_nobodysHash, password) && false; }

private:
    class Turn;

    PasswordCost m_cost;
    std::counting_semaphore<> m_turns;
    std::string m_nobodysHash; // of a random password
};

} // namespace clockwell::server

#include "server/auth/Passwords.h"

#include "server/auth/PasswordText.h"
#include "server/auth/Sodium.h"
#include "server/auth/Tokens.h"

#include <sodium.h>

#include <array>
#include <new>

namespace clockwell::server {

Passwords::Passwords(PasswordCost cost) : m_cost(cost), m_nobodysHash(hash(newToken())) {}

std::string Passwords::hash(const std::string &password)
{
    requireSodium();
    const std::string prepared = preparedPassword(password);
    std::array<char, crypto_pwhash_STRBYTES> text{};
    if (crypto_pwhash_str_alg(text.data(), prepared.data(), prepared.size(), m_cost.passes, m_cost.bytes,
                              crypto_pwhash_ALG_ARGON2ID13) != 0)
        throw std::bad_alloc{}; // the one way in which it fails
    return text.data();
}

bool Passwords::matches(const std::string &storedHash, const std::string &password)
{
    requireSodium();
    const std::string prepared = preparedPassword(password);
    return crypto_pwhash_str_verify(storedHash.c_str(), prepared.data(), prepared.size()) == 0;
}

bool Passwords::hasOtherCost(const std::string &storedHash) const
{
    requireSodium();
    return crypto_pwhash_str_needs_rehash(storedHash.c_str(), m_cost.passes, m_cost.bytes) != 0;
}

} // namespace clockwell::server

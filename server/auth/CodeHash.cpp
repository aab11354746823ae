#include "server/auth/CodeHash.h"

#include "server/auth/Sodium.h"

#include <sodium.h>

#include <array>
#include <new>

namespace clockwell::server {

std::string codeHash(const std::string &digits, const std::string &salt, PasswordCost cost)
{
    requireSodium();
    std::array<unsigned char, crypto_pwhash_SALTBYTES> saltBytes{};
    crypto_generichash(saltBytes.data(), saltBytes.size(),
                       reinterpret_cast<const unsigned char *>(salt.data()), salt.size(), nullptr, 0);
    std::array<unsigned char, 32> hash{};
    if (crypto_pwhash(hash.data(), hash.size(), digits.data(), digits.size(), saltBytes.data(), cost.passes,
                      cost.bytes, crypto_pwhash_ALG_ARGON2ID13) != 0)
        throw std::bad_alloc{}; // the one way in which it fails
    std::array<char, hash.size() * 2 + 1> text{};
    sodium_bin2hex(text.data(), text.size(), hash.data(), hash.size());
    return text.data();
}

} // namespace clockwell::server

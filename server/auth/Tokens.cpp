#include "server/auth/Tokens.h"

#include "server/auth/Sodium.h"

#include <sodium.h>

#include <array>

namespace clockwell::server {

namespace {

template <std::size_t Size>
std::string hexOf(const std::array<unsigned char, Size> &bytes)
{
    std::array<char, Size * 2 + 1> text{};
    sodium_bin2hex(text.data(), text.size(), bytes.data(), bytes.size());
    return text.data();
}

} // namespace

std::string newToken()
{
    requireSodium();
    std::array<unsigned char, 32> bytes{};
    randombytes_buf(bytes.data(), bytes.size());
    constexpr int variant = sodium_base64_VARIANT_URLSAFE_NO_PADDING;
    std::array<char, sodium_base64_ENCODED_LEN(32, variant)> text{};
    sodium_bin2base64(text.data(), text.size(), bytes.data(), bytes.size(), variant);
    return text.data();
}

std::string tokenHash(std::string_view token)
{
    requireSodium();
    std::array<unsigned char, crypto_generichash_BYTES> hash{};
    crypto_generichash(hash.data(), hash.size(), reinterpret_cast<const unsigned char *>(token.data()),
                       token.size(), nullptr, 0);
    return hexOf(hash);
}

std::string newId()
{
    requireSodium();
    std::array<unsigned char, 16> bytes{};
    randombytes_buf(bytes.data(), bytes.size());
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0f) | 0x40); // RFC 4122, section 4.4
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3f) | 0x80);
    std::string text = hexOf(bytes);
    for (const std::size_t at : {20U, 16U, 12U, 8U})
        text.insert(at, 1, '-');
    return text;
}

} // namespace clockwell::server

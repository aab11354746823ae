#pragma once

#include "server/storage/StoredRow.h"

#include <sodium.h>

#include <array>

namespace clockwell::server {

/// Tells whether two tables hold the same rows in the same order, down to the last bit, without keeping them.
class Fingerprint
{
public:
    struct Result
    {
        long long rows = 0;
        std::array<unsigned char, crypto_generichash_BYTES> hash{}; ///< BLAKE2b (RFC 7693) of all values

        bool operator==(const Result &) const = default;
    };

    /// Throws std::runtime_error when libsodium cannot be used.
    Fingerprint();

    void add(const StoredRow &row);
    /// Nothing can be added afterwards.
    Result result();

private:
    crypto_generichash_state m_state{};
    long long m_rows = 0;
};

} // namespace clockwell::server

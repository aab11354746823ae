#include "server/admin/Fingerprint.h"

#include "server/auth/Sodium.h"

#include <string>
#include <type_traits>

namespace clockwell::server {

namespace {

/// Different values give different bytes, none of which are the beginning of another value's.
struct Encoder
{
    std::string &bytes;

    void operator()(std::monostate) const { bytes += 'n'; }
    void operator()(long long value) const { appendNumber('i', value); }
    void operator()(double value) const { appendNumber('d', value); }
    void operator()(std::string_view value) const { appendBytes('t', value); }
    void operator()(const StoredBytes &value) const { appendBytes('b', value.bytes); }

    template <class Number>
    void appendNumber(char type, Number value) const
    {
        bytes += type;
        bytes.append(reinterpret_cast<const char *>(&value), sizeof value);
    }
    void appendBytes(char type, std::string_view value) const
    {
        appendNumber(type, value.size());
        bytes += value;
    }
};

} // namespace

Fingerprint::Fingerprint()
{
    requireSodium();
    crypto_generichash_init(&m_state, nullptr, 0, crypto_generichash_BYTES);
}

void Fingerprint::add(const StoredRow &row)
{
    std::string bytes;
    for (const StoredValue &value : row)
        std::visit(Encoder{bytes}, value);
    crypto_generichash_update(&m_state, reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size());
    ++m_rows;
}

Fingerprint::Result Fingerprint::result()
{
    Result result;
    result.rows = m_rows;
    crypto_generichash_final(&m_state, result.hash.data(), result.hash.size());
    return result;
}

} // namespace clockwell::server

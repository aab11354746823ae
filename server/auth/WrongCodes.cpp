#include "server/auth/WrongCodes.h"

#include <algorithm>
#include <tuple>

namespace clockwell::server {

namespace {

struct AllowanceRow
{
    double amount = 0;
    long long at = 0;
    auto columns() { return std::tie(amount, at); }
};

constexpr long long fewAllowances = 20;

} // namespace

bool WrongCodes::spend(Connection &connection, const std::string &emailKey, double amount, Instant now) const
{
    const double before = spending(connection, emailKey).left(m_limits, now);
    if (before + 1 > m_limits.size)
        return false;
    store(connection, emailKey, {before + amount, toMillis(now)});
    return true;
}

void WrongCodes::giveBack(Connection &connection, const std::string &emailKey, double amount,
                          Instant now) const
{
    const double before = spending(connection, emailKey).left(m_limits, now);
    store(connection, emailKey, {std::max(0.0, before - amount), toMillis(now)});
}

void WrongCodes::removeSome(Connection &connection, Instant now) const
{
    // Spent may be more than the allowance, by what a single guess costs: hence twice the time.
    connection.execute("DELETE FROM wrong_codes WHERE email_key IN"
                       " (SELECT email_key FROM wrong_codes WHERE at <= :end ORDER BY at LIMIT :few)",
                       toMillis(now - 2 * m_limits.window), fewAllowances);
}

Spending WrongCodes::spending(Connection &connection, const std::string &emailKey) const
{
    const auto row =
        connection.first<AllowanceRow>("SELECT amount, at FROM wrong_codes WHERE email_key = :key", emailKey);
    return row ? Spending{row->amount, row->at} : Spending{};
}

void WrongCodes::store(Connection &connection, const std::string &emailKey, const Spending &spending) const
{
    connection.execute("INSERT INTO wrong_codes (email_key, amount, at) VALUES (:key, :amount, :at)"
                       " ON CONFLICT (email_key) DO UPDATE SET amount = excluded.amount, at = excluded.at",
                       emailKey, spending.amount, spending.at);
}

} // namespace clockwell::server

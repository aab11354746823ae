#include "server/auth/Allowance.h"

#include "server/auth/TooManyAttempts.h"

#include <algorithm>
#include <cmath>

namespace clockwell::server {

namespace {

constexpr double rounding = 1e-9; // what has grown again in many small steps is not short of a whole one

} // namespace

double Spending::left(const AllowanceLimits &limits, Instant now) const
{
    const std::chrono::duration<double> elapsed = std::max(Instant::duration{0}, now - fromMillis(at));
    const std::chrono::duration<double> window = limits.window;
    return std::max(0.0, amount - elapsed / window * limits.size);
}

void Allowance::take(const std::string &key, std::string_view complaint)
{
    const std::lock_guard lock{m_lock};
    const Instant now = m_clock();
    const double missing = spent(key, now) + 1 - m_limits.size;
    if (missing > rounding) {
        const auto seconds =
            std::ceil(missing / m_limits.size * static_cast<double>(m_limits.window.count()) - rounding);
        throw tooManyAttempts(complaint, std::chrono::seconds{std::max(1LL, std::llround(seconds))});
    }
    add(key, 1, now);
}

bool Allowance::isSpent(const std::string &key)
{
    const std::lock_guard lock{m_lock};
    return spent(key, m_clock()) + 1 > m_limits.size + rounding;
}

void Allowance::spend(const std::string &key, double amount)
{
    const std::lock_guard lock{m_lock};
    add(key, amount, m_clock());
}

double Allowance::spent(const std::string &key, Instant now) const
{
    const Spending *spending = m_spendings.find(key);
    return spending == nullptr ? 0 : spending->left(m_limits, now);
}

void Allowance::add(const std::string &key, double amount, Instant now)
{
    Spending &spending = m_spendings.write(key);
    spending = {std::max(0.0, spending.left(m_limits, now) + amount), toMillis(now)};
}

} // namespace clockwell::server

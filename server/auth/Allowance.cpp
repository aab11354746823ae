#include "server/auth/Allowance.h"

#include "server/auth/ClockSkew.h"
#include "server/auth/Tokens.h"
#include "server/auth/TooManyAttempts.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace clockwell::server {

namespace {

constexpr double rounding = 1e-9; // what has grown again in many small steps is not short of a whole one
constexpr std::size_t manyRows = 32;
constexpr long long fewSubjects = 3; // more than one use adds

std::chrono::duration<double> timeToGrow(double amount, const AllowanceLimits &limits)
{
    return amount / limits.size * std::chrono::duration<double>{limits.window};
}

/// Of one subject at one moment those that take come before those that give back.
const std::string rowsOf = "SELECT amount, at FROM spendings WHERE kind = :kind AND subject = :subject"
                           " ORDER BY at, amount DESC";

} // namespace

struct Allowance::Row
{
    double amount = 0;
    long long at = 0;
    auto columns() { return std::tie(amount, at); }
};

double Spending::left(const AllowanceLimits &limits, Instant now) const
{
    const std::chrono::duration<double> elapsed = std::max(Instant::duration{0}, now - fromMillis(at));
    const std::chrono::duration<double> window = limits.window;
    return std::max(0.0, amount - elapsed / window * limits.size);
}

Allowance::State Allowance::look(Connection &connection, const std::string &subject, Instant now) const
{
    State state;
    Spending sum;
    const auto rows = connection.all<Row>(rowsOf, m_kind, subject);
    for (const Row &row : rows) {
        const Instant at = std::min(fromMillis(row.at), now);
        sum = {std::max(0.0, sum.left(m_limits, at) + row.amount), toMillis(at)};
    }
    state.spent = sum.left(m_limits, now);
    state.isAhead = !rows.empty() && isAhead(rows.back().at, now);
    state.isLong = rows.size() >= manyRows;
    for (auto &over : connection.all<SingleColumn<std::string>>(
             "SELECT subject FROM spendings WHERE kind = :kind AND ends_at <= :now ORDER BY ends_at"
             " LIMIT :few",
             m_kind, toMillis(now), fewSubjects))
        state.over.push_back(std::move(over.value));
    return state;
}

void Allowance::require(const State &state, std::string_view complaint) const
{
    if (!isShort(state.spent, 1))
        return;
    const double missing = state.spent + 1 - m_limits.size;
    const auto seconds = std::ceil(timeToGrow(missing, m_limits).count() - rounding);
    throw tooManyAttempts(complaint, std::chrono::seconds{std::max(1LL, std::llround(seconds))});
}

bool Allowance::isSpent(Connection &connection, const std::string &subject, State &state, Instant now) const
{
    if (isShort(state.spent, 1 + margin))
        state.spent = look(connection, subject, now).spent;
    return isShort(state.spent, 1);
}

std::string Allowance::spend(Connection &connection, const std::string &subject, const State &state,
                             double amount, Instant now) const
{
    std::string id = newId();
    add(connection, id, subject, amount, state.spent + amount, now);
    return id;
}

void Allowance::giveBack(Connection &connection, const std::string &subject, const std::string &spending,
                         double amount, Instant now) const
{
    if (connection.execute("DELETE FROM spendings WHERE id = :id", spending) == 0)
        giveBack(connection, subject, amount, now); // it is in a sum by now
}

void Allowance::giveBack(Connection &connection, const std::string &subject, double amount, Instant now) const
{
    add(connection, newId(), subject, -amount, 0, now);
}

void Allowance::settle(Connection &connection, const std::string &subject, Instant now) const
{
    const double spent = look(connection, subject, now).spent;
    connection.execute("DELETE FROM spendings WHERE kind = :kind AND subject = :subject", m_kind, subject);
    if (spent > 0)
        add(connection, newId(), subject, spent, spent, now);
}

void Allowance::tidy(Connection &connection, const std::string &subject, State &state, Instant now) const
{
    auto subjects = std::exchange(state.over, {});
    if (std::exchange(state.isLong, false))
        subjects.push_back(subject);
    std::ranges::sort(subjects);
    const auto same = std::ranges::unique(subjects);
    subjects.erase(same.begin(), same.end());
    for (const std::string &one : subjects)
        settle(connection, one, now);
}

/// `spent`: by the subject, with this.
void Allowance::add(Connection &connection, const std::string &id, const std::string &subject, double amount,
                    double spent, Instant now) const
{
    const auto end = now + std::chrono::ceil<Instant::duration>(timeToGrow(spent, m_limits));
    connection.execute("INSERT INTO spendings (id, kind, subject, amount, at, ends_at)"
                       " VALUES (:id, :kind, :subject, :amount, :at, :end)",
                       id, m_kind, subject, amount, toMillis(now), toMillis(end));
}

bool Allowance::isShort(double spent, double wanted) const
{
    return spent + wanted > m_limits.size + rounding;
}

} // namespace clockwell::server

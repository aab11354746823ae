#include "server/mail/MailPace.h"

#include <algorithm>

namespace clockwell::server {

namespace {
constexpr std::chrono::seconds firstGuess{1};
constexpr int weightOfThePast = 7; // to one for the newest
} // namespace

void MailPace::end(Time begun, Time now)
{
    m_underWay.erase(m_underWay.find(begun));
    const Duration taken = now - begun;
    m_average = (m_average.value_or(taken) * weightOfThePast + taken) / (weightOfThePast + 1);
}

MailPace::Duration MailPace::step(Time now) const
{
    // A server that has just become slow shows in what is under way before it shows in what has arrived: when
    // no delivery is free, even the newest has taken so long. A single one that hangs proves nothing.
    const Duration newest = m_underWay.size() < m_deliveries ? Duration::zero() : now - *m_underWay.rbegin();
    return std::max(m_average.value_or(firstGuess), newest) / static_cast<Duration::rep>(m_deliveries);
}

} // namespace clockwell::server

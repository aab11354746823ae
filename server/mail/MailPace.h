#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <set>

namespace clockwell::server {

/// How fast messages go out, by how long the recent ones took, and since when the way is closed. Not
/// thread-safe.
class MailPace
{
public:
    using Time = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::steady_clock::duration;

    /// `deliveries` at once.
    explicit MailPace(std::size_t deliveries) : m_deliveries(deliveries) {}

    void begin(Time now) { m_underWay.insert(now); }
    /// The message was delivered or refused, which took its time.
    void end(Time begun, Time now);
    /// It was neither, for the way is closed.
    void abandon(Time begun) { m_underWay.erase(m_underWay.find(begun)); }
    void setClosed(Time now) { m_closedSince = m_closedSince.value_or(now); }
    void setOpen() { m_closedSince.reset(); }

    bool isClosed() const { return m_closedSince.has_value(); }
    std::size_t underWay() const { return m_underWay.size(); }

    /// From one delivery to the next while as many as possible are under way.
    Duration step(Time now) const;
    /// How much longer the way will probably be closed: as long as it has been so far.
    Duration outage(Time now) const { return m_closedSince ? now - *m_closedSince : Duration::zero(); }

private:
    std::size_t m_deliveries;
    std::optional<Duration> m_average;
    std::multiset<Time> m_underWay; // when they began
    std::optional<Time> m_closedSince;
};

} // namespace clockwell::server

#include "Seating.h"

#include <utility>

namespace clockwell::server {

Seat::Seat(Seating &seating, const std::string &network, Kind kind, std::function<void()> giveWay)
    : m_seating(seating), m_networkName(network), m_kind(kind), m_giveWay(std::move(giveWay))
{
    if (isGuest()) {
        ++m_seating.m_guests;
    } else {
        m_network = &m_seating.m_networks[network];
        ++m_network->taken;
        ++m_seating.m_taken;
    }
    wait();
}

void Seat::wait()
{
    if (m_left)
        return;
    hold();
    (isGuest() ? m_seating.m_waitingGuests : m_seating.m_waiting).push_back(*this);
    if (m_network)
        m_network->waiting.push_back(*this);
}

void Seat::hold()
{
    m_inAll.unlink();
    m_inNetwork.unlink();
}

void Seat::leave()
{
    if (std::exchange(m_left, true))
        return;
    hold();
    if (isGuest()) {
        --m_seating.m_guests;
        return;
    }
    --m_seating.m_taken;
    if (--m_network->taken == 0)
        m_seating.m_networks.erase(m_networkName);
}

template <class Seats>
bool Seating::giveWay(Seats &waiting)
{
    if (waiting.empty())
        return false;
    Seat &longest = waiting.front();
    longest.leave();
    longest.m_giveWay();
    return true;
}

std::optional<Seat::Kind> Seating::admit(const std::string &network)
{
    const auto known = m_networks.find(network);
    const bool hasItsShare =
        network != nobodysNetwork && known != m_networks.end() && known->second.taken >= m_limits.perNetwork;
    if (hasItsShare ? giveWay(known->second.waiting) : m_taken < m_limits.all || giveWay(m_waiting))
        return Seat::Kind::Regular;
    if (m_guests < m_limits.guests || giveWay(m_waitingGuests))
        return Seat::Kind::Guest;
    return std::nullopt;
}

} // namespace clockwell::server

#include "server/auth/NetworkFailures.h"

#include "server/http/PeerAddress.h"

namespace clockwell::server {

NetworkFailures::Attempt::Attempt(Allowance &allowance, std::string network)
    : m_allowance(allowance), m_network(std::move(network))
{
    m_allowance.take(m_network, "Too many wrong passwords came from this network.");
}

NetworkFailures::Attempt::~Attempt()
{
    if (!m_counts)
        m_allowance.giveBack(m_network);
}

NetworkFailures::Attempt NetworkFailures::begin(const std::string &remoteAddress)
{
    return {m_allowance, networkOf(remoteAddress)};
}

} // namespace clockwell::server

#pragma once

#include "Client.h"
#include "Company.h"

#include <vector>

namespace clockwell::rush {

/// Somebody who keeps trying to sign in, in turns with a wrong password for one of the people and with an
/// account that does not exist, always from one network address.
class Stranger
{
public:
    static constexpr std::size_t mostAtOnce = 2000; ///< more attempts than that do not wait for an answer

    Stranger(boost::asio::any_io_executor executor, Network network, Figures &figures,
             const std::vector<Person> &people)
        : m_executor(std::move(executor)), m_network(network), m_figures(figures), m_people(people)
    {}

    /// So many attempts a second, until the thread's work is stopped.
    boost::asio::awaitable<void> keepTrying(unsigned perSecond);

private:
    boost::asio::awaitable<void> tryOnce(unsigned number);

    boost::asio::any_io_executor m_executor;
    Network m_network;
    Figures &m_figures;
    const std::vector<Person> &m_people;
    std::size_t m_underWay = 0;
};

} // namespace clockwell::rush

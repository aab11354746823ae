#include "Stranger.h"

#include "Awaiting.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <nlohmann/json.hpp>

namespace clockwell::rush {

namespace asio = boost::asio;

asio::awaitable<void> Stranger::keepTrying(unsigned perSecond)
{
    const auto begin = Clock::now();
    asio::steady_timer timer(m_executor);
    for (unsigned number = 0;; ++number) {
        timer.expires_at(begin + std::chrono::microseconds{1'000'000ULL * number / perSecond});
        co_await timer.async_wait(withoutThrowing);
        if (m_underWay < mostAtOnce)
            asio::co_spawn(m_executor, tryOnce(number), asio::detached);
    }
}

asio::awaitable<void> Stranger::tryOnce(unsigned number)
{
    ++m_underWay;
    const bool known = number % 2 == 0 && !m_people.empty();
    const std::string email = known ? m_people.at(number / 2 % m_people.size()).email
                                    : "nobody-" + std::to_string(number) + "@example.org";
    std::string body =
        nlohmann::json{{"email", email}, {"password", "Wrong-Guess-1"}, {"deviceId", "stranger"}}.dump();
    Client client(m_executor, m_network, m_figures);
    co_await client.send(Call::stranger, {}, std::move(body));
    --m_underWay;
}

} // namespace clockwell::rush

#include "IdleCrowd.h"

#include "Awaiting.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <string_view>

namespace clockwell::rush {

namespace asio = boost::asio;
using asio::awaitable;
using asio::ip::tcp;
using namespace std::chrono_literals;

namespace {

constexpr unsigned batch = 100;
constexpr auto batchPause = 100ms;
constexpr auto longestGathering = 60s;

// Refused for want of a token, so that it costs the server little; any answer but a 503 lets it stay.
constexpr std::string_view question = "GET /api/attendance/today HTTP/1.1\r\nHost: localhost\r\n\r\n";

/// A different one for each connection, without a random number.
Duration comeBackAfter(std::size_t number)
{
    return 5s + std::chrono::milliseconds{number * 37 % 10'000};
}

} // namespace

awaitable<void> IdleCrowd::gather(unsigned count, asio::ip::address_v4 from)
{
    const auto end = Clock::now() + longestGathering;
    for (unsigned i = 0; i < count; ++i) {
        asio::co_spawn(m_executor, hold(asio::ip::address_v4{from.to_uint() + i}), asio::detached);
        if (i % batch == batch - 1)
            co_await sleepFor(m_executor, batchPause);
    }
    while (m_settled < count && Clock::now() < end)
        co_await sleepFor(m_executor, batchPause);
}

awaitable<void> IdleCrowd::hold(asio::ip::address_v4 from)
{
    for (std::size_t times = 0;; ++times) {
        tcp::socket socket(m_executor);
        const bool isIn = co_await ask(socket, from);
        m_settled += times == 0 ? 1 : 0;
        if (!isIn)
            co_return;
        ++m_open;
        std::array<char, 512> rest{};
        boost::system::error_code ended;
        while (!ended) {
            const auto [error, count] = co_await socket.async_read_some(asio::buffer(rest), withoutThrowing);
            ended = error;
        }
        --m_open;
        ++m_closed;
        socket.close();
        co_await sleepFor(m_executor, comeBackAfter(m_closed));
    }
}

awaitable<bool> IdleCrowd::ask(tcp::socket &socket, asio::ip::address_v4 from)
{
    socket.open(tcp::v4());
    bindAddress(socket.native_handle(), from);
    const auto [refused] = co_await socket.async_connect(m_server, withoutThrowing);
    if (refused)
        co_return false;
    const auto [writeError, written] =
        co_await asio::async_write(socket, asio::buffer(question), withoutThrowing);
    if (writeError)
        co_return false;
    std::array<char, 1024> reply{};
    const auto [readError, count] = co_await socket.async_read_some(asio::buffer(reply), withoutThrowing);
    const std::string_view line{reply.data(), count};
    co_return !readError && line.starts_with("HTTP/1.1 ") && !line.starts_with("HTTP/1.1 503");
}

} // namespace clockwell::rush

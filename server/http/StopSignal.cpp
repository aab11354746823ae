#include "StopSignal.h"

#include "HttpServer.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>

#include <csignal>
#include <functional>

namespace clockwell::server {

namespace asio = boost::asio;

class StopSignal::Impl
{
public:
    Impl()
    {
        for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
            m_signals.add(number);
            restartWhatItInterrupts(number);
        }
    }

    /// `run` lets the context work, for as long as it likes.
    std::optional<int> next(const std::function<void(asio::io_context &)> &run)
    {
        std::optional<int> number;
        m_signals.async_wait([&number](const boost::system::error_code &error, int signal) {
            if (!error)
                number = signal;
        });
        m_io.restart();
        run(m_io);
        m_signals.cancel();
        m_io.restart();
        m_io.run(); // so that nothing is left that knows of the local variable
        return number;
    }

    void endsProcess(int number) { m_signals.remove(number); }

private:
    /// Boost 1.81 cannot be asked for that; without it a signal makes the system calls of other threads fail.
    static void restartWhatItInterrupts(int number)
    {
        struct sigaction action
        {};
        ::sigaction(number, nullptr, &action);
        action.sa_flags |= SA_RESTART;
        ::sigaction(number, &action, nullptr);
    }

    asio::io_context m_io{1};
    asio::signal_set m_signals{m_io};
};

StopSignal::StopSignal() : m_impl(std::make_unique<Impl>()) {}

StopSignal::~StopSignal() = default;

int StopSignal::wait()
{
    return m_impl->next([](asio::io_context &io) { io.run(); }).value();
}

std::optional<int> StopSignal::waitFor(std::chrono::milliseconds limit)
{
    return m_impl->next([limit](asio::io_context &io) { io.run_for(limit); });
}

int StopSignal::waitThenStop(HttpServer &server, const Ending &ending)
{
    int number = wait();
    for (; number == SIGHUP; number = wait())
        server.reloadCertificate();
    if (ending.begins)
        ending.begins();
    if (ending.drain > ending.drain.zero())
        drain(server, ending.drain);
    m_impl->endsProcess(SIGINT);
    m_impl->endsProcess(SIGTERM);
    server.stop();
    return number;
}

void StopSignal::drain(HttpServer &server, std::chrono::milliseconds time)
{
    using Clock = std::chrono::steady_clock;
    server.drain();
    const auto end = Clock::now() + time;
    auto left = time;
    while (left > left.zero() && waitFor(left) == SIGHUP) {
        server.reloadCertificate();
        left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
    }
}

} // namespace clockwell::server

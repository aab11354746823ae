#include "HttpServer.h"

#include "Listener.h"
#include "ServerContext.h"
#include "TlsContext.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>

#include <atomic>
#include <stdexcept>
#include <thread>

namespace clockwell::server {

namespace asio = boost::asio;

namespace {
constexpr std::chrono::seconds cutOffDeadline(2); // for connections to notice that they were cut off
}

class HttpServer::Impl
{
public:
    Impl(Options options, Handler handler, Triage triage)
        : m_options(std::move(options)), m_handler(std::move(handler)), m_triage(std::move(triage))
    {}

    void start();
    void stop();
    void reloadCertificate();
    void drain();
    void probe(std::function<void()> answered);
    QueueLoad passwordQueue() const
    {
        const auto load = m_context->lanes.passwordLoad();
        return {load.waiting, load.running};
    }
    bool isStopping() const { return m_stopping; }
    std::uint16_t port() const { return m_listener ? m_listener->port() : std::uint16_t(0); }

private:
    void runIo();

    const Options m_options;
    Handler m_handler;
    Triage m_triage;
    std::atomic<bool> m_stopping{false};
    std::unique_ptr<ServerContext> m_context; // outlives the I/O context, whose connections use it
    asio::io_context m_io{1};
    asio::executor_work_guard<asio::io_context::executor_type> m_work{m_io.get_executor()};
    std::unique_ptr<Listener> m_listener;
    std::thread m_ioThread;
};

void HttpServer::Impl::start()
{
    if (m_listener)
        throw std::logic_error("the server was started before");
    auto tls = makeTlsContext(m_options.certificateFile, m_options.privateKeyFile);
    auto acceptor = Listener::bind(m_io, m_options.address, m_options.port);
    m_context =
        std::make_unique<ServerContext>(m_options, std::move(m_handler), std::move(m_triage), std::move(tls));
    m_listener = std::make_unique<Listener>(std::move(acceptor), *m_context);
    m_listener->start();
    m_ioThread = std::thread([this] { runIo(); });
}

void HttpServer::Impl::runIo()
{
    while (!m_io.stopped()) {
        try {
            m_io.run();
        } catch (const std::exception &error) {
            m_context->log.trouble("ioFailed", error.what());
        }
    }
}

void HttpServer::Impl::stop()
{
    if (!m_ioThread.joinable())
        return;
    m_stopping = true;
    asio::post(m_io, [this] { m_listener->stopSoon(); });
    if (!m_listener->waitUntilIdle(m_options.stopDeadline))
        m_context->log.trouble("stopDeadline", "requests in flight are cut off");
    m_context->lanes.abandonQueues();
    asio::post(m_io, [this] { m_listener->cutOff(); });
    m_context->lanes.join();
    m_listener->waitUntilIdle(cutOffDeadline);
    m_work.reset();
    m_io.stop();
    m_ioThread.join();
}

void HttpServer::Impl::drain()
{
    m_stopping = true;
    if (m_ioThread.joinable())
        asio::post(m_io, [this] { m_context->draining = true; });
}

void HttpServer::Impl::probe(std::function<void()> answered)
{
    asio::post(
        m_io, [this, answered = std::move(answered)] { m_context->lanes.probe(answered); });
}

void HttpServer::Impl::reloadCertificate()
{
    if (!m_ioThread.joinable())
        return;
    try {
        const std::shared_ptr tls = makeTlsContext(m_options.certificateFile, m_options.privateKeyFile);
        asio::post(m_io, [this, tls] { m_context->tls = tls; });
        m_context->log.notice("certificateReloaded", tls ? m_options.certificateFile : "none is used");
    } catch (const std::runtime_error &error) {
        m_context->log.trouble("certificateKept", error.what());
    }
}

HttpServer::HttpServer(Options options, Handler handler, Triage triage)
    : m_impl(std::make_unique<Impl>(std::move(options), std::move(handler), std::move(triage)))
{}

HttpServer::~HttpServer()
{
    m_impl->stop();
}

void HttpServer::start()
{
    m_impl->start();
}

std::uint16_t HttpServer::port() const
{
    return m_impl->port();
}

void HttpServer::reloadCertificate()
{
    m_impl->reloadCertificate();
}

void HttpServer::drain()
{
    m_impl->drain();
}

void HttpServer::probe(std::function<void()> answered)
{
    m_impl->probe(std::move(answered));
}

HttpServer::QueueLoad HttpServer::passwordQueue() const
{
    return m_impl->passwordQueue();
}

bool HttpServer::isStopping() const
{
    return m_impl->isStopping();
}

void HttpServer::stop()
{
    m_impl->stop();
}

} // namespace clockwell::server

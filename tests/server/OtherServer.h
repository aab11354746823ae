#pragma once

#include "World.h"

namespace clockwell::server::test {

/// Another server on the database of a world, with its clock.
class OtherServer
{
public:
    /// `threads`: that check passwords, and as many for those who are signed in.
    OtherServer(World &world, const Settings &settings, SendMail sendMail, unsigned threads = 2)
        : m_database(world.databaseFile(),
                     {.timeout = std::chrono::seconds{30}, .readers = std::size_t{2} * threads}),
          m_application(m_database, world.clock(), settings, std::move(sendMail)),
          m_http(
              withThreads(threads), [this](const Request &request) { return m_application.handle(request); },
              m_application.triage())
    {
        m_http.start();
    }
    std::uint16_t port() const { return m_http.port(); }

private:
    static HttpServer::Options withThreads(unsigned threads)
    {
        HttpServer::Options options;
        options.passwordThreads = threads;
        options.signedInThreads = threads;
        return options;
    }

    Database m_database;
    Application m_application;
    HttpServer m_http;
};

} // namespace clockwell::server::test

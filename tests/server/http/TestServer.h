#pragma once

#include "RawClient.h"
#include "server/http/HttpServer.h"
#include "tests/server/Within.h"

#include <functional>
#include <future>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <utility>

namespace clockwell::server {

/// A running server on a free port of loopback, whose log lines can be read.
class TestServer
{
public:
    static HttpOptions usualOptions(); ///< the program's deadlines, which no test meets on a busy machine
    static HttpOptions quickOptions(); ///< short deadlines, for tests of these

    explicit TestServer(Handler handler = echo, HttpOptions options = usualOptions(), Triage triage = {});
    ~TestServer();

    std::uint16_t port() const { return m_server->port(); }
    HttpServer &server() { return *m_server; }
    /// What was logged; stops the server first, so that it is all there.
    std::string log();

    /// Answers with what it got, one fact a line.
    static Response echo(const Request &request);

    /// "/renewal" and "/password" and what begins like them are in the lane of that name; the account of a
    /// request is its body.
    static Triage byPath();

private:
    std::ostringstream m_log;
    std::unique_ptr<HttpServer> m_server;
};

/// Holds handlers up until it is opened, at most for a minute.
class Gate
{
public:
    void open()
    {
        if (!std::exchange(m_isOpen, true))
            m_promise.set_value();
    }
    void pass() const { m_future.wait_for(std::chrono::minutes(1)); }

private:
    bool m_isOpen = false;
    std::promise<void> m_promise;
    std::shared_future<void> m_future = m_promise.get_future().share();
};

/// True as soon as `condition` is; false when it is not within 20 seconds.
inline bool eventually(const std::function<bool()> &condition)
{
    return test::within(std::chrono::seconds(20), condition);
}

} // namespace clockwell::server

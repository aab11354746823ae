#pragma once

#include "support/Await.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSslConfiguration>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace clockwell::test {

/// A real HTTP/1.1 server on loopback, scripted by the test, running in a separate thread.
///
///     FakeServer server;
///     server.expect("GET", "/api/attendance/me").withHeader("Authorization", "Bearer a1").reply(200, "[]");
///     server.expect("POST", "/api/auth/refresh").after(1s).reply(401, "{}");
///     server.expect("GET", "/api/attendance/today").times(3).reply(401, "{}");
///     server.expect("GET", "/api/auth/me").never(); // reads the request, then sends nothing
///     APIClient client({.baseURL = server.url("/api")}, tokens, events);
///     ...
///     EXPECT_EQ(server.requests().at(0).body, R"({"email":"a@b"})");
///
/// Each expectation matches one request (or times(n), or anyNumber()) with that method and path. Requests to
/// different paths may arrive in any order; expectations for the same path are used in the order given. An
/// unexpected request is answered with 599 and fails the test. So does an expectation without a request, when
/// verify() is called or the server is destroyed.
class FakeServer
{
public:
    using Headers = QList<QPair<QByteArray, QByteArray>>;

    struct Request
    {
        QByteArray method;
        QByteArray target; // as sent: path and query
        QString path;
        QMap<QString, QString> query;
        Headers headers;
        QByteArray body;
        int connection = 0; // counts accepted connections from 1
        std::chrono::steady_clock::time_point at;

        bool has(const QByteArray &header) const;
        QByteArray header(const QByteArray &name) const; // any case; empty when absent
    };

    struct Reply
    {
        int status = 200;
        QByteArray body;
        Headers headers = {{"Content-Type", "application/json"}};
    };

    struct Script;

    /// How one expected request is answered. Takes effect at the end of the statement.
    class Expectation
    {
    public:
        Expectation(FakeServer &server, QByteArray method, const QString &path);
        Expectation(const Expectation &) = delete;
        Expectation &operator=(const Expectation &) = delete;
        ~Expectation();

        Expectation &times(int count);
        Expectation &anyNumber();
        /// Matches only requests whose header has this value, or with an empty value only requests without
        /// that header.
        Expectation &withHeader(const QByteArray &name, const QByteArray &value);
        Expectation &after(std::chrono::milliseconds delay);
        Expectation &reply(int status, const QByteArray &body = {});
        Expectation &header(const QByteArray &name, const QByteArray &value); // of the reply
        Expectation &reply(std::function<Reply(const Request &)> make);       // runs in the server's thread
        Expectation &raw(const QByteArray &bytes); // exactly these bytes, in place of a reply
        Expectation &drip(qsizetype bytes,
                          std::chrono::milliseconds every); // sends the reply in small pieces
        Expectation &thenClose();                           // closes when all is sent
        Expectation &thenReset();                           // the same with a TCP reset
        Expectation &close();                               // closes without an answer
        Expectation &reset();                               // resets without an answer
        Expectation &never();                               // keeps the connection open and silent

    private:
        FakeServer &m_server;
        std::shared_ptr<Script> m_script;
    };

    /// Listens on a free port of 127.0.0.1; with a TLS configuration it speaks HTTPS.
    explicit FakeServer(std::optional<QSslConfiguration> tls = {});
    FakeServer(const FakeServer &) = delete;
    FakeServer &operator=(const FakeServer &) = delete;
    ~FakeServer();

    QUrl url(const QString &path = {}) const;
    quint16 port() const;

    Expectation expect(const QByteArray &method, const QString &path);
    Expectation expect(const QByteArray &method, const char *path);

    QList<Request> requests() const;
    int count(const QString &path) const;
    int connections() const;
    /// Processes the calling thread's events until that many requests have arrived. Returns false after the
    /// limit.
    bool waitForRequests(int count, std::chrono::milliseconds limit = patience);

    /// Stops listening and drops all connections, like a server that shuts down. The expectations are kept.
    void goDown();
    /// Fails the test for unexpected and missing requests, and clears them and the expectations.
    void verify();

private:
    class Listener;
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace clockwell::test

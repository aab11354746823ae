#pragma once

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

/// A real HTTP/1.1 server on loopback, scripted by the test, running in a thread of its own.
///
///     FakeServer server;
///     server.expect("GET", "/api/attendance/me").withHeader("Authorization", "Bearer a1").reply(200, "[]");
///     server.expect("POST", "/api/auth/refresh").after(1s).reply(200,
///     R"({"accessToken":"a2","refreshToken":"r2"})"); server.expect("GET",
///     "/api/attendance/today").times(3).reply(401, "{}"); server.expect("GET", "/api/auth/me").never(); //
///     reads the request, then says nothing APIClient client({.baseURL = server.url("/api")}, tokens,
///     events);
///     ...
///     EXPECT_EQ(server.requests().at(0).body, R"({"email":"a@b"})");
///
/// Each expectation stands for one request (or times(n), or anyNumber()) with that method and path, in any
/// order between different paths; those of one path are used up in the order given. A request nobody expects
/// is answered 599 and fails the test, and so does, when the server goes or at verify(), an expectation that
/// no request came for.
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

    /// What happens to one expected request. Takes effect at the end of the statement.
    class Expectation
    {
    public:
        Expectation(FakeServer &server, QByteArray method, const QString &path);
        Expectation(const Expectation &) = delete;
        Expectation &operator=(const Expectation &) = delete;
        ~Expectation();

        Expectation &times(int count);
        Expectation &anyNumber();
        /// Takes only requests whose header has this value; an empty value: only requests without that
        /// header.
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
    /// Runs the calling thread's events until that many requests have come; false after the limit.
    bool waitForRequests(int count, std::chrono::milliseconds limit = std::chrono::seconds(5));

    /// Stops listening and drops all connections, as a server that goes down; the script stays.
    void goDown();
    /// Fails the test for everything that came unexpectedly or did not come, and forgets about it.
    void verify();

private:
    class Listener;
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace clockwell::test

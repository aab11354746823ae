#pragma once

#include "support/FakeServer.h"

#include <QObject>

#include <mutex>
#include <optional>

class QSslSocket;

namespace clockwell::test {

/// The answer to one expected request.
struct FakeServer::Script
{
    enum class Ending { KeepAlive, Close, Reset };
    static constexpr int unlimited = -1;

    QByteArray method;
    QString path;
    int remaining = 1;
    Headers wanted;
    std::chrono::milliseconds delay{0};
    Reply reply;
    std::function<Reply(const Request &)> make;
    std::optional<QByteArray> raw;
    qsizetype piece = 0; // 0: all at once
    std::chrono::milliseconds every{0};
    Ending ending = Ending::KeepAlive;
};

/// The expectations and the received requests, shared between the test's thread and the server's.
class FakeServerJournal
{
public:
    void add(std::shared_ptr<FakeServer::Script> script);
    int countConnection();
    int connections() const;
    /// Records the request and returns its script; null when the request is unexpected.
    std::shared_ptr<FakeServer::Script> record(const FakeServer::Request &request);
    QList<FakeServer::Request> requests() const;
    QStringList takeFailures();

private:
    mutable std::mutex m_mutex;
    QList<std::shared_ptr<FakeServer::Script>> m_scripts;
    QList<FakeServer::Request> m_requests;
    QStringList m_failures;
    int m_connections = 0;
};

/// One accepted connection, in the server's thread: reads requests one after the other and executes their
/// scripts.
class FakeServerConnection final : public QObject
{
public:
    FakeServerConnection(QSslSocket *socket, FakeServerJournal &journal);

private:
    void read();
    bool takeRequest(FakeServer::Request &request);
    void execute(const FakeServer::Script &script, const FakeServer::Request &request);
    void send(QByteArray bytes, FakeServer::Script script);
    void end(FakeServer::Script::Ending ending);

    QSslSocket *m_socket;
    FakeServerJournal &m_journal;
    QByteArray m_input;
    int m_number;
};

} // namespace clockwell::test

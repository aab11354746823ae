#include "support/FakeServer.h"

#include "support/Await.h"
#include "support/FakeServerScript.h"

#include <QSslSocket>
#include <QTcpServer>
#include <QThread>
#include <QUrlQuery>

#include <gtest/gtest.h>
#include <openssl/crypto.h>

namespace clockwell::test {

bool FakeServer::Request::has(const QByteArray &name) const
{
    return std::any_of(
        headers.begin(), headers.end(),
        [&](const auto &entry) { return entry.first.compare(name, Qt::CaseInsensitive) == 0; });
}

QByteArray FakeServer::Request::header(const QByteArray &name) const
{
    for (const auto &[key, value] : headers)
        if (key.compare(name, Qt::CaseInsensitive) == 0)
            return value;
    return {};
}

struct FakeServer::State
{
    FakeServerJournal journal;
    QThread thread;
    std::unique_ptr<Listener> listener; // lives in the thread
    quint16 port = 0;
    bool tls = false;
};

class FakeServer::Listener final : public QTcpServer
{
public:
    Listener(FakeServerJournal &journal, std::optional<QSslConfiguration> tls)
        : m_journal(journal), m_tls(std::move(tls))
    {}

protected:
    void incomingConnection(qintptr descriptor) override
    {
        auto *socket = new QSslSocket(this);
        socket->setSocketDescriptor(descriptor);
        if (m_tls) {
            socket->setSslConfiguration(*m_tls);
            socket->startServerEncryption();
        }
        new FakeServerConnection(socket, m_journal);
    }

private:
    FakeServerJournal &m_journal;
    const std::optional<QSslConfiguration> m_tls;
};

FakeServer::FakeServer(std::optional<QSslConfiguration> tls) : m_state(std::make_unique<State>())
{
    m_state->tls = tls.has_value();
    m_state->thread.setObjectName(QStringLiteral("FakeServer"));
    // QThread::wait() returns while the system still ends the thread, and a process that ends right then
    // frees what libcrypto keeps of the thread twice.
    QObject::connect(
        &m_state->thread, &QThread::finished, &m_state->thread, [] { OPENSSL_thread_stop(); },
        Qt::DirectConnection);
    m_state->listener = std::make_unique<Listener>(m_state->journal, std::move(tls));
    if (!m_state->listener->listen(QHostAddress::LocalHost))
        qFatal("FakeServer cannot listen");
    m_state->port = m_state->listener->serverPort();
    m_state->listener->moveToThread(&m_state->thread);
    m_state->thread.start();
}

FakeServer::~FakeServer()
{
    goDown();
    m_state->thread.quit();
    m_state->thread.wait();
    verify();
}

QUrl FakeServer::url(const QString &path) const
{
    const QString scheme = m_state->tls ? QStringLiteral("https") : QStringLiteral("http");
    return QUrl(QStringLiteral("%1://127.0.0.1:%2%3").arg(scheme).arg(m_state->port).arg(path));
}

quint16 FakeServer::port() const
{
    return m_state->port;
}

FakeServer::Expectation FakeServer::expect(const QByteArray &method, const QString &path)
{
    return Expectation(*this, method, path);
}

FakeServer::Expectation FakeServer::expect(const QByteArray &method, const char *path)
{
    return Expectation(*this, method, QString::fromUtf8(path));
}

QList<FakeServer::Request> FakeServer::requests() const
{
    return m_state->journal.requests();
}

int FakeServer::count(const QString &path) const
{
    const QList<Request> all = requests();
    return static_cast<int>(
        std::count_if(all.begin(), all.end(), [&](const Request &request) { return request.path == path; }));
}

int FakeServer::connections() const
{
    return m_state->journal.connections();
}

bool FakeServer::waitForRequests(int count, std::chrono::milliseconds limit)
{
    return spinUntil([&] { return requests().size() >= count; }, limit);
}

void FakeServer::goDown()
{
    if (!m_state->listener)
        return;
    QMetaObject::invokeMethod(
        m_state->listener.get(), [this] { m_state->listener.reset(); }, Qt::BlockingQueuedConnection);
}

void FakeServer::verify()
{
    for (const QString &failure : m_state->journal.takeFailures())
        ADD_FAILURE() << failure.toStdString();
}

FakeServer::Expectation::Expectation(FakeServer &server, QByteArray method, const QString &path)
    : m_server(server), m_script(std::make_shared<Script>())
{
    m_script->method = std::move(method);
    m_script->path = path;
}

FakeServer::Expectation::~Expectation()
{
    m_server.m_state->journal.add(m_script);
}

FakeServer::Expectation &FakeServer::Expectation::times(int count)
{
    m_script->remaining = count;
    return *this;
}

FakeServer::Expectation &FakeServer::Expectation::anyNumber()
{
    m_script->remaining = Script::unlimited;
    return *this;
}

FakeServer::Expectation &FakeServer::Expectation::withHeader(const QByteArray &name, const QByteArray &value)
{
    m_script->wanted.append({name, value});
    return *this;
}

FakeServer::Expectation &FakeServer::Expectation::after(std::chrono::milliseconds delay)
{
    m_script->delay = delay;
    return *this;
}

FakeServer::Expectation &FakeServer::Expectation::reply(int status, const QByteArray &body)
{
    m_script->reply.status = status;
    m_script->reply.body = body;
    return *this;
}

FakeServer::Expectation &FakeServer::Expectation::header(const QByteArray &name, const QByteArray &value)
{
    m_script->reply.headers.append({name, value});
    return *this;
}

FakeServer::Expectation &FakeServer::Expectation::reply(std::function<Reply(const Request &)> make)
{
    m_script->make = std::move(make);
    return *this;
}

FakeServer::Expectation &FakeServer::Expectation::raw(const QByteArray &bytes)
{
    m_script->raw = bytes;
    return *this;
}

FakeServer::Expectation &FakeServer::Expectation::drip(qsizetype bytes, std::chrono::milliseconds every)
{
    m_script->piece = bytes;
    m_script->every = every;
    return *this;
}

FakeServer::Expectation &FakeServer::Expectation::thenClose()
{
    m_script->ending = Script::Ending::Close;
    return *this;
}

FakeServer::Expectation &FakeServer::Expectation::thenReset()
{
    m_script->ending = Script::Ending::Reset;
    return *this;
}

FakeServer::Expectation &FakeServer::Expectation::close()
{
    return raw("").thenClose();
}

FakeServer::Expectation &FakeServer::Expectation::reset()
{
    return raw("").thenReset();
}

FakeServer::Expectation &FakeServer::Expectation::never()
{
    return raw("");
}

} // namespace clockwell::test

#include "net/Http2Front.h"

#include "support/Await.h"

#include <QLocalSocket>

namespace clockwell::test {

namespace {

bool accepts(const QString &path)
{
    QLocalSocket probe;
    probe.connectToServer(path);
    return probe.waitForConnected(100);
}

/// Forwards data in both directions until the signal connections between the two sockets are removed.
void join(QTcpSocket *client, QLocalSocket *server)
{
    QObject::connect(
        client, &QIODevice::readyRead, server, [=] { server->write(client->readAll()); });
    QObject::connect(
        server, &QIODevice::readyRead, client, [=] { client->write(server->readAll()); });
    QObject::connect(
        client, &QTcpSocket::disconnected, server, [=] { server->disconnectFromServer(); });
    QObject::connect(server, &QLocalSocket::disconnected, client, [=] { client->disconnectFromHost(); });
}

} // namespace

Http2Front::Http2Front(quint16 port, const QStringList &options)
    : m_proxySocket(m_directory.filePath(QStringLiteral("proxy")))
{
    m_proxy.setStandardErrorFile(m_directory.filePath(QStringLiteral("log")));
    m_proxy.start(QStringLiteral("nghttpx"),
                  QStringList{QStringLiteral("--conf=/dev/null"), QStringLiteral("--single-process"),
                              QStringLiteral("--frontend=unix:") + m_proxySocket,
                              QStringLiteral("--backend=127.0.0.1,%1").arg(port)} +
                      options + QStringList{m_certificate.keyFile(), m_certificate.certificateFile()});
    if (!m_proxy.waitForStarted() || !spinUntil([this] { return accepts(m_proxySocket); }))
        qFatal("nghttpx does not start");
    QObject::connect(&m_relay, &QTcpServer::newConnection, &m_relay, [this] { accept(); });
    if (!m_relay.listen(QHostAddress::LocalHost))
        qFatal("the relay cannot listen");
}

Http2Front::~Http2Front()
{
    m_proxy.kill();
    m_proxy.waitForFinished();
}

QUrl Http2Front::url(const QString &path) const
{
    return QUrl(QStringLiteral("https://127.0.0.1:%1%2").arg(m_relay.serverPort()).arg(path));
}

void Http2Front::accept()
{
    while (QTcpSocket *client = m_relay.nextPendingConnection()) {
        ++m_connections;
        m_clients.append(client);
        auto *server = new QLocalSocket(client);
        join(client, server);
        server->connectToServer(m_proxySocket);
    }
}

void Http2Front::stallConnections()
{
    for (const QPointer<QTcpSocket> &client : std::exchange(m_clients, {})) {
        if (!client)
            continue;
        auto *server = client->findChild<QLocalSocket *>();
        client->disconnect(server);
        server->disconnect(client);
    }
}

} // namespace clockwell::test

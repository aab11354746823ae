#pragma once

#include "net/TestCertificate.h"

#include <QPointer>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUrl>

#include <memory>

namespace clockwell::test {

/// HTTP/2 over TLS in front of a FakeServer: a real reverse proxy, reached through a relay that can stop
/// forwarding. The relay runs on the event loop of the thread that created it.
class Http2Front
{
public:
    /// `port` is the FakeServer's port; `options` are additional options of nghttpx.
    explicit Http2Front(quint16 port, const QStringList &options = {});
    Http2Front(const Http2Front &) = delete;
    Http2Front &operator=(const Http2Front &) = delete;
    ~Http2Front();

    QUrl url(const QString &path) const;
    QString certificateFile() const { return m_certificate.certificateFile(); }
    int connections() const { return m_connections; }
    /// The existing connections stay open, but no longer forward anything in either direction.
    void stallConnections();

private:
    void accept();

    const TestCertificate m_certificate;
    const QTemporaryDir m_directory;
    const QString m_proxySocket;
    QProcess m_proxy;
    QTcpServer m_relay;
    QList<QPointer<QTcpSocket>> m_clients;
    int m_connections = 0;
};

} // namespace clockwell::test

#pragma once

#include "net/TestCertificate.h"

#include <QSslServer>
#include <QSslSocket>
#include <QUrl>
#include <QtEndian>

namespace clockwell::test {

/// Implements just enough HTTP/2 to refuse every request unprocessed, after which a client may send it again.
/// Runs on the event loop of the thread that created it.
class RefusingServer final
{
public:
    enum class Refusal { Stream, Goaway };

    RefusingServer(const TestCertificate &certificate, Refusal refusal) : m_refusal(refusal)
    {
        if (!m_server.listen(QHostAddress::LocalHost))
            qFatal("RefusingServer cannot listen");
        QSslConfiguration tls = certificate.serverTls();
        tls.setAllowedNextProtocols({QSslConfiguration::ALPNProtocolHTTP2});
        m_server.setSslConfiguration(tls);
        QObject::connect(&m_server, &QTcpServer::pendingConnectionAvailable, &m_server, [this] {
            while (QTcpSocket *socket = m_server.nextPendingConnection())
                greet(socket);
        });
    }

    QUrl url() const { return QUrl(QStringLiteral("https://127.0.0.1:%1/api").arg(m_server.serverPort())); }
    /// The number of requests received over all connections.
    int requests() const { return m_requests; }

private:
    static constexpr qsizetype frameHead = 9;
    static constexpr qsizetype preface = 24;

    void greet(QTcpSocket *socket)
    {
        socket->write(frame(settings, 0, 0));
        struct Input
        {
            QByteArray bytes;
            bool begun = false;
        };
        const auto read = [this, socket, input = std::make_shared<Input>()] {
            input->bytes += socket->readAll();
            if (!input->begun && input->bytes.size() >= preface) {
                input->bytes.remove(0, preface);
                input->begun = true;
            }
            while (input->begun && takeFrame(socket, input->bytes)) {
            }
        };
        QObject::connect(socket, &QIODevice::readyRead, socket, read);
        read();
    }

    bool takeFrame(QTcpSocket *socket, QByteArray &input)
    {
        if (input.size() < frameHead)
            return false;
        const auto head = reinterpret_cast<const uchar *>(input.constData());
        const qsizetype length = qFromBigEndian<quint32>(head) >> 8;
        if (input.size() < frameHead + length)
            return false;
        const quint8 type = head[3];
        const quint8 flags = head[4];
        const quint32 stream = qFromBigEndian<quint32>(head + 5);
        input.remove(0, frameHead + length);
        if (type == settings && flags == 0)
            socket->write(frame(settings, acknowledged, 0));
        if (type == headers)
            refuse(socket, stream);
        return true;
    }

    void refuse(QTcpSocket *socket, quint32 stream)
    {
        ++m_requests;
        if (m_refusal == Refusal::Stream)
            socket->write(frame(resetStream, 0, stream, number(refusedStream)));
        else
            socket->write(frame(goaway, 0, 0, number(0) + number(0)));
    }

    static constexpr quint8 headers = 1;
    static constexpr quint8 resetStream = 3;
    static constexpr quint8 settings = 4;
    static constexpr quint8 goaway = 7;
    static constexpr quint8 acknowledged = 1;
    static constexpr quint32 refusedStream = 7;

    static QByteArray number(quint32 value)
    {
        QByteArray bytes(4, '\0');
        qToBigEndian(value, bytes.data());
        return bytes;
    }
    static QByteArray frame(quint8 type, quint8 flags, quint32 stream, const QByteArray &content = {})
    {
        return number(static_cast<quint32>(content.size())).mid(1) + static_cast<char>(type) +
               static_cast<char>(flags) + number(stream) + content;
    }

    const Refusal m_refusal;
    QSslServer m_server;
    int m_requests = 0;
};

} // namespace clockwell::test

#include "net/HttpExchange.h"

#include <QNetworkAccessManager>

namespace clockwell {

namespace {

// What Qt may hold for us before we look at it; the connection's flow control does the rest.
constexpr qint64 bufferBytes = 256 * 1024;

/// Codes that merely repeat the HTTP status: those replies are complete and readable. Of a reply that is cut
/// short, the code says so instead, whatever its status.
bool isAboutStatus(QNetworkReply::NetworkError error, int status)
{
    // Of a 307 and a 308 Qt rewinds the body even when it is told not to follow.
    if (error == QNetworkReply::ContentReSendError)
        return status >= 300;
    if (status < 400)
        return false;
    const bool content =
        error >= QNetworkReply::ContentAccessDenied && error < QNetworkReply::ProtocolUnknownError;
    return content || error >= QNetworkReply::InternalServerError ||
           error == QNetworkReply::ProtocolInvalidOperationError        // 400 and 418
           || error == QNetworkReply::ProxyAuthenticationRequiredError; // 407
}

TransportError::Kind kindOf(QNetworkReply::NetworkError error)
{
    using Kind = TransportError::Kind;
    switch (error) {
    case QNetworkReply::ConnectionRefusedError:
    case QNetworkReply::ProxyConnectionRefusedError:
    case QNetworkReply::ProxyNotFoundError:
        return Kind::CannotConnect;
    case QNetworkReply::HostNotFoundError:
        return Kind::HostNotFound;
    case QNetworkReply::TimeoutError:
    case QNetworkReply::ProxyTimeoutError:
        return Kind::TimedOut;
    case QNetworkReply::OperationCanceledError:
        return Kind::Cancelled;
    case QNetworkReply::SslHandshakeFailedError:
        return Kind::UntrustedCertificate;
    case QNetworkReply::RemoteHostClosedError:
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::ProxyConnectionClosedError:
    case QNetworkReply::UnknownNetworkError: // among others a TCP reset
    case QNetworkReply::ContentReSendError:  // closed without an answer, see OneShotBody
        return Kind::ConnectionLost;
    default:
        return Kind::Broken;
    }
}

} // namespace

HttpExchange::HttpExchange(std::unique_ptr<QNetworkAccessManager> ownManager, QNetworkReply *reply,
                           const HttpLimits &limits)
    : m_limits(limits), m_ownManager(std::move(ownManager)), m_reply(reply)
{
    reply->setReadBufferSize(bufferBytes);
    connect(reply, &QNetworkReply::metaDataChanged, this, &HttpExchange::progress);
    connect(reply, &QNetworkReply::uploadProgress, this, &HttpExchange::progress);
    connect(reply, &QIODevice::readyRead, this, &HttpExchange::collect);
    connect(reply, &QNetworkReply::finished, this, &HttpExchange::complete);
    for (QTimer *timer : {&m_idle, &m_total}) {
        timer->setSingleShot(true);
        connect(timer, &QTimer::timeout, this, [this] { end(TransportError::Kind::TimedOut); });
    }
    m_idle.start(limits.idle);
    m_total.start(limits.total);
}

HttpExchange::~HttpExchange()
{
    m_reply->disconnect(this);
    m_reply->abort();
}

HttpReply HttpExchange::takeReply()
{
    return {status(), std::move(m_body)};
}

std::optional<int> HttpExchange::status() const
{
    const QVariant value = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    return value.isValid() ? std::optional(value.toInt()) : std::nullopt;
}

void HttpExchange::progress()
{
    if (m_slot->isFinished())
        return;
    m_idle.start(m_limits.idle);
    // A length that is announced too large is refused before a byte of the body is fetched.
    if (m_reply->header(QNetworkRequest::ContentLengthHeader).toLongLong() > m_limits.replyBytes)
        tooLarge();
}

void HttpExchange::collect()
{
    progress();
    while (!m_slot->isFinished()) {
        const qint64 room = m_limits.replyBytes - m_body.size();
        const QByteArray piece = m_reply->read(std::min(bufferBytes, room + 1));
        if (piece.isEmpty())
            return;
        m_body += piece;
        if (piece.size() > room)
            tooLarge();
    }
}

void HttpExchange::complete()
{
    const QNetworkReply::NetworkError error = m_reply->error();
    if (error != QNetworkReply::NoError && !isAboutStatus(error, status().value_or(0))) {
        end(kindOf(error));
        return;
    }
    collect();
    if (isCutShort()) {
        end(TransportError::Kind::ConnectionLost);
        return;
    }
    m_idle.stop();
    m_total.stop();
    m_slot->finish();
}

/// Qt does not always notice that a connection has closed before the announced length came.
bool HttpExchange::isCutShort() const
{
    const QVariant length = m_reply->header(QNetworkRequest::ContentLengthHeader);
    const bool hasBody = status() != 204 && status() != 304;
    return hasBody && length.isValid() && !m_reply->hasRawHeader("Content-Encoding") &&
           m_body.size() < length.toLongLong();
}

void HttpExchange::end(TransportError::Kind kind)
{
    m_idle.stop();
    m_total.stop();
    m_slot->finish(std::make_exception_ptr(TransportError(kind)));
    // Aborting has to wait for the destructor, a turn of the event loop away: in the middle of the reply's
    // own signals Qt would report the error twice.
    m_reply->disconnect(this);
}

} // namespace clockwell

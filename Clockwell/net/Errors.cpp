#include "net/Errors.h"

#include <QMutex>

namespace clockwell {

const char *UserFacingError::what() const noexcept
{
    static QBasicMutex mutex;
    const QMutexLocker lock(&mutex);
    if (m_what.isNull())
        m_what = text().toUtf8();
    return m_what.constData();
}

QString TransportError::text() const
{
    switch (kind) {
    case Kind::TimedOut:
        return QStringLiteral("The request timed out.");
    case Kind::CannotConnect:
        return QStringLiteral("Could not connect to the server.");
    case Kind::HostNotFound:
        return QStringLiteral("The server could not be found.");
    case Kind::Offline:
        return QStringLiteral("The device is offline.");
    case Kind::ConnectionLost:
        return QStringLiteral("The connection to the server was lost.");
    case Kind::UntrustedCertificate:
        return QStringLiteral("The server's certificate is not trusted.");
    case Kind::ReplyTooLarge:
        return QStringLiteral("The reply from the server is too large.");
    case Kind::Cancelled:
        return QStringLiteral("The request was cancelled.");
    case Kind::Broken:
        break;
    }
    return QStringLiteral("The server sent a reply that could not be read.");
}

QString errorText(const std::exception &error)
{
    if (const auto *known = dynamic_cast<const UserFacingError *>(&error))
        return known->text();
    return QStringLiteral("Something went wrong.");
}

} // namespace clockwell

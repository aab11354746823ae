#include "attendance/PositioningLocationSource.h"

#include <QGuiApplication>
#include <QVariantMap>

#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
#include <QPermissions>
#endif
#if defined(Q_OS_LINUX) && !defined(Q_OS_ANDROID)
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#endif

namespace clockwell {

namespace {

#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0) && (defined(Q_OS_IOS) || defined(Q_OS_ANDROID))
constexpr bool servicePrompts = false;

QLocationPermission permission()
{
    QLocationPermission wanted;
    wanted.setAccuracy(QLocationPermission::Precise);
    wanted.setAvailability(QLocationPermission::WhenInUse);
    return wanted;
}

AuthorizationStatus statusOf(Qt::PermissionStatus status)
{
    switch (status) {
    case Qt::PermissionStatus::Granted:
        return AuthorizationStatus::AuthorizedWhenInUse;
    case Qt::PermissionStatus::Denied:
        return AuthorizationStatus::Denied;
    case Qt::PermissionStatus::Undetermined:
        break;
    }
    return AuthorizationStatus::NotDetermined;
}

AuthorizationStatus currentStatus()
{
    return statusOf(qApp->checkPermission(permission()));
}
#else
// The desktop's location service prompts the user itself at the first request for a position and cannot be
// queried before; the app counts as authorized until the service refuses.
constexpr bool servicePrompts = true;

AuthorizationStatus currentStatus()
{
    return AuthorizationStatus::AuthorizedWhenInUse;
}
#endif

/// Qt reports a missing GeoClue as denied access. It has to be told apart: the user cannot enable a service
/// that is not installed.
bool isServiceInstalled()
{
#if defined(Q_OS_LINUX) && !defined(Q_OS_ANDROID)
    QDBusConnectionInterface *bus = QDBusConnection::systemBus().interface();
    if (!bus)
        return false;
    const QString service = QStringLiteral("org.freedesktop.GeoClue2");
    return bus->activatableServiceNames().value().contains(service) ||
           bus->isServiceRegistered(service).value();
#else
    return true;
#endif
}

} // namespace

Fix toFix(const QGeoPositionInfo &position)
{
    const bool known = position.hasAttribute(QGeoPositionInfo::HorizontalAccuracy);
    return Fix{position.coordinate().latitude(), position.coordinate().longitude(),
               known ? position.attribute(QGeoPositionInfo::HorizontalAccuracy) : -1.0};
}

PositioningLocationSource::PositioningLocationSource(QObject *parent)
    : LocationSource(parent), m_status(currentStatus())
{
    if (auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        connect(application, &QGuiApplication::applicationStateChanged, this,
                &PositioningLocationSource::handleApplicationState);
}

void PositioningLocationSource::setDesiredAccuracy(Accuracy)
{
    // Best accuracy means all positioning methods. A source created later starts with them, too (see
    // loadPlugin()).
    if (m_source)
        m_source->setPreferredPositioningMethods(QGeoPositionInfoSource::AllPositioningMethods);
}

void PositioningLocationSource::requestWhenInUseAuthorization()
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0) && (defined(Q_OS_IOS) || defined(Q_OS_ANDROID))
    qApp->requestPermission(permission(), this,
                            [this](const QPermission &answer) { setStatus(statusOf(answer.status())); });
#else
    setStatus(currentStatus());
#endif
}

void PositioningLocationSource::requestLocation()
{
    if (loadPlugin() && isServiceInstalled())
        m_source->requestUpdate(0);
    else
        Q_EMIT failed(Failure::Other);
}

bool PositioningLocationSource::loadPlugin()
{
    if (m_source)
        return true;
    QVariantMap parameters;
    // GeoClue takes the name of the app that it shows to the user from the desktop entry.
    if (const QString entry = QGuiApplication::desktopFileName(); !entry.isEmpty())
        parameters.insert(QStringLiteral("desktopId"), entry);
    m_source = QGeoPositionInfoSource::createDefaultSource(parameters, this);
    if (!m_source)
        return false;
    setDesiredAccuracy(Accuracy::Best);
    connect(m_source, &QGeoPositionInfoSource::positionUpdated, this,
            &PositioningLocationSource::handlePosition);
    connect(m_source, &QGeoPositionInfoSource::errorOccurred, this, &PositioningLocationSource::handleError);
    return true;
}

void PositioningLocationSource::setStatus(AuthorizationStatus status)
{
    if (std::exchange(m_status, status) != status)
        Q_EMIT authorizationChanged();
}

void PositioningLocationSource::handlePosition(const QGeoPositionInfo &position)
{
    if (position.coordinate().isValid())
        Q_EMIT locationsUpdated({toFix(position)});
}

void PositioningLocationSource::handleError(QGeoPositionInfoSource::Error error)
{
    switch (error) {
    case QGeoPositionInfoSource::NoError:
    case QGeoPositionInfoSource::UpdateTimeoutError: // LocationManager has its own time limit
        return;
    case QGeoPositionInfoSource::AccessError:
        setStatus(AuthorizationStatus::Denied);
        Q_EMIT failed(Failure::Denied);
        return;
    case QGeoPositionInfoSource::ClosedError:
    case QGeoPositionInfoSource::UnknownSourceError:
        break;
    }
    Q_EMIT failed(Failure::Other);
}

void PositioningLocationSource::handleApplicationState(Qt::ApplicationState state)
{
    // The user may have changed the permission in the settings. Where the service prompts itself, the only
    // way to find out is to try again.
    if (state == Qt::ApplicationActive && (!servicePrompts || m_status == AuthorizationStatus::Denied))
        setStatus(currentStatus());
}

} // namespace clockwell

#pragma once

#include <QList>
#include <QMetaType>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace clockwell {

/// One position of the device.
struct Fix
{
    double latitude = 0;            // degrees, WGS 84
    double longitude = 0;           // degrees, WGS 84
    double horizontalAccuracy = -1; // metres; negative: unknown
    bool operator==(const Fix &) const = default;
};

/// What LocationManager needs of a platform's location service: ask for permission, ask for one position, and
/// hear the answers. Main thread only; an answer may come before the call that asked for it returns.
class LocationSource : public QObject
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    /// The numbers are the platforms' own.
    enum class AuthorizationStatus {
        NotDetermined = 0,
        Restricted = 1,
        Denied = 2,
        AuthorizedAlways = 3,
        AuthorizedWhenInUse = 4,
    };
    Q_ENUM(AuthorizationStatus)

    enum class Failure {
        Denied,
        Other,
    };
    Q_ENUM(Failure)

    enum class Accuracy {
        Best,
    };
    Q_ENUM(Accuracy)

    using QObject::QObject;

    virtual AuthorizationStatus authorizationStatus() const = 0;
    virtual void setDesiredAccuracy(Accuracy accuracy) = 0;
    /// Lets the platform put its question; the answer is authorizationChanged(). Nothing happens once it is
    /// answered.
    virtual void requestWhenInUseAuthorization() = 0;
    /// Asks for one position; the answer is locationsUpdated() or failed(), or none at all.
    virtual void requestLocation() = 0;

Q_SIGNALS:
    void authorizationChanged();
    /// Oldest first.
    void locationsUpdated(const QList<clockwell::Fix> &fixes);
    void failed(clockwell::LocationSource::Failure failure);
};

using AuthorizationStatus = LocationSource::AuthorizationStatus;

/// The location service of this device. A build with the simulation in it takes the simulated one when the
/// environment variable CLOCKWELL_SIMULATED_LOCATION is set and not empty; a text there that it does not
/// understand is reported on stderr and gives a service that only fails, never the real one.
std::unique_ptr<LocationSource> makeLocationSource();

} // namespace clockwell

Q_DECLARE_METATYPE(clockwell::Fix)

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

/// A platform's location service as LocationManager uses it: requests permission and single positions, and
/// signals the results. Main thread only. A result may be signalled before the request returns.
class LocationSource : public QObject
{
    Q_OBJECT
    QML_ANONYMOUS

public:
    /// With the numeric values of the platforms.
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
    /// Makes the platform show its permission prompt, which results in authorizationChanged(). Does nothing
    /// once the prompt has been answered.
    virtual void requestWhenInUseAuthorization() = 0;
    /// Requests one position, which results in locationsUpdated(), failed() or no signal at all.
    virtual void requestLocation() = 0;

Q_SIGNALS:
    void authorizationChanged();
    /// Oldest first.
    void locationsUpdated(const QList<clockwell::Fix> &fixes);
    void failed(clockwell::LocationSource::Failure failure);
};

using AuthorizationStatus = LocationSource::AuthorizationStatus;

/// The location service of this device. A build that includes the simulation uses the simulated service when
/// the environment variable CLOCKWELL_SIMULATED_LOCATION is set and not empty. An invalid value is reported
/// on stderr and results in a service that always fails, never in the real one.
std::unique_ptr<LocationSource> makeLocationSource();

} // namespace clockwell

Q_DECLARE_METATYPE(clockwell::Fix)

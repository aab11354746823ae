#pragma once

#include "attendance/LocationSource.h"

#include <QGeoPositionInfo>
#include <QGeoPositionInfoSource>

namespace clockwell {

/// The platform's location service through Qt Positioning: GeoClue on Linux, the system's own elsewhere.
///
/// The plug-in is loaded with the first request, not before: starting the app pays nothing for it.
class PositioningLocationSource final : public LocationSource
{
    Q_OBJECT

public:
    explicit PositioningLocationSource(QObject *parent = nullptr);

    AuthorizationStatus authorizationStatus() const override { return m_status; }
    void setDesiredAccuracy(Accuracy accuracy) override;
    void requestWhenInUseAuthorization() override;
    void requestLocation() override;

    bool isPluginLoaded() const { return m_source != nullptr; }

private:
    bool load();
    void setStatus(AuthorizationStatus status);
    void takePosition(const QGeoPositionInfo &position);
    void takeError(QGeoPositionInfoSource::Error error);
    void reconsider(Qt::ApplicationState state);

    AuthorizationStatus m_status;
    QGeoPositionInfoSource *m_source = nullptr; // a child
};

/// A position in the app's own terms; an accuracy that the receiver does not state is -1.
Fix toFix(const QGeoPositionInfo &position);

} // namespace clockwell

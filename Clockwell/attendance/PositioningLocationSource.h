#pragma once

#include "attendance/LocationSource.h"

#include <QGeoPositionInfo>
#include <QGeoPositionInfoSource>

namespace clockwell {

/// The platform's location service through Qt Positioning: GeoClue on Linux, the system's own elsewhere.
///
/// The plug-in is loaded at the first request, so that it does not slow down the start of the app.
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
    bool loadPlugin();
    void setStatus(AuthorizationStatus status);
    void handlePosition(const QGeoPositionInfo &position);
    void handleError(QGeoPositionInfoSource::Error error);
    void handleApplicationState(Qt::ApplicationState state);

    AuthorizationStatus m_status;
    QGeoPositionInfoSource *m_source = nullptr; // a child
};

/// Converts a position; an unknown accuracy becomes -1.
Fix toFix(const QGeoPositionInfo &position);

} // namespace clockwell

#pragma once

#include "attendance/LocationSource.h"

#include <QGeoPositionInfo>
#include <QString>
#include <QTimer>

#include <memory>
#include <optional>

class QIODevice;
class QNmeaPositionInfoSource;

namespace clockwell {

/// Positions from an NMEA 0183 receiver: a live one, or a recording that is played in real time from the
/// first request on. Part of the simulation and compiled only with it.
class NmeaLocationSource final : public LocationSource
{
    Q_OBJECT

public:
    /// `where` is the path of a recording or `socket:HOST:PORT` of a live receiver.
    explicit NmeaLocationSource(const QString &where, QObject *parent = nullptr);
    ~NmeaLocationSource() override;

    /// False when the recording cannot be read or the address is invalid; every request then fails.
    bool isUsable() const { return m_device != nullptr; }

    AuthorizationStatus authorizationStatus() const override
    {
        return AuthorizationStatus::AuthorizedWhenInUse;
    }
    void setDesiredAccuracy(Accuracy) override {}
    void requestWhenInUseAuthorization() override {}
    /// Delivers the next position, or the last one of a recording that has ended.
    void requestLocation() override;

private:
    void handlePosition(const QGeoPositionInfo &position);
    void openFile(const QString &path);
    void answerRequest();
    void openSocket(const QString &address);

    std::unique_ptr<QIODevice> m_device; // outlives m_receiver, which reads it
    std::unique_ptr<QNmeaPositionInfoSource> m_receiver;
    std::optional<Fix> m_last;
    bool m_requestPending = false;
    QTimer m_gapTimer; // detects the end of a recording
};

} // namespace clockwell

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

/// Positions from a receiver that speaks NMEA 0183: a recording, played at its own pace from the first
/// request on, or a live one. Part of the simulation, so compiled in only with it.
class NmeaLocationSource final : public LocationSource
{
    Q_OBJECT

public:
    /// `where` is the path of a recording or `socket:HOST:PORT` of a live receiver.
    explicit NmeaLocationSource(const QString &where, QObject *parent = nullptr);
    ~NmeaLocationSource() override;

    /// False when the recording cannot be read or the address is none; every request then fails.
    bool isUsable() const { return m_device != nullptr; }

    AuthorizationStatus authorizationStatus() const override
    {
        return AuthorizationStatus::AuthorizedWhenInUse;
    }
    void setDesiredAccuracy(Accuracy) override {}
    void requestWhenInUseAuthorization() override {}
    /// Answered with the next position, or, of a recording that has none any more, with its last one.
    void requestLocation() override;

private:
    void takePosition(const QGeoPositionInfo &position);
    void openFile(const QString &path);
    void answer();
    void openSocket(const QString &address);

    std::unique_ptr<QIODevice> m_device; // outlives m_receiver, which reads it
    std::unique_ptr<QNmeaPositionInfoSource> m_receiver;
    std::optional<Fix> m_last;
    bool m_wanted = false;
    QTimer m_silence; // of a recording: how long to wait for its next position
};

} // namespace clockwell

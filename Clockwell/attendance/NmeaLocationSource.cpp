#include "attendance/NmeaLocationSource.h"

#include "attendance/PositioningLocationSource.h"

#include <QFile>
#include <QNmeaPositionInfoSource>
#include <QTcpSocket>

namespace clockwell {

namespace {

// NMEA reports a dilution of precision, not metres. This is the usual range error of a civilian receiver in
// metres, by which it is multiplied.
constexpr double rangeError = 5.0;
// Receivers report one position a second.
constexpr std::chrono::milliseconds longestGap{1500};

} // namespace

NmeaLocationSource::NmeaLocationSource(const QString &where, QObject *parent) : LocationSource(parent)
{
    const QString socket = QStringLiteral("socket:");
    if (where.startsWith(socket))
        openSocket(where.mid(socket.size()));
    else
        openFile(where);
    if (!m_device)
        return;
    m_gapTimer.setSingleShot(true);
    m_gapTimer.setInterval(longestGap);
    connect(&m_gapTimer, &QTimer::timeout, this, &NmeaLocationSource::answerRequest);
    m_receiver->setUserEquivalentRangeError(rangeError);
    m_receiver->setDevice(m_device.get());
    connect(m_receiver.get(), &QGeoPositionInfoSource::positionUpdated, this,
            &NmeaLocationSource::handlePosition);
}

NmeaLocationSource::~NmeaLocationSource() = default;

void NmeaLocationSource::openFile(const QString &path)
{
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::ReadOnly))
        return;
    m_device = std::move(file);
    m_receiver = std::make_unique<QNmeaPositionInfoSource>(QNmeaPositionInfoSource::SimulationMode);
}

void NmeaLocationSource::openSocket(const QString &address)
{
    const qsizetype colon = address.lastIndexOf(QLatin1Char(':'));
    const quint16 port = address.mid(colon + 1).toUShort();
    if (colon < 1 || port == 0)
        return;
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(address.left(colon), port, QIODevice::ReadOnly);
    m_device = std::move(socket);
    m_receiver = std::make_unique<QNmeaPositionInfoSource>(QNmeaPositionInfoSource::RealTimeMode);
}

void NmeaLocationSource::requestLocation()
{
    if (!m_device) {
        Q_EMIT failed(Failure::Other);
        return;
    }
    m_requestPending = true;
    m_receiver->startUpdates();
    if (m_last && !m_device->isSequential())
        m_gapTimer.start();
}

void NmeaLocationSource::answerRequest()
{
    if (std::exchange(m_requestPending, false))
        Q_EMIT locationsUpdated({*m_last});
}

void NmeaLocationSource::handlePosition(const QGeoPositionInfo &position)
{
    m_last = toFix(position);
    m_gapTimer.stop();
    answerRequest();
}

} // namespace clockwell

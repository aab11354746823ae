#include "attendance/NmeaLocationSource.h"

#include "attendance/PositioningLocationSource.h"

#include <QFile>
#include <QNmeaPositionInfoSource>
#include <QTcpSocket>

namespace clockwell {

namespace {

// NMEA states a dilution of precision, not metres; this is the usual range error of a civilian receiver, in
// metres.
constexpr double rangeError = 5.0;
// Receivers state one position a second.
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
    m_silence.setSingleShot(true);
    m_silence.setInterval(longestGap);
    connect(&m_silence, &QTimer::timeout, this, &NmeaLocationSource::answer);
    m_receiver->setUserEquivalentRangeError(rangeError);
    m_receiver->setDevice(m_device.get());
    connect(m_receiver.get(), &QGeoPositionInfoSource::positionUpdated, this,
            &NmeaLocationSource::takePosition);
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
    m_wanted = true;
    m_receiver->startUpdates();
    if (m_last && !m_device->isSequential())
        m_silence.start();
}

void NmeaLocationSource::answer()
{
    if (std::exchange(m_wanted, false))
        Q_EMIT locationsUpdated({*m_last});
}

void NmeaLocationSource::takePosition(const QGeoPositionInfo &position)
{
    m_last = toFix(position);
    m_silence.stop();
    answer();
}

} // namespace clockwell

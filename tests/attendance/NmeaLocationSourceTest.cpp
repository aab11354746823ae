#include "attendance/NmeaLocationSource.h"

#include "attendance/LocationManager.h"
#include "support/Await.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryFile>
#include <QTimer>

#include <gtest/gtest.h>

namespace clockwell {
namespace {

using test::await;
using test::awaitError;

QByteArray sentence(const QByteArray &content)
{
    int sum = 0;
    for (const char byte : content)
        sum ^= static_cast<unsigned char>(byte);
    return "$" + content + "*" + QByteArray::number(sum, 16).toUpper().rightJustified(2, '0') + "\r\n";
}

/// 12.9715 N, 77.5945 E, dilution 1.2, and a second position a second later.
QByteArray recording()
{
    return sentence("GPRMC,091530.00,A,1258.2900,N,07735.6700,E,0.0,0.0,210326,,,A") +
           sentence("GPGGA,091530.00,1258.2900,N,07735.6700,E,1,08,1.2,900.0,M,0.0,M,,") +
           sentence("GPRMC,091531.00,A,1258.3500,N,07735.6700,E,0.0,0.0,210326,,,A") +
           sentence("GPGGA,091531.00,1258.3500,N,07735.6700,E,1,08,1.2,900.0,M,0.0,M,,");
}

class NmeaLocationSourceTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(file.open());
        file.write(recording());
        file.close();
    }
    void TearDown() override { qunsetenv("CLOCKWELL_SIMULATED_LOCATION"); }
    static std::unique_ptr<LocationManager> managerFor(const QByteArray &where)
    {
        qputenv("CLOCKWELL_SIMULATED_LOCATION", "nmea:" + where);
        return std::make_unique<LocationManager>(makeLocationSource());
    }

    QTemporaryFile file;
};

TEST_F(NmeaLocationSourceTest, PlaysARecording)
{
    const auto manager = managerFor(file.fileName().toLocal8Bit());
    EXPECT_EQ(manager->authorization(), AuthorizationStatus::AuthorizedWhenInUse);
    const Fix fix = await(manager->currentFix(10));
    EXPECT_NEAR(fix.latitude, 12.9715, 1e-6);
    EXPECT_NEAR(fix.longitude, 77.5945, 1e-6);
}

TEST_F(NmeaLocationSourceTest, EndedRecordingDeliversItsLastPosition)
{
    const auto manager = managerFor(file.fileName().toLocal8Bit());
    Fix fix;
    for (int i = 0; i < 3; ++i)
        fix = await(manager->currentFix(10));
    EXPECT_NEAR(fix.latitude, 12.9725, 1e-6);
}

TEST_F(NmeaLocationSourceTest, DeliversPositionsOfALiveReceiver)
{
    QTcpServer receiver;
    ASSERT_TRUE(receiver.listen(QHostAddress::LocalHost));
    QObject::connect(&receiver, &QTcpServer::newConnection, &receiver, [&receiver] {
        QTcpSocket *socket = receiver.nextPendingConnection();
        auto *ticks = new QTimer(socket);
        QObject::connect(ticks, &QTimer::timeout, socket, [socket] { socket->write(recording()); });
        ticks->start(100);
    });
    const auto manager = managerFor("socket:127.0.0.1:" + QByteArray::number(receiver.serverPort()));
    const Fix fix = await(manager->currentFix(10));
    EXPECT_NEAR(fix.latitude, 12.972, 1e-3);
    EXPECT_NEAR(fix.longitude, 77.5945, 1e-6);
}

TEST_F(NmeaLocationSourceTest, InvalidSourceIsReportedAndFails)
{
    for (const QByteArray where :
         {"/nonexistent/track.nmea", "socket:", "socket:127.0.0.1", "socket:127.0.0.1:0", ""}) {
        ::testing::internal::CaptureStderr();
        const auto manager = managerFor(where);
        EXPECT_NE(::testing::internal::GetCapturedStderr().find("expected"), std::string::npos)
            << where.toStdString();
        EXPECT_EQ(awaitError<LocationError>(manager->currentFix(5)).kind, LocationError::Kind::Unavailable);
    }
}

} // namespace
} // namespace clockwell

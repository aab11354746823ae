#include "FakePortal.h"

#include <QDBusMessage>
#include <QDBusMetaType>

#include <gtest/gtest.h>

namespace clockwell::test {

namespace {

constexpr int startLimit = 40'000; // ms
const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");

} // namespace

PrivateBus::PrivateBus()
{
    m_daemon.start(QStringLiteral(DBUS_DAEMON), {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                                 QStringLiteral("--print-address")});
    EXPECT_TRUE(m_daemon.waitForReadyRead(startLimit)) << m_daemon.errorString().toStdString();
    m_address = QString::fromLocal8Bit(m_daemon.readLine()).trimmed();
}

PrivateBus::~PrivateBus()
{
    for (const QString &name : std::as_const(m_connections))
        QDBusConnection::disconnectFromBus(name);
    m_daemon.terminate();
    EXPECT_TRUE(m_daemon.waitForFinished(startLimit));
}

QDBusConnection PrivateBus::connect()
{
    static int count = 0;
    m_connections.append(QStringLiteral("test %1").arg(++count));
    return QDBusConnection::connectToBus(m_address, m_connections.constLast());
}

FakePortal::FakePortal(const QDBusConnection &bus) : m_bus(bus)
{
    qDBusRegisterMetaType<Groups>();
    qRegisterMetaType<QDBusVariant>(); // or else, in a new process, the signal with one would not go out
    EXPECT_TRUE(m_bus.registerObject(path, this,
                                     QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals));
    EXPECT_TRUE(m_bus.registerService(service));
}

FakePortal::~FakePortal()
{
    m_bus.unregisterService(service);
    m_bus.unregisterObject(path);
}

void FakePortal::set(const QString &group, const QString &key, const QVariant &value)
{
    m_groups[group][key] = value;
}

void FakePortal::change(const QString &group, const QString &key, const QVariant &value)
{
    set(group, key, value);
    Q_EMIT SettingChanged(group, key, QDBusVariant(value));
}

FakePortal::Groups FakePortal::ReadAll(const QStringList &groups)
{
    askedGroups = groups;
    if (refuses)
        sendErrorReply(QDBusError::AccessDenied, QStringLiteral("No"));
    else if (silent)
        setDelayedReply(true);
    return m_groups;
}

} // namespace clockwell::test

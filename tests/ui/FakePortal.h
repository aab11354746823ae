#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QProcess>
#include <QVariantMap>

namespace clockwell::test {

/// A message bus of the test's own, in a process that ends with this object.
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    /// A new connection to it, closed when the bus goes.
    QDBusConnection connect();

private:
    QProcess m_daemon;
    QString m_address;
    QStringList m_connections;
};

/// The settings portal of a desktop: what it answers and announces is what the test has put in.
class FakePortal : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    using Groups = QMap<QString, QVariantMap>;

    explicit FakePortal(const QDBusConnection &bus);
    ~FakePortal() override;

    void set(const QString &group, const QString &key, const QVariant &value);
    /// As set(), and announces it.
    void change(const QString &group, const QString &key, const QVariant &value);
    QStringList askedGroups;
    bool refuses = false;
    bool silent = false;

public Q_SLOTS:
    QMap<QString, QVariantMap> ReadAll(const QStringList &groups);

Q_SIGNALS:
    void SettingChanged(const QString &group, const QString &key, const QDBusVariant &value);

private:
    QDBusConnection m_bus;
    Groups m_groups;
};

} // namespace clockwell::test

Q_DECLARE_METATYPE(clockwell::test::FakePortal::Groups)

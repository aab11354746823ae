#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QSet>
#include <QVariantMap>

class QDBusPendingCallWatcher;
class QDBusVariant;

namespace clockwell {

class Theme;

/// Carries the desktop's text size and its wish for reduced motion into the Theme: on Linux from the settings
/// portal (org.freedesktop.portal.Settings), and again whenever they change. Where there is no portal the
/// Theme keeps its defaults. Main thread; no call waits for the portal's answer.
class DesktopPreferences : public QObject
{
    Q_OBJECT

public:
    /// The theme has to outlive this object.
    explicit DesktopPreferences(Theme &theme, QObject *parent = nullptr);

    /// Asks for the settings. Not done by the constructor, so that the first frame need not wait for a D-Bus
    /// connection: to be called when that frame has been shown.
    void start(const QDBusConnection &bus = QDBusConnection::sessionBus());

private Q_SLOTS:
    void takeAll(QDBusPendingCallWatcher *call);
    void takeChange(const QString &group, const QString &key, const QDBusVariant &value);

private:
    Theme &m_theme;
    /// The keys of the settings that ask for reduced motion now: one is enough.
    QSet<QString> m_reducing;
};

} // namespace clockwell

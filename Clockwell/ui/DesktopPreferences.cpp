#include "DesktopPreferences.h"

#include "Theme.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>

#include <chrono>
#include <optional>

namespace clockwell {

namespace {

using namespace std::chrono_literals;

using Groups = QMap<QString, QVariantMap>;

constexpr std::chrono::milliseconds portalTimeout = 5s;
const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto interface = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearance = QStringLiteral("org.freedesktop.appearance");
const auto gnome = QStringLiteral("org.gnome.desktop.interface");
const auto kde = QStringLiteral("org.kde.kdeglobals.KDE");

/// Whether a setting asks for reduced motion; nothing for another one and for a value of another type.
std::optional<bool> reducesMotion(const QString &group, const QString &key, const QVariant &value)
{
    if (group == appearance && key == u"reduced-motion" && value.typeId() == QMetaType::UInt)
        return value.toUInt() == 1; // every other number: no preference
    if (group == gnome && key == u"enable-animations" && value.typeId() == QMetaType::Bool)
        return !value.toBool();
    bool isNumber = false;
    const double factor = value.toDouble(&isNumber); // on every animation's duration, written as text
    if (group == kde && key == u"AnimationDurationFactor" && isNumber)
        return qFuzzyIsNull(factor);
    return std::nullopt;
}

} // namespace

DesktopPreferences::DesktopPreferences(Theme &theme, QObject *parent) : QObject(parent), m_theme(theme) {}

void DesktopPreferences::start(const QDBusConnection &bus)
{
    if (!bus.isConnected())
        return;
    QDBusConnection(bus).connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                                 SLOT(takeChange(QString, QString, QDBusVariant)));
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    call.setArguments({QStringList{appearance, gnome, kde}});
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, portalTimeout.count()), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &DesktopPreferences::takeAll);
}

void DesktopPreferences::takeAll(QDBusPendingCallWatcher *call)
{
    call->deleteLater();
    const QDBusMessage reply = call->reply();
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QStringLiteral("a{sa{sv}}"))
        return;
    const auto groups = qdbus_cast<Groups>(reply.arguments().constFirst());
    for (auto group = groups.begin(); group != groups.end(); ++group)
        for (auto value = group->begin(); value != group->end(); ++value)
            takeChange(group.key(), value.key(), QDBusVariant(value.value()));
}

void DesktopPreferences::takeChange(const QString &group, const QString &key, const QDBusVariant &value)
{
    const QVariant setting = value.variant();
    bool isNumber = false;
    const double number = setting.toDouble(&isNumber);
    if (group == gnome && key == u"text-scaling-factor" && isNumber)
        m_theme.setTextScale(number);
    const std::optional<bool> reduces = reducesMotion(group, key, setting);
    if (!reduces)
        return;
    if (*reduces)
        m_reducing.insert(key);
    else
        m_reducing.remove(key);
    m_theme.setReducedMotion(!m_reducing.isEmpty());
}

} // namespace clockwell

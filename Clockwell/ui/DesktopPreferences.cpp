#include "DesktopPreferences.h"

#include "Theme.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>

#include <array>
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

bool isTextScale(const QString &group, const QString &key)
{
    return group == u"org.gnome.desktop.interface" && key == u"text-scaling-factor";
}

/// A setting that can ask for reduced motion, and what of its values does; none for a value of another type.
struct MotionSetting
{
    QStringView group;
    QStringView key;
    std::optional<bool> (*reduces)(const QVariant &value);
};

std::optional<bool> noAnimations(const QVariant &value)
{
    return value.typeId() == QMetaType::Bool ? std::optional(!value.toBool()) : std::nullopt;
}

// A factor on every animation's duration, written as text.
std::optional<bool> noDuration(const QVariant &value)
{
    bool isNumber = false;
    const double factor = value.toDouble(&isNumber);
    return isNumber ? std::optional(qFuzzyIsNull(factor)) : std::nullopt;
}

// 1: reduced motion is preferred; every other number: no preference.
std::optional<bool> preferred(const QVariant &value)
{
    return value.typeId() == QMetaType::UInt ? std::optional(value.toUInt() == 1) : std::nullopt;
}

constexpr auto motionSettings = std::to_array<MotionSetting>({
    {u"org.freedesktop.appearance", u"reduced-motion", preferred},
    {u"org.gnome.desktop.interface", u"enable-animations", noAnimations},
    {u"org.kde.kdeglobals.KDE", u"AnimationDurationFactor", noDuration},
});

} // namespace

DesktopPreferences::DesktopPreferences(Theme &theme, QObject *parent) : QObject(parent), m_theme(theme) {}

void DesktopPreferences::start(const QDBusConnection &bus)
{
    if (!bus.isConnected())
        return;
    QDBusConnection(bus).connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                                 SLOT(takeChange(QString, QString, QDBusVariant)));
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    QStringList groups;
    for (const MotionSetting &setting : motionSettings)
        groups.append(setting.group.toString());
    call.setArguments({groups});
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
            apply(group.key(), value.key(), value.value());
}

void DesktopPreferences::takeChange(const QString &group, const QString &key, const QDBusVariant &value)
{
    apply(group, key, value.variant());
}

void DesktopPreferences::apply(const QString &group, const QString &key, const QVariant &value)
{
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (isTextScale(group, key) && isNumber) {
        m_theme.setTextScale(number);
        return;
    }
    for (const MotionSetting &setting : motionSettings) {
        const auto reduces =
            setting.group == group && setting.key == key ? setting.reduces(value) : std::nullopt;
        if (reduces) {
            m_reducing.removeAll(key);
            m_reducing.append(*reduces ? QStringList(key) : QStringList());
            m_theme.setReducedMotion(!m_reducing.isEmpty());
        }
    }
}

} // namespace clockwell

#include "DesktopPreferences.h"

#include "Theme.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingReply>

#include <algorithm>
#include <array>
#include <chrono>

namespace clockwell {

namespace {

using namespace std::chrono_literals;

using Groups = QMap<QString, QVariantMap>;

constexpr std::chrono::milliseconds portalTimeout = 5s;
const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto interface = QStringLiteral("org.freedesktop.portal.Settings");

struct Setting
{
    QStringView group;
    QStringView key;
    void (*apply)(Theme &theme, const QVariant &value);
};

void applyTextScale(Theme &theme, const QVariant &value)
{
    bool isNumber = false;
    const double scale = value.toDouble(&isNumber);
    if (isNumber) {
        theme.setTextScale(scale);
    }
}

void applyAnimations(Theme &theme, const QVariant &value)
{
    if (value.typeId() == QMetaType::Bool) {
        theme.setReducedMotion(!value.toBool());
    }
}

// A factor on every animation's duration, written as text.
void applyDurationFactor(Theme &theme, const QVariant &value)
{
    bool isNumber = false;
    const double factor = value.toDouble(&isNumber);
    if (isNumber) {
        theme.setReducedMotion(qFuzzyIsNull(factor));
    }
}

// 1: reduced motion is preferred; every other number: no preference.
void applyReducedMotion(Theme &theme, const QVariant &value)
{
    if (value.typeId() == QMetaType::UInt) {
        theme.setReducedMotion(value.toUInt() == 1);
    }
}

constexpr auto settings = std::to_array<Setting>({
    {u"org.gnome.desktop.interface", u"text-scaling-factor", applyTextScale},
    {u"org.gnome.desktop.interface", u"enable-animations", applyAnimations},
    {u"org.kde.kdeglobals.KDE", u"AnimationDurationFactor", applyDurationFactor},
    {u"org.freedesktop.appearance", u"reduced-motion", applyReducedMotion},
});

} // namespace

DesktopPreferences::DesktopPreferences(Theme &theme, QObject *parent) : QObject(parent), m_theme(theme) {}

void DesktopPreferences::start(const QDBusConnection &bus)
{
    if (!bus.isConnected()) {
        return;
    }
    QDBusConnection(bus).connect(service, path, interface, QStringLiteral("SettingChanged"), this,
                                 SLOT(takeChange(QString, QString, QDBusVariant)));
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ReadAll"));
    QStringList groups;
    for (const Setting &setting : settings) {
        groups.append(setting.group.toString());
    }
    groups.removeDuplicates();
    call.setArguments({groups});
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, portalTimeout.count()), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, &DesktopPreferences::takeAll);
}

void DesktopPreferences::takeAll(QDBusPendingCallWatcher *call)
{
    call->deleteLater();
    const QDBusMessage reply = call->reply();
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QStringLiteral("a{sa{sv}}")) {
        return;
    }
    const auto groups = qdbus_cast<Groups>(reply.arguments().constFirst());
    for (auto group = groups.begin(); group != groups.end(); ++group) {
        for (auto value = group->begin(); value != group->end(); ++value) {
            apply(group.key(), value.key(), value.value());
        }
    }
}

void DesktopPreferences::takeChange(const QString &group, const QString &key, const QDBusVariant &value)
{
    apply(group, key, value.variant());
}

void DesktopPreferences::apply(const QString &group, const QString &key, const QVariant &value)
{
    const auto setting = std::ranges::find_if(
        settings, [&](const Setting &known) { return known.group == group && known.key == key; });
    if (setting != settings.end()) {
        setting->apply(m_theme, value);
    }
}

} // namespace clockwell

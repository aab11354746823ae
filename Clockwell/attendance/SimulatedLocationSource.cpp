#include "attendance/SimulatedLocationSource.h"

#include <cmath>

namespace clockwell {

namespace {

std::optional<Fix> parseFix(const QByteArray &text)
{
    const QList<QByteArray> pieces = text.split(',');
    if (pieces.size() != 3)
        return {};
    double numbers[3];
    for (int i = 0; i < 3; ++i) {
        bool ok = false;
        numbers[i] = pieces.at(i).toDouble(&ok);
        if (!ok || !std::isfinite(numbers[i]))
            return {};
    }
    if (std::abs(numbers[0]) > 90 || std::abs(numbers[1]) > 180)
        return {};
    return Fix{numbers[0], numbers[1], numbers[2]};
}

} // namespace

std::optional<SimulatedLocationSource::Script> SimulatedLocationSource::parse(const QByteArray &text)
{
    using enum AuthorizationStatus;
    if (text == "denied")
        return Script{.status = Denied};
    if (text == "restricted")
        return Script{.status = Restricted};
    if (text == "silent")
        return Script{};
    if (text == "failing")
        return Script{.fails = true};
    if (text == "ask-deny")
        return Script{.status = NotDetermined, .answer = Denied};
    const QByteArray asking = "ask-grant:";
    const bool asks = text.startsWith(asking);
    const std::optional<Fix> fix = parseFix(asks ? text.mid(asking.size()) : text);
    if (!fix)
        return {};
    return asks ? Script{.status = NotDetermined, .answer = AuthorizedWhenInUse, .fix = fix}
                : Script{.fix = fix};
}

SimulatedLocationSource::SimulatedLocationSource(Script script, QObject *parent)
    : LocationSource(parent), m_script(script)
{
    m_permissionTimer.setSingleShot(true);
    m_permissionTimer.setInterval(answerDelay);
    connect(&m_permissionTimer, &QTimer::timeout, this, &SimulatedLocationSource::answerPermission);
    m_locationTimer.setSingleShot(true);
    m_locationTimer.setInterval(fixDelay);
    connect(&m_locationTimer, &QTimer::timeout, this, &SimulatedLocationSource::answerLocation);
}

void SimulatedLocationSource::requestWhenInUseAuthorization()
{
    if (m_script.status == AuthorizationStatus::NotDetermined && !m_permissionTimer.isActive())
        m_permissionTimer.start();
}

void SimulatedLocationSource::requestLocation()
{
    if (m_script.fix || m_script.fails)
        m_locationTimer.start();
}

void SimulatedLocationSource::answerPermission()
{
    m_script.status = m_script.answer;
    Q_EMIT authorizationChanged();
}

void SimulatedLocationSource::answerLocation()
{
    if (m_script.fix)
        Q_EMIT locationsUpdated({*m_script.fix});
    else
        Q_EMIT failed(Failure::Other);
}

} // namespace clockwell

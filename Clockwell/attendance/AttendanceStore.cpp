#include "attendance/AttendanceStore.h"

#include "attendance/LocationManager.h"
#include "attendance/PunchBody.h"
#include "attendance/PunchText.h"
#include "net/APIClient.h"
#include "net/DeviceFacts.h"
#include "net/Liveness.h"

namespace clockwell {

namespace {

const QString get = QStringLiteral("GET");
const QString post = QStringLiteral("POST");

/// Throws Abandoned when the manager has been destroyed, as when it is destroyed while it is awaited.
QCoro::Task<Fix> fixFrom(QPointer<LocationManager> location)
{
    if (!location)
        throw Abandoned{};
    co_return co_await location->currentFix(AttendanceStore::fixTimeout);
}

/// A punch always ends with a banner: when another request replaces its request for a position, it fails as
/// if the position were unavailable.
QCoro::Task<Fix> fixForPunch(QPointer<LocationManager> location)
{
    try {
        co_return co_await fixFrom(location);
    } catch (const Abandoned &) {
    }
    throw LocationError(LocationError::Kind::Unavailable);
}

/// Lets several coroutines await the same position.
QCoro::Task<Fix> awaitShared(std::shared_ptr<QCoro::Task<Fix>> fix)
{
    co_return co_await *fix;
}

QMap<QString, QString> positionQuery(const Fix &fix)
{
    return {{QStringLiteral("lat"), shortestDecimal(fix.latitude)},
            {QStringLiteral("lng"), shortestDecimal(fix.longitude)}};
}

QMap<QString, QString> monthQuery(const QString &month)
{
    return {{QStringLiteral("month"), month}};
}

/// Returns whether the count changed from zero or to zero.
bool updateCount(int &count, bool begins)
{
    count += begins ? 1 : -1;
    return count == (begins ? 1 : 0);
}

} // namespace

AttendanceStore::AttendanceStore(APIClient &api, QObject *parent)
    : AttendanceStore(
          api, [] { return currentDeviceId(); }, parent)
{}

AttendanceStore::AttendanceStore(APIClient &api, std::function<QString()> deviceId, QObject *parent)
    : QObject(parent), m_api(api), m_deviceId(std::move(deviceId))
{}

void AttendanceStore::setBanner(std::optional<Banner> banner)
{
    m_banner = std::move(banner);
    Q_EMIT bannerChanged();
}

QCoro::Task<> AttendanceStore::loadToday()
{
    const BusyFlag busy(this, &AttendanceStore::countLoadingToday);
    try {
        m_today =
            co_await whileAlive(this, m_api.request<std::optional<TodayResponse>>(
                                          QStringLiteral("attendance/today"), get, {}, std::nullopt, true));
        Q_EMIT todayChanged();
    } catch (const std::exception &error) {
        showError(error);
    }
}

QCoro::Task<> AttendanceStore::checkDistance(QPointer<LocationManager> location)
{
    const BusyFlag busy(this, &AttendanceStore::countCheckingDistance);
    try {
        const Fix fix = co_await whileAlive(this, fixForCheck(location));
        m_live = co_await whileAlive(
            this, m_api.request<std::optional<DistanceResponse>>(QStringLiteral("attendance/distance"), get,
                                                                 positionQuery(fix), std::nullopt, true));
        Q_EMIT liveChanged();
    } catch (const std::exception &error) {
        showError(error);
    }
}

QCoro::Task<> AttendanceStore::punch(QPointer<LocationManager> location)
{
    const BusyFlag busy(this, &AttendanceStore::countPunching);
    try {
        co_await whileAlive(this, sendPunch(location));
    } catch (const std::exception &error) {
        showError(error);
        co_return;
    }
    co_await whileAlive(this, loadToday());
    co_await whileAlive(this, checkDistance(location));
}

QCoro::Task<Fix> AttendanceStore::fixForCheck(QPointer<LocationManager> location)
{
    if (!m_punchFix || m_punchFix->isReady())
        co_return co_await fixFrom(location);
    try {
        co_return co_await awaitShared(m_punchFix);
    } catch (...) {
    }
    throw Abandoned{}; // the punch's banner reports the error
}

QCoro::Task<> AttendanceStore::sendPunch(QPointer<LocationManager> location)
{
    m_punchFix = std::make_shared<QCoro::Task<Fix>>(fixForPunch(location));
    const Fix fix = co_await whileAlive(this, awaitShared(m_punchFix));
    const auto answer = co_await whileAlive(
        this, m_api.request<PunchResponse, PunchBody>(QStringLiteral("attendance/punch"), post, {},
                                                      punchBody(fix, m_deviceId()), true));
    setBanner(Banner{.text = punchText(answer), .kind = Banner::Kind::Success});
}

QCoro::Task<> AttendanceStore::loadHistory()
{
    try {
        m_history =
            co_await whileAlive(this, m_api.request<QList<AttendanceRecord>>(QStringLiteral("attendance/me"),
                                                                             get, {}, std::nullopt, true));
        Q_EMIT historyChanged();
    } catch (const std::exception &) {
        // The list keeps the days that it shows.
    }
}

QCoro::Task<> AttendanceStore::loadSummary(QString month)
{
    try {
        m_summary = co_await whileAlive(
            this, m_api.request<std::optional<MonthlySummary>>(QStringLiteral("attendance/me/summary"), get,
                                                               monthQuery(month), std::nullopt, true));
        Q_EMIT summaryChanged();
    } catch (const std::exception &) {
        // The screen keeps the month that it shows.
    }
}

void AttendanceStore::countLoadingToday(bool begins)
{
    if (updateCount(m_loadingToday, begins))
        Q_EMIT loadingTodayChanged();
}

void AttendanceStore::countPunching(bool begins)
{
    if (updateCount(m_punching, begins))
        Q_EMIT punchingChanged();
}

void AttendanceStore::countCheckingDistance(bool begins)
{
    if (updateCount(m_checkingDistance, begins))
        Q_EMIT checkingDistanceChanged();
}

void AttendanceStore::showError(const std::exception &error)
{
    setBanner(Banner{.text = errorText(error), .kind = Banner::Kind::Error});
}

} // namespace clockwell

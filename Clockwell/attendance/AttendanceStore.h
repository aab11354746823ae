#pragma once

#include "attendance/Banner.h"
#include "attendance/LocationSource.h"
#include "net/WireRecords.h"

#include <QCoro/QCoroTask>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <memory>
#include <optional>

namespace clockwell {

class APIClient;
class LocationManager;

/// What the attendance screens show: the last answers of the server, what is under way, and the current
/// banner. Knows no rule of attendance; every decision is the server's. Main thread only.
///
/// The operations never throw a failure: it becomes a banner, or is dropped. Awaiting one may throw
/// Abandoned, when the store died meanwhile, and for a check of the distance also when the location manager
/// died, another request for a position took its place, or the punch whose position it shared got none.
class AttendanceStore : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("built by the composition root")
    Q_PROPERTY(bool loadingToday READ loadingToday NOTIFY loadingTodayChanged)
    Q_PROPERTY(bool punching READ punching NOTIFY punchingChanged)
    Q_PROPERTY(bool checkingDistance READ checkingDistance NOTIFY checkingDistanceChanged)

public:
    /// Longest wait for a position, in seconds.
    static constexpr double fixTimeout = 15;

    /// The client must outlive the store.
    explicit AttendanceStore(APIClient &api, QObject *parent = nullptr);
    /// `deviceId` takes the place of this device's own id; it is asked anew for each punch.
    AttendanceStore(APIClient &api, std::function<QString()> deviceId, QObject *parent = nullptr);

    const std::optional<TodayResponse> &today() const { return m_today; }
    const std::optional<DistanceResponse> &live() const { return m_live; }
    const QList<AttendanceRecord> &history() const { return m_history; }
    const std::optional<MonthlySummary> &summary() const { return m_summary; }
    bool loadingToday() const { return m_loadingToday > 0; }
    bool punching() const { return m_punching > 0; }
    bool checkingDistance() const { return m_checkingDistance > 0; }
    const std::optional<Banner> &banner() const { return m_banner; }
    void setBanner(std::optional<Banner> banner);

    QCoro::Task<> loadToday();
    /// While a punch waits for its position, the check waits for the same one and asks for none of its own:
    /// the location service has one request at a time, and the punch's would be lost.
    QCoro::Task<> checkDistance(QPointer<LocationManager> location);
    /// Sends one punch, then reloads the day and the distance. Ends with a banner in any case.
    QCoro::Task<> punch(QPointer<LocationManager> location);
    /// In the server's order. A failure is silent.
    QCoro::Task<> loadHistory();
    /// `month` is "yyyy-MM". A failure is silent.
    QCoro::Task<> loadSummary(QString month);

Q_SIGNALS:
    void todayChanged();
    void liveChanged();
    void historyChanged();
    void summaryChanged();
    void loadingTodayChanged();
    void punchingChanged();
    void checkingDistanceChanged();
    void bannerChanged();

private:
    // A count, so that of two overlapping runs the first to end does not clear the flag of the other.
    void countLoadingToday(bool begins);
    void countPunching(bool begins);
    void countCheckingDistance(bool begins);
    void showError(const std::exception &error);
    QCoro::Task<Fix> fixForCheck(QPointer<LocationManager> location);
    QCoro::Task<> sendPunch(QPointer<LocationManager> location);

    APIClient &m_api;
    std::function<QString()> m_deviceId;
    std::shared_ptr<QCoro::Task<Fix>> m_punchFix; // of the latest punch, which several may await
    std::optional<TodayResponse> m_today;
    std::optional<DistanceResponse> m_live;
    QList<AttendanceRecord> m_history;
    std::optional<MonthlySummary> m_summary;
    int m_loadingToday = 0;
    int m_punching = 0;
    int m_checkingDistance = 0;
    std::optional<Banner> m_banner;
};

} // namespace clockwell

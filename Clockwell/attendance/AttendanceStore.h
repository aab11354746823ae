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

/// The data of the attendance screens: the server's latest responses, flags for the running operations, and
/// the current banner. Contains no attendance rules; the server makes every decision. Main thread only.
///
/// The operations do not throw errors: an error is shown as a banner or ignored. Awaiting an operation throws
/// Abandoned when the store is destroyed meanwhile. checkDistance() also throws it when the location manager
/// is destroyed, when another request for a position replaces its own, or when it shares the position of a
/// punch that gets none.
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
    /// `deviceId` returns the id to send in place of this device's own; it is called for each punch.
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
    /// While a punch waits for its position, this waits for the same position: the location manager handles
    /// one request at a time, so a second request would replace the one of the punch.
    QCoro::Task<> checkDistance(QPointer<LocationManager> location);
    /// Sends one punch, then reloads the day and the distance. Always ends with a banner.
    QCoro::Task<> punch(QPointer<LocationManager> location);
    /// Loads the history in the server's order. Errors are ignored.
    QCoro::Task<> loadHistory();
    /// `month` is "yyyy-MM". Errors are ignored.
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
    // Counts rather than flags: when two runs overlap, the first to end must not clear the flag of the other.
    void countLoadingToday(bool begins);
    void countPunching(bool begins);
    void countCheckingDistance(bool begins);
    void showError(const std::exception &error);
    QCoro::Task<Fix> fixForCheck(QPointer<LocationManager> location);
    QCoro::Task<> sendPunch(QPointer<LocationManager> location);

    APIClient &m_api;
    std::function<QString()> m_deviceId;
    std::shared_ptr<QCoro::Task<Fix>> m_punchFix; // of the latest punch; several coroutines may await it
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

#pragma once

#include "attendance/LocationError.h"
#include "attendance/LocationSource.h"
#include "attendance/OneShotWaiter.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace clockwell {

/// The app's only access to the platform's location service: asks once for permission and delivers one
/// position on demand within a time limit. The server decides whether a position is accurate enough. Main
/// thread only.
///
/// Handles one request at a time. A second request replaces the first, whose coroutine is unwound with
/// Abandoned: destructors run, handlers for std::exception do not. The same happens to every coroutine that
/// is waiting when the manager is destroyed.
class LocationManager : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("built by the composition root")
    Q_PROPERTY(clockwell::LocationSource::AuthorizationStatus authorization READ authorization NOTIFY
                   authorizationChanged)

public:
    explicit LocationManager(std::unique_ptr<LocationSource> source, QObject *parent = nullptr);
    ~LocationManager() override;

    AuthorizationStatus authorization() const { return m_authorization; }
    /// The latest position that the platform delivered, also without a request.
    const std::optional<Fix> &lastFix() const { return m_lastFix; }

    /// Shows the platform's permission prompt unless it has been answered before. Has no time limit, because
    /// the user may take any time to answer.
    QCoro::Task<AuthorizationStatus> requestPermission();
    /// Throws LocationError. `timeout` is in seconds and starts when permission is granted.
    QCoro::Task<Fix> currentFix(double timeout);

Q_SIGNALS:
    void authorizationChanged();
    void lastFixChanged();

private:
    template <class T>
    using Waiter = std::shared_ptr<OneShotWaiter<T>>;

    void updateAuthorization();
    void handleFixes(const QList<clockwell::Fix> &fixes);
    void handleFailure(clockwell::LocationSource::Failure failure);

    template <class T>
    Waiter<T> replace(Waiter<T> &waiter);
    /// Runs from the event loop, so that the replaced coroutines do not run inside the call that replaces
    /// them.
    void unwindReplaced();
    void startTimer(double timeout);
    void cancelTimer();
    void fail(LocationError::Kind kind);

    std::unique_ptr<LocationSource> m_source;
    AuthorizationStatus m_authorization;
    std::optional<Fix> m_lastFix;
    Waiter<AuthorizationStatus> m_permissionWaiter;
    Waiter<Fix> m_fixWaiter;
    std::vector<std::function<void()>> m_replaced;
    QPointer<QTimer> m_timer; // a child; the timer of a replaced request keeps running
};

} // namespace clockwell

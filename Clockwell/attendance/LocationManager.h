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

/// The app's one contact with the platform's location service: asks once for permission and delivers one
/// position on demand within a time limit. Whether a position is good enough is the server's business. Main
/// thread only.
///
/// One request at a time: a second one takes the place of the first, whose coroutine then never continues. It
/// is unwound instead with Abandoned (destructors run, handlers of errors do not), and so is every coroutine
/// that still waits when the manager dies.
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
    /// The latest position that the platform delivered, whoever asked for it.
    const std::optional<Fix> &lastFix() const { return m_lastFix; }

    /// Shows the platform's question unless it has been answered before. No time limit: a person may take
    /// their time.
    QCoro::Task<AuthorizationStatus> requestPermission();
    /// Throws LocationError. `timeout` is in seconds and counts from the permission on.
    QCoro::Task<Fix> currentFix(double timeout);

Q_SIGNALS:
    void authorizationChanged();
    void lastFixChanged();

private:
    template <class T>
    using Waiter = std::shared_ptr<OneShotWaiter<T>>;

    void readAuthorization();
    void takeFixes(const QList<clockwell::Fix> &fixes);
    void takeFailure(clockwell::LocationSource::Failure failure);

    template <class T>
    Waiter<T> replace(Waiter<T> &waiter);
    /// Runs from the event loop, so that whoever makes a new request is not entered from within it.
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
    QPointer<QTimer> m_timer; // a child; one that was replaced runs on by itself
};

} // namespace clockwell

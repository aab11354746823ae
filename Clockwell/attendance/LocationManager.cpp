#include "attendance/LocationManager.h"

#include "net/Liveness.h"

#include <chrono>
#include <cmath>
#include <limits>

namespace clockwell {

namespace {

/// A time limit must fit into 64 bits as nanoseconds; anything else is a programming error. A QTimer is
/// limited to 24 days.
std::chrono::milliseconds timerInterval(double seconds)
{
    const double nanoseconds = seconds * 1e9;
    if (!(nanoseconds > -1 && nanoseconds < std::ldexp(1.0, 64)))
        qFatal("A time limit is out of range");
    constexpr double longest = std::numeric_limits<int>::max();
    return std::chrono::milliseconds(std::llround(std::min(std::ceil(seconds * 1e3), longest)));
}

template <class T>
void abandon(std::shared_ptr<OneShotWaiter<T>> waiter)
{
    if (waiter)
        waiter->fail(std::make_exception_ptr(Abandoned{}));
}

} // namespace

LocationManager::LocationManager(std::unique_ptr<LocationSource> source, QObject *parent)
    : QObject(parent), m_source(std::move(source)), m_authorization(m_source->authorizationStatus())
{
    // Queued: when the platform answers within a call, it must not resume the coroutine that makes the call.
    connect(m_source.get(), &LocationSource::authorizationChanged, this,
            &LocationManager::updateAuthorization, Qt::QueuedConnection);
    connect(m_source.get(), &LocationSource::locationsUpdated, this, &LocationManager::handleFixes,
            Qt::QueuedConnection);
    connect(m_source.get(), &LocationSource::failed, this, &LocationManager::handleFailure,
            Qt::QueuedConnection);
    m_source->setDesiredAccuracy(LocationSource::Accuracy::Best);
}

LocationManager::~LocationManager()
{
    unwindReplaced();
    abandon(std::move(m_permissionWaiter));
    abandon(std::move(m_fixWaiter));
}

QCoro::Task<AuthorizationStatus> LocationManager::requestPermission()
{
    const AuthorizationStatus known = m_source->authorizationStatus();
    if (known != AuthorizationStatus::NotDetermined)
        co_return known;
    const auto waiter = replace(m_permissionWaiter);
    m_source->requestWhenInUseAuthorization();
    co_return co_await waiter->wait();
}

QCoro::Task<Fix> LocationManager::currentFix(double timeout)
{
    const AuthorizationStatus status = co_await whileAlive(this, requestPermission());
    if (status != AuthorizationStatus::AuthorizedAlways && status != AuthorizationStatus::AuthorizedWhenInUse)
        throw LocationError(LocationError::Kind::Denied);
    const auto waiter = replace(m_fixWaiter);
    m_source->requestLocation();
    startTimer(timeout);
    co_return co_await waiter->wait();
}

template <class T>
LocationManager::Waiter<T> LocationManager::replace(Waiter<T> &waiter)
{
    Waiter<T> replaced = std::exchange(waiter, std::make_shared<OneShotWaiter<T>>());
    if (replaced) {
        m_replaced.push_back([replaced = std::move(replaced)] { abandon(replaced); });
        QMetaObject::invokeMethod(this, &LocationManager::unwindReplaced, Qt::QueuedConnection);
    }
    return waiter;
}

void LocationManager::unwindReplaced()
{
    for (const auto &unwind : std::exchange(m_replaced, {}))
        unwind();
}

void LocationManager::startTimer(double timeout)
{
    auto *timer = new QTimer(this);
    timer->setSingleShot(true);
    timer->setTimerType(Qt::PreciseTimer);
    connect(timer, &QTimer::timeout, this, [this, timer] {
        timer->deleteLater();
        fail(LocationError::Kind::Timeout);
    });
    timer->start(timerInterval(timeout));
    m_timer = timer;
}

void LocationManager::cancelTimer()
{
    if (!m_timer)
        return;
    m_timer->stop();
    m_timer->deleteLater(); // deferred: this may be the timer that is firing
    m_timer.clear();
}

void LocationManager::fail(LocationError::Kind kind)
{
    cancelTimer();
    if (const auto waiter = std::exchange(m_fixWaiter, {}))
        waiter->fail(std::make_exception_ptr(LocationError(kind)));
}

void LocationManager::updateAuthorization()
{
    const AuthorizationStatus status = m_source->authorizationStatus();
    const QPointer<LocationManager> self(this);
    if (std::exchange(m_authorization, status) != status)
        Q_EMIT authorizationChanged();
    if (!self || status == AuthorizationStatus::NotDetermined)
        return;
    if (const auto waiter = std::exchange(m_permissionWaiter, {}))
        waiter->resume(status);
}

void LocationManager::handleFixes(const QList<Fix> &fixes)
{
    if (fixes.isEmpty())
        return;
    const Fix newest = fixes.last();
    const QPointer<LocationManager> self(this);
    m_lastFix = newest;
    Q_EMIT lastFixChanged();
    if (!self)
        return;
    cancelTimer();
    if (const auto waiter = std::exchange(m_fixWaiter, {}))
        waiter->resume(newest);
}

void LocationManager::handleFailure(LocationSource::Failure failure)
{
    if (failure == LocationSource::Failure::Denied)
        fail(LocationError::Kind::Denied);
    else if (m_fixWaiter)
        fail(LocationError::Kind::Unavailable);
}

} // namespace clockwell

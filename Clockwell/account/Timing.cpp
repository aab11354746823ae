#include "Timing.h"

#include <QCoroTimer>
#include <QTimer>

namespace clockwell {

Timing::Timing(QObject *parent) : QObject(parent) {}

QCoro::Task<> Timing::pause(std::chrono::milliseconds duration)
{
    return QCoro::sleepFor(duration);
}

std::unique_ptr<QObject> Timing::every(std::chrono::milliseconds interval, std::function<void()> tick)
{
    auto timer = std::make_unique<QTimer>();
    timer->setTimerType(Qt::PreciseTimer); // a coarse one would let a count of seconds stumble
    connect(timer.get(), &QTimer::timeout, timer.get(), std::move(tick));
    timer->start(interval);
    return timer;
}

} // namespace clockwell

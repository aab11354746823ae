#include "Timing.h"

#include "net/Liveness.h"
#include "net/ReplySlot.h"

#include <QTimer>

namespace clockwell {

Timing::Timing(QObject *parent) : QObject(parent) {}

Timing::~Timing()
{
    for (const auto &pause : m_pauses)
        if (const auto waiting = pause.lock())
            waiting->finish(std::make_exception_ptr(Abandoned{}));
    ReplySlot::deliverHere();
}

QCoro::Task<> Timing::pause(std::chrono::milliseconds duration)
{
    const auto end = ReplySlot::make();
    std::erase_if(m_pauses, [](const auto &pause) { return pause.expired(); });
    m_pauses.push_back(end);
    QTimer::singleShot(duration, Qt::PreciseTimer, this, [end] { end->finish(); });
    co_await end->finished();
}

std::unique_ptr<QObject> Timing::every(std::chrono::milliseconds interval, std::function<void()> tick)
{
    auto timer = std::make_unique<QTimer>();
    timer->setTimerType(Qt::PreciseTimer); // a coarse timer would make the countdown uneven
    connect(timer.get(), &QTimer::timeout, timer.get(), std::move(tick));
    timer->start(interval);
    return timer;
}

} // namespace clockwell

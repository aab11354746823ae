#pragma once

#include "account/Timing.h"

#include <QCoroFuture>
#include <QList>
#include <QPointer>
#include <QPromise>

#include <algorithm>
#include <memory>

namespace clockwell::test {

/// A Timing whose clock moves only when a test advances it.
class ManualTiming final : public Timing
{
public:
    ManualTiming() = default;
    ~ManualTiming() override
    {
        for (const Pause &pause : std::as_const(m_pauses))
            pause.promise->finish();
    }

    QCoro::Task<> pause(std::chrono::milliseconds duration) override
    {
        auto promise = std::make_shared<QPromise<void>>();
        promise->start();
        QFuture<void> end = promise->future();
        m_pauses.append({m_now + duration, std::move(promise)});
        co_await end;
    }

    std::unique_ptr<QObject> every(std::chrono::milliseconds interval, std::function<void()> tick) override
    {
        auto ticker = std::make_unique<Ticker>(interval, m_now + interval, std::move(tick));
        m_tickers.append(ticker.get());
        return ticker;
    }

    void advance(std::chrono::milliseconds by)
    {
        const auto target = m_now + by;
        while (m_now < target) {
            m_now += std::min(by, step);
            for (const auto &ticker : QList<QPointer<Ticker>>(m_tickers)) {
                if (ticker && ticker->next <= m_now) {
                    ticker->next += ticker->interval;
                    ticker->tick();
                }
            }
            endPauses();
        }
    }

    /// The number of running pauses.
    qsizetype pauses() const { return m_pauses.size(); }
    /// The number of active tick subscriptions.
    qsizetype subscriptions() const
    {
        return std::count_if(
            m_tickers.cbegin(), m_tickers.cend(), [](const auto &ticker) { return !ticker.isNull(); });
    }

private:
    static constexpr std::chrono::milliseconds step{1};

    struct Ticker : QObject
    {
        Ticker(std::chrono::milliseconds every, std::chrono::milliseconds first, std::function<void()> what)
            : interval(every), next(first), tick(std::move(what))
        {}
        std::chrono::milliseconds interval;
        std::chrono::milliseconds next;
        std::function<void()> tick;
    };

    struct Pause
    {
        std::chrono::milliseconds end;
        std::shared_ptr<QPromise<void>> promise;
    };

    void endPauses()
    {
        m_pauses.removeIf([this](const Pause &pause) {
            if (pause.end > m_now)
                return false;
            pause.promise->finish(); // resumes its coroutine from the event loop, not from here
            return true;
        });
    }

    std::chrono::milliseconds m_now{0};
    QList<QPointer<Ticker>> m_tickers;
    QList<Pause> m_pauses;
};

} // namespace clockwell::test

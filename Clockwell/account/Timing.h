#pragma once

#include <QCoroTask>
#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace clockwell {

class ReplySlot;

/// Pauses and periodic ticks for the screens, in real time; tests override it with a clock that they advance
/// manually. Main thread only. Must outlive the screens.
class Timing : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Built by the composition root")

public:
    explicit Timing(QObject *parent = nullptr);
    ~Timing() override;

    /// Completes after `duration`; ends with Abandoned if this object is destroyed first, as when the app is
    /// closed.
    virtual QCoro::Task<> pause(std::chrono::milliseconds duration);
    /// Calls `tick` after each interval until the returned object is destroyed.
    virtual std::unique_ptr<QObject> every(std::chrono::milliseconds interval, std::function<void()> tick);

private:
    std::vector<std::weak_ptr<ReplySlot>> m_pauses;
};

} // namespace clockwell

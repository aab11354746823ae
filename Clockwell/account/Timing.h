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

/// How time passes for the screens that wait for it; this one is the real time, tests move theirs by hand.
/// Main thread. Outlives the screens.
class Timing : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Built by the composition root")

public:
    explicit Timing(QObject *parent = nullptr);
    ~Timing() override;

    /// Ends when that much time has passed; abandoned when this object goes first, as when the app is closed
    /// meanwhile.
    virtual QCoro::Task<> pause(std::chrono::milliseconds duration);
    /// Calls `tick` after each interval for as long as the returned object lives.
    virtual std::unique_ptr<QObject> every(std::chrono::milliseconds interval, std::function<void()> tick);

private:
    std::vector<std::weak_ptr<ReplySlot>> m_pauses;
};

} // namespace clockwell

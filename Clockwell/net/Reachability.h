#pragma once

#include <QObject>

#include <memory>

namespace clockwell {

/// Reports whether the device is offline. Lives on the client's thread.
class Reachability : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    /// True only if the platform reports it for certain; an unknown state counts as online.
    virtual bool isOffline() const = 0;

Q_SIGNALS:
    /// The device went online or offline, or changed networks: existing connections may be broken.
    void changed();
};

/// The reachability that the platform reports; always online if the platform reports none.
std::unique_ptr<Reachability> platformReachability();

} // namespace clockwell

#pragma once

#include <QObject>

#include <memory>

namespace clockwell {

/// Whether a request has a chance at all. Lives on the client's thread.
class Reachability : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    /// True only when the platform is sure; not knowing counts as online.
    virtual bool isOffline() const = 0;

Q_SIGNALS:
    /// Online or offline, or another network: connections of before may lead nowhere.
    void changed();
};

/// The platform's own answer; always online where the platform offers none.
std::unique_ptr<Reachability> platformReachability();

} // namespace clockwell

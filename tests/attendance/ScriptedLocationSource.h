#pragma once

#include "attendance/LocationSource.h"

#include <QPointer>

namespace clockwell::test {

/// A location service controlled by the test: it counts requests and answers when the test tells it to.
class ScriptedLocationSource final : public LocationSource
{
public:
    explicit ScriptedLocationSource(AuthorizationStatus initial = AuthorizationStatus::AuthorizedWhenInUse)
        : status(initial)
    {}

    AuthorizationStatus authorizationStatus() const override { return status; }
    void setDesiredAccuracy(Accuracy accuracy) override { accuracies.append(accuracy); }
    void requestWhenInUseAuthorization() override { ++permissionRequests; }
    void requestLocation() override
    {
        ++locationRequests;
        if (immediate)
            Q_EMIT locationsUpdated({*immediate});
    }

    void answer(AuthorizationStatus answer)
    {
        status = answer;
        Q_EMIT authorizationChanged();
    }
    void deliver(const QList<Fix> &fixes) { Q_EMIT locationsUpdated(fixes); }
    void fail(Failure failure) { Q_EMIT failed(failure); }

    AuthorizationStatus status;
    std::optional<Fix> immediate; // delivered during the request itself
    QList<Accuracy> accuracies;
    int permissionRequests = 0;
    int locationRequests = 0;
};

} // namespace clockwell::test

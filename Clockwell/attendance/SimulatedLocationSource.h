#pragma once

#include "attendance/LocationSource.h"

#include <QByteArray>
#include <QTimer>

#include <chrono>
#include <optional>

namespace clockwell {

/// A location service that follows a script, for development and tests. Compiled only with the CMake option
/// CLOCKWELL_SIMULATED_LOCATION: a build that can fake its position must not reach employees.
class SimulatedLocationSource final : public LocationSource
{
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds fixDelay{300};
    static constexpr std::chrono::milliseconds answerDelay{1000};

    struct Script
    {
        AuthorizationStatus status = AuthorizationStatus::AuthorizedWhenInUse;
        /// The user's answer, one second after the prompt.
        AuthorizationStatus answer = AuthorizationStatus::NotDetermined;
        std::optional<Fix> fix = {}; ///< delivered 0.3 seconds after the request
        bool fails = false;          ///< an error is reported instead
    };

    /// Parses `LAT,LNG,ACCURACY`, `denied`, `restricted`, `silent` (granted, never a fix), `failing`
    /// (granted, the platform reports an error), `ask-grant:LAT,LNG,ACCURACY` or `ask-deny`; empty for
    /// anything else.
    static std::optional<Script> parse(const QByteArray &text);

    explicit SimulatedLocationSource(Script script, QObject *parent = nullptr);

    AuthorizationStatus authorizationStatus() const override { return m_script.status; }
    void setDesiredAccuracy(Accuracy) override {}
    void requestWhenInUseAuthorization() override;
    void requestLocation() override;

private:
    void answerPermission();
    void answerLocation();

    Script m_script;
    QTimer m_permissionTimer;
    QTimer m_locationTimer;
};

} // namespace clockwell

#pragma once

#include "account/AuthStore.h"
#include "account/Timing.h"
#include "attendance/AttendanceStore.h"
#include "attendance/LocationManager.h"
#include "net/APIClient.h"
#include "net/SessionEvents.h"
#include "net/TokenStore.h"

#include <QObject>
#include <QQmlApplicationEngine>
#include <QtQml/qqmlregistration.h>

#include <functional>
#include <memory>

class QQuickWindow;

namespace clockwell {

class DesktopPreferences;
class LocationSource;

/// The composition root: builds the object graph of the process once, shows the window, restores the session
/// and signs out when it expires. Main thread only; needs a QGuiApplication that outlives it.
class ClockwellApp : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Built by main()")
    Q_PROPERTY(clockwell::AuthStore *auth READ auth CONSTANT)
    Q_PROPERTY(clockwell::Timing *timing READ timing CONSTANT)

public:
    /// The components that differ between a phone, a desktop and a test.
    struct Dependencies
    {
        APIClient::Options client;
        std::unique_ptr<TokenStore> tokens;
        /// Called after each sign-in, when the location is first needed.
        std::function<std::unique_ptr<LocationSource>()> makeLocationSource;
        /// Null: the real time.
        std::unique_ptr<Timing> timing;
    };
    /// Those of this platform, with the configured base URL.
    static Dependencies platformDependencies();

    explicit ClockwellApp(Dependencies dependencies);
    ~ClockwellApp() override;

    /// Loads and shows the interface and starts to restore the session. Returns false when the interface
    /// cannot be loaded.
    bool show();
    /// The app's window; null before show(). Owned by this object.
    QQuickWindow *window() const;

    AuthStore *auth() { return &m_auth; }
    Timing *timing() { return m_timing.get(); }
    SessionEvents &sessionEvents() { return m_sessionEvents; }

    /// Creates a service for one signed-in session, owned by `owner`.
    Q_INVOKABLE clockwell::AttendanceStore *newAttendanceStore(QObject *owner);
    Q_INVOKABLE clockwell::LocationManager *newLocationManager(QObject *owner);

private:
    void followDesktop();

    // In the order of their dependencies: destroyed in reverse.
    std::unique_ptr<TokenStore> m_tokens;
    std::function<std::unique_ptr<LocationSource>()> m_makeLocationSource;
    std::unique_ptr<Timing> m_timing;
    SessionEvents m_sessionEvents;
    APIClient m_api;
    AuthStore m_auth;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
    std::unique_ptr<DesktopPreferences> m_preferences;
    QMetaObject::Connection m_frames;
};

} // namespace clockwell

#pragma once

#include "ClockwellApp.h"
#include "attendance/LocationSource.h"
#include "support/FakeServer.h"
#include "support/screen/ScreenDriver.h"

#include <QSize>

#include <memory>

namespace clockwell::test {

/// The simulated device of a screenshot: the location permission, and whether it delivers positions.
struct Device
{
    AuthorizationStatus authorization = AuthorizationStatus::AuthorizedWhenInUse;
    bool hasFix = true;
};

/// The window size and text scale of a screenshot.
struct Format
{
    const char *name;
    QSize size;
    double textScale;
};

/// The whole app in one window with a scripted server, for the screenshot of one state.
class Stage
{
public:
    explicit Stage(Format format, Device device = {});

    FakeServer &server() { return m_server; }
    ScreenDriver &screen() { return *m_screen; }
    AuthStore &auth() { return *m_app->auth(); }
    QQuickWindow *window() { return m_app->window(); }

    /// Shows the app signed out.
    bool start();
    /// Shows the app signed in as this user; the requests of the tabs have to be scripted before.
    bool startAs(const QByteArray &fullName);
    /// The same, with the user as a JSON object.
    bool startAsUser(const QByteArray &user);
    /// Shows what there is in another size, all of it in its place.
    void resize(Format format);

private:
    bool show(bool signedIn);
    void apply(Format format);

    Format m_format;
    Device m_device;
    FakeServer m_server;
    std::unique_ptr<ClockwellApp> m_app;
    std::unique_ptr<ScreenDriver> m_screen;
};

} // namespace clockwell::test

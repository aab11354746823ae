#include "ClockwellApp.h"
#include "FirstFrame.h"

#include <QGuiApplication>
#include <QQuickWindow>

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    clockwell::ClockwellApp app(clockwell::ClockwellApp::platformDependencies());
    if (!app.show())
        return 1;
    clockwell::bench::reportFirstFrame(
        app.window(), [&app] { return app.auth()->phase() == clockwell::AuthStore::Phase::SignedOut; });
    return QGuiApplication::exec();
}

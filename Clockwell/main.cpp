#include "ClockwellApp.h"

#include <QGuiApplication>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(u"clockwell"_s);
    QGuiApplication::setApplicationDisplayName(u"Clockwell"_s);
    QGuiApplication::setDesktopFileName(u"io.clockwell.app"_s);

    clockwell::ClockwellApp app(clockwell::ClockwellApp::platformParts());
    return app.show() ? QGuiApplication::exec() : 1;
}

#include "ClockwellApp.h"

#include <QGuiApplication>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

/// Nothing is logged, whatever the environment switches on: what Qt prints can hold addresses and what people
/// typed. Only why the process cannot go on is said.
void discardMessage(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qUtf8Printable(text));
}

} // namespace

int main(int argc, char **argv)
{
    qInstallMessageHandler(discardMessage);
    QGuiApplication application(argc, argv);
    QGuiApplication::setApplicationName(u"clockwell"_s);
    QGuiApplication::setApplicationDisplayName(u"Clockwell"_s);
    QGuiApplication::setDesktopFileName(u"io.clockwell.app"_s);

    clockwell::ClockwellApp app(clockwell::ClockwellApp::platformDependencies());
    return app.show() ? QGuiApplication::exec() : 1;
}

#include "account/AuthStore.h"
#include <QGuiApplication>
#include <QQmlApplicationEngine>

int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    clockwell::AuthStore auth;
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.setInitialProperties({{QStringLiteral("auth"), QVariant::fromValue(&auth)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Clockwell/RootView.qml")));
    return engine.rootObjects().isEmpty() ? 1 : app.exec();
}

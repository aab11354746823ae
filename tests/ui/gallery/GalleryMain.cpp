#include "ui/Theme.h"

#include <QCommandLineParser>
#include <QDir>
#include <QGuiApplication>
#include <QQmlContext>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QTest>

// clockwell_ui_gallery FOLDER: draws the components into PNG files there. Run it with QT_SCALE_FACTOR=2 for
// the look at two pixels a point and with --text-scale 2 for large text.
int main(int argc, char **argv)
{
    QGuiApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addOption(
        {QStringLiteral("text-scale"), QString(), QStringLiteral("factor"), QStringLiteral("1")});
    parser.addOption({QStringLiteral("suffix"), QString(), QStringLiteral("text")});
    parser.addPositionalArgument(QStringLiteral("folder"), QString());
    parser.process(app);
    QStringList symbols = QDir(QStringLiteral(":/clockwell/symbols")).entryList();
    for (QString &symbol : symbols)
        symbol.chop(qstrlen(".svg"));
    const QString folder = parser.positionalArguments().value(0, QStringLiteral("."));
    const QList<QPair<QString, QStringList>> pages{
        {QStringLiteral("Gallery"),
         {QStringLiteral("focused"), QStringLiteral("ring"), QStringLiteral("link")}},
        {QStringLiteral("Tabs"), {QStringLiteral("ring")}},
    };
    for (const auto &[page, focused] : pages) {
        QQuickView view;
        view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
        view.rootContext()->setContextProperty(QStringLiteral("symbols"), symbols);
        view.setSource(QUrl(QStringLiteral("qrc:/gallery/%1.qml").arg(page)));
        if (!view.rootObject())
            return 1;
        clockwell::Theme *theme = clockwell::Theme::of(*view.engine());
        theme->setTextScale(parser.value(QStringLiteral("text-scale")).toDouble());
        view.show();
        QCoreApplication::processEvents();
        for (const QString &name : focused) {
            auto *item = view.rootObject()->findChild<QQuickItem *>(name);
            item->forceActiveFocus(Qt::TabFocusReason);
            QTest::qWait(50);
            const QString file = QStringLiteral("%1/%2-%3%4.png")
                                     .arg(folder, page, name, parser.value(QStringLiteral("suffix")));
            if (!view.grabWindow().save(file))
                return 1;
        }
    }
    return 0;
}

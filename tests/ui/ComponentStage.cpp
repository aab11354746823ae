#include "ComponentStage.h"

#include "ui/Theme.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

ComponentStage::ComponentStage(const QByteArray &qml, QSize size)
{
    m_view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
    QQmlComponent component(m_view.engine());
    const QByteArray scene =
        "import QtQuick\nimport Clockwell.Ui\nRectangle { color: Theme.background; Item { x: 20; y: 20; "
        "width: parent.width - 40; " +
        qml + " } }";
    component.setData(scene, QUrl(QStringLiteral("qrc:/stage.qml")));
    auto *scenery = qobject_cast<QQuickItem *>(component.create());
    if (!scenery) {
        ADD_FAILURE() << component.errorString().toStdString();
        return;
    }
    m_view.setResizeMode(QQuickView::SizeRootObjectToView);
    m_view.resize(size);
    m_view.setContent(QUrl(), nullptr, scenery);
    m_item = scenery->childItems().constFirst()->childItems().constFirst();
    m_view.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&m_view));
    m_view.requestActivate();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&m_view));
}

Theme &ComponentStage::theme()
{
    return *Theme::of(*m_view.engine());
}

QQuickItem *ComponentStage::part(const char *objectName) const
{
    auto *found = m_item->findChild<QQuickItem *>(QLatin1String(objectName));
    EXPECT_NE(found, nullptr) << "no part " << objectName;
    return found;
}

QImage ComponentStage::shot()
{
    QCoreApplication::processEvents();
    return m_view.grabWindow();
}

QColor ComponentStage::colorAt(qreal x, qreal y)
{
    return shot().pixelColor(m_item->mapToScene(QPointF(x, y)).toPoint());
}

int ComponentStage::inkOf(QQuickItem *item)
{
    const QRect area = item->mapRectToScene(item->boundingRect()).toRect();
    const QImage image = shot().copy(area);
    const QRgb background = theme().background().rgb();
    int ink = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            ink += image.pixel(x, y) != background;
    return ink;
}

} // namespace clockwell::test

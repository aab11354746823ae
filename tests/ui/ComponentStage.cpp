#include "ComponentStage.h"

#include "ui/Theme.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QTest>

#include <gtest/gtest.h>

#include <cstdlib>

namespace clockwell::test {

ComponentStage::ComponentStage(const QByteArray &qml, QSize size)
{
    m_view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
    QQmlComponent component(m_view.engine());
    const QByteArray scene = "pragma ComponentBehavior: Bound\nimport QtQuick\nimport "
                             "Clockwell.Ui\nRectangle { color: Theme.background; Item { x: 20; y: 20; "
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

QQuickItem *ComponentStage::shownText(const QString &text) const
{
    const auto items = m_item->findChildren<QQuickItem *>();
    for (QQuickItem *item : items) {
        if (!item->inherits("QQuickText") || !item->isVisible() || item->property("text").toString() != text)
            continue;
        qreal opacity = 1;
        for (const QQuickItem *around = item; around; around = around->parentItem())
            opacity *= around->opacity();
        if (opacity > 0)
            return item;
    }
    return nullptr;
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

QRect ComponentStage::areaOf(QColor color)
{
    constexpr int tolerance = 40;
    const auto isNear = [](int a, int b) { return std::abs(a - b) <= tolerance; };
    const QRect item = m_item->mapRectToScene(QRectF(QPointF(), m_item->size())).toRect();
    const QImage image = shot();
    QRect area;
    for (int y = item.top(); y <= item.bottom(); ++y) {
        for (int x = item.left(); x <= item.right(); ++x) {
            const QColor pixel = image.pixelColor(x, y);
            if (isNear(pixel.red(), color.red()) && isNear(pixel.green(), color.green()) &&
                isNear(pixel.blue(), color.blue()))
                area |= QRect(QPoint(x, y) - item.topLeft(), QSize(1, 1));
        }
    }
    return area;
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

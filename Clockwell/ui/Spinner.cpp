#include "Spinner.h"

#include "ImageNode.h"

#include <QPainter>
#include <QQuickWindow>
#include <QTimerEvent>

#include <chrono>

namespace clockwell {

namespace {

using namespace std::chrono_literals;

constexpr int spokes = 8;
constexpr std::chrono::milliseconds stepTime = 100ms;
constexpr qreal faintest = 0.2;

// Spokes on a square of 20 units, the brightest first, the others fading behind it.
void paintSpokes(QImage &image, int pixels, int first, const QColor &color)
{
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(pixels / 20.0, pixels / 20.0);
    painter.translate(10, 10);
    for (int spoke = 0; spoke < spokes; ++spoke) {
        const int behind = (first - spoke + spokes) % spokes;
        QColor faded = color;
        const qreal strength = 1 - (1 - faintest) * behind / (spokes - 1);
        faded.setAlphaF(static_cast<float>(color.alphaF() * strength));
        painter.setPen(QPen(faded, 2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -4.5), QPointF(0, -8.5));
        painter.rotate(360.0 / spokes);
    }
}

} // namespace

Spinner::Spinner(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    setImplicitSize(m_size, m_size);
}

void Spinner::setSize(qreal size)
{
    if (!qFuzzyCompare(size, m_size)) {
        m_size = size;
        setImplicitSize(size, size);
        update();
        Q_EMIT sizeChanged();
    }
}

void Spinner::setColor(const QColor &color)
{
    if (color != m_color) {
        m_color = color;
        update();
        Q_EMIT colorChanged();
    }
}

void Spinner::setStill(bool still)
{
    if (still != m_still) {
        m_still = still;
        startOrStop();
        Q_EMIT stillChanged();
    }
}

QSGNode *Spinner::updatePaintNode(QSGNode *node, UpdatePaintNodeData *)
{
    const int pixels = qRound(m_size * window()->effectiveDevicePixelRatio());
    if (pixels <= 0)
        return updateImageNode(node, this, {});
    const QString name = QStringLiteral("spinner %1").arg(m_step);
    const QImage image = cachedImage({name, {pixels, pixels}, m_color.rgba()},
                                     [&](QImage &drawn) { paintSpokes(drawn, pixels, m_step, m_color); });
    return updateImageNode(node, this, image);
}

void Spinner::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemVisibleHasChanged || change == ItemSceneChange)
        startOrStop();
    else if (change == ItemDevicePixelRatioHasChanged)
        update();
    QQuickItem::itemChange(change, data);
}

void Spinner::geometryChange(const QRectF &now, const QRectF &before)
{
    update();
    QQuickItem::geometryChange(now, before);
}

void Spinner::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_timer.timerId()) {
        QQuickItem::timerEvent(event);
        return;
    }
    m_step = (m_step + 1) % spokes;
    update();
    Q_EMIT stepChanged();
}

void Spinner::startOrStop()
{
    if (m_still || !isVisible())
        m_timer.stop();
    else if (!m_timer.isActive())
        m_timer.start(static_cast<int>(stepTime.count()), this);
}

} // namespace clockwell

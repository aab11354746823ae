#include "ScreenStack.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QQmlInfo>
#include <QQuickWindow>

#include <cmath>
#include <memory>
#include <utility>

namespace clockwell {

namespace {

// How far the lower screen moves aside, as a share of the width: enough to be seen to lie below.
constexpr qreal parallax = 0.25;

void discard(QQuickItem *screen)
{
    screen->setVisible(false);
    screen->deleteLater(); // it may be the sender of the signal that leads here
}

} // namespace

ScreenStack::ScreenStack(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemIsFocusScope);
    setFiltersChildMouseEvents(true);
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptTouchEvents(true);
    m_animation.setStartValue(0.0);
    m_animation.setEndValue(1.0);
    m_animation.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_animation, &QAbstractAnimation::finished, this, &ScreenStack::finish);
}

ScreenStack::~ScreenStack()
{
    disconnect(m_focus); // its screens give it up one after the other
}

void ScreenStack::push(const QUrl &file, const QVariantMap &properties)
{
    finish();
    QQuickItem *below = currentItem();
    QQuickItem *screen = load(file, properties);
    if (!screen)
        return;
    add(screen);
    if (!below)
        return;
    const auto step = [this, screen, below](qreal part) { place(screen, below, 1 - part); };
    change(m_duration, step, [below] { below->setVisible(false); });
}

void ScreenStack::pop()
{
    const qreal from = takeSwipe();
    if (m_screens.size() < 2)
        return;
    QQuickItem *leaving = m_screens.takeLast();
    QQuickItem *below = currentItem();
    below->setVisible(true);
    focusTop();
    const auto step = [=, this](qreal part) { place(leaving, below, from + part * (1 - from)); };
    change(static_cast<int>(m_duration * (1 - from)), step, [leaving] { discard(leaving); });
}

void ScreenStack::place(QQuickItem *top, QQuickItem *below, qreal part)
{
    top->setX(std::round(part * width()));
    below->setX(std::round((part - 1) * parallax * width()));
}

void ScreenStack::replace(const QUrl &file, const QVariantMap &properties, bool animated)
{
    finish();
    QQuickItem *screen = load(file, properties);
    if (!screen)
        return;
    const QList<QQuickItem *> leaving = std::exchange(m_screens, {});
    add(screen);
    const auto step = [screen, leaving](qreal part) {
        screen->setOpacity(part);
        if (!leaving.isEmpty())
            leaving.last()->setOpacity(1 - part);
    };
    change(animated ? m_duration : 0, step, [leaving] {
        for (QQuickItem *old : leaving)
            discard(old);
    });
}

bool ScreenStack::hasWayBack(const QQuickItem *screen)
{
    return screen->metaObject()->indexOfSignal("back()") >= 0;
}

QQuickItem *ScreenStack::load(const QUrl &file, const QVariantMap &properties)
{
    QQmlComponent component(qmlEngine(this), file);
    std::unique_ptr<QObject> object;
    // Step by step: the call that does all of this loses an object whose required properties are missing.
    if (component.isReady())
        object.reset(component.beginCreate(qmlContext(this)));
    if (object) {
        component.setInitialProperties(object.get(), properties);
        component.completeCreate();
    }
    if (qobject_cast<QQuickItem *>(object.get()) && !component.isError())
        return static_cast<QQuickItem *>(object.release());
    qmlWarning(this) << component.errorString();
    return nullptr;
}

void ScreenStack::add(QQuickItem *screen)
{
    screen->setParent(this);
    screen->setParentItem(this);
    screen->setSize(size());
    if (hasWayBack(screen))
        connect(screen, SIGNAL(back()), this, SLOT(pop()));
    m_screens.append(screen);
    focusTop();
}

void ScreenStack::focusTop()
{
    currentItem()->forceActiveFocus();
    Q_EMIT currentItemChanged();
}

void ScreenStack::keepFocus()
{
    const QQuickItem *focused = window() ? window()->activeFocusItem() : nullptr;
    if (!m_busy || !currentItem() || !focused || focused == this || !isAncestorOf(focused))
        return;
    if (focused != currentItem() && !currentItem()->isAncestorOf(focused))
        currentItem()->forceActiveFocus();
}

void ScreenStack::itemChange(ItemChange change, const ItemChangeData &data)
{
    QQuickItem::itemChange(change, data);
    if (change != ItemSceneChange)
        return;
    disconnect(m_focus);
    if (data.window)
        m_focus = connect(data.window, &QQuickWindow::activeFocusItemChanged, this, &ScreenStack::keepFocus);
}

void ScreenStack::change(int duration, Step step, std::function<void()> end)
{
    m_end = [step, end = std::move(end)] {
        step(1);
        end();
    };
    if (duration <= 0)
        return finish();
    setBusy(true);
    step(0);
    m_animation.disconnect(SIGNAL(valueChanged(QVariant)));
    connect(&m_animation, &QVariantAnimation::valueChanged, this,
            [step](const QVariant &part) { step(part.toReal()); });
    m_animation.setDuration(duration);
    m_animation.start();
}

void ScreenStack::finish()
{
    m_animation.disconnect(SIGNAL(valueChanged(QVariant)));
    m_animation.stop();
    if (const auto end = std::exchange(m_end, nullptr))
        end();
    m_swiping = false;
    m_drag.end();
    setBusy(false);
}

void ScreenStack::setBusy(bool busy)
{
    if (std::exchange(m_busy, busy) != busy)
        Q_EMIT busyChanged();
}

void ScreenStack::componentComplete()
{
    QQuickItem::componentComplete();
    if (m_initialItem)
        add(m_initialItem);
}

void ScreenStack::geometryChange(const QRectF &now, const QRectF &before)
{
    QQuickItem::geometryChange(now, before);
    for (QQuickItem *screen : std::as_const(m_screens))
        screen->setSize(now.size());
}

} // namespace clockwell

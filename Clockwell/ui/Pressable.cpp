#include "Pressable.h"

#include "FieldText.h"
#include "ItemAccessible.h"
#include "TouchArea.h"

#include <QCursor>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QMouseEvent>

#include <algorithm>

namespace clockwell {

namespace {

constexpr qreal touchTarget = 44;

bool isPressKey(int key)
{
    return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Select;
}

} // namespace

Pressable::Pressable(QQuickItem *parent) : QQuickItem(parent)
{
    installItemAccessibles();
    setAcceptedMouseButtons(Qt::LeftButton);
    setActiveFocusOnTab(true);
    setCursor(Qt::PointingHandCursor);
}

bool Pressable::contains(const QPointF &point) const
{
    const qreal moreX = std::max(0.0, touchTarget - width()) / 2;
    const qreal moreY = std::max(0.0, touchTarget - height()) / 2;
    if (!boundingRect().adjusted(-moreX, -moreY, moreX, moreY).contains(point))
        return false;
    return boundingRect().contains(point) || !isAnotherDrawnAt(*this, mapToScene(point));
}

void Pressable::press()
{
    if (isEnabled() && isVisible()) {
        FieldText::commitFocused(window()); // whatever this does, it is done with what is on the screen
        Q_EMIT triggered();
    }
}

void Pressable::mousePressEvent(QMouseEvent *event)
{
    setFocusVisible(false);
    setPressed(true);
    event->accept();
}

void Pressable::mouseMoveEvent(QMouseEvent *event)
{
    setPressed(contains(event->position()));
}

void Pressable::mouseReleaseEvent(QMouseEvent *)
{
    const bool wasPressed = m_pressed;
    setPressed(false);
    if (wasPressed)
        press();
}

void Pressable::mouseUngrabEvent()
{
    setPressed(false);
}

void Pressable::keyPressEvent(QKeyEvent *event)
{
    if (!isPressKey(event->key()))
        event->ignore();
    else if (!event->isAutoRepeat())
        press();
}

void Pressable::focusInEvent(QFocusEvent *event)
{
    const Qt::FocusReason reason = event->reason();
    setFocusVisible(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                    reason == Qt::ShortcutFocusReason);
}

void Pressable::focusOutEvent(QFocusEvent *)
{
    setFocusVisible(false);
}

void Pressable::itemChange(ItemChange change, const ItemChangeData &data)
{
    if ((change == ItemEnabledHasChanged || change == ItemVisibleHasChanged) && !data.boolValue)
        setPressed(false);
    if (change == ItemEnabledHasChanged)
        announceEnabled(this);
    QQuickItem::itemChange(change, data);
}

void Pressable::setPressed(bool pressed)
{
    if (pressed != m_pressed) {
        m_pressed = pressed;
        Q_EMIT pressedChanged();
    }
}

void Pressable::setFocusVisible(bool visible)
{
    if (visible != m_focusVisible) {
        m_focusVisible = visible;
        Q_EMIT focusVisibleChanged();
    }
}

} // namespace clockwell

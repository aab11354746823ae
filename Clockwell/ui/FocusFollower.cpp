#include "FocusFollower.h"

#include <QQuickWindow>

#include <algorithm>

namespace clockwell {

FocusFollower::FocusFollower(QObject *parent) : QObject(parent) {}

void FocusFollower::componentComplete()
{
    connect(m_flickable, &QQuickItem::heightChanged, this, &FocusFollower::reveal);
    connect(m_flickable, &QQuickItem::windowChanged, this, &FocusFollower::followWindow);
    followWindow();
}

void FocusFollower::followWindow()
{
    disconnect(m_focus);
    if (auto *window = m_flickable ? m_flickable->window() : nullptr)
        m_focus = connect(window, &QQuickWindow::activeFocusItemChanged, this, &FocusFollower::reveal);
}

void FocusFollower::reveal()
{
    if (!m_flickable || !m_flickable->window())
        return;
    const auto *focused = m_flickable->window()->activeFocusItem();
    const auto *content = m_flickable->property("contentItem").value<QQuickItem *>();
    if (!focused || !content || !content->isAncestorOf(focused))
        return;
    const auto rect = focused->mapRectToItem(content, focused->boundingRect());
    const qreal contentHeight = m_flickable->property("contentHeight").toReal();
    const qreal current = m_flickable->property("contentY").toReal();
    // Both edges in view where both fit; else the lower one, which is where the text is typed.
    const qreal lowest = std::min(rect.top() - m_margin, current);
    const qreal wanted = std::max(lowest, rect.bottom() + m_margin - m_flickable->height());
    const qreal y = std::clamp(wanted, 0.0, std::max(0.0, contentHeight - m_flickable->height()));
    if (!qFuzzyCompare(y + 1, current + 1))
        m_flickable->setProperty("contentY", y);
}

} // namespace clockwell

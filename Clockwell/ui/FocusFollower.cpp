#include "FocusFollower.h"

#include "ScrollIntoView.h"

#include <QQuickWindow>

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
    if (const auto *focused = m_flickable->window()->activeFocusItem())
        scrollIntoView(m_flickable, focused, m_margin);
}

} // namespace clockwell

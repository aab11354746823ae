#include "RevealWhenShown.h"

#include "ScrollIntoView.h"

#include <QQuickWindow>

namespace clockwell {

void RevealWhenShown::setItem(QQuickItem *item)
{
    if (item == m_item || m_item)
        return;
    m_item = item;
    connect(item, &QQuickItem::visibleChanged, this, &RevealWhenShown::follow);
    follow();
}

void RevealWhenShown::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    m_new = !text.isEmpty();
    follow();
}

void RevealWhenShown::follow()
{
    disconnect(m_frame);
    if (m_new && m_item && m_item->isVisible() && m_item->window()) // the frame that shows it has laid it out
        m_frame = connect(m_item->window(), &QQuickWindow::frameSwapped, this, &RevealWhenShown::reveal);
}

void RevealWhenShown::reveal()
{
    disconnect(m_frame);
    m_new = false;
    constexpr qreal margin = 16;
    for (QQuickItem *around = m_item; around; around = around->parentItem())
        if (around->inherits("QQuickFlickable"))
            return scrollIntoView(around, m_item, margin);
}

} // namespace clockwell

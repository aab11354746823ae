#include "TabPage.h"

#include "ui/BuildItem.h"

namespace clockwell {

TabPage::TabPage(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemIsFocusScope);
    setVisible(false);
}

void TabPage::setSelected(bool selected)
{
    if (selected == m_selected)
        return;
    m_selected = selected;
    if (isComponentComplete())
        showOrHide();
    Q_EMIT selectedChanged();
}

void TabPage::componentComplete()
{
    QQuickItem::componentComplete();
    showOrHide();
}

void TabPage::geometryChange(const QRectF &now, const QRectF &before)
{
    QQuickItem::geometryChange(now, before);
    if (m_item)
        m_item->setSize(now.size());
}

void TabPage::showOrHide()
{
    if (m_selected && !m_item)
        m_item = buildItem(m_component, this);
    setVisible(m_selected);
    setFocus(m_selected);
}

} // namespace clockwell

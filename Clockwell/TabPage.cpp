#include "TabPage.h"

#include <QQmlContext>
#include <QQmlInfo>

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
        build();
    setVisible(m_selected);
    setFocus(m_selected);
}

void TabPage::build()
{
    auto *object = m_component ? m_component->beginCreate(m_component->creationContext()) : nullptr;
    m_item = qobject_cast<QQuickItem *>(object);
    if (m_item) {
        m_item->setParent(this);
        m_item->setParentItem(this);
        m_item->setSize(size());
        m_item->setFocus(true);
        m_component->completeCreate();
    } else {
        qmlWarning(this) << (m_component ? m_component->errorString()
                                         : QStringLiteral("There is no content."));
        delete object;
    }
}

} // namespace clockwell

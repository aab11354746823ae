#pragma once

#include <QPointer>
#include <QQmlComponent>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// One page of the main tabs. Its content is built when the page is first selected, and only hidden
/// afterwards. Main thread only.
class TabPage : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_CLASSINFO("DefaultProperty", "content")
    Q_PROPERTY(QQmlComponent *content MEMBER m_component)
    Q_PROPERTY(bool selected READ isSelected WRITE setSelected NOTIFY selectedChanged REQUIRED)

public:
    explicit TabPage(QQuickItem *parent = nullptr);

    bool isSelected() const { return m_selected; }
    void setSelected(bool selected);

Q_SIGNALS:
    void selectedChanged();

protected:
    void componentComplete() override;
    void geometryChange(const QRectF &now, const QRectF &before) override;

private:
    void showOrHide();

    QQmlComponent *m_component = nullptr; // owned by the QML engine's object tree
    QPointer<QQuickItem> m_item;
    bool m_selected = false;
};

} // namespace clockwell

#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// The app's logo at 46 x 46 points with its corners rounded. Decoration: not in the accessibility tree.
class AppLogo : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit AppLogo(QQuickItem *parent = nullptr);

protected:
    QSGNode *updatePaintNode(QSGNode *node, UpdatePaintNodeData *data) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
};

} // namespace clockwell

#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// An item that assistive technology takes for one element: it is told of its role and name, as they are in
/// the item's attached Accessible object, and of nothing inside. For what is read in one go, as a row is.
class ReadAsOne : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit ReadAsOne(QQuickItem *parent = nullptr);
};

} // namespace clockwell

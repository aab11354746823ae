#pragma once

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// An item that assistive technology sees as a single element, for example a row: it has the role and name of
/// the attached Accessible object, and its children are hidden.
class AccessibleElement : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit AccessibleElement(QQuickItem *parent = nullptr);
};

} // namespace clockwell

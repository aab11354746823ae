#pragma once

#include <QObject>
#include <QPointF>
#include <QtQml/qqmlregistration.h>

namespace clockwell {

/// The containment mask of a control, declared in it: 44 x 44 points around the control's middle, however
/// small it is drawn, except where another such control or a text field is drawn, also a disabled one, which
/// takes no press itself. Looks only at what is in the same focus scope. Main thread.
class TouchArea : public QObject
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit TouchArea(QObject *parent = nullptr);

    /// `point` is in the control's coordinates.
    Q_INVOKABLE bool contains(const QPointF &point) const;
};

} // namespace clockwell

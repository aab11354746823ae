#pragma once

#include <private/qaccessiblequickitem_p.h>

namespace clockwell {

/// What assistive technology is told of a control or a text where Qt 6.4 is wrong: a disabled one is said to
/// be so (by Qt itself from 6.5 on) and not pressed, the role that QML declares counts, also for a button,
/// and what a dialog covers is said to be invisible.
class ItemAccessible : public QAccessibleQuickItem
{
public:
    using QAccessibleQuickItem::QAccessibleQuickItem;

    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    void doAction(const QString &action) override;
};

/// Makes this the interface of every button and text of the process. Called by the constructor of TouchArea;
/// the second call does nothing.
void installItemAccessibles();

} // namespace clockwell

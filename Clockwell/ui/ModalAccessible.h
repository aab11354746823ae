#pragma once

#include "ItemAccessible.h"

namespace clockwell {

class Modal;

/// What assistive technology is told of an alert, a dialog or a sheet: a modal dialog with its contents,
/// whose name is that of the item's attached Accessible object.
class ModalAccessible : public ItemAccessible
{
public:
    explicit ModalAccessible(Modal *modal);

    QAccessible::Role role() const override { return QAccessible::Dialog; }
    QAccessible::State state() const override;
    QAccessibleInterface *child(int index) const override;
    int childCount() const override;
    int indexOfChild(const QAccessibleInterface *child) const override;
    QAccessibleInterface *childAt(int x, int y) const override;
    QAccessibleInterface *focusChild() const override;
};

/// Makes this the interface of every Modal of the process; the second call does nothing.
void installModalAccessible();

/// Tells assistive technology that the dialog has opened or closed.
void announceModal(Modal *modal, bool open);

} // namespace clockwell

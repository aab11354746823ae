#include "attendance/AccessibleElement.h"

#include "ui/ItemAccessible.h"

namespace clockwell {

namespace {

QAccessibleInterface *createInterface(const QString &className, QObject *object)
{
    if (className != u"clockwell::AccessibleElement")
        return nullptr;
    return new ItemAccessible(static_cast<QQuickItem *>(object));
}

} // namespace

AccessibleElement::AccessibleElement(QQuickItem *parent) : QQuickItem(parent)
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(createInterface), true);
}

} // namespace clockwell

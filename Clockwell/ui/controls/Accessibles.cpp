#include "Accessibles.h"

#include "FormTextField.h"
#include "ui/dialogs/DialogScope.h"

#include <QtQuick/private/qaccessiblequickitem_p.h>
#include <QtQuick/private/qquickaccessibleattached_p.h>
#include <QtQuickTemplates2/private/qquickpopup_p.h>

#include <algorithm>

namespace clockwell {

namespace {

class ItemAccessible : public QAccessibleQuickItem
{
public:
    using QAccessibleQuickItem::QAccessibleQuickItem;

    QAccessible::Role role() const override
    {
        const auto *declared = QQuickAccessibleAttached::attachedProperties(item());
        return declared && declared->role() != QAccessible::NoRole ? declared->role()
                                                                   : QAccessibleQuickItem::role();
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleQuickItem::state();
        state.disabled = !item()->isEnabled();
        state.focusable = state.focusable && item()->isEnabled();
        state.invisible = state.invisible || DialogScope::covers(item());
        return state;
    }

    void doAction(const QString &action) override
    {
        if (item()->isEnabled() && item()->isVisible())
            QAccessibleQuickItem::doAction(action);
    }
};

class PopupAccessible : public ItemAccessible
{
public:
    using ItemAccessible::ItemAccessible;

    QAccessible::State state() const override
    {
        QAccessible::State state = ItemAccessible::state();
        state.modal = static_cast<QQuickPopup *>(item()->parent())->isModal();
        return state;
    }
};

class FieldAccessible : public ItemAccessible
{
public:
    using ItemAccessible::ItemAccessible;

    FormTextField *field() const { return static_cast<FormTextField *>(object()); }

    QString text(QAccessible::Text text) const override
    {
        if (text == QAccessible::Name)
            return field()->label(); // Qt 6.4 gives a password field none
        return text == QAccessible::Value ? field()->displayText() : ItemAccessible::text(text);
    }

    void setText(QAccessible::Text text, const QString &value) override
    {
        if (text != QAccessible::Value || !field()->isEnabled())
            return;
        field()->setText(value);
        Q_EMIT field()->textEdited();
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = ItemAccessible::state();
        state.editable = !field()->isReadOnly();
        state.passwordEdit = field()->echoMode() != FormTextField::Normal;
        return state;
    }

    QStringList actionNames() const override
    {
        return field()->isEnabled() ? ItemAccessible::actionNames() << showMenuAction() : QStringList();
    }

    void doAction(const QString &action) override
    {
        if (action == showMenuAction())
            Q_EMIT field()->menuRequested();
        else
            ItemAccessible::doAction(action);
    }

    int selectionCount() const override { return field()->selectedText().isEmpty() ? 0 : 1; }

    void selection(int, int *start, int *end) const override
    {
        *start = field()->selectionStart();
        *end = field()->selectionEnd();
    }

    void setSelection(int, int start, int end) override { field()->select(start, end); }
    void addSelection(int start, int end) override { field()->select(start, end); }
    void removeSelection(int) override { field()->deselect(); }

    QRect characterRect(int offset) const override
    {
        QRectF character = field()->positionToRectangle(offset); // Qt leaves the padding out
        character.setRight(std::max(character.right(), field()->positionToRectangle(offset + 1).left()));
        const QRectF scene =
            field()->mapRectToScene(character.translated(field()->leftPadding(), field()->topPadding()));
        return QRect(window()->mapToGlobal(scene.topLeft().toPoint()), scene.size().toSize());
    }

    int offsetAtPoint(const QPoint &point) const override
    {
        for (int offset = 0; offset < characterCount(); ++offset)
            if (characterRect(offset).contains(point))
                return offset;
        return -1;
    }
};

void announceEnabled(QQuickItem *item)
{
    QAccessible::State changed;
    changed.disabled = true;
    QAccessibleStateChangeEvent event(item, changed);
    QAccessible::updateAccessibility(&event);
}

QAccessibleInterface *createAccessible(const QString &className, QObject *object)
{
    auto *item = qobject_cast<QQuickItem *>(object);
    if (className == u"clockwell::FormTextField")
        return new FieldAccessible(item);
    if (className == u"QQuickPopupItem")
        return new PopupAccessible(item);
    if (className == u"QQuickAbstractButton")
        QObject::connect(item, &QQuickItem::enabledChanged, item, [item] { announceEnabled(item); });
    else if (className != u"QQuickText")
        return nullptr;
    return new ItemAccessible(item);
}

} // namespace

void installAccessibles()
{
    QAccessible::installFactory(createAccessible);
}

} // namespace clockwell

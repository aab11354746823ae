#include "ScreenDriver.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMetaEnum>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <qpa/qplatformaccessibility.h>
#include <qpa/qplatformintegration.h>

#include <private/qguiapplication_p.h>

#include <algorithm>
#include <functional>

namespace clockwell::test {

namespace {

using Visitor = std::function<void(QAccessibleInterface *)>;

void visit(QAccessibleInterface *interface, const Visitor &visitor)
{
    if (!interface || !interface->isValid())
        return;
    visitor(interface);
    for (int index = 0; index < interface->childCount(); ++index)
        visit(interface->child(index), visitor);
}

bool isShowing(const QAccessible::State &state)
{
    return !state.invisible && !state.offscreen;
}

QAccessibleInterface *interfaceOf(QObject *object)
{
    return object ? QAccessible::queryAccessibleInterface(object) : nullptr;
}

bool isMoving(const QQuickItem *item)
{
    if (!item->isVisible())
        return false;
    if (item->inherits("QQuickStackView") && item->property("moving").toBool())
        return true;
    if (item->inherits("QQuickPopupItem") && !item->parent()->property("opened").toBool())
        return true;
    const auto children = item->childItems();
    return std::any_of(children.begin(), children.end(), isMoving);
}

} // namespace

ScreenDriver::ScreenDriver(QQuickWindow *window) : m_window(window)
{
    // As a screen reader's first question does; QAccessible::setActive() alone would leave isActive() false.
    QGuiApplicationPrivate::platformIntegration()->accessibility()->setActive(true);
}

QList<ScreenDriver::Element> ScreenDriver::elements() const
{
    QList<Element> found;
    visit(QAccessible::queryAccessibleInterface(m_window), [&](QAccessibleInterface *interface) {
        const auto state = interface->state();
        if (!isShowing(state) || interface->role() == QAccessible::Window)
            return;
        const auto name = interface->text(QAccessible::Name);
        if (name.isEmpty())
            return;
        auto rect = interface->rect();
        rect.moveTopLeft(m_window->mapFromGlobal(rect.topLeft()));
        found.append({name, interface->role(), state, rect, interface->object()});
    });
    return found;
}

QStringList ScreenDriver::texts() const
{
    QStringList names;
    for (const auto &element : elements())
        names.append(element.name);
    return names;
}

std::optional<ScreenDriver::Element> ScreenDriver::find(const QString &name, QAccessible::Role role) const
{
    for (const auto &element : elements())
        if (element.name == name && (role == QAccessible::NoRole || element.role == role))
            return element;
    return std::nullopt;
}

bool ScreenDriver::isEnabled(const QString &name) const
{
    const auto element = find(name);
    return element && !element->state.disabled;
}

bool ScreenDriver::waitFor(const QString &name, std::chrono::milliseconds limit) const
{
    return QTest::qWaitFor([&] { return shows(name); }, static_cast<int>(limit.count()));
}

bool ScreenDriver::waitUntilGone(const QString &name, std::chrono::milliseconds limit) const
{
    return QTest::qWaitFor([&] { return !shows(name); }, static_cast<int>(limit.count()));
}

QString ScreenDriver::waitForPrefix(const QString &prefix, std::chrono::milliseconds limit) const
{
    QString match;
    const auto matches = [&] {
        for (const auto &text : texts()) {
            if (text.startsWith(prefix)) {
                match = text;
                return true;
            }
        }
        return false;
    };
    [[maybe_unused]] const bool inTime = QTest::qWaitFor(matches, static_cast<int>(limit.count()));
    return match;
}

bool ScreenDriver::waitUntilStill(std::chrono::milliseconds limit) const
{
    return QTest::qWaitFor([&] { return !isMoving(m_window->contentItem()); },
                           static_cast<int>(limit.count()));
}

bool ScreenDriver::click(const QString &name, QAccessible::Role role)
{
    const auto element = find(name, role);
    if (!element)
        return false;
    const QPoint middle = element->rect.center();
    if (!QRect(QPoint(), m_window->size()).contains(middle))
        return false;
    QTest::mouseClick(m_window, Qt::LeftButton, Qt::NoModifier, middle);
    return true;
}

bool ScreenDriver::press(const QString &name, QAccessible::Role role)
{
    const auto element = find(name, role);
    auto *interface = element ? interfaceOf(element->object) : nullptr;
    auto *actions = interface ? interface->actionInterface() : nullptr;
    if (!actions || !actions->actionNames().contains(QAccessibleActionInterface::pressAction()))
        return false;
    actions->doAction(QAccessibleActionInterface::pressAction());
    return true;
}

bool ScreenDriver::type(const QString &field, const QString &text)
{
    if (!click(field, QAccessible::EditableText))
        return false;
    typeText(text);
    return true;
}

bool ScreenDriver::retype(const QString &field, const QString &text)
{
    if (!click(field, QAccessible::EditableText))
        return false;
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_Delete);
    typeText(text);
    return true;
}

void ScreenDriver::key(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(m_window, key, modifiers);
}

void ScreenDriver::typeText(const QString &text)
{
    // Characters beyond Latin-1 have no Qt::Key value, so all are sent as text, like those from a compose
    // key.
    for (const QChar character : text) {
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, Qt::Key_unknown, Qt::NoModifier, QString(character));
            QGuiApplication::sendEvent(m_window, &event);
        }
    }
    QTest::qWait(0);
}

bool ScreenDriver::savePng(const QString &path) const
{
    constexpr int settleMs = 450; // longer than any of the app's transitions
    QTest::qWait(settleMs);
    QDir().mkpath(QFileInfo(path).absolutePath());
    return m_window->grabWindow().save(path, "PNG");
}

QString ScreenDriver::dump() const
{
    QString text;
    const auto roles = QMetaEnum::fromType<QAccessible::Role>();
    for (const auto &element : elements()) {
        text += QStringLiteral("%1 \"%2\"%3 %4x%5+%6+%7\n")
                    .arg(QString::fromLatin1(roles.valueToKey(element.role)), element.name,
                         element.state.disabled ? QStringLiteral(" disabled") : QString())
                    .arg(element.rect.width())
                    .arg(element.rect.height())
                    .arg(element.rect.x())
                    .arg(element.rect.y());
    }
    return text;
}

} // namespace clockwell::test

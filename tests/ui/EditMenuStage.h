#pragma once

#include "ComponentStage.h"
#include "support/screen/TextIn.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QStyleHints>
#include <QTest>

#include <gtest/gtest.h>

namespace clockwell::test {

/// A field in the middle of a window, a button below it, and the fingers, buttons and keys that a person has.
class EditMenuStage : public ::testing::Test
{
protected:
    static constexpr int hold = 200;
    static constexpr int longHold = 1000;

    explicit EditMenuStage(const QByteArray &qml = page, QSize size = QSize(390, 400)) : stage(qml, size)
    {
        QGuiApplication::styleHints()->setMousePressAndHoldInterval(hold);
        QGuiApplication::clipboard()->setText(QStringLiteral("copied"));
    }
    ~EditMenuStage() override
    {
        QGuiApplication::styleHints()->setMousePressAndHoldInterval(-1); // the platform's again
        QGuiApplication::clipboard()->clear();
    }

    static constexpr auto page = R"(FocusScope {
        id: page
        property int taps: 0
        property int edits: 0
        property int escapes: 0
        width: 350; height: 360; focus: true
        Keys.onEscapePressed: ++escapes
        Keys.onBackPressed: ++escapes
        QorField { objectName: "field"; y: 120; width: 350; label: "Field"; focus: true; onTextEdited: ++page.edits }
        QorField { objectName: "other"; y: 190; width: 350; label: "Other" }
        PrimaryButton { objectName: "below"; y: 300; width: 350; title: "Below"; onClicked: ++page.taps }
    })";

    QQuickItem *field() const { return stage.part("field"); }
    QQuickItem *input() const { return inputIn(field()); }
    QString text() const { return input()->property("text").toString(); }
    QString selected() const { return input()->property("selectedText").toString(); }
    int cursor() const { return input()->property("cursorPosition").toInt(); }
    void setText(const QString &value) { input()->setProperty("text", value); }
    void select(int start, int end)
    {
        QMetaObject::invokeMethod(input(), "select", Q_ARG(int, start), Q_ARG(int, end));
    }
    static void copy(const QString &value) { QGuiApplication::clipboard()->setText(value); }
    int count(const char *property) const { return stage.item()->property(property).toInt(); }

    /// In the window, over the middle of the character; without one, behind the text.
    QPoint at(int character = -1) const
    {
        auto *drawn = QAccessible::queryAccessibleInterface(input())->textInterface();
        const QRect rect = drawn->characterRect(character < 0 ? drawn->characterCount() : character);
        const int x = character < 0 ? rect.left() + 30 : rect.center().x();
        return stage.window().mapFromGlobal(QPoint(x, rect.center().y()));
    }

    void touch(QPoint position) { QTest::touchEvent(&stage.window(), finger).press(0, position); }
    void lift(QPoint position) { QTest::touchEvent(&stage.window(), finger).release(0, position); }
    void drag(QPoint to)
    {
        QTest::qWait(20);
        QTest::touchEvent(&stage.window(), finger).move(0, to);
        QTest::qWait(20); // moves are delivered with the next frame
    }
    void tap(QPoint position)
    {
        touch(position);
        lift(position);
    }
    void longPress(QPoint position)
    {
        touch(position);
        waitForTheMenu();
        lift(position);
        settle();
    }
    void longPressByMouse(QPoint position)
    {
        QTest::mousePress(&stage.window(), Qt::LeftButton, Qt::NoModifier, position);
        waitForTheMenu();
        QTest::mouseRelease(&stage.window(), Qt::LeftButton, Qt::NoModifier, position);
        settle();
    }
    /// Through a press that is long enough to open one, if it can.
    void waitForTheMenu()
    {
        QTest::qWait(hold);
        (void)QTest::qWaitFor([this] { return isOpen(); }, 400);
    }
    /// For tests in which a stall of the machine must not turn a drag into a long press.
    static void makeLongPressesLong()
    {
        QGuiApplication::styleHints()->setMousePressAndHoldInterval(longHold);
    }
    void click(QPoint position, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(&stage.window(), button, Qt::NoModifier, position);
        settle();
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        stage.screen().key(key, modifiers);
    }
    /// Until what is open has its place.
    void settle() { stage.shot(); }

    /// What the menu offers; empty while none is open.
    QStringList offered() const
    {
        QStringList names;
        for (const auto &element : stage.screen().elements())
            if (element.role == QAccessible::MenuItem)
                names.append(element.name);
        return names;
    }
    bool isOpen() const { return !menus().isEmpty(); }
    QList<ScreenDriver::Element> menus() const
    {
        QList<ScreenDriver::Element> found;
        for (const auto &element : stage.screen().elements())
            if (element.role == QAccessible::PopupMenu)
                found.append(element);
        return found;
    }
    QRect menu() const { return isOpen() ? menus().constFirst().rect : QRect(); }
    QPoint entry(const QString &name) const
    {
        const auto found = stage.screen().find(name, QAccessible::MenuItem);
        EXPECT_TRUE(found) << name.toStdString() << " in " << stage.screen().dump().toStdString();
        return found ? found->rect.center() : QPoint();
    }
    /// The entry that the keyboard has reached.
    QString reached() const
    {
        for (const auto &element : stage.screen().elements())
            if (element.role == QAccessible::MenuItem && element.state.focused)
                return element.name;
        return {};
    }

    // Asking what is shown changes nothing of it.
    mutable ComponentStage stage;
    QPointingDevice *finger = QTest::createTouchDevice();
};

} // namespace clockwell::test

#pragma once

#include <QFile>
#include <QQuickItem>
#include <QUrl>
#include <QVariantMap>

#include <gtest/gtest.h>

namespace clockwell::test {

/// A stack of screens on a stage, which changes them as the QML of the app does.
class StackDriver
{
public:
    /// The QML of a stack with these properties.
    static QByteArray qml(const QByteArray &properties)
    {
        return "NavigationStack { " + properties + R"(
            function testPush(file, properties) { push(file, properties) }
            function testPop() { pop() }
            function testReplace(file, properties, animated) { replace(null, file, properties, animated ? NavigationStack.ReplaceTransition : NavigationStack.Immediate) }
        })";
    }

    explicit StackDriver(QQuickItem *stack) : m_stack(stack) {}

    QQuickItem *item() const { return m_stack; }
    QQuickItem *currentItem() const { return m_stack->property("currentItem").value<QQuickItem *>(); }
    int depth() const { return m_stack->property("depth").toInt(); }
    /// Screens change places or are being pulled.
    bool isMoving() const { return m_stack->property("moving").toBool(); }

    void push(const QUrl &file, const QVariantMap &properties = {})
    {
        call("testPush", Q_ARG(QVariant, file), Q_ARG(QVariant, properties));
    }
    void pop() { call("testPop"); }
    void replace(const QUrl &file, const QVariantMap &properties, bool animated)
    {
        call("testReplace", Q_ARG(QVariant, file), Q_ARG(QVariant, properties), Q_ARG(QVariant, animated));
    }

private:
    template <class... Arguments>
    void call(const char *function, const Arguments &...arguments)
    {
        EXPECT_TRUE(QMetaObject::invokeMethod(m_stack, function, arguments...)) << function;
    }

    QQuickItem *m_stack;
};

/// Writes a screen of this QML, which may use what screens are made of.
inline QUrl writeScreen(const QString &path, const QByteArray &qml)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("import QtQuick\nimport Clockwell.Ui\n" + qml);
    return QUrl::fromLocalFile(file.fileName());
}

} // namespace clockwell::test

#pragma once

#include "AuthStoreFixture.h"
#include "ManualTiming.h"
#include "account/OtpPurpose.h"
#include "support/screen/QmlStage.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QQmlEngine>

namespace clockwell::test {

/// The signed-out interface, connected to a scripted server, at the sign-in screen.
class AccountScreens : public AuthStoreFixture
{
protected:
    /// The screen on top of the stack.
    QQuickItem *top() { return stage.root()->property("currentItem").value<QQuickItem *>(); }
    int depth() { return stage.root()->property("depth").toInt(); }

    /// Waits until the screen with this title is on top and its transition has ended.
    bool arrivesAt(const QString &title)
    {
        return spinUntil([&] {
            return top()->property("title").toString() == title && !stage.root()->property("busy").toBool();
        });
    }
    bool arrivesAtSignIn()
    {
        return spinUntil([this] { return depth() == 1 && !stage.root()->property("busy").toBool(); });
    }

    /// Pushes the code screen in the same way as the screens that open it.
    void openCodeScreen(const QString &email, OtpPurpose::Purpose purpose)
    {
        const QVariantMap properties{
            {QStringLiteral("auth"), QVariant::fromValue(&auth)},
            {QStringLiteral("timing"), QVariant::fromValue(static_cast<Timing *>(&timing))},
            {QStringLiteral("email"), email},
            {QStringLiteral("purpose"), purpose}};
        const QUrl file(QStringLiteral("qrc:/qt/qml/Clockwell/Account/OtpView.qml"));
        QQmlEngine *engine = qmlEngine(stage.root());
        const QJSValue stack = engine->toScriptValue<QObject *>(stage.root());
        stack.property(QStringLiteral("push"))
            .callWithInstance(stack, {engine->toScriptValue(file), engine->toScriptValue(properties)});
        const bool resetting = purpose == OtpPurpose::ResetPassword;
        ASSERT_TRUE(arrivesAt(resetting ? QStringLiteral("Reset password") : QStringLiteral("Verify email")));
    }

    bool becomesEnabled(const QString &control)
    {
        return spinUntil([&] { return stage->isEnabled(control); });
    }

    QByteArray lastBody() const
    {
        const auto requests = server.requests();
        return requests.isEmpty() ? QByteArray() : requests.last().body;
    }

    QString valueOf(const QString &field) { return AuthStoreFixture::valueOf(stage.screen(), field); }

    bool paste(const QString &field, const QString &text)
    {
        QGuiApplication::clipboard()->setText(text);
        if (!stage->click(field, QAccessible::EditableText))
            return false;
        stage->key(Qt::Key_V, Qt::ControlModifier);
        return true;
    }

    /// Whether assistive technology is given this text as an alert message.
    bool announces(const QString &text) { return stage->find(text, QAccessible::AlertMessage).has_value(); }

    ManualTiming timing;
    QmlStage stage{QStringLiteral("Clockwell/Account/AccountStack.qml"),
                   {{QStringLiteral("auth"), QVariant::fromValue(&auth)},
                    {QStringLiteral("timing"), QVariant::fromValue(static_cast<Timing *>(&timing))}}};
};

/// Records changes of properties of a view model, in the order of their signals.
class ChangeLog
{
public:
    template <class Model, class Declaring>
    void record(Model &model, void (Declaring::*changed)(), const char *property)
    {
        QObject::connect(
            &model, changed, &m_context,
            [this, &model, property] {
                m_entries.append(QString::fromLatin1(property) + QLatin1Char(' ') +
                                 model.property(property).toString());
            });
    }
    QStringList entries() const { return m_entries; }

private:
    QObject m_context;
    QStringList m_entries;
};

} // namespace clockwell::test

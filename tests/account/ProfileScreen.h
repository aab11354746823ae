#pragma once

#include "account/AuthStore.h"
#include "net/APIClient.h"
#include "net/SessionEvents.h"
#include "support/Await.h"
#include "support/FakeServer.h"
#include "support/MemoryTokenStore.h"
#include "support/screen/QmlStage.h"

#include <gtest/gtest.h>

#include <memory>

namespace clockwell::test {

inline QByteArray userJson(const QByteArray &name, const QByteArray &more = R"("phone":"+92 300 1234567",)")
{
    return R"({"id":"1","fullName":")" + name + R"(","email":"kel@example.org",)" + more +
           R"("role":"HR_MANAGER","status":"APPROVED"})";
}

/// The profile of somebody who has signed in, against a scripted server.
class ProfileScreen : public ::testing::Test
{
protected:
    void signIn(const QByteArray &user)
    {
        server.expect("POST", "/api/auth/login")
            .reply(200, R"({"accessToken":"a1","refreshToken":"r1","user":)" + user + "}");
        await(auth.login(QStringLiteral("e"), QStringLiteral("p")));
        ASSERT_EQ(auth.phase(), AuthStore::Phase::SignedIn);
    }

    /// Shows the profile; its own request for the user gets no answer unless one was scripted before.
    void show(const QByteArray &user = userJson("kel voss"), QSize size = QSize(390, 844))
    {
        signIn(user);
        stage = std::make_unique<QmlStage>(QStringLiteral("Clockwell/Account/ProfileView.qml"),
                                           QVariantMap{{QStringLiteral("auth"), QVariant::fromValue(&auth)}},
                                           size);
    }

    ScreenDriver &screen() { return stage->screen(); }
    bool openSheet()
    {
        return screen().click(QStringLiteral("Change password"), QAccessible::Button) &&
               screen().waitFor(QStringLiteral("Update password")) && screen().waitUntilStill();
    }
    bool askToSignOut()
    {
        return screen().click(QStringLiteral("Sign out"), QAccessible::Button) &&
               screen().waitFor(QStringLiteral("Sign out of Qor?")) && screen().waitUntilStill();
    }
    bool requests(const QString &path, int times)
    {
        return spinUntil([&] { return server.count(path) >= times; });
    }
    QString valueOf(const QString &field)
    {
        const auto element = screen().find(field, QAccessible::EditableText);
        return element ? element->object->property("text").toString() : QStringLiteral("(no such field)");
    }
    /// Time for what must not happen.
    static void settle(std::chrono::milliseconds time = std::chrono::milliseconds(200))
    {
        spinUntil([] { return false; }, time);
    }

    static APIClient::Options optionsFor(const FakeServer &server)
    {
        APIClient::Options result;
        result.baseURL = server.url(QStringLiteral("/api"));
        return result;
    }

    FakeServer server;
    MemoryTokenStore tokens;
    SessionEvents events;
    APIClient api{optionsFor(server), tokens, events};
    AuthStore auth{api, tokens};
    std::unique_ptr<QmlStage> stage;
};

} // namespace clockwell::test

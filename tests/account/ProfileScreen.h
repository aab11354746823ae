#pragma once

#include "AuthStoreFixture.h"
#include "support/screen/QmlStage.h"

#include <memory>

namespace clockwell::test {

inline QByteArray userJson(const QByteArray &name, const QByteArray &more = R"("phone":"+92 300 1234567",)")
{
    return R"({"id":"1","fullName":")" + name + R"(","email":"kel@example.org",)" + more +
           R"("role":"HR_MANAGER","status":"APPROVED"})";
}

/// The profile of a signed-in user, connected to a scripted server.
class ProfileScreen : public AuthStoreFixture
{
protected:
    void signIn(const QByteArray &user)
    {
        server.expect("POST", "/api/auth/login")
            .reply(200, R"({"accessToken":"a1","refreshToken":"r1","user":)" + user + "}");
        await(auth.login(QStringLiteral("e"), QStringLiteral("p")));
        ASSERT_EQ(auth.phase(), AuthStore::Phase::SignedIn);
    }

    /// Shows the profile. The profile's own request for the user is answered only if a reply was scripted
    /// before.
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
    QString valueOf(const QString &field) { return AuthStoreFixture::valueOf(screen(), field); }

    std::unique_ptr<QmlStage> stage;
};

} // namespace clockwell::test

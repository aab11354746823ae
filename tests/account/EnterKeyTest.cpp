#include "AccountScreens.h"
#include "ProfileScreen.h"

#include <QInputMethodQueryEvent>

using namespace Qt::StringLiterals;

namespace clockwell {
namespace {

using test::AccountScreens;
using test::ProfileScreen;
using test::ScreenDriver;

/// The type of Enter key that the field requests from an on-screen keyboard.
Qt::EnterKeyType enterKeyOf(ScreenDriver &screen, const QString &field)
{
    const auto element = screen.find(field, QAccessible::EditableText);
    if (!element) {
        ADD_FAILURE() << "no field " << field.toStdString();
        return Qt::EnterKeyDefault;
    }
    QInputMethodQueryEvent query(Qt::ImEnterKeyType);
    QCoreApplication::sendEvent(element->object, &query);
    return static_cast<Qt::EnterKeyType>(query.value(Qt::ImEnterKeyType).toInt());
}

class EnterKeyTest : public AccountScreens
{};

TEST_F(EnterKeyTest, IsNextThenGoOnTheSignIn)
{
    EXPECT_EQ(enterKeyOf(stage.screen(), u"Email"_s), Qt::EnterKeyNext);
    EXPECT_EQ(enterKeyOf(stage.screen(), u"Password"_s), Qt::EnterKeyGo);
}

TEST_F(EnterKeyTest, IsNextThenGoOnTheSignUp)
{
    ASSERT_TRUE(stage->click(u"Create an account"_s));
    ASSERT_TRUE(arrivesAt(u"Sign up"_s));
    for (const auto &field :
         {u"Full name"_s, u"Email"_s, u"Phone (optional)"_s, u"Company code (optional)"_s})
        EXPECT_EQ(enterKeyOf(stage.screen(), field), Qt::EnterKeyNext) << field.toStdString();
    EXPECT_EQ(enterKeyOf(stage.screen(), u"Password"_s), Qt::EnterKeyGo);
}

TEST_F(EnterKeyTest, IsGoOnTheForgotPasswordScreen)
{
    ASSERT_TRUE(stage->click(u"Forgot password?"_s));
    ASSERT_TRUE(arrivesAt(u"Forgot password"_s));
    EXPECT_EQ(enterKeyOf(stage.screen(), u"Email"_s), Qt::EnterKeyGo);
}

TEST_F(EnterKeyTest, IsGoWhenOnlyACodeIsRequired)
{
    openCodeScreen(u"ada@example.org"_s, OtpPurpose::VerifyEmail);
    EXPECT_EQ(enterKeyOf(stage.screen(), u"Verification code"_s), Qt::EnterKeyGo);
}

TEST_F(EnterKeyTest, IsNextThenGoWhenANewPasswordIsRequired)
{
    openCodeScreen(u"ada@example.org"_s, OtpPurpose::ResetPassword);
    EXPECT_EQ(enterKeyOf(stage.screen(), u"Verification code"_s), Qt::EnterKeyNext);
    EXPECT_EQ(enterKeyOf(stage.screen(), u"New password"_s), Qt::EnterKeyGo);
}

class ChangePasswordEnterKeyTest : public ProfileScreen
{};

TEST_F(ChangePasswordEnterKeyTest, IsNextThenGo)
{
    server.expect("GET", "/api/auth/me").anyNumber().reply(200, test::userJson("Kel Voss"));
    show();
    ASSERT_TRUE(requests(u"/api/auth/me"_s, 1));
    ASSERT_TRUE(openSheet());
    EXPECT_EQ(enterKeyOf(screen(), u"Current password"_s), Qt::EnterKeyNext);
    EXPECT_EQ(enterKeyOf(screen(), u"New password"_s), Qt::EnterKeyGo);
}

} // namespace
} // namespace clockwell
